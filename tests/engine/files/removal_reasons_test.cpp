// What a removal says of an entry that stayed, or that somebody else removed: the error that there
// was, and no other.
#include "engine/files/SafeRemoval.h"
#include "support/test.h"

namespace orrinvale {
namespace {

const ProtectedPlaces noPlaceProtected;

const char* nameOf(StayReason kind) {
    switch (kind) {
        case StayReason::Rights: return "rights";
        case StayReason::Protected: return "protected";
        case StayReason::Changed: return "changed";
        case StayReason::CameLater: return "later";
        case StayReason::System: return "system";
        default: return "another";
    }
}

std::string told(const RemovalResult& result) {
    std::string text = result.gone ? result.byOthers ? "gone by others" : "gone" : "there";
    for (const auto& failure : result.failures)
        text += fmt::format(", {}: {}", nameOf(failure.kind), failure.reason);
    return text;
}

// The real files, with an error of the test's choice for the look at a name, counted from 1, or for
// the way back up.
class FaultyFiles final : private testing::RealFiles, public ForwardingFiles {
public:
    FaultyFiles(std::string name, int atLook, int error)
        : ForwardingFiles(real), m_name(std::move(name)), m_atLook(atLook), m_error(error) {}

    using ForwardingFiles::attributes;
    SysResult<FileAttributes> attributes(int parent, const char* name, Links links) const override {
        if (m_name == name && ++m_looks == m_atLook) return tl::unexpected(m_error);
        return ForwardingFiles::attributes(parent, name, links);
    }
    SysResult<Descriptor> openFolder(int parent, const char* name, Links links) const override {
        if (m_name == name && ++m_looks == m_atLook) return tl::unexpected(m_error);
        return ForwardingFiles::openFolder(parent, name, links);
    }

private:
    const std::string m_name;
    const int m_atLook, m_error;
    mutable int m_looks = 0;
};

RemovalResult removeAt(const FileSystem& system, const std::string& path,
                       const std::optional<EntryIdentity>& expected = std::nullopt) {
    return SafeRemoval(system, noPlaceProtected).remove(path, expected);
}

TEST(RemovalReasons, AnErrorOfALookIsToldAsThatError) {
    const struct {
        const char* what;
        const char* name;  // whose look fails
        int atLook, error;
        const char* path;
        const char* expected;
        bool goes;  // all the same
    } cases[] = {
        {"first look at a file", "x", 1, EIO, "f/x", "there, system: Input/output error", false},
        {"first look, no right", "x", 1, EACCES, "f/x", "there, rights: Permission denied", false},
        {"last look at a file", "x", 2, EIO, "f/x", "there, system: Input/output error", true},
        {"last look at a folder", "f", 2, EIO, "f", "there, system: Input/output error", true},
        {"way back up", "..", 1, EACCES, "deep", "there, rights: Permission denied", false},
        {"way back up, other", "..", 1, EMFILE, "deep", "there, system: Too many open files",
         false},
    };
    for (const auto& [what, name, atLook, error, path, expected, goes] : cases) {
        TestTree tree;
        tree.write("f/x", "x");
        ASSERT_TRUE(tree.makeDeep("deep", 40, "x"));
        const FaultyFiles files(name, atLook, error);
        EXPECT_EQ(told(removeAt(files, tree.at(path))), expected) << what;
        EXPECT_EQ(isThere(tree.at(path)), !goes) << what;
    }
}

TEST(RemovalReasons, RightsAreToldFromWhatNobodyMay) {
    TestTree tree;
    for (const char* name : {"shut/x", "kept/x", "unread/x"}) tree.write(name, "x");
    if (!tree.giveAway({".", "shut", "shut/x", "kept", "kept/x", "unread"}))
        GTEST_SKIP() << "files of another user need root";
    tree.setMode("shut", 0);
    tree.setMode("kept", 0555);
    tree.setMode("unread", 0);
    const std::string shown = runInChild({.ordinaryUser = true}, [&] {
        const LinuxFileSystem files;
        std::string text;
        for (const char* name : {"shut/x", "kept/x", "unread", "../."})
            text += told(removeAt(files, tree.at(name))) + '\n';
        return text + told(removeAt(files, "/"));
    });
    EXPECT_EQ(shown,
              "there, rights: Permission denied\nthere, rights: Permission denied\nthere, rights: "
              "Permission denied\n"
              "there, protected: not a plain absolute path\nthere, protected: the root of the file "
              "system");
}

TEST(RemovalReasons, ALongPathIsLookedAtLikeAnyOther) {
    const LinuxFileSystem files;
    TestTree tree("/dev/shm");
    constexpr int levels = 3000;
    ASSERT_TRUE(tree.makeDeep("t", levels, "x"));
    std::string folder = tree.at("t");
    for (int level = 0; level < levels; ++level) folder += "/d";
    const EntryIdentity seen = EntryIdentity::of(attributesOf(tree.at("t")));
    EntryIdentity other = seen;
    ++other.inode;
    EXPECT_EQ(told(removeAt(files, folder + "/leaf", other)),
              "there, changed: changed since the scan");
    EXPECT_EQ(told(removeAt(files, folder + '/' + std::string(300, 'n'))),
              "there, system: File name too long");
    EXPECT_EQ(told(removeAt(files, folder + "/none")), "gone by others");
    ASSERT_TRUE(removeAt(files, folder.substr(0, folder.size() - 20)).gone);
    EXPECT_EQ(told(removeAt(files, folder + "/leaf", seen)), "gone by others") << "its folder went";
    EntryIdentity elsewhere = seen;
    ++elsewhere.device;
    EXPECT_EQ(told(removeAt(files, folder + "/leaf", elsewhere)),
              "there, system: No such file or directory");
}

// Somebody else is faster: right before the removal of the named entry.
TEST(RemovalReasons, WhatSomebodyElseRemovedIsNoFailureAndNotCountedAsOurs) {
    const struct {
        const char* path;
        const char* expected;
        std::uint64_t removed;
        int atRemoval;
        const char* theirs;
    } cases[] = {{"x", "gone by others", 0, 1, "x"},
                 {"f", "gone", 2, 1, "f/1"},
                 {"f", "gone by others", 2, 3, "f"}};
    for (const auto& [path, expected, removed, atRemoval, theirs] : cases) {
        TestTree tree;
        for (const char* name : {"x", "f/1", "f/2"}) tree.write(name, "x");
        WatchedFiles files;
        files.beforeRemoval = [left = atRemoval,
                               victim = tree.at(theirs)](const char* operation) mutable {
            if (std::strcmp(operation, "removeEntry") == 0 && --left == 0) ::remove(victim.c_str());
        };
        const auto result = removeAt(files, tree.at(path));
        EXPECT_EQ(told(result), expected) << path << " at " << atRemoval;
        EXPECT_EQ(result.failed, 0U);
        EXPECT_LE(result.removed, removed);
        EXPECT_FALSE(isThere(tree.at(path)));
    }
}

}  // namespace
}  // namespace orrinvale
