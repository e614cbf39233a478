// What a scan of a category offers and what it keeps, on real files.
#include <sys/mman.h>
#include <sys/prctl.h>

#include "engine/cleaning/CleanHome.h"
#include "engine/cleaning/ScanErrand.h"
#include "support/ServedFiles.h"
#include "support/ServiceProcess.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::CleanHome;
using Names = std::vector<std::string>;
using Reasons = std::map<std::string, KeptBecause>;

// Of a run that looks at six categories the folders are asked about once.
TEST(CategoryScan, scansOfOneRunShareALookAtTheFolders) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/a", "1"));
    int looks = 0;
    const FolderUtilities utilities(home.files, home.folders, [&looks] {
        ++looks;
        return std::vector<std::string>();
    });
    CleanParts parts = home.parts();
    parts.utilities = &utilities;
    for (const bool isRun : {false, true}) {
        if (isRun) parts.run = std::make_shared<FoldersOfRun>();
        looks = 0;
        for (int scan = 0; scan < 3; ++scan)
            EXPECT_EQ(CategoryScan(parts, {}).run({home.tree.at(".cache")}).rows.size(), 1U);
        EXPECT_EQ(looks, isRun ? 1 : 3);
    }
}

TEST(CategoryScan, rowsOfUserCachesAndWhyOthersStay) {
    CleanHome home;
    auto& tree = home.tree;
    const std::string five(5, 'x');
    ASSERT_TRUE(
        tree.write(".cache/plain/a/b", five) && tree.write(".cache/plain/c", five) &&
        tree.write(".cache/single", five) && tree.folder(".cache/empty") &&
        tree.write(".cache/.hidden/x", five) && tree.write(".cache/repo/in/.git/config", five) &&
        tree.write(".cache/worktree/.git", "gitdir: elsewhere") &&
        tree.write(".cache/safe/deep/er/my.KDBX", five) &&
        tree.write(".cache/office/letter.odt", five) && tree.write(".cache/sqlite/db", five) &&
        tree.write(".cache/sqlite/db-wal", five) && tree.write(".cache/left/db", five) &&
        tree.write(".cache/left/db-journal", "") && tree.write(".cache/shared/db-shm", "") &&
        tree.socket(".cache/running/s") && tree.write(".cache/rclone/vfs/file", five) &&
        tree.write(".cache/KeePassXC/x", five) &&
        tree.write(".var/app/org.keepassxc.KeePassXC/cache/x", five) &&
        tree.write(".var/app/org.else/cache/y", five) && tree.symlink("/", ".cache/link") &&
        tree.fifo(".cache/pipe"));
    const CategoryListing listing = home.scan(CleanCategory::UserCaches);
    EXPECT_EQ(CleanHome::offered(listing), (Names{".hidden 5", "empty 0", "left 5", "link 1",
                                                  "pipe 0", "plain 10", "single 5", "y 5"}));
    EXPECT_EQ(listing.bytes, 31U);
    EXPECT_EQ(CleanHome::kept(listing), (Reasons{{"repo", KeptBecause::Repository},
                                                 {"worktree", KeptBecause::Repository},
                                                 {"safe", KeptBecause::PasswordSafe},
                                                 {"office", KeptBecause::Document},
                                                 {"sqlite", KeptBecause::Database},
                                                 {"shared", KeptBecause::Database},
                                                 {"running", KeptBecause::Socket},
                                                 {"rclone", KeptBecause::Precious},
                                                 {"KeePassXC", KeptBecause::Precious},
                                                 {"x", KeptBecause::Precious}}));
    for (const CleanRow& row : listing.kept) EXPECT_EQ(row.bytes, 0U) << row.path;
}

