// The reusable work units of cleaning, each with a list of paths that it works off away from the
// main thread, and the notices that tell of them.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/base/MainQueue.h"
#include "engine/base/notices.h"
#include "engine/cleaning/PathCleaner.h"
#include "platform/authorization.h"

namespace orrinvale {

class FastCleanOpt;

/// How far the measuring of a folder is.
struct ScannedFolder {
    std::uint32_t FolderID = 0;
    std::string FilePath;          ///< looked at last
    std::uint64_t FolderSize = 0;  ///< of what was looked at
    std::uint64_t FileCount = 0;
};
struct FolderPath {
    std::string path;
};
struct FolderTotals {
    std::uint64_t FolderSize = 0;
    std::uint64_t FileCount = 0;
};
/// One entry; the size is missing where it was not known.
struct CleanedFile {
    std::string FilePath;
    std::optional<std::uint64_t> FileSize;
};

// The object is a dictionary.
template <> struct NoticeForm<ScannedFolder> {
    static Notification write(std::string name, const ScannedFolder& payload);
    static std::optional<ScannedFolder> read(const Notification& notice);
};
// The rest travel as the user info.
template <> struct NoticeForm<FolderPath> {
    static Notification write(std::string name, const FolderPath& payload);
    static std::optional<FolderPath> read(const Notification& notice);
};
template <> struct NoticeForm<FolderTotals> {
    static Notification write(std::string name, const FolderTotals& payload);
    static std::optional<FolderTotals> read(const Notification& notice);
};
template <> struct NoticeForm<CleanedFile> {
    static Notification write(std::string name, const CleanedFile& payload);
    static std::optional<CleanedFile> read(const Notification& notice);
};

inline constexpr Notice<FolderPath> ZvScanSingleFolder{"ScanSingleFolder"};
inline constexpr Notice<FolderTotals> ZvScanOperationFinish{"ScanOperationFinish"};
inline constexpr Notice<> ZvBeginFastClean{"BeginFastClean"};
inline constexpr Notice<> ZvFastCleanFinish{"FastCleanFinish"};
inline constexpr Notice<CleanedFile> ZvDeleteFileSuccess{"DeleteFileSuccess"};
inline constexpr Notice<CleanedFile> ZvDeleteFileFailed{"DeleteFileFailed"};
inline constexpr Notice<> ZvCleanCanceled{"FastCleanCanceled"};
inline constexpr Notice<ScannedFolder> ZvScanSingleFile{"ScanSingleFile"};
inline constexpr Notice<ScannedFolder> ZvScanOptFinish{"ScanOptFinish"};
inline constexpr Notice<> ZvScanOptCancel{"ScanOptCancel"};  ///< nobody posts it
inline constexpr Notice<FastCleanOpt*> ZvCleanOptFinish{"CleanOptFinish"};
inline constexpr Notice<> ZvCleanOptSuccess{"CleanOptSuccess"};  ///< nobody posts it
inline constexpr Notice<CleanedFile> ZvCleanOptFailed{"CleanOptFailed"};

/// Where an operation posts; both outlive it.
struct CleanPosts {
    NotificationCenter* center = nullptr;
    MainQueue* mainQueue = nullptr;
};

/// One piece of work on a queue: main() is called once, on any thread.
class CleanOperation {
public:
    virtual ~CleanOperation() = default;
    CleanOperation(const CleanOperation&) = delete;
    CleanOperation& operator=(const CleanOperation&) = delete;

    virtual void main() = 0;
    /// Any thread; also ends a pause.
    virtual void cancel();
    [[nodiscard]] bool isCancelled() const;

protected:
    CleanOperation() = default;
    mutable std::mutex m_mutex;  // guards what follows
    std::condition_variable m_changed;
    bool m_isCancelled = false;
};

/// Measures the top level of one folder. Hidden entries are left out, but for the size of the
/// whole.
class ScanFolderOpt final : public CleanOperation {
public:
    ScanFolderOpt(std::string folder, std::uint32_t identifier, const CleanParts& parts,
                  CleanPosts posts);

    /// Tells of each entry and of the end; of nothing once it is cancelled.
    void main() override;
    /// While it is paused it waits, and no processor works for it. Any thread.
    void setIsPaused(bool isPaused);

    /// Hands a notice of this operation's state to the main thread, without waiting.
    void ConmmunicateMain(const Notice<ScannedFolder>& name) const;
    static void postNotification(const NotificationCenter& center,
                                 const Notification& notification);

    const std::uint32_t opIdentifier;
    const std::string folderScan;
    // Of the thread that runs main(), and of whoever comes behind its end.
    std::uint64_t totalSize = 0;
    std::uint64_t totalFiles = 0;
    std::string curFilePath;
    std::uint64_t folderSize = 0;

private:
    [[nodiscard]] bool goesOn();
    void take(const std::string& name);

    const CleanParts m_parts;
    const CleanPosts m_posts;
    bool m_isPaused = false;  // guarded by m_mutex
};

/// Removes a list of entries. Lives until its end was heard.
class FastCleanOpt final : public CleanOperation {
public:
    FastCleanOpt(std::vector<std::string> paths, CleanTaskParts parts, CleanPosts posts);

    /// Goes on after a failure. Where the right is missing the person is asked for it, and the
    /// entry is tried with the person's own rights all the same.
    void main() override;
    /// Posts the path alone, on this thread: of an entry that stayed the size is not known.
    void notifyDeleteFailed(const std::string& path) const;
    void ConmmunicateMain(const Notice<FastCleanOpt*>& name);

    const std::vector<std::string> folderPathArr;
    AuthorizationRef authorizationRef = AuthorizationRef::null;

private:
    const CleanTaskParts m_parts;
    const CleanPosts m_posts;
};

/// Removes a list of entries, those that need it with the administrator's right. May be used again.
/// Main thread, but for synFastClean().
class FastCleanOptV2 final {
public:
    FastCleanOptV2(CleanTaskParts parts, MainQueue& mainQueue);
    ~FastCleanOptV2();
    FastCleanOptV2(const FastCleanOptV2&) = delete;
    FastCleanOptV2& operator=(const FastCleanOptV2&) = delete;

    /// Works the paths off on a thread of its own, and tells their end.
    void beginCleanTask(std::vector<std::string> paths);
    /// The same on this thread. What became of the last path alone; true for none.
    [[nodiscard]] bool synFastClean(const std::vector<std::string>& paths) const;
    /// Changes nothing: all paths are worked off, and the end comes as it would.
    void cancelFastClean() {}

    [[nodiscard]] bool isRunning() const { return m_running > 0; }
    [[nodiscard]] std::optional<bool> cleanFinished() const { return m_cleanFinished; }
    /// Told on the main thread at the end of each run.
    std::function<void(bool cleanFinished)> onCleanFinished;

private:
    const CleanTaskParts m_parts;
    MainQueue& m_mainQueue;
    std::vector<std::string> cleanFilesArr;
    std::optional<bool> m_cleanFinished;
    std::size_t m_running = 0;                      // runs that have not ended
    const std::shared_ptr<FastCleanOptV2*> m_self;  // null once this is gone; main thread
};

}  // namespace orrinvale
