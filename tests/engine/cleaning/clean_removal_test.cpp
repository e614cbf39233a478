// What becomes of rows that a person agreed to lose: everything is asked again, and nothing but
// what the scan saw goes.
#include "engine/cleaning/AuthorizedDoor.h"
#include "engine/cleaning/CleanHome.h"
#include "engine/cleaning/CleanList.h"
#include "engine/removal/PlainDoor.h"
#include "engine/removal/RemovalRun.h"
#include "engine/removal/RemovalTurn.h"
#include "platform/linux/LinuxPermissions.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::CleanHome;

struct Cleaned {
    RemovalOutcome outcome;
    std::vector<std::string> done;  // names of rows
    std::uint64_t bytes = 0;

    [[nodiscard]] std::map<std::string, StayReason> stayed() const {
        std::map<std::string, StayReason> out;
        for (const StayedEntry& each : outcome.stayed)
            out.emplace(lastPathComponent(each.path), each.kind);
        return out;
    }
};

/// What goes on beside a removal.
struct Meanwhile {
    std::string stateFolder{};  // empty: nobody waits
    std::function<void(bool isWaiting)> waiting = [](bool) {};
    std::function<void(std::size_t index)> begins = [](std::size_t) {};
    std::unique_ptr<RemovalDoor> door{};
};

Cleaned clean(const CleanHome& home, const std::vector<CleanRow>& rows, Meanwhile meanwhile = {}) {
    Cleaned out;
    CleanList list(home.parts(), rows);
    if (!meanwhile.door)
        meanwhile.door = std::make_unique<PlainDoor>(home.files, ProtectedPlaces());
    QuietDoor door(std::move(meanwhile.door));
    const std::atomic<bool> stop{false};
    RemovalRun run(home.files, meanwhile.stateFolder, list, door, stop,
                   {.waiting = meanwhile.waiting,
                    .begins = [&](auto index, const auto&, bool) { meanwhile.begins(index); },
                    .settled = [](auto, const auto&) {}});
    out.outcome = run.run();
    for (std::size_t i = 0; i < rows.size(); ++i)
        if (list.isDone(i)) out.done.emplace_back(lastPathComponent(rows[i].path));
    std::sort(out.done.begin(), out.done.end());
    out.bytes = list.goneBytes();
    return out;
}

TEST(CleanRemoval, whatCameOrChangedSinceTheScanStays) {
    const struct {
        const char* what;
        std::function<bool(TestTree&)> change;
        std::vector<std::string> left;  // of the row, which has a/x and y
    } cases[] = {
        {"nothing", [](auto&) { return true; }, {}},
        {"a file came",
         [](auto& t) { return t.write(".cache/r/a/new", "1"); },
         {"a/x", "y", "a/new"}},
        {"a file was written to",
         [](auto& t) { return t.write(".cache/r/y", "other") && t.write(".cache/r/y", "12346"); },
         {"a/x", "y"}},
        {"a repository came",
         [](auto& t) { return t.write(".cache/r/a/.git/x", "1"); },
         {"a/x", "y", "a/.git/x"}},
        {"a safe came",
         [](auto& t) { return t.write(".cache/r/a/s.kdbx", "1"); },
         {"a/x", "y", "a/s.kdbx"}},
        {"a document came",
         [](auto& t) { return t.write(".cache/r/d.odt", "1"); },
         {"a/x", "y", "d.odt"}},
        {"a database was opened",
         [](auto& t) { return t.write(".cache/r/y-wal", "1"); },
         {"a/x", "y", "y-wal"}},
        {"a socket came", [](auto& t) { return t.socket(".cache/r/s"); }, {"a/x", "y", "s"}},
        {"the person keeps it",
         [](auto& t) { return t.write("settings/always-keep", t.at(".cache/r") + "\n"); },
         {"a/x", "y"}},
        {"the list can not be read",
         [](auto& t) { return t.folder("settings/always-keep"); },
         {"a/x", "y"}},
        {"another folder is in its place",
         [](auto& t) {
             return ::rename(t.at(".cache/r").c_str(), t.at("moved").c_str()) == 0 &&
                    t.write(".cache/r/y", "mine");
         },
         {"y"}},
    };
    for (const auto& each : cases) {
        CleanHome home;
        ASSERT_TRUE(home.tree.write(".cache/r/a/x", "12345") &&
                    home.tree.write(".cache/r/y", "12345"));
        const auto rows = home.scan(CleanCategory::UserCaches).rows;
        ASSERT_EQ(rows.size(), 1U);
        ASSERT_TRUE(each.change(home.tree)) << each.what;
        const Cleaned cleaned = clean(home, rows);
        EXPECT_EQ(isThere(home.tree.at(".cache/r")), !each.left.empty()) << each.what;
        for (const std::string& left : each.left)
            EXPECT_TRUE(isThere(home.tree.at(".cache/r/" + left))) << each.what << ": " << left;
        EXPECT_EQ(cleaned.done.empty(), !each.left.empty()) << each.what;
        if (each.left.empty()) {
            EXPECT_EQ(cleaned.bytes, 10U);
            continue;
        }
        ASSERT_EQ(cleaned.outcome.stayed.size(), 1U) << each.what;
        EXPECT_EQ(cleaned.outcome.stayed[0].kind, StayReason::Kept) << each.what;
    }
}