// By the names that they have on disks, capitals and all.
TEST(CategoryScan, whatProgramsCanNotMakeAgainStays) {
    CleanHome home;
    for (const char* path :
         {".cache/JetBrains/IdeaIC2024.1/LocalHistory/x", ".cache/Google/AndroidStudio2024.1/x",
          ".cache/evolution/calendar/0a/cache.db", ".cache/ibus/libpinyin/user_bigram.db",
          ".cache/lm-studio/conversations/x", ".cache/obexd/photo", ".cache/xournalpp/autosaves/x",
          ".cache/sessions/xfce4-session-host:0", ".cache/vim/undo/x", ".cache/zsh/history",
          ".cache/simple-scan/autosaves/x", ".cache/onedriver/x", ".cache/huggingface/token",
          ".cache/.bash_history", ".cache/shells/.histfile",
          ".var/app/org.gnome.Evolution/cache/tmp/x", "snap/rclone/common/.cache/vfs/x"})
        ASSERT_TRUE(home.tree.write(path, "1"));
    ASSERT_TRUE(home.tree.write(".cache/google-chrome/x", "1"));
    const auto listing = home.scan(CleanCategory::UserCaches);
    EXPECT_EQ(CleanHome::offered(listing), Names{"google-chrome 1"});
    for (const CleanRow& row : listing.kept) EXPECT_EQ(row.kept, KeptBecause::Precious) << row.path;
}

// A file that is a row of its own as well as one in a folder.
TEST(CategoryScan, aDatabaseStaysWithItsJournal) {
    CleanHome home;
    const std::string page(512, 'x');
    for (const char* name : {"d.sqlite", "d.sqlite-wal", "left.db", "k-journal", "plain.db"})
        ASSERT_TRUE(home.tree.write(std::string(".cache/") + name, "1"));
    ASSERT_TRUE(home.tree.write(".cache/left.db-journal", "") &&
                home.tree.write(".cache/k", page) && home.tree.write(".cache/s.db", page) &&
                home.tree.write(".cache/s.db-shm", ""));
    const auto listing = home.scan(CleanCategory::UserCaches);
    EXPECT_EQ(CleanHome::offered(listing), (Names{"left.db 1", "left.db-journal 0", "plain.db 1"}));
    for (const auto& [name, reason] : CleanHome::kept(listing))
        EXPECT_EQ(reason, KeptBecause::Database) << name;
    EXPECT_EQ(CleanHome::kept(home.scan(CleanCategory::UserDownloads)), Reasons{});
}

// What is thrown away goes, whatever it is; a download goes but for one that goes on.
TEST(CategoryScan, otherCategoriesHaveOtherRules) {
    CleanHome home({}, {"/"});
    auto& tree = home.tree;
    for (const char* folder : {".local/share/Trash/files", "Downloads", ".local/state/log"})
        for (const char* name : {"r/.git/x", "d/letter.pdf", "n/db-wal", "p.part", "q.crdownload"})
            ASSERT_TRUE(tree.write(std::string(folder) + '/' + name, "1"));
    EXPECT_EQ(CleanHome::offered(home.scan(CleanCategory::UserTrash)),
              (Names{"d 1", "n 1", "p.part 1", "q.crdownload 1", "r 1"}));
    EXPECT_EQ(CleanHome::offered(home.scan(CleanCategory::UserDownloads)),
              (Names{"d 1", "n 1", "r 1"}));
    EXPECT_EQ(CleanHome::offered(home.scan(CleanCategory::UserLogs)),
              (Names{"p.part 1", "q.crdownload 1"}));
}

TEST(CategoryScan, ageIsTheLaterOfWritingAndChange) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/old/x", "1") && home.tree.write(".cache/written/x", "1"));
    const auto setWritten = [&](const char* name, std::int64_t seconds) {
        const timespec times[2] = {{::time(nullptr) + seconds, 0}, {::time(nullptr) + seconds, 0}};
        return ::utimensat(AT_FDCWD, home.tree.at(name).c_str(), times, 0) == 0;
    };
    // Far back: the time of change counts. An hour on, as far as the clock of the scan goes.
    ASSERT_TRUE(setWritten(".cache/old/x", -1'000'000) && setWritten(".cache/written/x", 3500));
    EXPECT_EQ(CleanHome::kept(home.scan(CleanCategory::UserCaches)),
              (Reasons{{"written", KeptBecause::Fresh}}));
    // A time that is to come says nothing.
    ASSERT_TRUE(setWritten(".cache/written/x", 1'000'000));
    EXPECT_EQ(CleanHome::kept(home.scan(CleanCategory::UserCaches)), Reasons{});
    home.secondsLater = 60;
    EXPECT_EQ(home.scan(CleanCategory::UserCaches).rows.size(), 0U);
}

