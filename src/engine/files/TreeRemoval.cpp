// A list of levels in place of the call stack, of which the innermost are held open.
#include "engine/files/TreeRemoval.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <mutex>
#include <utility>

#include "engine/files/TreeSize.h"
#include "platform/error.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

// Few enough for a process that may open 256 files and runs several removals; trees of people are
// seldom deeper.
constexpr std::size_t heldLevels = 24;

// Some file systems leave entries out of a listing while others are removed, and a running program
// may write new ones.
constexpr unsigned mostPasses = 4;

// Fewer entries than these are gone before another thread has come; and how many each takes at
// once.
constexpr std::size_t worthTwo = 64;
constexpr std::size_t piece = 16;

constexpr const char* changedSince = "changed since the scan";
// Said of what came later, and of what a scan that was stopped did not reach.
constexpr const char* notSeen = "not seen by the scan";
constexpr const char* mountPoint = "a mount point";

bool isSame(const FileAttributes& now, std::uint64_t device, std::uint64_t inode) {
    return now.device == device && now.inode == inode;
}

}  // namespace

void TreeRemoval::run(int parent, const std::string& name, const FileAttributes& folder) {
    m_parent = parent;
    m_start = folder;
    enter(name, nullptr);
    while (!m_levels.empty() && !isStopped()) {
        auto& inner = m_levels.back().folders;
        if (inner.empty()) {
            leave();
            continue;
        }
        std::string next = std::move(inner.back());
        inner.pop_back();
        enter(std::move(next), nullptr);
    }
}

bool TreeRemoval::isStopped() {
    if (m_stop != nullptr && m_stop->load(std::memory_order_relaxed)) m_result.stopped = true;
    return m_result.stopped;
}

// `former` is the same folder when it was emptied before: only that one may be emptied again.
void TreeRemoval::enter(std::string name, const Level* former) {
    auto opened = m_files.openInside(here(), name.c_str());
    if (!opened) return withoutEntering(name, opened.error());
    const auto now = m_files.attributes(opened->get());
    if (!now) return failWith(name, now.error());
    const bool isStart = m_levels.empty();
    if (isStart && !isSame(*now, m_start.device, m_start.inode))
        return fail(name, StayReason::Changed, changedSince);
    if (former != nullptr && !isSame(*now, former->device, former->inode))
        return failWith(name, ENOTEMPTY);
    if (now->device != m_start.device || now->mount != m_start.mount)
        return fail(name, StayReason::Protected, mountPoint);
    const auto key = isStart             ? SeenEntries::chosenFolder
                     : former != nullptr ? former->key
                                         : keyOf(name, now->inode);
    if (!isStart && former == nullptr && !isAsSeen(name, *now, key)) return;
    push({.name = std::move(name),
          .folder = std::move(*opened),
          .device = now->device,
          .inode = now->inode,
          .key = key,
          .folders = {},
          .pass = former == nullptr ? 0 : former->pass + 1});
    removeFiles();
}

void TreeRemoval::withoutEntering(const std::string& name, int error) {
    if (error == ENOENT) return;
    if (error == EXDEV) return fail(name, StayReason::Protected, mountPoint);
    const bool noFolder = error == ENOTDIR || error == ELOOP;
    if (noFolder && m_levels.empty()) return fail(name, StayReason::Changed, changedSince);
    std::optional<EntryIdentity> identity;
    if (m_seen != nullptr && !m_levels.empty()) {
        const auto now = m_files.attributes(here(), name.c_str(), Links::Keep);
        if (!now && now.error() != ENOENT) return failWith(name, now.error());
        if (!now || !isAsSeen(name, *now, keyOf(name, now->inode))) return;
        identity = EntryIdentity::of(*now);
    }
    // A folder that became a link or a file goes by its name, and one that may not be read goes if
    // it is empty.
    const auto removal =
        m_files.removeEntry(here(), name.c_str(), noFolder ? FileType::Unknown : FileType::Folder);
    if (!went(removal)) failWith(name, noFolder ? removal.error() : error, identity);
}

SeenEntries::Key TreeRemoval::keyOf(std::string_view name, std::uint64_t inode) const {
    return m_seen != nullptr ? m_seen->keyOf(m_levels.back().key, name, inode)
                             : SeenEntries::chosenFolder;
}

