// FolderUtilities over the real base directories and trash folders, and the rules of
// CleanablePlaces.
#include "engine/cleaning/FolderUtilities.h"

#include "engine/cleaning/CleanablePlaces.h"
#include "engine/files/Catalog.h"
#include "platform/linux/LinuxFolders.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using Paths = std::vector<std::string>;

Paths foldersOf(const FolderVariables& variables, std::uint32_t index, const Paths& volumes = {}) {
    const LinuxFolders folders(variables);
    return FolderUtilities(files, folders, [&] { return volumes; }).getFolderPath(index);
}

TEST(CategoryFolders, followTheBaseDirectories) {
    const FolderVariables plain{.home = "/home/u/"};
    EXPECT_EQ(foldersOf(plain, 0), Paths{"/var/cache"});
    EXPECT_EQ(foldersOf(plain, 1), Paths{"/home/u/.cache"});
    EXPECT_EQ(foldersOf(plain, 2), Paths{"/var/log"});
    EXPECT_EQ(foldersOf(plain, 3), Paths{});
    EXPECT_EQ(foldersOf(plain, 5), Paths{"/home/u/Downloads"});
    for (const std::uint32_t index : {6U, 7U, ~0U}) EXPECT_EQ(foldersOf(plain, index), Paths{});
    for (const std::uint32_t index : {1U, 3U, 5U})
        EXPECT_EQ(foldersOf({}, index), Paths{}) << index;

    const std::pair<const char*, const char*> caches[] = {
        {"/big//cache/./", "/big/cache"}, {"relative", "/home/u/.cache"},
        {"/", "/home/u/.cache"},          {"/home/u/", "/home/u/.cache"},
        {"/home", "/home/u/.cache"},      {"/home/u/x/..", "/home/u/.cache"},
        {"/home/us", "/home/us"}};
    for (const auto& [given, expected] : caches)
        EXPECT_EQ(foldersOf({.home = "/home/u", .cacheHome = given}, 1), Paths{expected}) << given;
}

TEST(CategoryFolders, userLogsAreThoseThatExist) {
    TestTree tree;
    for (const char* name : {"s/log", ".local/share/xorg", ".npm/_logs", "elsewhere"})
        ASSERT_TRUE(tree.folder(name));
    ASSERT_TRUE(tree.write("s/logs", "a file"));
    ASSERT_TRUE(tree.folder(".config/Slack/logs") && tree.folder(".config/Unknown/logs") &&
                tree.write(".xsession-errors.old", "1") && tree.write(".xsession-errors", "1"));
    EXPECT_EQ(foldersOf({.home = tree.path(), .stateHome = tree.at("s")}, 3),
              (Paths{tree.at("s/log"), tree.at(".local/share/xorg"), tree.at(".npm/_logs"),
                     tree.at(".config/Slack/logs"), tree.at(".xsession-errors.old")}));
}

TEST(CategoryFolders, cachesOfProgramsThatAreKeptApart) {
    TestTree tree;
    for (const char* name : {".var/app/org.b/cache", ".var/app/org.a/cache", ".var/app/org.c/data",
                             "snap/x/common/.cache", "snap/bin"})
        ASSERT_TRUE(tree.folder(name));
    EXPECT_EQ(foldersOf({.home = tree.path()}, 1),
              (Paths{tree.at(".cache"), tree.at(".var/app/org.a/cache"),
                     tree.at(".var/app/org.b/cache"), tree.at("snap/x/common/.cache")}));
}