TEST(CategoryScan, whatProgramsHaveOpenStays) {
    CleanHome home;
    for (const char* folder : {".cache", "Downloads", ".local/state/log"})
        for (const char* name : {"open/x", "openly/x", "mapped/x", "idle/x"})
            ASSERT_TRUE(home.tree.write(std::string(folder) + '/' + name, std::string(4096, 'x')));
    for (const auto& [category, folder] : {std::pair{CleanCategory::UserCaches, ".cache"},
                                           {CleanCategory::UserDownloads, "Downloads"},
                                           {CleanCategory::UserLogs, ".local/state/log"}}) {
        int ready[2];
        ASSERT_EQ(::pipe(ready), 0);
        const pid_t holder = ::fork();
        if (holder == 0) {  // only calls that are safe after a fork
            const int open =
                ::open(home.tree.at(std::string(folder) + "/open/x").c_str(), O_RDONLY);
            (void)!::chdir(home.tree.at(std::string(folder) + "/mapped").c_str());
            (void)!::write(ready[1], "", open >= 0 ? 1 : 0);
            ::pause();
            ::_exit(0);
        }
        char byte = 0;
        ASSERT_EQ(::read(ready[0], &byte, 1), 1);
        const auto listing = home.scan(category);
        EXPECT_EQ(CleanHome::offered(listing), (Names{"idle 4096", "openly 4096"})) << folder;
        EXPECT_EQ(CleanHome::kept(listing),
                  (Reasons{{"open", KeptBecause::Open}, {"mapped", KeptBecause::Open}}));
        ::kill(holder, SIGKILL);
        ::waitpid(holder, nullptr, 0);
        ::close(ready[0]);
        ::close(ready[1]);
        EXPECT_EQ(home.scan(category).rows.size(), 4U) << folder;
    }
}

// A child that does this and then waits, until the object goes.
class Holder {
public:
    explicit Holder(const std::function<bool()>& act) {
        int ready[2];
        if (::pipe(ready) != 0) return;
        m_child = ::fork();
        if (m_child == 0) {
            (void)!::write(ready[1], act() ? "1" : "0", 1);
            ::pause();
            ::_exit(0);
        }
        char byte = 0;
        m_isReady = ::read(ready[0], &byte, 1) == 1 && byte == '1';
        ::close(ready[0]);
        ::close(ready[1]);
    }
    ~Holder() {
        ::kill(m_child, SIGKILL);
        ::waitpid(m_child, nullptr, 0);
    }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    [[nodiscard]] bool isReady() const { return m_isReady; }

private:
    pid_t m_child = -1;
    bool m_isReady = false;
};

bool mapAndClose(const char* path, int flags, int protection) {
    const int file = ::open(path, flags);
    const bool isMapped =
        ::mmap(nullptr, 4096, protection, MAP_SHARED, file, 0) != MAP_FAILED;  // NOLINT
    ::close(file);
    return isMapped;
}

// In a container, through a second mount, by another name.
TEST(CategoryScan, whatIsOpenByAnotherPathStays) {
    withOwnMounts([]() -> std::string {
        if (::system(
                "cd /mnt && mkdir -p .cache Downloads view names && for d in .cache Downloads; "
                "do for r in read folder mapped reader writer idle; do mkdir $d/$r && head -c "
                "4096 /dev/zero > $d/$r/x; done; for r in reader writer; do ln $d/$r/x "
                "names/$d-$r; done; done") != 0)
            return "no folders";
        for (const auto& [category, folder] : {std::pair{CleanCategory::UserCaches, ".cache"},
                                               {CleanCategory::UserDownloads, "Downloads"}}) {
            const std::string place = std::string("/mnt/") + folder;
            if (::mount(place.c_str(), "/mnt/view", nullptr, MS_BIND, nullptr) != 0)
                return "skip: bind";
            const std::string names = std::string("/mnt/names/") + folder;
            const Holder holder([&] {
                return ::open("/mnt/view/read/x", O_RDONLY) >= 0 &&
                       ::open("/mnt/view/folder", O_RDONLY) >= 0 &&
                       mapAndClose("/mnt/view/mapped/x", O_RDWR, PROT_READ | PROT_WRITE) &&
                       ::open((names + "-reader").c_str(), O_RDONLY) >= 0 &&
                       ::open((names + "-writer").c_str(), O_WRONLY) >= 0;
            });
            if (!holder.isReady()) return "nothing is open";
            const auto listing = CleanHome({.home = "/mnt"}).scan(category);
            if (CleanHome::offered(listing) != Names{"idle 4096", "reader 4096"})
                return place + ": offered otherwise";
            if (CleanHome::kept(listing) != Reasons{{"read", KeptBecause::Open},
                                                    {"folder", KeptBecause::Open},
                                                    {"mapped", KeptBecause::Open},
                                                    {"writer", KeptBecause::Open}})
                return place + ": kept otherwise";
            ::umount2("/mnt/view", MNT_DETACH);
        }
        return "";
    });
}

