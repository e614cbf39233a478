// dropRepeatedEntries: see RepeatedEntries.h. Only a search that followed a link or met a mount needs it.
#include "engine/duplicates/RepeatedEntries.h"

#include <optional>
#include <set>
#include <tuple>

namespace orrinvale {
namespace {

// device, inode, and for a file with several hard links device and inode of the folder, and the name
using Entry = std::tuple<std::uint64_t, std::uint64_t, std::uint64_t, std::uint64_t, std::string>;

std::optional<Entry> entryAt(const FileSystem& files, const std::string& path, const FileAttributes& file) {
    if (file.links < 2) return Entry{file.device, file.inode, 0, 0, {}};
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos) return std::nullopt;
    const auto folder = openFolderByPath(files, path.substr(0, slash == 0 ? 1 : slash), Links::Follow);
    const auto identity = folder ? files.attributes(folder->get()) : tl::unexpected(folder.error());
    if (!identity) return std::nullopt;
    return Entry{file.device, file.inode, identity->device, identity->inode, path.substr(slash + 1)};
}

// What the item leads to. A link is the entry that it points at.
std::optional<Entry> entryOf(const FileSystem& files, const fileAttrbItem& item) {
    if (item.type != FileType::SymbolicLink) {
        if (item.links < 2) return Entry{item.device, item.inode, 0, 0, {}};
        return Entry{item.device, item.inode, item.folder->device, item.folder->inode, std::string(item.fileName())};
    }
    const auto path = files.resolved(item.filePathName());
    if (!path) return std::nullopt;
    const auto target = files.attributes(FileSystem::noParent, path->c_str(), Links::Keep);
    if (!target) return std::nullopt;
    return entryAt(files, *path, *target);
}

}  // namespace

void dropRepeatedEntries(const FileSystem& files, FileArray& array) {
    // Only files listed with one size can meet. A link to a file has the size of its own text, and must not put out the file.
    std::set<std::pair<std::uint64_t, Entry>> seen;
    array.removeIf([&](const fileAttrbItem* item) {
        auto entry = entryOf(files, *item);
        return entry && !seen.insert({item->fileSize, std::move(*entry)}).second;
    });
}

}  // namespace orrinvale
