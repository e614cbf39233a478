// Two scans are gone through side by side, as they are written: by name in each folder.
#include "engine/diskusage/history/ScanDifference.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "engine/diskusage/FSNode.h"

namespace orrinvale {
namespace {

constexpr std::uint8_t partialMarks = FSNode::CutWithin | FSNode::UnreadWithin;
constexpr std::uint8_t coveredMarks = FSNode::Foreign | FSNode::ForeignWithin;
constexpr std::uint8_t unseenMarks = FSNode::Unread | FSNode::Foreign;

// Without the sign, so that the least number has one too.
std::uint64_t netWeightOf(const ScanChange& change) {
    return change.sizeAfter > change.sizeBefore ? change.sizeAfter - change.sizeBefore
                                                : change.sizeBefore - change.sizeAfter;
}

}  // namespace

std::int64_t changeOf(std::uint64_t before, std::uint64_t after) {
    const auto held = [](std::uint64_t bytes) {
        constexpr auto most = std::uint64_t{std::numeric_limits<std::int64_t>::max()};
        return static_cast<std::int64_t>(bytes < most ? bytes : most);
    };
    return after >= before ? held(after - before) : -held(before - after);
}

std::int64_t restOfChange(std::int64_t whole, std::int64_t part) {
    using Limits = std::numeric_limits<std::int64_t>;
    std::int64_t rest = 0;
    if (!__builtin_sub_overflow(whole, part, &rest)) return rest;
    return part < 0 ? Limits::max() : Limits::min();
}

struct ScanDifference::Merge {
    using Kind = ScanChange::Kind;

    /// One of the two scans. `has` false: the folder in hand has no more in it.
    struct Side {
        explicit Side(const StoredScan& scan) : reader(scan) {}
        [[nodiscard]] bool isUnseen() const { return (reader.marks() & unseenMarks) != 0; }
        ScanReader reader;
        bool has = false, isEnd = false;
    };

    Merge(ScanDifference& into, const StoredScan& before, const StoredScan& after)
        : made(into), old(before), now(after) {}

    // To the next entry that both scans would have kept.
    bool advance(Side& side) const {
        for (;;) {
            const ScanReader::Step step = side.reader.next();
            side.has = step == ScanReader::Step::Entry;
            side.isEnd = step == ScanReader::Step::End;
            if (!side.has) return step != ScanReader::Step::Bad;
            const bool isFolder = side.reader.isFolder();
            if (side.reader.size() >= (isFolder ? made.m_foldersFrom : made.m_filesFrom) ||
                (!isFolder && side.isUnseen()))
                return true;
            if (!side.reader.skip()) return false;
        }
    }

    ScanChange& add(Kind kind, const ScanReader& reader) {
        ScanChange& change = made.m_all.emplace_back();
        change.kind = kind;
        change.parent = open.empty() ? 0 : open.back();
        change.nameAt = static_cast<std::uint32_t>(made.m_names.size());
        change.nameLength = static_cast<std::uint16_t>(reader.name().size());
        made.m_names += reader.name();
        isFull = isFull || made.m_names.size() > mostNames;
        change.isFolder = reader.isFolder();
        return change;
    }

    static void putSizes(ScanChange& change, const ScanReader& reader, bool isAfter) {
        (isAfter ? change.sizeAfter : change.sizeBefore) = reader.size();
        (isAfter ? change.onDiskAfter : change.onDiskBefore) = reader.onDisk();
        change.isPartial = change.isPartial || (reader.marks() & partialMarks) != 0;
        change.isUnseen = change.isUnseen || (reader.marks() & unseenMarks) != 0;
    }

    // A file of which nothing is known tells nothing alone: the other scan may have left it out.
    bool onlyIn(Side& side, bool isAfter, bool isReplaced = false) {
        if (side.reader.isFolder() || !side.isUnseen()) {
            ScanChange& change = add(isAfter ? Kind::Came : Kind::Went, side.reader);
            putSizes(change, side.reader, isAfter);
            change.isCovered = (side.reader.marks() & coveredMarks) != 0;
            change.isReplaced = isReplaced;
        }
        return side.reader.skip() && advance(side);
    }

    // What one of them could not look into is neither gone nor new, and nobody knows what it is.
    bool inBothUnseen() {
        addBoth();
        ScanChange& change = made.m_all.back();
        change.isFolder = old.reader.isFolder() || now.reader.isFolder();
        if (change.sizeBefore == change.sizeAfter && change.onDiskBefore == change.onDiskAfter) {
            made.m_names.resize(change.nameAt);
            made.m_all.pop_back();
        }
        return old.reader.skip() && now.reader.skip() && advance(old) && advance(now);
    }

    // A folder keeps its kind when it can not be read.
    bool isOfTwoKinds() const {
        const bool isOld = old.reader.isFolder();
        return isOld != now.reader.isFolder() && !(isOld ? now : old).isUnseen();
    }

    bool inBoth() {
        if (isOfTwoKinds()) return onlyIn(old, false, true) && onlyIn(now, true, true);
        if (old.isUnseen() || now.isUnseen()) return inBothUnseen();
        const bool isSame =
            old.reader.size() == now.reader.size() && old.reader.onDisk() == now.reader.onDisk();
        if (!now.reader.isFolder()) {
            if (!isSame) addBoth();
            return advance(old) && advance(now);
        }
        addBoth();
        open.push_back(static_cast<std::uint32_t>(made.m_all.size() - 1));
        return advance(old) && advance(now);
    }

    void addBoth() {
        ScanChange& change = add(Kind::Changed, now.reader);
        putSizes(change, old.reader, false);
        putSizes(change, now.reader, true);
        change.isCovered = ((old.reader.marks() ^ now.reader.marks()) & coveredMarks) != 0;
    }

