// A folder directly in the start is a row, and what is below it adds to that row; a row is complete
// when the last of its folders is let go of.
#include "engine/cleaning/CleanWalk.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>
#include <tuple>

#include "engine/base/saturating.h"
#include "engine/files/TreeSize.h"
#include "platform/files.h"

namespace orrinvale {

/// A row while it is being added up.
struct CleanWalk::RowState {
    CleanRow row;
    std::uint32_t place = 0;      // in the listing
    std::string real;             // its path without links
    bool keepsSomething = false;  // the person asked to keep something below it
    std::mutex mutex;             // guards the row and `seen`
    std::shared_ptr<SeenEntries> seen;
};

/// A folder of the walk: the start, which has no row, or one of a row.
struct CleanWalk::Here : WalkedFolder {
    CleanWalk* walk = nullptr;
    RowState* row = nullptr;
    SeenEntries::Key key = SeenEntries::chosenFolder;
    bool isKept = false;  // all below it stays, and the rest of the row need not
    bool isTop = false;

    bool isListed = false;

    ~Here() override {
        if (row == nullptr || walk == nullptr) return;
        if (!isListed) walk->noteUnread(*row);
        if (isTop) walk->finish(*row);
    }
};

/// What one piece of a folder adds to its row.
struct CleanWalk::Tally {
    std::uint64_t bytes = 0, onDisk = 0, files = 0, keptBytes = 0;
    std::int64_t newest = 0;
    KeptBecause kept = KeptBecause::Nothing;
    std::string_view words;
    std::vector<std::pair<SeenEntries::Key, SeenState>> seen;
    struct Link {
        std::uint64_t device, inode, links, onDisk;
    };
    std::vector<Link> linked;
    std::vector<File> going;

