// The cards of the volumes, alone and on the page "Free Space" over volumes that come and go.
#include "ui/volumes/FreeSpacePage.h"

#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <future>

#include "engine/memory/FakeMemory.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/volumes/volumeNotices.h"
#include "services/foundation/QtMainQueue.h"
#include "support/SteadyVolumes.h"
#include "support/test.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/support/soon.h"
#include "ui/volumes/MyMacView.h"

namespace orrinvale::testing {
namespace {

using Asked = std::vector<std::string>;

struct RecordedPage final : CustomVolumViewDelegate {
    void ejectVolume(std::int16_t volRefNumber, const std::string& volRootDir,
                     const std::string& volumeName) override {
        asked.push_back(fmt::format("eject {} {} {}", volRefNumber, volRootDir, volumeName));
    }
    void browseVolume(const std::string& volRootDir) override {
        asked.push_back("browse " + volRootDir);
    }
    Asked asked;
};

SeenVolume seen(std::int16_t number, const std::string& root, std::int32_t type,
                std::uint64_t free = 500, std::uint64_t total = 1000) {
    auto record = std::make_shared<ZvVolumeInfo>();
    record->volRefNumber = number;
    record->volRootDir = root;
    record->volumeName = root == "/" ? "System" : root.substr(root.rfind('/') + 1);
    record->volType = type;
    record->bIsDefaultVol = root == "/";
    record->bCanEject = type != LocalVolume;
    record->nFreeSize = free;
    record->nTotalSize = total;
    record->freeSpace = "1.25 GB";
    record->totalSpace = "2.50 GB";
    return {record};
}

std::vector<SeenVolume> several(int count) {
    std::vector<SeenVolume> all{seen(1, "/", LocalVolume)};
    for (int i = 2; i <= count; ++i)
        all.push_back(
            seen(static_cast<std::int16_t>(i), "/media/" + std::to_string(i), ExternalVolume));
    return all;
}

template <class Widget> Widget* part(const QWidget* in, const char* name) {
    return in->findChild<Widget*>(QLatin1String(name));
}

struct Settings {
    Settings() {
        defaults.setFloat(0.1F, ZvSpaceAlarmKey);
        UserDefaults::setStandardUserDefaults(&defaults);
    }
    ~Settings() { UserDefaults::setStandardUserDefaults(nullptr); }
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;
    TestTree tree;
    UserDefaults defaults{tree.at("settings.ini")};
};

TEST(DiskSizeView, ListsTheVolumesInOrderAndScrollsWhereTheyAreMany) {
    const Settings settings;
    RecordedPage page;
    std::vector<SeenVolume> volumes;
    DiskSizeView list([&] { return volumes; }, page);
    QWidget window;
    new QVBoxLayout(&window);
    window.layout()->setContentsMargins({});
    window.resize(702, 4 * CustomVolumView::cardHeight + Theme::gapLarge + Theme::gapSmall);
    window.show();
    for (const auto& [count, scrolls] : {std::pair(1, false), {4, false}, {5, true}, {12, true}}) {
        volumes = several(count);
        list.initDiskSizeView(&window);
        QApplication::processEvents();
        ASSERT_EQ(list.allItemArr().size(), static_cast<std::size_t>(count));
        EXPECT_EQ(list.scrollArea()->verticalScrollBar()->maximum() > 0, scrolls) << count;
        EXPECT_EQ(window.findChildren<QScrollArea*>().size(), 1) << "the one before went";
        for (int i = 0; i < count; ++i) {
            CustomVolumView& card = *list.allItemArr()[static_cast<std::size_t>(i)];
            EXPECT_EQ(card.getTag(), i);
            EXPECT_EQ(card.height(), 90);
            EXPECT_EQ(card.mapTo(list.scrollArea()->widget(), QPoint()).y(), 16 + i * 90)
                << "few stand at the top";
        }
    }
    volumes.push_back(seen(99, "/media/new", ExternalVolume));
    EXPECT_THROW(list.updateViewAndData(), std::out_of_range) << "to be made anew";
    volumes.clear();
    EXPECT_NO_THROW(list.updateViewAndData());
    volumes = {seen(1, "/", LocalVolume, 10)};
    list.updateViewAndData();
    EXPECT_EQ(list.allItemArr().front()->nFreeSize(), 10U);
    EXPECT_EQ(list.allItemArr().front()->nTotalSize(), 1000U);
}

TEST(CustomVolumView, ShowsItsKindItsShareAndItsWarning) {
    const struct {
        SeenVolume volume;
        const char *icon, *bar, *group;
        bool canEject, isRed;
    } cases[] = {
        {seen(1, "/", LocalVolume), "disk_mac.png", "50_index.png", "Internal Disks", false, false},
        {seen(1, "/", LocalVolume, 100), "disk_mac.png", "90_r_index.png", "Internal Disks", false,
         true},
        {seen(2, "/home", LocalVolume, 1), "disk_ico_1.png", "100_r_index.png", "Internal Disks",
         false, true},
        {seen(3, "/m/usb", ExternalVolume, 109), "disk_ico_5.png", "90_r_index.png",
         "External Disks", true, true},
        {seen(4, "/m/cd", OpticalVolume, 0), "disk_ico_3.png", "100_index.png", "CDs and DVDs",
         true, false},
        {seen(5, "/m/nas", NetworkVolume, 0), "disk_ico_4.png", "100_index.png", "Network Volumes",
         true, false},
        {seen(6, "/m/i", DiskImageVolume, 0), "disk_ico_2.png", "100_index.png", "Disk Images",
         true, false},
        {seen(7, "/m/none", LocalVolume, 0, 0), "disk_ico_1.png", "", "Internal Disks", false,
         false},
    };
    for (const auto& each : cases) {
        RecordedPage page;
        SCOPED_TRACE(each.volume.record->volRootDir);
        CustomVolumView card(*each.volume.record, "10", 0, 3, page);
        card.resize(702, 90);
        card.show();
        EXPECT_EQ(part<PictureView>(&card, "curVolIcon")->name().toStdString(), each.icon);
        EXPECT_EQ(card.getPrograssImage().toStdString(), each.bar);
        EXPECT_EQ(part<QLabel>(&card, "groupName")->text().toStdString(), each.group);
        auto* const free = part<QLabel>(&card, "freeVolT");
        EXPECT_EQ(free->text(), QStringLiteral("1.25 GB Free"));
        EXPECT_EQ(free->palette().color(QPalette::WindowText) ==
                      Theme::shared().color(Theme::Color::Danger),
                  each.isRed);
        auto* const eject = part<TCImageButton>(&card, "ejectButton");
        EXPECT_EQ(eject->isVisible(), each.canEject);
        part<TCImageButton>(&card, "browseButton")->click();
        if (each.canEject) eject->click();
        const ZvVolumeInfo& volume = *each.volume.record;
        Asked asked{"browse " + volume.volRootDir};
        if (each.canEject)
            asked.push_back(fmt::format("eject {} {} {}", volume.volRefNumber, volume.volRootDir,
                                        volume.volumeName));
        EXPECT_EQ(page.asked, asked);
    }
}

TEST(CustomVolumView, AReserveOfTheAdministratorIsNoPartOfItsShare) {
    ZvVolumeInfo volume = *seen(1, "/", LocalVolume, 95).record;
    volume.nReservedSize = 50;
    RecordedPage page;
    CustomVolumView card(volume, "10", 0, 0, page);
    EXPECT_EQ(card.getPrograssImage(), QStringLiteral("90_r_index.png"));
    card.setNFreeSize(475);
    EXPECT_EQ(card.getPrograssImage(), QStringLiteral("50_index.png"));
}

TEST(CustomVolumView, OneThatNeverAnsweredSaysWhyAndHasNoFigures) {
    SeenVolume nas = seen(5, "/m/nas", NetworkVolume, 0, 0);
    auto record = std::make_shared<ZvVolumeInfo>(*nas.record);
    record->freeSpace = record->totalSpace = "";
    RecordedPage page;
    CustomVolumView card(*record, "10", 0, 0, page);
    card.showFigures({record, "Host is down"});
    EXPECT_EQ(part<QLabel>(&card, "freeVolT")->text(), QString());
    EXPECT_EQ(part<QLabel>(&card, "totlVolT")->text(),
              QStringLiteral("Does not answer: Host is down"));
    EXPECT_FALSE(part<QWidget>(&card, "volName")->isEnabled());
    EXPECT_FALSE(part<QWidget>(&card, "browseButton")->isEnabled()) << "that would block";
    card.showFigures(seen(5, "/m/nas", NetworkVolume));
    EXPECT_EQ(part<QLabel>(&card, "freeVolT")->text(), QStringLiteral("1.25 GB Free"));
    EXPECT_TRUE(part<QWidget>(&card, "volName")->isEnabled());
}

TEST(MyMacView, ShowsTheBootVolumeAndIsFilledFromTheFirst) {
    const Settings settings;
    NotificationCenter center;
    std::vector<std::vector<std::string>> posted;
    const auto observation = notice::FreeTotleArr.observe(
        center, [&](const std::vector<std::string>& texts) { posted.push_back(texts); });
    RecordedPage page;
    std::vector<SeenVolume> volumes{seen(2, "/media/a", ExternalVolume),
                                    seen(1, "/", LocalVolume, 100)};
    MyMacView view([&] { return volumes; }, center, page);
    ASSERT_NE(view.customView(), nullptr);
    EXPECT_EQ(part<QLabel>(&view, "volName")->text(), QStringLiteral("System"));
    EXPECT_EQ(view.customView()->getPrograssImage(), QStringLiteral("90_r_index.png"));
    EXPECT_EQ(posted, (std::vector<std::vector<std::string>>{{"2.50 GB", "1.25 GB"}}));
    view.updateViewAndData();
    EXPECT_EQ(part<QLabel>(&view, "volName")->text(), QStringLiteral("a"));
    EXPECT_EQ(view.customView()->getPrograssImage(), QStringLiteral("50_index.png"));
    volumes.clear();
    view.updateViewAndData();
    const MyMacView without([&] { return volumes; }, center, page);
    EXPECT_EQ(without.customView(), nullptr);
    EXPECT_EQ(posted.size(), 1U);
}

// Never freed: a look may go on behind the end of a test.
struct VolumeMachine {
    SteadyVolumes volumes;
    FakeMemory memory;
    QtMainQueue queue;
    Ejections ejections{volumes, queue};
};

class FreeSpacePageTest : public ::testing::Test {
protected:
    FreeSpacePageTest() {
        machine.volumes.fake.volumes = {volume(1, "System", "/", false),
                                        volume(7, "Stick", "/media/stick", true)};
        services.notifications = &notifications;
        services.defaults = &settings.defaults;
        services.mainQueue = &machine.queue;
        observations.push_back(notice::refMenuItemWhenDeleteAndAdd.observe(
            notifications, [this] { posted.emplace_back("refMenuItemWhenDeleteAndAdd"); }));
        observations.push_back(notice::openFinderWhenClickItems.observe(
            notifications, [this](const std::string& path) { posted.push_back(path); }));
        QObject::connect(&machine.ejections, &Ejections::failed, &machine.ejections,
                         [this](const auto& told) { failures = told; });
        watch = std::make_unique<SystemWatch>(machine.volumes, machine.memory, machine.queue, 1ms);
        page = std::make_unique<FreeSpacePage>(services,
                                               FreeSpaceParts{watch.get(), &machine.ejections});
        view.reset(page->view());
        view->resize(800, 500);
    }
    static FakeVolumes::Volume volume(std::int16_t number, const std::string& name,
                                      const std::string& path, bool canEject) {
        return FakeVolumes::volume(number, name, path, canEject, 1'000'000'000);
    }
    void change(const std::function<void(std::vector<FakeVolumes::Volume>&)>& work) {
        machine.volumes.change(work);
    }
    [[nodiscard]] std::string names() const {
        std::string all;
        for (const CustomVolumView* card : page->diskSizeView().allItemArr())
            all += part<QLabel>(card, "volName")->text().toStdString() + ' ';
        return all;
    }
    [[nodiscard]] CustomVolumView* card(std::size_t row) const {
        return page->diskSizeView().allItemArr().at(row);
    }

    VolumeMachine& machine = *new VolumeMachine;
    Settings settings;
    NotificationCenter notifications;
    std::vector<EjectFailure> failures;
    PageServices services;
    Asked posted;
    std::vector<NotificationCenter::Observation> observations;
    std::unique_ptr<SystemWatch> watch;
    std::unique_ptr<FreeSpacePage> page;
    std::unique_ptr<QWidget> view;
};

TEST_F(FreeSpacePageTest, SaysAtTheFirstLookThatThereAreNone) {
    change([](auto& volumes) { volumes.clear(); });
    view->show();
    EXPECT_SOON(std::ranges::any_of(view->findChildren<QLabel*>(), [](const QLabel* each) {
        return each->isVisible() && each->text() == QLatin1String("There are no volumes here.");
    }));
}

TEST_F(FreeSpacePageTest, IsMadeAnewWhenAnotherVolumeStandsInARowAndOnlyThen) {
    EXPECT_EQ(names(), "") << "nobody looks before it is seen";
    view->show();
    ASSERT_SOON(names() == "System Stick ");
    const CustomVolumView* const first = card(0);
    change([](auto& all) { all[0].volume.info.freeBytes = 50'000'000; });
    EXPECT_SOON(card(0)->getPrograssImage() == QStringLiteral("95_r_index.png"));
    EXPECT_EQ(card(0), first) << "the same card with new figures";
    EXPECT_TRUE(part<QLabel>(view.get(), "titleLabel")->text().contains(u"runs out of space"));
    // As many as before, and yet others.
    change([](auto& all) { all[1] = volume(8, "Camera", "/media/camera", true); });
    ASSERT_SOON(names() == "System Camera ");
    part<TCImageButton>(card(1), "ejectButton")->click();
    EXPECT_SOON(machine.volumes.ejected() == std::vector<std::int16_t>{8});
    settings.defaults.setFloat(0.01F, ZvSpaceAlarmKey);
    page->updateNewDiskSizeViewData();
    EXPECT_EQ(card(0)->getPrograssImage(), QStringLiteral("95_index.png")) << "another level";
    change([](auto& all) { all.clear(); });
    EXPECT_SOON(names().empty());
    EXPECT_TRUE(part<QLabel>(view.get(), "emptyLabel")->isVisible());
    view->hide();
    change([](auto& all) { all = {volume(1, "System", "/", false)}; });
    QTest::qWait(50);
    notice::updateNewDiskSizeView.post(notifications);
    EXPECT_EQ(names(), "") << "nobody looks while it is not seen";
    view->show();
    ASSERT_SOON(names() == "System ");
    part<TCImageButton>(card(0), "browseButton")->click();
    EXPECT_EQ(posted.back(), "/");
}

TEST_F(FreeSpacePageTest, AnEjectionRestsNothingAndTellsWhoHoldsTheVolume) {
    std::promise<void> mayEnd;
    machine.volumes.fake.ejections[7] = {fBsyErr,
                                         {"The volume is in use", {{42, "vlc", "/media/stick/a"}}}};
    machine.volumes.onEjection = [gate = mayEnd.get_future().share()] { gate.wait(); };
    view->show();
    ASSERT_SOON(names() == "System Stick ");
    card(1)->backDisk();
    EXPECT_EQ(part<QLabel>(card(1), "freeVolT")->text(), QStringLiteral("Ejecting ..."));
    EXPECT_FALSE(part<TCImageButton>(card(1), "ejectButton")->isEnabled());
    change([](auto& all) { all.push_back(volume(9, "New", "/media/new", true)); });
    ASSERT_SOON(names() == "System Stick New ") << "meanwhile the page goes on";
    EXPECT_EQ(part<QLabel>(card(1), "freeVolT")->text(), QStringLiteral("Ejecting ..."));
    card(1)->backDisk();
    EXPECT_TRUE(posted.empty());
    mayEnd.set_value();
    EXPECT_SOON(failures.size() == 1);
    EXPECT_EQ(machine.volumes.ejected(), std::vector<std::int16_t>{7}) << "asked for once";
    EXPECT_EQ(ejectFailureText(failures.front()),
              "\"Stick\" could not be ejected: The volume is in use, held open by vlc (process 42, "
              "/media/stick/a).");
    EXPECT_EQ(posted, Asked{"refMenuItemWhenDeleteAndAdd"});
    EXPECT_EQ(part<QLabel>(card(1), "freeVolT")->text(), QStringLiteral("500.00 MB Free"));
}

TEST_F(FreeSpacePageTest, LooksAtOnceWhereSomethingWasEjected) {
    SystemWatch resting(machine.volumes, machine.memory, machine.queue, 1h);
    const FreeSpacePage other(services, {&resting, &machine.ejections});
    const std::unique_ptr<QWidget> shown(other.view());
    shown->show();
    const auto cards = [&] { return other.diskSizeView().allItemArr().size(); };
    ASSERT_SOON(cards() == 2);
    change([](auto& all) { all.pop_back(); });
    notice::refMenuItemWhenDeleteAndAdd.post(notifications);
    EXPECT_SOON(cards() == 1);
}

// The card still shows the stick when another volume has got its number.
TEST_F(FreeSpacePageTest, ACardEjectsNothingThatCameIntoItsPlace) {
    view->show();
    ASSERT_SOON(names() == "System Stick ");
    view->hide();
    change([](auto& all) { all[1] = volume(7, "Backup", "/media/backup", true); });
    card(1)->backDisk();
    EXPECT_SOON(failures.size() == 1);
    EXPECT_TRUE(machine.volumes.ejected().empty());
    EXPECT_EQ(failures.front().volumeName, "Stick");
}

}  // namespace
}  // namespace orrinvale::testing
