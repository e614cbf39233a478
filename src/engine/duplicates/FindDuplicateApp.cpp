// The comparison of two bundles is in CompareDir().
#include "engine/duplicates/FindDuplicateApp.h"

#include <algorithm>
#include <cerrno>
#include <map>
#include <tuple>

#include "engine/duplicates/BundleListing.h"
#include "engine/duplicates/algorithm.h"
#include "engine/files/WorkCrew.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

using Key = std::tuple<std::uint64_t, std::uint64_t, std::uint64_t>;

// What the files of a bundle are paired off by, in sorted order: files of both bundles find
// partners exactly when the sorted lists agree, since agreeing in all of it is an equivalence. So
// no file needs to be held against every other one.
template <class Tell> std::vector<Key> sortedKeys(const AppAttrbItem& bundle, Tell tell) {
    std::vector<Key> keys;
    keys.reserve(bundle.AllFileInDirectory.size());
    for (const fileAttrbItem* file : bundle.AllFileInDirectory.items()) keys.push_back(tell(*file));
    std::sort(keys.begin(), keys.end());
    return keys;
}

template <class Tell> bool agree(const AppAttrbItem& a, const AppAttrbItem& b, Tell tell) {
    return sortedKeys(a, tell) == sortedKeys(b, tell);
}

void hashWholes(const FileSystem& files, SkipList& skipped, const StopGrace& grace,
                const AppAttrbItem& a, const AppAttrbItem& b) {
    FileList wanted;
    for (const AppAttrbItem* bundle : {&a, &b})
        for (fileAttrbItem* file : bundle->AllFileInDirectory.items())
            if (file->md5 == 0 && file->fileSize != 0) wanted.push_back(file);
    WorkCrew crew(8);
    std::vector<std::unique_ptr<FileHasher>> hashers(crew.most());
    const std::atomic<bool> never{false};
    crew.forEach(wanted.size(), 1, never, [&](std::size_t at, unsigned worker) {
        if (grace.isOver()) return;
        if (!hashers[worker])
            hashers[worker] = std::make_unique<FileHasher>(files, skipped, &grace);
        (void)hashers[worker]->hashWhole(*wanted[at]);
    });
}

// Nothing but empty files, and links that lead nowhere, says nothing of what a bundle is.
bool holdsContents(const AppAttrbItem& bundle) {
    const FileList& files = bundle.AllFileInDirectory.items();
    return std::any_of(files.begin(), files.end(),
                       [](const fileAttrbItem* file) { return file->md5 != 0; });
}

}  // namespace

FindDuplicateApp::FindDuplicateApp(const FileSystem& files, SkipList& skipped,
                                   std::vector<std::uint64_t> passingInodes)
    : m_files(files), m_skipped(skipped), m_passingInodes(std::move(passingInodes)) {}

bool FindDuplicateApp::getAllFilePathName(const std::string& path, AppAttrbItem* OutArray) {
    if (path.empty() || OutArray == nullptr) return false;
    const auto start = openFolderByPath(m_files, path, Links::Follow);
    const auto identity = start ? m_files.attributes(start->get()) : tl::unexpected(start.error());
    if (!identity) {
        if (identity.error() != ENOTDIR) m_skipped.add(systemError("list", path, identity.error()));
        return false;
    }
    OutArray->device = identity->device;
    OutArray->inode = identity->inode;
    OutArray->inodePasses = std::ranges::binary_search(m_passingInodes, identity->device);
    OutArray->modified = identity->modified;
    const auto self = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    OutArray->isLink = self && self->type == FileType::SymbolicLink;

    const auto listing =
        listBundleAt(m_files, start->get(), path,
                     {.passingInodes = m_passingInodes, .followLinks = true}, m_StopSearch);
    setCurrentSearchFile({});
    if (!listing) {
        if (listing.error().number != ECANCELED) m_skipped.add(listing.error());
        return false;
    }
    OutArray->digest = listing->digest;
    for (const BundleEntry& entry : listing->entries) {
        if (entry.attributes.type == FileType::Folder || entry.leadsTo == FileType::Folder)
            continue;
        auto& file = OutArray->AllFileInDirectory.add(joinPath(path, entry.path), entry.attributes);
        file.inodePasses = std::ranges::binary_search(m_passingInodes, entry.attributes.device);
        OutArray->DirectorySize +=
            std::min(file.fileSize, ~std::uint64_t{0} - OutArray->DirectorySize);
    }
    return true;
}

bool FindDuplicateApp::InitInputAppDirectory(const std::vector<std::string>* array) {
    if (array == nullptr) return false;
    for (const std::string& path : *array) {
        if (m_StopSearch) break;
        auto item = std::make_shared<AppAttrbItem>();
        item->DirectoryPathName = path;
        item->DirectoryName = lastPathComponent(path);
        if (!getAllFilePathName(path, item.get())) continue;
        if (m_filter == nullptr || m_filter->takesSize(item->DirectorySize))
            m_AllAppItem.push_back(std::move(item));
    }
    return true;
}

bool FindDuplicateApp::getSameSizeDirInArray(const AppList& array, const AppAttrbItem& WithItem,
                                             AppList& OutResult) {
    for (const auto& bundle : array)
        if (bundle->DirectorySize == WithItem.DirectorySize) OutResult.push_back(bundle);
    return !OutResult.empty();
}

