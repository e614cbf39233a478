// Trash on real files and volumes, and what other programs of the desktop make of what lies in it.
#include "engine/files/Trash.h"

#include <sys/syscall.h>

#include <cstdio>

#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

FolderVariables variablesIn(const std::string& home) { return {.home = home, .user = ::geteuid()}; }

tl::expected<std::string, std::string> moveAt(const TestTree& tree, const std::string& name,
                                              const FileSystem& system = files) {
    return Trash(system, nothingProtected, variablesIn(tree.at("home"))).move(tree.at(name));
}

std::string recordOf(const TestTree& tree, const std::string& name) {
    return contentOf(tree.at("home/.local/share/Trash/info/" + name + ".trashinfo"));
}

// What the program prints; nothing where it is missing.
std::optional<std::string> outputOf(const std::string& command) {
    FILE* const pipe = ::popen((command + " 2>&1; printf :%d $?").c_str(), "re");
    if (pipe == nullptr) return std::nullopt;
    std::string text;
    std::array<char, 4096> piece;
    while (const std::size_t count = std::fread(piece.data(), 1, piece.size(), pipe))
        text.append(piece.data(), count);
    ::pclose(pipe);
    if (text.ends_with(":127")) return std::nullopt;
    return text;
}

TEST(Trash, EveryKindOfEntryIsThereWithItsRecord) {
    const struct {
        std::string name, encoded;
    } cases[] = {
        {"plain.txt", "plain.txt"},
        {"with blanks & 100%.txt", "with%20blanks%20%26%20100%25.txt"},
        {"line\nbreak", "line%0Abreak"},
        {"\xff\xfe", "%FF%FE"},
        {"gr\xc3\xbc\xc3\x9f", "gr%C3%BC%C3%9F"},
        {".hidden", ".hidden"},
        {"-rf", "-rf"},
        {"a=b;c'd(e)", "a%3Db%3Bc'd(e)"},
    };
    TestTree tree;
    for (const auto& [name, encoded] : cases) {
        ASSERT_TRUE(tree.write("data/" + name, name));
        const auto moved = moveAt(tree, "data/" + name);
        ASSERT_TRUE(moved) << moved.error();
        EXPECT_EQ(*moved, tree.at("home/.local/share/Trash/files/" + name));
        EXPECT_EQ(contentOf(*moved), name);
        EXPECT_FALSE(isThere(tree.at("data/" + name)));
        const std::string record = recordOf(tree, name);
        EXPECT_TRUE(record.starts_with("[Trash Info]\nPath=" + tree.at("data/") + encoded +
                                       "\nDeletionDate="))
            << record;
        EXPECT_THAT(record.substr(record.find("Date=")),
                    MatchesRegex("Date=20[0-9][0-9]-[0-9]+-[0-9]+T[0-9]+:[0-9]+:[0-9]+\n"));
    }
    tree.write("data/folder/inner/deep", "x");
    tree.symlink(tree.at("data/folder"), "data/link");
    tree.symlink("data", "alias");
    tree.fifo("data/fifo");
    for (const char* name : {"data/link", "data/fifo", "alias/folder"})
        EXPECT_TRUE(moveAt(tree, name)) << name;
    EXPECT_EQ(contentOf(tree.at("home/.local/share/Trash/files/folder/inner/deep")), "x");
    EXPECT_THAT(recordOf(tree, "folder"), HasSubstr("Path=" + tree.at("data/folder") + "\n"));
    struct stat seen {};
    ASSERT_EQ(::lstat(tree.at("home/.local/share/Trash").c_str(), &seen), 0);
    EXPECT_EQ(seen.st_mode & 07777U, 0700U);
}