    // A folder in which nothing differs leaves, with its name.
    bool close() {
        const std::uint32_t folder = open.back();
        open.pop_back();
        const ScanChange& change = made.m_all[folder];
        if (folder != 0 && folder + 1 == made.m_all.size() &&
            change.sizeBefore == change.sizeAfter && change.onDiskBefore == change.onDiskAfter) {
            made.m_names.resize(change.nameAt);
            made.m_all.pop_back();
        }
        if (old.isEnd || now.isEnd) return true;
        return advance(old) && advance(now);
    }

    bool run() {
        made.m_all.push_back(wholeChange(made.m_before, made.m_after));
        open.push_back(0);
        if (!advance(old) || !advance(now)) return false;
        while (!open.empty())
            if (!step()) return false;
        return old.isEnd && now.isEnd;
    }

    bool step() {
        if (isFull) return false;
        if (!old.has && !now.has) return close();
        if (!now.has) return onlyIn(old, false);
        if (!old.has) return onlyIn(now, true);
        const int order = old.reader.name().compare(now.reader.name());
        if (order < 0) return onlyIn(old, false);
        return order > 0 ? onlyIn(now, true) : inBoth();
    }

    ScanDifference& made;
    Side old, now;
    bool isFull = false;              // of names
    std::vector<std::uint32_t> open;  // numbers of the folders on the way
};

ScanChange wholeChange(const ScanFacts& before, const ScanFacts& after) {
    ScanChange whole;
    whole.isFolder = true;
    whole.sizeBefore = before.size;
    whole.sizeAfter = after.size;
    whole.onDiskBefore = before.onDisk;
    whole.onDiskAfter = after.onDisk;
    whole.isPartial = ((before.marks | after.marks) & partialMarks) != 0;
    whole.isCovered = ((before.marks ^ after.marks) & coveredMarks) != 0;
    return whole;
}

std::optional<ScanDifference> ScanDifference::of(const StoredScan& before,
                                                 const StoredScan& after) {
    ScanDifference made;
    made.m_before = before.facts;
    made.m_after = after.facts;
    made.m_filesFrom = std::max(before.facts.filesFrom, after.facts.filesFrom);
    made.m_foldersFrom = std::max(before.facts.foldersFrom, after.facts.foldersFrom);
    if (!Merge(made, before, after).run()) return std::nullopt;
    made.order();
    return made;
}

// By the largest change within, since what came may be as large as what went. Each folder's part of
// the list is as long as it has children.
void ScanDifference::order() {
    for (std::size_t i = m_all.size(); i-- > 0;) {
        m_all[i].weight = std::max(m_all[i].weight, netWeightOf(m_all[i]));
        ScanChange& parent = m_all[m_all[i].parent];
        parent.weight = std::max(parent.weight, m_all[i].weight);
    }
    for (std::size_t i = 1; i < m_all.size(); ++i) ++m_all[m_all[i].parent].childCount;
    std::uint32_t next = 0;
    for (ScanChange& each : m_all) {
        each.firstChild = next;
        next += std::exchange(each.childCount, 0);
    }
    m_order.resize(next);
    for (std::uint32_t i = 1; i < m_all.size(); ++i) {
        ScanChange& parent = m_all[m_all[i].parent];
        m_order[parent.firstChild + parent.childCount++] = i;
    }
    m_byName = m_order;
    for (const ScanChange& each : m_all) {
        const auto list = std::span(m_order).subspan(each.firstChild, each.childCount);
        std::ranges::sort(list, [this](std::uint32_t a, std::uint32_t b) {
            const std::uint64_t one = m_all[a].weight;
            const std::uint64_t other = m_all[b].weight;
            return one != other ? one > other : a < b;  // they came by name
        });
    }
}

std::optional<std::uint32_t> ScanDifference::find(const ScanChange& folder,
                                                  std::string_view entry) const {
    const auto within = std::span(m_byName).subspan(folder.firstChild, folder.childCount);
    const auto nameOf = [this](std::uint32_t number) { return name(m_all[number]); };
    const auto found = std::ranges::lower_bound(within, entry, {}, nameOf);
    if (found == within.end() || nameOf(*found) != entry) return std::nullopt;
    // Of a file in the place of a folder, or the other way round, the later one.
    const bool isTwice = found + 1 != within.end() && nameOf(*(found + 1)) == entry;
    return isTwice ? *(found + 1) : *found;
}

std::string ScanDifference::path(std::uint32_t number) const {
    std::vector<std::uint32_t> way;
    for (; number != 0; number = m_all[number].parent) way.push_back(number);
    std::string path = m_after.root;
    for (auto each = way.rbegin(); each != way.rend(); ++each) {
        if (!path.ends_with('/')) path += '/';
        path += name(m_all[*each]);
    }
    return path;
}

std::uint32_t ScanDifference::mostly(std::uint32_t number) const {
    const ScanChange& whole = m_all[number];
    const bool grew = whole.sizeAfter > whole.sizeBefore;
    const std::uint64_t weight = netWeightOf(whole);
    if (weight == 0) return number;
    const std::uint64_t least = weight - weight / 4;
    const auto isReason = [&](std::uint32_t each) {
        const ScanChange& change = m_all[each];
        return netWeightOf(change) >= least && (change.sizeAfter > change.sizeBefore) == grew;
    };
    for (;;) {
        std::optional<std::uint32_t> reason;
        for (const std::uint32_t each : children(m_all[number])) {
            if (m_all[each].weight < least) break;
            if (isReason(each) &&
                (!reason || netWeightOf(m_all[each]) > netWeightOf(m_all[*reason])))
                reason = each;
        }
        if (!reason) return number;
        number = *reason;
    }
}

}  // namespace orrinvale
