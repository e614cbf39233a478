// The map: rectangles fill their folder, are as large as their shares, and come in time.
#include "engine/diskusage/Treemap.h"

#include "engine/diskusage/UsageRun.h"

namespace orrinvale {
namespace {

// Edges are shared to the last bit: what a point of the folder lies in is exactly one child.
void expectTiled(const std::vector<TreemapEntry>& entries, const std::vector<TreemapRectangle>& at,
                 const TreemapSpacing& spacing) {
    std::mt19937 random(3);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const TreemapEntry& folder = entries[i];
        if (folder.childCount == 0 || at[folder.firstChild].width() == 0) continue;
        TreemapRectangle room = at[i];
        room.left += spacing.inset, room.top += spacing.inset;
        room.right -= spacing.inset, room.bottom -= spacing.inset;
        if (room.height() > 2 * spacing.header) room.top += spacing.header;
        double bytes = 0;
        for (std::size_t c = 0; c < folder.childCount; ++c)
            bytes += static_cast<double>(entries[folder.firstChild + c].size);
        for (std::size_t c = folder.firstChild; c < folder.firstChild + folder.childCount; ++c) {
            ASSERT_TRUE(at[c].left >= room.left && at[c].right <= room.right &&
                        at[c].top >= room.top && at[c].bottom <= room.bottom);
            const double share = static_cast<double>(entries[c].size) / bytes;
            ASSERT_NEAR(at[c].width() * at[c].height(), share * room.width() * room.height(),
                        1e-6 * room.width() * room.height());
        }
        std::vector<std::pair<double, double>> points;
        for (std::size_t c = 0; c < std::min<std::size_t>(folder.childCount, 40); ++c)
            points.emplace_back(at[folder.firstChild + c].left, at[folder.firstChild + c].top);
        for (int n = 0; n < 40; ++n)
            points.emplace_back(
                room.left + room.width() * (static_cast<unsigned>(random() % 10'000)) / 10'000.0,
                room.top + room.height() * (static_cast<unsigned>(random() % 10'000)) / 10'000.0);
        for (const auto& [x, y] : points) {
            int hits = 0;
            for (std::size_t c = folder.firstChild; c < folder.firstChild + folder.childCount; ++c)
                hits += x >= at[c].left && x < at[c].right && y >= at[c].top && y < at[c].bottom
                            ? 1
                            : 0;
            ASSERT_EQ(hits, 1) << x << "," << y;
        }
    }
}

TEST(Treemap, childrenFillTheirFolderToTheLastBit) {
    testing::TestTree tree;
    std::mt19937 random(9);
    for (int i = 0; i < 400; ++i)
        ASSERT_TRUE(tree.write(fmt::format("{}/{}/{}", i % 3, i % 11, i),
                               std::string(1U << (random() % 14), 'x')));
    ASSERT_TRUE(tree.sparse("huge", 1ULL << 40) && tree.write("none", ""));
    for (const TreemapSpacing spacing :
         {TreemapSpacing{}, TreemapSpacing{.inset = 1.5, .header = 12, .least = 20}})
        for (const char* below : {"", "1"}) {
            const testing::UsageRun run(files, tree.path(), {.limit = 64});
            const auto entries = treemapEntries(*testing::nodeAt(*run.tree, below));
            const auto at = layOutTreemap(entries, {10, 20, 810, 517.3}, spacing);
            ASSERT_EQ(at.size(), entries.size());
            expectTiled(entries, at, spacing);
            const auto leftOut = std::ranges::count(entries, true, &TreemapEntry::isLeftOut);
            EXPECT_GT(leftOut, 3);
            const std::size_t hit = treemapEntryAt(entries, at, 400, 300);
            ASSERT_LT(hit, entries.size());
            EXPECT_TRUE(at[hit].left <= 400 && at[hit].right > 400 && at[hit].bottom > 300);
            EXPECT_EQ(treemapEntryAt(entries, at, 9, 20), entries.size());
        }
}

TEST(Treemap, ofAWideFolderTheBiggestComeAndTheRestIsOne) {
    testing::TestTree tree;
    for (int i = 0; i < 30; ++i)
        ASSERT_TRUE(tree.write(std::to_string(i), std::string(std::size_t(100 + i), 'x')));
    ASSERT_TRUE(tree.write("small", "1"));
    const testing::UsageRun run(files, tree.path(), {.limit = 10});
    const auto entries = treemapEntries(run.tree->root(), 10);
    ASSERT_EQ(entries.size(), 12U);
    std::uint64_t sum = 0;
    for (std::size_t i = 1; i < entries.size(); ++i) sum += entries[i].size;
    EXPECT_EQ(sum, run.tree->root().size());
    EXPECT_TRUE(entries[1].leftOut == 21 && entries[1].hasLarge && entries[2].size == 129);
}

TEST(Treemap, aHundredThousandRectanglesComeWithinATenthOfASecond) {
    std::vector<TreemapEntry> entries{{.size = 0, .firstChild = 1, .childCount = 300}};
    const auto add = [&](std::uint32_t parent, int count) {
        for (int i = 0; i < count; ++i)
            entries.push_back(
                {.size = 1'000'000U / static_cast<unsigned>(i + 1), .parent = parent});
    };
    add(0, 300);
    for (std::uint32_t folder = 1; folder <= 300; ++folder) {
        entries[folder].firstChild = static_cast<std::uint32_t>(entries.size());
        entries[folder].childCount = 333;
        add(folder, 333);
    }
    timespec begun{};
    timespec ended{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &begun);
    const auto at = layOutTreemap(entries, {0, 0, 1600, 1000});
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &ended);
    EXPECT_GT(at.back().right, at.back().left);
    EXPECT_LT(static_cast<double>(ended.tv_sec - begun.tv_sec) * 1000 +
                  static_cast<double>(ended.tv_nsec - begun.tv_nsec) / 1e6,
              100);
}

}  // namespace
}  // namespace orrinvale
