// A save leaves the old file or the new one, whole, whatever fails in it and wherever it is killed.
#include "engine/files/DurableFile.h"
#include "support/test.h"

namespace orrinvale {
namespace {

constexpr const char* kOld = "[Orrinvale]\nSpaceAlarm = 0.5\nmine = 7\n";
constexpr std::size_t kLimit = 4096;

/// One run of the program that saves, under strace.
class TracedSave final {
public:
    TracedSave() { m_tree.write("settings.ini", kOld); }

    /// What the program printed; empty when it was killed.
    std::string run(const std::string& inject) {
        const std::string fault = inject.empty() ? "" : " -e 'inject=" + inject + '\'';
        const std::string command = fmt::format(
            "exec strace -o '{}' -E ASAN_OPTIONS=detect_leaks=0{} {} '{}' >'{}' 2>&1",
            m_tree.at("trace"), fault, ORRINVALE_SAVE_PROGRAM, path(), m_tree.at("said"));
        (void)!std::system(command.c_str());
        return contentOf(m_tree.at("said"));
    }

    struct Call {
        std::string name;
        int number;  // which call of this name it is, counted from the start of the program
        std::string text;
    };

    /// The calls of the save, of the last run.
    std::vector<Call> calls() const {
        std::vector<Call> out;
        std::map<std::string, int> counts;
        std::istringstream lines(contentOf(m_tree.at("trace")));
        for (std::string line; std::getline(lines, line);) {
            const std::string name = line.substr(0, line.find('('));
            ++counts[name];
            const bool isMark = name == "getppid";
            // What asks for memory is no part of the save; the allocator has a second way.
            const bool isMemory = name == "brk" || name == "mmap" || name == "munmap";
            if (counts["getppid"] >= 1 && (!isMark || counts[name] == 2) && !isMemory)
                out.push_back({name, counts[name], line});
            if (isMark && counts[name] == 2) break;
        }
        return out;
    }

