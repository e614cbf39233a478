// TrashErrands: moves entries to the trash beside the main thread. The trash lies in the home
// folder, and one that does not answer keeps the thread that asks for it.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "engine/base/MainQueue.h"
#include "engine/files/EntryIdentity.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Main thread only. Each entry has a thread of its own, which nobody waits for: the file system
/// has to outlive it.
class TrashErrands final {
public:
    using Done = std::function<void(const std::string& reason)>;

    TrashErrands(const FileSystem& files, MainQueue& queue, std::vector<std::string> ownFiles);
    ~TrashErrands();  ///< nobody is told of what is still under way, and the queue is not used any
                      ///< more
    TrashErrands(const TrashErrands&) = delete;
    TrashErrands& operator=(const TrashErrands&) = delete;

    /// Moves the entry; `done` is called on the main thread, once, with why it stays, for people,
    /// or with nothing when it went.
    void send(const std::string& path, const std::optional<EntryIdentity>& expected,
              Done done) const;

private:
    struct Home;  // where the threads tell what they did, for as long as somebody listens

    const FileSystem& m_files;
    const std::vector<std::string> m_ownFiles;
    const std::shared_ptr<Home> m_home;
};

/// Moves the entry now, on this thread: why it stays, for people; empty when it went. Either goes
/// to the log as well.
[[nodiscard]] std::string putIntoTrash(const FileSystem& files,
                                       const std::vector<std::string>& ownFiles,
                                       const std::string& path,
                                       const std::optional<EntryIdentity>& expected);

}  // namespace orrinvale