// A program that works with its cache keeps the whole of it; what lies elsewhere stands for itself.
TEST(CleanRemoval, ofADownloadOnlyWhatCameOrChangedStays) {
    for (const auto& [name, reason] :
         {std::pair{"new", StayReason::CameLater}, {"y", StayReason::Changed}}) {
        CleanHome home;
        ASSERT_TRUE(home.tree.write("Downloads/r/a/x", "12345") &&
                    home.tree.write("Downloads/r/y", "12345"));
        const auto rows = home.scan(CleanCategory::UserDownloads).rows;
        const std::string path = std::string("Downloads/r/") + name;
        ASSERT_TRUE(home.tree.write(path, "other") && home.tree.write(path, "12346"));
        const Cleaned cleaned = clean(home, rows);
        EXPECT_EQ(cleaned.stayed(), (std::map<std::string, StayReason>{{name, reason}}));
        EXPECT_TRUE(isThere(home.tree.at(path)));
        EXPECT_FALSE(isThere(home.tree.at("Downloads/r/a")));
        EXPECT_EQ(cleaned.bytes, reason == StayReason::Changed ? 5U : 10U);
    }
}

// Where there is much to do two threads do it; what is special waits for the first of them.
TEST(CleanRemoval, ofAWideRowTheSameGoes) {
    CleanHome home;
    for (int i = 0; i < 400; ++i)
        ASSERT_TRUE(home.tree.write("Downloads/r/" + std::to_string(i), "12345"));
    ASSERT_TRUE(home.tree.hardLink("Downloads/r/7", "Downloads/r/second") &&
                home.tree.symlink("7", "Downloads/r/link") &&
                home.tree.write("Downloads/r/in/x", "12345"));
    const auto rows = home.scan(CleanCategory::UserDownloads).rows;
    std::map<std::string, StayReason> stayed;
    for (const int i : {3, 99, 200, 399}) {
        const std::string changed = std::to_string(i);
        const std::string came = "new" + changed;
        ASSERT_TRUE(home.tree.write("Downloads/r/" + changed, "123456") &&
                    home.tree.write("Downloads/r/" + came, "1"));
        stayed.emplace(changed, StayReason::Changed);
        stayed.emplace(came, StayReason::CameLater);
    }
    const Cleaned cleaned = clean(home, rows);
    EXPECT_EQ(cleaned.stayed(), stayed);
    EXPECT_EQ(namesIn(home.tree.at("Downloads/r")).size(), stayed.size());
    EXPECT_EQ(cleaned.bytes, 396 * 5U + 5 + 1 + 5) << "both names, and the text of the link";
    EXPECT_EQ(cleaned.outcome.bytes, 397 * 5U);
}

