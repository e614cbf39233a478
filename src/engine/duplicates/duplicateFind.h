// The state of one duplicate search: listing, bundles, pairing. DuplicateFilesOpt.h is its face;
// HashAhead.h its speed.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "engine/base/Progress.h"
#include "engine/duplicates/AppAttrbItem.h"
#include "engine/duplicates/fileAttrbItem.h"
#include "engine/duplicates/folders/FolderFindings.h"
#include "engine/duplicates/folders/SeenFolder.h"
#include "engine/duplicates/scope/SearchRequest.h"
#include "engine/files/SkipList.h"
#include "platform/fileTypes.h"

namespace orrinvale {

class getFileList;
class FindDuplicateApp;
class HashAhead;
class LinkPlaces;
class ProtectedFolders;

/// What a search did so far, for display beside the percent.
struct SearchCounts {
    std::uint64_t listedFiles = 0;
    std::uint64_t hashedFiles = 0;
    std::uint64_t hashedBytes = 0;
};

/// One search. searchDuplicateFileAtPath() runs on one thread; progress(), what it is made of,
/// counts() and stopSearch() may be called from any; the result operations belong behind the end of
/// the search.
class duplicateFind final {
public:
    /// `files` must outlive the object.
    explicit duplicateFind(const FileSystem& files);
    ~duplicateFind();
    duplicateFind(const duplicateFind&) = delete;
    duplicateFind& operator=(const duplicateFind&) = delete;

    void setSearchOption(bool hidden, bool option);

    /// Searches and returns at the end. A path that does not exist or is no folder is an empty
    /// search.
    void searchDuplicateFileAtPath(const std::string& path, std::uint64_t limittedSize);

    /// The same in several folders, as one search: their files in the order of the folders, and no
    /// entry twice. A folder that can not be read is skipped, while there is another.
    void search(const SearchRequest& request);

    /// Percent: the mean of the bundle search and the pairing. It falls while bundles are compared.
    [[nodiscard]] std::uint64_t getProgress() const;
    void stopSearch();

    /// Appends all duplicates, the members of a group next to each other. False for a null array.
    bool getAllDuplicateFile(FileList* array) const;

    /// Appends the duplicates from the index on; false for a null array and an index beyond the
    /// count.
    bool findNewDuplicateFile(FileList* array, std::uint64_t fromIndex) const;

    void getAllAppDuplicateDir(std::vector<AppGroup>& array) const;
    void getNewAppDuplicateDir(std::vector<AppGroup>& array, std::uint64_t fromIndex) const;

    /// What the search is at, for display.
    [[nodiscard]] std::string getCurrentSearchPath() const;

    /// Percent and path in one.
    [[nodiscard]] Progress progress() const { return {getProgress(), 100, getCurrentSearchPath()}; }

    [[nodiscard]] SearchCounts counts() const;
    [[nodiscard]] std::uint64_t listedBundles() const { return m_DirectoryArray.size(); }
    [[nodiscard]] const SkipList& skipped() const { return m_skipped; }
    [[nodiscard]] const std::optional<Error>& rootError() const { return m_rootError; }

    /// Folders that were searched as parts of others.
    [[nodiscard]] const std::vector<CoveredRoot>& coveredRoots() const { return m_roots.covered; }

    /// Lies in a protected folder: it is never ticked and never removed. Of what was found.
    [[nodiscard]] bool isProtected(const fileAttrbItem& file) const {
        return m_protected.contains(&file);
    }
    [[nodiscard]] bool isProtected(const AppAttrbItem& bundle) const {
        return m_protected.contains(&bundle);
    }

    /// Folders that are equal, where that was asked for; nothing after a stop.
    [[nodiscard]] const FolderFindings& folders() const { return m_foundFolders; }

    /// Memory ran out: the search ended like one that was stopped, with what it had found.
    [[nodiscard]] bool ranOutOfMemory() const { return m_outOfMemory; }

    /// Folders of which some lies where inode numbers need not last, so that files are known by
    /// path, size and times there.
    [[nodiscard]] const std::vector<std::string>& rootsOfPassingInodes() const {
        return m_passingRoots;
    }

    /// Where what was found behind links lies; null where there were none.
    [[nodiscard]] const LinkPlaces* linkPlaces() const { return m_linkPlaces.get(); }

private:
    int _searchDuplicateFile();
    bool listFiles();
    bool listRoot(getFileList& list, const std::string& root);
    void findProtected();
    [[nodiscard]] bool holdsProtected(const AppAttrbItem& bundle) const;
    void handOn(const fileAttrbItem& kept, const fileAttrbItem& dropped);
    void findLinkPlaces();
    const fileAttrbItem* itemInHand() const;
    void endEarly();
    void getDuplicateApp(std::vector<std::string>* bundles);
    void pairFiles();
    void findFolders();

    struct Pairing;
    void takeGroup(Pairing& pairing, std::uint32_t first, FileList& found);

    const FileSystem& m_files;
    SkipList m_skipped;
    std::vector<std::uint64_t> m_passingInodes;
    std::unique_ptr<LinkPlaces> m_linkPlaces;
    SearchRequest m_request;
    SearchRoots m_roots;
    std::vector<std::string> m_passingRoots;
    std::unique_ptr<ProtectedFolders> m_guard;  // as they were before the search; while it runs
    std::unordered_set<const void*> m_protected;
    FileArray m_allFileArray;
    std::vector<AppGroup> m_allAppArray;
    FileList m_newFileArray;
    std::vector<SeenFolder> m_seenFolders;  // until findFolders()
    FolderFindings m_foundFolders;
    std::vector<std::string> m_DirectoryArray;
    std::uint64_t m_allFileCount = 0;
    std::atomic<std::uint64_t> m_iProgress{0};
    mutable std::atomic<std::uint64_t> m_iAppProgress{0};
    std::atomic<std::uint64_t> m_listedFiles{0};
    std::atomic<std::uint64_t> m_listedBefore{0};  // in the folders before the one in hand
    std::atomic<bool> m_Stop{false};
    bool m_bSearchHiddenFile = false;
    bool m_bSearchSystemDirectory = false;
    bool m_mayRepeat = false;
    bool m_outOfMemory = false;
    std::optional<Error> m_rootError;

    std::atomic<const fileAttrbItem*> m_item{
        nullptr};  // in hand; its path is put together only when somebody asks
    mutable std::mutex m_mutex;
    std::shared_ptr<getFileList> m_fileList;  // guarded by m_mutex; while the listing runs
    std::shared_ptr<FindDuplicateApp>
        m_findDuplicateApp;                   // guarded by m_mutex; while the bundle search runs
    std::shared_ptr<HashAhead> m_hashAhead;   // guarded by m_mutex; while files are paired
    mutable std::string m_CurrentSearchPath;  // guarded by m_mutex
    SearchCounts m_hashCounts;                // guarded by m_mutex
};

}  // namespace orrinvale
