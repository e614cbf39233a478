// The disk is held where a picture is to be taken. Files are sparse and an hour old.
#include "gallery/CleanScenes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <utility>

#include "engine/cleaning/FolderUtilities.h"
#include "engine/cleaning/ParseFileLog.h"
#include "engine/removal/PlainDoor.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "gallery/SampleFolder.h"
#include "gallery/drawing.h"
#include "platform/paths.h"
#include "ui/cleaning/NewMainViewController.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/preferences/AppPrefsWindowController.h"

namespace orrinvale {
namespace {

using State = MainViewController::State;

constexpr std::uint64_t megabyte = 1'000'000;
constexpr int slideTime = 250;  // milliseconds
constexpr std::int64_t aDay = 86'400;
constexpr std::int64_t lastClean = 1'793'000'000;  // seconds since 1970, of the history

std::int64_t anHourLater() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               (std::chrono::system_clock::now() + std::chrono::hours(1)).time_since_epoch())
        .count();
}

void writeSparse(const std::string& path, std::uint64_t size) {
    std::filesystem::create_directories(folderOf(path));
    std::ofstream(path).flush();
    std::filesystem::resize_file(path, size);
}

FakeVolumes::Volume startupDisk() {
    FakeVolumes::Volume volume;
    volume.volume = {1, {512'100 * megabyte, 61'200 * megabyte, 0}, "System", "/", 0};
    volume.parms.vMVersion = 3;
    volume.parms.vMDeviceID = "made1";
    return volume;
}

}  // namespace