// The time of change of a file whose other name went is of our own doing.
TEST(CleanRemoval, aFileWithNamesInTwoRowsKeepsNeither) {
    for (const bool isOfTheFuture : {false, true}) {
        CleanHome home;
        ASSERT_TRUE(home.tree.write(".cache/a/x", "12345") &&
                    home.tree.hardLink(".cache/a/x", ".cache/b/x"));
        const timespec times[2] = {{::time(nullptr) + 1'000'000, 0},
                                   {::time(nullptr) + 1'000'000, 0}};
        ASSERT_TRUE(!isOfTheFuture ||
                    ::utimensat(AT_FDCWD, home.tree.at(".cache/a/x").c_str(), times, 0) == 0);
        const Cleaned cleaned = clean(home, home.scan(CleanCategory::UserCaches).rows);
        EXPECT_EQ(cleaned.done, (std::vector<std::string>{"a", "b"})) << isOfTheFuture;
        EXPECT_EQ(cleaned.bytes, 10U) << "as the rows count them";
        EXPECT_EQ(cleaned.outcome.bytes, 5U);
    }
}

TEST(CleanRemoval, aDatabaseThatWasOpenedSinceStays) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/d.db", "1"));
    const auto rows = home.scan(CleanCategory::UserCaches).rows;
    ASSERT_TRUE(rows.size() == 1 && home.tree.write(".cache/d.db-wal", "1"));
    EXPECT_EQ(clean(home, rows).stayed(),
              (std::map<std::string, StayReason>{{"d.db", StayReason::Kept}}));
    EXPECT_TRUE(isThere(home.tree.at(".cache/d.db")));
}

// Else the padlock, opened for the rest, would have to wait.
TEST(CleanRemoval, theRestOfARowThatWeBeganIsNotTakenForFresh) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/r/a/x", "1"));
    auto rows = home.scan(CleanCategory::UserCaches).rows;
    home.secondsLater = 0;
    EXPECT_EQ(clean(home, rows).stayed(),
              (std::map<std::string, StayReason>{{"r", StayReason::Kept}}));
    rows.at(0).isBegun = true;
    EXPECT_EQ(clean(home, rows).done, std::vector<std::string>{"r"});
}

// A part of the row, before the removal, while it waits for its turn, and while it goes.
TEST(CleanRemoval, whatThePersonKeepsByNowStays) {
    enum class When : std::uint8_t { Before, Waiting, Going, GoingByFile };
    for (const When when : {When::Before, When::Waiting, When::Going, When::GoingByFile}) {
        const std::string what = "case " + std::to_string(static_cast<int>(when));
        CleanHome home;
        ASSERT_TRUE(home.tree.write(".cache/first/x", "1") &&
                    home.tree.write(".cache/r/a/x", "1") && home.tree.write(".cache/r/y", "1"));
        const auto keep = [&](const char* name) {
            EXPECT_TRUE(KeepList::add(home.files, home.tree.at("settings"), home.tree.at(name)));
        };
        if (when == When::GoingByFile) keep(".cache/first/none");
        auto rows = home.scan(CleanCategory::UserCaches).rows;
        std::ranges::sort(rows, {}, &CleanRow::path);
        if (when == When::Before) keep(".cache/r/a");
        const std::string state = home.tree.at("state");
        const std::atomic<bool> stop{false};
        auto other = std::make_unique<RemovalTurn>(asideJournalFolder(state), stop, [] {});
        if (when != When::Waiting) other.reset();
        const auto waiting = [&](bool isWaiting) {
            if (!isWaiting) return;
            keep(".cache/r/a");
            other.reset();
        };
        const auto begins = [&](std::size_t index) {
            if (index != 0 || when < When::Going) return;
            std::this_thread::sleep_for(std::chrono::milliseconds(1100));
            keep(when == When::Going ? ".cache/r/a" : ".cache/first/x");
        };
        const auto cleaned =
            clean(home, rows, {when == When::Waiting ? state : "", waiting, begins});
        EXPECT_EQ(isThere(home.tree.at(".cache/r/a/x")), when != When::GoingByFile) << what;
        EXPECT_EQ(isThere(home.tree.at(".cache/r/y")), when == When::Going) << what;
        EXPECT_EQ(isThere(home.tree.at(".cache/first/x")), when == When::GoingByFile) << what;
    }
}

