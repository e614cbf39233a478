// orrinvale-cli clean with a person before it, and on disks and with files that are not as they
// should be.
#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Names = std::vector<std::string>;

ProgramRun cleanRun(const std::string& home, std::vector<std::string> arguments) {
    ProgramRun run = commandRun("clean", std::move(arguments));
    run.environment.push_back("HOME=" + home);
    return run;
}

bool write(const std::string& path, const std::string& text) {
    std::filesystem::create_directories(path.substr(0, path.rfind('/')));
    std::ofstream(path) << text;
    return contentOf(path) == text;
}

// What happens while the question stands is obeyed, and is no failure.
TEST(CleanPerson, isAskedOnATerminal) {
    const struct {
        const char* what;
        const char* meanwhile;  // a command of the shell, in the home
        const char* answer;
        Names left;
        const char* says;
    } cases[] = {
        {"yes", "true", "y", {}, "Removed 3 entries. Promised"},
        {"no", "true", "n", {"kept/x", "r/x", "single"}, "nothing was removed"},
        {"only a return", "true", "", {"kept/x", "r/x", "single"}, "nothing was removed"},
        {"kept by now",
         "mkdir -p .config/com.kelpford.Orrinvale && echo \"$PWD/Downloads/kept\" > "
         ".config/com.kelpford.Orrinvale/always-keep",
         "y",
         {"kept/x"},
         "stayed, you asked to keep it: "},
        {"came by now",
         "echo 1 > Downloads/r/new",
         "y",
         {"r/new"},
         "stayed, not seen by the scan: "},
        {"written to by now",
         "echo 1 >> Downloads/single",
         "y",
         {"single"},
         "stayed, changed since the scan: "},
    };
    for (const auto& each : cases) {
        TestTree tree;
        for (const char* name : {"Downloads/kept/x", "Downloads/r/x", "Downloads/single"})
            ASSERT_TRUE(tree.write(name, "1"));
        ProgramRun run = cleanRun(tree.path(), {});
        const std::string command = run.program + " clean --category user-downloads --remove";
        run.program = "/bin/sh";
        run.arguments = {"-c",
                         "cd \"$HOME\"; (for i in $(seq 200); do grep -q 'for good' told && "
                         "break; sleep 0.05; done; " +
                             std::string(each.meanwhile) + "; echo '" + each.answer +
                             "') | script -qfec '" + command +
                             "' told > /dev/null; echo status $?"};
        run.environment.emplace_back("PATH=/usr/bin:/bin");
        const auto result = run.run();
        const std::string told = contentOf(tree.at("told"));
        if (told.empty()) GTEST_SKIP() << "no script(1) here";
        EXPECT_EQ(result.output, "status 0\n") << each.what << told;
        EXPECT_NE(told.find(each.says), std::string::npos) << each.what << told;
        Names left;
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(tree.at("Downloads")))
            if (entry.is_regular_file())
                left.push_back(entry.path().string().substr(tree.at("Downloads/").size()));
        std::sort(left.begin(), left.end());
        EXPECT_EQ(left, each.left) << each.what << told;
    }
}

