// _searchDuplicateFile() names the steps of a search.
#include "engine/duplicates/duplicateFind.h"

#include <chrono>
#include <new>

#include "engine/base/Log.h"
#include "engine/duplicates/BundleListing.h"
#include "engine/duplicates/FindDuplicateApp.h"
#include "engine/duplicates/HashAhead.h"
#include "engine/duplicates/LinkPlaces.h"
#include "engine/duplicates/RepeatedEntries.h"
#include "engine/duplicates/cache/HashCache.h"
#include "engine/duplicates/folders/FolderFinding.h"
#include "engine/duplicates/getFileList.h"
#include "engine/duplicates/scope/ProtectedFolders.h"
#include "platform/files.h"

namespace orrinvale {

duplicateFind::duplicateFind(const FileSystem& files) : m_files(files) {}

// What is being remembered reads the files' items.
duplicateFind::~duplicateFind() {
    if (m_request.cache) m_request.cache->finish();
}

void duplicateFind::setSearchOption(bool hidden, bool option) {
    m_bSearchHiddenFile = hidden;
    m_bSearchSystemDirectory = option;
}

void duplicateFind::searchDuplicateFileAtPath(const std::string& path, std::uint64_t limittedSize) {
    SearchRequest request;
    request.roots = {path};
    request.limit = limittedSize;
    search(request);
}

void duplicateFind::search(const SearchRequest& request) {
    m_request = request;
    const auto began = std::chrono::system_clock::now().time_since_epoch();
    m_roots = findRoots(m_files, request.roots,
                        {request.filter, m_bSearchHiddenFile, m_bSearchSystemDirectory});
    if (m_roots.roots.empty()) {
        if (!m_roots.failed.empty()) m_rootError = m_roots.failed.front();
        return;
    }
    for (const Error& each : m_roots.failed) m_skipped.add(each);
    int result = 1;
    try {
        m_guard = std::make_unique<ProtectedFolders>(m_files, m_request.protectedFolders);
        // What asks a disk for the folders comes before the search: a stop waits for none of it.
        m_linkPlaces = std::make_unique<LinkPlaces>(m_files, m_roots.roots);
        result = _searchDuplicateFile();
        findFolders();
        m_foundFolders.searched =
            std::chrono::duration_cast<std::chrono::nanoseconds>(began).count();
        findLinkPlaces();
        findProtected();
        m_guard.reset();
    } catch (const std::bad_alloc&) {
        endEarly();
    }
    Log::engine("-[duplicateFind searchDuplicateFileAtPath:limittedSize:]",
                "findDuplicate result:{}", result);
}

// What the steps held goes first, so that there is memory to tell what was found. Where a person
// protects something nothing is told, since nobody has looked what of it is protected.
void duplicateFind::endEarly() {
    const std::lock_guard lock(m_mutex);
    m_outOfMemory = true;
    m_Stop = true;
    m_fileList.reset();
    m_findDuplicateApp.reset();
    m_hashAhead.reset();
    m_guard.reset();
    m_linkPlaces.reset();
    if (m_request.protectedFolders.empty()) return;
    m_newFileArray.clear();
    m_allAppArray.clear();
    m_foundFolders = {};
}

int duplicateFind::_searchDuplicateFile() {
    if (m_request.cache) m_request.cache->begin();
    m_passingInodes = m_files.devicesOfPassingInodes();
    const bool listed = listFiles();
    if (!m_request.filter.takesKind(FileKind::Others)) m_DirectoryArray.clear();
    if (m_DirectoryArray.empty()) m_iAppProgress = 100;
    else getDuplicateApp(&m_DirectoryArray);
    {
        const std::lock_guard lock(m_mutex);
        m_fileList.reset();
    }
    if (!listed) return 0;
    if (m_Stop) return 1;
    if (m_allFileArray.empty()) return 0;
    if (m_mayRepeat)
        RepeatedEntries(m_files, m_passingInodes)
            .dropFrom(m_allFileArray,
                      [this](const auto& kept, const auto& dropped) { handOn(kept, dropped); });
    pairFiles();
    return 1;
}

bool duplicateFind::listFiles() {
    const auto list = std::make_shared<getFileList>(m_files, m_skipped, &m_Stop);
    list->setSearchHiddenFile(m_bSearchHiddenFile);
    list->setSearchSystemDirectory(m_bSearchSystemDirectory);
    list->setPassingInodes(m_passingInodes);
    list->setFilter(&m_request.filter);
    list->setFolders(m_request.findsFolders ? &m_seenFolders : nullptr);
    {
        const std::lock_guard lock(m_mutex);
        m_fileList = list;
    }
    bool listed = false;
    for (const std::string& root : m_roots.roots) listed |= listRoot(*list, root);
    m_mayRepeat |= m_roots.mayRepeat;
    for (const std::string& root : m_passingRoots)
        Log::engine("-[duplicateFind searchDuplicateFileAtPath:limittedSize:]",
                    "inode numbers do not last everywhere in {}: files there are known by path, "
                    "size and times",
                    root);
    m_listedFiles = m_allFileArray.size();
    return listed;
}

// Of several folders one that can not be listed is one that was skipped.
bool duplicateFind::listRoot(getFileList& list, const std::string& root) {
    m_listedBefore = m_allFileArray.size();
    const bool listed = list.getListAtPath(root, m_allFileArray, m_DirectoryArray, m_request.limit);
    if (list.rootError()) {
        if (m_roots.roots.size() == 1) m_rootError = list.rootError();
        else m_skipped.add(*list.rootError());
    }
    m_mayRepeat |= list.mayRepeat();
    if (list.inodesPass()) m_passingRoots.push_back(root);
    return listed;
}

// A link or a volume may go and come while the search runs: a folder is protected as it was before
// and as it is now.
void duplicateFind::findProtected() {
    if (m_guard->empty()) return;
    ProtectedFolders now(m_files, m_request.protectedFolders);
    const auto covers = [&](const auto& found) {
        return m_guard->covers(found) || now.covers(found);
    };
    for (const fileAttrbItem* file : m_newFileArray)
        if (covers(*file)) m_protected.insert(file);
    for (const AppGroup& group : m_allAppArray)
        for (const auto& bundle : group)
            if (covers(*bundle) || holdsProtected(*bundle)) m_protected.insert(bundle.get());
    for (FolderGroup& group : m_foundFolders.groups)
        for (FolderMember& member : group.members) {
            AppAttrbItem folder;  // as a whole it is what a bundle is
            folder.DirectoryPathName = member.path;
            folder.device = member.identity.device;
            folder.inode = member.identity.inode;
            member.isProtected |= covers(folder);
        }
}

// A mount shows what is protected by another path, and only a look at all that is in it tells.
bool duplicateFind::holdsProtected(const AppAttrbItem& bundle) const {
    const std::atomic<bool> never{false};
    const auto now = listBundle(m_files, bundle.DirectoryPathName, {m_passingInodes}, never);
    return !now || std::ranges::any_of(now->entries, [&](const BundleEntry& entry) {
        return entry.attributes.type == FileType::Folder && m_guard->isOneOrAbove(entry.attributes);
    });
}

// Only the way that was dropped may tell that the entry is protected.
void duplicateFind::handOn(const fileAttrbItem& kept, const fileAttrbItem& dropped) {
    if (!m_guard->empty() && (m_protected.contains(&dropped) || m_guard->covers(dropped)))
        m_protected.insert(&kept);
}

void duplicateFind::getDuplicateApp(std::vector<std::string>* bundles) {
    if (bundles == nullptr) return;
    const auto search = std::make_shared<FindDuplicateApp>(m_files, m_skipped, m_passingInodes);
    search->setFilter(&m_request.filter);
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

void duplicateFind::findLinkPlaces() {
    if (!m_mayRepeat && !m_linkPlaces->hasLinkedRoots()) {
        m_linkPlaces.reset();
        return;
    }
    m_linkPlaces->find(m_newFileArray);
    m_linkPlaces->find(m_allAppArray);
}

struct duplicateFind::Pairing {
    const FileArray& all;
    HashAhead& hashes;
    RepeatedEntries repeats;
    std::vector<std::uint8_t> taken = std::vector<std::uint8_t>(all.size(), 0);
    std::uint64_t remaining = all.size();
    FileList group = {};
};

// Takes each file in turn against the rest. HashAhead knows the answer; the order in which files
// and groups come, and the rule that a file belongs to one group at most, are those of a plain
// loop. After a stop the loop goes on over what is hashed already: nothing is read any more, and
// what was read is not lost.
void duplicateFind::pairFiles() {
    m_allFileCount = m_allFileArray.size();
    HashCache* const cache = m_request.cache.get();
    if (cache != nullptr) cache->learnVolumes(m_files, m_allFileArray.items());
    const auto hashes =
        std::make_shared<HashAhead>(m_files, m_allFileArray.items(), m_Stop, m_skipped, cache);
    {
        const std::lock_guard lock(m_mutex);
        m_hashAhead = hashes;
    }
    Pairing pairing{m_allFileArray, *hashes, RepeatedEntries(m_files, m_passingInodes)};
    for (std::uint32_t index = 0; pairing.remaining > 0; ++index) {
        if (pairing.taken[index] != 0) continue;
        m_item.store(&m_allFileArray[index], std::memory_order_release);
        if (--pairing.remaining == 0) break;
        takeGroup(pairing, index, m_newFileArray);
        m_iProgress.store((m_allFileCount - pairing.remaining) * 100 / m_allFileCount,
                          std::memory_order_relaxed);
    }
    if (cache != nullptr) cache->keep(m_allFileArray.items(), hashes->takeFresh());
    const std::lock_guard lock(m_mutex);
    m_hashCounts.hashedFiles = hashes->hashedFiles();
    m_hashCounts.hashedBytes = hashes->hashedBytes();
    m_hashAhead.reset();
}

// The members of a group that are one entry count once; a group of one is none.
void duplicateFind::takeGroup(Pairing& pairing, std::uint32_t first, FileList& found) {
    std::uint32_t member = pairing.hashes.nextInGroup(first);
    if (member == HashAhead::none) return;
    FileList& group = pairing.group;
    group.assign(1, &pairing.all[first]);
    group.front()->isCopy = true;
    for (; member != HashAhead::none; member = pairing.hashes.nextInGroup(member)) {
        pairing.taken[member] = 1;
        pairing.all[member].isCopy = true;
        --pairing.remaining;
        group.push_back(&pairing.all[member]);
    }
    pairing.repeats.dropFrom(
        group, [this](const auto& kept, const auto& dropped) { handOn(kept, dropped); });
    if (group.size() < 2) return;
    found.insert(found.end(), group.begin() + 1, group.end());
    found.push_back(group.front());
}

void duplicateFind::findFolders() {
    if (m_request.findsFolders && !m_Stop)
        m_foundFolders = FolderFinding(m_files,
                                       {m_seenFolders, m_allFileArray, m_newFileArray,
                                        m_guard->empty() ? nullptr : m_guard.get()},
                                       m_Stop, m_skipped)
                             .run();
    m_seenFolders = {};
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

bool duplicateFind::getAllDuplicateFile(FileList* array) const {
    return findNewDuplicateFile(array, 0);
}

bool duplicateFind::findNewDuplicateFile(FileList* array, std::uint64_t fromIndex) const {
    if (array == nullptr || fromIndex > m_newFileArray.size()) return false;
    array->insert(array->end(), m_newFileArray.begin() + static_cast<std::ptrdiff_t>(fromIndex),
                  m_newFileArray.end());
    return true;
}

void duplicateFind::getAllAppDuplicateDir(std::vector<AppGroup>& array) const {
    getNewAppDuplicateDir(array, 0);
}

void duplicateFind::getNewAppDuplicateDir(std::vector<AppGroup>& array,
                                          std::uint64_t fromIndex) const {
    for (std::uint64_t index = fromIndex; index < m_allAppArray.size(); ++index)
        array.push_back(m_allAppArray[index]);
}

// With the lock held. Hashing is far ahead of the pairing, and takes the time.
const fileAttrbItem* duplicateFind::itemInHand() const {
    const fileAttrbItem* const hashed = m_hashAhead ? m_hashAhead->itemInHand() : nullptr;
    return hashed != nullptr ? hashed : m_item.load(std::memory_order_acquire);
}

std::string duplicateFind::getCurrentSearchPath() const {
    const std::lock_guard lock(m_mutex);
    if (m_findDuplicateApp) return m_findDuplicateApp->CurrentSearchFile();
    if (m_fileList) m_CurrentSearchPath = m_fileList->m_CurrentPath();
    else if (const fileAttrbItem* const item = itemInHand())
        m_CurrentSearchPath = item->filePathName();
    return m_CurrentSearchPath;
}

SearchCounts duplicateFind::counts() const {
    const std::lock_guard lock(m_mutex);
    SearchCounts counts = m_hashCounts;
    counts.listedFiles = m_fileList && m_listedFiles == 0
                             ? m_listedBefore + m_fileList->listedFiles()
                             : m_listedFiles.load();
    if (m_hashAhead) {
        counts.hashedFiles = m_hashAhead->hashedFiles();
        counts.hashedBytes = m_hashAhead->hashedBytes();
    }
    return counts;
}

}  // namespace orrinvale
