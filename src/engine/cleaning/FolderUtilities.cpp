// Which folder belongs to which category, and how a folder's size is asked for.
#include "engine/cleaning/FolderUtilities.h"

#include <utility>

#include "engine/cleaning/QnAuthorization.h"
#include "engine/files/Catalog.h"
#include "engine/files/FolderNode.h"
#include "engine/files/bundleName.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::string withoutLastComponent(const std::string& path) {
    return std::string(withoutSlashesAtEnd(splitPath(withoutSlashesAtEnd(path)).folder));
}

std::vector<std::string> named(std::string path) {
    std::vector<std::string> out;
    if (!path.empty()) out.push_back(std::move(path));
    return out;
}

}  // namespace

FolderUtilities::FolderUtilities(const FileSystem& files, const Folders& folders,
                                 LocalVolumes localVolumes)
    : m_files(files), m_folders(folders), m_localVolumes(std::move(localVolumes)) {}

std::vector<std::string> FolderUtilities::getFolderPath(std::uint32_t index) const {
    switch (CleanCategory{index}) {
        case CleanCategory::SystemCaches: return named(m_folders.systemCaches());
        case CleanCategory::UserCaches: return userCaches();
        case CleanCategory::SystemLogs: return named(m_folders.systemLogs());
        case CleanCategory::UserLogs: return m_folders.userLogs();
        case CleanCategory::UserTrash: return trashFolders();
        case CleanCategory::UserDownloads: return named(m_folders.downloads());
    }
    return {};
}

std::vector<std::string> FolderUtilities::userCaches() const {
    std::vector<std::string> out = named(m_folders.userCaches());
    for (std::string& each : m_folders.programCaches()) out.push_back(std::move(each));
    return out;
}

// The home folder's volume is the one with the longest root above it. Devices would not tell: the
// parts of one file system of some kinds have different ones.
std::vector<std::string> FolderUtilities::trashFolders() const {
    const std::vector<std::string> roots =
        m_localVolumes ? m_localVolumes() : std::vector<std::string>();
    const std::string home = m_files.resolved(m_folders.home()).value_or(m_folders.home());
    const std::string* homeRoot = nullptr;
    for (const std::string& root : roots)
        if (!home.empty() && isWithin(home, withoutSlashesAtEnd(root)) &&
            (homeRoot == nullptr || root.size() > homeRoot->size()))
            homeRoot = &root;
    std::vector<std::string> out;
    for (const std::string& root : roots) {
        const auto found =
            &root == homeRoot ? named(m_folders.homeTrash()) : m_folders.volumeTrash(root);
        out.insert(out.end(), found.begin(), found.end());
    }
    return out;
}

std::uint64_t FolderUtilities::sizeOfItemAtPath(const std::string& path,
                                                const SizeWatch& watch) const {
    const auto totals = TreeSize(m_files, watch).ofPath(path);
    return totals ? totals->bytes : 0;
}

std::uint64_t FolderUtilities::_sizeOfItemForFSRef(const FSRef* ref, const SizeWatch& watch) const {
    FSCatalogInfo info;
    if (ref == nullptr || Catalog(m_files).FSGetCatalogInfo(*ref, info) != noErr) return 0;
    const std::string shown =
        watch.skipped != nullptr ? pathForRef(ref).value_or(ref->name()) : ref->name();
    const auto totals = TreeSize(m_files, watch).ofEntry(ref->base(), ref->name(), shown);
    return totals ? totals->bytes : 0;
}

std::optional<std::string> FolderUtilities::pathForRef(const FSRef* ref) const {
    if (ref == nullptr) return std::nullopt;
    return Catalog(m_files).FSRefMakePath(*ref);
}

std::string FolderUtilities::getFolderFromFile(const std::string& path) const {
    const auto entry = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Follow);
    if (entry && entry->type == FileType::Folder && !isBundleName(lastPathComponent(path)))
        return path;
    return withoutLastComponent(path);
}

bool FolderUtilities::CreateAuthoration(AuthorizationRef reference) {
    Authorization& system = QnAuthorization::shareQnAuthorization().platform();
    if (!QnAuthorization::worked("Error Creating Initial Authorization", system.create(reference)))
        return false;
    const bool agreed = QnAuthorization::worked(
        "Copy Rights Unsuccessful",
        system.copyRights(reference, Authorization::adminRight, AuthorizationFlags::acquire));
    (void)system.free(
        reference);  // or the padlock would open without a dialog as long as the right stands
    return agreed;
}

bool FolderUtilities::DeleteAuthoration(AuthorizationRef reference) {
    return QnAuthorization::worked(
        "Free Rights Unsuccessful",
        QnAuthorization::shareQnAuthorization().platform().free(reference));
}

}  // namespace orrinvale