// What other programs have open on a disk that does not answer is no reason to wait for that.
TEST(CategoryScan, openFilesOnASlowDiskHoldNobodyUp) {
    testing::ServedFiles served({"look=1500"});
    if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
    ASSERT_TRUE(served.source().write("x", "1"));
    const Holder holder([&] { return ::open(served.at("x").c_str(), O_RDONLY) >= 0; });
    ASSERT_TRUE(holder.isReady());
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));  // what is remembered grows old
    const auto start = std::chrono::steady_clock::now();
    static_cast<void>(OpenFiles::below({served.source().path()}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1400));
}

// More than is read of one program's mappings: then it is as good as hidden.
TEST(CategoryScan, theFolderOfAProgramWithTooManyMappingsStays) {
    CleanHome home;
    const std::string name(200, 'm');
    ASSERT_TRUE(home.tree.write(".cache/mapper/x", "1") && home.tree.write(name, "1"));
    const Holder holder([&] {
        ::prctl(PR_SET_NAME, "mapper");
        const int file = ::open(home.tree.at(name).c_str(), O_RDONLY);
        for (int i = 0; i < 20'000; ++i) {  // neighbours with different rights stay apart
            const int protection = i % 2 == 0 ? PROT_READ : PROT_READ | PROT_EXEC;
            if (::mmap(nullptr, 4096, protection, MAP_PRIVATE, file, 0) == MAP_FAILED) return false;
        }
        return true;
    });
    ASSERT_TRUE(holder.isReady());
    EXPECT_EQ(CleanHome::kept(home.scan(CleanCategory::UserCaches)),
              (Reasons{{"mapper", KeptBecause::HiddenProgram}}));
}

// A program that is not to be looked into shows its name alone.
TEST(CategoryScan, theFolderOfAProgramThatHidesStays) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/Hider/x", "1") && home.tree.write(".cache/hiders/x", "1") &&
                home.tree.setMode(".cache", 0755) && ::chmod(home.tree.path().c_str(), 0755) == 0);
    const std::string failure = runInChild({.ordinaryUser = true}, [&]() -> std::string {
        int ready[2];
        if (::pipe(ready) != 0) return "no pipe";
        const pid_t holder = ::fork();
        if (holder == 0) {
            ::prctl(PR_SET_NAME, "hider");
            ::prctl(PR_SET_DUMPABLE, 0);
            (void)!::write(ready[1], "", 1);
            ::pause();
            ::_exit(0);
        }
        char byte = 0;
        if (::read(ready[0], &byte, 1) != 1) return "no child";
        const auto kept = CleanHome::kept(home.scan(CleanCategory::UserCaches));
        ::kill(holder, SIGKILL);
        siginfo_t ended{};
        ::waitid(P_PID, static_cast<id_t>(holder), &ended, WEXITED | WNOWAIT);
        const auto behind = CleanHome::kept(home.scan(CleanCategory::UserCaches));
        ::waitpid(holder, nullptr, 0);
        if (!behind.empty()) return "kept for a dead child";
        return kept == Reasons{{"Hider", KeptBecause::HiddenProgram}} ? "" : "kept otherwise";
    });
    EXPECT_EQ(failure, "");
}

