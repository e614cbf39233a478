// What a person sees and does after a search: the seven views, the ticks with the rule that one
// copy stays, and the upkeep of both while copies go.
#include "engine/duplicates/BundleListing.h"
#include "engine/duplicates/results/DuplicateSelection.h"
#include "engine/duplicates/results/LeafSort.h"
#include "engine/duplicates/results/RemovalPlan.h"
#include "engine/duplicates/results/ResultViews.h"
#include "engine/removal/PairList.h"
#include "platform/linux/LinuxFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using Pointer = TreeNode::Pointer;

Pointer addGroup(SimpleTreeNode& root, const std::string& extension, int copies,
                 std::uint64_t size = 100) {
    auto data = SimpleNodeData::groupDataWithName("name." + extension);
    data->setExtendName(extension);
    data->setFileSize(size * static_cast<std::uint64_t>(copies));
    const Pointer group = SimpleTreeNode::treeNodeWithData(std::move(data));
    for (int i = 0; i < copies; ++i) {
        auto leaf =
            SimpleNodeData::leafDataWithName("/" + std::to_string(i) + "/name." + extension);
        leaf->setFileSize(size);
        group->insertChild(SimpleTreeNode::treeNodeWithData(std::move(leaf)),
                           group->numberOfChildren());
    }
    root.insertChild(group, root.numberOfChildren());
    return group;
}

std::shared_ptr<SimpleTreeNode> newRoot() {
    return SimpleTreeNode::treeNodeWithData(SimpleNodeData::groupDataWithName("Root"));
}

/// A group as a person sees it: its state, its count, and which leaves are ticked.
std::string seen(const TreeNode& group) {
    std::string text = std::to_string(simpleData(group)->selectNum()) + " " +
                       simpleData(group)->showSelectNumStr() + " ";
    for (const auto& leaf : group.children())
        text += simpleData(*leaf)->selectNum() == 1 ? 'x' : '.';
    return text;
}

TEST(DuplicateSelection, KeepsOneCopyUnlessAPersonInsists) {
    const auto root = newRoot();
    const Pointer two = addGroup(*root, "a", 2);
    const Pointer three = addGroup(*root, "b", 3);
    DuplicateSelection selection;
    EXPECT_EQ(selection.clickLeaf(two->childAtIndex(0)), LeafClick::Ticked);
    EXPECT_EQ(seen(*two), "2 1/2 x.");
    EXPECT_EQ(selection.clickLeaf(two->childAtIndex(1)), LeafClick::Question);
    EXPECT_EQ(seen(*two), "2 1/2 x.") << "the question alone changes nothing";
    selection.tickLast(two->childAtIndex(1));
    EXPECT_EQ(seen(*two), "1 2/2 xx");
    EXPECT_EQ(selection.clickLeaf(two->childAtIndex(0)), LeafClick::Cleared);
    EXPECT_EQ(seen(*two), "2 1/2 .x");

    selection.clickGroup(*three);
    EXPECT_EQ(seen(*three), "2 2/3 xx.");
    EXPECT_EQ(selection.allSelectNumArr().size(), 3U);
    selection.clickGroup(*three);
    EXPECT_EQ(seen(*three), "0 0/3 ...");
    selection.tickAllBut(*three->childAtIndex(0));
    EXPECT_EQ(seen(*three), "2 2/3 .xx");
    EXPECT_EQ(selection.clickLeaf(three->childAtIndex(1)), LeafClick::Cleared);
    EXPECT_EQ(selection.clickLeaf(three->childAtIndex(2)), LeafClick::Cleared);
    EXPECT_EQ(seen(*three), "0 0/3 ...");
    EXPECT_EQ(selection.allSelectNumArr().size(), 1U);
}

TEST(DuplicateSelection, TheHeaderBoxTicksTheViewAndShowsIt) {
    const auto root = newRoot();
    const Pointer two = addGroup(*root, "a", 2);
    const Pointer three = addGroup(*root, "b", 3);
    DuplicateSelection selection;
    const auto box = [&] {
        const HeaderBox header = DuplicateSelection::headerBox(*root);
        return std::to_string(header.isOn) + " " + std::string(header.picture) + " " +
               std::to_string(header.leaves);
    };
    EXPECT_EQ(box(), "0 option_no 5");
    ASSERT_EQ(selection.clickLeaf(two->childAtIndex(0)), LeafClick::Ticked);
    EXPECT_EQ(box(), "1 option_a 5");
    selection.setAll(*root, true);
    EXPECT_EQ(selection.allSelectNumArr().size(), 4U)
        << "the leaf that was ticked before stands in it twice";
    EXPECT_EQ(seen(*two) + ", " + seen(*three), "2 1/2 x., 2 2/3 xx.");
    selection.tickLast(two->childAtIndex(1));
    selection.tickLast(three->childAtIndex(2));
    EXPECT_EQ(box(), "1 option_yes 5");
    selection.setAll(*root, false);
    EXPECT_TRUE(selection.allSelectNumArr().empty());
    EXPECT_EQ(box(), "0 option_no 5");
}

