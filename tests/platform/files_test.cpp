// The file system as Linux gives it: what a listing and the attributes tell, that nothing blocks,
// and that reading leaves the page cache as it was.
#include <sys/mman.h>
#include <sys/sysmacros.h>

#include "engine/duplicates/FileHasher.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

constexpr std::size_t pageSize = 4096;

TEST(LinuxFiles, eachKindOfEntryIsToldAsWhatItIs) {
    TestTree tree;
    const std::string odd = "line\nbreak \xff\xfe " + std::string(200, 'n');
    const std::string longest(255, 'L');
    ASSERT_TRUE(tree.write("file", "12345") && tree.write(odd, "1") && tree.write(longest, "22") &&
                tree.folder("folder") && tree.symlink("nowhere", "link") && tree.fifo("fifo") &&
                tree.socket("socket"));
    struct Case {
        std::string name;
        FileType type;
        std::uint64_t size;
    };
    std::vector<Case> cases{{"file", FileType::Regular, 5},  {odd, FileType::Regular, 1},
                            {longest, FileType::Regular, 2}, {"link", FileType::SymbolicLink, 7},
                            {"fifo", FileType::Fifo, 0},     {"socket", FileType::Socket, 0}};
    if (::mknod(tree.at("device").c_str(), S_IFCHR | 0644, ::makedev(1, 3)) == 0)
        cases.push_back({"device", FileType::CharacterDevice, 0});

    const auto folder = files.openFolder(FileSystem::noParent, tree.path().c_str(), Links::Keep);
    ASSERT_TRUE(folder);
    CatalogBatch batch;
    ASSERT_TRUE(files.readFolder(folder->get(), batch).value_or(false));
    EXPECT_EQ(batch.entries.size(), cases.size() + 1);
    files.readAttributes(folder->get(), batch.entries);
    for (const Case& expected : cases) {
        const auto entry =
            std::find_if(batch.entries.begin(), batch.entries.end(),
                         [&](const CatalogEntry& one) { return one.name == expected.name; });
        ASSERT_NE(entry, batch.entries.end()) << expected.name;
        EXPECT_TRUE(entry->type == expected.type || entry->type == FileType::Unknown)
            << expected.name;
        EXPECT_EQ(entry->error, 0);
        EXPECT_EQ(entry->attributes.type, expected.type) << expected.name;
        EXPECT_EQ(entry->attributes.size, expected.size) << expected.name;
        EXPECT_EQ(entry->attributes.inode, entry->inode);
    }
    struct stat known;
    ASSERT_EQ(::stat(tree.at("file").c_str(), &known), 0);
    const auto told = files.attributes(folder->get(), "file", Links::Keep);
    ASSERT_TRUE(told);
    EXPECT_EQ(told->device, known.st_dev);
    EXPECT_EQ(told->modified, known.st_mtim.tv_sec * 1'000'000'000 + known.st_mtim.tv_nsec);
    EXPECT_EQ(told->changed, known.st_ctim.tv_sec * 1'000'000'000 + known.st_ctim.tv_nsec);
}

TEST(LinuxFiles, anEntryThatVanishedHasItsErrorAndSparesTheOthers) {
    TestTree tree;
    for (const char* name : {"a", "b", "c"}) tree.write(name, "x");
    const auto folder = files.openFolder(FileSystem::noParent, tree.path().c_str(), Links::Keep);
    CatalogBatch batch;
    ASSERT_TRUE(folder && files.readFolder(folder->get(), batch).value_or(false));
    ::unlink(tree.at("b").c_str());
    files.readAttributes(folder->get(), batch.entries);
    for (const CatalogEntry& entry : batch.entries)
        EXPECT_EQ(entry.error, entry.name == std::string("b") ? ENOENT : 0) << entry.name;
}

TEST(LinuxFiles, opensFailAsAnnouncedAndNeverBlock) {
    TestTree tree;
    tree.write("file", "x");
    tree.folder("folder");
    tree.symlink("folder", "toFolder");
    tree.symlink("file", "toFile");
    tree.fifo("fifo");
    const auto error = [](const auto& result) { return result ? 0 : result.error(); };
    const auto folder = files.openFolder(FileSystem::noParent, tree.path().c_str(), Links::Keep);
    ASSERT_TRUE(folder);
    EXPECT_EQ(error(files.openFolder(folder->get(), "file", Links::Follow)), ENOTDIR);
    EXPECT_NE(error(files.openFolder(folder->get(), "toFolder", Links::Keep)), 0);
    EXPECT_EQ(error(files.openFolder(folder->get(), "toFolder", Links::Follow)), 0);

    const std::string text = testing::runInChild({}, [&]() -> std::string {
        ::alarm(5);  // a blocked open ends by signal
        ReadState state;
        if (error(files.openFile(folder->get(), "toFile", Links::Keep, state)) != ELOOP)
            return "a link was followed";
        const auto fifo = files.openFile(folder->get(), "fifo", Links::Keep, state);
        if (!fifo) return "the fifo did not open";
        const auto attributes = files.attributes(fifo->get());
        return attributes && attributes->type == FileType::Fifo ? "" : "not told as a fifo";
    });
    EXPECT_EQ(text, "");
}

TEST(LinuxFiles, theKernelsFileSystemsAreKnownAndTheUsersAreNot) {
    const auto devices = files.kernelDevices();
    const auto holds = [&](const char* path) {
        const auto attributes = files.attributes(FileSystem::noParent, path, Links::Follow);
        return attributes && std::binary_search(devices.begin(), devices.end(), attributes->device);
    };
    EXPECT_TRUE(holds("/proc"));
    EXPECT_TRUE(holds("/sys"));
    EXPECT_FALSE(holds("/"));
    EXPECT_FALSE(holds("/dev/shm"));
}

// Which pages of a file are in memory.
std::vector<bool> residency(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat attributes;
    if (::fstat(file.get(), &attributes) != 0 || attributes.st_size == 0) return {};
    const auto size = static_cast<std::size_t>(attributes.st_size);
    void* const map = ::mmap(nullptr, size, PROT_READ, MAP_SHARED, file.get(), 0);
    std::vector<unsigned char> pages((size + pageSize - 1) / pageSize);
    if (map == MAP_FAILED || ::mincore(map, size, pages.data()) != 0) return {};
    ::munmap(map, size);
    std::vector<bool> out;
    for (const unsigned char page : pages) out.push_back((page & 1U) != 0);
    return out;
}

// Brings a file out of memory, but for its pages 3 to 5 when these are to stay.
bool chill(const std::string& path, bool keepSome) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (::fsync(file.get()) != 0) return false;
    ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_DONTNEED);
    ::posix_fadvise(file.get(), 0, 0, POSIX_FADV_RANDOM);
    char piece[3 * pageSize];
    if (keepSome && ::pread(file.get(), piece, sizeof piece, 3 * pageSize) != sizeof piece)
        return false;
    const auto pages = residency(path);
    return std::count(pages.begin(), pages.end(), true) == (keepSome ? 3 : 0);
}

