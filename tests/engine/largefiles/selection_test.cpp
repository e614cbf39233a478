// The ticks of the large file page: down through what is open, up to what holds it, and what
// follows from them.
#include <rapidcheck.h>

#include "engine/files/Arena.h"
#include "engine/files/bundleName.h"
#include "engine/largefiles/NodeSelection.h"
#include "engine/largefiles/ScannedTree.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::nodeAt;

// Paths of files and, with a slash at the end, of folders.
class GrownTree {
public:
    explicit GrownTree(const std::vector<std::string>& paths) {
        for (std::string path : paths) {
            const bool isFolder = path.ends_with('/');
            if (isFolder) path.pop_back();
            const std::size_t slash = path.rfind('/');
            FileNode* const folder =
                nodeAt(tree, slash == std::string::npos ? "" : path.substr(0, slash));
            const FoundEntry entry{.name = m_names.copy(path.substr(slash + 1)),
                                   .isDirectory = isFolder,
                                   .links = m_position % 3,
                                   .position = m_position++,
                                   .size = isFolder ? 0U : 1U};
            tree.add(*folder, {&entry, 1});
            m_paths.push_back(path);
        }
    }
    FileNode& at(std::string_view path) { return *nodeAt(tree, path); }
    // "path state" of each node that is not 0.
    std::string states() {
        std::string text;
        for (const std::string& path : m_paths)
            if (const FileNode* const node = nodeAt(tree, path);
                node != nullptr && node->state() != 0)
                text += path + ' ' + std::to_string(node->state()) + ", ";
        return text;
    }

    FileNodeTree tree{"/r"};

private:
    Arena m_names;
    std::uint32_t m_position = 0;
    std::vector<std::string> m_paths;
};

TEST(Selection, GoesDownThroughWhatIsOpenAndOneLevelFurther) {
    const struct {
        const char* what;
        std::set<std::string> open;
        const char* node;
        std::uint8_t state;
        const char* states;
        bool further;
    } cases[] = {
        {"a file", {}, "file", 1, "file 1, ", false},
        {"a closed folder", {}, "a", 1, "a 1, a/b 1, a/x 1, ", false},
        {"an open one", {"a"}, "a", 1, "a 1, a/b 1, a/b/c 1, a/b/y 1, a/x 1, ", true},
        {"two", {"a", "a/b"}, "a", 1, "a 1, a/b 1, a/b/c 1, a/b/c/z 1, a/b/y 1, a/x 1, ", true},
        {"an open one in a closed one", {"a/b"}, "a", 1, "a 1, a/b 1, a/x 1, ", false},
        {"a mixed state as it stands", {}, "a", 2, "a 1, a/b 2, a/x 2, ", false},
        {"an empty folder", {"a/b/c"}, "empty", 1, "empty 1, ", false},
    };
    for (const auto& [what, open, node, state, states, further] : cases) {
        GrownTree grown({"a/", "a/b/", "a/b/c/", "a/b/c/z", "a/b/y", "a/x", "file", "empty/"});
        for (const std::string& path : open) grown.at(path).setIsExpand(true);
        TickSpread spread(state);
        spread.tick(grown.at(node));
        while (!spread.step(1)) {}
        EXPECT_EQ(grown.states(), states) << what;
        EXPECT_EQ(spread.wentFurther(), further) << what;
        TickSpread clear(0);
        clear.tick(grown.at(node));
        clear.finish();
        EXPECT_EQ(grown.states(), "") << what;
    }
}

TEST(Selection, GoesUpToMixedWhereAFolderStandsBesides) {
    const struct {
        std::vector<std::string> paths, ticked;
        const char* states;
        std::int32_t all;
    } cases[] = {
        {{"f/", "f/1", "f/2", "g"}, {"f/1"}, "f 2, f/1 1, ", 2},
        {{"f/", "f/1", "f/2", "g"}, {"f/1", "f/2"}, "f 1, f/1 1, f/2 1, ", 2},
        {{"f/", "f/1", "f/2", "g"}, {"f/1", "f/2", "g"}, "f 1, f/1 1, f/2 1, g 1, ", 1},
        {{"f/", "f/d/", "f/1"}, {"f/d", "f/1"}, "f 2, f/d 1, f/1 1, ", 2},
        {{"f/", "f/d/", "f/d/e/", "f/d/e/1"}, {"f/d/e/1"}, "f 2, f/d 2, f/d/e 1, f/d/e/1 1, ", 2},
        {{"f/", "g"}, {"f", "g"}, "f 1, g 1, ", 1},
        {{"f/", "f/d/", "f/1", "g"}, {"g", "f/1"}, "f 2, f/1 1, g 1, ", 2},
        {{"g", "h"}, {}, "", 0},
        {{}, {}, "", 0},
    };
    for (const auto& [paths, ticked, states, all] : cases) {
        GrownTree grown(paths);
        for (const std::string& path : ticked) {
            TickSpread spread(1);
            spread.tick(grown.at(path));
            spread.finish();
            followUpwards(grown.at(path));
        }
        EXPECT_EQ(grown.states(), states);
        EXPECT_EQ(summaryOf(grown.tree.root().childrenInAnyOrder()), all) << states;
        for (const std::string& path : ticked) {
            grown.at(path).setState(FileNode::NotSelected);
            followUpwards(grown.at(path));
        }
        EXPECT_EQ(grown.states(), "") << states;
    }
}