// What kept a row that goes file by file is gone again a moment later; its folders stay.
TEST(CleanRemoval, aRowOfFilesNeverGoesAsOne) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/r/a/x", "1") &&
                home.tree.write("settings/always-keep", home.tree.at(".cache/r/none") + "\n"));
    const auto rows = home.scan(CleanCategory::UserCaches).rows;
    ASSERT_TRUE(home.tree.write(".cache/r/.git", "1"));
    const auto cleaned =
        clean(home, rows,
              {.begins = [&](std::size_t) { ::unlink(home.tree.at(".cache/r/.git").c_str()); }});
    EXPECT_TRUE(isThere(home.tree.at(".cache/r/a/x")));
    EXPECT_EQ(cleaned.stayed(), (std::map<std::string, StayReason>{{"r", StayReason::Kept}}));
}

TEST(CleanRemoval, aFolderThatIsLeftAloneByNowKeepsItsRows) {
    const struct {
        const char* what;
        std::function<bool(TestTree&)> change;
    } cases[] = {
        {"a link",
         [](auto& t) {
             return ::rename(t.at("Downloads").c_str(), t.at("o").c_str()) == 0 &&
                    t.symlink("o", "Downloads");
         }},
        {"the desktop too",
         [](auto& t) {
             return t.write(".config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Downloads\"");
         }},
    };
    for (const auto& each : cases) {
        CleanHome home;
        ASSERT_TRUE(home.tree.write("Downloads/r/x", "1") && home.tree.write("Downloads/y", "1"));
        const auto rows = home.scan(CleanCategory::UserDownloads).rows;
        ASSERT_TRUE(each.change(home.tree)) << each.what;
        EXPECT_EQ(
            clean(home, rows).stayed(),
            (std::map<std::string, StayReason>{{"r", StayReason::Kept}, {"y", StayReason::Kept}}))
            << each.what;
        EXPECT_TRUE(isThere(home.tree.at("Downloads/r/x"))) << each.what;
        EXPECT_TRUE(isThere(home.tree.at("Downloads/y"))) << each.what;
    }
}

// The door opens folders that shut out their own owner; what is in this one nobody could look at.
TEST(CleanRemoval, aRowThatWasShutMeanwhileStays) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/r/x", "1") &&
                ::chmod(home.tree.path().c_str(), 0755) == 0 &&
                home.tree.giveAway({".cache", ".cache/r", ".cache/r/x"}));
    const std::string failure = runInChild({.ordinaryUser = true}, [&]() -> std::string {
        const LinuxPermissions permissions;
        const auto rows = home.scan(CleanCategory::UserCaches).rows;
        if (rows.size() != 1 || !home.tree.setMode(".cache/r", 0)) return "nothing to begin with";
        const AuthorizationParts parts{nullptr, &home.files, &permissions, {}};
        const auto cleaned =
            clean(home, rows, {.door = std::make_unique<AuthorizedDoor>(parts, ProtectedPlaces())});
        home.tree.setMode(".cache/r", 0755);
        if (!isThere(home.tree.at(".cache/r/x"))) return "gone";
        return cleaned.stayed().contains("r") ? "" : "not told";
    });
    EXPECT_EQ(failure, "");
}

TEST(CleanRemoval, aProgramThatOpenedItMeanwhileKeepsIt) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/r/x", "1") && home.tree.write(".cache/other/x", "1"));
    const auto rows = home.scan(CleanCategory::UserCaches).rows;
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    const std::string path = home.tree.at(".cache/r/x");
    const pid_t holder = ::fork();
    if (holder == 0) {
        const int open = ::open(path.c_str(), O_RDONLY);
        (void)!::write(ready[1], "", open >= 0 ? 1 : 0);
        ::pause();
        ::_exit(0);
    }
    char byte = 0;
    ASSERT_EQ(::read(ready[0], &byte, 1), 1);
    const Cleaned cleaned = clean(home, rows);
    ::kill(holder, SIGKILL);
    ::waitpid(holder, nullptr, 0);
    EXPECT_EQ(cleaned.done, std::vector<std::string>{"other"});
    EXPECT_TRUE(isThere(path));
}

