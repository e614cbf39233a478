// The result tree: parents and children over two trees, the six sorts, the cover, and trees too
// deep for the stack.
#include <stdexcept>

#include "engine/duplicates/tree/SimpleTreeNode.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using Pointer = TreeNode::Pointer;
using Names = std::vector<std::string>;

Pointer leaf(const std::string& name, std::uint64_t size = 0,
             std::optional<std::int64_t> date = {}) {
    auto data = SimpleNodeData::leafDataWithName(name);
    data->setFileSize(size);
    if (date) data->setModificationDate(Date{*date});
    return SimpleTreeNode::treeNodeWithData(std::move(data));
}

void add(const Pointer& parent, const Pointer& child) {
    parent->insertChild(child, parent->numberOfChildren());
}

Pointer group(const std::string& name, const std::vector<Pointer>& children,
              std::uint64_t size = 0) {
    auto data = SimpleNodeData::groupDataWithName(name);
    data->setFileSize(size);
    const Pointer node = SimpleTreeNode::treeNodeWithData(std::move(data));
    for (const Pointer& child : children) add(node, child);
    return node;
}

/// "a(b c(d))": the names in the order of the walk, a group's members in brackets.
std::string text(const TreeNode& node) {
    std::string result = simpleData(node) ? simpleData(node)->description() : "?";
    if (node.numberOfChildren() == 0) return result;
    for (std::size_t i = 0; i < node.numberOfChildren(); ++i)
        result += (i == 0 ? "(" : " ") + text(*node.childAtIndex(i));
    return result + ")";
}

TEST(Tree, InsertingAndRemovingKeepTheParentLinks) {
    const Pointer a = leaf("a"), b = leaf("b"), c = leaf("c");
    const Pointer root = group("r", {a, c});
    root->insertChild(b, 1);
    EXPECT_EQ(text(*root), "r(a b c)");
    EXPECT_EQ(root->firstChild(), a);
    EXPECT_EQ(root->lastChild(), c);
    EXPECT_EQ(root->indexOfChild(b.get()), 1U);
    EXPECT_EQ(root->indexOfChildIdenticalTo(leaf("b").get()), std::nullopt);
    EXPECT_THROW(root->insertChild(leaf("x"), 4), std::out_of_range);

    add(root, b);  // a child may stand twice; all its places go together
    root->removeChild(b.get());
    EXPECT_EQ(text(*root), "r(a c)");
    EXPECT_EQ(b->nodeParent(), nullptr);
    EXPECT_THROW(root->removeChild(b.get()), std::out_of_range);
    EXPECT_THROW(root->removeChild(nullptr), std::out_of_range);

    for (const Pointer& child : root->children()) child->removeFromParent();
    a->removeFromParent();
    EXPECT_EQ(root->numberOfChildren(), 0U);
    EXPECT_EQ(root->lastChild(), nullptr);
    EXPECT_THROW((void)root->firstChild(), std::out_of_range);
    EXPECT_THROW((void)root->childAtIndex(0), std::out_of_range);
}

TEST(Tree, ManyChildrenGoInOnePass) {
    const Pointer stranger = leaf("s");
    const Pointer other = group("o", {stranger});
    const Pointer root = group("r", {});
    std::vector<Pointer> odd;
    for (int i = 0; i < 7; ++i) {
        add(root, leaf(std::to_string(i)));
        if (i % 2 == 1) odd.push_back(root->lastChild());
    }
    odd.push_back(stranger);
    root->_removeChildrenIdenticalTo(odd);
    EXPECT_EQ(text(*root), "r(0 2 4 6)");
    EXPECT_EQ(odd[0]->nodeParent(), nullptr);
    EXPECT_EQ(stranger->nodeParent(),
              nullptr);  // as for all that are named, though another tree still holds it
    EXPECT_EQ(text(*other), "o(s)");
    EXPECT_EQ(root->firstChild()->nodeParent(), root.get());
}

TEST(Tree, ANodeInTwoTreesHasTheParentSetLast) {
    const Pointer shared = group("g", {leaf("x")});
    Pointer all = group("all", {shared});
    Pointer pictures = group("pictures", {shared});
    EXPECT_EQ(shared->nodeParent(), pictures.get());
    EXPECT_EQ(text(*all), "all(g(x))");

    all.reset();  // the tree that is not the parent leaves the link alone
    EXPECT_EQ(shared->nodeParent(), pictures.get());
    pictures.reset();
    EXPECT_EQ(shared->nodeParent(), nullptr);
    EXPECT_EQ(text(*shared), "g(x)");

    all = group("all", {shared});
    pictures = group("pictures", {shared});
    shared->removeFromParent();
    EXPECT_EQ(text(*pictures), "pictures");
    EXPECT_EQ(text(*all), "all(g(x))");
    EXPECT_EQ(shared->nodeParent(), nullptr);
}

TEST(Tree, SortsEveryLevelByOneKeyAndKeepsTheOrderOfEquals) {
    const auto tree = [] {
        return group("r", {group("b", {leaf("y", 5, 30), leaf("x", 5, 10), leaf("z", 1, 20)}, 11),
                           group("C", {leaf("n", 2, 5), leaf("m", 3, 5)}, 1ULL << 63),
                           group("a", {leaf("q", 7, -1)}, 11)});
    };
    const struct {
        void (TreeNode::*sort)();
        const char* text;
    } cases[] = {
        {&TreeNode::acendingSortName, "r(C(m n) a(q) b(x y z))"},
        {&TreeNode::decendingSortName, "r(b(z y x) a(q) C(n m))"},
        {&TreeNode::acendingSortSize, "r(b(z y x) a(q) C(n m))"},
        {&TreeNode::decendingSortSize, "r(C(m n) b(y x z) a(q))"},
        {&TreeNode::acendingSortDate, "r(b(x z y) C(n m) a(q))"},
        {&TreeNode::decendingSortDate, "r(b(y z x) C(n m) a(q))"},
    };
    for (const auto& each : cases) {
        const Pointer root = tree();
        (root.get()->*each.sort)();
        EXPECT_EQ(text(*root), each.text);
    }
}