// False, and told, when the scan did not see this of the folder in hand.
bool TreeRemoval::isAsSeen(std::string_view name, const FileAttributes& now, SeenEntries::Key key) {
    if (m_seen == nullptr) return true;
    switch (m_seen->verdictOn(key, SeenState::of(m_own.withoutOurs(now)))) {
        case SeenEntries::Verdict::AsSeen: return true;
        case SeenEntries::Verdict::Changed: fail(name, StayReason::Changed, changedSince); break;
        case SeenEntries::Verdict::Unseen: fail(name, StayReason::CameLater, notSeen); break;
    }
    return false;
}

void TreeRemoval::push(Level level) {
    m_levels.push_back(std::move(level));
    if (m_levels.size() > heldLevels) m_levels[m_levels.size() - 1 - heldLevels].folder.reset();
}

// Removes what is no folder and notes the folders.
void TreeRemoval::removeFiles() {
    for (;;) {
        const auto more = m_files.readFolder(here(), m_batch);
        if (!more) return failWith({}, more.error());
        if (!*more) return;
        if (m_second != nullptr && m_seen != nullptr && m_batch.entries.size() >= worthTwo)
            removePlainOnes();
        for (CatalogEntry& entry : m_batch.entries) {
            if (isStopped()) return;
            if (entry.name == nullptr) continue;  // gone
            if (entry.type == FileType::Folder) m_levels.back().folders.emplace_back(entry.name);
            else if (m_seen != nullptr) removeSeen(entry);
            else removeFile(entry);
        }
    }
}

// Half of the work of the system for a file that goes is its own, and need not wait for the folder.
void TreeRemoval::removePlainOnes() {
    auto& entries = m_batch.entries;
    std::atomic<std::size_t> next{0};
    std::mutex mutex;  // guards m_result
    m_second->run([&] {
        RemovalResult ofThisThread;
        for (std::size_t at = next.fetch_add(piece); at < entries.size();
             at = next.fetch_add(piece)) {
            const std::size_t end = std::min(at + piece, entries.size());
            for (; at < end && (m_stop == nullptr || !*m_stop); ++at)
                if (removePlain(entries[at], ofThisThread)) entries[at].name = nullptr;
        }
        const std::lock_guard lock(mutex);
        m_result.addEarlier(ofThisThread);
    });
}

// Leaves alone what has anything special about it, and what fails.
bool TreeRemoval::removePlain(CatalogEntry& entry, RemovalResult& result) {
    if (entry.type == FileType::Folder) return false;
    const SeenEntries::Key key = keyOf(entry.name, entry.inode);
    m_seen->expect(key);
    m_files.readIdentities(here(), {&entry, 1});
    const FileAttributes& now = entry.attributes;
    if (entry.error != 0 || now.type == FileType::Folder || now.links > 1 ||
        now.inode != entry.inode ||
        m_seen->verdictOn(key, SeenState::of(now)) != SeenEntries::Verdict::AsSeen ||
        hasWriter(m_files, here(), entry.name, now, m_ask) ||
        !m_files.removeEntry(here(), entry.name, FileType::Unknown))
        return false;
    ++result.removed;
    result.addName(countedSize(now), now.type == FileType::Regular);
    return true;
}

void TreeRemoval::removeFile(const CatalogEntry& entry) {
    const auto removal = m_files.removeEntry(here(), entry.name, FileType::Unknown);
    if (went(removal)) return;
    if (removal.error() == EISDIR) m_levels.back().folders.emplace_back(entry.name);
    else failWith(entry.name, removal.error());
}