TEST(CleanPerson, behindSudoKeepsWhatIsOnTheListOfTheirs) {
    withOwnMounts([]() -> std::string {
        const std::string list = "/mnt/home/.config/com.kelpford.Orrinvale/always-keep";
        if (!mountRam("/var/cache") || !write("/var/cache/apt/kept.bin", "1") ||
            !write("/var/cache/apt/x.bin", "1") || !write(list, "/var/cache/apt/kept.bin\n") ||
            ::chown(list.c_str(), 4321, 4321) != 0 ||
            !write("/mnt/passwd",
                   "root:x:0:0::/root:/bin/sh\nperson:x:4321:4321::/mnt/home:/bin/sh\n") ||
            !bindMount("/mnt/passwd", "/etc/passwd"))
            return "skip: mounts";
        for (const auto& [variable, stays] : {std::pair{"SUDO_UID=4321", true},
                                              {"PKEXEC_UID=4321", true},
                                              {"SUDO_UID=4321x", false},
                                              {"SUDO_UID=77", false}}) {
            if (!write("/var/cache/apt/kept.bin", "1") || !write("/var/cache/apt/x.bin", "1"))
                return "no files";
            auto run = cleanRun("/root", {"--category=system-caches", "--remove", "--yes"});
            run.environment.emplace_back(variable);
            if (const auto result = run.run(); result.status != 0)
                return variable + (' ' + result.error);
            if (isThere("/var/cache/apt/x.bin")) return std::string(variable) + ": there";
            if (isThere("/var/cache/apt/kept.bin") != stays)
                return std::string(variable) + ": otherwise";
        }
        return "";
    });
}

TEST(CleanPerson, hasADiskThatIsNotAsItShouldBe) {
    withOwnMounts([]() -> std::string {
        const std::string home = "/mnt/home";
        const Names arguments{"--category=user-downloads", "--remove", "--yes"};
        const std::string entry = home + "/Downloads/x";
        // Full: what brings people here.
        if (!std::filesystem::create_directories(home) ||
            ::mount("tmpfs", home.c_str(), "tmpfs", 0, "size=256k") != 0)
            return "skip: ram";
        static_cast<void>(write(entry, std::string(1 << 20, 'x')));
        if (std::filesystem::file_size(entry) >= (1U << 20U)) return "not full";
        if (const auto full = cleanRun(home, arguments).run(); full.status != 0 || isThere(entry))
            return "full: " + full.output + full.error;
        // Without the right to read it.
        if (!write(entry, "1") || ::chmod((home + "/Downloads").c_str(), 0) != 0 ||
            ::system("chown -R 65534:65534 /mnt/home && chmod 755 /mnt /mnt/home") != 0)
            return "no file";
        auto shut = cleanRun(home, arguments);
        shut.user = 65534;
        const auto unread = shut.run();
        if (unread.status != 1 || unread.error.find("Permission denied") == std::string::npos)
            return "shut: " + std::to_string(unread.status) + unread.output + unread.error;
        // Read-only.
        if (::system("chmod 755 /mnt/home/Downloads && chown -R 0:0 /mnt/home") != 0 ||
            ::mount(nullptr, home.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
            return "skip: read-only";
        const auto fixed = cleanRun(home, arguments).run();
        if (fixed.status != 1 ||
            fixed.output.find("stayed, Read-only file system: " + entry) == std::string::npos)
            return "read-only: " + std::to_string(fixed.status) + fixed.output + fixed.error;
        return isThere(entry) ? "" : "gone";
    });
}

// Whatever stands where the record of the last clean belongs: the clean goes on, and what can be
// replaced is.
TEST(CleanPerson, hasAHistoryThatNobodyCanRead) {
    enum class History : std::uint8_t { Garbage, Large, Folder };
    for (const History history : {History::Garbage, History::Large, History::Folder}) {
        TestTree tree;
        const std::string name = ".local/state/com.kelpford.Orrinvale/.kelpford.log.bin";
        ASSERT_TRUE(tree.write("Downloads/x", "12345"));
        ASSERT_TRUE(history == History::Folder    ? tree.folder(name)
                    : history == History::Garbage ? tree.write(name, "\xff\0=&&=&iSize=")
                                                  : tree.write(name, std::string(10 << 20, '&')));
        const auto result =
            cleanRun(tree.path(), {"--category=user-downloads", "--remove", "--yes"}).run();
        EXPECT_EQ(result.status, 0) << result.error;
        EXPECT_FALSE(isThere(tree.at("Downloads/x")));
        EXPECT_EQ(contentOf(tree.at(name)).ends_with("&&iSize=5"), history != History::Folder);
    }
}

}  // namespace
}  // namespace orrinvale::testing
