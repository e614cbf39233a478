// The administrator right step by step, over a platform whose answers are chosen here, and the
// removals that use it, on real files.

#include <future>

#include "engine/cleaning/AuthorizedDoor.h"
#include "engine/cleaning/CleanHome.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/cleaning/QnAuthorization.h"
#include "platform/fake/FakeAuthorization.h"
#include "platform/linux/LinuxPermissions.h"
#include "support/test.h"

namespace orrinvale {
namespace {

class Right : public ::testing::Test {
protected:
    Right() {
        // Whatever the test before left held.
        right.setParts({});
        right.freeAuthorization();
        right.setParts({&system, &files, &permissions, {}});
        lines.clear();
    }
    ~Right() override {
        right.freeAuthorization();
        right.setParts({});
    }

    RemovalResult remove(const std::string& path, const EntryIdentity& seen,
                         const ProtectedPlaces& places) {
        LeavingEntry leaving;
        leaving.path = path;
        leaving.identity = seen;
        const std::atomic<bool> never{false};
        return AuthorizedDoor({&system, &files, &permissions, {}}, places).remove(leaving, never);
    }
    static std::string reasonOf(const RemovalResult& result) {
        return result.failures.empty() ? std::string() : result.failures.front().reason;
    }

    std::string last() const { return lines.empty() ? "no line" : lines.back(); }

