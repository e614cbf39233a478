// The menu of the status item: what is in it, in both forms, its refresh and its rebuilds.
#include "ui/tray/StatusMenu.h"

#include <QAccessible>
#include <QStyle>
#include <QTest>
#include <QToolButton>
#include <QWidgetAction>
#include <ctime>

#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "support/SteadyVolumes.h"
#include "support/isSanitized.h"
#include "support/test.h"
#include "ui/kit/look/Theme.h"
#include "ui/tray/CustomGreyBarView.h"
#include "ui/tray/CustomStatusItemView.h"
#include "ui/tray/HostMenu.h"

namespace orrinvale::testing {
namespace {

SeenVolume volume(std::int16_t number, const std::string& name, std::int32_t type,
                  std::uint64_t free = 600, bool canEject = true) {
    auto made = std::make_shared<ZvVolumeInfo>();
    made->volRefNumber = number;
    made->volumeName = name;
    made->volRootDir = "/" + name;
    made->volType = type;
    made->bCanEject = canEject;
    made->bIsDefaultVol = name == "System";
    made->nTotalSize = 1000;
    made->nFreeSize = free;
    made->freeSpace = std::to_string(free) + " B";
    made->totalSpace = "1000 B";
    return {std::move(made)};
}

// The menu with its two forms, and what it set off.
struct MenuOnDesk {
    MenuOnDesk() {
        UserDefaults::setStandardUserDefaults(&defaults);
        PreferenceViewController::initialize();
        QObject::connect(&menu, &StatusMenu::replaced, &host, [this] { host.take(menu.menu()); });
        QObject::connect(&menu, &StatusMenu::refreshed, &host, &HostMenu::refresh);
    }
    ~MenuOnDesk() { UserDefaults::setStandardUserDefaults(nullptr); }
    MenuOnDesk(const MenuOnDesk&) = delete;
    MenuOnDesk& operator=(const MenuOnDesk&) = delete;

    void show(std::vector<SeenVolume> volumes) {
        menu.updateDataForMenuItem({std::move(volumes), {}});
    }
    // The popup as a person sees it: "[group]", rows with their tag, other entries.
    std::string popup() const {
        std::string text;
        for (const QAction* const each : menu.menu()->actions()) {
            const auto* const widget = qobject_cast<const QWidgetAction*>(each);
            if (const MenuItemView* const row = StatusMenu::viewOf(each))
                text += fmt::format("{}#{} ", row->volumeSize.toStdString(), row->ViewTag);
            else if (widget != nullptr)
                text +=
                    fmt::format("[{}] ", qobject_cast<CustomGreyBarView*>(widget->defaultWidget())
                                             ->title()
                                             .toStdString());
            else if (each->isSeparator()) text += "| ";
            else
                text += fmt::format("{}{} ", each->text().toStdString(),
                                    each->isEnabled() ? "" : "(grey)");
        }
        return text;
    }
    MenuItemView& row(int number) {
        return *StatusMenu::viewOf(menu.itemWithTitle(QString::number(number)));
    }
    QAction* hostEntry(const QString& begin) {
        for (QAction* const each : host.menu().actions())
            if (each->text().startsWith(begin)) return each;
        return nullptr;
    }

