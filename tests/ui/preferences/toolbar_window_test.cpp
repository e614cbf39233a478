// The window with the toolbar: which page it shows, how pages follow each other, and the toolbar by
// mouse and by keys.
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QMimeData>
#include <QTimer>
#include <QUrl>
#include <QVariantAnimation>
#include <QWindow>

#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "platform/linux/LinuxFiles.h"
#include "services/foundation/QtMainQueue.h"
#include "support/test.h"
#include "ui/duplicates/duplicatePage.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/WindowButton.h"
#include "ui/kit/controls/DragView.h"
#include "ui/page/PageServices.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/preferences/PrefsToolbar.h"
#include "ui/support/RecordedDialogs.h"
#include "ui/support/StillStyle.h"
#include "ui/support/soon.h"

namespace orrinvale {
namespace {

/// A page that is its name.
class LabelPage final : public Page {
public:
    explicit LabelPage(const QString& name) : m_label(new QLabel(name)) {
        m_label->setObjectName(name);
    }
    QWidget* view() const override { return m_label; }
    void setMainWindow(QWidget* window) override { EXPECT_NE(window, nullptr); }

private:
    QLabel* m_label;  // the window's once it is shown
};

class ToolbarWindow : public ::testing::Test {
protected:
    ToolbarWindow() {
        UserDefaults::setStandardUserDefaults(&defaults);
        PreferenceViewController::initialize();
        remake();
    }
    ~ToolbarWindow() override {
        controller.reset();
        UserDefaults::setStandardUserDefaults(nullptr);
    }

    void remake() {
        controller = std::make_unique<AppPrefsWindowController>();
        controller->setOpenAddress([this](const QString& address) { opened.append(address); });
        controller->setOpenHelp([this] { opened.append(QStringLiteral("help")); });
        made.clear();
        for (const char* const name : {"first", "second"}) add(name, name);
    }

    // A page whose view is called `view`.
    void add(const char* identifier, const char* view) {
        controller->registerPage({QLatin1String(identifier), QLatin1String(identifier),
                                  QStringLiteral("ic_doc"),
                                  [this, name = QString(QLatin1String(view))] {
                                      made.append(name);
                                      return std::make_unique<LabelPage>(name);
                                  }});
    }

    void show() {
        controller->showWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(controller->window()));
    }
    // Through the window system, which tells the application of the keys held down.
    void click(const char* identifier, Qt::KeyboardModifiers held = Qt::NoModifier) {
        const QWidget* const item = controller->toolbarItems().value(QLatin1String(identifier));
        QWidget* const window = controller->window();
        QCoreApplication::processEvents();  // a new item gets its place
        QTest::mouseClick(window->windowHandle(), Qt::LeftButton, held,
                          item->mapTo(window, item->rect().center()));
    }
    // The names of all views in the window's content, the fading picture among them.
    [[nodiscard]] QString shown() const {
        QStringList names;
        for (const auto* each :
             controller->contentSubview()->findChildren<QWidget*>(Qt::FindDirectChildrenOnly))
            names.append(each->objectName());
        return names.join(QLatin1Char(' '));
    }
    [[nodiscard]] QString selected() const {
        return controller->toolbar()->selectedItemIdentifier();
    }
    [[nodiscard]] QVariantAnimation& fade() const {
        return *controller->findChild<QVariantAnimation*>();
    }
    [[nodiscard]] bool isFading() const { return fade().state() == QAbstractAnimation::Running; }