TEST(CategoryFolders, downloadsAreWhereTheDesktopSaysButNeverTheHome) {
    const struct {
        std::string line;
        std::string expected;  // in the home folder; "-" for none
    } cases[] = {
        {"XDG_DOWNLOAD_DIR=\"$HOME/Geladen/\"", "/Geladen"},
        {"  XDG_DOWNLOAD_DIR=\"$HOME/a \\\"b\\\" \\$c\" \r", "/a \"b\" $c"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/1\"\nXDG_DOWNLOAD_DIR=\"$HOME/2\"\nXDG_DESKTOP_DIR=\"$HOME/3\"",
         "/2"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/\"", "-"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/.//.\"", "-"},
        {"XDG_DOWNLOAD_DIR=\"/\"", "-"},
        {"#XDG_DOWNLOAD_DIR=\"$HOME/x\"", "/Downloads"},
        {"XDG_DOWNLOAD_DIR=\"relative\"", "/Downloads"},
        {"XDG_DOWNLOAD_DIR=\"$HOMER/x\"", "/Downloads"},
        {"XDG_DOWNLOAD_DIR=\"${HOME}/x\"", "/Downloads"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/x/../..\"", "/Downloads"},
        {"XDG_DOWNLOAD_DIR=\"$HOME/open", "/Downloads"},
        {"XDG_DOWNLOAD_DIR=$HOME/bare", "/Downloads"},
        {std::string(70'000, '#') + "\nXDG_DOWNLOAD_DIR=\"$HOME/x\"", "/Downloads"},
    };
    for (const auto& each : cases) {
        TestTree tree;
        ASSERT_TRUE(tree.write(".config/user-dirs.dirs", each.line));
        const Paths expected = each.expected == "-" ? Paths{} : Paths{tree.path() + each.expected};
        EXPECT_EQ(foldersOf({.home = tree.path()}, 5), expected) << each.line.substr(0, 100);
    }
    TestTree blocking;
    ASSERT_TRUE(blocking.fifo(".config/user-dirs.dirs"));
    EXPECT_EQ(foldersOf({.home = blocking.path()}, 5), Paths{blocking.at("Downloads")});
}

TEST(TrashFolders, oneForTheHomesVolumeAndTheSafeOnesOfOthers) {
    TestTree tree;
    const std::string user = std::to_string(::getuid());
    const FolderVariables variables{.home = tree.at("disk/home"), .user = ::getuid()};
    const std::string home = tree.at("disk/home/.local/share/Trash/files");
    for (const char* name :
         {"disk/home", "usb", "both", "linked", "victim/files", "unsticky", "planted", "foreign"})
        ASSERT_TRUE(tree.folder(name));
    ASSERT_TRUE(tree.folder("both/.Trash/" + user) && tree.folder("both/.Trash-" + user) &&
                tree.setMode("both/.Trash", 01777) && tree.folder("shared/.Trash/" + user) &&
                tree.setMode("shared/.Trash", 01777) && tree.folder("unsticky/.Trash/" + user) &&
                tree.symlink("../shared/.Trash", "linked/.Trash") &&
                tree.symlink("../victim", "planted/.Trash-" + user));
    const std::pair<std::string, Paths> cases[] = {
        {"usb", {tree.at("usb/.Trash-" + user + "/files")}},
        {"usb/", {tree.at("usb/.Trash-" + user + "/files")}},
        {"shared", {tree.at("shared/.Trash/" + user + "/files")}},
        {"both",
         {tree.at("both/.Trash/" + user + "/files"), tree.at("both/.Trash-" + user + "/files")}},
        {"linked", {tree.at("linked/.Trash-" + user + "/files")}},
        {"unsticky", {tree.at("unsticky/.Trash-" + user + "/files")}},
        {"planted", {}},
    };
    for (const auto& [volume, trash] : cases) {
        Paths expected{home};
        expected.insert(expected.end(), trash.begin(), trash.end());
        EXPECT_EQ(foldersOf(variables, 4, {tree.at("disk"), tree.at(volume)}), expected) << volume;
    }
    EXPECT_EQ(foldersOf(variables, 4, {"/"}), Paths{home});
    EXPECT_EQ(foldersOf(variables, 4, {tree.path(), tree.at("disk"), tree.at("disk/ho")}).at(1),
              home)
        << "the nearest volume above the home folder";
    EXPECT_EQ(foldersOf(variables, 4), Paths{}) << "no volume is known";
    if (::geteuid() != 0) GTEST_SKIP() << "only root may give a folder to somebody else";
    ASSERT_TRUE(tree.folder("foreign/.Trash-" + user) &&
                ::chown(tree.at("foreign/.Trash-" + user).c_str(), 65534, 65534) == 0);
    EXPECT_EQ(foldersOf(variables, 4, {tree.at("foreign")}), Paths{});
}

TEST(TrashFolders, eachEntryHasARecord) {
    const LinuxFolders folders(FolderVariables{});
    const std::pair<const char*, const char*> cases[] = {
        {"/h/.local/share/Trash/files/a b/", "/h/.local/share/Trash/info/a b.trashinfo"},
        {"/m/.Trash/1000/files/x", "/m/.Trash/1000/info/x.trashinfo"},
        {"/m/.Trash-1000/files/x", "/m/.Trash-1000/info/x.trashinfo"}};
    for (const auto& [path, record] : cases) EXPECT_EQ(folders.trashRecordOf(path), record) << path;
    for (const char* path :
         {"/h/files/x", "/h/Trash/files/x/y", "/Trash/files", "Trash/files/x", ""})
        EXPECT_EQ(folders.trashRecordOf(path), std::nullopt) << path;
}

TEST(FolderUtilities, sizesPathsAndTheFolderToShow) {
    TestTree tree;
    ASSERT_TRUE(tree.write("f/file", "12345") && tree.write("f/In.APP/x", "1") &&
                tree.symlink("f", "link"));
    const LinuxFolders folders(FolderVariables{});
    const FolderUtilities utilities(files, folders, {});
    const Catalog catalog(files);
    for (const auto& [name, size] :
         {std::pair{"f", 6U}, {"f/file", 5U}, {"missing", 0U}, {"link", 1U}, {"link/", 6U}}) {
        EXPECT_EQ(utilities.sizeOfItemAtPath(tree.at(name)), size) << name;
        const auto ref = catalog.fsref(tree.at(name));
        EXPECT_EQ(utilities._sizeOfItemForFSRef(ref ? &*ref : nullptr), size) << name;
    }
    const FSRef nothing;
    EXPECT_EQ(utilities._sizeOfItemForFSRef(&nothing), 0U);
    EXPECT_EQ(utilities.pathForRef(&nothing), std::nullopt);
    EXPECT_EQ(utilities.pathForRef(nullptr), std::nullopt);

    const std::string root = tree.path();
    const std::pair<std::string, std::string> cases[] = {{root + "/f", root + "/f"},
                                                         {root + "/link", root + "/link"},
                                                         {root + "/f/file", root + "/f"},
                                                         {root + "/f/In.APP", root + "/f"},
                                                         {root + "/f/In.APP/", root + "/f"},
                                                         {root + "/f/gone/", root + "/f"},
                                                         {"/", "/"},
                                                         {"/missing", "/"},
                                                         {"missing", ""}};
    for (const auto& [path, folder] : cases)
        EXPECT_EQ(utilities.getFolderFromFile(path), folder) << path;
}

TEST(CleanablePlaces, whatNothingMakesAgainStays) {
    using Rule = CleanablePlaces::Rule;
    const CleanablePlaces places("/var/cache", "/var/log/");
    const struct {
        const char* path;
        FileType type;
        Rule rule;
    } cases[] = {
        {"/var/cache", FileType::Folder, Rule::ContentsOnly},
        {"/var//cache/apt/archives", FileType::Folder, Rule::ContentsOnly},
        {"/var/cache/apt/archives/a_1_all.deb", FileType::Regular, Rule::MayGo},
        {"/var/cache/apt/archives/lock", FileType::Regular, Rule::Stays},
        {"/var/cache/apt/pkgcache.bin", FileType::Regular, Rule::MayGo},
        {"/var/cache/ldconfig/aux-cache", FileType::Regular, Rule::MayGo},
        {"/var/cache/private/service/x", FileType::Regular, Rule::MayGo},
        {"/var/cache/debconf", FileType::Folder, Rule::Stays},
        {"/var/cache/debconf/config.dat", FileType::Regular, Rule::Stays},
        {"/var/cache/debconf.old", FileType::Regular, Rule::MayGo},
        {"/var/cache/big", FileType::SymbolicLink, Rule::Stays},
        {"/var/cache/x/socket", FileType::Socket, Rule::Stays},
        {"/var/cache/../lib/dpkg/status", FileType::Regular, Rule::Stays},
        {"/var/log/apt", FileType::Folder, Rule::ContentsOnly},
        {"/var/log/syslog.1", FileType::Regular, Rule::MayGo},
        {"/var/log/wtmp", FileType::Regular, Rule::Stays},
        {"/var/log/wtmp.1", FileType::Regular, Rule::MayGo},
        {"/var/log/app/lastlog", FileType::Regular, Rule::Stays},
        {"/var/log/app/lastlog.1", FileType::Regular, Rule::MayGo},
        {"/var/log/syslog", FileType::Regular, Rule::Stays},
        {"/var/log/auth.log", FileType::Regular, Rule::Stays},
        {"/var/log/dpkg.log", FileType::Regular, Rule::Stays},
        {"/var/log/dpkg.log.12.gz", FileType::Regular, Rule::MayGo},
        {"/var/log/app/out.log.2.xz", FileType::Regular, Rule::MayGo},
        {"/var/log/app/out.log.2.zst", FileType::Regular, Rule::MayGo},
        {"/var/log/app/out-20241103", FileType::Regular, Rule::MayGo},
        {"/var/log/app/out.log-20241103.gz", FileType::Regular, Rule::MayGo},
        {"/var/log/app/out-2024-11-03.log", FileType::Regular, Rule::MayGo},
        {"/var/log/app/out-20241303.log", FileType::Regular, Rule::Stays},
        {"/var/log/app/20241103", FileType::Regular, Rule::Stays},
        {"/var/log/app/data.2024", FileType::Regular, Rule::Stays},
        {"/var/log/app/out.gz", FileType::Regular, Rule::Stays},
        {"/var/log/Xorg.0.log", FileType::Regular, Rule::Stays},
        {"/var/log/Xorg.0.log.old", FileType::Regular, Rule::MayGo},
        {"/var/log/.old", FileType::Regular, Rule::Stays},
        {"/var/log/app/system@1.journal", FileType::Regular, Rule::Stays},
        {"/var/log/journal/m/system.journal", FileType::Regular, Rule::Stays},
        {"/var/log/journal/m/system@0-1.journal", FileType::Regular, Rule::MayGo},
        {"/var/log/journal/m/user-1000.journal~", FileType::Regular, Rule::MayGo},
        {"/var/log/mysql/host-bin.000001", FileType::Regular, Rule::Stays},
        {"/var/log/mariadb/binlog.000001", FileType::Regular, Rule::Stays},
        {"/var/log/mysql/error.log.1", FileType::Regular, Rule::MayGo},
        {"/var/log/mysql/error.log", FileType::Regular, Rule::Stays},
        {"/var/log/audit/audit.log.1", FileType::Regular, Rule::Stays},
        {"/var/cached/debconf/x", FileType::Regular, Rule::MayGo},
        {"/home/u/.cache/debconf", FileType::Folder, Rule::MayGo},
        {"relative", FileType::Regular, Rule::Stays},
    };
    for (const auto& each : cases) {
        const auto verdict = places.verdict(each.path, each.type);
        EXPECT_EQ(verdict.rule, each.rule) << each.path;
        EXPECT_EQ(verdict.reason.empty(), each.rule == Rule::MayGo) << each.path;
    }
}

}  // namespace
}  // namespace orrinvale
