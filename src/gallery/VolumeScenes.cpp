// The volumes are made up, as no machine that draws has them. What a worker may still look at is
// never freed.
#include "gallery/VolumeScenes.h"

#include <QApplication>
#include <QLabel>
#include <QPainter>
#include <array>
#include <cerrno>
#include <future>
#include <vector>

#include "engine/base/UtilityObject.h"
#include "gallery/PageWorkings.h"
#include "gallery/drawing.h"
#include "platform/fake/FakeVolumes.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxMemory.h"
#include "ui/bubbles/BubbleContent.h"
#include "ui/bubbles/StandingBubble.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/look/picture.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/tray/StatusMenu.h"
#include "ui/volumes/FreeSpacePage.h"

namespace orrinvale {
namespace {

struct MadeUpVolumes {
    const char *name, *path;
    std::int32_t type;
    double total, free;  // gigabytes
};

constexpr std::array<MadeUpVolumes, 12> volumes{{
    {"System", "/", LocalVolume, 512.1, 187.4},
    {"Holiday", "/media/anna/Holiday", ExternalVolume, 64.0, 3.1},
    {"Backup", "/media/anna/Backup", ExternalVolume, 4000.8, 1240.0},
    {"family", "/mnt/family", NetworkVolume, 8001.6, 402.3},
    {"home", "/home", LocalVolume, 931.5, 61.2},
    {"Mountain Songs, Disc 2", "/media/anna/MOUNTAIN_SONGS_2", OpticalVolume, 0.7, 0},
    {"debian-12.7.0-amd64-netinst", "/media/anna/debian", DiskImageVolume, 0.7, 0},
    {"EOS_DIGITAL", "/media/anna/EOS_DIGITAL", ExternalVolume, 31.9, 18.6},
    {"Projects", "/srv/projects", LocalVolume, 2000.4, 1511.0},
    {"photos", "/mnt/photos", NetworkVolume, 8001.6, 402.3},
    {"Letters and Scans", "/media/anna/Letters", DiskImageVolume, 2.1, 1.9},
    {"EFI", "/boot/efi", LocalVolume, 0.5, 0.4},
}};

std::uint64_t bytes(double gigabytes) { return static_cast<std::uint64_t>(gigabytes * 1e9); }

FakeVolumes::Volume made(const MadeUpVolumes& from, std::int16_t number) {
    FakeVolumes::Volume volume;
    volume.volume = {number, {bytes(from.total), bytes(from.free), 0}, from.name, from.path, 0};
    volume.parms.vMVersion = 3;
    volume.parms.vMDeviceID = "made" + std::to_string(number);
    volume.parms.vMServerAdr = from.type == NetworkVolume ? 1 : 0;
    if (from.type == ExternalVolume) volume.parms.vMExtendedAttributes = 1U << bIsOnExternalBus;
    if (from.type == DiskImageVolume)
        volume.parms.vMExtendedAttributes = 1U << bIsRemovable | 1U << bIsEjectable;
    return volume;
}

struct VolumeMachine {
    explicit VolumeMachine(std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) {
            const auto number = static_cast<std::int16_t>(i + 1);
            platform.volumes.push_back(made(volumes.at(i), number));
            if (volumes.at(i).type == OpticalVolume)
                platform.devices["made" + std::to_string(number)] =
                    std::make_shared<FakeRegistryEntry>(
                        std::vector<std::string>{"IOMedia", "IOCDMedia"}, true);
        }
    }
    FakeVolumes platform;
    LinuxMemory memory;
    PageWorkings workings;
    SystemWatch watch{platform, memory, workings.mainQueue, std::chrono::hours(1)};
    Ejections ejections{platform, workings.mainQueue};
};

bool drawPage(UserDefaults& defaults, const PictureFolder& pictures, std::size_t count) {
    const LinuxFileSystem files;
    VolumeMachine& machine = *new VolumeMachine(count);
    AppPrefsWindowController controller;
    controller.setOpenAddress([](const QString& /*address*/) {});
    controller.setOpenHelp([] {});
    controller.registerPage(freeSpacePage(machine.workings.parts(files, defaults),
                                          {&machine.watch, &machine.ejections}));
    controller.showWindow();
    controller.window()->activateWindow();
    const auto isListed = [&] {
        const auto cards = controller.window()->findChildren<CustomVolumView*>();
        return static_cast<std::size_t>(cards.size()) == count;
    };
    if (!waitFor("the volumes", isListed)) return false;
    QApplication::processEvents();
    return pictures.save(QStringLiteral("free-space-%1").arg(count), controller.window()->grab());
}

// What does not answer, what is being ejected, and what another program holds.
bool drawTroubles(UserDefaults& defaults, const PictureFolder& pictures) {
    const LinuxFileSystem files;
    VolumeMachine& machine = *new VolumeMachine(4);
    std::promise<void> mayEnd;
    machine.platform.onEjection = [gate = mayEnd.get_future().share()](std::int16_t /*number*/) {
        gate.wait();
    };
    FreeSpacePage page(machine.workings.parts(files, defaults),
                       {&machine.watch, &machine.ejections});
    const std::unique_ptr<QWidget> view(page.view());
    view->resize(800, 440);
    view->show();
    const auto& cards = page.diskSizeView().allItemArr();
    if (!waitFor("the volumes", [&] { return cards.size() == 4; })) return false;
    machine.platform.volumes[3].infoStatus = ioErr;
    machine.platform.volumes[3].volume.errorNumber = ETIMEDOUT;
    machine.watch.lookNow();
    cards[2]->backDisk();
    const auto isSilent = [&] {
        return !cards[3]->findChild<QLabel*>(QStringLiteral("freeVolT"))->isEnabled();
    };
    if (!waitFor("a silent server", isSilent)) return false;
    const bool isSaved = pictures.save(QStringLiteral("free-space-troubles"), view->grab());
    mayEnd.set_value();
    return isSaved;
}

// The menu of the status item, with a server that fell silent and a stick that is being ejected.
bool drawTrayMenu(UserDefaults& defaults, const PictureFolder& pictures) {
    VolumeMachine& machine = *new VolumeMachine(7);
    VolumeLook look(machine.platform);
    static_cast<void>(look.take());
    machine.platform.volumes[3].infoStatus = ioErr;
    const auto nothing = [] {};
    StatusMenu menu({.defaults = &defaults,
                     .memory = nullptr,
                     .actions = {.eject = {},
                                 .openVolume = {},
                                 .rejestAllDisk = nothing,
                                 .openMainWindow = nothing,
                                 .showMainWindowWhenClickMenuItem = nothing,
                                 .quit = nothing}});
    menu.updateDataForMenuItem({look.take(), {}});
    StatusMenu::viewOf(menu.itemWithTitle(QStringLiteral("3")))->setEjecting(true);
    menu.menu()->show();
    QApplication::processEvents();
    return pictures.save(QStringLiteral("tray-menu"), menu.menu()->grab());
}

// A piece of a desktop with bubbles in its corner, and a window that points at something.
class Desktop final : public QWidget {
public:
    Desktop(const QColor& color, QWidget* parent) : QWidget(parent), m_color(color) {
        setFixedSize(460, 300);
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override { QPainter(this).fillRect(rect(), m_color); }

private:
    const QColor m_color;
};

bool drawBubbles(const PictureFolder& pictures) {
    QWidget sheet;
    sheet.setFixedSize(920, 300);
    std::vector<std::unique_ptr<StandingBubble>> bubbles;
    int x = 0;
    for (const char* color : {"#e9edf0", "#12181c"}) {
        auto* const desktop = new Desktop(QColor(QLatin1String(color)), &sheet);
        desktop->move(x, 0);
        x += desktop->width();
        BubbleGround ground;
        ground.server = [] { return DesktopFacts::Server::Other; };
        ground.openWindow = [desktop] { return desktop; };
        const std::array<QStringList, 2> words{
            QStringList{QStringLiteral("Files removed: 1,204"), QStringLiteral("Size: 2.41 GB")},
            QStringList{QStringLiteral("Nothing in User Logs can go.")}};
        for (const QStringList& lines : words)
            bubbles.push_back(
                std::make_unique<StandingBubble>(std::make_unique<BubbleContent>(lines), ground));
        auto pointing = MAAttachedWindow::initWithView(
            std::make_unique<BubbleContent>(QStringList{QStringLiteral("Drop a folder here")}),
            {60, 140}, desktop, AttachedSide::BottomRight);
        pointing.release()->show();
        // Each desktop has a series of its own.
        UtilityObject::getMyObject().totalBubbleCount = 0;
    }
    sheet.show();
    QApplication::processEvents();
    const bool isSaved = pictures.save(QStringLiteral("bubbles"), sheet.grab());
    bubbles.clear();
    return isSaved;
}

// The disc of the status item in the sizes of panels, on a light and a dark one.
bool drawDiscs(const PictureFolder& pictures) {
    constexpr std::array sides{16, 22, 32};
    constexpr std::array names{"0%", "12%", "37%", "64%", "88%", "90%-1", "96%-1", "100%-1"};
    constexpr int cell = 40;
    QPixmap sheet(cell * static_cast<int>(names.size()), 2 * cell * static_cast<int>(sides.size()));
    QPainter painter(&sheet);
    int y = 0;
    for (const char* color : {"#f2f2f2", "#1e1e1e"}) {
        for (const int side : sides) {
            painter.fillRect(0, y, sheet.width(), cell, QColor(QLatin1String(color)));
            int x = (cell - side) / 2;
            for (const char* name : names) {
                painter.drawPixmap(x, y + (cell - side) / 2,
                                   picturePixmap(QLatin1String(name), {side, side}));
                x += cell;
            }
            y += cell;
        }
    }
    painter.end();
    return pictures.save(QStringLiteral("status-discs"), sheet);
}

}  // namespace

bool drawVolumes(UserDefaults& defaults, const PictureFolder& pictures,
                 const QSet<QString>& wanted) {
    for (const std::size_t count : {1U, 4U, 5U, 12U})
        if (wanted.isEmpty() || wanted.contains(QStringLiteral("free-space")))
            if (!drawPage(defaults, pictures, count)) return false;
    const bool drawsMenu = wanted.isEmpty() || wanted.contains(QStringLiteral("tray-menu"));
    if (drawsMenu && !drawTrayMenu(defaults, pictures)) return false;
    return !wanted.isEmpty() ||
           (drawTroubles(defaults, pictures) && drawBubbles(pictures) && drawDiscs(pictures));
}

}  // namespace orrinvale
