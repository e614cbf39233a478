// HouseStyle by the pointer: a scroll bar without arrows that is dragged and paged through, however
// much there is to scroll.
#include <QScrollBar>
#include <QTest>

#include "support/test.h"
#include "ui/kit/look/HouseStyle.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/contrast.h"

namespace orrinvale {
namespace {

struct Range {
    int maximum;
    int page;
};

class ScrollBars : public ::testing::TestWithParam<std::tuple<Qt::Orientation, Range>> {};

TEST_P(ScrollBars, FollowThePointerFromEndToEnd) {
    const auto [orientation, range] = GetParam();
    HouseStyle style;
    QScrollBar bar(orientation);
    bar.setStyle(&style);
    bar.setRange(0, range.maximum);
    bar.setPageStep(range.page);
    const bool isAcross = orientation == Qt::Horizontal;
    constexpr int length = 300;
    constexpr int middle = 6;
    bar.resize(isAcross ? QSize(length, bar.sizeHint().height())
                        : QSize(bar.sizeHint().width(), length));
    const auto at = [&](int along) {
        return isAcross ? QPoint(along, middle) : QPoint(middle, along);
    };

    QTest::mousePress(&bar, Qt::LeftButton, {}, at(2));
    QTest::mouseMove(&bar, at(length / 2));
    EXPECT_GT(bar.value(), 0);
    EXPECT_LT(bar.value(), range.maximum);
    QTest::mouseMove(&bar, at(length - 1));
    EXPECT_EQ(bar.value(), range.maximum);
    QTest::mouseRelease(&bar, Qt::LeftButton, {}, at(length - 1));

    QTest::mouseClick(&bar, Qt::LeftButton, {},
                      at(1));  // the groove pages, where arrows would step
    EXPECT_EQ(bar.value(), range.maximum - range.page);
}

INSTANTIATE_TEST_SUITE_P(BothWays, ScrollBars,
                         ::testing::Combine(::testing::Values(Qt::Vertical, Qt::Horizontal),
                                            ::testing::Values(Range{1'000, 400},
                                                              Range{2'000'000'000, 300})));

TEST(ScrollBars, AreSeenOnBothPalettes) {
    HouseStyle style;
    const auto before = Theme::shared().scheme();
    for (const auto scheme : {Theme::Scheme::Light, Theme::Scheme::Dark}) {
        Theme::shared().setScheme(scheme);
        QScrollBar bar(Qt::Vertical);
        bar.setStyle(&style);
        bar.setRange(0, 1000);
        bar.setPageStep(500);
        bar.resize(bar.sizeHint().width(), 300);
        const QImage drawn = bar.grab().toImage();
        const QColor slider = drawn.pixelColor(bar.width() / 2, 30),
                     groove = drawn.pixelColor(bar.width() / 2, 290);
        EXPECT_GE(testing::contrast(slider, groove), 3.0) << static_cast<int>(scheme);
    }
    Theme::shared().setScheme(before);
}

}  // namespace
}  // namespace orrinvale