std::string show(const std::vector<bool>& pages) {
    return "in memory: " + std::to_string(std::count(pages.begin(), pages.end(), true)) + " of " +
           std::to_string(pages.size()) + " pages";
}

class PageCache : public ::testing::TestWithParam<const char*> {};

TEST_P(PageCache, isAsItWasAfterHashing) {
    TestTree tree(GetParam());
    struct Case {
        const char* what;
        std::size_t size;
        std::function<bool(FileHasher&, fileAttrbItem&)> hash;
    };
    const std::vector<Case> cases{
        {"small", 30'000,
         [](FileHasher& hasher, fileAttrbItem& item) { return hasher.hashSmall(item).bytes != 0; }},
        {"ends", 3'000'000,
         [](FileHasher& hasher, fileAttrbItem& item) {
             return hasher.hashEnds(item, true).hashed;
         }},
        {"whole", 9'000'000,
         [](FileHasher& hasher, fileAttrbItem& item) { return hasher.hashWhole(item); }}};
    for (const Case& one : cases) {
        for (const bool keepSome : {false, true}) {
            SCOPED_TRACE(std::string(one.what) + (keepSome ? ", partly in memory" : ", cold"));
            const std::string path = tree.at(one.what);
            ASSERT_TRUE(tree.write(one.what, testing::someBytes(one.size, 1)));
            const bool cold = chill(path, keepSome);
            // tmpfs never lets go of its pages: there the hash must not lose any.
            if (!cold && std::string(GetParam()) != "/dev/shm")
                GTEST_SKIP() << "pages can not be brought out of memory here";
            const auto before = residency(path);
            SkipList skipped;
            FileHasher hasher(files, skipped);
            FileArray items;
            ASSERT_TRUE(one.hash(hasher, items.add(path, attributesOf(path))));
            const auto after = residency(path);
            EXPECT_TRUE(before == after) << "before " << show(before) << ", after " << show(after);
        }
    }
}

