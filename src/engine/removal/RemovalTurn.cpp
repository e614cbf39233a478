// A lock on a file, asked for again and again so that a stop is seen meanwhile.
#include "engine/removal/RemovalTurn.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <chrono>
#include <thread>

#include "engine/files/DurableFile.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// A lock that is waited for in the kernel could not be left by a stop.
constexpr std::chrono::milliseconds pause{50};

}  // namespace

RemovalTurn::RemovalTurn(const std::string& folder, const std::atomic<bool>& stop,
                         const std::function<void()>& waiting) {
    if (folder.empty()) return;
    (void)DurableFile::makeFolder(folder);
    const std::string path = joinPath(folder, "turn");
    m_file = Descriptor(
        ::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    bool isTold = false;
    while (m_file.isOpen() && !stop && ::flock(m_file.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK && errno != EINTR) return;
        if (!isTold) waiting();
        isTold = true;
        std::this_thread::sleep_for(pause);
    }
}

}  // namespace orrinvale