TEST(DuplicateSelection, SumsCountEachCopyAndEachFileOnce) {
    const auto root = newRoot();
    const Pointer group = addGroup(*root, "a", 5);
    const auto leaf = [&](std::size_t i) { return simpleData(*group->childAtIndex(i)); };
    for (std::size_t i = 0; i < 5; ++i) {
        leaf(i)->setFileSize(100);
        leaf(i)->setIdentity(
            EntryIdentity{.device = 1, .inode = i < 2 ? 7 : i, .type = FileType::Regular});
    }
    for (const std::size_t name : {0U, 1U}) leaf(name)->setHardLinks(2);
    leaf(3)->setLink("/elsewhere/a", true);
    leaf(3)->setIdentity(EntryIdentity{.device = 1, .inode = 3, .type = FileType::SymbolicLink});
    DuplicateSelection selection;
    const auto sums = [&] {
        const TickedSums& now = selection.sums();
        return fmt::format("{} {} {}", now.copies, now.outside, now.bytes);
    };
    const auto click = [&](std::size_t i) {
        static_cast<void>(selection.clickLeaf(group->childAtIndex(i)));
        return sums();
    };
    EXPECT_EQ(click(0), "1 0 0") << "its other name keeps the file";
    EXPECT_EQ(click(1), "2 0 100");
    EXPECT_EQ(click(2), "3 0 200");
    EXPECT_EQ(click(3), "4 1 200") << "a link holds next to nothing";
    EXPECT_EQ(click(1), "3 1 100");
    selection.setAll(*root, true);
    EXPECT_EQ(sums(), "4 1 200") << "those that stand in the list twice count once";
    selection.recount();
    EXPECT_EQ(sums(), "4 1 200");
    selection.clickGroup(*group);
    EXPECT_EQ(sums(), "0 0 0");
    selection.setAll(*root, true);
    selection.allSelectNumArr().clear();
    selection.recount();
    EXPECT_EQ(sums(), "0 0 0");
}

TEST(TickedLeaves, KeepTheOrderOverManyRemovals) {
    const auto root = newRoot();
    const Pointer group = addGroup(*root, "a", 500);
    TickedLeaves ticked;
    std::vector<Pointer> expected;
    for (const auto& leaf : group->children()) ticked.append(leaf);
    for (std::size_t i = 0; i < 500; ++i) {
        if (i % 7 == 0) expected.push_back(group->childAtIndex(i));
        else ticked.remove(group->childAtIndex(i).get());
    }
    ticked.append(group->childAtIndex(0));
    expected.push_back(group->childAtIndex(0));
    EXPECT_EQ(ticked.entries(), expected);
    ticked.remove(group->childAtIndex(0).get());
    EXPECT_EQ(ticked.size(), expected.size() - 2);
}

TEST(LeafSort, InPiecesGivesTheOrderOfOneSort) {
    const auto tree = [] {
        const auto root = newRoot();
        for (std::uint64_t g = 0; g < 1000; ++g) {
            const Pointer group = addGroup(*root, std::to_string(g * 7 % 10), 5, g % 3);
            for (std::size_t i = 0; i < 5; ++i) {
                simpleData(*group->childAtIndex(i))->setFileSize((g + i) * 3 % 5);
                if (i != 2)
                    simpleData(*group->childAtIndex(i))
                        ->setModificationDate(Date{std::int64_t(i * g % 4) - 2});
            }
        }
        return root;
    };
    const auto text = [](const TreeNode& root) {
        std::string all;
        for (const auto& group : root.children()) {
            all += simpleData(*group)->name();
            for (const auto& leaf : group->children())
                all += " " + simpleData(*leaf)->name() + " " +
                       std::to_string(simpleData(*leaf)->fileSize());
        }
        return all;
    };
    const auto whole = tree(), pieces = tree();
    const struct {
        void (TreeNode::*sort)();
        SortKey key;
        bool descending;
    } cases[] = {{&TreeNode::decendingSortName, SortKey::Name, true},
                 {&TreeNode::acendingSortDate, SortKey::Date, false},
                 {&TreeNode::decendingSortSize, SortKey::Size, true}};
    for (const auto& c : cases) {
        (whole.get()->*c.sort)();
        LeafSort sort;
        sort.begin(*pieces, c.key, c.descending);
        sort.sortNow(*pieces->childAtIndex(500));
        EXPECT_FALSE(sort.step(std::chrono::steady_clock::time_point::min()))
            << "the time was over before it began";
        sort.finish();
        EXPECT_FALSE(sort.isPending());
        EXPECT_EQ(text(*pieces), text(*whole));
    }
}

