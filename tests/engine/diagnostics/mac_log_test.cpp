// The log file in the place of standard error, in processes of their own.
#include "engine/diagnostics/MacLog.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <regex>
#include <thread>

#include "engine/base/Log.h"
#include "platform/fake/FakeVolumes.h"
#include "platform/standardStreams.h"
#include "support/MadeUpSystem.h"
#include "support/OwnMounts.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

constexpr const char* name = "com.kelpford.Orrinvale/Orrinvale.log";

// In a process whose standard error is the file "before". What it answers is a failure.
std::string logging(const TestTree& tree, const std::function<std::string()>& check,
                    bool isOrdinaryUser = false) {
    return runInChild({.ordinaryUser = isOrdinaryUser}, [&]() -> std::string {
        const int before = ::open(tree.at("before").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
        if (before < 0 || ::dup2(before, STDERR_FILENO) < 0) return "no file before";
        ::setenv("XDG_STATE_HOME", tree.path().c_str(), 1);
        Log::setEnabled(true);
        static const MadeUpSystem system;
        static FakeVolumes volumes;
        volumes.volumes = {FakeVolumes::volume(1, "System", "/", false)};
        MacLog::setParts({&system, &volumes});
        return check();
    });
}

// Opens the log, says two lines, and closes it.
std::string sayTwo() {
    const auto opened = MacLog::setLogFile("Orrinvale.log");
    if (opened.has_value() != MacLog::openLogFile().has_value() ||
        opened.has_value() == MacLog::failure().has_value())
        return "it is not what it says";
    Log::line("one");
    if (::write(STDERR_FILENO, "raw\n", 4) != 4 && opened) return "nothing can be written";
    MacLog::closeLogFile();
    Log::line("after");
    return opened ? std::string() : "refused: " + opened.error().reason();
}

TEST(MacLog, BeginsWithTheReportAndGoesOn) {
    TestTree tree;
    ASSERT_EQ(logging(tree, sayTwo), "");
    EXPECT_EQ(contentOf(tree.at("before")), "after\n") << "as it was";
    EXPECT_EQ(attributesOf(tree.at(name)).type, FileType::Regular);
    struct stat seen {};
    ASSERT_EQ(::stat(tree.at(name).c_str(), &seen), 0);
    EXPECT_EQ(seen.st_mode & 07777U, 0600U);
    const std::string time = R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d[+-]\d\d:\d\d )";
    const std::string first = contentOf(tree.at(name));
    EXPECT_TRUE(std::regex_match(
        first, std::regex(time + "Quennet Log file: " + tree.at(name) + "\n" + time +
                          "hardware info\n(?:.*\n)*" + time + "volname=System,.*\n(?:.*\n)*" +
                          time + "Process \\d+ begins\\.\n" + time + "one\nraw\n")))
        << first;
    // The next start adds its lines, without a report.
    ASSERT_EQ(logging(tree, sayTwo), "");
    const std::string both = contentOf(tree.at(name));
    EXPECT_TRUE(both.starts_with(first));
    EXPECT_EQ(both.find("hardware info", first.size()), std::string::npos);
}

TEST(MacLog, AnOlderLogIsClosedToOthersAndItsPathMayHaveAnyBytes) {
    TestTree tree;
    const std::string folder = "b\xff\xc3", file = folder + '/' + name;
    ASSERT_TRUE(tree.write(file, "earlier\n") && tree.setMode(file, 0644));
    const auto sayThere = [&] {
        ::setenv("XDG_STATE_HOME", tree.at(folder).c_str(), 1);
        return sayTwo();
    };
    ASSERT_EQ(logging(tree, sayThere), "");
    struct stat seen {};
    ASSERT_EQ(::stat(tree.at(file).c_str(), &seen), 0);
    EXPECT_EQ(seen.st_mode & 07777U, 0600U);
    const std::string log = contentOf(tree.at(file));
    EXPECT_TRUE(log.starts_with("earlier\n") && log.ends_with(" one\nraw\n")) << log;
}

