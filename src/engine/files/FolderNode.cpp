// Paths of folders met by a scan, and the way back to such a folder. See FolderNode.h.
#include "engine/files/FolderNode.h"

#include <cerrno>
#include <cstring>

#include "platform/files.h"

namespace orrinvale {
namespace {

constexpr std::size_t longestPiece = 4000;  // below PATH_MAX (4096), which counts the closing NUL

}  // namespace

std::string pathOf(const FolderNode& folder, std::string_view name) {
    std::size_t length = name.size();
    const FolderNode* root = &folder;
    for (; root->parent != nullptr; root = root->parent) length += std::strlen(root->name) + 1;
    const std::string_view start(root->name);
    const bool slash = start.empty() || start.back() != '/';
    length += start.size() + (slash ? 1 : 0);

    // From the end to the start, so that no list of the ancestors is needed.
    std::string out(length, '/');
    std::size_t at = length - name.size();
    std::memcpy(out.data() + at, name.data(), name.size());
    for (const FolderNode* node = &folder; node->parent != nullptr; node = node->parent) {
        const std::size_t size = std::strlen(node->name);
        at -= size + 1;
        std::memcpy(out.data() + at, node->name, size);
    }
    std::memcpy(out.data(), start.data(), start.size());
    return out;
}

std::string pathOf(const FolderNode& folder) {
    if (folder.parent == nullptr) return folder.name;
    return pathOf(*folder.parent, folder.name);
}

SysResult<Descriptor> openFolderByPath(const FileSystem& files, const std::string& path,
                                       Links last) {
    return openFolderBelow(files, FileSystem::noParent, path, last);
}

SysResult<Descriptor> openFolderBelow(const FileSystem& files, int start, std::string_view relative,
                                      Links last) {
    const std::string path(relative);
    if (path.size() < longestPiece) return files.openFolder(start, path.c_str(), last);
    Descriptor base;
    int parent = start;
    std::size_t at = 0;
    while (at < path.size()) {
        std::size_t end = path.size();
        if (end - at >= longestPiece) {
            end = path.rfind('/', at + longestPiece);
            if (end == std::string::npos || end <= at) return tl::unexpected(ENAMETOOLONG);
        }
        const std::string piece = path.substr(at, end - at);
        auto next =
            files.openFolder(parent, piece.c_str(), end == path.size() ? last : Links::Follow);
        if (!next) return next;
        base = std::move(*next);
        parent = base.get();
        at = end;
        while (at < path.size() && path[at] == '/') ++at;
    }
    return base;
}

SysResult<Descriptor> reopenFolder(const FileSystem& files, const FolderNode& folder) {
    const bool follow = folder.throughLink || folder.parent == nullptr;
    auto opened = openFolderByPath(files, pathOf(folder), follow ? Links::Follow : Links::Keep);
    if (!opened || folder.inode == 0) return opened;
    const auto now = files.attributes(opened->get());
    if (!now) return tl::unexpected(now.error());
    if (now->device != folder.device || now->inode != folder.inode) return tl::unexpected(ESTALE);
    return opened;
}

}  // namespace orrinvale