TEST(Tree, ManyEqualsKeepTheirOrderBothWays) {
    const Pointer root = group("r", {});
    for (int i = 0; i < 100; ++i)
        add(root, leaf(std::to_string(i), static_cast<std::uint64_t>(i % 2)));
    for (const auto& [sort, first] :
         {std::pair{&TreeNode::decendingSortSize, 1}, {&TreeNode::acendingSortSize, 0}}) {
        (root.get()->*sort)();
        for (int i = 0; i < 100; ++i) {
            const int expected = i < 50 ? 2 * i + first : 2 * (i - 50) + 1 - first;
            ASSERT_EQ(text(*root->childAtIndex(static_cast<std::size_t>(i))),
                      std::to_string(expected));
        }
    }
}

TEST(Tree, NodesWithoutAKeyKeepTheirPlacesAmongTheOthers) {
    const Pointer root =
        group("r", {leaf("c", 0, 3), leaf("-"), leaf("b", 0, 2), leaf("="), leaf("a", 0, 1)});
    add(root, TreeNode::treeNodeWithData(nullptr));
    add(root, TreeNode::treeNodeWithData(std::make_shared<TreeNodeData>()));
    root->acendingSortDate();
    EXPECT_EQ(text(*root), "r(a - b = c ? ?)");
    root->decendingSortName();
    EXPECT_EQ(text(*root), "r(c b a = - ? ?)");

    const Pointer dated = leaf("d", 0, 1), undated = leaf("e");
    EXPECT_TRUE(dated->compareDate(*undated) == 0 && undated->compareDateR(*dated) == 0);
    EXPECT_TRUE(dated->compareName(*undated) < 0 && dated->compareNameR(*undated) > 0);
    EXPECT_TRUE(dated->compareName(*root->lastChild()) == 0 &&
                dated->compareSize(*root->childAtIndex(5)) == 0);
}

/// The cover by the plain road: a working list from which each way up takes its nodes out.
std::vector<TreeNode*> coverByWorkingList(std::vector<TreeNode*> working) {
    std::vector<TreeNode*> cover;
    while (!working.empty()) {
        TreeNode* node = working.front();
        std::erase(working, node);
        for (; node->nodeParent() != nullptr; node = node->nodeParent()) std::erase(working, node);
        if (!node->isDescendantOfNodeInArray(cover)) cover.push_back(node);
        std::erase(working, node);
    }
    return cover;
}

TEST(Tree, CoverIsTheRootsInTheOrderOfTheNodes) {
    EXPECT_TRUE(TreeNode::minimumNodeCoverFromNodesInArray({}).empty());
    std::mt19937 random(7);
    for (int round = 0; round < 200; ++round) {
        std::vector<Pointer> nodes;
        for (int i = 0; i < 30; ++i) {
            nodes.push_back(leaf(std::to_string(i)));
            const std::size_t parent = random() % (2 * nodes.size());
            if (parent + 1 < nodes.size()) add(nodes[parent], nodes.back());
        }
        std::vector<TreeNode*> chosen;
        for (std::size_t i = random() % 20; i > 0; --i)
            chosen.push_back(nodes[random() % nodes.size()].get());
        ASSERT_EQ(TreeNode::minimumNodeCoverFromNodesInArray(chosen), coverByWorkingList(chosen));
    }
}

TEST(Tree, DeepTreesSortAndEndInConstantStack) {
    constexpr int kDepth = 300'000;
    Pointer root = group("r", {});
    TreeNode* deepest = root.get();
    for (int i = 0; i < kDepth; ++i) {
        deepest->insertChild(leaf("n"), 0);
        deepest = deepest->firstChild().get();
    }
    deepest->insertChild(leaf("b"), 0);
    deepest->insertChild(leaf("c"), 0);
    const Pointer kept = deepest->firstChild();
    root->acendingSortName();
    EXPECT_EQ(deepest->lastChild(), kept);
    EXPECT_EQ(
        TreeNode::minimumNodeCoverFromNodesInArray(std::vector<TreeNode*>{kept.get(), deepest}),
        std::vector<TreeNode*>{root.get()});
    root.reset();
    EXPECT_EQ(kept->nodeParent(), nullptr);
}

TEST(Tree, GrowsFromADictionary) {
    const Dictionary dictionary{"g", {"a", Dictionary{"h", {"b", Dictionary{"empty", {}}}}, "c"}};
    const auto tree = SimpleTreeNode::treeFromDictionary(dictionary);
    EXPECT_EQ(text(*tree), "g(a h(b empty) c)");
    EXPECT_EQ(tree->nodeParent(), nullptr);
    EXPECT_EQ(tree->firstChild()->nodeParent(), tree.get());
    EXPECT_TRUE(simpleData(*tree)->isGroup() && simpleData(*tree)->isExpandable());
    EXPECT_TRUE(simpleData(*tree->firstChild())->isLeaf() &&
                !simpleData(*tree->firstChild())->isExpandable());
    EXPECT_TRUE(simpleData(*tree->childAtIndex(1)->lastChild())->isGroup());
}

}  // namespace
}  // namespace orrinvale
