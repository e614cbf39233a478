// TreeRemoval: see TreeRemoval.h.
#include "engine/files/TreeRemoval.h"

#include <cerrno>
#include <utility>

#include "platform/error.h"

namespace orrinvale {
namespace {

// Few enough for a process that may open 256 files and runs several removals; trees of people are seldom deeper.
constexpr std::size_t heldLevels = 24;

// Some file systems leave entries out of a listing while others are removed, and a running program may write new ones.
constexpr unsigned mostPasses = 4;

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
    if (m_levels.empty() && !isSame(*now, m_start.device, m_start.inode)) return fail(name, "changed since the scan");
    if (former != nullptr && !isSame(*now, former->device, former->inode)) return failWith(name, ENOTEMPTY);
    if (now->device != m_start.device || now->mount != m_start.mount) return fail(name, "a mount point");
    push({.name = std::move(name),
          .folder = std::move(*opened),
          .device = now->device,
          .inode = now->inode,
          .folders = {},
          .pass = former == nullptr ? 0 : former->pass + 1});
    removeFiles();
}

void TreeRemoval::withoutEntering(const std::string& name, int error) {
    if (error == ENOENT) return;
    if (error == EXDEV) return fail(name, "a mount point");
    const bool noFolder = error == ENOTDIR || error == ELOOP;
    if (noFolder && m_levels.empty()) return fail(name, "changed since the scan");
    // A folder that became a link or a file goes by its name, and one that may not be read goes if it is empty.
    const auto removal = m_files.removeEntry(here(), name.c_str(), noFolder ? FileType::Unknown : FileType::Folder);
    if (!went(removal)) failWith(name, noFolder ? removal.error() : error);
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
        for (const CatalogEntry& entry : m_batch.entries) {
            if (isStopped()) return;
            int error = EISDIR;
            if (entry.type != FileType::Folder) {
                const auto removal = m_files.removeEntry(here(), entry.name, FileType::Unknown);
                error = went(removal) ? 0 : removal.error();
            }
            if (error == EISDIR) m_levels.back().folders.emplace_back(entry.name);
            else if (error != 0) failWith(entry.name, error);
        }
    }
}

void TreeRemoval::leave() {
    const Level done = std::move(m_levels.back());
    m_levels.pop_back();
    if (!m_levels.empty() && !returnTo(m_levels.back(), done)) {
        fail({}, "moved meanwhile");
        m_levels.clear();  // what is left of them is out of reach
        return;
    }
    if (done.stays) {
        if (!m_levels.empty()) m_levels.back().stays = true;
        return;
    }
    const auto removal = m_files.removeEntry(here(), done.name.c_str(), FileType::Folder);
    if (went(removal)) return;
    if (removal.error() == ENOTEMPTY && done.pass < mostPasses) return enter(done.name, &done);
    if (removal.error() == ENOTDIR) return withoutEntering(done.name, ENOTDIR);
    failWith(done.name, removal.error());
}

bool TreeRemoval::returnTo(Level& above, const Level& from) {
    if (above.folder.isOpen()) return true;
    auto opened = m_files.openFolder(from.folder.get(), "..", Links::Keep);
    if (!opened) return false;
    const auto now = m_files.attributes(opened->get());
    if (!now || !isSame(*now, above.device, above.inode)) return false;
    above.folder = std::move(*opened);
    return true;
}

// True when the entry is not there any more, by us or by somebody else.
bool TreeRemoval::went(const SysResult<void>& removal) {
    if (removal) ++m_result.removed;
    return removal || removal.error() == ENOENT;
}

// An entry of the folder in hand, or that folder itself for an empty name.
void TreeRemoval::fail(std::string_view name, std::string reason) {
    if (!m_levels.empty()) m_levels.back().stays = true;
    ++m_result.failed;
    if (m_result.failures.size() >= RemovalResult::mostFailures) return;
    std::string path = m_path;
    for (std::size_t level = 1; level < m_levels.size(); ++level) path += '/' + m_levels[level].name;
    if (!m_levels.empty() && !name.empty()) (path += '/') += name;
    m_result.failures.push_back({std::move(path), std::move(reason)});
}

void TreeRemoval::failWith(std::string_view name, int error) { fail(name, systemError("remove", {}, error).reason()); }

}  // namespace orrinvale
