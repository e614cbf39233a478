// The colours in pairs, and what a change of scheme does to a window that is open.
#include "ui/kit/look/Theme.h"

#include <QApplication>
#include <QFontInfo>
#include <QProxyStyle>
#include <QSignalSpy>
#include <QWidget>

#include "support/test.h"
#include "ui/kit/look/contrast.h"
#include "ui/kit/look/getColor.h"
#include "ui/kit/look/picture.h"
#include "ui/support/soon.h"

namespace orrinvale {
namespace {

using Color = Theme::Color;
using Scheme = Theme::Scheme;

using testing::contrast;

TEST(Theme, EveryPairOfColoursThatMeetCanBeRead) {
    ASSERT_NEAR(contrast(Qt::black, Qt::white), 21.0, 0.001);
    const std::vector<Color> grounds = {Color::Window, Color::Surface, Color::SurfaceRaised,
                                        Color::Hover,  Color::Pressed, Color::Selection};
    const std::vector<Color> plates = {Color::Accent, Color::AccentHover, Color::AccentPressed,
                                       Color::Danger, Color::DangerHover, Color::DangerPressed};
    struct Rule {
        std::vector<Color> foregrounds;
        std::vector<Color> backgrounds;
        double least;
    };
    const std::vector<Color> kinds = {Color::KindDocuments, Color::KindMusic,    Color::KindVideos,
                                      Color::KindArchives,  Color::KindPictures, Color::KindOthers,
                                      Color::KindLeftOut};
    const std::array<Rule, 4> rules{{
        {{Color::Text, Color::TextSecondary, Color::Accent, Color::Danger, Color::Success,
          Color::Warning, Color::SizeWhite, Color::SizeGreen, Color::SizeYellow, Color::SizeOrange,
          Color::SizeRed},
         grounds,
         4.5},
        {{Color::Text}, kinds, 4.5},
        {{Color::TextOnAccent}, plates, 4.5},
        {{Color::FocusRing, Color::Outline}, grounds, 3.0},
    }};
    for (const Scheme scheme : {Scheme::Light, Scheme::Dark})
        for (const Rule& rule : rules)
            for (const Color foreground : rule.foregrounds)
                for (const Color background : rule.backgrounds)
                    EXPECT_GE(contrast(Theme::color(foreground, scheme),
                                       Theme::color(background, scheme)),
                              rule.least)
                        << "colour " << static_cast<int>(foreground) << " on "
                        << static_cast<int>(background)
                        << (scheme == Scheme::Dark ? ", dark" : ", light");
}

class Painted final : public QWidget {
public:
    int paints = 0;

protected:
    void paintEvent(QPaintEvent*) override { ++paints; }
};

TEST(Theme, InstallsAndRepaintsEveryWindowWhenTheSchemeChanges) {
    Theme& theme = Theme::shared();
    qputenv("ORRINVALE_THEME", "DARK");
    theme.install(*qApp);
    qunsetenv("ORRINVALE_THEME");
    EXPECT_EQ(theme.scheme(), Scheme::Dark);
    EXPECT_EQ(Theme::desktopScheme(), Scheme::Light)
        << "the offscreen desktop is light, whatever we put over it";
    const auto* const style = qobject_cast<QProxyStyle*>(QApplication::style());
    ASSERT_NE(style, nullptr);
    EXPECT_EQ(style->baseStyle()->name(), QStringLiteral("fusion"));
    EXPECT_EQ(QApplication::palette().color(QPalette::Base),
              Theme::color(Color::Surface, Scheme::Dark));

    Painted widget;
    widget.setPalette(
        theme.palette());  // every role of its own, so that the new palette does not reach it
    widget.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&widget));
    QCoreApplication::processEvents();
    const QIcon icon = picture(QStringLiteral("ic_doc"));
    const QImage dark = icon.pixmap(24, 24).toImage();
    const int before = widget.paints;

    const QSignalSpy spy(&theme, &Theme::changed);
    theme.setScheme(Scheme::Light);
    theme.setScheme(Scheme::Light);
    EXPECT_EQ(spy.count(), 1);
    EXPECT_SOON(widget.paints > before);
    EXPECT_NE(icon.pixmap(24, 24).toImage(), dark) << "an icon made before the change";
    EXPECT_EQ(QApplication::palette().color(QPalette::Base), QColor(Qt::white));
    EXPECT_EQ(QApplication::palette().color(QPalette::Disabled, QPalette::Text),
              theme.color(Color::TextDisabled));
}

TEST(Theme, LettersComeInStepsOfPixelsAtTheUsualResolution) {
    const std::array<int, 6> pixels{11, 13, 13, 15, 20, 28};
    for (std::size_t i = 0; i < pixels.size(); ++i)
        EXPECT_NEAR(QFontInfo(Theme::shared().font(static_cast<Theme::Text>(i))).pixelSize() *
                        96.0 / QWidget().logicalDpiY(),
                    pixels[i], 0.6);
    EXPECT_GT(Theme::shared().font(Theme::Text::BodyStrong).weight(),
              Theme::shared().font(Theme::Text::Body).weight());
}

TEST(GetColor, ComponentsAreBroughtIntoTheirRange) {
    EXPECT_EQ(getColor(38, 52, 76, 1), QColor(38, 52, 76));
    EXPECT_EQ(getColor(255, 0, 127.5F, 0.5F).alpha(), 128);
    EXPECT_EQ(getColor(300, -1, 0, 2), QColor(255, 0, 0));
}

}  // namespace
}  // namespace orrinvale