    FakeAuthorization system;
    LinuxFileSystem files;
    LinuxPermissions permissions;
    LogLines log;
    std::vector<std::string>& lines = log.lines;
    QnAuthorization& right = QnAuthorization::shareQnAuthorization();
};

TEST_F(Right, OneGrantServesUntilItIsGivenUp) {
    EXPECT_TRUE(right.freeAuthorization());
    EXPECT_EQ(right.getAuthorizationRet(), AuthorizationRef::null);
    EXPECT_THAT(system.calls, IsEmpty());

    EXPECT_TRUE(right.allocAuthorization());
    EXPECT_TRUE(right.allocAuthorization());
    const AuthorizationRef one = right.getAuthorizationRet();
    EXPECT_NE(one, AuthorizationRef::null);
    EXPECT_NE(one, right.authorizationRef.load());
    EXPECT_TRUE(right.freeAuthorization());
    EXPECT_FALSE(right.isValidAuth);
    EXPECT_EQ(right.getAuthorizationRet(), AuthorizationRef::null);
    EXPECT_THAT(system.calls, ElementsAre("create", "system.privilege.admin 19", "makeExternalForm",
                                          "createFromExternalForm 1", "system.privilege.admin 3",
                                          "rightGet system.privilege.admin", "free"));
    EXPECT_THAT(lines, IsEmpty());
}

TEST_F(Right, EachStepThatFailsIsLoggedAndUndone) {
    struct Case {
        std::string step, line;
        bool isAfter;  // the reference is handed out all the same
    };
    for (const Case& each : {Case{"create", "Error Creating Initial Authorization: -7", false},
                             {"copyRights", "Copy Rights Unsuccessful: -7", false},
                             {"makeExternalForm", "Make ExternalForm Unsuccessful: -7", false}}) {
        lines.clear();
        system.failures = {{each.step, -7}};
        EXPECT_FALSE(right.allocAuthorization()) << each.step;
        EXPECT_FALSE(right.isValidAuth);
        ASSERT_FALSE(lines.empty());
        EXPECT_EQ(lines.front(), each.line);
        EXPECT_EQ(system.liveReferences(), 0U) << each.step;
    }
    system.failures.clear();
    ASSERT_TRUE(right.allocAuthorization());
    for (const Case& each : {Case{"createFromExternalForm", "Creat Ret Unsuccessful: -8", false},
                             {"copyRights", "Copy Rights Unsuccessful: -8", true},
                             {"rightGet", "Get Rights Unsuccessful: -8", true}}) {
        lines.clear();
        system.failures = {{each.step, -8}};
        const AuthorizationRef given = right.getAuthorizationRet();
        EXPECT_EQ(given != AuthorizationRef::null, each.isAfter) << each.step;
        EXPECT_THAT(lines, ElementsAre(each.line));
    }
    system.failures = {{"free", -9}};
    EXPECT_TRUE(right.freeAuthorization());
    EXPECT_FALSE(right.isValidAuth);
    EXPECT_EQ(lines.back(), "Free Rights Unsuccessful: -9");
}

TEST_F(Right, GivenUpDuringTheDialogIsAskedForAgain) {
    int dialogs = 0;
    system.onCopyRights = [&] {
        if (++dialogs == 1) right.freeAuthorization();
    };
    EXPECT_TRUE(right.allocAuthorization());
    EXPECT_EQ(dialogs, 2);
    EXPECT_EQ(system.liveReferences(), 1U);
}

// The test waits for an answer that must not come before the dialog's.
TEST_F(Right, ASecondCallerWaitsForTheDialogOfTheFirst) {
    std::future<bool> second;
    auto early = std::future_status::ready;
    system.failures = {{"copyRights", -60006}};
    system.onCopyRights = [&] {
        if (second.valid()) return;
        second = std::async(std::launch::async, [&] { return right.allocAuthorization(); });
        early = second.wait_for(std::chrono::milliseconds(100));
        std::async(std::launch::async, [&] {
            right.freeAuthorization();
        }).get();  // never waits for the dialog
    };
    EXPECT_FALSE(right.allocAuthorization());
    EXPECT_EQ(early, std::future_status::timeout);
    EXPECT_FALSE(second.get());
}

TEST_F(Right, LosingItClosesThePadlockAndSaysWhy) {
    std::vector<AuthorizationRefusal> told;
    right.setRightLostHandler([&](AuthorizationRefusal reason) { told.push_back(reason); });
    ASSERT_TRUE(right.allocAuthorization());
    EXPECT_EQ(right.refusalText(), "");
    system.loseRight(AuthorizationRefusal::Idle);
    EXPECT_FALSE(right.isValidAuth);
    EXPECT_THAT(told, ElementsAre(AuthorizationRefusal::Idle));
    EXPECT_THAT(right.refusalText(), HasSubstr("ten minutes"));
    right.setRightLostHandler({});
}

TEST_F(Right, AskingOnceMoreKeepsTheCallersReference) {
    const auto mine = AuthorizationRef{77};
    EXPECT_TRUE(FolderUtilities::CreateAuthoration(mine));
    EXPECT_THAT(system.calls, ElementsAre("create", "system.privilege.admin 19", "free"));
    EXPECT_FALSE(FolderUtilities::DeleteAuthoration(mine));
    system.failures = {{"copyRights", -60006}};
    EXPECT_FALSE(FolderUtilities::CreateAuthoration(mine));
    EXPECT_THAT(
        lines, ElementsAre("Free Rights Unsuccessful: -60002", "Copy Rights Unsuccessful: -60006"));
    EXPECT_EQ(system.liveReferences(), 0U);
}

TEST_F(Right, TheToolGetsTheEntryAndItsOutputIsAFailure) {
    TestTree tree;
    tree.write("a", "1");
    tree.symlink(tree.path(), "link");
    const std::string path = tree.at("link/a");
    EXPECT_FALSE(QnAuthorization::removeItemAtPath(path));  // no right
    ASSERT_TRUE(right.allocAuthorization());
    EXPECT_TRUE(QnAuthorization::removeItemAtPath(path));
    ASSERT_EQ(system.runs.size(), 1U);
    struct stat entry {};
    ASSERT_EQ(::stat(path.c_str(), &entry), 0);
    EXPECT_EQ(system.runs[0].tool, "/bin/rm");
    EXPECT_THAT(system.runs[0].arguments, ElementsAre("-rf", tree.at("a")));  // no link on the way
    EXPECT_EQ(system.runs[0].device, entry.st_dev);
    EXPECT_EQ(system.runs[0].inode, entry.st_ino);
    EXPECT_EQ(system.runs[0].type, FileType::Regular);

    system.tool = [](const PrivilegedRun&) { return "x"; };
    EXPECT_FALSE(QnAuthorization::removeItemAtPath(path));
    system.failures = {{"execute", -60031}};
    EXPECT_FALSE(QnAuthorization::removeItemAtPath(path));
    system.failures.clear();
    system.tool = nullptr;
    EXPECT_TRUE(QnAuthorization::removeItemAtPath(tree.at("missing")));
    for (const std::string& bad :
         {std::string(), std::string("a"), path + '\0', '/' + std::string(4095, 'x')})
        EXPECT_FALSE(QnAuthorization::removeItemAtPath(bad)) << bad.size();
    EXPECT_EQ(system.liveReferences(), 1U);
}

// As a user who may not change the folder that holds the entries. Of a file of his, another name
// stands in a folder of his own.
TEST_F(Right, PlainFirstPrivilegedSecond) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make a folder of someone else";
    TestTree tree;
    for (const char* name : {"mine/a", "mine/folder/c", "mine/secret", "theirs/kept/e"})
        tree.write(name, "1");
    ASSERT_TRUE(tree.hardLink("mine/secret", "theirs/secret"));
    for (const char* name : {"mine", "mine/folder", "mine/secret", "theirs/kept", "theirs/kept/e"})
        ASSERT_EQ(::chown(tree.at(name).c_str(), 65534, 65534), 0);
    ASSERT_TRUE(tree.setMode("mine/folder", 0500));
    ASSERT_TRUE(tree.setMode("mine/secret", 0600));
    ASSERT_TRUE(tree.setMode("theirs/kept", 0500));

