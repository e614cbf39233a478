// The window of the cleaning page is closed while a sheet hangs over it, and opened again.
#include <QAbstractButton>

#include "ui/cleaning/CleanDesk.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/dialogs/Sheet.h"

namespace orrinvale::testing {
namespace {

using enum CleanCategory;
using State = MainViewController::State;

Sheet* sheetOf(const CleanDesk& desk) { return desk.window->window()->findChild<Sheet*>(); }

// Escape, or the button that begins with these words; it takes no answer in its first moments.
bool answer(CleanDesk& desk, const QString& words) {
    const QPointer<Sheet> asked = sheetOf(desk);
    return CleanDesk::waitFor([&] {
        if (asked == nullptr) return true;
        if (words.isEmpty()) QTest::keyClick(asked, Qt::Key_Escape);
        for (QAbstractButton* const each : asked->findChildren<QAbstractButton*>())
            if (!words.isEmpty() && each->text().startsWith(words)) each->click();
        return false;
    });
}

TEST(CleanSheets, TheWindowMayBeClosedBehindEachAndComesBack) {
    const struct {
        const char* what;
        std::vector<const char*> answers;  // one for each sheet that comes
        bool withDownloads, isLocked, goes;
    } cases[] = {
        {"the question", {"Clean"}, false, false, true},
        {"the question, and no", {""}, false, false, false},
        {"the downloads, and no", {"No", "Clean"}, true, false, true},
        {"the downloads, and Escape", {""}, true, false, false},
        {"no right", {"Clean", "OK"}, false, true, true},
    };
    for (const auto& each : cases) {
        SCOPED_TRACE(each.what);
        CleanDesk desk{{{".cache/a", 1'000}, {"Downloads/d", 1}}, 3600, true};
        if (each.isLocked) desk.write(".cache/locked", 100);
        desk.isLocked = each.isLocked;
        desk.tickOnly(each.withDownloads
                          ? std::initializer_list<CleanCategory>{UserCaches, UserDownloads}
                          : std::initializer_list<CleanCategory>{UserCaches});
        ASSERT_TRUE(desk.scan());
        desk.click("cleanButton");
        for (const char* const words : each.answers) {
            ASSERT_SOON(sheetOf(desk) != nullptr);
            desk.window->window()->close();
            EXPECT_FALSE(desk.isShown("cleanPage"));
            QTest::qWait(30);
            desk.window->showWindow();
            ASSERT_TRUE(QTest::qWaitForWindowActive(desk.window->window()));
            ASSERT_TRUE(sheetOf(desk) != nullptr && sheetOf(desk)->isVisible());
            EXPECT_TRUE(sheetOf(desk)->isAncestorOf(QApplication::focusWidget()))
                << "the keyboard is the sheet's";
            for (const QAbstractButton* const button :
                 sheetOf(desk)->findChildren<QAbstractButton*>())
                EXPECT_GE(button->width(), button->sizeHint().width()) << "cut";
            ASSERT_TRUE(answer(desk, QLatin1String(words)));
        }
        ASSERT_TRUE(desk.waitForRest());
        EXPECT_EQ(sheetOf(desk), nullptr);
        EXPECT_TRUE(each.goes || &desk.control("cleanButton") == QApplication::focusWidget())
            << "the keyboard is where it was";
        EXPECT_EQ(int(desk.state()), int(State::Reviewing));
        EXPECT_EQ(desk.has(".cache/a"), !each.goes);
        EXPECT_TRUE(desk.has("Downloads/d"));
        EXPECT_TRUE(desk.isEnabled("rescanButton") && desk.isEnabled("scanButton"));
        EXPECT_EQ(desk.isEnabled("cleanButton"), !each.goes || each.isLocked || each.withDownloads);
    }
}

// The answer was given; what closes at the same moment takes nothing of it back.
TEST(CleanSheets, AnAnswerHoldsWhereTheWindowIsClosedUponIt) {
    CleanDesk desk{{{".cache/a", 1'000}}, 3600, true};
    desk.tickOnly({UserCaches});
    ASSERT_TRUE(desk.scan());
    desk.click("cleanButton");
    QTest::qWait(750);
    for (QAbstractButton* const each : sheetOf(desk)->findChildren<QAbstractButton*>())
        if (each->text().startsWith(QStringLiteral("Clean"))) each->click();
    desk.window->window()->close();
    EXPECT_SOON(!desk.has(".cache/a"));
    desk.window->showWindow();
    ASSERT_TRUE(desk.waitForRest());
    EXPECT_EQ(desk.sentence("stateTextField"), "1.00 KB is cleaned");
    EXPECT_EQ(sheetOf(desk), nullptr);
}

}  // namespace
}  // namespace orrinvale::testing
