// The tray from the program's side: ejecting from its menu, and a window that is closed where no
// tray shows the program.
#include "engine/settings/SettingsKeys.h"
#include "support/test.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/shell/ApplicationMenu.h"
#include "ui/support/Launched.h"
#include "ui/tray/StatusItem.h"
#include "ui/tray/Tray.h"

namespace orrinvale::testing {
namespace {

// A desktop that tells nothing.
struct SilentHost final : TrayHost {
    void watch(Told /*told*/) override {}
};

// One that tells what it is told.
struct ToldHost final : TrayHost {
    void watch(Told given) override { told = std::move(given); }
    Told told;
};

MenuItemView* rowOf(const Launched& on, const char* number) {
    const StatusMenu& menu = on.delegate->tray()->menu();
    return menu.menu() == nullptr ? nullptr
                                  : StatusMenu::viewOf(menu.itemWithTitle(QLatin1String(number)));
}

TEST(TrayOfTheProgram, AnEjectionThatFailsNamesTheHolder) {
    Launched on(systemAndStick(), nullptr);
    on.volumes.with([](FakeVolumes& fake) {
        fake.ejections[7] = {fBsyErr, {"it is busy", {{4242, "vlc", "/media/stick/film.mkv"}}}};
    });
    on.delegate->applicationDidFinishLaunching();
    ASSERT_SOON(rowOf(on, "7") != nullptr);
    on.dialogs.willAnswer(0);
    rowOf(on, "7")->backDisk();
    EXPECT_TRUE(rowOf(on, "7")->isEjecting());
    ASSERT_SOON(on.dialogs.alerts().size() == 1);
    const QString text = on.dialogs.alerts()[0].text;
    EXPECT_TRUE(text.contains(QLatin1String("Stick")) && text.contains(QLatin1String("vlc")))
        << text.toStdString();
    EXPECT_FALSE(rowOf(on, "7")->isEjecting()) << "it stayed";
}

TEST(TrayOfTheProgram, TheSheetDoesWhatItsButtonSays) {
    Launched on(systemAndStick(), nullptr);
    on.delegate->applicationDidFinishLaunching();
    on.dialogs.willAnswer(1);
    on.closeWindow();
    EXPECT_TRUE(on.isVisible()) << "asked first";
    EXPECT_SOON(on.ends == std::vector<int>{1});
    EXPECT_FALSE(on.defaults.boolForKey(keepRunningKey));
}

TEST(TrayOfTheProgram, OnlyTheLastWindowAsks) {
    Launched on(systemAndStick(), nullptr);
    on.delegate->applicationDidFinishLaunching();
    TCImageWindow& pages = *AppPrefsWindowController::sharedPrefsWindowController().window();
    on.delegate->showPages();
    ASSERT_TRUE(pages.isVisible());
    on.closeWindow();
    EXPECT_FALSE(on.isVisible()) << "another window shows the program";
    on.dialogs.willAnswer(0);
    pages.performClose();
    EXPECT_TRUE(on.isVisible()) << "asked over the main window";
    EXPECT_SOON(!on.isVisible());
    EXPECT_TRUE(on.defaults.boolForKey(keepRunningKey));
}

TEST(TrayOfTheProgram, ARowUnderEjectionStaysSoInAMenuThatIsMadeAnew) {
    Launched on(systemAndStick(), nullptr);
    on.delegate->applicationDidFinishLaunching();
    ASSERT_SOON(rowOf(on, "7") != nullptr);
    const int before = on.mainQueue.answers;
    rowOf(on, "7")->backDisk();
    ASSERT_SOON(on.mainQueue.answers > before && !on.volumes.ejected().empty());
    on.delegate->tray()->refMenuItemWhenDeleteAndAdd();
    EXPECT_TRUE(rowOf(on, "7")->isEjecting()) << "of the last look, which still saw it";
    rowOf(on, "7")->backDisk();
    on.ejections.eject({7, "/media/stick"}, "Stick", on.delegate.get(), [](bool) {});
    EXPECT_SOON(!rowOf(on, "7")->isEjecting()) << "it stands all the same";
    EXPECT_EQ(on.volumes.ejected().size(), 1U) << "whoever asks";
}

TEST(TrayOfTheProgram, OnlyATrayThatIsKnownToShowItIsCountedOn) {
    for (const bool isHidden : {true, false}) {
        SilentHost silent;
        Launched on(systemAndStick(), &silent);
        on.defaults.setBool(isHidden, ZvShowStatusItem);
        on.delegate->applicationDidFinishLaunching();
        EXPECT_EQ(on.delegate->tray()->canBeFound(), !isHidden) << "before the first look";
        EXPECT_SOON(!on.delegate->tray()->canBeFound()) << "a desktop that does not say";
    }
}

TEST(TrayOfTheProgram, WithoutATrayTheVolumesStandInTheMenuOfTheWindow) {
    ToldHost host;
    Launched on(systemAndStick(), &host);
    on.delegate->applicationDidFinishLaunching();
    const QAction& volumes = *on.entry("volumes");
    EXPECT_FALSE(volumes.isVisible()) << "before anything is known";
    ASSERT_SOON(volumes.isVisible());
    EXPECT_EQ(volumes.menu(), on.delegate->tray()->menu().menu()) << "the very rows";
    host.told(TrayKind::StatusNotifier);
    EXPECT_SOON(!volumes.isVisible());
    on.delegate->tray()->setStatusBarHidden(true);
    EXPECT_TRUE(volumes.isVisible()) << "hidden by the person";
    on.delegate->tray()->refMenuItemWhenDeleteAndAdd();
    EXPECT_EQ(volumes.menu(), on.delegate->tray()->menu().menu()) << "made anew";

    // A row opens and closes both menus; the keys of both are the window's, once.
    on.delegate->menu().menu()->popup({});
    on.delegate->menu().menu()->setActiveAction(on.entry("volumes"));
    ASSERT_TRUE(volumes.menu()->isVisible());
    QTest::mouseClick(rowOf(on, "7"), Qt::LeftButton);
    EXPECT_EQ(on.opened, std::vector<std::string>{"/media/stick"});
    EXPECT_FALSE(volumes.menu()->isVisible() || on.delegate->menu().menu()->isVisible());
    QTest::keyClick(on.delegate->duplicateMWC()->window(), Qt::Key_E, Qt::ControlModifier);
    EXPECT_TRUE(on.ejections.isEjectingAll());
    ASSERT_SOON(!on.ejections.isEjectingAll());
}

TEST(StatusItem, TheFirstTrayOfTheProcessDecidesWhereAllItemsGo) {
    const struct {
        TrayKind kind;
        bool isShown;
    } cases[] = {{TrayKind::StatusNotifier, true},
                 {TrayKind::XEmbed, false},
                 {TrayKind::None, false},
                 {TrayKind::StatusNotifier, true}};
    StatusItem item([] {});
    for (const auto& each : cases) {
        item.setKind(each.kind);
        EXPECT_EQ(item.isShown(), each.isShown);
        StatusItem other([] {});
        other.setKind(each.kind);
        EXPECT_EQ(other.isShown(), each.isShown) << "a later item";
    }
}

}  // namespace
}  // namespace orrinvale::testing