    EXPECT_EQ(
        runInChild(
            {.ordinaryUser = true},
            [&]() -> std::string {
                std::string out;
                const auto expect = [&](bool good, const std::string& what) {
                    out += good ? "" : what + '\n';
                };
                const auto modeOf = [](const std::string& path) {
                    struct stat now {};
                    return ::stat(path.c_str(), &now) == 0 ? now.st_mode & 07777 : 0;
                };
                const ProtectedPlaces none;
                const std::string secret = tree.at("theirs/secret");
                const auto seen = EntryIdentity::of(
                    *files.attributes(FileSystem::noParent, secret.c_str(), Links::Keep));
                const auto removed = [&] { return remove(secret, seen, none); };
                expect(QnAuthorization::synFastRemovePath(tree.at("mine/a")), "a plain file stays");
                expect(QnAuthorization::synFastRemovePath(tree.at("mine/folder")),
                       "a folder without the right to write stays");
                expect(last().starts_with("Removed"), "a plain removal complains: " + last());
                expect(!removed().gone, "the padlock is closed");
                expect(last() == "Clean deletable file failed: " + secret + "-Permission denied",
                       last());

                right.allocAuthorization();
                std::vector<mode_t> modesAtRun;
                system.tool = [&](const PrivilegedRun& run) {
                    modesAtRun.push_back(modeOf(run.arguments.back()));
                    return std::string();
                };
                const RemovalResult again = removed();
                expect(again.gone, "the padlock is open now, and yet: " + reasonOf(again));
                expect(modeOf(tree.at("mine/secret")) == 0600,
                       "the file is open to others by its other name");
                expect(QnAuthorization::synFastRemovePath(tree.at("theirs/kept")),
                       "the tool's word is not taken");
                expect(last().starts_with("Clean deletable file failed: "), "no line");
                expect(::access(tree.at("theirs/kept/e").c_str(), F_OK) != 0,
                       "the folder was not opened up");
                expect(modesAtRun == std::vector<mode_t>{0600, 0500},
                       "what the tool is to remove is open to others");
                expect(modeOf(tree.at("theirs/kept")) == 0500, "what stays is left open");
                system.tool = [](const PrivilegedRun&) { return "no"; };
                expect(!removed().gone, "printing is no failure");
                return out;
            }),
        "");
}

// The folder of what was refused became a link into somebody's folder, with a file of that name.
TEST_F(Right, TheToolGetsWhatWasRefusedAndNothingElse) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make a folder of someone else";
    testing::CleanHome home;
    auto& tree = home.tree;
    ASSERT_TRUE(tree.write(".cache/r/theirs/f", "1") && tree.write("person/f", "mine") &&
                tree.setMode(".cache/r/theirs", 0755) && tree.setMode("person", 0755) &&
                tree.setMode(".", 0755) && tree.giveAway({".", ".cache", ".cache/r"}));
    for (const bool isSwapped : {false, true})
        EXPECT_EQ(runInChild({.ordinaryUser = true},
                             [&]() -> std::string {
                                 const auto rows = home.scan(CleanCategory::UserCaches).rows;
                                 if (rows.size() != 1) return "no row";
                                 right.allocAuthorization();
                                 system.tool = [](const PrivilegedRun&) { return "no"; };
                                 home.files.beforeRemoval = [&](const char* operation) {
                                     if (!isSwapped || operation != std::string_view("removeEntry"))
                                         return;
                                     ::rename(tree.at(".cache/r/theirs").c_str(),
                                              tree.at(".cache/r/moved").c_str());
                                     tree.symlink("../../person", ".cache/r/theirs");
                                 };
                                 LeavingEntry leaving;
                                 leaving.path = rows[0].path;
                                 leaving.identity = rows[0].identity;
                                 leaving.seen = rows[0].seen.get();
                                 const std::atomic<bool> never{false};
                                 const auto result =
                                     AuthorizedDoor({&system, &home.files, &permissions, {}},
                                                    ProtectedPlaces())
                                         .remove(leaving, never);
                                 if (result.gone) return "gone";
                                 return std::to_string(system.runs.size());
                             }),
                  isSwapped ? "0" : "1");
}