TEST(CategoryScan, foldersThatAreLeftAlone) {
    const struct {
        const char* what;
        std::function<bool(TestTree&)> make;
        const char* reason;  // nullptr: nothing is there, which is no reason
    } cases[] = {
        {"missing", [](auto&) { return true; }, nullptr},
        {"link", [](auto& t) { return t.folder("o") && t.symlink("o", "Downloads"); },
         "the folder is a link"},
        {"file among folders", [](auto& t) { return t.fifo("Downloads"); }, "it is no folder"},
        {"the desktop too",
         [](auto& t) {
             return t.write("Downloads/x", "1") &&
                    t.write(".config/user-dirs.dirs", "XDG_DESKTOP_DIR=\"$HOME/Downloads\"");
         },
         "the folder is for other things as well"},
        {"above the documents",
         [](auto& t) {
             return t.write("Downloads/x", "1") &&
                    t.write(".config/user-dirs.dirs", "XDG_DOCUMENTS_DIR=\"$HOME/Downloads/d\"");
         },
         "/Downloads/d lies in it"},
        {"the documents by a link",
         [](auto& t) { return t.write("Downloads/x", "1") && t.symlink("Downloads", "Documents"); },
         "the folder is for other things as well"},
    };
    for (const auto& each : cases) {
        CleanHome home;
        ASSERT_TRUE(each.make(home.tree)) << each.what;
        const auto listing = home.scan(CleanCategory::UserDownloads);
        EXPECT_EQ(listing.rows.size() + listing.kept.size(), 0U) << each.what;
        ASSERT_EQ(listing.closed.size(), each.reason != nullptr ? 1U : 0U) << each.what;
        if (each.reason != nullptr) {
            EXPECT_TRUE(listing.closed[0].reason.ends_with(each.reason))
                << listing.closed[0].reason;
        }
    }
    TestTree outer;  // a cache within the downloads: these are left alone, the cache is not
    CleanHome nested({.home = outer.path(), .cacheHome = outer.at("Downloads/cache")});
    ASSERT_TRUE(outer.write("Downloads/cache/x/y", "1"));
    EXPECT_EQ(nested.scan(CleanCategory::UserDownloads).closed.size(), 1U);
    EXPECT_EQ(CleanHome::offered(nested.scan(CleanCategory::UserCaches)), Names{"x 1"});
}

TEST(CategoryScan, aFileStandsForItself) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".xsession-errors.old", "12345") &&
                home.tree.write(".bashrc", "mine"));
    const auto listing = home.scan(CleanCategory::UserLogs);
    EXPECT_EQ(CleanHome::offered(listing), Names{".xsession-errors.old 5"});
    EXPECT_EQ(listing.rows.at(0).identity.type, FileType::Regular);
}

