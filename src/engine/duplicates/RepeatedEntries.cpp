// An entry is its folder, by device and inode, with its name; where numbers do not last, its
// resolved path.
#include "engine/duplicates/RepeatedEntries.h"

#include <algorithm>
#include <unordered_set>

#include "engine/duplicates/LinkPlaces.h"
#include "platform/files.h"

namespace orrinvale {

// The item by which the entry was seen before; null for a new one.
const fileAttrbItem* RepeatedEntries::Seen::add(const fileAttrbItem& item, Entry entry) {
    const auto [name, isNewName] = names.emplace(std::move(entry.name), &item);
    if (!isNewName) return name->second;
    if (entry.file == File{}) return nullptr;
    const auto [file, isNew] = files.emplace(entry.file, SeenFile{&item, entry.isOnly});
    if (isNew) return nullptr;
    file->second.isOnly |= entry.isOnly;
    return file->second.isOnly ? file->second.item : nullptr;
}

bool RepeatedEntries::isRepeated(Seen& seen, const fileAttrbItem& item, const Dropped& tell) {
    const fileAttrbItem* const first = seen.add(item, entryOf(item));
    if (first != nullptr) tell(*first, item);
    return first != nullptr;
}

const std::string& RepeatedEntries::placeOf(const FolderNode& folder) {
    const auto [place, isNew] = m_places.try_emplace(&folder);
    if (isNew) {
        const std::string path = pathOf(folder);
        place->second = m_files.resolved(path).value_or(path);
    }
    return place->second;
}

RepeatedEntries::Entry RepeatedEntries::entryOf(const fileAttrbItem& item) {
    if (item.type == FileType::SymbolicLink) return targetOf(item);
    const File file = item.inodePasses ? File{} : File{item.device, item.inode};
    if (item.folder->inode == 0)
        return {{0, 0, joinPath(placeOf(*item.folder), item.fileName())}, file, item.links < 2};
    return {{item.folder->device, item.folder->inode, std::string(item.fileName())},
            file,
            item.links < 2};
}

// A link is the entry that it points at; one that points nowhere is itself.
RepeatedEntries::Entry RepeatedEntries::targetOf(const fileAttrbItem& link) {
    const std::string path = m_files.resolved(link.filePathName()).value_or(link.filePathName());
    const auto target = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    const auto folder =
        m_files.attributes(FileSystem::noParent, folderOf(path).c_str(), Links::Follow);
    const bool passes =
        !target || !folder || std::ranges::binary_search(m_passingInodes, folder->device);
    if (passes) return {{0, 0, path}, {}, false};
    return {{folder->device, folder->inode, std::string(lastPathComponent(path))},
            {target->device, target->inode},
            target->links < 2};
}

void RepeatedEntries::dropFrom(FileArray& array, const Dropped& tell) {
    // A link to a file has the size of its own text, and must not put out the file.
    std::map<std::uint64_t, Seen> seen;
    std::unordered_set<const fileAttrbItem*> dropped;
    for (const bool behindLinks : {false, true})
        for (const fileAttrbItem* item : array.items())
            if (isBehindLink(*item->folder) == behindLinks &&
                isRepeated(seen[item->fileSize], *item, tell))
                dropped.insert(item);
    array.removeIf([&](const fileAttrbItem* item) { return dropped.contains(item); });
}

bool RepeatedEntries::mayRepeat(const FileList& group) {
    std::unordered_set<std::uint64_t> inodes;
    const bool isPair = group.size() == 2;  // nearly every group is one
    if (isPair && group[0]->inode == group[1]->inode) return true;
    return std::any_of(group.begin(), group.end(), [&](const fileAttrbItem* item) {
        if (item->inodePasses || item->type != FileType::Regular) return true;
        return !isPair && !inodes.insert(item->inode).second;
    });
}

void RepeatedEntries::dropFrom(FileList& group, const Dropped& tell) {
    if (!mayRepeat(group)) return;
    Seen seen;
    std::erase_if(group, [&](const fileAttrbItem* item) { return isRepeated(seen, *item, tell); });
}

}  // namespace orrinvale