// Of what somebody else's program has open nobody tells us but the file itself.
TEST(CleanRemoval, whatAnotherUsersProgramWritesToStays) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can be somebody else";
    CleanHome home;
    const std::string large(std::size_t{1} << 20U, 'x');
    const std::vector<std::string> written{"Downloads/single", "Downloads/r/x",
                                           ".local/state/log/r/x", ".cache/r/large"};
    for (const std::string& name : written) ASSERT_TRUE(home.tree.write(name, large));
    for (const char* name : {"Downloads/r/y", ".cache/r/y", "Downloads/other"})
        ASSERT_TRUE(home.tree.write(name, "1"));
    ASSERT_EQ(::system(("chown -R 65534:65534 " + home.tree.path()).c_str()), 0);
    std::vector<int> open;
    for (const std::string& name : written)
        open.push_back(::open(home.tree.at(name).c_str(), O_WRONLY | O_CLOEXEC));
    const pid_t holder = ::fork();
    if (holder == 0) {
        ::pause();
        ::_exit(0);
    }
    for (const int each : open) ::close(each);
    const std::string failure = runInChild({.ordinaryUser = true}, [&]() -> std::string {
        std::vector<CleanRow> rows;
        for (const auto category :
             {CleanCategory::UserCaches, CleanCategory::UserDownloads, CleanCategory::UserLogs})
            for (CleanRow& row : home.scan(category).rows) rows.push_back(std::move(row));
        if (rows.size() != 5) return "offered " + std::to_string(rows.size());
        const Cleaned cleaned = clean(home, rows);
        for (const std::string& name : written)
            if (!isThere(home.tree.at(name))) return "gone: " + name;
        if (isThere(home.tree.at("Downloads/r/y")) || isThere(home.tree.at(".cache/r/y")))
            return "there";
        if (cleaned.stayed() != std::map<std::string, StayReason>{{"large", StayReason::Kept},
                                                                  {"single", StayReason::Kept},
                                                                  {"x", StayReason::Kept}})
            return "told otherwise";
        return cleaned.done == std::vector<std::string>{"other"} ? "" : "not done";
    });
    ::kill(holder, SIGKILL);
    ::waitpid(holder, nullptr, 0);
    EXPECT_EQ(failure, "");
}

// What a cache only points at is somebody's, content and mode.
TEST(CleanRemoval, whatLinksLeadToStaysAsItIs) {
    CleanHome home;
    auto& tree = home.tree;
    for (const char* name : {"person/letter", "person/second", "person/deep/third"})
        ASSERT_TRUE(tree.write(name, "mine") && tree.setMode(name, 0400));
    ASSERT_TRUE(tree.setMode("person/deep", 0500) &&
                tree.symlink("../../person/letter", ".cache/r/link") &&
                tree.symlink("../person/deep", ".cache/row") &&
                tree.symlink("../../person/deep", ".cache/r/folder") &&
                tree.hardLink("person/second", ".cache/r/hard"));
    const Cleaned cleaned = clean(home, home.scan(CleanCategory::UserCaches).rows);
    EXPECT_EQ(cleaned.done, (std::vector<std::string>{"r", "row"}));
    EXPECT_FALSE(isThere(tree.at(".cache/r")) || isThere(tree.at(".cache/row")));
    for (const auto& [name, mode] : {std::pair{"person/letter", 0400U},
                                     {"person/second", 0400U},
                                     {"person/deep/third", 0400U},
                                     {"person/deep", 0500U}}) {
        struct stat entry {};
        ASSERT_EQ(::stat(tree.at(name).c_str(), &entry), 0) << name;
        EXPECT_EQ(entry.st_mode & 07777U, mode) << name;
        EXPECT_EQ(contentOf(tree.at(name)), S_ISREG(entry.st_mode) ? "mine" : "") << name;
    }
}

