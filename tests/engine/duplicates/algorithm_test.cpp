// The single operations by which two files are compared.
#include "engine/duplicates/algorithm.h"

#include "engine/duplicates/crc.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

class Algorithm : public ::testing::Test {
protected:
    fileAttrbItem& add(const std::string& name) {
        const auto attributes =
            files.attributes(FileSystem::noParent, m_tree.at(name).c_str(), Links::Keep);
        return m_items.add(m_tree.at(name), attributes.value_or(FileAttributes{}));
    }
    fileAttrbItem& write(const std::string& name, std::string_view bytes) {
        EXPECT_TRUE(m_tree.write(name, bytes));
        return add(name);
    }

    TestTree m_tree;
    FileArray m_items;
    SkipList m_skipped;
    algorithm m_algorithm{files, m_skipped};
};

std::uint64_t hashOf(std::string_view bytes) {
    return crc::crc64(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

TEST_F(Algorithm, wholeHashesOfFilesAroundThePieceSizes) {
    for (const std::size_t size : {1U, 1023U, 1024U, 1025U, 32'768U, 32'769U, 262'144U, 4'194'304U,
                                   4'194'305U, 9'000'001U}) {
        const std::string bytes = testing::someBytes(size, 4);
        auto& item = write("f" + std::to_string(size), bytes);
        EXPECT_TRUE(m_algorithm.getMD5(item));
        EXPECT_EQ(item.md5, hashOf(bytes)) << size;
        EXPECT_EQ(item.md5_1k, 0U) << "only one hash was asked for";
        EXPECT_EQ(m_algorithm.getFileSize(item.filePathName()), size);
    }
    EXPECT_TRUE(m_skipped.entries().empty());
}

TEST_F(Algorithm, theFirstKilobyteOfAShortFileEndsInWhatWasReadBefore) {
    const std::string bytes = testing::someBytes(1024, 5);
    auto& whole = write("whole", bytes);
    auto& brief = write("brief", "abc");
    EXPECT_TRUE(m_algorithm.getMD5_1K(brief));
    EXPECT_EQ(brief.md5_1k, hashOf("abc" + std::string(1021, 0)));
    EXPECT_TRUE(m_algorithm.getMD5_1K(whole));
    EXPECT_EQ(whole.md5_1k, hashOf(bytes));
    EXPECT_TRUE(m_algorithm.getMD5_1K(brief));
    EXPECT_EQ(brief.md5_1k, hashOf("abc" + bytes.substr(3)));
}

TEST_F(Algorithm, whatCanNotBeHashedIsRefusedAndNamed) {
    m_tree.fifo("fifo");
    m_tree.folder("folder");
    m_tree.symlink("/dev/zero", "toDevice");
    auto& vanished = write("vanished", "abc");
    ::unlink(m_tree.at("vanished").c_str());
    for (fileAttrbItem* item :
         {&add("fifo"), &add("folder"), &add("toDevice"), &vanished, &add("never")}) {
        const auto before = m_skipped.entries().size();
        EXPECT_FALSE(m_algorithm.getMD5(*item)) << item->filePathName();
        EXPECT_FALSE(m_algorithm.getMD5_1K(*item)) << item->filePathName();
        EXPECT_FALSE(m_algorithm.getSingleMd5WithData(*item));
        EXPECT_EQ(item->md5 | item->md5_1k, 0U);
        EXPECT_EQ(m_algorithm.getFileSize(item->filePathName()), 0U);
        EXPECT_EQ(m_skipped.entries().size(), before + 1) << item->filePathName();
    }
    auto& empty = write("empty", "");
    const auto before = m_skipped.entries().size();
    EXPECT_FALSE(m_algorithm.getMD5(empty));
    EXPECT_EQ(m_skipped.entries().size(), before) << "an empty file is no failure";
}

TEST_F(Algorithm, compareWholeFileTable) {
    struct Case {
        std::uint64_t first, second;
        bool readable, expected;
    };
    auto& one = write("one", "abc");
    auto& other = write("other", "something else");
    auto& gone = write("gone", "abc");
    ::unlink(m_tree.at("gone").c_str());
    for (const Case& at : {Case{0, 0, true, true}, Case{1, 0, true, false}, Case{1, 1, true, false},
                           Case{0, 1, true, true}, Case{0, 0x100, true, false},
                           Case{0, 0x1FF, true, true}, Case{0, 0, false, false}}) {
        fileAttrbItem& second = at.readable ? other : gone;
        one.md5 = at.first;
        second.md5 = at.second;
        EXPECT_EQ(m_algorithm.compareWholeFile(one, second), at.expected)
            << at.first << ' ' << at.second;
    }
    EXPECT_FALSE(m_algorithm.compareWholeFile(gone, other));
}

TEST_F(Algorithm, membersComeInOrderTheItemLastAndLeaveTheList) {
    const std::string bytes = testing::someBytes(3000, 6);
    std::string otherEnd = bytes;
    otherEnd.back() = static_cast<char>(otherEnd.back() ^ 1);
    auto& item = write("item", bytes);
    auto& a = write("a", bytes);
    auto& different = write("different", otherEnd);
    auto& longer = write("longer", bytes + "x");
    auto& b = write("b", bytes);
    FileList list{&a, &different, nullptr, &longer, &b};
    FileList sameSize;
    EXPECT_TRUE(m_algorithm.findFileWithSize(list, sameSize, item));
    EXPECT_EQ(sameSize, (FileList{&a, &different, &b}));
    FileList result;
    EXPECT_TRUE(m_algorithm.findFileWithMd5(sameSize, result, item));
    EXPECT_EQ(result, (FileList{&a, &b, &item}));
    EXPECT_EQ(sameSize, FileList{&different});
    EXPECT_EQ(different.md5_1k, item.md5_1k);
    EXPECT_NE(different.md5, item.md5);

    FileList again;
    EXPECT_TRUE(m_algorithm.getDuplicateFile(&item, &list, &again));
    EXPECT_EQ(again, result);
    EXPECT_EQ(list.size(), 5U);
    FileList none;
    EXPECT_FALSE(m_algorithm.getDuplicateFile(&longer, &none, &again));
    EXPECT_FALSE(m_algorithm.getDuplicateFile(nullptr, &list, &again));
    EXPECT_FALSE(m_algorithm.getDuplicateFile(&item, nullptr, &again));
    EXPECT_FALSE(m_algorithm.getDuplicateFile(&item, &list, nullptr));
}

TEST_F(Algorithm, itemsAreEqualOnlyByAHashThatIsThere) {
    fileAttrbItem a, b;
    EXPECT_FALSE(fileAttrbItem::isEqual(&a, &b));
    a.md5 = b.md5 = 7;
    EXPECT_TRUE(fileAttrbItem::isEqual(&a, &b));
    b.md5 = 8;
    EXPECT_FALSE(fileAttrbItem::isEqual(&a, &b));
    EXPECT_FALSE(fileAttrbItem::isEqual(nullptr, &b));
    EXPECT_FALSE(fileAttrbItem::isEqual(&a, nullptr));
}

TEST_F(Algorithm, foldersCompareByTheirRelativePaths) {
    for (const char* name : {"a/x/1", "a/y", "b/y", "b/x/1", "c/x/1", "c/z", "d/x/1"})
        write(name, name);
    m_tree.folder("d/y");  // the same path, of another kind
    struct Case {
        const char *one, *other;
        bool expected;
    };
    for (const Case& at : {Case{"a", "b", true}, Case{"a", "a", true}, Case{"a", "c", false},
                           Case{"a", "d", true}, Case{"a", "a/x", false},
                           Case{"a", "missing", false}, Case{"missing", "missing", false}}) {
        EXPECT_EQ(m_algorithm.CompareDirectoryWithoutHash(m_tree.at(at.one), m_tree.at(at.other)),
                  at.expected)
            << at.one << ' ' << at.other;
        EXPECT_FALSE(m_algorithm.CompareDirectory(m_tree.at(at.one), m_tree.at(at.other)));
    }
}

}  // namespace
}  // namespace orrinvale