    // The weightiest reason, and of several of one kind always the same words.
    void note(KeptBecause reason, std::string_view itsWords) {
        if (std::tie(kept, words) <= std::tie(reason, itsWords)) return;
        kept = reason;
        words = itsWords;
    }
    void note(KeptBecause reason) { note(reason, wordsOf(reason)); }
};

namespace {

// A time of writing can be set to anything; that of change can not.
std::int64_t ageOf(const FileAttributes& entry, std::int64_t now) {
    return entry.modified > now ? entry.changed : std::max(entry.modified, entry.changed);
}

// Of a row that can not be looked at again. What became of one that is gone the removal tells.
KeptBecause unlessGone(int error) {
    if (error == ENOENT || error == ENOTDIR || error == ELOOP) return KeptBecause::Nothing;
    return error == EXDEV ? KeptBecause::Mount : KeptBecause::Unread;
}

}  // namespace

// A folder of programs may lie behind a link, whose target's name says nothing of them.
KeptBecause keptByPrograms(const CleanGround& ground, CleanCategory rules, std::string_view row,
                           const std::string& real, const EntryIdentity& entry) {
    if (!CleanablePlaces::isMindfulOfPrograms(rules)) return KeptBecause::Nothing;
    const bool isCache = rules == CleanCategory::UserCaches;
    const std::array names{CleanablePlaces::programNamesOf(ground.real, row),
                           CleanablePlaces::programNamesOf(ground.folder, row)};
    if (isCache && std::ranges::any_of(names, CleanablePlaces::isPrecious))
        return KeptBecause::Precious;
    if (ground.open->isWithin(real) || ground.open->contain(entry.device, entry.inode))
        return KeptBecause::Open;
    const auto isHidden = [&](const CleanablePlaces::ProgramNames& each) {
        const auto& hidden = ground.open->hiddenPrograms;
        return hidden.contains(each.row) || hidden.contains(each.owner);
    };
    return std::ranges::any_of(names, isHidden) ? KeptBecause::HiddenProgram : KeptBecause::Nothing;
}

KeptBecause keptByJournal(const FileSystem& files, CleanCategory rules, int folder,
                          const std::string& path, std::uint64_t size) {
    const std::string name(lastPathComponent(path));
    if (!CleanablePlaces::mayBeDatabase(name, size)) return KeptBecause::Nothing;
    KeptBecause reason = KeptBecause::Nothing;
    for (const std::string_view ending : {"-wal", "-journal", "-shm"}) {
        const auto journal =
            files.attributes(folder, (path + std::string(ending)).c_str(), Links::Keep);
        if (journal)
            reason = std::min(reason, CleanablePlaces::keepsRow(rules, name + std::string(ending),
                                                                journal->type, journal->size));
    }
    return reason;
}

CleanWalk::CleanWalk(const FileSystem& files, const CleanGround& ground, const Watch& watch)
    : FolderWalk(files, watch.stop, watch.skipped),
      m_ground(ground),
      m_watch(watch),
      m_isOfTheSystem(ground.places->isOfTheSystem(ground.real)),
      m_isUserCache(ground.rules == CleanCategory::UserCaches),
      m_minds(CleanablePlaces::isMindfulOfPrograms(ground.rules)) {}

CleanWalk::~CleanWalk() = default;

std::vector<CleanRow> CleanWalk::rows(Descriptor folder) {
    auto start = std::make_unique<Here>();
    start->walk = this;
    walk(std::move(start), m_ground.folder, std::move(folder));
    std::sort(m_rows.begin(), m_rows.end(),
              [](const auto& a, const auto& b) { return a->place < b->place; });
    creditLinked();
    std::vector<CleanRow> out;
    out.reserve(m_rows.size());
    for (const auto& state : m_rows) out.push_back(std::move(state->row));
    m_rows.clear();
    return out;
}

CleanRow CleanWalk::one(int parent, const std::string& name, const FileAttributes& entry) {
    auto& state = *m_rows.emplace_back(std::make_unique<RowState>());
    startRow(state, entry, name);
    if (entry.type != FileType::Folder) {
        Here here;
        here.row = &state;
        Tally tally;
        tally.note(keptByJournal(m_files, m_ground.rules, parent, name, entry.size));
        takeFile(here, {.name = name.c_str(), .type = entry.type, .attributes = entry}, tally);
        fold(state, tally);
    } else if (state.row.kept != KeptBecause::Mount) {
        auto folder = m_files.openInside(parent, name.c_str());
        if (folder) walkRow(state, std::move(*folder));
        else noteUnread(state);
    }
    finish(state);
    creditLinked();
    return std::move(state.row);
}

// A file with several names gives something back when the last of them goes.
void CleanWalk::creditLinked() {
    const auto goes = [](const RowState* each) { return !each->row.staysWhole(); };
    for (const auto& [file, linked] : m_linked)
        if (linked.met == linked.links && std::ranges::all_of(linked.rows, goes))
            addSaturating(linked.rows.front()->row.onDisk, linked.onDisk);
}

void CleanWalk::walkRow(RowState& state, Descriptor folder) {
    auto start = std::make_unique<Here>();
    start->walk = this;
    start->row = &state;
    walk(std::move(start), state.row.path, std::move(folder));
}

KeptBecause CleanWalk::askAgain(const CleanRow& row, int parent, std::vector<File>* going) {
    m_former = &row;
    m_going = going;
    const std::string name(lastPathComponent(row.path));
    const auto now = m_files.attributes(parent, name.c_str(), Links::Keep);
    if (!now) return unlessGone(now.error());
    auto& state = *m_rows.emplace_back(std::make_unique<RowState>());
    startRow(state, *now, name);
    if (now->type == FileType::Folder && state.row.kept != KeptBecause::Mount) {
        auto folder = m_files.openInside(parent, name.c_str());
        if (!folder) return unlessGone(folder.error());
        walkRow(state, std::move(*folder));
    }
    finish(state);
    return state.row.staysWhole() ? state.row.kept : KeptBecause::Nothing;
}

void CleanWalk::startRow(RowState& state, const FileAttributes& entry,
                         const std::string& name) const {
    state.row.path = joinPath(m_ground.folder, name);
    state.real = joinPath(m_ground.real, name);
    state.row.identity = EntryIdentity::of(entry);
    state.row.identity.inodePasses = m_ground.inodesPass;
    state.row.rules = m_ground.rules;
    state.row.newest = ageOf(entry, m_ground.now);
    if (entry.type == FileType::Folder) state.row.onDisk = entry.onDisk;
    judgeRow(state);
    if (entry.type == FileType::Folder && state.row.kept != KeptBecause::Mount)
        state.seen = std::make_shared<SeenEntries>(m_ground.inodesPass);
}

// What can be told of a row without looking into it.
void CleanWalk::judgeRow(RowState& state) const {
    Tally tally;
    const std::string name(lastPathComponent(state.row.path));
    const auto isBelow = [&](const std::string& mount) { return isWithin(mount, state.real); };
    if (m_ground.keep->keeps(state.real)) tally.note(KeptBecause::Asked);
    if (std::any_of(m_ground.mounts.begin(), m_ground.mounts.end(), isBelow))
        tally.note(KeptBecause::Mount);
    tally.note(keptByPrograms(m_ground, m_ground.rules, name, state.real, state.row.identity));
    tally.note(CleanablePlaces::keepsRow(m_ground.rules, name, state.row.identity.type,
                                         state.row.identity.size));
    state.row.kept = tally.kept;
    state.row.keptWords = tally.words;
    state.keepsSomething = m_ground.keep->keepsBelow(state.real);
    state.row.goesWhole = !m_isOfTheSystem && !state.keepsSomething;
}

void CleanWalk::take(Worker& worker, WalkedFolder& folder, std::uint32_t first) {
    auto& here = static_cast<Here&>(folder);
    const auto count = [this] {
        if (m_watch.entries != nullptr) m_watch.entries->fetch_add(1, std::memory_order_relaxed);
    };
    if (here.row == nullptr) {
        for (CatalogEntry& entry : worker.batch.entries) {
            if (stopped()) return;
            takeRow(worker, here, entry, first++);
            count();
        }
        return;
    }
    Tally tally;
    for (CatalogEntry& entry : worker.batch.entries) {
        if (stopped()) break;
        takeEntry(worker, here, entry, tally);
        count();
    }
    fold(*here.row, tally);
}

void CleanWalk::takeRow(Worker& worker, Here& here, CatalogEntry& entry, std::uint32_t place) {
    m_files.readIdentities(here.handle.get(), {&entry, 1});
    if (entry.error == ENOENT) return;
    if (entry.error != 0) return skip("attributes", pathOf(here, entry.name), entry.error);
    auto state = std::make_unique<RowState>();
    state->place = place;
    startRow(*state, entry.attributes, entry.name);
    RowState& row = *state;
    {
        const std::lock_guard lock(m_mutex);
        m_rows.push_back(std::move(state));
    }
    Tally tally;
    Here in;
    in.row = &row;
    const bool isFolder = entry.attributes.type == FileType::Folder;
    if (isFolder && entry.attributes.device != here.device) tally.note(KeptBecause::Mount);
    const bool isEntered =
        isFolder && tally.kept == KeptBecause::Nothing && row.row.kept != KeptBecause::Mount;
    bool isKept = false;
    if (isFolder) isKept = staysByItself(in, entry, tally);
    else takeFile(in, entry, tally);
    if (entry.attributes.type == FileType::Regular)
        tally.note(keptByJournal(m_files, m_ground.rules, here.handle.get(), entry.name,
                                 entry.attributes.size));
    fold(row, tally);
    if (!isEntered) return finish(row);
    auto found = std::make_unique<Here>();
    found->text = entry.name;
    found->walk = this;
    found->row = &row;
    found->isKept = isKept;
    found->isTop = true;
    found->device = entry.attributes.device;
    found->inode = entry.attributes.inode;
    addFound(worker, here, found.release(), nullptr);
}

// Of an entry of a known kind with a plain name nothing has to be known a second time, but whether
// a program works with its cache: writing in place shows nowhere else.
bool CleanWalk::needsNoLook(const RowState& row, const CatalogEntry& entry) const {
    return m_former != nullptr && !m_isUserCache && row.row.goesWhole &&
           entry.type != FileType::Unknown && entry.type != FileType::Folder &&
           !CleanablePlaces::isJudgedBySize(entry.name);
}

bool CleanWalk::isOpen(std::uint64_t device, std::uint64_t inode) const {
    return m_minds && m_ground.open->contain(device, inode);
}

void CleanWalk::takeEntry(Worker& worker, Here& here, CatalogEntry& entry, Tally& tally) {
    if (needsNoLook(*here.row, entry)) {
        if (isOpen(here.row->row.identity.device, entry.inode)) tally.note(KeptBecause::Open);
        return tally.note(CleanablePlaces::keepsRow(m_ground.rules, entry.name, entry.type, 0));
    }
    m_files.readIdentities(here.handle.get(), {&entry, 1});
    if (entry.error == ENOENT) return;
    if (entry.error != 0) {
        tally.note(KeptBecause::Unread);
        return skip("attributes", pathOf(here, entry.name), entry.error);
    }
    const FileAttributes& now = entry.attributes;
    // Those of files are compared with what the scan saw, then.
    if (m_former == nullptr || now.type == FileType::Folder)
        tally.newest = std::max(tally.newest, ageOf(now, m_ground.now));
    if (!here.isKept) {
        tally.note(CleanablePlaces::keepsRow(m_ground.rules, entry.name, now.type, now.size));
        if (isOpen(now.device, now.inode)) tally.note(KeptBecause::Open);
    }
    if (now.type == FileType::Folder) takeFolder(worker, here, entry, tally);
    else takeFile(here, entry, tally);
}

void CleanWalk::takeFolder(Worker& worker, Here& here, const CatalogEntry& entry, Tally& tally) {
    const FileAttributes& now = entry.attributes;
    if (now.device != here.row->row.identity.device) return tally.note(KeptBecause::Mount);
    auto found = std::make_unique<Here>();
    found->text = entry.name;
    found->walk = this;
    found->row = here.row;
    found->key = here.row->seen->keyOf(here.key, entry.name, now.inode);
    found->isKept = here.isKept || staysByItself(here, entry, tally);
    found->device = now.device;
    found->inode = now.inode;
    if (!found->isKept) {
        if (here.row->row.goesWhole) addSaturating(tally.onDisk, now.onDisk);
        if (m_former == nullptr) tally.seen.emplace_back(found->key, SeenState::of(now));
        else compare(found->key, now, tally);
    }
    addFound(worker, here, found.release(), nullptr);
}

void CleanWalk::takeFile(const Here& here, const CatalogEntry& entry, Tally& tally) {
    const FileAttributes& now = entry.attributes;
    const std::uint64_t bytes = countedSize(now);
    if (here.isKept || staysByItself(here, entry, tally))
        return addSaturating(tally.keptBytes, bytes);
    addSaturating(tally.bytes, bytes);
    ++tally.files;
    if (now.links > 1) tally.linked.push_back({now.device, now.inode, now.links, now.onDisk});
    else addSaturating(tally.onDisk, now.onDisk);
    if (here.row->seen == nullptr) return;
    const auto key = here.row->seen->keyOf(here.key, entry.name, now.inode);
    if (m_former == nullptr) return void(tally.seen.emplace_back(key, SeenState::of(now)));
    compare(key, now, tally);
    if (m_going == nullptr) return;
    EntryIdentity identity = EntryIdentity::of(now);
    identity.inodePasses = m_ground.inodesPass;
    tally.going.push_back({pathOf(here, entry.name), identity, verdictOn(key, now)});
}

SeenEntries::Verdict CleanWalk::verdictOn(SeenEntries::Key key, const FileAttributes& now) const {
    return m_former->seen != nullptr ? m_former->seen->verdictOn(key, SeenState::of(now))
                                     : SeenEntries::Verdict::Unseen;
}

// A file whose time of change alone is new may be so by our own doing: its other name went. A time
// of writing that is to come was set, and tells nothing.
void CleanWalk::compare(SeenEntries::Key key, const FileAttributes& now, Tally& tally) const {
    if (!m_isUserCache) return;
    const auto verdict = verdictOn(key, now);
    const bool isWritten = verdict == SeenEntries::Verdict::Changed &&
                           now.modified > m_former->newest && now.modified <= m_ground.now;
    if (isWritten || verdict == SeenEntries::Verdict::Unseen) tally.note(KeptBecause::Changed);
}

// Whether a single entry stays, and what is in it, while the rest of its row may go.
bool CleanWalk::staysByItself(const Here& here, const CatalogEntry& entry, Tally& tally) {
    const FileType type = entry.attributes.type;
    if (m_isOfTheSystem) {
        const auto verdict = m_ground.places->verdict(realPathOf(here, entry.name), type);
        if (verdict.rule == CleanablePlaces::Rule::Stays) {
            tally.note(KeptBecause::Rule, verdict.reason);
            return true;
        }
        if (type == FileType::Regular && isOfToday(entry)) {
            tally.note(KeptBecause::Rule, "a program may be writing to it, by its date");
            return true;
        }
    }
    if (!here.row->keepsSomething || !m_ground.keep->keeps(realPathOf(here, entry.name)))
        return false;
    tally.note(KeptBecause::Rule, wordsOf(KeptBecause::Asked));
    return true;
}

// Some programs write to a file with the day in its name, which only looks rotated.
bool CleanWalk::isOfToday(const CatalogEntry& entry) const {
    constexpr std::int64_t day = 24LL * 3600 * 1'000'000'000;
    return m_ground.now - entry.attributes.modified < day &&
           CleanablePlaces::isDatedLog(entry.name);
}

// A row's own entry is asked about with nothing above it.
std::string CleanWalk::realPathOf(const Here& here, const char* name) const {
    if (here.name == nullptr) return here.row->real;
    return m_ground.real + pathOf(here, name).substr(m_ground.folder.size());
}

void CleanWalk::takeDeep(Worker& /*worker*/, WalkedFolder& folder) {
    auto& here = static_cast<Here&>(folder);
    here.isListed = true;
    Tally tally;
    tally.note(KeptBecause::TooDeep);
    fold(*here.row, tally);
}

// Not so where the reading of a listing failed in the middle; what it would have told is not seen,
// and stays.
void CleanWalk::listed(WalkedFolder& folder) { static_cast<Here&>(folder).isListed = true; }

void CleanWalk::noteUnread(RowState& state) {
    Tally tally;
    tally.note(KeptBecause::Unread);
    fold(state, tally);
}

void CleanWalk::fold(RowState& state, Tally& tally) {
    if (!tally.linked.empty()) {
        const std::lock_guard lock(m_mutex);
        for (const Tally::Link& each : tally.linked) {
            Linked& linked =
                m_linked
                    .try_emplace({each.device, each.inode}, Linked{each.links, 0, each.onDisk, {}})
                    .first->second;
            ++linked.met;
            if (linked.rows.empty() || linked.rows.back() != &state) linked.rows.push_back(&state);
        }
    }
    const std::lock_guard lock(state.mutex);
    CleanRow& row = state.row;
    addSaturating(row.bytes, tally.bytes);
    addSaturating(row.onDisk, tally.onDisk);
    addSaturating(row.keptBytes, tally.keptBytes);
    row.files += tally.files;
    row.newest = std::max(row.newest, tally.newest);
    tally.note(row.kept, row.keptWords);
    row.kept = tally.kept;
    row.keptWords = tally.words;
    for (const auto& [key, entry] : tally.seen) state.seen->add(key, entry);
    if (m_going != nullptr)
        std::move(tally.going.begin(), tally.going.end(), std::back_inserter(*m_going));
}

// The times of folders that we removed from tell of nobody else.
void CleanWalk::finish(RowState& state) {
    CleanRow& row = state.row;
    const bool isOurs = m_former != nullptr && m_former->isBegun;
    if (m_isUserCache && !isOurs && m_ground.now - row.newest < freshFor &&
        KeptBecause::Fresh < row.kept) {
        row.kept = KeptBecause::Fresh;
        row.keptWords = wordsOf(row.kept);
    }
    if (row.staysWhole()) {
        addSaturating(row.keptBytes, row.bytes);
        row.bytes = row.onDisk = row.files = 0;
        state.seen.reset();
    }
    row.seen = std::move(state.seen);
    if (!m_watch.complete) return;
    const std::lock_guard lock(m_mutex);
    m_watch.complete(row);
}

}  // namespace orrinvale