// A writer that is quicker than the removal loses nothing, and the next clean takes the rest.
TEST(CleanRemoval, aRowThatGrowsWhileItGoes) {
    CleanHome home;
    for (int i = 0; i < 50; ++i)
        ASSERT_TRUE(home.tree.write(".cache/r/" + std::to_string(i) + "/x", "1"));
    const auto rows = home.scan(CleanCategory::UserCaches).rows;
    int written = 0;
    home.files.beforeRemoval = [&](const char* operation) {
        if (operation != std::string_view("removeEntry") || written >= 20) return;
        home.tree.write(".cache/r/new" + std::to_string(written++), "precious");
    };
    EXPECT_TRUE(clean(home, rows).done.empty());
    home.files.beforeRemoval = {};
    EXPECT_EQ(written, 20);
    for (int i = 0; i < written; ++i)
        EXPECT_EQ(contentOf(home.tree.at(".cache/r/new" + std::to_string(i))), "precious") << i;
    EXPECT_FALSE(isThere(home.tree.at(".cache/r/49")));
    const auto again = clean(home, home.scan(CleanCategory::UserCaches).rows);
    EXPECT_EQ(again.done, std::vector<std::string>{"r"});
}

TEST(CleanRemoval, aKillInTheMiddleLeavesTheRestForTheNext) {
    CleanHome home;
    for (int i = 0; i < 40; ++i)
        ASSERT_TRUE(home.tree.write(".cache/" + std::to_string(i) + "/x", "1"));
    const pid_t child = ::fork();
    if (child == 0) {
        int steps = 0;
        home.files.beforeRemoval = [&](const char* operation) {
            if (operation == std::string_view("removeEntry") && ++steps == 31) ::_exit(9);
        };
        static_cast<void>(clean(home, home.scan(CleanCategory::UserCaches).rows));
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 9);
    const auto rows = home.scan(CleanCategory::UserCaches).rows;
    EXPECT_EQ(rows.size(), 25U);
    EXPECT_EQ(clean(home, rows).done.size(), 25U);
}

TEST(CleanRemoval, twoAtOnceShareWhatThereIs) {
    CleanHome home;
    for (int i = 0; i < 200; ++i)
        ASSERT_TRUE(home.tree.write(".cache/" + std::to_string(i) + "/x", "1"));
    const auto rows = home.scan(CleanCategory::UserCaches).rows;
    Cleaned first;
    Cleaned second;
    std::thread other([&] { first = clean(home, rows); });
    second = clean(home, rows);
    other.join();
    EXPECT_EQ(first.outcome.removed + second.outcome.removed, 200U);
    EXPECT_EQ(first.outcome.failed + second.outcome.failed, 0U);
    EXPECT_EQ(first.done.size(), 200U);
}

TEST(CleanRemoval, thrownAwayGoesWithItsRecord) {
    CleanHome home({}, {"/"});
    const std::string trash = ".local/share/Trash/";
    ASSERT_TRUE(home.tree.write(trash + "files/a/x", "1") &&
                home.tree.write(trash + "info/a.trashinfo", "[Trash Info]") &&
                home.tree.write(trash + "files/b", "1") &&
                home.tree.write(trash + "info/b.trashinfo", "[Trash Info]") &&
                home.tree.write(trash + "files/c", "1") &&
                home.tree.write(trash + "info/c.trashinfo", "[Trash Info]"));
    const auto rows = home.scan(CleanCategory::UserTrash).rows;
    // Others took it, and the record tells them where it belongs.
    ASSERT_TRUE(home.tree.write(trash + "files/a/new", "1") &&
                ::rename(home.tree.at(trash + "files/c").c_str(), home.tree.at("c").c_str()) == 0);
    EXPECT_EQ(clean(home, rows).done, (std::vector<std::string>{"b", "c"}));
    EXPECT_FALSE(isThere(home.tree.at(trash + "info/b.trashinfo")));
    EXPECT_TRUE(isThere(home.tree.at(trash + "info/a.trashinfo")));
    EXPECT_TRUE(isThere(home.tree.at(trash + "info/c.trashinfo")));
}