TEST(ResultViews, PutEachGroupIntoOneTypeByItsExtension) {
    const auto root = newRoot();
    for (const char* extension : {"PDF", "mkv", "mp3", "zip", "gz", "jpg", "", "APP"})
        addGroup(*root, extension, 2);
    ResultViews views;
    views.setResult(root);
    std::string rows;
    for (std::size_t row = 0; row < resultRows.size(); ++row)
        rows += std::string(resultRows[row].title) + " " +
                std::to_string(views.tree(row)->numberOfChildren()) + " " + views.sizeText(row) +
                "\n";
    EXPECT_EQ(rows,
              "All 8 1.60 KB\nDocuments 1 0.20 KB\nVideos 1 0.20 KB\nMusic 1 0.20 KB\nArchives 1 "
              "0.20 KB\n"
              "Pictures 1 0.20 KB\nOthers 3 0.60 KB\n");
    views.clear();
    EXPECT_EQ(views.tree(0), nullptr);
    EXPECT_EQ(views.sizeText(0), "0.0KB");
    EXPECT_EQ(root->numberOfChildren(), 0U);
}

TEST(ResultViews, AreTrueAfterARemoval) {
    struct Case {
        const char* description;
        int copies;
        std::vector<std::size_t> ticked;   // in this order; the last clear one by insisting
        std::vector<std::size_t> removed;  // in one batch
        bool stays;
        const char* group;
        std::uint64_t size;  // of the row of the type, each copy being 100
    };
    const Case cases[] = {
        {"a group of two loses one copy and is none any more", 2, {0}, {0}, false, "", 0},
        {"a group of three loses one", 3, {0}, {0}, true, "0 0/2 ..", 200},
        {"a group of three loses one of two ticked", 3, {0, 1}, {0}, true, "2 1/2 x.", 200},
        {"the count says whether, not how many", 4, {0, 1, 2}, {0}, true, "2 1/3 xx.", 300},
        {"a wholly ticked group loses one of two", 2, {0, 1}, {1}, true, "1 1/1 x", 100},
        {"a wholly ticked group loses both", 2, {0, 1}, {0, 1}, false, "", 0},
        {"both ticked leaves of three go in one batch", 3, {0, 1}, {0, 1}, false, "", 0},
        {"two of three ticked go in one batch, two stay",
         5,
         {0, 1, 2},
         {2, 0},
         true,
         "2 1/3 x..",
         300},
    };
    for (const Case& c : cases) {
        const auto root = newRoot();
        const Pointer group = addGroup(*root, "jpg", c.copies);
        addGroup(*root, "txt", 2, 7);
        ResultViews views;
        views.setResult(root);
        DuplicateSelection selection;
        for (const std::size_t leaf : c.ticked)
            if (selection.clickLeaf(group->childAtIndex(leaf)) == LeafClick::Question)
                selection.tickLast(group->childAtIndex(leaf));
        std::vector<Pointer> removed;
        for (const std::size_t leaf : c.removed) removed.push_back(group->childAtIndex(leaf));
        views.removeLeaves(removed);
        EXPECT_EQ(views.tree(0)->numberOfChildren(), c.stays ? 2U : 1U) << c.description;
        EXPECT_EQ(views.tree(5)->numberOfChildren(), c.stays ? 1U : 0U) << c.description;
        EXPECT_EQ(c.stays ? seen(*group) : "", c.group) << c.description;
        EXPECT_EQ(views.size(5), c.size) << c.description;
        EXPECT_EQ(views.size(0), c.size + 14) << c.description;
    }
}

