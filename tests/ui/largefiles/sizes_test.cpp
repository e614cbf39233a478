// How the large file page writes a size, and how wide its bar is.
#include "engine/largefiles/PublicUtilities.h"
#include "support/test.h"
#include "ui/kit/controls/QnProgressView.h"

namespace orrinvale {
namespace {

TEST(SizeText, ChoosesTheStepBeforeItRounds) {
    const struct {
        std::uint64_t bytes;
        const char* text;
    } sizes[] = {
        {0, "0 byte"},
        {1, "1 byte"},
        {999, "999 byte"},
        {1'000, "1.00 KB"},
        {999'999, "1000.00 KB"},
        {1'000'000, "1.00 MB"},
        {1'234'565'000, "1.23 GB"},
        {999'999'999'999, "1000.00 GB"},
        {1'000'000'000'000, "1.00 TB"},
        // A float holds 24 bits, so that the last places of large numbers are those of the nearest
        // float.
        {123'456'789'000'000'000, "123456.79 TB"},
        {~std::uint64_t{0}, "18446744.00 TB"},
    };
    for (const auto& each : sizes)
        EXPECT_EQ(PublicUtilities::byteToSizeWithByte(each.bytes), each.text);
}

TEST(ProgressBar, IsNeverTooNarrowToBeSeenNorLeavesAPointFree) {
    const struct {
        float percent;
        qreal width;
    } bars[] = {{0, 10}, {4, 10}, {50, 100}, {99.5F, 199}, {99.6F, 200}, {100, 200}};
    for (const auto& each : bars)
        EXPECT_EQ(QnProgressView::barWidth(200, each.percent), each.width) << each.percent;
}

}  // namespace
}  // namespace orrinvale