TEST(MacLog, ALogOverTheLimitBeginsAnew) {
    const struct {
        std::uint64_t size;
        bool isKept;
    } cases[] = {{20'971'520, true}, {20'971'521, false}, {0, false}};
    for (const auto& each : cases) {
        TestTree tree;
        ASSERT_TRUE(tree.sparse(name, each.size));
        ASSERT_EQ(logging(tree, sayTwo), "");
        EXPECT_EQ(attributesOf(tree.at(name)).size > each.size && each.size != 0, each.isKept)
            << each.size;
        EXPECT_EQ(contentOf(tree.at(name)).find("hardware info") == std::string::npos, each.isKept);
    }
}

TEST(MacLog, WhereItCanNotBeHadStandardErrorStays) {
    const struct {
        const char* title;
        std::function<bool(TestTree&)> make;
        const char* refusal;
        bool isOrdinaryUser;
    } cases[] = {
        {"a link",
         [](TestTree& in) {
             return in.write("target", "mine") && in.folder("com.kelpford.Orrinvale") &&
                    in.symlink("../target", name);
         },
         "Too many levels of symbolic links", false},
        {"a link that is longer than the limit is not removed",
         [](TestTree& in) {
             return in.sparse("target", 30'000'000) && in.folder("com.kelpford.Orrinvale") &&
                    in.symlink("../target", name);
         },
         "Too many levels of symbolic links", false},
        {"a pipe", [](TestTree& in) { return in.fifo(name); }, "Invalid argument", false},
        {"a folder", [](TestTree& in) { return in.folder(name); }, "Is a directory", false},
        {"a file with two names",
         [](TestTree& in) { return in.write("target", "mine") && in.hardLink("target", name); },
         "Too many links", false},
        {"a folder that may not be written",
         [](TestTree& in) {
             return in.folder("com.kelpford.Orrinvale") && in.write("before", "") &&
                    in.setMode("before", 0666) && in.setMode(".", 0755);
         },
         "Permission denied", true},
        {"no folder where one should be",
         [](TestTree& in) { return in.write("com.kelpford.Orrinvale", "a file"); },
         "Not a directory", false}};
    for (const auto& each : cases) {
        TestTree tree;
        ASSERT_TRUE(each.make(tree)) << each.title;
        EXPECT_EQ(logging(tree, sayTwo, each.isOrdinaryUser),
                  std::string("refused: ") + each.refusal)
            << each.title;
        EXPECT_EQ(contentOf(tree.at("before")), "one\nraw\nafter\n") << each.title;
        if (isThere(tree.at("target")) && attributesOf(tree.at("target")).size < 100) {
            EXPECT_EQ(contentOf(tree.at("target")), "mine") << each.title;
        }
    }
}

TEST(MacLog, OnAFullDiskStandardErrorStays) {
    withOwnMounts([]() -> std::string {
        TestTree tree("/mnt");
        if (!tree.folder("com.kelpford.Orrinvale")) return "no folder";
        const std::string block(1U << 20U, 'x');
        if (!mountRam(tree.at("com.kelpford.Orrinvale").c_str())) return "skip: no tmpfs";
        const int filler =
            ::open(tree.at("com.kelpford.Orrinvale/filler").c_str(), O_WRONLY | O_CREAT, 0600);
        while (::write(filler, block.data(), block.size()) > 0) {}
        while (::write(filler, block.data(), 1) > 0) {}
        const std::string said = logging(tree, sayTwo);
        if (said != "refused: No space left on device") return said + " on a full disk";
        const std::string before = contentOf(tree.at("before"));
        return before.ends_with("one\nraw\nafter\n") ? "" : "standard error has: " + before;
    });
}