// A folder would go with whatever came into it meanwhile.
TEST_F(Right, TheToolOfACleanTakesFilesAlone) {
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make a folder of someone else";
    for (const auto& [takes, taken] : {std::pair{AuthorizedDoor::ToolTakes::FilesAlone, "f"},
                                       {AuthorizedDoor::ToolTakes::FilesAndFolders, "ef"}}) {
        testing::CleanHome home;
        auto& tree = home.tree;
        ASSERT_TRUE(tree.write("Downloads/r/f", "1") && tree.folder("Downloads/r/e") &&
                    tree.setMode("Downloads/r", 0755) && tree.setMode(".", 0755) &&
                    tree.giveAway({".", "Downloads"}));
        EXPECT_EQ(runInChild({.ordinaryUser = true},
                             [&, toolTakes = takes]() -> std::string {
                                 const auto rows = home.scan(CleanCategory::UserDownloads).rows;
                                 if (rows.size() != 1) return "no row";
                                 right.allocAuthorization();
                                 system.tool = [](const PrivilegedRun&) { return "no"; };
                                 LeavingEntry leaving;
                                 leaving.path = rows[0].path;
                                 leaving.identity = rows[0].identity;
                                 leaving.seen = rows[0].seen.get();
                                 const std::atomic<bool> never{false};
                                 AuthorizedDoor door({&system, &home.files, &permissions, {}},
                                                     ProtectedPlaces(), toolTakes);
                                 if (door.remove(leaving, never).gone) return "gone";
                                 std::string names;
                                 for (const PrivilegedRun& run : system.runs)
                                     names += lastPathComponent(run.arguments.at(1));
                                 std::sort(names.begin(), names.end());
                                 return names;
                             }),
                  taken);
    }
}

TEST_F(Right, WhatIsProtectedOrChangedIsNotPassedOn) {
    TestTree tree;
    tree.write("protected/a", "1");
    tree.write("seen", "1");
    tree.write("gone", "1");
    ProtectedPlaces places;
    places.add(files, tree.at("protected/a"), "mine");
    const auto identity = [&](const char* name) {
        return EntryIdentity::of(
            *files.attributes(FileSystem::noParent, tree.at(name).c_str(), Links::Keep));
    };
    ASSERT_TRUE(right.allocAuthorization());
    const auto refused = remove(tree.at("protected"), identity("protected"), places);
    EXPECT_FALSE(refused.gone);
    EXPECT_THAT(reasonOf(refused), HasSubstr("mine"));
    // Protected by its place alone, which the path does not tell.
    places.add(files, tree.at("real/later"), "mine too");
    ASSERT_TRUE(tree.write("real/later", "1"));
    ASSERT_TRUE(tree.symlink("real", "way"));
    EXPECT_EQ(reasonOf(remove(tree.at("way/later"), identity("way/later"), places)), "mine too");

    const auto seen = identity("seen");
    const auto gone = identity("gone");
    ASSERT_TRUE(tree.write("seen", "other"));
    ASSERT_EQ(::unlink(tree.at("gone").c_str()), 0);
    const auto changed = remove(tree.at("seen"), seen, places);
    EXPECT_FALSE(changed.gone);
    EXPECT_EQ(reasonOf(changed), "changed since the scan");
    EXPECT_TRUE(remove(tree.at("gone"), gone, places).gone);
    auto pulledOut = gone;
    ++pulledOut.device;
    EXPECT_FALSE(remove(tree.at("disk/gone"), pulledOut, places).gone);
    EXPECT_TRUE(remove(tree.at("seen"), identity("seen"), places).gone);
    EXPECT_FALSE(QnAuthorization::synFastRemovePath("/"));
    EXPECT_FALSE(QnAuthorization::synFastRemovePath("seen"));
    EXPECT_THAT(system.runs, IsEmpty());
}

}  // namespace
}  // namespace orrinvale