    TestTree tree;
    UserDefaults defaults{tree.at("settings.ini")};
    CountedMemory memory;
    std::string did;
    StatusMenu menu{
        {.defaults = &defaults,
         .memory = &memory,
         .actions = {
             .eject =
                 [this](MenuItemView& row) { did += fmt::format("eject {} ", row.volRefNumber); },
             .openVolume = [this](const std::string& root) { did += "open " + root + ' '; },
             .rejestAllDisk = [this] { did += "all "; },
             .openMainWindow = [] {},
             .showMainWindowWhenClickMenuItem = [this] { did += "window "; },
             .quit = [this] { did += "quit "; }}}};
    HostMenu host{[this](const std::string& root) { did += "host " + root + ' '; }};
};

TEST(StatusMenu, VolumesStandByGroupAndLocalOnesAloneEnableNothing) {
    const struct {
        std::vector<SeenVolume> volumes;
        const char* popup;
    } cases[] = {
        {{}, "| Eject All(grey) | Main Window | Quit Orrinvale "},
        {{volume(1, "System", LocalVolume)},
         "[Internal Disks] System#0 | Eject All(grey) | Main Window | Quit Orrinvale "},
        {{volume(1, "image", DiskImageVolume), volume(2, "nas", NetworkVolume),
          volume(3, "disc", OpticalVolume), volume(4, "stick", ExternalVolume),
          volume(6, "System", LocalVolume), volume(7, "home", LocalVolume), volume(8, "odd", 9)},
         "[Internal Disks] System#4 home#5 [External Disks] stick#3 [CDs and DVDs] disc#2 "
         "[Network Volumes] nas#1 [Disk Images] image#0 | Eject All | Main Window | "
         "Quit Orrinvale "}};
    for (const auto& each : cases) {
        MenuOnDesk on;
        on.show(each.volumes);
        EXPECT_EQ(on.popup(), each.popup);
        EXPECT_EQ(on.menu.allDiskItemArr().size(), each.volumes.size());
    }
}

TEST(StatusMenu, AnotherSequenceMakesItAnewAndFiguresAreWrittenIntoItsRows) {
    MenuOnDesk on;
    on.show({volume(1, "System", LocalVolume), volume(2, "c", ExternalVolume)});
    QMenu* const first = on.menu.menu();
    on.show({volume(1, "System", LocalVolume, 90), volume(2, "c", ExternalVolume)});
    EXPECT_EQ(on.menu.menu(), first);
    const MenuItemView& row = on.row(1);
    EXPECT_EQ(row.u64FreeSpace.toStdString(), "90 B");
    EXPECT_EQ(row.errorValue.toStdString(), "10.000000");
    EXPECT_EQ(row.nFreeSize, 1000U) << "the total, twice, after a refresh";
    EXPECT_EQ(row.nTotalSize, 1000U);
    EXPECT_EQ(row.seen().record->nFreeSize, 90U) << "what the bar is drawn from";
    QAction* const entry = on.hostEntry(QStringLiteral("System: 90 B free of 1000 B"));
    ASSERT_NE(entry, nullptr);

    on.show({volume(1, "System", LocalVolume, 80), volume(3, "c", ExternalVolume)});
    EXPECT_NE(on.menu.menu(), first) << "one went while another came";
    EXPECT_EQ(on.menu.itemWithTitle(QStringLiteral("2")), nullptr);
    on.row(3).backDisk();
    EXPECT_EQ(on.did, "eject 3 ");
    on.show({});
    EXPECT_TRUE(on.menu.allDiskItemArr().empty());
    EXPECT_EQ(on.menu.previousCount(), 0U);
}

TEST(StatusMenu, RowsDoWhatTheySayInBothForms) {
    MenuOnDesk on;
    std::vector<SeenVolume> all;
    for (std::int16_t i = 0; i < 6; ++i)
        all.push_back(volume(static_cast<std::int16_t>(10 + i), fmt::format("v{}", i),
                             ExternalVolume, 600, i != 1));
    all[2].silence = "Connection timed out";
    on.show(all);
    on.menu.itemWithTitle(QStringLiteral("10"))->trigger();
    on.row(15).mouseDown();  // tag 5, which is the memory's
    EXPECT_EQ(on.did, "open /v0 ");
    on.did.clear();
    on.hostEntry(QStringLiteral("v5:"))->trigger();
    on.hostEntry(QStringLiteral("Eject v5"))->trigger();
    EXPECT_EQ(on.did, "host /v5 eject 15 ");
    EXPECT_EQ(on.hostEntry(QStringLiteral("Eject v1")), nullptr);
    EXPECT_FALSE(on.hostEntry(QStringLiteral("v2: 600 B free of 1000 B, does not"))->isEnabled());

    // While it is being ejected neither form asks again.
    on.row(15).setEjecting(true);
    EXPECT_FALSE(on.hostEntry(QStringLiteral("Ejecting v5"))->isEnabled());
    on.row(15).backDisk();
    EXPECT_EQ(on.did, "host /v5 eject 15 ");
    on.row(15).setEjecting(false);
    EXPECT_TRUE(on.hostEntry(QStringLiteral("Eject v5"))->isEnabled());
    on.did.clear();
    for (const char* const name : {"Eject All", "Main Window", "Quit"})
        on.hostEntry(QLatin1String(name))->trigger();
    EXPECT_EQ(on.did, "all window quit ");
}

TEST(StatusMenu, AnotherGroupMakesItAnewAndASilentRowOpensNothing) {
    MenuOnDesk on;
    on.show({volume(7, "stick", LocalVolume, 600, false)});
    on.show({volume(7, "stick", ExternalVolume, 600, true)});
    EXPECT_TRUE(on.popup().starts_with("[External Disks] stick#0 | Eject All |")) << on.popup();
    EXPECT_TRUE(on.row(7).bCanEject);
    SeenVolume silent = volume(7, "stick", ExternalVolume);
    silent.silence = "Connection timed out";
    on.show({silent});
    on.row(7).mouseDown();
    EXPECT_EQ(on.did, "");
}

TEST(StatusMenu, OneThatNeverAnsweredHasARowWithoutFigures) {
    MenuOnDesk on;
    SeenVolume nas = volume(8, "nas", NetworkVolume);
    auto record = std::make_shared<ZvVolumeInfo>(*nas.record);
    record->nTotalSize = record->nFreeSize = 0;
    record->totalSpace = record->freeSpace = "";
    on.show({{record, "Host is down"}});
    EXPECT_EQ(on.row(8).accessibleName().toStdString(), "nas, does not answer");
    EXPECT_TRUE(on.row(8).toolTip().contains(QLatin1String("Host is down")));
    ASSERT_NE(on.hostEntry(QStringLiteral("nas, does not answer")), nullptr);
    EXPECT_FALSE(on.hostEntry(QStringLiteral("nas, does not answer"))->isEnabled());
    const QMenu* const menu = on.menu.menu();
    on.show({nas});
    EXPECT_EQ(on.menu.menu(), menu);
    EXPECT_EQ(on.row(8).accessibleName().toStdString(), "nas: 600 B free of 1000 B");
    EXPECT_TRUE(on.row(8).toolTip().isEmpty());
}

TEST(StatusMenu, OneEntryIsCurrentForPointerAndKeyboardAlike) {
    MenuOnDesk on;
    on.show({volume(1, "System", LocalVolume, 600, false), volume(7, "R&D", ExternalVolume)});
    QMenu& menu = *on.menu.menu();
    menu.popup({});
    QApplication::processEvents();
    const auto current = [&] {
        std::string text;
        for (const int number : {1, 7})
            if (on.row(number).isCurrent()) text += std::to_string(number);
        return text;
    };
    using K = Qt::Key;
    const struct {
        K key;
        const char *current, *did;
    } steps[] = {{K::Key_Down, "1", ""},
                 {K::Key_Right, "1", ""},
                 {K::Key_Down, "7", ""},
                 {K::Key_Right, "7", ""},
                 {K::Key_Return, "7", "eject 7 "},
                 {K::Key_Left, "7", ""},
                 {K::Key_Down, "", ""},
                 {K::Key_Up, "7", ""},
                 {K::Key_Right, "7", ""},
                 {K::Key_Up, "1", ""},
                 {K::Key_Down, "7", ""},
                 {K::Key_Return, "", "open /R&D "}};
    for (const auto& step : steps) {
        on.did.clear();
        QWidget* const focus = menu.focusWidget();
        QTest::keyClick(focus != nullptr ? focus : &menu, step.key);
        EXPECT_EQ(current() + on.did, std::string(step.current) + step.did)
            << static_cast<int>(step.key) << " at " << &step - steps;
    }
    EXPECT_FALSE(menu.isVisible()) << "Return opens and closes";
    menu.popup({});
    QEnterEvent comes({5, 5}, {5, 5}, {5, 5});
    QApplication::sendEvent(&on.row(1), &comes);
    EXPECT_EQ(current(), "1");
    menu.setActiveAction(on.menu.itemWithTitle(QStringLiteral("7")));
    EXPECT_EQ(current(), "7") << "and not where the pointer rests";
    QTest::keyClick(&menu, Qt::Key_Escape);
    EXPECT_FALSE(menu.isVisible());
    EXPECT_EQ(current(), "");
    // Screen readers hear entries of a menu, by what they show.
    auto* const heard = QAccessible::queryAccessibleInterface(&on.row(7));
    EXPECT_EQ(heard->role(), QAccessible::MenuItem);
    EXPECT_EQ(on.menu.itemWithTitle(QStringLiteral("7"))->text().toStdString(),
              "R&&D: 600 B free of 1000 B");
}

TEST(StatusMenu, ARowIsMirroredWhereOneReadsFromTheRight) {
    MenuOnDesk on;
    on.show({volume(7, "stick", ExternalVolume)});
    MenuItemView& row = on.row(7);
    row.resize(320, 40);
    const QImage image = row.grab().toImage();
    const QRect button = row.findChild<QToolButton*>()->geometry();
    row.setLayoutDirection(Qt::RightToLeft);
    EXPECT_EQ(row.findChild<QToolButton*>()->geometry().left(), row.width() - 1 - button.right());
    const QRect icon(14, 8, 24, 24);
    const QImage turned = row.grab().toImage();
    EXPECT_EQ(turned.copy(QStyle::visualRect(Qt::RightToLeft, row.rect(), icon)), image.copy(icon));
    QTest::keyClick(&row, Qt::Key_Left);
    EXPECT_EQ(on.did, "") << "not without being the current entry";
    row.setCurrent(true);
    QTest::keyClick(&row, Qt::Key_Left);
    QTest::keyClick(&row, Qt::Key_Space);
    EXPECT_EQ(on.did, "eject 7 ");
}

TEST(StatusMenu, TheNumberFiveIsTheMemorysRow) {
    MenuOnDesk on;
    on.menu.freeMemoryListView();
    on.show({volume(1, "System", LocalVolume), volume(5, "five", ExternalVolume)});
    EXPECT_EQ(on.row(5).volumeSize.toStdString(), "Memory") << "the rule of the operation";
    EXPECT_EQ(on.popup().find("Memory#5"), std::string::npos) << "its own row is in no menu";
    EXPECT_EQ(on.row(1).volumeSize.toStdString(), "System");
}

// How many pixels of the row have about this colour.
int pixelsOf(MenuItemView& row, QColor wanted) {
    row.resize(320, row.height());
    row.setPalette(Theme::shared().palette());
    row.setAutoFillBackground(true);
    const QImage image = row.grab().toImage();
    int count = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x) {
            const QColor each = image.pixelColor(x, y);
            const int off = std::abs(each.red() - wanted.red()) +
                            std::abs(each.green() - wanted.green()) +
                            std::abs(each.blue() - wanted.blue());
            count += off < 12 ? 1 : 0;
        }
    return count;
}

TEST(StatusMenu, TheBarIsDrawnFromTheRecordInBothPalettes) {
    for (const Theme::Scheme scheme : {Theme::Scheme::Light, Theme::Scheme::Dark}) {
        Theme::shared().setScheme(scheme);
        MenuOnDesk on;
        std::vector<SeenVolume> all{
            volume(1, "System", LocalVolume, 100), volume(2, "half", LocalVolume, 500),
            volume(3, "disc", OpticalVolume, 0), volume(4, "nas", NetworkVolume, 500)};
        all[3].silence = "Connection timed out";
        on.show(all);
        on.show(all);  // from now on the fields hold the total twice
        const QColor red = Theme::shared().color(Theme::Color::Danger);
        const QColor text = Theme::shared().color(Theme::Color::Text);
        EXPECT_GT(pixelsOf(on.row(1), red), 300) << "nine tenths of the bar";
        EXPECT_EQ(pixelsOf(on.row(2), red), 0);
        EXPECT_EQ(pixelsOf(on.row(3), red), 0) << "a disc is full by nature";
        EXPECT_GT(pixelsOf(on.row(2), text), 20);
        EXPECT_LT(pixelsOf(on.row(4), text), pixelsOf(on.row(2), text) / 2)
            << "grey while it does not answer";
    }
    Theme::shared().setScheme(Theme::Scheme::Light);
}

// Of this thread: a busy machine makes it no slower.
double processorMilliseconds() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

TEST(StatusMenu, ARefreshOf200VolumesTakesNoTurnOfTheEventLoop) {
    MenuOnDesk on;
    std::vector<double> took;
    for (int round = 0; round < 21; ++round) {
        std::vector<SeenVolume> all;
        for (std::int16_t i = 0; i < 200; ++i)
            all.push_back(volume(static_cast<std::int16_t>(10 + i), fmt::format("v{}", i),
                                 ExternalVolume, static_cast<std::uint64_t>(600 + round)));
        const double start = processorMilliseconds();
        on.show(std::move(all));
        took.push_back(processorMilliseconds() - start);
    }
    took.erase(took.begin());  // that one builds
    std::ranges::nth_element(took, took.begin() + 10);
    RecordProperty("milliseconds", std::to_string(took[10]));
    EXPECT_LT(took[10], isSanitized() ? 60 : 10)
        << "milliseconds of processor time, the median of twenty";
}

// From the click to all rows drawn.
TEST(StatusMenu, AMenuOfTwentyVolumesIsOpenAtOnce) {
    MenuOnDesk on;
    std::vector<SeenVolume> all;
    for (std::int16_t i = 10; i < 30; ++i)
        all.push_back(volume(i, fmt::format("v{}", i), ExternalVolume));
    on.show(all);
    const double start = processorMilliseconds();
    on.menu.menu()->popup({});
    on.menu.menu()->grab();
    const double took = processorMilliseconds() - start;
    RecordProperty("milliseconds", std::to_string(took));
    EXPECT_LT(took, 50) << "milliseconds of processor time, the first opening of all";
}

TEST(HostMenu, NamesArriveAsTheyAre) {
    // As the toolkit and a panel read it: the first "&" becomes "_", one "_" is a key's mark.
    const auto shown = [](QString text) {
        const qsizetype at = text.indexOf(QLatin1Char('&'));
        if (at >= 0 && at != text.size() - 1) text[at] = QLatin1Char('_');
        text.replace(QLatin1String("__"), QLatin1String("\x01"));
        text.remove(QLatin1Char('_')).remove(QChar(0x2060));
        return text.replace(QLatin1Char('\x01'), QLatin1Char('_')).toStdString();
    };
    for (const char* const name : {"R&D_disk<b>", "a", "_", "&", "&&", "_a&b_", "a&", "__&__",
                                   "\xC3\xA4&\xC3\xB6", "a b_c_d & e & f"})
        EXPECT_EQ(shown(hostText(QString::fromUtf8(name))), name);
    for (const char16_t code :
         {u'\n', u'\r', u'\t', u'\x7F', u'\x85', u'\u2028', u'\u202E', u'\u2067'})
        EXPECT_FALSE(hostText(QLatin1Char('a') + QChar(code)).contains(QChar(code)))
            << static_cast<int>(code);
}

TEST(CustomStatusItemView, TheTitleSetsTheLength) {
    CustomStatusItemView view;
    view.setTitle(QStringLiteral("wide"));
    const int length = view.length();
    EXPECT_GT(length, 52);
    view.setTitle(QString(17, QLatin1Char(' ')));
    EXPECT_NE(view.length(), length);
    view.updateShowSizeWithFree(QStringLiteral("1 GB"), QStringLiteral("2 GB"));
    EXPECT_EQ(view.textField->text().toStdString(), "Free:1 GB");
    EXPECT_EQ(view.totolField->text().toStdString(), "Total:2 GB");
    view.menuWillOpen();
    EXPECT_TRUE(view.isMenuVisible);
    EXPECT_EQ(view.textField->palette().color(QPalette::WindowText), QColor(Qt::white));
    view.menuDidClose();
    EXPECT_EQ(view.textField->palette().color(QPalette::WindowText),
              QColor::fromRgbF(0.1725F, 0.7255F, 0.3490F));
    view.setWarningStatusShowColor(true);
    EXPECT_EQ(view.totolField->palette().color(QPalette::WindowText), QColor(Qt::red));
}

}  // namespace
}  // namespace orrinvale::testing