// A real group of files, as the search would have seen them.
struct PlannedRemoval {
    explicit PlannedRemoval(const Strings& names) {
        const Pointer group = addGroup(*root, "txt", 0);
        for (const std::string& name : names) {
            if (name.ends_with("symlink")) tree.symlink(tree.at(names.front()), name);
            else if (name.ends_with("link")) tree.hardLink(names.front(), name);
            else if (name.ends_with(".app")) tree.write(name + "/Contents/main", "the same");
            else tree.write(name, "the same");
        }
        for (const std::string& name : names) {
            auto data = SimpleNodeData::leafDataWithName(tree.at(name));
            data->setFileSize(std::string_view("the same").size());
            data->setIdentity(EntryIdentity::of(attributesOf(tree.at(name))));
            if (name.ends_with(".app"))
                data->setBundleDigest(
                    listBundle(files, tree.at(name), {}, std::atomic<bool>{false})->digest);
            group->insertChild(SimpleTreeNode::treeNodeWithData(std::move(data)),
                               group->numberOfChildren());
        }
    }
    void tick(std::size_t leaf) {
        EXPECT_EQ(selection.clickLeaf(root->firstChild()->childAtIndex(leaf)), LeafClick::Ticked);
    }
    void tickGroup() { selection.clickGroup(*root->firstChild()); }

    /// Runs the plan as the removing thread does: "-" for what went, "others" for what somebody
    /// else had removed, else why it stays.
    Strings run() {
        RemovalPlan plan(files, selection.allSelectNumArr().entries(),
                         RemovalPlan::Comparing::Always);
        Strings results;
        auto telling = testing::nobodyTold();
        telling.settled = [&](std::size_t, const RemovalResult& result) {
            results.push_back(result.byOthers ? "others"
                              : result.gone   ? "-"
                                              : result.failures.front().reason);
        };
        (void)testing::removeAll(files, tree.at("state"), plan, telling);
        return results;
    }

    TestTree tree;
    LinuxFileSystem files;
    std::shared_ptr<SimpleTreeNode> root = newRoot();
    DuplicateSelection selection;
};

TEST(RemovalPlan, OneVerifiedCopyStaysUnlessAPersonInsisted) {
    const std::string none = "no other verified copy is left";
    const struct {
        const char* what;
        Strings names;
        std::function<void(PlannedRemoval&)> before;
        Strings results;
    } cases[] = {
        {"what changed and what is gone",
         {"a", "b", "c", "d"},
         [](PlannedRemoval& p) {
             p.tickGroup(), p.tree.write("a", "written since"), ::unlink(p.tree.at("b").c_str());
         },
         {"changed since the scan", "others", "-"}},
        {"the copy that was to stay is another file now",
         {"a", "b", "c"},
         [](PlannedRemoval& p) { p.tickGroup(), p.tree.write("c", "another"); },
         {"-", none}},
        {"the other copy is looked for across those that have gone",
         {"a", "b", "c", "d"},
         [](PlannedRemoval& p) { p.tick(2), p.tick(1), p.tick(0), p.tree.write("d", "another"); },
         {"-", "-", none}},
        {"a bundle counts with all that was in it",
         {"a.app", "b.app", "c.app"},
         [](PlannedRemoval& p) {
             p.tickGroup(), ::unlink(p.tree.at("c.app/Contents/main").c_str());
         },
         {"-", none}},
        {"a link is no copy of what it points at",
         {"a", "b", "symlink"},
         [](PlannedRemoval& p) { p.tickGroup(); },
         {"-", none}},
        {"each leaf ticked by a way that asks nothing",
         {"a", "b"},
         [](PlannedRemoval& p) { p.tick(1), p.selection.setAll(*p.root, true); },
         {"-", none}},
        {"a wholly ticked group",
         {"a", "b"},
         [](PlannedRemoval& p) {
             p.tick(0), p.selection.tickLast(p.root->firstChild()->childAtIndex(1));
         },
         {"-", "-"}},
        {"hard links are not changed by our own removal",
         {"a", "first link", "second link", "b"},
         [](PlannedRemoval& p) { p.tickGroup(); },
         {"-", "-", "-"}},
    };
    for (const auto& [what, names, before, results] : cases) {
        PlannedRemoval planned(names);
        before(planned);
        EXPECT_EQ(planned.run(), results) << what;
    }
}

}  // namespace
}  // namespace orrinvale
