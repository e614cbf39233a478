// The administrator right step by step, over a platform whose answers are chosen here, and the removals that use it, on real files.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "engine/base/Log.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/cleaning/QnAuthorization.h"
#include "platform/fake/FakeAuthorization.h"
#include "platform/linux/LinuxPermissions.h"
#include "support/TestTree.h"

namespace orrinvale {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Right : public ::testing::Test {
protected:
    Right() {
        Log::setEnabled(true);
        Log::setSink([this](std::string_view line) { lines.emplace_back(line); });
        // Whatever the test before left held.
        right.setParts({});
        right.freeAuthorization();
        right.setParts({&system, &files, &permissions, {}});
        lines.clear();
    }
    ~Right() override {
        right.freeAuthorization();
        right.setParts({});
        Log::setSink({});
        Log::setEnabled(wasEnabled);
    }

    std::string last() const { return lines.empty() ? "no line" : lines.back(); }

    FakeAuthorization system;
    LinuxFileSystem files;
    LinuxPermissions permissions;
    std::vector<std::string> lines;
    const bool wasEnabled = Log::isEnabled();
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
    EXPECT_THAT(system.calls,
                ElementsAre("create", "system.privilege.admin 19", "makeExternalForm", "createFromExternalForm 1",
                            "system.privilege.admin 3", "rightGet system.privilege.admin", "free"));
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
    EXPECT_THAT(system.calls, ElementsAre("create", "system.privilege.admin 19"));
    EXPECT_FALSE(FolderUtilities::DeleteAuthoration(mine));
    system.failures = {{"copyRights", -60006}};
    EXPECT_FALSE(FolderUtilities::CreateAuthoration(mine));
    EXPECT_THAT(lines, ElementsAre("Free Rights Unsuccessful: -60002", "Copy Rights Unsuccessful: -60006"));
}

TEST_F(Right, TheToolGetsTheEntryAndItsOutputIsAFailure) {
    testing::TestTree tree;
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
    for (const std::string& bad : {std::string(), std::string("a"), path + '\0', '/' + std::string(4095, 'x')})
        EXPECT_FALSE(QnAuthorization::removeItemAtPath(bad)) << bad.size();
    EXPECT_EQ(system.liveReferences(), 1U);
}

// As a user who may not change the folder that holds the entries.
TEST_F(Right, PlainFirstPrivilegedSecond) {
    testing::TestTree tree;
    tree.write("mine/a", "1");
    tree.write("mine/b", "1");
    tree.write("mine/folder/c", "1");
    tree.write("theirs/d", "1");
    tree.folder("theirs/kept");
    const auto give = [&](const char* name) { return ::chown(tree.at(name).c_str(), 65534, 65534); };
    for (const char* name : {"mine", "mine/folder", "theirs/kept"}) ASSERT_EQ(::geteuid() == 0 ? give(name) : 0, 0);
    ASSERT_TRUE(tree.setMode("mine/folder", 0500));
    ASSERT_TRUE(tree.setMode("theirs/kept", 0750));
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make a folder of someone else";

    EXPECT_EQ(
        testing::runInChild(
            {.ordinaryUser = true},
            [&]() -> std::string {
                std::string out;
                const auto expect = [&](bool good, const std::string& what) { out += good ? "" : what + '\n'; };
                expect(QnAuthorization::synFastRemovePath(tree.at("mine/a")), "a plain file stays");
                expect(QnAuthorization::synFastRemovePath(tree.at("mine/folder")),
                       "a folder without the right to write stays");
                expect(last().starts_with("Removed"), "a plain removal complains: " + last());

                lines.clear();
                expect(!QnAuthorization::synFastRemovePath(tree.at("theirs/d")), "the padlock is closed");
                expect(last() == "Clean deletable file failed: " + tree.at("theirs/d") + "-Permission denied", last());
                expect(!QnAuthorization::synFastRemovePath(tree.at("theirs/kept")), "the folder goes");
                struct stat kept {};
                ::stat(tree.at("theirs/kept").c_str(), &kept);
                expect((kept.st_mode & 07777) == 0750, "what stays is left open to all");

                right.allocAuthorization();
                std::uint32_t modeAtRun = 0;
                system.tool = [&](const PrivilegedRun& run) {
                    struct stat now {};
                    ::stat(run.arguments.back().c_str(), &now);
                    modeAtRun = now.st_mode & 07777;
                    return std::string();
                };
                lines.clear();
                expect(QnAuthorization::synFastRemovePath(tree.at("theirs/kept")), "the tool's word is not taken");
                expect(modeAtRun == 0777, "the entry is not opened up");
                expect(last().starts_with("Clean deletable file failed: "), "no line");
                system.tool = [](const PrivilegedRun&) { return "no"; };
                expect(!QnAuthorization::synFastRemovePath(tree.at("theirs/d")), "printing is no failure");
                return out;
            }),
        "");
}

TEST_F(Right, WhatIsProtectedOrChangedIsNotPassedOn) {
    testing::TestTree tree;
    tree.write("protected/a", "1");
    tree.write("seen", "1");
    tree.write("gone", "1");
    ProtectedPlaces places;
    places.add(files, tree.at("protected/a"), "mine");
    const auto identity = [&](const char* name) {
        return EntryIdentity::of(*files.attributes(FileSystem::noParent, tree.at(name).c_str(), Links::Keep));
    };
    ASSERT_TRUE(right.allocAuthorization());
    const auto refused = QnAuthorization::synFastRemovePath(tree.at("protected"), identity("protected"), places);
    EXPECT_FALSE(refused.gone);
    EXPECT_THAT(refused.reason, HasSubstr("mine"));

    const auto seen = identity("seen");
    const auto gone = identity("gone");
    ASSERT_TRUE(tree.write("seen", "other"));
    ASSERT_EQ(::unlink(tree.at("gone").c_str()), 0);
    const auto changed = QnAuthorization::synFastRemovePath(tree.at("seen"), seen, places);
    EXPECT_FALSE(changed.gone);
    EXPECT_EQ(changed.reason, "changed since the scan");
    EXPECT_TRUE(QnAuthorization::synFastRemovePath(tree.at("gone"), gone, places).gone);
    EXPECT_TRUE(QnAuthorization::synFastRemovePath(tree.at("seen"), identity("seen"), places).gone);
    EXPECT_FALSE(QnAuthorization::synFastRemovePath("/"));
    EXPECT_FALSE(QnAuthorization::synFastRemovePath("seen"));
    EXPECT_THAT(system.runs, IsEmpty());
}

}  // namespace
}  // namespace orrinvale