    TestTree tree;
    UserDefaults defaults{tree.at("settings.ini")};
    QStringList made;
    QStringList opened;
    std::unique_ptr<AppPrefsWindowController> controller;
};

TEST_F(ToolbarWindow, PagesAreMadeOnceWhenTheyAreFirstShown) {
    LogLines log;
    add("second", "intruder");
    EXPECT_EQ(log.lines.size(), 1U);
    EXPECT_TRUE(made.isEmpty());
    show();
    EXPECT_EQ(made, QStringList{QStringLiteral("first")});
    EXPECT_EQ(controller->toolbarViews().size(), 1);
    add("late", "late");
    EXPECT_EQ(controller->toolbarIdentifiers().join(QLatin1Char(' ')),
              QStringLiteral(
                  "first second late NSToolbarFlexibleSpaceItem NSToolbarSpaceItem websit Help"));
    for (const char* const name : {"late", "second", "late", "first"}) {
        click(name);
        EXPECT_EQ(selected(), QLatin1String(name));
        EXPECT_SOON(shown() == QLatin1String(name)) << shown().toStdString();
        EXPECT_EQ(controller->window()->windowTitle(), QStringLiteral("Orrinvale"));
    }
    EXPECT_EQ(made.join(QLatin1Char(' ')), QStringLiteral("first late second"));
    const auto* const late = controller->toolbarItems().value(QStringLiteral("late"));
    EXPECT_GT(late->x(), controller->toolbarItems().value(QStringLiteral("second"))->x());
    EXPECT_LT(late->x(), controller->toolbarItems().value(QStringLiteral("websit"))->x());
}

TEST_F(ToolbarWindow, PagesFadeWhereTheyMay) {
    show();
    testing::StillStyle still;
    const struct {
        const char* what;
        bool crossFade, animate, isStill, isVisible;
        bool fades;
    } cases[] = {
        {"as it is at first", true, true, false, true, true},
        {"the setting is off", false, true, false, true, false},
        {"nobody asks for it", true, false, false, true, false},
        {"the desktop moves nothing", true, true, true, true, false},
        {"nobody sees it", true, true, false, false, false},
    };
    for (const auto& each : cases) {
        controller->displayViewForIdentifier(QStringLiteral("first"), false);
        controller->window()->setVisible(each.isVisible);
        controller->window()->setStyle(each.isStill ? &still : nullptr);
        controller->setCrossFade(each.crossFade);
        controller->displayViewForIdentifier(QStringLiteral("second"), each.animate);
        EXPECT_EQ(isFading(), each.fades) << each.what;
        EXPECT_EQ(shown(),
                  each.fades ? QStringLiteral("second fadingPicture") : QStringLiteral("second"))
            << each.what;
    }
}

TEST_F(ToolbarWindow, AFadeThatIsOvertakenOrClosedLeavesNothing) {
    show();
    click("second");
    click("first");
    EXPECT_EQ(shown(), QStringLiteral("first fadingPicture"));
    controller->window()->standardWindowButton(0)->perform();
    EXPECT_FALSE(controller->window()->isVisible());
    EXPECT_EQ(shown(), QStringLiteral("first"));
    click("second");
    show();
    EXPECT_EQ(shown(), QStringLiteral("first")) << "it opens with the stored page";
}

TEST_F(ToolbarWindow, ShiftSlowsTheFadeWhereTheSettingSaysSo) {
    show();
    for (const bool slows : {true, false})
        for (const bool isHeld : {true, false}) {
            controller->displayViewForIdentifier(QStringLiteral("first"), false);
            defaults.setBool(slows, shiftSlowsAnimationKey);
            click("second", isHeld ? Qt::ShiftModifier : Qt::NoModifier);
            EXPECT_EQ(fade().duration(), slows && isHeld ? 1250 : 250);
        }
}

TEST_F(ToolbarWindow, SettingsAreFollowedFromAnyThread) {
    EXPECT_TRUE(controller->crossFade());
    EXPECT_TRUE(controller->shiftSlowsAnimation());
    std::thread([this] {
        defaults.setBool(false, fadeKey);
        defaults.setBool(false, shiftSlowsAnimationKey);
    }).join();
    EXPECT_SOON(!controller->crossFade() && !controller->shiftSlowsAnimation());
    std::thread([this] { defaults.setBool(true, fadeKey); }).join();
    controller.reset();
    QTest::qWait(0);  // what is on its way finds nobody
}

TEST_F(ToolbarWindow, OpensWithTheStoredPageAndStoresTheFirst) {
    // The places: two pages, two spaces, two items that open something elsewhere.
    const std::pair<std::int64_t, const char*> cases[] = {
        {0, "first"}, {1, "second"}, {2, "first"}, {4, "first"},
        {5, "first"}, {99, "first"}, {-1, "first"}};
    for (const auto& [stored, page] : cases) {
        defaults.setInteger(stored, ZvToobarItem);
        remake();
        show();
        EXPECT_EQ(shown(), QLatin1String(page)) << stored;
        EXPECT_EQ(selected(), QLatin1String(page)) << stored;
        EXPECT_FALSE(isFading());
    }
    EXPECT_TRUE(opened.isEmpty());
    defaults.setInteger(1, ZvToobarItem);
    click("second");
    EXPECT_EQ(defaults.integerForKey("ZvToolbarItem"), 0);
}

TEST_F(ToolbarWindow, WhatHasNoPageSwapsNothing) {
    controller->addView(nullptr, QStringLiteral("preferences"));
    show();
    click("websit");
    click("Help");
    EXPECT_EQ(opened,
              (QStringList{QStringLiteral("https://www.kelpford.com/"), QStringLiteral("help")}));
    controller->displayViewForIdentifier(QStringLiteral("nowhere"), true);
    EXPECT_EQ(selected(), QStringLiteral("first"));
    controller->displayViewForIdentifier(QStringLiteral("preferences"), true);
    EXPECT_EQ(selected(), QStringLiteral("preferences"));
    EXPECT_EQ(shown(), QStringLiteral("first"));
    EXPECT_FALSE(isFading());

    AppPrefsWindowController bare;
    bare.showWindow();
    bare.displayViewForIdentifier(QStringLiteral("preferences"), false);
    bare.displayViewForIdentifier(QStringLiteral("websit"), false);
    bare.displayViewForIdentifier(QStringLiteral("Help"), false);
    EXPECT_TRUE(bare.toolbarIdentifiers().isEmpty());
}

TEST_F(ToolbarWindow, TheKeyboardReachesEveryItem) {
    show();
    const auto focused = [this] {
        const QWidget* const at = controller->window()->focusWidget();
        return at == nullptr ? QString() : at->objectName();
    };
    const auto press = [this](Qt::Key key) {
        QTest::keyClick(controller->window()->focusWidget(), key);
    };
    const std::pair<Qt::Key, const char*> cases[] = {
        {Qt::Key_Left, "first"}, {Qt::Key_Right, "second"}, {Qt::Key_Right, "websit"},
        {Qt::Key_Right, "Help"}, {Qt::Key_Right, "Help"},   {Qt::Key_Left, "websit"},
        {Qt::Key_Home, "first"}, {Qt::Key_End, "Help"}};
    EXPECT_EQ(focused(), QStringLiteral("first"));
    for (const auto& [key, item] : cases) {
        press(key);
        EXPECT_EQ(focused(), QLatin1String(item));
    }
    EXPECT_EQ(selected(), QStringLiteral("first")) << "to go there is not to choose it";
    press(Qt::Key_Tab);
    EXPECT_NE(focused(), QStringLiteral("Help"));
    press(Qt::Key_Backtab);
    EXPECT_EQ(focused(), QStringLiteral("Help")) << "the row remembers its place";
    press(Qt::Key_Home);
    press(Qt::Key_Right);
    press(Qt::Key_Space);
    EXPECT_EQ(selected(), QStringLiteral("second"));
    press(Qt::Key_Left);
    press(Qt::Key_Return);
    EXPECT_EQ(selected(), QStringLiteral("first"));
    press(Qt::Key_Tab);
    EXPECT_EQ(controller->toolbarItems().value(focused()), nullptr) << "one stop for the whole row";
}

TEST_F(ToolbarWindow, TheMenuChoosesWhatItemsShowAndThatIsKept) {
    show();
    const int height = controller->window()->titleBarHeight();
    QContextMenuEvent event(QContextMenuEvent::Mouse, {5, 5},
                            controller->toolbar()->mapToGlobal(QPoint(5, 5)));
    QApplication::sendEvent(controller->toolbar(), &event);
    auto* const menu = controller->toolbar()->findChild<QMenu*>();
    ASSERT_NE(menu, nullptr);
    const auto actions = menu->actions();
    ASSERT_EQ(actions.size(), 3);
    EXPECT_TRUE(actions[0]->isChecked());
    const auto* const item = controller->toolbarItems().value(QStringLiteral("first"));
    const int itemHeight = item->height();
    actions[2]->trigger();
    QCoreApplication::processEvents();
    EXPECT_LT(item->height(), itemHeight);
    actions[0]->trigger();
    QCoreApplication::processEvents();
    EXPECT_EQ(item->height(), itemHeight);
    actions[2]->trigger();
    menu->close();
    const int lower = controller->window()->titleBarHeight();
    EXPECT_LT(lower, height);
    remake();
    show();
    EXPECT_EQ(controller->toolbar()->display(), ToolbarDisplay::TextOnly);
    EXPECT_EQ(controller->window()->titleBarHeight(), lower);
    defaults.setInteger(7, DBPreferencesToolbarKey);
    remake();
    show();
    EXPECT_EQ(controller->window()->titleBarHeight(), height);
}

TEST_F(ToolbarWindow, TheDuplicatePageStandsAloneInIt) {
    // Never freed: the thread of a search that was told to stop still uses them.
    static const auto& files = *new LinuxFileSystem;
    static auto& notifications = *new NotificationCenter;
    static auto& mainQueue = *new QtMainQueue;
    static auto& settings = *new UserDefaults(tree.at("other.ini"));
    testing::RecordedDialogs dialogs;
    controller = std::make_unique<AppPrefsWindowController>();
    controller->registerPage(duplicatePage({.files = &files,
                                            .notifications = &notifications,
                                            .defaults = &settings,
                                            .dialogs = &dialogs,
                                            .mainQueue = &mainQueue,
                                            .stateFolder = {},
                                            .icons = {},
                                            .reveal = {},
                                            .openAddress = {}}));
    show();
    const auto* const item = controller->toolbarItems().value(QStringLiteral("duplicates_file"));
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->text(), QStringLiteral("Duplicates"));
    EXPECT_FALSE(item->icon().isNull());
    EXPECT_EQ(item->width(), item->sizeHint().width())
        << "it stands on the left, and does not fill the row";
    const QString view = shown();
    ASSERT_TRUE(tree.write("copies/one", "same") && tree.write("copies/two", "same"));
    QMimeData dragged;
    dragged.setUrls({QUrl::fromLocalFile(QString::fromStdString(tree.at("copies")))});
    EXPECT_TRUE(
        controller->contentSubview()->findChild<DragView*>()->performDragOperation(dragged));
    EXPECT_EQ(shown(), view) << "nobody swaps its views";
    // With the search under way, or over.
    controller.reset();
}

TEST_F(ToolbarWindow, TheSharedOneEndsBeforeTheApplication) {
    const QPointer<AppPrefsWindowController> shared(
        &AppPrefsWindowController::sharedPrefsWindowController());
    EXPECT_EQ(shared.data(), &AppPrefsWindowController::sharedPrefsWindowController());
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QApplication::exec();
    EXPECT_TRUE(shared.isNull());
}

}  // namespace
}  // namespace orrinvale