TEST(Trash, NamesThatAreTakenGetANumberAndNothingIsReplaced) {
    TestTree tree;
    for (int i = 0; i < 30; ++i) {
        tree.write("a.txt", std::to_string(i));
        ASSERT_TRUE(moveAt(tree, "a.txt"));
    }
    const std::string trash = "home/.local/share/Trash/";
    EXPECT_EQ(contentOf(tree.at(trash + "files/a.txt")), "0");
    EXPECT_EQ(contentOf(tree.at(trash + "files/a 2.txt")), "1");
    EXPECT_EQ(contentOf(tree.at(trash + "files/a 19.txt")), "18");
    tree.write(trash + "files/lost", "without a record");
    tree.write(trash + "info/gone.trashinfo", "without an entry");
    tree.write("lost", "1");
    tree.write("gone", "2");
    EXPECT_EQ(moveAt(tree, "lost").value_or(""), tree.at(trash + "files/lost 2"));
    EXPECT_EQ(moveAt(tree, "gone").value_or(""), tree.at(trash + "files/gone 2"));
    EXPECT_EQ(contentOf(tree.at(trash + "files/lost")), "without a record");
    EXPECT_FALSE(isThere(tree.at(trash + "info/lost.trashinfo")));
    const std::string longest =
        std::string(249, 'n') +
        ".\xc3\xa4\xc3\xb6";  // 254 bytes, with the record's extension too many
    for (int i = 0; i < 2; ++i) {
        tree.write(longest, "x");
        const auto moved = moveAt(tree, longest);
        ASSERT_TRUE(moved) << moved.error();
        EXPECT_TRUE(moved->ends_with(i == 0 ? "nn.\xc3\xa4\xc3\xb6" : "nn 2.\xc3\xa4\xc3\xb6"))
            << *moved;
    }
    // Never in the midst of a character.
    for (std::size_t length = 240; length < 250; ++length) {
        const std::string name = std::string(length, 'n') + "\xf0\x9f\x98\x80";
        const std::string cut = nameInTrash(name, 1);
        EXPECT_TRUE(cut == name || cut == std::string(std::min<std::size_t>(length, 245), 'n'))
            << cut;
        EXPECT_LE(cut.size(), 245U);
    }
}

TEST(Trash, WhatMayNotMoveStaysAndLeavesNoRecord) {
    TestTree tree;
    tree.write("home/.local/share/x", "x");
    tree.write("kept/precious", "x");
    tree.write("other", "x");
    ASSERT_TRUE(moveAt(tree, "other"));
    ProtectedPlaces places;
    places.add(files, tree.at("kept/precious"), "precious");
    const Trash trash(files, places, variablesIn(tree.at("home")));
    const struct {
        const char *name, *reason;
    } cases[] = {
        {"kept/precious", "precious"},
        {"kept", "a folder above precious"},
        {"missing", "No such file or directory"},
        {"kept/../kept", "not a plain absolute path"},
        {"home/.local", "the trash is in it"},
        {"home/.local/share/Trash", "the trash is in it"},
        {"home/.local/share/Trash/files", "the trash is in it"},
        {"home/.local/share/Trash/files/other", "it is in the trash"},
        {"home/.local/share/Trash/info", "it is a part of the trash"},
        {"home/.local/share/Trash/info/other.trashinfo", "it is a part of the trash"},
    };
    for (const auto& [name, reason] : cases) {
        const auto moved = trash.move(tree.at(name));
        EXPECT_EQ(moved ? *moved : moved.error(), reason) << name;
        EXPECT_TRUE(isThere(tree.at(name)) || std::string(name) == "missing") << name;
    }
    EXPECT_EQ(::rmdir(tree.at("home/.local/share/Trash/info").c_str()), -1);
    ::unlink(tree.at("home/.local/share/Trash/info/other.trashinfo").c_str());
    EXPECT_EQ(::rmdir(tree.at("home/.local/share/Trash/info").c_str()), 0)
        << "a record of what did not move";
    EXPECT_EQ(trash.move("/").error(), "the root of the file system");
}

