// The order of the nodes: a scan of random trees against the plainest way to the same order, which
// puts each entry into its place and sorts after each; and looks at wide levels while they grow.
#include <rapidcheck.h>

#include <list>

#include "engine/files/FolderNode.h"
#include "engine/largefiles/ScanRun.h"
#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::ScanRun;
using testing::ServedQueue;

// One entry at a time, depth first, every level kept in order by sorting it after each entry.
class PlainScan {
public:
    explicit PlainScan(std::string path) : m_path(std::move(path)) { readFolder(m_path, nullptr); }
    std::vector<std::string> lines() const {
        std::vector<std::string> out;
        append(out, m_top);
        return out;
    }

private:
    struct Node {
        std::string path;
        bool isDirectory;
        std::uint64_t size;
        Node* father;
        std::vector<Node*> children;
    };

    void readFolder(const std::string& path, Node* father) {
        std::vector<std::pair<std::string, FileType>> entries;
        const auto folder = openFolderByPath(files, path, Links::Follow);
        CatalogBatch batch;
        while (folder && *files.readFolder(folder->get(), batch))
            for (const CatalogEntry& entry : batch.entries)
                entries.emplace_back(entry.name, entry.type);
        std::uint64_t total = 0;
        for (const auto& [name, type] : entries) {
            Node& node = m_nodes.emplace_back(
                Node{path + "/" + name, type == FileType::Folder, 0, father, {}});
            std::vector<Node*>& level = father == nullptr ? m_top : father->children;
            if (!node.isDirectory)
                node.size = files.attributes(folder->get(), name.c_str(), Links::Keep)->size;
            if (father == nullptr && node.isDirectory) level.push_back(&node);
            else
                level.insert(std::find_if(level.begin(), level.end(),
                                          [&](Node* one) { return one->size <= node.size; }),
                             &node);
            if (node.isDirectory) readFolder(node.path, &node);
            total += node.size;
            if (father != nullptr) setSize(*father, total);
        }
    }
    void setSize(Node& node, std::uint64_t size) {
        node.size = size;
        std::vector<Node*>& level = node.father == nullptr ? m_top : node.father->children;
        std::stable_sort(level.begin(), level.end(),
                         [](const Node* a, const Node* b) { return a->size > b->size; });
    }
    static void append(std::vector<std::string>& out, const std::vector<Node*>& level) {
        for (const Node* node : level) {
            out.push_back(
                fmt::format("{}{} {}", node->path, node->isDirectory ? "/" : "", node->size));
            append(out, node->children);
        }
    }

    std::string m_path;
    std::list<Node> m_nodes;
    std::vector<Node*> m_top;
};

// Few names and few sizes, so that folders fill up and many entries are of one size.
bool grow(TestTree& tree) {
    const auto entries = *rc::gen::resize(
        40, rc::gen::container<std::vector<std::tuple<std::vector<int>, int>>>(rc::gen::tuple(
                rc::gen::resize(4, rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 3))),
                rc::gen::inRange(-1, 4))));
    int number = 0;
    for (const auto& [folders, size] : entries) {
        std::string name;
        for (const int folder : folders) name += "d" + std::to_string(folder) + "/";
        name += std::to_string(number++);
        if (!(size < 0 ? tree.folder(name) : tree.sparse(name, static_cast<std::uint64_t>(size))))
            return false;
    }
    return true;
}

TEST(LargeFileOrder, isThatOfSortingAfterEachEntry) {
    EXPECT_TRUE(rc::check([] {
        TestTree tree("/dev/shm");
        RC_ASSERT(grow(tree));
        const auto expected = PlainScan(tree.path()).lines();
        const ScanRun alone(files, tree.path());
        RC_ASSERT(testing::linesOf(*alone.tree) == expected);
        ServedQueue queue;
        const ScanRun stepped(files, tree.path(), &queue);
        RC_ASSERT(testing::turnToEnd(stepped.scan, queue));
        RC_ASSERT(testing::linesOf(*stepped.tree) == expected);
    }));
}

