// Here is the start; Measuring.h walks through folders.
#include "engine/files/TreeSize.h"

#include <cerrno>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/files/FolderNode.h"
#include "engine/files/Measuring.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {

Result<SizeTotals> TreeSize::ofEntry(int parent, const std::string& name,
                                     const std::string& shown) const {
    auto folder = m_files.openFolder(parent, name.empty() ? "." : name.c_str(), Links::Keep);
    if (folder) return Measuring(m_files, m_watch).run(shown, std::move(*folder));
    if (folder.error() != ENOTDIR && folder.error() != ELOOP)
        return tl::unexpected(systemError("open", shown, folder.error()));
    const auto entry = name.empty() ? m_files.attributes(parent)
                                    : m_files.attributes(parent, name.c_str(), Links::Keep);
    if (!entry) return tl::unexpected(systemError("attributes", shown, entry.error()));
    const SizeTotals one{.bytes = countedSize(*entry), .files = 1, .folders = 0};
    if (m_watch.counts != nullptr) addSaturating(m_watch.counts->bytes, one.bytes);
    if (m_watch.counts != nullptr) m_watch.counts->files.fetch_add(1);
    return one;
}

Result<SizeTotals> TreeSize::ofPath(const std::string& path) const {
    constexpr std::size_t longest = 4000;  // below PATH_MAX
    if (path.empty()) return tl::unexpected(systemError("open", path, ENOENT));
    const std::size_t begin = startOfLastComponent(path);
    if (path.size() < longest || begin == 0) return ofEntry(FileSystem::noParent, path, path);
    const auto parent = openFolderByPath(m_files, path.substr(0, begin), Links::Follow);
    if (!parent) return tl::unexpected(systemError("open", path, parent.error()));
    return ofEntry(parent->get(), path.substr(begin), path);
}

}  // namespace orrinvale
