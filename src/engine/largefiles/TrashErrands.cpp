// A thread an errand, and the lock under which it finds out whether anybody still listens.
#include "engine/largefiles/TrashErrands.h"

#include <fmt/format.h>

#include <system_error>
#include <thread>
#include <utility>

#include "engine/base/Log.h"
#include "engine/files/Trash.h"
#include "platform/FolderVariables.h"
#include "platform/error.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

std::string moveWith(const FileSystem& files, const std::vector<std::string>& ownFiles,
                     const FolderVariables& variables, const std::string& path,
                     std::optional<EntryIdentity> expected) {
    if (expected) expected->learnPassing(files.devicesOfPassingInodes());
    const auto places = ProtectedPlaces::ofThisMachine(files, ownFiles);
    const auto moved = Trash(files, places, variables).move(path, expected);
    Log::line(fmt::format("--delete file error ---::{}", moved ? "(null)" : moved.error()));
    return moved ? std::string() : moved.error();
}

}  // namespace

struct TrashErrands::Home {
    std::mutex mutex;
    MainQueue* queue;  // guarded by mutex; null when nobody listens any more

    void tell(std::function<void()> work) {
        const std::lock_guard guard(mutex);
        if (queue != nullptr) queue->async(std::move(work));
    }
};

TrashErrands::TrashErrands(const FileSystem& files, MainQueue& queue,
                           std::vector<std::string> ownFiles)
    : m_files(files), m_ownFiles(std::move(ownFiles)), m_home(std::make_shared<Home>()) {
    m_home->queue = &queue;
}

TrashErrands::~TrashErrands() {
    const std::lock_guard guard(m_home->mutex);
    m_home->queue = nullptr;
}

void TrashErrands::send(const std::string& path, const std::optional<EntryIdentity>& expected,
                        Done done) const {
    const auto tell = [home = m_home, done = std::move(done)](std::string reason) {
        // What was handed over may run when nobody listens any more.
        home->tell([listening = std::weak_ptr(home), done, reason = std::move(reason)] {
            const auto still = listening.lock();
            if (still && still->queue != nullptr) done(reason);
        });
    };
    // The environment is the main thread's to read.
    auto move = [&files = m_files, ownFiles = m_ownFiles,
                 variables = FolderVariables::ofThisProcess(), path, expected,
                 tell] { tell(moveWith(files, ownFiles, variables, path, expected)); };
    try {
        std::thread(std::move(move)).detach();
    } catch (const std::system_error& error) {  // no thread left for this user
        tell(systemError("start", {}, error.code().value()).reason());
    }
}

std::string putIntoTrash(const FileSystem& files, const std::vector<std::string>& ownFiles,
                         const std::string& path, const std::optional<EntryIdentity>& expected) {
    return moveWith(files, ownFiles, FolderVariables::ofThisProcess(), path, expected);
}

}  // namespace orrinvale