TEST(CategoryScan, whatThePersonKeeps) {
    CleanHome home;
    auto& tree = home.tree;
    for (const char* name : {".cache/a/x", ".cache/b/in/y", ".cache/b/z", ".cache/c\n/w"})
        ASSERT_TRUE(tree.write(name, "12345"));
    ASSERT_TRUE(tree.symlink(".cache", "by-link"));
    const std::string settings = tree.at("settings");
    for (const std::string& path : {tree.at(".cache/a"), tree.at("by-link/b/in"),
                                    tree.at(".cache/c\n"), tree.at(".cache/c\n")})
        ASSERT_TRUE(KeepList::add(home.files, settings, path)) << path;
    auto listing = home.scan(CleanCategory::UserCaches);
    EXPECT_EQ(CleanHome::offered(listing), Names{"b 5"});
    EXPECT_FALSE(listing.rows.at(0).goesWhole);
    EXPECT_EQ(CleanHome::kept(listing), (Reasons{{"a", KeptBecause::Asked},
                                                 {"b", KeptBecause::Rule},
                                                 {"c\n", KeptBecause::Asked}}));
    for (const std::string& path : {tree.at(".cache/b/in"), tree.at(".cache/c\n")})
        ASSERT_TRUE(KeepList::remove(home.files, settings, path));
    listing = home.scan(CleanCategory::UserCaches);
    EXPECT_EQ(CleanHome::offered(listing), (Names{"b 10", "c\n 5"}));
    EXPECT_EQ(contentOf(KeepList::fileIn(settings)), tree.at(".cache/a\n"));

    // Names that lines can not hold as they are, and paths that say nothing.
    ASSERT_TRUE(tree.write(".cache/e\r/x", "1"));
    ASSERT_TRUE(KeepList::add(home.files, settings, tree.at(".cache/e\r")));
    EXPECT_FALSE(KeepList::add(home.files, settings, tree.at(".cache/../.cache/b")));
    EXPECT_EQ(CleanHome::kept(home.scan(CleanCategory::UserCaches)).at("e\r"), KeptBecause::Asked);
    // That of the person behind root holds as well.
    ASSERT_TRUE(KeepList::add(home.files, tree.at("other"), tree.at(".cache/b")));
    CleanParts parts = home.parts();
    parts.otherSettings = tree.at("other");
    listing = CategoryScan(parts, {}).run({tree.at(".cache")});
    EXPECT_EQ(CleanHome::kept(listing).at("b"), KeptBecause::Asked);

    // A list that nobody can read keeps everything, and so does a line of it.
    ASSERT_TRUE(tree.write("settings/always-keep", "# mine\n\n~/.cache/b\n"));
    listing = home.scan(CleanCategory::UserCaches);
    EXPECT_EQ(listing.rows.size(), 0U);
    EXPECT_EQ(listing.closed.at(0).reason,
              "the list of what is always kept can not be read: " + KeepList::fileIn(settings) +
                  ", line 3: Invalid argument");
    ASSERT_TRUE(::unlink(KeepList::fileIn(settings).c_str()) == 0 &&
                tree.folder("settings/always-keep"));
    listing = home.scan(CleanCategory::UserCaches);
    EXPECT_EQ(listing.rows.size(), 0U);
    EXPECT_EQ(listing.closed.size(), 1U);
}

// As people keep their settings elsewhere, and as editors leave lines.
TEST(CategoryScan, theListMayBeALinkAndHaveLinesOfBlanks) {
    CleanHome home;
    auto& tree = home.tree;
    const std::string settings = tree.at("settings");
    const std::string start = " \t\n  # mine\n" + tree.at(".cache/a") + '\n';
    ASSERT_TRUE(tree.write(".cache/a/x", "1") && tree.write(".cache/b/x", "1") &&
                tree.write(".cache/c/x", "1") && tree.write("elsewhere/list", start) &&
                tree.folder("settings") &&
                tree.symlink("../elsewhere/list", "settings/always-keep"));
    EXPECT_EQ(CleanHome::offered(home.scan(CleanCategory::UserCaches)), (Names{"b 1", "c 1"}));
    ASSERT_TRUE(KeepList::add(home.files, settings, tree.at(".cache/b")));
    EXPECT_EQ(contentOf(tree.at("elsewhere/list")), start + tree.at(".cache/b") + '\n');
    EXPECT_EQ(CleanHome::offered(home.scan(CleanCategory::UserCaches)), Names{"c 1"});
    // A disk that is not there now.
    ASSERT_EQ(::unlink(tree.at("elsewhere/list").c_str()), 0);
    EXPECT_EQ(home.scan(CleanCategory::UserCaches).rows.size(), 0U);
}

TEST(CategoryScan, whatCanNotBeLookedAtStays) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write(".cache/shut/in/x", "1") && home.tree.write(".cache/open/x", "1") &&
                home.tree.setMode(".cache/shut/in", 0));
    ASSERT_EQ(::chmod(home.tree.path().c_str(), 0755), 0);
    const std::string failure = runInChild({.ordinaryUser = true}, [&]() -> std::string {
        const auto listing = home.scan(CleanCategory::UserCaches);
        if (listing.skipped.size() != 1) return "skipped " + std::to_string(listing.skipped.size());
        return CleanHome::kept(listing) == Reasons{{"shut", KeptBecause::Unread}} ? "" : "kept";
    });
    EXPECT_EQ(failure, "");
}

