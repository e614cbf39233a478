// The search for equal application bundles among the ones that the listing met. duplicateFind.h
// calls it before any loose file is hashed.
#pragma once

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/base/Progress.h"
#include "engine/duplicates/AppAttrbItem.h"
#include "engine/duplicates/scope/SearchFilter.h"
#include "engine/files/SkipList.h"
#include "engine/files/StopGrace.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Two bundles are equal when they hold equally many files and these can be paired off by content,
/// of which there must be some; names and places inside play no part. One search at a time on one
/// thread; the accessors and setStopSearch() may be called from any.
class FindDuplicateApp final {
public:
    using AppList = std::vector<std::shared_ptr<AppAttrbItem>>;

    /// The first two must outlive the object. `passingInodes` is
    /// FileSystem::devicesOfPassingInodes().
    FindDuplicateApp(const FileSystem& files, SkipList& skipped,
                     std::vector<std::uint64_t> passingInodes = {});
    FindDuplicateApp(const FindDuplicateApp&) = delete;
    FindDuplicateApp& operator=(const FindDuplicateApp&) = delete;

    /// Appends the groups of equal bundles. False for a null array. Ends quietly when no bundle
    /// could be listed. Two paths of one folder are one bundle: the later path is left out.
    bool FindAppInArray(const std::vector<std::string>* array, std::vector<AppGroup>& OutArray);

    /// Lists the bundles into the list of those to deal with; one that can not be listed is left
    /// out. False for a null array.
    bool InitInputAppDirectory(const std::vector<std::string>* array);

    /// Fills in the files, their sum, the digest and the identity of the bundle. False when it can
    /// not be listed.
    bool getAllFilePathName(const std::string& path, AppAttrbItem* OutArray);

    /// Appends the bundles of the item's size; true when the result has members.
    static bool getSameSizeDirInArray(const AppList& array, const AppAttrbItem& WithItem,
                                      AppList& OutResult);

    /// True for duplicates, of which some bytes were read. A stop that comes meanwhile lets a short
    /// comparison end, and makes a long one false. First-kilobyte hashes of files below 1024 bytes
    /// depend on what was read before them, as in algorithm::getMD5_1K(): two bundles that list
    /// alike always compare by their contents alone.
    bool CompareDir(AppAttrbItem* dir, AppAttrbItem* With);

    /// Appends the bundles that equal the item, then the item; true when a group was formed.
    bool getDuplicateAppDirInArray(const AppList& array, const std::shared_ptr<AppAttrbItem>& With,
                                   AppGroup& OutArray);

    /// Bundles of other sizes are left out once they are listed, before any of their files is read.
    void setFilter(const SearchFilter* filter) { m_filter = filter; }

    void setStopSearch(bool stop) { m_StopSearch = stop; }
    [[nodiscard]] bool StopSearch() const { return m_StopSearch; }

    /// Remaining share in percent: counts down to 0.
    [[nodiscard]] std::uint32_t Progress() const {
        return static_cast<std::uint32_t>(m_told.copy().done);
    }
    void setProgress(std::uint32_t percent) { m_told.setDone(percent); }

    /// Path of the bundle in hand.
    [[nodiscard]] std::string CurrentSearchFile() const { return m_told.copy().current; }
    void setCurrentSearchFile(std::string path) { m_told.setCurrent(std::move(path)); }

private:
    void dropRepeated();
    void tellClasses();
    void takeGroup(const std::shared_ptr<AppAttrbItem>& item, std::vector<AppGroup>& out);

    const FileSystem& m_files;
    SkipList& m_skipped;
    const std::vector<std::uint64_t> m_passingInodes;
    const SearchFilter* m_filter = nullptr;  // not owned
    AppList m_AllAppItem;
    std::map<std::vector<std::uint64_t>, AppList>
        m_classes;       // bundles that may be equal, by what they were told apart by
    ProgressBox m_told;  // counts down, as Progress() does
    std::uint64_t m_AppCount = 0;
    std::atomic<bool> m_StopSearch{false};
    const StopGrace m_grace{m_StopSearch};
};

}  // namespace orrinvale