TEST(Selection, WhatWouldGoIsTheTopmostTickedOnesTheBiggestFirst) {
    GrownTree grown({"f/", "f/d/", "f/d/1", "f/d/2", "f/3", "g", "h/", "h/4", "i/"});
    const auto names = [&] {
        std::string text;
        for (const FileNode* const node : tickedOf(grown.tree.root().children()))
            text += node->path() + ' ';
        return text;
    };
    EXPECT_EQ(names(), "");
    grown.at("i").setState(FileNode::Mixed);  // has nothing below
    grown.at("g").setState(FileNode::Selected);
    grown.at("h").setState(FileNode::Selected);
    grown.at("h/4").setState(FileNode::NotSelected);
    grown.at("f/d/2").setState(FileNode::Selected);
    followUpwards(grown.at("f/d/2"));
    EXPECT_EQ(names(), "/r/f/d/2 /r/g /r/h ");
    grown.at("f/d").setState(FileNode::NotSelected);  // what is below a clear one stays
    EXPECT_EQ(names(), "/r/g /r/h ");
}

// Sizes make the order, so that it is known what is left and in which.
TEST(Selection, ChildrenLeaveTogetherAndTheRestStaysInOrder) {
    const struct {
        std::size_t ordered;
        std::vector<std::size_t> leaving;
    } cases[] = {
        {10'000, {0, 1, 2, 9'999}},  {10'000, {5'000, 7, 6}}, {0, {3, 9'000, 1}},
        {100, {50, 99, 100, 7'000}}, {100, {7'000, 50}},      {10'000, {}},
    };
    for (const auto& [ordered, leaving] : cases) {
        constexpr std::size_t count = 10'000;
        FileNodeTree tree("/r");
        std::vector<FoundEntry> entries(count, {.name = "x"});
        for (std::size_t i = 0; i < count; ++i) {
            entries[i].size = (i * 7'919) % count;  // each once
            entries[i].position = static_cast<std::uint32_t>(i);
        }
        FileNode& root = tree.root();
        tree.add(root, entries);
        const auto children = root.biggestChildren(ordered);
        std::vector<FileNode*> gone;
        std::set<std::uint64_t, std::greater<>> left;
        for (const FileNode* const child : children) left.insert(child->size());
        for (const std::size_t index : leaving) {
            gone.push_back(children[index]);
            left.erase(children[index]->size());
        }
        root.removeChildren(gone);
        root.removeChildren(gone);  // no children any more
        std::vector<std::uint64_t> sizes;
        for (const FileNode* const child : root.children()) sizes.push_back(child->size());
        EXPECT_EQ(sizes, std::vector<std::uint64_t>(left.begin(), left.end()));
    }
}

// Files by themselves, wherever they lie, beside boxes that are clicked in the tree and rows that
// open and close: what stood for a file stands for it until it is ticked or cleared itself.
class TickedByHand : public GrownTree {
public:
    TickedByHand()
        : GrownTree({"f", "a/", "a/f", "a/g", "a/b/", "a/b/f", "a/b/g", "a/b/c/", "a/b/c/f", "a/d/",
                     "a/d/f", "e/", "e/f", "e/g"}) {
        for (const char* const path :
             {"f", "a/f", "a/g", "a/b/f", "a/b/g", "a/b/c/f", "a/d/f", "e/f", "e/g"})
            files.push_back(&at(path));
        for (const char* const path : {"a", "a/b", "a/b/c", "a/d", "e"})
            folders.push_back(&at(path));
    }
    static void open(FileNode& folder) {
        folder.setIsExpand(true);
        if (folder.state() == FileNode::Mixed) return;
        TickSpread spread(folder.state());
        spread.tick(folder);
        spread.finish();
    }
    static void click(FileNode& node) {
        const auto state =
            node.state() == FileNode::Selected ? FileNode::NotSelected : FileNode::Selected;
        node.setState(state);
        if (node.isExpand()) {
            TickSpread spread(state);
            spread.tick(node);
            spread.finish();
        }
        followUpwards(node);
    }
    static bool isShown(const FileNode& node) {
        for (const FileNode* above = node.father(); above != nullptr; above = above->father())
            if (!above->isExpand()) return false;
        return true;
    }
    std::vector<bool> standing() const {
        std::vector<bool> ticked;
        for (const FileNode* const file : files)
            ticked.push_back(standingState(*file) == FileNode::Selected);
        return ticked;
    }
    // The files that go with what a removal takes.
    std::vector<bool> leaving() {
        const auto nodes = tickedOf(tree.root().children());
        std::vector<bool> ticked;
        for (const FileNode* node : files) {
            while (node != nullptr && std::ranges::count(nodes, node) == 0) node = node->father();
            ticked.push_back(node != nullptr);
        }
        return ticked;
    }

    std::vector<FileNode*> files, folders;
};

TEST(Selection, AFileThatIsTickedByItselfLeavesAllOthersAsTheyStood) {
    EXPECT_TRUE(rc::check([] {
        TickedByHand hand;
        for (int turn = *rc::gen::inRange(1, 30); turn > 0; --turn) {
            std::vector<bool> expected = hand.standing();
            FileNode& folder = *hand.folders[*rc::gen::inRange<std::size_t>(0, 5)];
            const auto which = *rc::gen::inRange<std::size_t>(0, hand.files.size());
            FileNode& file = *hand.files[which];
            const bool isTicking = *rc::gen::arbitrary<bool>();
            const auto state = isTicking ? FileNode::Selected : FileNode::NotSelected;
            const auto isInFolder = [&](const FileNode* node) {
                while (node != nullptr && node != &folder) node = node->father();
                return node != nullptr;
            };
            switch (*rc::gen::inRange(0, 8)) {
                case 0:
                    if (hand.isShown(folder)) hand.open(folder);
                    break;
                case 1: folder.setIsExpand(false); break;
                case 2:
                    if (hand.isShown(folder)) hand.click(folder);
                    expected = hand.standing();
                    break;
                case 3: {
                    const std::vector<FileNode*> many(hand.files.begin() + std::ptrdiff_t(which),
                                                      hand.files.end());
                    tickMany(hand.tree.root(), many, state);
                    std::fill(expected.begin() + std::ptrdiff_t(which), expected.end(), isTicking);
                    break;
                }
                case 4:
                case 5: {  // a bundle is a row, too
                    FileNode* const bundle = &folder;
                    if (*rc::gen::arbitrary<bool>()) tickOne(folder, state);
                    else tickMany(hand.tree.root(), {&bundle, 1}, state);
                    for (std::size_t i = 0; i < expected.size(); ++i)
                        if (isInFolder(hand.files[i])) expected[i] = isTicking;
                    break;
                }
                default:
                    tickOne(file, state);
                    expected[which] = isTicking;
                    for (const FileNode* above = file.father(); above; above = above->father())
                        RC_ASSERT(above->state() != FileNode::Selected);
            }
            RC_ASSERT(hand.standing() == expected);
            RC_ASSERT(hand.leaving() == expected);
            for (const FileNode* const each : hand.files)
                if (hand.isShown(*each)) RC_ASSERT(each->state() == standingState(*each));
            const auto nodes = tickedOf(hand.tree.root().children());
            TickedTotals totals{.nodes = nodes.size()};
            for (const FileNode* const node : nodes) {
                totals.bytes += node->size();
                totals.folders +=
                    node->isDirectory() && !isClosedAmongLargeFiles(node->name()) ? 1U : 0U;
                totals.linked += !node->isDirectory() && node->links() > 1 ? 1U : 0U;
            }
            RC_ASSERT(totalsOf(hand.tree.root().children()) == totals);
        }
    }));
}

// Whichever folder was chosen: paths directly below "/" begin with two slashes.
TEST(Selection, KnowsTheSystemsFoldersByTheirOwnPathsAlone) {
    const struct {
        const char* chosen;
        const char* name;
        bool isSystem;
    } cases[] = {{"/", "usr", true},
                 {"/", "lost", false},
                 {"/usr", "lib", true},
                 {"/home/usr", "lib", false}};
    for (const auto& [chosen, name, isSystem] : cases) {
        FileNodeTree tree(chosen);
        const FoundEntry entry{.name = name, .isDirectory = true, .type = FileType::Folder};
        EXPECT_EQ(tree.add(tree.root(), {&entry, 1}).front()->isSystemFile(), isSystem)
            << chosen << ' ' << name;
    }
}

}  // namespace
}  // namespace orrinvale