TEST(CleanRemoval, theLogNamesWhatStayedAndNotWhatWent) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write("Downloads/secret-a/x", "1") &&
                home.tree.write("Downloads/secret-b/x", "1"));
    const auto rows = home.scan(CleanCategory::UserDownloads).rows;
    ASSERT_TRUE(home.tree.write("Downloads/secret-b/new", "1"));
    LogLines lines;
    Log::setEngineEnabled(false);
    static_cast<void>(clean(home, rows));
    Log::setEngineEnabled(true);
    std::string all;
    for (const std::string& line : lines.lines) all += line + '\n';
    EXPECT_EQ(all.find("secret-a"), std::string::npos) << all;
    EXPECT_NE(all.find("Clean deletable file failed: " + home.tree.at("Downloads/secret-b")),
              std::string::npos)
        << all;
}

std::string write(const std::string& path) {
    const std::string command = "mkdir -p $(dirname " + path + ") && echo 12345678 > " + path;
    return ::system(command.c_str()) == 0 ? "" : "no " + path;
}

// The folders belong to packages, and stay.
TEST(CleanRemoval, theSystemsFilesGoOneByOne) {
    withOwnMounts([]() -> std::string {
        if (!testing::mountRam("/var/cache") || !testing::mountRam("/var/log")) return "skip: ram";
        for (const char* path :
             {"/var/cache/apt/a.bin", "/var/cache/apt/archives/x.deb", "/var/cache/davfs2/host/x",
              "/var/log/tomcat/app.2026-11-03.log", "/var/cache/apt/archives/lock",
              "/var/cache/debconf/config.dat", "/var/log/syslog", "/var/log/syslog.1",
              "/var/log/apt/term.log", "/var/log/apt/term.log.1.gz"})
            if (auto fault = write(path); !fault.empty()) return fault;
        CleanHome home({.home = "/root"});
        const auto caches = home.scan(CleanCategory::SystemCaches);
        const auto logs = home.scan(CleanCategory::SystemLogs);
        if (caches.bytes != 18 || logs.bytes != 18) return "offered otherwise";
        if (auto fault = write("/var/cache/apt/archives/new.deb"); !fault.empty()) return fault;
        const Cleaned first = clean(home, caches.rows);
        const Cleaned second = clean(home, logs.rows);
        if (first.outcome.failed != 1 || second.outcome.failed != 0) return "failed";
        if (first.stayed() != std::map<std::string, StayReason>{{"new.deb", StayReason::CameLater}})
            return "told otherwise";
        if (!first.done.empty() || second.done.size() != 2) return "not done";
        for (const char* path :
             {"/var/cache/apt/archives/lock", "/var/cache/apt/archives/new.deb",
              "/var/cache/debconf/config.dat", "/var/log/syslog", "/var/log/apt/term.log",
              "/var/cache/davfs2/host/x", "/var/log/tomcat/app.2026-11-03.log"})
            if (!isThere(path)) return std::string("gone: ") + path;
        for (const char* path : {"/var/cache/apt/a.bin", "/var/cache/apt/archives/x.deb",
                                 "/var/log/syslog.1", "/var/log/apt/term.log.1.gz"})
            if (isThere(path)) return std::string("there: ") + path;
        return "";
    });
}

TEST(CleanRemoval, aMountThatCameKeepsItsRow) {
    withOwnMounts([]() -> std::string {
        for (const char* path : {"/mnt/.cache/r/in/x", "/mnt/.cache/r/y", "/mnt/person/letter"})
            if (auto fault = write(path); !fault.empty()) return fault;
        CleanHome home({.home = "/mnt"});
        const auto rows = home.scan(CleanCategory::UserCaches).rows;
        if (::mount("/mnt/person", "/mnt/.cache/r/in", nullptr, MS_BIND, nullptr) != 0)
            return "skip: bind";
        const Cleaned cleaned = clean(home, rows);
        if (!isThere("/mnt/person/letter")) return "the letter is gone";
        if (!isThere("/mnt/.cache/r/y")) return "what is beside it is gone";
        if (cleaned.stayed() != std::map<std::string, StayReason>{{"r", StayReason::Kept}})
            return "told otherwise";
        return cleaned.done.empty() ? "" : "the row is done";
    });
}

}  // namespace
}  // namespace orrinvale
