// The listing of a duplicate search: loose files larger than a limit, and application bundles.
// LooseFileWalk does the work on all cores; the single operations are here for callers that need
// one of them.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/duplicates/fileAttrbItem.h"
#include "engine/duplicates/folders/SeenFolder.h"
#include "engine/files/SkipList.h"
#include "platform/fileTypes.h"

namespace orrinvale {

class LooseFileWalk;
struct SearchFilter;
struct TreeListing;

/// One listing at a time, on one thread; stopSearch(), m_CurrentPath() and listedFiles() may be
/// called from any thread.
class getFileList final {
public:
    /// All must outlive the object. What could not be read is added to `skipped`. `alsoStop`, when
    /// given, ends a listing like stopSearch(), but is not cleared: a stop that comes before the
    /// listing has begun is not lost.
    getFileList(const FileSystem& files, SkipList& skipped,
                const std::atomic<bool>* alsoStop = nullptr);
    ~getFileList();
    getFileList(const getFileList&) = delete;
    getFileList& operator=(const getFileList&) = delete;

    void setSearchHiddenFile(bool search) { m_bSearchHiddenFile = search; }
    void setSearchSystemDirectory(bool search) { m_bSearchSystemDirectory = search; }

    /// What listings leave out; null, as at first, for nothing. Outlives the object.
    void setFilter(const SearchFilter* filter) { m_filter = filter; }

    /// Where listings append the folders that they meet; null, as at first, for nowhere. Outlives
    /// the object.
    void setFolders(std::vector<SeenFolder>* folders) { m_folders = folders; }

    /// FileSystem::devicesOfPassingInodes(), which a search asks for once.
    void setPassingInodes(std::vector<std::uint64_t> devices) {
        m_passingInodes = std::move(devices);
    }

    /// Appends every loose file below `path` that is larger than LimittedSize (bytes) to FileArray,
    /// in the order of a sequential walk, and every outermost bundle with an entry larger than that
    /// to DirectoryArray. True when the root could be listed, also after a stop. An empty path is
    /// false.
    bool getListAtPath(const std::string& path, FileArray& FileArray,
                       std::vector<std::string>& DirectoryArray, std::uint64_t LimittedSize);

    /// Appends the paths of everything below the root, subject to the tests on the direct entries:
    /// hidden folders, the system's folders in "/", and links there are followed. True when the
    /// root could be listed.
    bool getDirectoryAtPath(const std::string& path, std::vector<std::string>& resultArray);

    /// Appends everything below the folder, each folder behind its contents; links are left out.
    /// True when the folder was listed and no stop was set.
    bool getSubpathsOfDirectoryAtPath(std::vector<std::string>& array, const std::string& InPath);

    /// True when the path lies in or is a bundle. The outermost one is appended to outArray when
    /// the entry itself is larger than limitSize and the bundle is not there yet.
    bool getAppDirectory(const std::string& path, std::vector<std::string>& outArray,
                         std::uint64_t limitSize);

    [[nodiscard]] static bool IsHiddenFile(std::string_view path);
    [[nodiscard]] static bool IsSystemDirectory(std::string_view path);
    [[nodiscard]] static bool IsAppDirectory(std::string_view path);
    [[nodiscard]] static bool HasAppDirectory(std::string_view path);

    /// Sets the flag that ends a listing early. getListAtPath() clears it at its start.
    void stopSearch() { m_bStopSearch = true; }

    /// The folder that is being listed.
    [[nodiscard]] std::string m_CurrentPath() const;

    /// Files listed so far.
    [[nodiscard]] std::uint64_t listedFiles() const;

    /// Why the root could not be listed, after a false answer.
    [[nodiscard]] const std::optional<Error>& rootError() const { return m_rootError; }

    /// True when the last listing may hold many directory entries twice: it followed a link, or met
    /// a mount.
    [[nodiscard]] bool mayRepeat() const { return m_mayRepeat; }

    /// True when the last listing met a folder whose inode numbers need not last.
    [[nodiscard]] bool inodesPass() const { return m_inodesPass; }

private:
    bool fail(const char* method, const std::string& path, int number);
    void setCurrentPath(std::string path);
    SysResult<void> appendTree(const std::string& path, std::vector<std::string>& out);

    const FileSystem& m_files;
    SkipList& m_skipped;
    const std::atomic<bool>* const m_alsoStop;
    std::atomic<bool> m_bStopSearch{false};
    const SearchFilter* m_filter = nullptr;
    std::vector<SeenFolder>* m_folders = nullptr;
    bool m_bSearchHiddenFile = false;
    bool m_bSearchSystemDirectory = false;
    bool m_mayRepeat = false;
    bool m_inodesPass = false;
    std::vector<std::uint64_t> m_passingInodes;
    std::optional<Error> m_rootError;

    mutable std::mutex m_mutex;
    std::string m_path;                     // guarded by m_mutex
    std::unique_ptr<LooseFileWalk> m_walk;  // guarded by m_mutex; while a parallel listing runs
};

}  // namespace orrinvale