// As on file systems that can not promise to spare what has the name already.
TEST(Trash, NothingIsReplacedWhereTheSystemDoesNotLookAfterThat) {
    TestTree tree;
    const std::string trash = "home/.local/share/Trash/";
    tree.write(trash + "files/x", "without a record");
    tree.write("x", "1");
    EXPECT_EQ(runInChild({},
                         [&]() -> std::string {
                             if (!testing::failSystemCall(SYS_renameat2, EINVAL))
                                 return "no filter";
                             if (moveAt(tree, "home").error() != "the trash is in it")
                                 return "into itself";
                             return moveAt(tree, "x").value_or("stays");
                         }),
              tree.at(trash + "files/x 2"));
    EXPECT_EQ(contentOf(tree.at(trash + "files/x")), "without a record");
}

// Between the look at it and the move; of the same size and time as well.
TEST(Trash, AnotherEntryThatCameInItsPlaceGoesBack) {
    TestTree tree;
    tree.write("x", "confirmed");
    tree.write("y", "unlike it");
    std::filesystem::last_write_time(tree.at("y"), std::filesystem::last_write_time(tree.at("x")));
    WatchedFiles watched;
    watched.beforeRemoval = [&, done = false](const char* operation) mutable {
        if (std::strcmp(operation, "moveEntry") != 0 || std::exchange(done, true)) return;
        ::rename(tree.at("x").c_str(), tree.at("kept").c_str());
        ::rename(tree.at("y").c_str(), tree.at("x").c_str());
    };
    EXPECT_EQ(moveAt(tree, "x", watched).error(), "another entry came into its place");
    EXPECT_EQ(contentOf(tree.at("x")), "unlike it");
    EXPECT_EQ(contentOf(tree.at("kept")), "confirmed");
    EXPECT_EQ(recordOf(tree, "x"), "");
}

TEST(Trash, WithoutTheRightToItNothingMoves) {
    TestTree tree;
    tree.write("locked/x", "x");
    tree.folder("home");
    if (!tree.giveAway({".", "locked", "locked/x", "home"}))
        GTEST_SKIP() << "files of another user need root";
    tree.setMode("locked", 0555);
    EXPECT_EQ(runInChild({.ordinaryUser = true}, [&] { return moveAt(tree, "locked/x").error(); }),
              "Permission denied");
    // What a look beforehand says is what a move then meets.
    tree.write("free/kept/x", "x");
    tree.write("free/y", "y");
    tree.write("own/z", "z");
    ASSERT_TRUE(tree.giveAway({"free", "free/y", "own", "own/z"}));
    for (const auto& [name, reason] : {std::pair("locked/x", "Permission denied"),
                                       {"free/kept", "Permission denied"},
                                       {"free/y", ""},
                                       {"none/y", "No such file or directory"}})
        EXPECT_EQ(runInChild({.ordinaryUser = true},
                             [&, name = name] {
                                 return Trash(files, nothingProtected, variablesIn(tree.at("home")))
                                     .objection(tree.at(name))
                                     .value_or("");
                             }),
                  reason)
            << name;
    tree.folder("other");
    tree.setMode("other", 0555);
    EXPECT_THAT(runInChild({.ordinaryUser = true},
                           [&] {
                               return Trash(files, nothingProtected, variablesIn(tree.at("other")))
                                   .objection(tree.at("own/z"))
                                   .value_or("");
                           }),
                HasSubstr("no trash on its volume: "));
    EXPECT_THAT(namesIn(tree.at("other")), ElementsAre());
    EXPECT_TRUE(isThere(tree.at("locked/x")));
    EXPECT_EQ(recordOf(tree, "x"), "");
}

// On a volume of its own, in a table of mounts of the child's own.
std::string onAnotherVolume(TestTree& tree,
                            const std::function<std::string(const std::string& top)>& check) {
    tree.folder("volume");
    tree.folder("home");
    return runInChild({}, [&]() -> std::string {
        const std::string top = tree.at("volume");
        if (!unshareMounts() || ::mount("none", top.c_str(), "tmpfs", 0, nullptr) != 0)
            return "skipped: no mounts of our own";
        tree.write("volume/d/x y", "x");
        return check(top);
    });
}