// Wide enough to be handed over in pieces, of which a later one may come first.
TEST(LargeFileOrder, isThatOfTheListingWhereSizesAreEqual) {
    TestTree tree("/dev/shm");
    for (int i = 0; i < 4000; ++i)
        ASSERT_TRUE(tree.sparse("file " + std::to_string(i), static_cast<std::uint64_t>(i % 3)));
    for (int i = 0; i < 20; ++i)
        ASSERT_TRUE(tree.sparse(std::to_string(i) + "/x", static_cast<std::uint64_t>(i % 3)));
    const auto expected = PlainScan(tree.path()).lines();
    for (int round = 0; round < 5; ++round)
        EXPECT_EQ(testing::linesOf(*ScanRun(files, tree.path()).tree), expected);
}

// Wider than what is ordered as a whole, so that a look orders only a part; each look must see what
// is biggest at its moment, and none may spoil what later ones see.
TEST(LargeFileOrder, ofAWideLevelHoldsWhileItGrowsAndShrinks) {
    std::mt19937 random(7);
    FileNodeTree tree("/chosen");
    std::vector<std::pair<std::uint64_t, std::uint64_t>>
        expected;  // in order; of one size the one that came last first
    std::uint32_t position = 0;
    for (int round = 0; round < 12; ++round) {
        std::vector<FoundEntry> entries;
        for (int i = 0; i < 1000; ++i)
            entries.push_back({.name = "x",
                               .type = FileType::Regular,
                               .position = position++,
                               .size = random() % 500,
                               .inode = position});
        static_cast<void>(tree.add(tree.root(), entries));
        for (const FoundEntry& entry : entries) expected.emplace_back(entry.size, entry.inode);
        std::sort(expected.rbegin(), expected.rend());
        const std::size_t count = random() % expected.size();
        const auto seen = tree.root().biggestChildren(count);
        ASSERT_EQ(seen.size(), expected.size());
        for (std::size_t i = 0; i < count; ++i) {
            ASSERT_EQ(seen[i]->size(), expected[i].first) << round << " " << i;
            ASSERT_EQ(seen[i]->identity().inode, expected[i].second) << round << " " << i;
        }
        const std::size_t goes = random() % (count + 1);
        FileNode& gone = *seen[goes];
        std::erase(expected, std::pair{gone.size(), gone.identity().inode});
        tree.root().removeChild(gone);
        if (goes < count) {
            ASSERT_EQ(tree.root().biggestChildren(goes + 1)[goes]->identity().inode,
                      expected[goes].second);
        }
    }
}

// A removal asks on its own thread what stood below a folder, while the owner of the tree scrolls,
// takes out and adds.
TEST(LargeFileOrder, whatStandsBelowAFolderIsToldWhileItsOwnerChangesIt) {
    std::mt19937 random(11);
    FileNodeTree tree("/chosen");
    const auto grow = [&](FileNode& folder, std::size_t count, bool isDirectory) {
        std::vector<FoundEntry> entries;
        for (std::size_t i = 0; i < count; ++i)
            entries.push_back({.name = "x",
                               .isDirectory = isDirectory,
                               .type = isDirectory ? FileType::Folder : FileType::Regular,
                               .size = isDirectory ? 0 : random() % 500,
                               .inode = random()});
        return tree.add(folder, entries);
    };
    FileNode& chosen = *grow(tree.root(), 1, true).front();
    FileNode& wide = *grow(chosen, 1, true).front();
    static_cast<void>(grow(wide, 20'000, false));
    std::atomic<bool> ended{false};
    std::thread remover([&] {
        for (int i = 0; i < 40; ++i) {
            const std::size_t count = tree.seenBelow(chosen, false).count();
            if (count < 15'001 || count > 30'001) ADD_FAILURE() << count;
        }
        ended = true;
    });
    for (std::size_t round = 0; !ended; ++round) {
        const auto children = wide.biggestChildren(round % 300 * 50);
        chosen.setState(FileNode::Mixed);
        wide.setIsExpand(round % 2 == 0);
        if (round % 2 == 0 && wide.childCount() > 15'000)
            wide.removeChild(*children[random() % 100]);
        if (round % 64 == 0 && wide.childCount() < 29'000)
            static_cast<void>(grow(wide, 500, false));
    }
    remover.join();
}

}  // namespace
}  // namespace orrinvale
