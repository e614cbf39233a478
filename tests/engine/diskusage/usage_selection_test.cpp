// The boxes of the columns against the rules read literally, with the exception for folders of
// which not everything is seen.
#include "engine/diskusage/UsageRun.h"
#include "engine/diskusage/UsageSelection.h"

namespace orrinvale {
namespace {

using testing::allOf;
using testing::BoxModel;

TEST(UsageSelection, followsItsRulesThroughTenThousandClicks) {
    testing::TestTree tree;
    std::mt19937 random(5);
    for (int i = 0; i < 60; ++i)
        ASSERT_TRUE(tree.write(fmt::format("{}/{}/{}/{}", i % 2, i % 4, i % 8, i),
                               std::string(i % 20 == 7 ? 1 : 20, 'x')));
    const testing::UsageRun run(files, tree.path(), {.limit = 10});
    const std::vector<FSNode*> nodes = allOf(*run.tree);
    ASSERT_GT(nodes.size(), 70U);
    BoxModel model;
    std::set<int> seen;
    for (int i = 0; i < 10'000; ++i) {
        FSNode& node = *nodes[1 + random() % (nodes.size() - 1)];
        if (random() % 2 == 0) {
            clickBox(node);
            model.click(node);
        } else {
            static_cast<void>(openColumn(node));
            model.open(node);
        }
        for (const FSNode* const each : nodes)
            ASSERT_EQ(each->isButtonState(), model.state[each]) << each->path() << ", step " << i;
        std::vector<const FSNode*> goes;
        model.collect(run.tree->root(), goes);
        const auto ticked = prePareDelData(&run.tree->root());
        ASSERT_TRUE(std::ranges::equal(ticked, goes));
        ASSERT_EQ(hasTicks(run.tree->root()), run.tree->root().isButtonState() != 0);
        seen.insert(run.tree->root().isButtonState());
    }
    EXPECT_FALSE(seen.contains(1));  // below the root something is left out
}

// The one large file of a folder does not take the small ones along.
TEST(UsageSelection, allThatIsSeenIsNotAllThatIsThere) {
    testing::TestTree tree;
    ASSERT_TRUE(tree.write("docs/big", std::string(50, 'x')) && tree.write("docs/small", "1") &&
                tree.write("whole/big", std::string(50, 'x')));
    const testing::UsageRun run(files, tree.path(), {.limit = 10});
    clickBox(*testing::nodeAt(*run.tree, "docs/big"));
    clickBox(*testing::nodeAt(*run.tree, "whole/big"));
    FSNode& docs = *testing::nodeAt(*run.tree, "docs");
    EXPECT_EQ(docs.isButtonState(), FSNode::Mixed);
    EXPECT_EQ(testing::nodeAt(*run.tree, "whole")->isButtonState(), FSNode::Selected);
    clickBox(docs);
    EXPECT_EQ(docs.isButtonState(), FSNode::Selected);
    EXPECT_EQ(prePareDelData(nullptr).size(), 0U);
}

}  // namespace
}  // namespace orrinvale
