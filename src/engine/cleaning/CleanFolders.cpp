// Folders are compared with their links resolved, as they were when the object was made.
#include "engine/cleaning/CleanFolders.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>

#include "engine/cleaning/FolderUtilities.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/folders.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// sudo and su leave a person's folders to root, each by a variable of its own; root's programs
// would leave root's files there.
bool isSomebodyElses(const std::string& folder) {
    struct stat entry {};
    return ::geteuid() == 0 && ::stat(folder.c_str(), &entry) == 0 && entry.st_uid != 0;
}

std::string objectionOf(const std::optional<CleanFolders::Folder>& folder) {
    return folder ? folder->objection : std::string();
}

}  // namespace

CleanFolders::CleanFolders(const FileSystem& files, const Folders& folders,
                           const FolderUtilities& utilities)
    : m_files(files),
      m_systemCaches(folders.systemCaches()),
      m_systemLogs(folders.systemLogs()),
      m_isForeignHome(isSomebodyElses(folders.home())) {
    for (const CleanCategoryNames& each : cleanCategories)
        for (const std::string& path :
             utilities.getFolderPath(static_cast<std::uint32_t>(each.category))) {
            std::string real = files.resolved(path).value_or(path);
            const auto identity = identityOf(real);
            m_roots.push_back({std::move(real), each.category, identity});
        }
    for (const std::string& path : folders.otherUserFolders()) {
        std::string real = files.resolved(path).value_or(path);
        const auto identity = identityOf(real);
        m_others.push_back({std::move(real), identity});
    }
}

std::optional<CleanFolders::Identity> CleanFolders::identityOf(const std::string& real) const {
    const auto entry = m_files.attributes(FileSystem::noParent, real.c_str(), Links::Keep);
    return entry ? std::optional(Identity{entry->device, entry->inode}) : std::nullopt;
}

CleanCategory CleanFolders::rulesFor(std::string_view path) const {
    const Root* innermost = nullptr;
    for (const Root& root : m_roots)
        if (isWithin(path, root.real) &&
            (innermost == nullptr || root.real.size() > innermost->real.size()))
            innermost = &root;
    return innermost != nullptr ? innermost->category : CleanCategory::UserCaches;
}

std::optional<CleanFolders::Folder> CleanFolders::lookAt(const std::string& path) const {
    Folder folder{.path = path, .real = path};
    const auto entry = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    if (!entry && (entry.error() == ENOENT || entry.error() == ENOTDIR)) return std::nullopt;
    if (!entry) {
        folder.objection = systemError("open", path, entry.error()).reason();
        return folder;
    }
    folder.real = withoutLinks(path);
    folder.isSingle = entry->type == FileType::Regular;
    if (entry->type == FileType::SymbolicLink) folder.objection = "the folder is a link";
    else if (entry->type != FileType::Folder && !folder.isSingle)
        folder.objection = "it is no folder";
    else folder.objection = objectionTo(folder);
    return folder;
}

// Its last component may be a link.
std::string CleanFolders::withoutLinks(const std::string& path) const {
    const auto above = m_files.resolved(folderOf(path));
    return above ? joinPath(*above, lastPathComponent(path)) : path;
}

std::string CleanFolders::objectionToEntry(const std::string& path) const {
    const std::string real = withoutLinks(path);
    const auto isRoot = [&](const Root& root) { return root.real == real; };
    if (std::ranges::any_of(m_roots, isRoot)) {
        const auto single = lookAt(path);
        return single && !single->isSingle ? "it is a folder of a category" : objectionOf(single);
    }
    const auto isBelow = [&](const Root& root) { return isWithin(root.real, real); };
    if (std::ranges::any_of(m_roots, isBelow)) return "a folder of a category lies in it";
    return objectionOf(lookAt(folderOf(path)));
}

std::string CleanFolders::objectionTo(const Folder& folder) const {
    const CleanCategory category = rulesFor(folder.real);
    if (m_isForeignHome && !isOfTheSystem(category)) return "the home folder is somebody else's";
    if (!isOfTheSystem(category) && isSomebodyElses(folder.real))
        return "the folder is somebody else's";
    const auto identity = identityOf(folder.real);
    for (const Other& other : m_others) {
        if (other.real == folder.real || (identity && other.identity == identity))
            return "the folder is for other things as well";
        if (isWithin(other.real, folder.real)) return fmt::format("{} lies in it", other.real);
    }
    for (const Root& root : m_roots) {
        if (isWithin(root.real, folder.real) &&
            (root.real != folder.real || root.category != category))
            return fmt::format("{} lies in it", root.real);
        if (root.category != category && identity && root.identity == identity)
            return fmt::format("it is {} by another path", root.real);
    }
    return {};
}

}  // namespace orrinvale