// A disk that fills and gets room again, with a line that has room for half of it.
TEST(MacLog, WhatHasNoRoomGoesWhereLinesWentBefore) {
    withOwnMounts([]() -> std::string {
        TestTree tree("/mnt");
        if (!tree.folder("com.kelpford.Orrinvale")) return "no folder";
        if (!mountRam(tree.at("com.kelpford.Orrinvale").c_str())) return "skip: no tmpfs";
        const std::string long1(20'000, 'a'), long2(20'000, 'b');
        const std::string said = logging(tree, [&]() -> std::string {
            if (!MacLog::setLogFile("Orrinvale.log")) return "no log";
            const std::string filler = tree.at("com.kelpford.Orrinvale/filler");
            const int file = ::open(filler.c_str(), O_WRONLY | O_CREAT, 0600);
            const std::string block(1U << 20U, 'x');
            while (::write(file, block.data(), block.size()) > 0) {}
            while (::write(file, block.data(), 1) > 0) {}
            Log::line(long1);
            Log::line(long2);
            const auto failure = MacLog::failure();
            if (!failure || failure->reason() != "No space left on device") return "not told";
            ::close(file);
            ::unlink(filler.c_str());
            Log::line("room again");
            return MacLog::failure() ? "still told" : "";
        });
        const std::string before = contentOf(tree.at("before")), log = contentOf(tree.at(name));
        const auto has = [](const std::string& text, const std::string& line) {
            return text.find(line + '\n') != std::string::npos;
        };
        if (!has(before, long1) || !has(before, long2) || has(before, "room again"))
            return said + " before: " + std::to_string(before.size());
        if (has(log, long1) || !std::regex_search(log, std::regex("\n\\S+ 2 lines are missing "
                                                                  "here\\.\n\\S+ room again\n")))
            return said + " in the log: " + log.substr(log.size() - 100);
        return said;
    });
}

TEST(MacLog, ALogThatIsRemovedOrMovedGoesOnInAFileOfItsName) {
    TestTree tree;
    const auto begins = [](const std::string& text, const char* lines) {
        return std::regex_match(text, std::regex(lines)) ? "" : text;
    };
    const auto check = [&]() -> std::string {
        if (!MacLog::setLogFile("Orrinvale.log")) return "no log";
        ::unlink(tree.at(name).c_str());
        std::thread([] {
            keepOwnStandardError();  // as a reader of files
            Log::line("to nobody");
        }).join();
        if (isThere(tree.at(name))) return "a reader has made it";
        Log::line("one");
        std::string fault = begins(contentOf(tree.at(name)),
                                   "\\S+ The log was removed; process \\d+ goes on\\.\n\\S+ one\n");
        ::rename(tree.at(name).c_str(), tree.at("moved").c_str());
        Log::line("two");
        MacLog::lookAfterFile();
        Log::line("three");
        MacLog::lookAfterFile();
        Log::line("four");
        fault += begins(contentOf(tree.at("moved")), "(?:.*\n){2}\\S+ two\n");
        return fault +
               begins(contentOf(tree.at(name)), "(?:.*\n)*.* begins\\.\n\\S+ three\n\\S+ four\n");
    };
    EXPECT_EQ(logging(tree, check), "");
    EXPECT_EQ(contentOf(tree.at("before")), "") << "nothing is lost to it";
}

TEST(StandardError, KnowsWhoHasIt) {
    TestTree tree;
    EXPECT_EQ(logging(tree,
                      [&]() -> std::string {
                          struct stat seen {};
                          ::fstat(STDERR_FILENO, &seen);
                          const std::string here =
                              std::to_string(seen.st_dev) + ':' + std::to_string(seen.st_ino);
                          ::unsetenv("JOURNAL_STREAM");
                          if (standardErrorGoesTo() != ErrorStream::Other)
                              return "a file is nobody special";
                          ::setenv("JOURNAL_STREAM", here.c_str(), 1);
                          if (standardErrorGoesTo() != ErrorStream::Journal)
                              return "the journal is not known";
                          if (!MacLog::setLogFile("Orrinvale.log")) return "no log";
                          if (standardErrorGoesTo() != ErrorStream::Journal)
                              return "what stands behind the log";
                          if (!MacLog::setLogFile("Another.log")) return "no other log";
                          MacLog::closeLogFile();
                          ::setenv("JOURNAL_STREAM", (here + '1').c_str(), 1);
                          if (standardErrorGoesTo() != ErrorStream::Other)
                              return "a variable that was left behind";
                          const int terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
                          if (terminal < 0) return "";
                          ::dup2(terminal, STDERR_FILENO);
                          return standardErrorGoesTo() == ErrorStream::Terminal
                                     ? ""
                                     : "a terminal is not known";
                      }),
              "");
}

}  // namespace
}  // namespace orrinvale::testing