TEST(Trash, AnotherVolumeHasItsOwn) {
    const std::string user = std::to_string(::geteuid());
    const std::string anothers = "no trash on its volume: the trash there is another user's";
    const auto theirs = [](TestTree& tree, const std::string& name) {
        tree.folder("volume/.Trash" + name);
        tree.giveAway({"volume/.Trash" + name});
    };
    const auto shared = [](TestTree& tree, mode_t mode) {
        tree.folder("volume/.Trash");
        tree.setMode("volume/.Trash", mode);
    };
    const struct {
        const char* what;
        std::function<void(TestTree&)> prepare;
        std::string trash;  // or the reason
    } cases[] = {
        {"nothing is there yet", [](TestTree&) {}, ".Trash-" + user},
        {"a shared one", [&](TestTree& tree) { shared(tree, 01777); }, ".Trash/" + user},
        {"a shared one without the sticky bit", [&](TestTree& tree) { shared(tree, 0777); },
         ".Trash-" + user},
        {"a link for the shared one", [](TestTree& tree) { tree.symlink("/tmp", "volume/.Trash"); },
         ".Trash-" + user},
        {"somebody else's in the shared one",
         [&](TestTree& tree) {
             theirs(tree, "/" + user);
             tree.setMode("volume/.Trash", 01777);
         },
         ".Trash-" + user},
        {"somebody else's", [&](TestTree& tree) { theirs(tree, "-" + user); }, anothers},
        {"somebody else's files", [&](TestTree& tree) { theirs(tree, "-" + user + "/files"); },
         anothers},
        {"somebody else's records", [&](TestTree& tree) { theirs(tree, "-" + user + "/info"); },
         anothers},
        {"a link", [&](TestTree& tree) { tree.symlink("/tmp", "volume/.Trash-" + user); },
         "no trash on its volume: Not a directory"},
    };
    for (const auto& each : cases) {
        TestTree tree;
        const std::string told = onAnotherVolume(tree, [&](const std::string& top) -> std::string {
            each.prepare(tree);
            const bool isTold = Trash(files, nothingProtected, variablesIn(tree.at("home")))
                                    .objection(tree.at("volume/d/x y"))
                                    .has_value();
            const auto moved = moveAt(tree, "volume/d/x y");
            if (isTold == moved.has_value()) return "the look beforehand says something else";
            if (isThere(tree.at("home/.local"))) return "the home trash was made";
            if (isThere(tree.at("volume/d/x y")) == moved.has_value())
                return "it is not where it was said to be";
            if (!moved) return moved.error();
            if (!contentOf(top + '/' + each.trash + "/info/x y.trashinfo")
                     .starts_with("[Trash Info]\nPath=d/x%20y\n"))
                return "another record";
            return moved->substr(top.size() + 1);
        });
        if (told.starts_with("skipped")) GTEST_SKIP() << told;
        EXPECT_EQ(told, each.trash.starts_with('.') ? each.trash + "/files/x y" : each.trash)
            << each.what;
    }
}

// The home trash of the same file system, by a mount that nothing can be moved across.
TEST(Trash, ABoundFolderIsAVolumeOfItsOwn) {
    TestTree tree;
    tree.write("real/x", "x");
    tree.folder("bound");
    const std::string told = onAnotherVolume(tree, [&](const std::string&) -> std::string {
        if (!bindMount(tree.at("real"), tree.at("bound"))) return "skipped";
        const auto moved = moveAt(tree, "bound/x");
        return moved ? moved->substr(tree.path().size() + 1) : moved.error();
    });
    if (told.starts_with("skipped")) GTEST_SKIP() << told;
    EXPECT_EQ(told, "bound/.Trash-" + std::to_string(::geteuid()) + "/files/x");
}