// The way of file systems that can not read past the cache, on one that may.
TEST_P(PageCache, isAsItWasAfterReadingWithTheResidencyNoted) {
    TestTree tree(GetParam());
    for (const bool keepSome : {false, true}) {
        SCOPED_TRACE(keepSome ? "partly in memory" : "cold");
        const std::string bytes = testing::someBytes(2'000'001, 2);
        ASSERT_TRUE(tree.write("file", bytes));
        const bool cold = chill(tree.at("file"), keepSome);
        if (!cold && std::string(GetParam()) != "/dev/shm")
            GTEST_SKIP() << "pages can not be brought out of memory here";
        const auto before = residency(tree.at("file"));
        ReadState state;
        const auto file =
            files.openFile(FileSystem::noParent, tree.at("file").c_str(), Links::Keep, state);
        ASSERT_TRUE(file);
        const auto attributes = files.attributes(file->get());
        state.device = attributes->device;  // known as one that leaves pages behind
        files.beginReading(file->get(), attributes->device, 0, attributes->size, state);
        std::string read(bytes.size() + 10, 0);
        const auto count =
            files.read(file->get(), std::as_writable_bytes(std::span(read)), 0, state);
        const auto during = residency(tree.at("file"));
        files.endReading(file->get(), state);
        ASSERT_TRUE(count);
        EXPECT_EQ(*count, bytes.size());
        EXPECT_EQ(read.substr(0, bytes.size()), bytes);
        EXPECT_EQ(std::count(during.begin(), during.end(), false), 0);
        EXPECT_TRUE(before == residency(tree.at("file")));
    }
}

INSTANTIATE_TEST_SUITE_P(FileSystems, PageCache, ::testing::Values("", "/dev/shm"),
                         [](const auto& suite) {
                             return *suite.param == 0 ? "Temporary" : "Memory";
                         });

TEST(LinuxFiles, readResidentAnswersWholeOrNotAtAll) {
    TestTree tree;
    const std::string bytes = testing::someBytes(200'000, 3);
    ASSERT_TRUE(tree.write("file", bytes));
    (void)chill(tree.at("file"), true);
    ReadState state;
    const auto file =
        files.openFile(FileSystem::noParent, tree.at("file").c_str(), Links::Keep, state);
    ASSERT_TRUE(file);
    std::string read(bytes.size(), 0);
    const auto buffer = std::as_writable_bytes(std::span(read));
    const auto partly = files.readResident(file->get(), buffer, 0, state);
    // Asking may have the disk begin, and a fast one may have ended by then; but never is it a
    // part.
    EXPECT_TRUE(partly ? *partly == bytes.size() : partly.error() == EAGAIN);
    ASSERT_TRUE(files.read(file->get(), buffer, 0, state));
    const auto now = files.readResident(file->get(), buffer, 0, state);
    EXPECT_TRUE(now ? *now == bytes.size() : now.error() == EAGAIN);
    EXPECT_EQ(read, bytes);
}

// A file that shrinks while it is looked at must not take the program with it.
TEST(LinuxFiles, visitResidentShowsTheBytesAndSurvivesACut) {
    TestTree tree;
    constexpr std::size_t size = 1 << 20;
    const std::string bytes = testing::someBytes(2 * size, 4);
    ASSERT_TRUE(tree.write("file", bytes));
    const std::string text = testing::runInChild({}, [&]() -> std::string {
        ReadState state;
        const auto file =
            files.openFile(FileSystem::noParent, tree.at("file").c_str(), Links::Keep, state);
        std::string seen;
        const auto whole =
            files.visitResident(file->get(), size, size, [&](std::span<const std::byte> shown) {
                seen.assign(reinterpret_cast<const char*>(shown.data()), shown.size());
            });
        if (!whole) return "failed";
        if (!*whole) return "not told";
        if (seen != bytes.substr(size)) return "other bytes";
        std::size_t zeros = 0;
        const auto cut =
            files.visitResident(file->get(), 0, size, [&](std::span<const std::byte> shown) {
                if (::truncate(tree.at("file").c_str(), size / 2) != 0) return;
                zeros = static_cast<std::size_t>(
                    std::count(shown.begin() + size / 2, shown.end(), std::byte{0}));
            });
        if (cut || cut.error() != EIO) return "the cut went unseen";
        return zeros == size / 2 ? "" : "no zeros behind the cut";
    });
    if (text == "not told") GTEST_SKIP() << "this kernel does not tell what is in memory";
    EXPECT_EQ(text, "");
}

}  // namespace
}  // namespace orrinvale