CleanScenes::CleanScenes(const SampleFolder& sample, UserDefaults& defaults,
                         const PictureFolder& pictures, QSet<QString> wanted)
    : m_pictures(pictures),
      m_wanted(std::move(wanted)),
      m_home(folderOf(sample.settings()) + "/home/anna"),
      m_real(FolderVariables{.home = m_home}),
      m_folders(m_real, m_home),
      m_utilities(std::make_unique<const FolderUtilities>(
          m_staged, m_folders, [] { return std::vector<std::string>{"/"}; })),
      m_window(std::make_unique<AppPrefsWindowController>()) {
    fill();
    m_platform.volumes = {startupDisk()};
    defaults.setInteger(1, ZvUserTrashKey);
    CleanPageParts parts;
    parts.pages = m_workings.parts(m_staged, defaults);
    parts.pages.stateFolder = m_home + "/.local/state";
    static_cast<void>(ParseFileLog(parts.pages.stateFolder)
                          .setSize(2'410 * megabyte, Date{lastClean * 1'000'000'000}));
    parts.clean = {.files = &m_staged,
                   .folders = &m_folders,
                   .utilities = m_utilities.get(),
                   .settingsFolder = m_home + "/.config/orrinvale",
                   .clock = anHourLater};
    parts.watch = &m_watch;
    parts.ejections = &m_ejections;
    parts.makeDoor = [this](CleanCategory) {
        return std::make_unique<PlainDoor>(m_staged, ProtectedPlaces());
    };
    parts.freeSpace = [this](const std::string&) {
        return SysResult<std::uint64_t>(std::exchange(m_free, m_free + 1'204 * megabyte));
    };
    m_window->setOpenHelp([] {});
    m_window->registerPage({.identifier = QStringLiteral("Scan"),
                            .label = MainViewController::tr("Clean"),
                            .picture = QStringLiteral("clean"),
                            .make = [this, parts] {
                                auto made = std::make_unique<NewMainViewController>(parts);
                                m_page = made.get();
                                return made;
                            }});
    m_window->showWindow();
}

CleanScenes::~CleanScenes() { m_staged.release(); }

void CleanScenes::fill() const {
    const struct {
        const char* name;
        std::uint64_t megabytes;
    } files[] = {{"/sys/cache/apt/archives/linux-image.deb", 98},
                 {"/sys/cache/fontconfig/fonts.cache", 4},
                 {"/.cache/fontconfig", 3},
                 {"/.cache/mesa_shader_cache", 212},
                 {"/.cache/mozilla.pack", 607},
                 {"/.cache/spotify/PersistentCache", 1'140},
                 {"/.cache/thumbnails/large.png", 388},
                 {"/.cache/vlc.art", 9},
                 {"/.cache/keepassxc/keepassxc.ini", 1},
                 {"/sys/log/syslog.1", 12},
                 {"/sys/log/syslog.2.gz", 2},
                 {"/.config/Code/logs/main.log", 31},
                 {"/.local/share/Trash/files/Holiday 2019.mov", 1'480},
                 {"/.local/share/Trash/files/old-backup.tar", 620},
                 {"/Downloads/Ubuntu 24.iso", 2'840},
                 {"/Downloads/Tax form.pdf", 4},
                 {"/Downloads/Song.mp3", 7}};
    const auto now = std::filesystem::file_time_type::clock::now();
    std::int64_t days = 1;
    for (const auto& each : files) {
        writeSparse(m_home + each.name, each.megabytes * megabyte);
        std::filesystem::last_write_time(m_home + each.name,
                                         now - std::chrono::seconds(aDay * days++));
    }
}

bool CleanScenes::save(const char* scene) const {
    const QString name = QLatin1String(scene);
    if (!m_wanted.isEmpty() && !m_wanted.contains(name)) return true;
    m_window->window()->activateWindow();
    if (!waitFor("the window to come to the front",
                 [this] { return m_window->window()->isActiveWindow(); }))
        return false;
    QApplication::processEvents();
    return m_pictures.save(QStringLiteral("clean-") + name, m_window->window()->grab());
}

bool CleanScenes::click(const char* name) const {
    auto* const button = m_window->window()->findChild<QAbstractButton*>(QLatin1String(name));
    if (button == nullptr || !button->isEnabled()) {
        std::fprintf(stderr, "orrinvale-gallery: no button %s to press\n", name);
        return false;
    }
    button->click();
    return true;
}

QString CleanScenes::noteText() const {
    return m_window->window()
        ->findChild<QWidget*>(QStringLiteral("noteTextField"))
        ->accessibleName();
}

bool CleanScenes::waitForLists() const {
    return waitFor("the lists", [this] { return m_page->state() == State::Reviewing; });
}

bool CleanScenes::draw() { return drawScan() && drawReview() && drawClean() && drawEmpty(); }

bool CleanScenes::drawScan() {
    if (!waitFor("the disk", [this] { return !m_page->freeString.empty(); })) return false;
    if (!save("first")) return false;
    m_staged.hold(m_home + "/Downloads");
    if (!click("startButton")) return false;
    if (!waitFor("five lists", [this] { return m_page->finishScanCount() == 1; })) return false;
    const bool isSaved = save("progress");
    m_staged.release();
    return isSaved && waitForLists();
}

bool CleanScenes::drawReview() {
    if (!save("detail")) return false;
    m_page->shouldSelectRow(2);
    if (!save("list")) return false;
    m_page->shouldSelectRow(0);
    return click("scanButton") && save("overview") && click("outlineButton");
}

bool CleanScenes::drawClean() {
    if (!click("cleanButton")) return false;
    const auto sheet = [this] { return m_window->window()->findChild<Sheet*>(); };
    // Its last steps are smaller than a pixel, and still make the window behind it darker.
    QElapsedTimer sinceThere;
    const bool isThere = waitFor("the question", [&] {
        if (sheet() == nullptr || sheet()->content()->y() != 0) return false;
        if (!sinceThere.isValid()) sinceThere.start();
        return sinceThere.elapsed() > slideTime;
    });
    if (!isThere || !save("question")) return false;
    m_staged.hold("large.png");
    const QString old = noteText();
    // The question takes no answer in its first moments.
    const auto answer = [&] {
        const auto buttons = sheet() != nullptr ? sheet()->findChildren<QAbstractButton*>()
                                                : QList<QAbstractButton*>();
        const QString word =
            MainViewController::tr("Clean %1").remove(QStringLiteral("%1")).trimmed();
        for (QAbstractButton* const each : buttons)
            if (each->text().contains(word)) each->click();
    };
    if (!waitFor("the file that is held", [&] {
            if (!m_staged.isHolding()) answer();
            return m_staged.isHolding() && sheet() == nullptr;
        }))
        return false;
    if (!save("removal")) return false;
    m_staged.release();
    if (!waitForLists()) return false;
    const auto* const gain = m_window->window()->findChild<QWidget*>(QStringLiteral("gainLabel"));
    if (!waitFor("what was gained", [gain] { return gain->isVisible(); })) return false;
    if (!waitFor("the record", [this, old] { return noteText() != old; })) return false;
    const auto cloud = [this] {
        return m_window->window()->findChild<QWidget*>(QStringLiteral("disappearingEffect"));
    };
    if (!waitFor("the cloud to fade", [&] { return cloud() == nullptr; })) return false;
    return save("cleaned") && click("scanButton") && save("cleaned-overview");
}

bool CleanScenes::drawEmpty() {
    m_page->shouldSelectRow(4);
    return save("nothing-found");
}

}  // namespace orrinvale