// Desktops look for the trash at the mount, and a part of the volume with a device of its own is
// none.
TEST(Trash, ASubvolumeGetsNoneOfItsOwn) {
    TestTree tree;
    tree.sparse("image", std::uint64_t{120} << 20U);
    const auto made = outputOf("mkfs.btrfs -q '" + tree.at("image") + "'");
    if (!made) GTEST_SKIP() << "btrfs-progs is not installed";
    tree.folder("top");
    tree.folder("home");
    const std::string told = runInChild({}, [&]() -> std::string {
        if (!unshareMounts()) return "skipped: no mounts of our own";
        const auto mounted =
            outputOf("mount -o loop '" + tree.at("image") + "' '" + tree.at("top") +
                     "' && btrfs -q subvolume create '" + tree.at("top/part") + "'");
        if (!mounted || !mounted->ends_with(":0"))
            return "skipped: no btrfs on a loop device: " + mounted.value_or("");
        tree.write("top/part/d/x", "x");
        tree.write("top/d/y", "y");
        const auto ofPart = moveAt(tree, "top/part/d/x");
        const auto ofTop = moveAt(tree, "top/d/y");
        if (isThere(tree.at("top/part/.Trash-" + std::to_string(::geteuid()))))
            return "made where nobody looks";
        if (!ofTop) return ofTop.error();
        return ofPart ? contentOf(*ofPart) : ofPart.error();
    });
    if (told.starts_with("skipped")) GTEST_SKIP() << told;
    // Nothing can be moved from one part to another.
    EXPECT_EQ(told, "no trash on its volume: Invalid cross-device link");
}

TEST(Trash, OtherProgramsListAndRestoreWhatIsInIt) {
    TestTree tree;
    const std::string name = "odd \xc3\xa4 100% [x].txt";
    tree.write("data/" + name, "bytes");
    ASSERT_TRUE(moveAt(tree, "data/" + name));
    // Neither asks the session's services: a process of them would outlive the test.
    const std::string setting = "HOME='" + tree.at("home") + "' XDG_DATA_HOME='" +
                                tree.at("home/.local/share") +
                                "' LC_ALL=C.UTF-8 DBUS_SESSION_BUS_ADDRESS=disabled: ";
    const auto listed = outputOf(setting + "trash-list");
    if (!listed) GTEST_SKIP() << "trash-cli is not installed";
    EXPECT_THAT(*listed, HasSubstr(tree.at("data/" + name)));
    const auto restored =
        outputOf("cd '" + tree.at("data") + "' && echo 0 | " + setting + "trash-restore");
    EXPECT_EQ(contentOf(tree.at("data/" + name)), "bytes") << restored.value_or("");
    EXPECT_EQ(recordOf(tree, name), "");
}

TEST(Trash, TheDesktopListsAndRestoresIt) {
    TestTree tree;
    const std::string name = "odd 100% [x].txt";  // other characters gio does not put back even
                                                  // when it threw them away itself
    tree.write("data/" + name, "bytes");
    ASSERT_TRUE(moveAt(tree, "data/" + name));
    const auto told =
        outputOf("HOME='" + tree.at("home") + "' XDG_DATA_HOME='" + tree.at("home/.local/share") +
                 "' LC_ALL=C.UTF-8 timeout 20 dbus-run-session sh -c 'gio trash --list && "
                 "gio trash --restore trash:///odd%20100%25%20%5Bx%5D.txt'");
    if (!told || told->find("gio: not found") != std::string::npos)
        GTEST_SKIP() << "gio or dbus-run-session is not installed";
    if (told->find("not supported") != std::string::npos)
        GTEST_SKIP() << "no trash of the desktop's: " << *told;
    EXPECT_THAT(*told, HasSubstr("\t" + tree.at("data/" + name)));
    EXPECT_EQ(contentOf(tree.at("data/" + name)), "bytes") << *told;
}

}  // namespace
}  // namespace orrinvale
