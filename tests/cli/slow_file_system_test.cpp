// The commands on a file system that is slow, and on one that does not answer: a stop is heard, and
// a hang is told with its path.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <nlohmann/json.hpp>
#include <string_view>
#include <thread>

#include "cli/ProgramRun.h"
#include "support/TestTree.h"

namespace orrinvale::testing {
namespace {

using Clock = std::chrono::steady_clock;
using namespace std::chrono_literals;

/// slow_fs on a folder of its own while it lives.
class SlowFileSystem final {
public:
    explicit SlowFileSystem(std::chrono::milliseconds pause) {
        m_tree.folder("far");
        const std::string where = path();
        const std::string time = std::to_string(pause.count());
        m_server = ::fork();
        if (m_server == 0) {
            ::execl(ORRINVALE_SLOW_FS, ORRINVALE_SLOW_FS, where.c_str(), time.c_str(), nullptr);
            ::_exit(127);
        }
        for (int turns = 0; turns < 500 && !isMounted() && hasServer(); ++turns)
            std::this_thread::sleep_for(10ms);
    }
    ~SlowFileSystem() {
        end();
        if (::umount2(path().c_str(), MNT_DETACH) != 0)
            static_cast<void>(!std::system(("fusermount3 -uz " + path()).c_str()));
    }
    SlowFileSystem(const SlowFileSystem&) = delete;
    SlowFileSystem& operator=(const SlowFileSystem&) = delete;

    /// What waits for an answer gets an error.
    void end() {
        if (hasServer()) ::kill(m_server, SIGKILL);
        if (m_server > 0) ::waitpid(m_server, nullptr, 0);
        m_server = -1;
    }

    [[nodiscard]] std::string path() const { return m_tree.at("far"); }
    [[nodiscard]] bool isMounted() const {
        struct stat inside {};
        struct stat outside {};
        return ::stat(path().c_str(), &inside) == 0 &&
               ::stat(m_tree.path().c_str(), &outside) == 0 && inside.st_dev != outside.st_dev;
    }

private:
    bool hasServer() {
        if (m_server > 0 && ::waitpid(m_server, nullptr, WNOHANG) == m_server) m_server = -1;
        return m_server > 0;
    }
    TestTree m_tree;
    pid_t m_server = -1;
};

// One look at an entry takes 0.3 s, so that the whole takes minutes.
TEST(SlowFileSystem, AStopIsHeardWithinASecond) {
    const SlowFileSystem slow(300ms);
    if (!slow.isMounted()) GTEST_SKIP() << "FUSE can not be mounted here";
    for (const char* command : {"duplicates", "large", "size"}) {
        ProgramRun run = commandRun(command, {"--json", slow.path()});
        Clock::time_point begin = Clock::now();
        Clock::time_point sent;
        run.signals = {{SIGINT, [&](const std::string&) {
                            sent = Clock::now();
                            return sent - begin > 2s;
                        }}};
        const auto result = run.run();
        const auto took = Clock::now() - sent;
        EXPECT_EQ(result.status, 130) << command << result.error;
        EXPECT_LT(took, isSanitized() ? 3s : 1s) << command;
        const auto document = nlohmann::json::parse(result.output, nullptr, false);
        ASSERT_TRUE(document.is_object()) << command << result.output;
        EXPECT_EQ(document["stopped"], true) << command;
    }
}

std::size_t timesIn(std::string_view text, std::string_view words) {
    std::size_t count = 0;
    for (std::size_t at = text.find(words); at != std::string_view::npos;
         at = text.find(words, at + 1))
        ++count;
    return count;
}

TEST(SlowFileSystem, AHangIsToldWithItsPath) {
    for (const char* command : {"duplicates", "large", "size"}) {
        for (const bool terminal : {true, false}) {
            SlowFileSystem hanging(0ms);
            if (!hanging.isMounted()) GTEST_SKIP() << "FUSE can not be mounted here";
            const std::string told = " s: " + hanging.path() + "/f0/hangs \\xe2\\x80\\xaehere";
            ProgramRun run = commandRun(command, {"--json", hanging.path()});
            run.terminal = terminal;
            const Clock::time_point begin = Clock::now();
            Clock::duration took{};
            // Not even a kill gets through to the call; it comes back when the file system is gone.
            // A second more shows whether the line is told again.
            run.signals = {{0, [&](const std::string& error) {
                                const auto now = Clock::now() - begin;
                                if (took == 0s && error.find("no answer for ") != std::string::npos)
                                    took = now;
                                if (now < (took == 0s ? 15s : took + 1500ms)) return false;
                                hanging.end();
                                return true;
                            }}};
            const auto result = run.run();
            EXPECT_NE(result.error.find(told), std::string::npos)
                << command << terminal << result.error;
            EXPECT_GT(took, 4900ms) << command << terminal;
            EXPECT_LT(took, 8s) << command << terminal;
            // What the end of the file system made unreadable is told besides.
            EXPECT_TRUE(terminal || timesIn(result.error, "no answer for ") == 1)
                << result.error.substr(0, 1000);
        }
    }
}

}  // namespace
}  // namespace orrinvale::testing
