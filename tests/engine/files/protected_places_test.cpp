// ProtectedPlaces: the table of refusals on this very machine, in other spellings and through
// mounts of the test's own; and that SafeRemoval touches nothing of what is refused.
#include "engine/files/ProtectedPlaces.h"

#include "engine/files/SafeRemoval.h"
#include "platform/linux/ProgramFiles.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

std::string reasonFor(const ProtectedPlaces& places, const std::string& path) {
    const auto entry = files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    return places.refusal(path, entry.value_or(FileAttributes{})).value_or("");
}

// What a removal says of it; it must not have touched anything.
std::string refusedBy(const ProtectedPlaces& places, const std::string& path) {
    const auto result = SafeRemoval(files, places).remove(path, std::nullopt);
    if (result.gone || result.removed != 0) return "removed";
    return result.failures.at(0).reason;
}

TEST(ProtectedPlaces, theMachinesOwn) {
    TestTree tree;
    tree.write("program/bin/orrinvale", "x");
    tree.write("program/share/orrinvale/pictures/p.svg", "x");
    tree.write("program/share/other/x", "x");
    tree.hardLink("program/bin/orrinvale", "alias");
    const auto places = ProtectedPlaces::ofThisMachine(
        files,
        {tree.at("program/bin/orrinvale"), tree.at("program/share/orrinvale"), tree.at("missing")});
    const std::string own = "one of the program's own files";
    const std::pair<std::string, std::string> table[]{
        {"/", "the root of the file system"},
        {"//.//", "the root of the file system"},
        {"/proc", "a folder of the kernel"},
        {"/sys/", "a folder of the kernel"},
        {"/./dev", "a folder of the kernel"},
        {"/proc/self/status", "in a folder of the kernel"},
        {"/root", "a home folder"},
        {"/usr", "part of the system"},
        {"/usr/lib", "part of the system"},
        {"/usr/lib/orrinvale of nobody", ""},
        {"/root/../root", "not a plain absolute path"},
        {"root", "not a plain absolute path"},
        {"", "not a plain absolute path"},
        {std::string("/tmp\0/x", 7), "not a plain absolute path"},
        {tree.at("program/bin/orrinvale"), own},
        {tree.at("alias"), own},
        {tree.at("program/share/orrinvale"), own},
        {tree.at("program//share/orrinvale/pictures/p.svg"), own},
        {tree.at("missing"), own},
        {tree.at("program/share"), "a folder above " + own},
        {tree.at("program/bin/"), "a folder above " + own},
        {tree.path(), "a folder above " + own},
        {tree.at("program/share/other"), ""},
        {tree.at("program/binary"), ""},
    };
    for (const auto& [path, reason] : table) {
        EXPECT_EQ(reasonFor(places, path), reason) << path;
        if (reason.empty() || path == tree.at("missing"))
            continue;  // what is not there counts as gone
        EXPECT_EQ(refusedBy(places, path), reason) << path;
    }
    EXPECT_TRUE(isThere(tree.at("program/share/orrinvale/pictures/p.svg")));
    EXPECT_TRUE(isThere(tree.at("alias")));
}

TEST(ProtectedPlaces, everyHomeAndEveryMountOfTheMachine) {
    const auto places = ProtectedPlaces::ofThisMachine(files, {});
    const auto mounts = files.mountPoints();
    ASSERT_TRUE(mounts && !mounts->empty());
    for (const MountPoint& mount : *mounts)
        EXPECT_NE(reasonFor(places, mount.path), "") << mount.path;
    WatchedFiles blind;
    blind.mountsFail = true;
    EXPECT_EQ(reasonFor(ProtectedPlaces::ofThisMachine(blind, {}), "/tmp/x"),
              "what is mounted can not be told");
}

// A home that is reached through a link: both the link and what it leads to.
TEST(ProtectedPlaces, aHomeBehindALink) {
    TestTree tree;
    tree.write("disk/user/file", "x");
    tree.symlink("disk", "homes");
    tree.symlink("disk/user", "toHome");
    const std::string before = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "/";
    ::setenv("HOME", tree.at("homes/user").c_str(), 1);
    const auto places = ProtectedPlaces::ofThisMachine(files, {});
    ::setenv("HOME", before.c_str(), 1);
    for (const char* name : {"homes/user", "disk/user"})
        EXPECT_EQ(refusedBy(places, tree.at(name)), "a home folder");
    for (const char* name : {"homes", "disk"})
        EXPECT_EQ(refusedBy(places, tree.at(name)), "a folder above a home folder");
    EXPECT_TRUE(SafeRemoval(files, places).remove(tree.at("toHome"), std::nullopt).gone);
    EXPECT_TRUE(SafeRemoval(files, places).remove(tree.at("homes/user/file"), std::nullopt).gone);
    EXPECT_TRUE(isThere(tree.at("disk/user")));
}