bool FindDuplicateApp::CompareDir(AppAttrbItem* dir, AppAttrbItem* With) {
    if (dir == nullptr || With == nullptr) return false;
    if (dir->AllFileInDirectory.size() != With->AllFileInDirectory.size()) return false;
    if (!agree(*dir, *With, [](const fileAttrbItem& file) { return Key{file.fileSize, 0, 0}; }))
        return false;

    algorithm hashes(m_files, m_skipped);
    // The buffer of the first-kilobyte hash keeps what earlier reads left behind a short file.
    // After one pass over the first bundle it holds what a pass over an equal one leaves, so that
    // both are then hashed over the same remains.
    for (const AppAttrbItem* bundle : {dir, dir, With})
        for (fileAttrbItem* file : bundle->AllFileInDirectory.items()) {
            if (m_grace.isOver()) return false;
            hashes.getMD5_1K(*file);
        }
    if (!agree(*dir, *With, [](const fileAttrbItem& file) {
            return Key{file.fileSize, file.md5_1k, 0};
        }))
        return false;

    hashWholes(m_files, m_skipped, m_grace, *dir, *With);
    if (m_grace.isOver() || !holdsContents(*dir)) return false;
    // Whoever removes one of two copies relies on both having been read. Empty files have no hash,
    // and links that lead nowhere and the like are nothing but their size.
    for (const AppAttrbItem* bundle : {dir, With})
        for (const fileAttrbItem* file : bundle->AllFileInDirectory.items())
            if (file->type == FileType::Regular && file->fileSize != 0 && file->md5 == 0)
                return false;
    return agree(*dir, *With, [](const fileAttrbItem& file) {
        return Key{file.fileSize, file.md5_1k, file.md5};
    });
}

bool FindDuplicateApp::getDuplicateAppDirInArray(const AppList& array,
                                                 const std::shared_ptr<AppAttrbItem>& With,
                                                 AppGroup& OutArray) {
    AppList sameSize;
    getSameSizeDirInArray(array, *With, sameSize);
    for (const auto& bundle : sameSize)
        if (CompareDir(With.get(), bundle.get())) OutArray.push_back(bundle);
    if (OutArray.empty()) return false;
    OutArray.push_back(With);
    return true;
}

// A folder that was reached by two paths is one bundle, not its own copy.
void FindDuplicateApp::dropRepeated() {
    using Folder = std::tuple<std::uint64_t, std::uint64_t, std::string>;
    std::map<Folder, AppAttrbItem*> seen;
    std::erase_if(m_AllAppItem, [&](const auto& bundle) {
        const std::string& path = bundle->DirectoryPathName;
        const Folder folder = bundle->inodePasses
                                  ? Folder{0, 0, m_files.resolved(path).value_or(path)}
                                  : Folder{bundle->device, bundle->inode, std::string()};
        const auto [first, isNew] = seen.emplace(folder, bundle.get());
        if (!isNew) first->second->otherPaths.push_back(path);
        return !isNew;
    });
}

// Tells bundles apart at the cost of one look at each, so that only those that are equal in all
// likelihood are held against each other: many bundles of one size would otherwise be compared each
// with each.
void FindDuplicateApp::tellClasses() {
    std::map<std::uint64_t, std::size_t> sizes;
    for (const auto& bundle : m_AllAppItem) ++sizes[bundle->DirectorySize];
    AppList wanted;
    for (const auto& bundle : m_AllAppItem) {
        for (const fileAttrbItem* file : bundle->AllFileInDirectory.items())
            bundle->likeness.push_back(file->fileSize);
        std::sort(bundle->likeness.begin(), bundle->likeness.end());
        if (sizes[bundle->DirectorySize] > 1) wanted.push_back(bundle);
    }
    WorkCrew crew;
    std::vector<std::unique_ptr<FileHasher>> hashers(crew.most());
    crew.forEach(wanted.size(), 1, m_StopSearch, [&](std::size_t at, unsigned worker) {
        if (!hashers[worker]) hashers[worker] = std::make_unique<FileHasher>(m_files, m_skipped);
        std::vector<std::uint64_t> heads;
        for (fileAttrbItem* file : wanted[at]->AllFileInDirectory.items()) {
            if (m_StopSearch) return;
            heads.push_back(file->type == FileType::Regular ? hashers[worker]->hashHead(*file) : 0);
        }
        std::sort(heads.begin(), heads.end());
        wanted[at]->likeness.insert(wanted[at]->likeness.end(), heads.begin(), heads.end());
    });
    for (const auto& bundle : m_AllAppItem) m_classes[bundle->likeness].push_back(bundle);
}

void FindDuplicateApp::takeGroup(const std::shared_ptr<AppAttrbItem>& item,
                                 std::vector<AppGroup>& out) {
    AppList& alike = m_classes[item->likeness];
    std::erase_if(alike, [&](const auto& bundle) { return bundle == item || bundle->taken; });
    AppGroup group;
    if (!getDuplicateAppDirInArray(alike, item, group)) return;
    for (const auto& member : group) member->taken = true;
    out.push_back(std::move(group));
}

bool FindDuplicateApp::FindAppInArray(const std::vector<std::string>* array,
                                      std::vector<AppGroup>& OutArray) {
    if (!InitInputAppDirectory(array)) return false;
    dropRepeated();
    m_AppCount = array->size();
    tellClasses();
    std::size_t remaining = m_AllAppItem.size();
    for (const auto& item : m_AllAppItem) {
        if (m_StopSearch) break;
        if (item->taken) continue;
        setCurrentSearchFile(item->DirectoryPathName);
        takeGroup(item, OutArray);
        remaining -= item->taken ? OutArray.back().size() : 1;
        setProgress(static_cast<std::uint32_t>(remaining * 100 / m_AppCount));
    }
    m_AllAppItem.clear();
    m_classes.clear();
    return true;
}

}  // namespace orrinvale
