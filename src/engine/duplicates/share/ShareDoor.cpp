// Which of the two ways, extents or a hard link, and the words where neither is open.
#include "engine/duplicates/share/ShareDoor.h"

#include <fmt/format.h>

#include <cerrno>
#include <string>

#include "engine/base/Log.h"
#include "engine/duplicates/share/shareReasons.h"
#include "engine/removal/stayReasons.h"
#include "engine/removal/stayedWith.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/sharing.h"

namespace orrinvale {
namespace {

using SharedBy = RemovalResult::Shared::By;

// The file system knows nothing of it.
bool isUnknownToSystem(int error) {
    return error == EOPNOTSUPP || error == ENOTTY || error == ENOSYS;
}

// Not these two, or none at all: a hard link may be had all the same.
bool isNoWay(int error) { return isUnknownToSystem(error) || error == EXDEV || error == EINVAL; }

StayedEntry withoutExtents(const std::string& path, int error) {
    if (isUnknownToSystem(error)) return {path, std::string(share::noExtents)};
    if (error == EXDEV) return {path, std::string(share::otherFileSystem)};
    if (error == EINVAL) return {path, std::string(share::notTheseTwo)};
    return {path, systemError("share", {}, error).reason(), stayReasonOf(error)};
}

RemovalResult notHeld(const std::string& path, const HeldEntry::Objection& why) {
    RemovalResult result = stayedWith({path, why.reason, why.why});
    if (why.kind != HeldEntry::Objection::Kind::NoEntry || why.error != ENOENT) return result;
    result = {};
    result.gone = result.byOthers = true;
    return result;
}

bool hasOtherContents(const RemovalResult& result) {
    return !result.failures.empty() && result.failures.front().reason == stay::otherContents;
}

void logShare(const std::string& path, const RemovalResult& result) {
    if (result.shared)
        Log::line(fmt::format("{} has its bytes in common with {}{}", path, result.shared->with,
                              result.shared->by == SharedBy::HardLink ? ", as one file" : ""));
    else if (!result.failures.empty())
        Log::line(fmt::format("{} keeps its own bytes: {}", path, result.failures.front().reason));
}

}  // namespace

RemovalResult ShareDoor::remove(const LeavingEntry& entry, const std::atomic<bool>& stop) {
    RemovalResult result = share(entry, stop);
    if (!m_order.onlyLooks) logShare(entry.path, result);
    return result;
}

// Where the copy that stays is of no use another one of the group may be.
RemovalResult ShareDoor::share(LeavingEntry entry, const std::atomic<bool>& stop) {
    if (entry.look == nullptr)
        return stayedWith({entry.path, std::string(stay::noCopy), StayReason::NoCopy});
    const ShareGroup group = m_order.group ? m_order.group() : ShareGroup{};
    if (m_order.group) m_givers.enter(group.number);
    Attempt first = attempt(entry, *entry.look, {true, m_order.objectionToLink != nullptr}, stop);
    const bool hasNoWay = !m_order.objectionToLink && entry.identity &&
                          m_withoutExtents.contains(entry.identity->device);
    if (!first.isOfThese || !m_order.group || !entry.identity || hasNoWay)
        return std::move(first.result);
    if (group.staying != nullptr) m_givers.learnStaying(*group.staying);
    Attempt other = shareWithGivers(entry, stop);
    // What was aside and came back has another time of change, whatever a later attempt came to.
    RemovalResult& told = other.isOfThese ? first.result : other.result;
    if ((first.result.changed || other.result.changed) && !told.shared)
        told.changed = entry.identity->changed;
    return std::move(told);
}

// What keeps its bytes in the end may give them to the next ones. What differs from a giver keeps
// the reason that it had with the copy that stays, gives nothing, and asks no further one.
ShareDoor::Attempt ShareDoor::shareWithGivers(LeavingEntry& entry, const std::atomic<bool>& stop) {
    using Way = ShareGivers::Way;
    Attempt last{{}, true};
    const auto kind = kindOf(entry);
    if (!kind) return last;
    for (const Way way : {Way::Extents, Way::Link}) {
        const bool isLink = way == Way::Link;
        if (isLink ? !m_order.objectionToLink : m_withoutExtents.contains(kind->device)) continue;
        while (const auto giver = m_givers.next(way, *kind)) {
            if (giver->path == entry.look->kept()->path) {  // asked already
                m_givers.drop(way, *kind);
                continue;
            }
            FileLook look(m_files, *giver, true);
            Attempt made = attempt(entry, look, {!isLink, isLink}, stop);
            if (!made.result.changed && !made.result.shared)
                made.result.changed = last.result.changed;
            last.result.changed = made.result.changed;
            if (hasOtherContents(made.result)) return last;
            if (!made.isOfThese) return made;
            m_givers.drop(way, *kind);
        }
    }
    m_givers.add(*kind, {entry.path, *entry.identity});
    return last;
}

std::optional<ShareGivers::Kind> ShareDoor::kindOf(const LeavingEntry& entry) {
    const auto held =
        HeldEntry::at(m_files, m_places, entry.path, entry.identity, nullptr, &m_parents);
    if (!held) return std::nullopt;
    ReadState state;
    const auto file = m_files.openFile(held->parent.get(), held->name.c_str(), Links::Keep, state);
    if (!file) return std::nullopt;
    return m_givers.kindOf(entry.path, held->attributes.device, file->get());
}

// An entry that was set aside and put back has another time of change then.
ShareDoor::Attempt ShareDoor::attempt(LeavingEntry& entry, CopyLook& look, Ways ways,
                                      const std::atomic<bool>& stop) {
    auto held = HeldEntry::at(m_files, m_places, entry.path, entry.identity, nullptr, &m_parents);
    if (!held) return {notHeld(entry.path, held.error())};
    const auto pair = SharePair::open(m_files, std::move(*held), look.kept());
    if (!pair) return {stayedWith(pair.error().why), pair.error().isOfThese};
    const FileAttributes& copy = pair->held.attributes;
    // The places of two disks are equal where one was copied whole from the other.
    if (pair->isOneFile() ||
        (!m_withoutExtents.contains(copy.device) && isOneSpace(*pair) &&
         hasSameExtents(pair->keptFile.get(), pair->file.get()).value_or(false)))
        return {sharedBy(SharedBy::Already, *pair, 0)};
    Attempt made{{}, true};
    if (ways.extents) made = shareExtents(*pair, stop);
    if (!made.isOfThese || !ways.link) return made;
    made = link(*pair, entry, look, stop);
    if (made.result.changed && entry.identity) {
        entry.identity->changed = *made.result.changed;
        m_givers.learnChanged({copy.device, copy.inode}, *made.result.changed);
    }
    return made;
}

bool ShareDoor::isOneSpace(const SharePair& pair) {
    const std::uint64_t ours = pair.held.attributes.device;
    const std::uint64_t theirs = pair.keptNow.device;
    return ours == theirs ||
           m_givers.space(ours, pair.held.path) == m_givers.space(theirs, pair.kept.path);
}

// Only looking changes nothing, and reads nothing.
SysResult<ShareEnd> ShareDoor::stretchesOf(const SharePair& pair, const std::atomic<bool>& stop) {
    const FileAttributes& copy = pair.held.attributes;
    const int target = pair.file.get();
    const int source = pair.keptFile.get();
    if (m_withoutExtents.contains(copy.device)) return tl::unexpected(EOPNOTSUPP);
    if (!isOneSpace(pair)) return tl::unexpected(EXDEV);
    if (!m_order.onlyLooks) return shareContents(m_files, source, target, copy.size, stop);
    const auto would = trySharing(target, copy.size);
    if (!would) return tl::unexpected(would.error());
    if (isWrittenInPlace(source) != isWrittenInPlace(target)) return tl::unexpected(EINVAL);
    return ShareEnd::Shared;
}

// How many names of the file were only looked at, this one included; a real run sees what is left.
std::uint32_t ShareDoor::nameLooked(const SharePair& pair) {
    if (!m_order.onlyLooks) return 1;
    return ++m_looked[{pair.held.attributes.device, pair.held.attributes.inode}];
}

ShareDoor::Attempt ShareDoor::shareExtents(const SharePair& pair, const std::atomic<bool>& stop) {
    const HeldEntry& held = pair.held;
    const SysResult<ShareEnd> end = stretchesOf(pair, stop);
    const bool isOneSystem = held.attributes.device == pair.keptNow.device;
    if (!end && isOneSystem && isUnknownToSystem(end.error()))
        m_withoutExtents.insert(held.attributes.device);
    if (end && *end == ShareEnd::Stopped) {
        RemovalResult result;
        result.stopped = true;
        return {result};
    }
    // Cut or longer meanwhile: a stretch behind the end is refused like one that is none.
    if (!m_order.onlyLooks && !pair.isUnchanged(m_files))
        return {stayedWith({held.path, std::string(stay::changed), StayReason::Changed})};
    if (end && *end == ShareEnd::Different)
        return {stayedWith({held.path, std::string(stay::otherContents), StayReason::NoCopy})};
    if (!end) return {stayedWith(withoutExtents(held.path, end.error())), isNoWay(end.error())};
    const bool isFirstName = nameLooked(pair) == 1;
    return {sharedBy(SharedBy::Extents, pair, isFirstName ? held.attributes.onDisk : 0)};
}

// What stays may have been written just before the plan was made: it is on the disk before what was
// there for longer goes. Since then it has not changed, so that once for each disk is enough.
int ShareDoor::writeOut(const SharePair& pair) {
    if (m_writtenOut.contains(pair.keptNow.device)) return 0;
    const auto written = writeOutFileSystem(pair.keptFile.get());
    if (!written) return written.error();
    m_writtenOut.insert(pair.keptNow.device);
    return 0;
}

ShareDoor::Attempt ShareDoor::link(const SharePair& pair, const LeavingEntry& entry, CopyLook& look,
                                   const std::atomic<bool>& stop) {
    const HeldEntry& held = pair.held;
    if (const auto why = m_order.objectionToLink(pair.kept, pair.keptNow.links); !why.empty())
        return {stayedWith({held.path, std::string(why), StayReason::Protected}), true};
    std::uint32_t names = pair.keptNow.links;
    if (m_order.onlyLooks) names += m_promised[{pair.keptNow.device, pair.keptNow.inode}];
    if (auto reason = objectionToLink(m_ground, pair, names))
        return {stayedWith(std::move(reason->why)), reason->isOfThese};
    if (m_order.onlyLooks) {
        ++m_promised[{pair.keptNow.device, pair.keptNow.inode}];
        const bool isLastName = nameLooked(pair) >= held.attributes.links;
        return {sharedBy(SharedBy::HardLink, pair, isLastName ? held.attributes.onDisk : 0)};
    }
    if (const int error = writeOut(pair); error != 0)
        return {
            stayedWith({held.path, systemError("sync", {}, error).reason(), stayReasonOf(error)})};
    LinkEnd end = linkCopy(m_files, m_ground, pair, entry, look, stop);
    learn(pair, end);
    return {std::move(end.result), end.isOfThese};
}

void ShareDoor::learn(const SharePair& pair, const LinkEnd& end) {
    const std::pair keptFile{pair.keptNow.device, pair.keptNow.inode};
    const auto& shared = end.result.shared;
    if (shared && shared->keptChanged) m_givers.learnChanged(keptFile, *shared->keptChanged);
    if (!end.keptChanged) return;
    m_givers.learnChanged(keptFile, *end.keptChanged);
    if (m_order.takenBack)
        m_order.takenBack({SharedBy::HardLink, pair.kept.path, 0, keptFile, end.keptChanged});
}

}  // namespace orrinvale