    std::string path() const { return m_tree.at("settings.ini"); }
    std::string whole() const { return contentOf(path()); }
    std::string rest() const { return contentOf(m_tree.at("settings.ini.new")); }

private:
    TestTree m_tree;
};

TEST(DurableFile, EverySystemCallOfASaveMayFailOrBeTheLast) {
    TracedSave first;
    const std::string firstSaid = first.run("");
    if (first.calls().empty()) GTEST_SKIP() << "strace is missing or may not trace: " << firstSaid;
    ASSERT_EQ(firstSaid, "saved\n");
    const std::string newText = first.whole();
    EXPECT_NE(newText.find("SpaceAlarm = 0.25\nmine = 7\n"), std::string::npos) << newText;
    std::map<std::string, std::array<int, 2>>
        outcomes;  // by call: how many runs said "saved", how many did not
    int kills = 0;
    for (const TracedSave::Call& call : first.calls()) {
        const std::string when = ":when=" + std::to_string(call.number);
        for (const char* fault : {":error=EIO", ":error=ENOSPC", ":signal=KILL"}) {
            const bool isKill = fault == std::string_view(":signal=KILL");
            if (call.name == "getppid" && !isKill) continue;
            TracedSave save;
            const std::string said = save.run(call.name + fault + when);
            const std::string left = save.whole();
            SCOPED_TRACE(call.text + " with " + fault + " said " + said);
            // A reading that fails may put the old file aside: the new one then stands in its
            // place, or nothing is said.
            EXPECT_TRUE(left == newText || left == kOld);
            if (isKill) {
                EXPECT_EQ(said, "");
                ++kills;
            } else {
                EXPECT_TRUE(said == "saved\n" ? left == newText : !said.empty());
                ++outcomes[call.name][said == "saved\n" ? 0 : 1];
                EXPECT_EQ(save.rest(), "") << "keeps a full disk full";
            }
            // The next save finds nothing in its way.
            EXPECT_EQ(save.run(""), "saved\n");
            EXPECT_EQ(save.whole(), newText);
        }
    }
    EXPECT_GE(kills, 15);
    for (const char* never : {"write", "fsync", "renameat"}) {
        EXPECT_EQ(outcomes[never][0], 0) << never << " failed and it was called saved";
        EXPECT_GT(outcomes[never][1], 0) << never;
    }
    EXPECT_EQ(outcomes["fsync"][1], 4) << "the file and the folder, with two errors each";
    EXPECT_GE(outcomes["close"][1], 2) << "one of the descriptors tells of lost writes";
    for (const char* some : {"openat", "newfstatat"}) EXPECT_GT(outcomes[some][1], 0) << some;
}

TEST(DurableFile, FullAndNearlyFullDisk) {
    withOwnMounts([]() -> std::string {
        if (::mount("small", "/mnt", "tmpfs", 0, "size=64k") != 0) return "skip: no small disk";
        const std::string path = "/mnt/history";
        if (!DurableFile::save(path, "old")) return "could not save on the empty disk";
        std::ofstream("/mnt/filler") << std::string(4096 * 13, 'x');
        // Room for two pages.
        const std::string page(4096, 'a');
        if (!DurableFile::save(path, page)) return "one page did not fit";
        for (const std::string& text : {std::string(4096 * 6, 'b'), std::string("tiny")}) {
            const auto saved = DurableFile::save(path, text);
            if (saved || saved.error().number != ENOSPC) return "a full disk was called saved";
            if (contentOf(path) != page) return "the old file is damaged";
            std::ofstream("/mnt/filler2") << std::string(4096 * 8, 'x');
        }
        if (isThere("/mnt/history.new")) return "something was left behind";
        if (::unlink("/mnt/filler") != 0 || !DurableFile::save(path, "tiny"))
            return "no save with room again";
        return contentOf(path) == "tiny" ? "" : "wrong content";
    });
}

TEST(DurableFile, WhatIsNotOursIsLeftAlone) {
    TestTree tree;
    ASSERT_TRUE(tree.folder("folder") && tree.fifo("fifo") && tree.socket("socket") &&
                tree.write("target", "t") && tree.symlink(tree.at("target"), "link") &&
                tree.write("foreign", "f"));
    std::vector<const char*> names{"folder", "fifo", "socket", "link"};
    if (tree.giveAway({"foreign"})) names.push_back("foreign");
    const auto before = namesIn(tree.path());
    const auto never = [](std::string_view) { return false; };
    for (const char* name : names) {
        EXPECT_FALSE(DurableFile::read(tree.at(name), kLimit)) << name;
        const auto well = DurableFile::readWell(tree.at(name), kLimit, never);
        EXPECT_TRUE(!well && well.error().number != EBADMSG) << name;
        EXPECT_FALSE(DurableFile::save(tree.at(name), "new")) << name;
    }
    EXPECT_EQ(namesIn(tree.path()), before);
    EXPECT_EQ(contentOf(tree.at("target")) + contentOf(tree.at("foreign")), "tf");
    if (names.back() != std::string_view("foreign"))
        GTEST_SKIP() << "only root can make a file of another user";
}

TEST(DurableFile, RestsOfOthersDoNotLeakIntoASave) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a.new", std::string(9000, 'r')) && tree.write("precious", "p"));
    EXPECT_TRUE(DurableFile::save(tree.at("a"), "short"));
    EXPECT_EQ(contentOf(tree.at("a")), "short");
    // A second name of another file must not be emptied.
    ASSERT_TRUE(tree.hardLink("precious", "a.new"));
    EXPECT_TRUE(DurableFile::save(tree.at("a"), "again"));
    EXPECT_EQ(contentOf(tree.at("precious")), "p");
    struct stat status {};
    ASSERT_EQ(::stat(tree.at("a").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 07777U, 0600U);
    {
        auto given_up = DurableFile::begin(tree.at("a"));
        EXPECT_TRUE(given_up);
    }
    EXPECT_EQ(namesIn(tree.path()), (Strings{"a", "precious"}));
}

TEST(DurableFile, DamagedFilesAreKeptAside) {
    TestTree tree;
    const auto isGood = [](std::string_view bytes) { return bytes == "good"; };
    std::string aside = "f.bad";
    for (const std::string& bad :
         {std::string("garbage"), std::string(), std::string(kLimit + 1, 'x')}) {
        ASSERT_TRUE(tree.write("f", bad));
        const auto first = DurableFile::readWell(tree.at("f"), kLimit, isGood);
        EXPECT_TRUE(!first && first.error().number == EBADMSG);
        const auto second = DurableFile::readWell(tree.at("f"), kLimit, isGood);
        EXPECT_TRUE(!second && second.error().kind == ErrorKind::NotFound);
        EXPECT_EQ(contentOf(tree.at(aside)), bad);
        aside = aside == "f.bad" ? "f.bad.2" : "f.bad.3";
    }
    ASSERT_TRUE(tree.write("f", "good"));
    EXPECT_EQ(DurableFile::readWell(tree.at("f"), kLimit, isGood).value_or(""), "good");
    EXPECT_EQ(namesIn(tree.path()), (Strings{"f", "f.bad", "f.bad.2", "f.bad.3"}));
    EXPECT_EQ(DurableFile::keepCopy(tree.at("f"), "garbage").value_or("-"), "")
        << "that one is there";
    EXPECT_EQ(DurableFile::keepCopy(tree.at("f"), "other").value_or("-"), tree.at("f.bad.4"));
    EXPECT_EQ(contentOf(tree.at("f.bad.4")), "other");
    for (int number = 5; number <= DurableFile::asideLimit; ++number)
        ASSERT_TRUE(tree.write("f.bad." + std::to_string(number), std::to_string(number)));
    EXPECT_FALSE(DurableFile::keepCopy(tree.at("f"), "one too many"));
    ASSERT_TRUE(tree.write("f", "bad"));
    EXPECT_FALSE(DurableFile::readWell(tree.at("f"), kLimit, isGood));
    EXPECT_EQ(contentOf(tree.at("f")), "bad");
}

TEST(DurableFile, WritersOfOneFileTakeTurns) {
    TestTree tree;
    ASSERT_TRUE(tree.write("count", "0"));
    constexpr int kThreads = 4;
    constexpr int kRounds = 50;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&] {
            for (int round = 0; round < kRounds; ++round) {
                auto file = DurableFile::begin(tree.at("count"));
                ASSERT_TRUE(file) << file.error().reason();
                const auto now =
                    file->current(kLimit, [](std::string_view bytes) { return !bytes.empty(); });
                ASSERT_TRUE(now);
                ASSERT_TRUE(file->commit(std::to_string(std::stoi(*now) + 1)));
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(contentOf(tree.at("count")), std::to_string(kThreads * kRounds));
}

}  // namespace
}  // namespace orrinvale