// Not every home stands in the table of users.
TEST(ProtectedPlaces, whatStandsBesideAHome) {
    TestTree tree;
    for (const char* name :
         {"disk/user/x", "disk/other/x", "disk/list", "services/one/x", "services/two/x"})
        tree.write(name, "x");
    tree.symlink("disk", "homes");
    ProtectedPlaces places;
    places.addHome(files, tree.at("homes/user"), 1000);
    places.addHome(files, tree.at("services/one"), 999);
    for (const char* name :
         {"disk/user", "homes/user", "disk/other", "homes/other", "services/one"})
        EXPECT_EQ(reasonFor(places, tree.at(name)), "a home folder") << name;
    for (const char* name : {"disk/other/x", "disk/list", "services/two"})
        EXPECT_EQ(reasonFor(places, tree.at(name)), "") << name;
}

TEST(ProtectedPlaces, mountsAndWhatIsReachedThroughThem) {
    TestTree tree;
    for (const char* name :
         {"home/user/x", "mine/a/b/tmp mount/x", "bound/x", "source/x", "free/x", "bindOfSource/x"})
        tree.write(name, "x");
    tree.symlink(tree.at("mine"), "link");
    const auto check = [&]() -> std::string {
        if (!unshareMounts() ||
            ::mount("none", tree.at("mine/a/b/tmp mount").c_str(), "tmpfs", 0, nullptr) != 0 ||
            !bindMount(tree.at("home"), tree.at("bound")) ||
            !bindMount(tree.at("source"), tree.at("bindOfSource")))
            return "skip: no mounts of our own";
        auto places = ProtectedPlaces::ofThisMachine(files, {});
        places.add(files, tree.at("home/user"), "a home folder");
        const std::pair<const char*, const char*> table[]{
            {"mine/a/b/tmp mount", "a mount point"},
            {"mine/a/b", "a folder with a mount below"},
            {"mine", "a folder with a mount below"},
            {"link/a/b/tmp mount", "a mount point"},
            {"link/a", "a folder with a mount below"},
            {"bound/user", "a home folder"},
            {"source", "a mount point"},  // its contents are those of the mount
        };
        std::string wrong;
        for (const auto& [name, reason] : table)
            if (const auto got = refusedBy(places, tree.at(name)); got != reason)
                wrong += std::string(name) + ": " + got + '\n';
        if (!SafeRemoval(files, places).remove(tree.at("free"), std::nullopt).gone)
            wrong += "free stays\n";
        return wrong;
    };
    EXPECT_TOLD(runInChild({}, check), "");
    for (const char* name : {"home/user/x", "mine/a/b/tmp mount/x", "source/x"})
        EXPECT_TRUE(isThere(tree.at(name)));
}

// A file system whose server never answers: whoever asks it for anything waits for good.
TEST(ProtectedPlaces, aDeadDiskBehindALink) {
    TestTree tree;
    tree.folder("dead");
    tree.symlink("dead/all", "homes");
    const auto check = [&]() -> std::string {
        const Descriptor server(::open("/dev/fuse", O_RDWR | O_CLOEXEC));
        const std::string how =
            fmt::format("fd={},rootmode=40000,user_id=0,group_id=0", server.get());
        if (!unshareMounts() ||
            ::mount("none", tree.at("dead").c_str(), "fuse", 0, how.c_str()) != 0)
            return "skip: no mount";
        auto places = ProtectedPlaces::ofThisMachine(files, {});
        std::string wrong;
        for (const char* user : {"one", "two"}) {
            places.addHome(files, tree.at("homes/") + user, 1000);
            for (const char* homes : {"homes/", "dead/all/"})
                if (places.refusal(tree.at(homes) + user, FileAttributes{}) != "a home folder")
                    wrong += homes + std::string(user) + '\n';
        }
        return wrong;
    };
    EXPECT_TOLD(runInChild({}, check), "");
}

TEST(ProgramFiles, theExecutableItsSiblingsAndItsFoldersButNobodyElses) {
    TestTree tree;
    for (const char* name : {"p/bin/orrinvale", "p/bin/orrinvale-cli", "p/bin/ls",
                             "p/share/orrinvale/x", "p/share/doc/x", "p/libexec/orrinvale/helper",
                             "p/share/icons/hicolor/48x48/apps/com.kelpford.Orrinvale.png",
                             "Downloads/orrinvale", "Downloads/thesis.pdf"})
        tree.write(name, "x");
    const auto sorted = [&](const char* executable) {
        auto found = programFilesAround(tree.at(executable));
        std::sort(found.begin(), found.end());
        found.erase(std::unique(found.begin(), found.end()), found.end());
        return found;
    };
    EXPECT_EQ(sorted("p/bin/orrinvale-cli"),
              (std::vector<std::string>{
                  tree.at("p/bin/orrinvale"), tree.at("p/bin/orrinvale-cli"),
                  tree.at("p/libexec/orrinvale"),
                  tree.at("p/share/icons/hicolor/48x48/apps/com.kelpford.Orrinvale.png"),
                  tree.at("p/share/orrinvale")}));
    EXPECT_THAT(sorted("p/libexec/orrinvale/helper"), Contains(tree.at("p/share/orrinvale")));
    EXPECT_EQ(sorted("Downloads/orrinvale"),
              std::vector<std::string>{tree.at("Downloads/orrinvale")});
    EXPECT_THAT(programFiles(), Contains(files.resolved("/proc/self/exe").value()));
}

}  // namespace
}  // namespace orrinvale
