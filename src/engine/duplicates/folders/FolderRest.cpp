// lookAt() is one folder; a tree that the walk did not enter is listed at once, its entries by
// their paths below the folder.
#include "engine/duplicates/folders/FolderRest.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include "engine/duplicates/BundleListing.h"
#include "engine/duplicates/HashAhead.h"
#include "engine/duplicates/scope/ProtectedFolders.h"
#include "engine/files/WorkCrew.h"
#include "platform/files.h"
#include "platform/linkText.h"
#include "platform/paths.h"

namespace orrinvale {

struct FolderRest::Task {
    std::uint32_t row = 0;
    std::vector<std::string_view> known;  // names that the table has already
    std::size_t met = 0;                  // of these
    std::uint64_t digest = 0, bytes = 0;
    std::uint32_t files = 0, entries = 0;
    bool holdsProtected = false;
    std::vector<Found> found;  // regular files that are not empty
};

std::vector<FolderRest::Task> FolderRest::tasks(const FileArray& listed) const {
    std::vector<Task> tasks;
    std::vector<std::uint32_t> taskOf(m_table.size(), FolderRow::none);
    for (std::uint32_t at = 0; at < m_table.size(); ++at)
        if (m_table[at].isCandidate && m_table[at].unseen() > 0) {
            taskOf[at] = static_cast<std::uint32_t>(tasks.size());
            tasks.emplace_back().row = at;
        }
    if (tasks.empty()) return tasks;
    const auto know = [&](std::uint32_t row, const char* name) {
        if (row != FolderRow::none && taskOf[row] != FolderRow::none)
            tasks[taskOf[row]].known.emplace_back(name);
    };
    for (const fileAttrbItem* file : listed.items())
        if (isOwnFile(*file)) know(m_table.rowOf(file->folder), file->name);
    for (std::uint32_t at = 0; at < m_table.size(); ++at)
        if (!m_table[at].seen.node->throughLink) know(m_table[at].parent, m_table.nameOf(at));
    return tasks;
}

void FolderRest::look(const FileArray& listed) {
    std::vector<Task> wanted = tasks(listed);
    WorkCrew crew;
    crew.forEach(wanted.size(), 1, m_stop, [&](std::size_t at, unsigned) { lookAt(wanted[at]); });
}

void FolderRest::lookAt(Task& task) {
    FolderRow& row = m_table[task.row];
    std::ranges::sort(task.known);
    const auto folder = reopenFolder(m_files, *row.seen.node);
    const bool isListed =
        folder ? list(task, folder->get()) : fail(task, "open", {}, folder.error());
    // What went meanwhile is no part of any group.
    if (isListed && task.met == task.known.size()) keep(task);
    else row.isOdd = true;
}

bool FolderRest::list(Task& task, int folder) {
    CatalogBatch batch;
    for (;;) {
        if (m_stop) return false;
        const auto more = m_files.readFolder(folder, batch);
        if (!more) return fail(task, "list", {}, more.error());
        if (!*more) return true;
        for (const CatalogEntry& entry : batch.entries)
            if (std::ranges::binary_search(task.known, std::string_view(entry.name))) ++task.met;
            else if (!take(task, folder, entry.name)) return false;
    }
}

bool FolderRest::take(Task& task, int folder, const char* name) {
    const auto seen = m_files.attributes(folder, name, Links::Keep);
    if (!seen) return fail(task, "attributes", name, seen.error());
    std::string text;
    if (seen->type == FileType::SymbolicLink) {
        auto link = linkText(folder, name);
        if (!link) return fail(task, "read the link", name, link.error());
        text = std::move(*link);
    }
    return add(task, name, *seen, text) &&
           (seen->type != FileType::Folder || takeTree(task, folder, name));
}

bool FolderRest::takeTree(Task& task, int folder, const char* name) {
    const auto inner = m_files.openFolder(folder, name, Links::Keep);
    if (!inner) return fail(task, "open", name, inner.error());
    const std::string shown = joinPath(m_table.pathOf(task.row), name);
    const auto tree = listBundleAt(m_files, inner->get(), shown, {}, m_stop);
    if (!tree) {
        if (tree.error().number != ECANCELED) m_skipped.add(tree.error());
        return false;
    }
    for (const BundleEntry& entry : tree->entries)
        if (!add(task, joinPath(name, entry.path), entry.attributes, entry.linkText)) return false;
    return true;
}

// Another file system, or the same one mounted there, is no part of the tree; a single file may be
// mounted too.
bool FolderRest::add(Task& task, std::string name, const FileAttributes& seen,
                     std::string_view linkText) {
    const FolderNode& node = *m_table[task.row].seen.node;
    ++task.entries;
    if (seen.mount != node.mount) return false;
    switch (seen.type) {
        case FileType::Folder:
            task.digest += entryDigest(name, seen.type);
            task.holdsProtected |= m_guard != nullptr && m_guard->isOneOrAbove(seen);
            return seen.device == node.device;
        case FileType::SymbolicLink:
            task.digest += entryDigest(name, seen.type, linkText.size(),
                                       std::hash<std::string_view>()(linkText));
            return true;
        case FileType::Regular: break;
        default: return false;
    }
    ++task.files;
    task.bytes += seen.size;
    task.digest += entryDigest(name, seen.type, seen.size);
    if (seen.size > 0) task.found.push_back({std::move(name), seen});
    return true;
}

void FolderRest::keep(Task& task) {
    FolderRow& row = m_table[task.row];
    row.isRestKnown = true;
    row.restDigest = task.digest;
    row.restFiles = task.files;
    row.restEntries = task.entries;
    row.restBytes = task.bytes;
    row.holdsProtected |= task.holdsProtected;
    if (task.found.empty()) return;
    const std::string folder = m_table.pathOf(task.row);
    const std::lock_guard lock(m_mutex);
    for (Found& file : task.found) {
        row.hasHardLinks |= file.attributes.links > 1;
        fileAttrbItem& item = m_items.add(joinPath(folder, file.name), file.attributes);
        item.inodePasses = row.seen.node->inode == 0;
        m_found.push_back({task.row, std::move(file.name), &item});
    }
}

void FolderRest::hash() {
    std::vector<const File*> wanted;
    FileList list;
    for (const File& file : m_found)
        if (m_table[file.row].isCandidate) {
            wanted.push_back(&file);
            list.push_back(file.item);
        }
    HashAhead hashes(m_files, list, m_stop, m_skipped);
    for (std::uint32_t at = 0; at < list.size(); ++at)
        if (const std::uint32_t next = hashes.nextInGroup(at); next != HashAhead::none)
            list[at]->isCopy = list[next]->isCopy = true;
    for (const File* file : wanted) {
        FolderRow& row = m_table[file->row];
        const fileAttrbItem& item = *file->item;
        if (!item.isCopy) row.isOdd = true;
        row.restDigest += entryDigest(file->name, FileType::Regular, item.fileSize,
                                      joined(item.md5, item.md5_1k)) -
                          entryDigest(file->name, FileType::Regular, item.fileSize);
    }
}

bool FolderRest::fail(const Task& task, std::string_view operation, std::string_view name,
                      int number) {
    const std::string folder = m_table.pathOf(task.row);
    if (number != ENOENT && number != ESTALE)
        m_skipped.add(
            systemError(operation, name.empty() ? folder : joinPath(folder, name), number));
    return false;
}

}  // namespace orrinvale
