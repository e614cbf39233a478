// The window program as a process: the run that only touches memory, and what its file asks of the
// machine.
#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

ProgramRun::Result runApp(Strings arguments, std::vector<std::pair<int, rlim_t>> limits = {}) {
    ProgramRun run;
    run.program = ORRINVALE_APP_PATH;
    run.arguments = std::move(arguments);
    run.limits = std::move(limits);
    return run.run();
}

TEST(App, APairOfTheWordAndASizeTouchesMemoryAndAnythingElseNeedsADisplay) {
    const std::string noDisplay = "orrinvale: there is no display here; use orrinvale-cli\n";
    const struct {
        Strings arguments;
        std::string says;
    } cases[] = {{{}, noDisplay},
                 {{"fr"}, noDisplay},
                 {{"--action", "duplicates", "fr"}, noDisplay},
                 {{"--action=disk-usage"}, noDisplay},
                 {{"--action=uninstall"}, noDisplay},
                 {{"--disk-usage", "/"}, noDisplay},
                 {{"--disk-usage=/", "/"}, "orrinvale: more than one thing is asked for\n"},
                 {{"--disk-usage"}, "orrinvale: : No such file or directory\n"},
                 {{"x", "fr"}, "orrinvale: x: No such file or directory\n"},
                 {{"fr", "4096"}, "freeMemoy size=4096\n"},
                 {{"fr", ""}, "freeMemoy size=\n"},
                 {{"fr", "a\nb\x1b"}, "freeMemoy size=a\\nb\\x1b\n"},
                 {{"fr", "fr"}, "freeMemoy size=fr\n"},
                 {{"fr", "fr", "4096"}, "freeMemoy size=fr\n"},
                 {{"FR", "4096"}, "orrinvale: FR: No such file or directory\n"}};
    for (const auto& each : cases) {
        const auto result = runApp(each.arguments);
        EXPECT_EQ(result.status, each.says.starts_with("free") ? 0 : 2)
            << ::testing::PrintToString(each.arguments);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.error, each.says);
    }
}

// The program without a display, on a folder of its own, with settings that it has to say something
// about.
struct OffscreenRun {
    OffscreenRun() {
        run.program = ORRINVALE_APP_PATH;
        run.environment = {"QT_QPA_PLATFORM=offscreen", "HOME=" + tree.path(),
                           "XDG_RUNTIME_DIR=" + tree.at("run"),
                           "XDG_CONFIG_HOME=" + tree.at("config"), "ORRINVALE_LOG=1"};
        run.folder = tree.path();
        tree.folder("run");
        tree.setMode("run", 0700);
        tree.write(settings, "[Orrinvale]\nread at start\n");
    }
    /// Where the settings that could not be read are kept for the so-manieth time.
    [[nodiscard]] std::string copy(int number) const {
        return tree.at(settings + ".bad" + (number == 1 ? "" : "." + std::to_string(number)));
    }
    /// Whenever the program has looked at its settings they are changed again; a change that met a
    /// save of the program's own, which takes no notice of editors, is made once more. The signal
    /// goes out when it has looked more often than a start does, or after 20 seconds.
    ProgramRun::Result runUntilChangesAreHeard(int signal) {
        const auto end = Clock::now() + 20s;
        int changes = 1;
        auto again = end;
        run.signals = {{signal, [=, this](const std::string&) mutable {
                            const bool isHeard = ::access(copy(changes).c_str(), F_OK) == 0;
                            changes += isHeard ? 1 : 0;
                            if (isHeard || Clock::now() > again) {
                                tree.write(settings,
                                           "[Orrinvale]\nchange " + std::to_string(changes) + "\n");
                                again = Clock::now() + 1s;
                            }
                            return changes > looks || Clock::now() > end;
                        }}};
        return run.run();
    }
    static constexpr int looks = 6;
    TestTree tree;
    const std::string settings = "config/com.kelpford.Orrinvale/settings.ini";
    ProgramRun run;
};

// Nobody but its keeper looks at the settings once they have been read.
TEST(App, KeepsUpWithItsSettingsFile) {
    OffscreenRun app;
    const auto result = app.runUntilChangesAreHeard(SIGTERM);
    EXPECT_EQ(result.signal, SIGTERM) << result.error;
    EXPECT_NE(result.error.find("line 2 can not be read"), std::string::npos) << result.error;
    EXPECT_EQ(contentOf(app.copy(app.looks)), "[Orrinvale]\nchange 6\n");
}

// Otherwise the first file that it opens gets the number of standard error, and the log is written
// into it.
TEST(App, ClosedStreamsAreNoFilesOfIts) {
    OffscreenRun app;
    app.run.program = "/bin/sh";
    app.run.arguments = {"-c", "exec \"$0\" <&- 2>&-", ORRINVALE_APP_PATH};
    EXPECT_EQ(app.runUntilChangesAreHeard(SIGKILL).signal, SIGKILL);
    std::string written;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(app.tree.at("run")))
        if (entry.is_regular_file()) written += contentOf(entry.path());
    EXPECT_NE(written, "") << "the lock holds the number of the process";
    EXPECT_EQ(written.find_first_not_of("0123456789\n"), std::string::npos) << written;
}

TEST(App, NoMemoryIsStatusOne) {
    if (isSanitized())
        GTEST_SKIP() << "the sanitizer's allocator needs the address space that the limit takes";
    const auto result = runApp({"fr", "3221225472"}, {{RLIMIT_AS, 512U << 20}});
    EXPECT_EQ(result.status, 1) << result.error;
    EXPECT_EQ(result.error, "freeMemoy size=3221225472\n");
    EXPECT_EQ(runApp({"fr", "33554432"}, {{RLIMIT_AS, 512U << 20}}).status,
              0);  // the limit alone is no hindrance
}

// The run that only touches memory happens each time somebody frees memory: it must not load what
// draws windows.
TEST(App, TheMemoryRunLoadsNoPlugins) {
    if (isSanitized()) GTEST_SKIP() << "strace and the sanitizers do not go together";
    ProgramRun run;
    run.program = "/usr/bin/strace";
    if (::access(run.program.c_str(), X_OK) != 0) GTEST_SKIP() << "no strace here";
    run.arguments = {"-f", "-e", "trace=openat", ORRINVALE_APP_PATH, "fr", "4096"};
    const auto result = run.run();
    ASSERT_EQ(result.status, 0) << result.error;
    ASSERT_NE(result.error.find("libc.so"), std::string::npos) << result.error;
    EXPECT_EQ(result.error.find("/plugins/"), std::string::npos) << result.error;
}

}  // namespace
}  // namespace orrinvale::testing
