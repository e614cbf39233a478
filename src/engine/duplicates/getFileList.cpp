// One listing from its options to the list, and the single operations on paths. The walk is in
// LooseFileWalk.cpp.
#include "engine/duplicates/getFileList.h"

#include <algorithm>
#include <cerrno>
#include <set>

#include "engine/base/Log.h"
#include "engine/duplicates/LooseFileWalk.h"
#include "engine/duplicates/searchedPaths.h"
#include "engine/files/TreeLister.h"
#include "engine/files/bundleName.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

constexpr const char* listName =
    "-[getFileList getListAtPath:FileArray:DirectoryArray:LimittedSize:]";
constexpr const char* topName = "-[getFileList getDirectoryAtPath:resultArray:]";
constexpr const char* treeName = "-[getFileList getSubpathsOfDirectoryAtPath:InPath:]";

}  // namespace

getFileList::getFileList(const FileSystem& files, SkipList& skipped,
                         const std::atomic<bool>* alsoStop)
    : m_files(files), m_skipped(skipped), m_alsoStop(alsoStop) {}
getFileList::~getFileList() = default;

bool getFileList::IsHiddenFile(std::string_view path) { return hasHiddenComponent(path); }
bool getFileList::IsSystemDirectory(std::string_view path) { return isSystemFolder(path); }
bool getFileList::IsAppDirectory(std::string_view path) { return isBundleName(path); }

bool getFileList::HasAppDirectory(std::string_view path) {
    // By the ending of a component, so that ".app" itself counts too, which has no extension.
    while (!path.empty()) {
        const std::string_view component = nextComponent(path);
        const std::size_t size = component.size();
        if (size >= 4 && equalIgnoringCase(component.substr(size - 4), ".app")) return true;
    }
    return false;
}

std::string getFileList::m_CurrentPath() const {
    const std::lock_guard lock(m_mutex);
    return m_walk ? m_walk->currentPath() : m_path;
}

std::uint64_t getFileList::listedFiles() const {
    const std::lock_guard lock(m_mutex);
    return m_walk ? m_walk->listedFiles() : 0;
}

void getFileList::setCurrentPath(std::string path) {
    const std::lock_guard lock(m_mutex);
    m_path = std::move(path);
}

bool getFileList::fail(const char* method, const std::string& path, int number) {
    m_rootError = systemError("list", path, number);
    Log::engine(method, "get contents Of Directory At Path failed{}",
                path + ": " + m_rootError->reason());
    return false;
}

bool getFileList::getListAtPath(const std::string& path, FileArray& FileArray,
                                std::vector<std::string>& DirectoryArray,
                                std::uint64_t LimittedSize) {
    m_bStopSearch = false;
    if (m_alsoStop != nullptr && *m_alsoStop) m_bStopSearch = true;
    m_rootError.reset();
    m_mayRepeat = false;
    m_inodesPass = false;
    if (path.empty()) return false;
    // The test for hidden entries is on the whole path: below a hidden folder there is nothing to
    // find.
    if (!m_bSearchHiddenFile && IsHiddenFile(path)) {
        const auto root = openFolderByPath(m_files, path, Links::Follow);
        CatalogBatch batch;
        const auto listed =
            root ? m_files.readFolder(root->get(), batch) : tl::unexpected(root.error());
        return listed || fail(topName, path, listed.error());
    }

    LooseFileQuery query{path,
                         LimittedSize,
                         m_bSearchHiddenFile,
                         m_bSearchSystemDirectory,
                         m_passingInodes,
                         m_filter,
                         m_folders != nullptr};
    auto walk = std::make_unique<LooseFileWalk>(m_files, query, m_bStopSearch, m_skipped);
    {
        const std::lock_guard lock(m_mutex);
        m_walk = std::move(walk);
    }
    auto found = m_walk->run();
    {
        const std::lock_guard lock(m_mutex);
        m_path = m_walk->currentPath();
        walk = std::move(m_walk);
    }
    if (!found) {
        m_rootError = found.error();
        return false;
    }
    m_mayRepeat = found->mayRepeat;
    m_inodesPass = found->inodesPass;
    if (Log::isEngineEnabled())
        for (const fileAttrbItem* item : found->files)
            Log::engine(listName, "file:{} filesize:{}", item->filePathName(), item->fileSize);
    FileArray.adopt(std::move(found->files), std::move(found->storage));
    if (m_folders != nullptr)
        m_folders->insert(m_folders->end(), found->folders.begin(), found->folders.end());
    const std::set<std::string> known(DirectoryArray.begin(), DirectoryArray.end());
    for (std::string& bundle : found->bundles)
        if (!known.contains(bundle)) DirectoryArray.push_back(std::move(bundle));
    return true;
}

bool getFileList::getAppDirectory(const std::string& path, std::vector<std::string>& outArray,
                                  std::uint64_t limitSize) {
    const std::string bundle = outermostBundle(path);
    if (bundle.empty()) return false;
    const auto attributes = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    const std::uint64_t size = attributes ? attributes->size : 0;
    if (size > limitSize && std::find(outArray.begin(), outArray.end(), bundle) == outArray.end())
        outArray.push_back(bundle);
    return true;
}

SysResult<void> getFileList::appendTree(const std::string& path, std::vector<std::string>& out) {
    const auto start = openFolderByPath(m_files, path, Links::Follow);
    if (!start) return tl::unexpected(start.error());
    TreeListing listing;
    listing.entry = [&](const TreeEntry& entry) {
        if (entry.type != FileType::SymbolicLink) out.push_back(joinPath(path, entry.relative));
    };
    listing.enter = [&](std::string_view relative) {
        setCurrentPath(relative.empty() ? path : joinPath(path, relative));
    };
    listing.failed = [&](std::string_view relative, int error) {
        const Error failure = systemError("list", joinPath(path, relative), error);
        Log::engine(treeName, "get contents Of Directory At Path failed{}",
                    failure.path + ": " + failure.reason());
        m_skipped.add(failure);
    };
    return listTree(m_files, start->get(), listing, m_bStopSearch);
}

bool getFileList::getSubpathsOfDirectoryAtPath(std::vector<std::string>& array,
                                               const std::string& InPath) {
    if (InPath.empty() || m_bStopSearch) return false;
    const auto listed = appendTree(InPath, array);
    if (!listed) return fail(treeName, InPath, listed.error());
    return !m_bStopSearch;
}

bool getFileList::getDirectoryAtPath(const std::string& path,
                                     std::vector<std::string>& resultArray) {
    if (path.empty()) return false;
    const auto root = openFolderByPath(m_files, path, Links::Follow);
    if (!root) return fail(topName, path, root.error());
    CatalogBatch batch;
    for (;;) {
        const auto more = m_files.readFolder(root->get(), batch);
        if (!more) return fail(topName, path, more.error());
        if (!*more) return true;
        for (const CatalogEntry& entry : batch.entries) {
            const std::string full = joinPath(path, entry.name);
            const auto target = m_files.attributes(root->get(), entry.name, Links::Follow);
            if (!target) {
                Log::engine(topName, "directory not exsts:{}", full);
            } else if (target->type != FileType::Folder) {
                resultArray.push_back(full);
            } else if ((m_bSearchHiddenFile || !IsHiddenFile(full)) &&
                       (m_bSearchSystemDirectory || path != "/" || !IsSystemDirectory(full))) {
                std::vector<std::string> below;
                (void)getSubpathsOfDirectoryAtPath(below, full);
                resultArray.insert(resultArray.end(), below.begin(), below.end());
            }
        }
    }
}

}  // namespace orrinvale
