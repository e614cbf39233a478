// Catalog: batches, what is known of the entries, references that outlive names, failures.
#include "engine/files/Catalog.h"

#include <cstdio>

#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

const Catalog catalog(files);

constexpr std::uint32_t flagsAndSizes = 0xC002;

struct Listed {
    std::map<std::string, FSCatalogInfo> infos;
    std::map<std::string, FSRef> refs;
    std::vector<std::size_t> batches;
};

Listed list(const FSRef& folder, std::uint32_t whichInfo) {
    Listed out;
    FSIterator iterator;
    EXPECT_EQ(catalog.FSOpenIterator(folder, iterator), noErr);
    std::array<FSCatalogInfo, 40> infos;
    std::array<FSRef, 40> refs;
    std::array<std::string, 40> names;
    for (OSErr result = noErr; result == noErr;) {
        std::size_t count = 0;
        result = catalog.FSGetCatalogInfoBulk(iterator, 40, count, whichInfo, infos.data(),
                                              refs.data(), names.data());
        EXPECT_TRUE(result == noErr || result == errFSNoMoreItems) << result;
        out.batches.push_back(count);
        for (std::size_t i = 0; i < count; ++i) {
            EXPECT_TRUE(out.infos.emplace(names[i], infos[i]).second) << names[i];
            out.refs[names[i]] = refs[i];
        }
    }
    Catalog::FSCloseIterator(iterator);
    return out;
}

TEST(Catalog, batchesGiveEveryEntryOnceWithFlagsAndSizes) {
    TestTree tree;
    for (int i = 0; i < 90; ++i)
        ASSERT_TRUE(tree.write(std::to_string(i), std::string(static_cast<unsigned>(i), 'x')));
    ASSERT_TRUE(tree.write("folder/in", "1") && tree.symlink("folder", "link") &&
                tree.fifo("pipe"));
    const auto root = catalog.fsref(tree.path());
    ASSERT_TRUE(root);
    for (const std::uint32_t which : {flagsAndSizes, std::uint32_t{kFSCatInfoGettableInfo}}) {
        Listed listed = list(*root, which);
        EXPECT_EQ(listed.batches, (std::vector<std::size_t>{40, 40, 13}));
        EXPECT_EQ(listed.infos["89"].dataLogicalSize, 89U);
        EXPECT_EQ(listed.infos["link"].dataLogicalSize, 6U);
        EXPECT_FALSE(listed.infos["link"].isFolder());
        EXPECT_TRUE(listed.infos["folder"].isFolder());
        EXPECT_EQ(listed.infos["folder"].dataLogicalSize + listed.infos["pipe"].dataLogicalSize,
                  0U);
        EXPECT_EQ(listed.infos["7"].attributes.inode != 0, which == kFSCatInfoGettableInfo);
        EXPECT_EQ(list(listed.refs["folder"], which).infos.size(), 1U);
        EXPECT_EQ(catalog.FSRefMakePath(listed.refs["folder"]), tree.at("folder"));
    }
}

TEST(Catalog, aReferenceNamesItsEntryAndNoOther) {
    TestTree tree;
    ASSERT_TRUE(tree.write("a/b/file", "123") && tree.write("other", "12"));
    const auto held = catalog.fsref(tree.at("a/b"));
    const auto file = catalog.fsref(tree.at("a/b/file"));
    const auto link = tree.symlink("a", "link") ? catalog.fsref(tree.at("link")) : std::nullopt;
    ASSERT_TRUE(held && file && link);
    Listed in = list(*held, kFSCatInfoGettableInfo);
    EXPECT_EQ(catalog.FSRefMakePath(*link), tree.at("link"));

    ASSERT_EQ(std::rename(tree.at("a").c_str(), tree.at("moved").c_str()), 0);
    EXPECT_EQ(catalog.FSRefMakePath(*held), tree.at("moved/b"));
    EXPECT_EQ(catalog.FSRefMakePath(in.refs["file"]), tree.at("moved/b/file"));

    ASSERT_EQ(std::rename(tree.at("other").c_str(), tree.at("moved/b/file").c_str()), 0);
    FSCatalogInfo info;
    EXPECT_EQ(catalog.FSGetCatalogInfo(in.refs["file"], info), fnfErr);
    EXPECT_EQ(catalog.FSRefMakePath(in.refs["file"]), std::nullopt);
    EXPECT_EQ(catalog.FSRefMakePath(*file), std::nullopt) << "it is gone, though still held";
    EXPECT_EQ(catalog.FSGetCatalogInfo(*file, info), noErr);
    EXPECT_EQ(info.dataLogicalSize, 3U);
}

TEST(Catalog, whatIsNoFolderSaysSo) {
    TestTree tree;
    ASSERT_TRUE(tree.write("file", "1") && tree.symlink("/", "link") && tree.fifo("pipe") &&
                tree.folder("gone"));
    FSIterator iterator;
    for (const char* name : {"file", "link", "pipe"})
        EXPECT_EQ(catalog.FSOpenIterator(*catalog.fsref(tree.at(name)), iterator), errFSNotAFolder)
            << name;
    EXPECT_FALSE(catalog.fsref(tree.at("missing")) || catalog.fsref(""));
    EXPECT_EQ(catalog.FSOpenIterator(FSRef(), iterator), paramErr);
    Listed listed = list(*catalog.fsref(tree.path()), kFSCatInfoGettableInfo);
    ASSERT_EQ(std::remove(tree.at("gone").c_str()), 0);
    EXPECT_EQ(catalog.FSOpenIterator(listed.refs["gone"], iterator), fnfErr);
}

TEST(Catalog, pathsThatAreTooLongAreReachedButNotMade) {
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.makeDeep("deep", 3000, "leaf"));
    std::string path = tree.at("deep");
    for (int i = 0; i < 3000; ++i) path += "/d";
    const auto leaf = catalog.fsref(path + "/leaf");
    FSCatalogInfo info;
    ASSERT_TRUE(leaf);
    EXPECT_EQ(catalog.FSGetCatalogInfo(*leaf, info), noErr);
    EXPECT_EQ(info.dataLogicalSize, 4U);
    EXPECT_EQ(catalog.FSRefMakePath(*leaf), std::nullopt);
}

}  // namespace
}  // namespace orrinvale