TEST(CategoryScan, aFolderOfThePersonsByAnotherMountIsLeftAlone) {
    withOwnMounts([]() -> std::string {
        if (::system("mkdir -p /mnt/Downloads /mnt/Documents && echo 1 > /mnt/Documents/x") != 0)
            return "no folder";
        if (::mount("/mnt/Documents", "/mnt/Downloads", nullptr, MS_BIND, nullptr) != 0)
            return "skip: bind";
        const auto listing = CleanHome({.home = "/mnt"}).scan(CleanCategory::UserDownloads);
        return listing.rows.empty() && listing.closed.size() == 1 ? "" : "offered";
    });
}

// The name of the target says nothing of the program.
TEST(CategoryScan, aCacheOfAProgramBehindALink) {
    CleanHome home;
    ASSERT_TRUE(home.tree.write("big/app/org.keepassxc.KeePassXC/cache/x", "1") &&
                home.tree.symlink("big", ".var"));
    EXPECT_EQ(CleanHome::kept(home.scan(CleanCategory::UserCaches)),
              (Reasons{{"x", KeptBecause::Precious}}));
}

TEST(CategoryScan, aMountKeepsItsRow) {
    withOwnMounts([]() -> std::string {
        CleanHome home({.home = "/mnt"}, {"/"});
        for (const char* folder : {"/mnt/.cache/r/in", "/mnt/Downloads/r/in", "/mnt/other"}) {
            if (::system(("mkdir -p " + std::string(folder)).c_str()) != 0) return "no folder";
            if (::system(("echo 1 > " + std::string(folder) + "/x").c_str()) != 0) return "no file";
        }
        // Of the same file system, which no device number tells.
        for (const char* folder : {"/mnt/.cache/r/in", "/mnt/Downloads/r/in"})
            if (::mount("/mnt/other", folder, nullptr, MS_BIND, nullptr) != 0) return "skip: bind";
        for (const auto category : {CleanCategory::UserCaches, CleanCategory::UserDownloads}) {
            const auto listing = home.scan(category);
            if (!listing.rows.empty()) return "offered " + listing.rows[0].path;
            if (CleanHome::kept(listing) != Reasons{{"r", KeptBecause::Mount}}) return "kept";
        }
        return "";
    });
}

// The disk gives back blocks, and those of a file with several names when the last of them goes.
TEST(CategoryScan, whatTheDiskGetsBack) {
    CleanHome home;
    auto& tree = home.tree;
    const std::string block(64 * 1024, 'x');
    ASSERT_TRUE(tree.write("Downloads/a", block) && tree.write("Downloads/both", block) &&
                tree.hardLink("Downloads/both", "Downloads/f/again") &&
                tree.write("elsewhere", block) && tree.hardLink("elsewhere", "Downloads/shared") &&
                tree.sparse("Downloads/sparse", 1ULL << 30U));
    const auto listing = home.scan(CleanCategory::UserDownloads);
    EXPECT_EQ(listing.bytes, 4 * block.size() + (1ULL << 30U));
    EXPECT_GE(listing.onDisk, 2 * block.size());
    EXPECT_LE(listing.onDisk, 2 * block.size() + 16 * 1024);
    // One of the names stays, and with it the blocks.
    const auto former = listing.onDisk;
    ASSERT_TRUE(KeepList::add(home.files, tree.at("settings"), tree.at("Downloads/f")));
    EXPECT_LE(home.scan(CleanCategory::UserDownloads).onDisk, former - block.size());
}

TEST(CategoryScan, aHomeThatDoesNotAnswerHoldsNobodyUp) {
    testing::ServedFiles served({"look=1500"});
    if (!served.isThere()) GTEST_SKIP() << "no FUSE here";
    ASSERT_TRUE(served.source().write(".cache/x/y", "1"));
    // The thread that waits uses it for as long as the process lives.
    static const auto& home = *new CleanHome({.home = served.path()});
    ScanErrand errand(
        home.parts(), [] { return home.utilities.getFolderPath(1); },
        std::chrono::milliseconds(400));
    const auto start = std::chrono::steady_clock::now();
    auto state = ScanErrand::State::Running;
    while (state == ScanErrand::State::Running) state = errand.wait(std::chrono::milliseconds(50));
    EXPECT_EQ(state, ScanErrand::State::Silent);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace orrinvale
