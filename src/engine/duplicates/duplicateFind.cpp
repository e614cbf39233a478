// duplicateFind: see duplicateFind.h. _searchDuplicateFile() names the steps of a search.
#include "engine/duplicates/duplicateFind.h"

#include "engine/base/Log.h"
#include "engine/duplicates/FindDuplicateApp.h"
#include "engine/duplicates/HashAhead.h"
#include "engine/duplicates/RepeatedEntries.h"
#include "engine/duplicates/getFileList.h"

namespace orrinvale {

duplicateFind::duplicateFind(const FileSystem& files) : m_files(files) {}
duplicateFind::~duplicateFind() = default;

void duplicateFind::setSearchOption(bool hidden, bool option) {
    m_bSearchHiddenFile = hidden;
    m_bSearchSystemDirectory = option;
}

void duplicateFind::searchDuplicateFileAtPath(const std::string& path, std::uint64_t limittedSize) {
    const auto root = openFolderByPath(m_files, path, Links::Follow);
    if (!root) {
        m_rootError = systemError("open", path, root.error());
        return;
    }
    m_path = path;
    m_limittedSize = limittedSize;
    const int result = _searchDuplicateFile();
    Log::engine("-[duplicateFind searchDuplicateFileAtPath:limittedSize:]", "findDuplicate result:{}", result);
}

int duplicateFind::_searchDuplicateFile() {
    const bool listed = listFiles();
    if (m_DirectoryArray.empty()) m_iAppProgress = 100;
    else getDuplicateApp(&m_DirectoryArray);
    {
        const std::lock_guard lock(m_mutex);
        m_fileList.reset();
    }
    if (!listed) return 0;
    if (m_Stop) return 1;
    if (m_allFileArray.empty()) return 0;
    if (m_mayRepeat) dropRepeatedEntries();
    pairFiles();
    return 1;
}

bool duplicateFind::listFiles() {
    const auto list = std::make_shared<getFileList>(m_files, m_skipped, &m_Stop);
    list->setSearchHiddenFile(m_bSearchHiddenFile);
    list->setSearchSystemDirectory(m_bSearchSystemDirectory);
    {
        const std::lock_guard lock(m_mutex);
        m_fileList = list;
    }
    const bool listed = list->getListAtPath(m_path, m_allFileArray, m_DirectoryArray, m_limittedSize);
    m_rootError = list->rootError();
    m_mayRepeat = list->mayRepeat();
    m_listedFiles = m_allFileArray.size();
    return listed;
}

void duplicateFind::getDuplicateApp(std::vector<std::string>* bundles) {
    if (bundles == nullptr) return;
    const auto search = std::make_shared<FindDuplicateApp>(m_files, m_skipped);
    {
        const std::lock_guard lock(m_mutex);
        if (m_Stop) search->setStopSearch(true);
        m_findDuplicateApp = search;
        if (m_fileList) m_CurrentSearchPath = m_fileList->m_CurrentPath();
    }
    search->FindAppInArray(bundles, m_allAppArray);
    const std::lock_guard lock(m_mutex);
    m_findDuplicateApp.reset();
    m_iAppProgress = 100;
}

void duplicateFind::dropRepeatedEntries() { orrinvale::dropRepeatedEntries(m_files, m_allFileArray); }

// Takes each file in turn against the rest. HashAhead knows the answer; the order in which files and groups come, the rule that a
// file belongs to one group at most, and the look at the stop flag between two files are those of a plain loop.
void duplicateFind::pairFiles() {
    m_allFileCount = m_allFileArray.size();
    const auto hashes = std::make_shared<HashAhead>(m_files, m_allFileArray.items(), m_Stop, m_skipped);
    {
        const std::lock_guard lock(m_mutex);
        m_hashAhead = hashes;
    }
    std::vector<std::uint8_t> taken(m_allFileArray.size(), 0);
    std::uint64_t remaining = m_allFileCount;
    for (std::uint32_t index = 0; remaining > 0 && !m_Stop; ++index) {
        if (taken[index] != 0) continue;
        m_item.store(&m_allFileArray[index], std::memory_order_release);
        if (--remaining == 0) break;
        takeGroup(*hashes, index, taken, remaining);
        m_iProgress.store((m_allFileCount - remaining) * 100 / m_allFileCount, std::memory_order_relaxed);
    }
    const std::lock_guard lock(m_mutex);
    m_hashCounts.hashedFiles = hashes->hashedFiles();
    m_hashCounts.hashedBytes = hashes->hashedBytes();
    m_hashAhead.reset();
}

void duplicateFind::takeGroup(HashAhead& hashes, std::uint32_t first, std::vector<std::uint8_t>& taken,
                              std::uint64_t& remaining) {
    std::uint32_t member = hashes.nextInGroup(first);
    if (member == HashAhead::none) return;
    for (; member != HashAhead::none; member = hashes.nextInGroup(member)) {
        taken[member] = 1;
        --remaining;
        m_newFileArray.push_back(&m_allFileArray[member]);
    }
    m_newFileArray.push_back(&m_allFileArray[first]);
}

std::uint64_t duplicateFind::getProgress() const {
    const std::lock_guard lock(m_mutex);
    if (m_findDuplicateApp) m_iAppProgress = m_findDuplicateApp->Progress();
    return (m_iAppProgress + m_iProgress) >> 1U;
}

void duplicateFind::stopSearch() {
    const std::lock_guard lock(m_mutex);
    m_Stop = true;
    if (m_fileList) m_fileList->stopSearch();
    if (m_findDuplicateApp) m_findDuplicateApp->setStopSearch(true);
}

bool duplicateFind::getAllDuplicateFile(FileList* array) const { return findNewDuplicateFile(array, 0); }

bool duplicateFind::findNewDuplicateFile(FileList* array, std::uint64_t fromIndex) const {
    if (array == nullptr || fromIndex > m_newFileArray.size()) return false;
    array->insert(array->end(), m_newFileArray.begin() + static_cast<std::ptrdiff_t>(fromIndex), m_newFileArray.end());
    return true;
}

void duplicateFind::getAllAppDuplicateDir(std::vector<AppGroup>& array) const { getNewAppDuplicateDir(array, 0); }

void duplicateFind::getNewAppDuplicateDir(std::vector<AppGroup>& array, std::uint64_t fromIndex) const {
    for (std::uint64_t index = fromIndex; index < m_allAppArray.size(); ++index) array.push_back(m_allAppArray[index]);
}

std::string duplicateFind::getCurrentSearchPath() const {
    const std::lock_guard lock(m_mutex);
    if (m_findDuplicateApp) return m_findDuplicateApp->CurrentSearchFile();
    if (m_fileList) m_CurrentSearchPath = m_fileList->m_CurrentPath();
    else if (const fileAttrbItem* item = m_item.load(std::memory_order_acquire))
        m_CurrentSearchPath = item->filePathName();
    return m_CurrentSearchPath;
}

SearchCounts duplicateFind::counts() const {
    const std::lock_guard lock(m_mutex);
    SearchCounts counts = m_hashCounts;
    counts.listedFiles = m_fileList && m_listedFiles == 0 ? m_fileList->listedFiles() : m_listedFiles.load();
    if (m_hashAhead) {
        counts.hashedFiles = m_hashAhead->hashedFiles();
        counts.hashedBytes = m_hashAhead->hashedBytes();
    }
    return counts;
}

}  // namespace orrinvale