// The look comes right before the removal, one entry at a time: a look at many would leave a longer
// gap, and costs as much.
void TreeRemoval::removeSeen(CatalogEntry& entry) {
    SeenEntries::Key key = keyOf(entry.name, entry.inode);
    m_seen->expect(key);  // comes in while the file system is asked
    m_files.readIdentities(here(), {&entry, 1});
    if (entry.error == ENOENT) return;
    if (entry.error != 0) return failWith(entry.name, entry.error);
    const FileAttributes& now = entry.attributes;
    if (now.type == FileType::Folder) return void(m_levels.back().folders.emplace_back(entry.name));
    if (now.inode != entry.inode) key = keyOf(entry.name, now.inode);  // layers list other numbers
    if (!isAsSeen(entry.name, now, key)) return;
    if (hasWriter(m_files, here(), entry.name, now, m_ask))
        return fail(entry.name, StayReason::Kept, openForWriting);
    const bool isFirst = now.type == FileType::Regular && !m_own.touched(now);
    const auto removal = m_own.removeName(m_files, here(), entry.name, now);
    if (removal) m_result.addName(countedSize(now), isFirst);
    if (went(removal)) return;
    if (removal.error() == ESTALE) fail(entry.name, StayReason::Changed, changedSince);
    else failWith(entry.name, removal.error(), EntryIdentity::of(now));
}

void TreeRemoval::leave() {
    const Level done = std::move(m_levels.back());
    m_levels.pop_back();
    const int lost = m_levels.empty() ? 0 : returnTo(m_levels.back(), done);
    if (lost != 0) {
        if (lost == ESTALE) fail({}, StayReason::Changed, "moved meanwhile");
        else failWith({}, lost);
        m_levels.clear();  // what is left of them is out of reach
        return;
    }
    if (!done.stays) return removeEmptied(done);
    if (!m_levels.empty()) m_levels.back().stays = true;
}

void TreeRemoval::removeEmptied(const Level& done) {
    std::optional<EntryIdentity> identity;
    if (m_seen != nullptr) {  // an empty folder that came into its place is nobody's to take
        const auto now = m_files.attributes(here(), done.name.c_str(), Links::Keep);
        if (now && !isSame(*now, done.device, done.inode))
            return fail(done.name, StayReason::CameLater, notSeen);
        if (now) identity = EntryIdentity::of(*now);
    }
    const auto removal = m_files.removeEntry(here(), done.name.c_str(), FileType::Folder);
    if (went(removal)) return;
    if (removal.error() == ENOTEMPTY && done.pass < mostPasses) return enter(done.name, &done);
    if (removal.error() == ENOTDIR) return withoutEntering(done.name, ENOTDIR);
    failWith(done.name, removal.error(), identity);
}

// 0, or the error of the system; ESTALE when the folder above is another one by now.
int TreeRemoval::returnTo(Level& above, const Level& from) {
    if (above.folder.isOpen()) return 0;
    auto opened = m_files.openFolder(from.folder.get(), "..", Links::Keep);
    if (!opened) return opened.error();
    const auto now = m_files.attributes(opened->get());
    if (!now) return now.error();
    if (!isSame(*now, above.device, above.inode)) return ESTALE;
    above.folder = std::move(*opened);
    return 0;
}

// True when the entry is not there any more, by us or by somebody else.
bool TreeRemoval::went(const SysResult<void>& removal) {
    if (removal) {
        ++m_result.removed;
        m_isOurs = m_levels.empty();
    }
    return removal || removal.error() == ENOENT;
}

// An entry of the folder in hand, or that folder itself for an empty name.
void TreeRemoval::fail(std::string_view name, StayReason kind, std::string reason,
                       const std::optional<EntryIdentity>& identity) {
    if (!m_levels.empty()) m_levels.back().stays = true;
    ++m_result.failed;
    // Rights and faults come before what only changed or came, of which there may be many.
    const bool isFull = m_result.failures.size() >= RemovalResult::mostFailures;
    if (isFull && (isByRule(kind) || !isByRule(m_result.failures.back().kind))) return;
    if (isFull) m_result.failures.pop_back();
    std::string path = m_path;
    for (std::size_t level = 1; level < m_levels.size(); ++level)
        path += '/' + m_levels[level].name;
    if (!m_levels.empty() && !name.empty()) (path += '/') += name;
    m_result.failures.push_back({std::move(path), std::move(reason), kind, identity});
}

void TreeRemoval::failWith(std::string_view name, int error,
                           const std::optional<EntryIdentity>& identity) {
    fail(name, stayReasonOf(error), systemError("remove", {}, error).reason(), identity);
}

}  // namespace orrinvale
