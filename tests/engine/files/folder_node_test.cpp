// Names and paths of folders: extensions, joining, and the way to a folder whose path is longer
// than the system takes.
#include "engine/files/FolderNode.h"

#include <deque>

#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

TEST(FolderNode, lastComponentAndExtensionTable) {
    struct Case {
        std::string_view path, last, extension;
    };
    for (const Case& one :
         {Case{"/a/b.txt", "b.txt", "txt"}, Case{"b.tar.gz", "b.tar.gz", "gz"},
          Case{"/a/.app", ".app", ""}, Case{"/a/..app", "..app", "app"}, Case{"/a.d/b", "b", ""},
          Case{"/a/b.", "b.", ""}, Case{"/a/b.app/", "b.app", "app"},
          Case{"/a/b.app//", "b.app", "app"}, Case{"/", "/", ""}, Case{"", "", ""},
          Case{"//", "/", ""}, Case{"a\n.x\ny", "a\n.x\ny", "x\ny"},
          Case{"/a/\xff.\xfe", "\xff.\xfe", "\xfe"}}) {
        EXPECT_EQ(lastPathComponent(one.path), one.last) << one.path;
        EXPECT_EQ(pathExtension(one.path), one.extension) << one.path;
    }
}

TEST(FolderNode, pathsHaveOneSlashBetweenTheirParts) {
    for (const std::string root : {"/", "/tmp", "rel", "/tmp/"}) {
        FolderNode start{nullptr, root.c_str()};
        FolderNode inner{&start, "inner"};
        const std::string head = root.back() == '/' ? root : root + "/";
        EXPECT_EQ(pathOf(start), root);
        EXPECT_EQ(pathOf(start, "x"), head + "x");
        EXPECT_EQ(pathOf(inner), head + "inner");
        EXPECT_EQ(pathOf(inner, "x"), head + "inner/x");
        EXPECT_EQ(joinPath(root, "x"), head + "x");
    }
}

TEST(FolderNode, foldersBeyondTheLongestPathAreReachedAndChecked) {
    TestTree tree;
    const std::string name(200, 'n');
    Descriptor here =
        std::move(*files.openFolder(FileSystem::noParent, tree.path().c_str(), Links::Keep));
    const std::string root = tree.path();
    std::deque<FolderNode> nodes{FolderNode{nullptr, root.c_str()}};
    for (int level = 0; level < 60; ++level) {  // 12,060 bytes, three times the limit
        ASSERT_EQ(::mkdirat(here.get(), name.c_str(), 0755), 0);
        here = std::move(*files.openFolder(here.get(), name.c_str(), Links::Keep));
        nodes.push_back(FolderNode{&nodes.back(), name.c_str()});
    }
    const auto deepest = *files.attributes(here.get());
    nodes.back().device = deepest.device;
    nodes.back().inode = deepest.inode;
    EXPECT_EQ(pathOf(nodes.back()).size(), tree.path().size() + 60 * 201);

    const auto again = reopenFolder(files, nodes.back());
    ASSERT_TRUE(again) << again.error();
    EXPECT_EQ(files.attributes(again->get())->inode, deepest.inode);

    ++nodes.back().inode;
    const auto other = reopenFolder(files, nodes.back());
    EXPECT_EQ(other ? 0 : other.error(), ESTALE);
    const auto missing = openFolderByPath(files, pathOf(nodes.back(), "missing"), Links::Keep);
    EXPECT_EQ(missing ? 0 : missing.error(), ENOENT);
    const auto unnamable = openFolderByPath(files, tree.at(std::string(9000, 'u')), Links::Keep);
    EXPECT_EQ(unnamable ? 0 : unnamable.error(), ENAMETOOLONG);
}

TEST(FolderNode, aFolderExchangedForALinkIsNotReopened) {
    TestTree tree;
    tree.folder("a");
    tree.folder("b");
    const std::string root = tree.path();
    const FolderNode start{nullptr, root.c_str()};
    FolderNode node{&start, "a"};
    const auto seen = *files.attributes(FileSystem::noParent, tree.at("a").c_str(), Links::Keep);
    node.device = seen.device;
    node.inode = seen.inode;
    ASSERT_TRUE(reopenFolder(files, node));
    ASSERT_EQ(::rename(tree.at("a").c_str(), tree.at("moved").c_str()), 0);
    tree.symlink("moved",
                 "a");  // the same folder, but by way of a link that the scan did not follow
    EXPECT_FALSE(reopenFolder(files, node));
    ::unlink(tree.at("a").c_str());
    ASSERT_EQ(::rename(tree.at("b").c_str(), tree.at("a").c_str()), 0);
    const auto other = reopenFolder(files, node);
    EXPECT_EQ(other ? 0 : other.error(), ESTALE);
}

}  // namespace
}  // namespace orrinvale
