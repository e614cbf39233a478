// The places, the scan, the columns, the map, the question and the removal, in the order in which a
// person meets them.
#include "gallery/DiskUsageScenes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <QMenu>
#include <cerrno>
#include <cstdio>
#include <utility>

#include "engine/cleaning/QnAuthorization.h"
#include "engine/diskusage/history/ScanHistory.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "gallery/SampleFolder.h"
#include "gallery/drawing.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/TreemapView.h"
#include "ui/diskusage/diskUsagePage.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/preferences/AppPrefsWindowController.h"

namespace orrinvale {
namespace {

constexpr const char* heldFolder = "Norway";
constexpr const char* heldVideo = "Graduation of Anna.mp4";
constexpr std::uint64_t gigabyte = 1'000'000'000;

}  // namespace

DiskUsageScenes::DiskUsageScenes(const SampleFolder& sample, UserDefaults& defaults,
                                 const PictureFolder& pictures, QSet<QString> wanted)
    : m_sample(sample),
      m_pictures(pictures),
      m_wanted(std::move(wanted)),
      m_watch(m_volumes, m_memory, m_workings.mainQueue, std::chrono::hours(1)),
      m_controller(std::make_unique<AppPrefsWindowController>()) {
    m_volumes.volumes = {
        FakeVolumes::volume(1, "System", "/", false, 512 * gigabyte),
        FakeVolumes::volume(2, "Projects", "/srv/projects", false, 2000 * gigabyte)};
    m_volumes.volumes[0].volume.info.freeBytes = 31 * gigabyte;
    defaults.setInteger(1, ZvDiskUsageLimit);
    QnAuthorization::shareQnAuthorization().setParts(
        {.authorization = nullptr, .files = &m_files, .permissions = nullptr, .ownFiles = {}});
    m_files.refuse(SampleFolder::unreadableFolder, EACCES);
    PageServices services = m_workings.parts(m_files, defaults);
    services.stateFolder = m_state.path().toStdString();
    keepEarlierScan();
    m_controller->registerPage(diskUsagePage(
        services,
        {.watch = &m_watch, .home = "/home/anna", .userName = QStringLiteral("anna"), .open = {}}));
    m_controller->showWindow();
    constexpr QSize usual{1000, 640};
    m_controller->window()->setContentSize(usual);
    m_page = static_cast<DiskUsageAppController*>(m_controller->page(QStringLiteral("disk_usage")));
    m_browser = m_page->view()->findChild<ColumnBrowser*>(QStringLiteral("browser"));
}

DiskUsageScenes::~DiskUsageScenes() {
    m_files.release();
    QnAuthorization::shareQnAuthorization().setParts({});
}

// Without `of` the whole window.
bool DiskUsageScenes::save(const char* scene, QWidget* of) const {
    const QString name = QLatin1String(scene);
    if (!m_wanted.isEmpty() && !m_wanted.contains(name)) return true;
    if (of == nullptr) {
        m_controller->window()->activateWindow();
        of = m_controller->window();
    }
    QApplication::processEvents();
    return m_pictures.save(QStringLiteral("disk-usage-") + name, of->grab());
}

void DiskUsageScenes::click(const char* button) const {
    m_page->view()->findChild<QAbstractButton*>(QLatin1String(button))->click();
}

int DiskUsageScenes::rowOf(int column, const char* name) const {
    const ColumnModel& rows = m_browser->model(column);
    for (int row = 0; row < rows.rowCount(); ++row)
        if (rows.index(row).data().toString() == QLatin1String(name)) return row;
    std::fprintf(stderr, "orrinvale-gallery: no row %s\n", name);
    return -1;
}

void DiskUsageScenes::choose(int column, const char* name) const {
    m_browser->choose(column, rowOf(column, name));
}

void DiskUsageScenes::tick(int column, const char* name) const {
    Q_EMIT m_browser->tickWanted(column, rowOf(column, name));
}

bool DiskUsageScenes::waitForEnd() const {
    return waitFor("the page to rest", [this] { return !m_page->isBusy(); });
}

bool DiskUsageScenes::draw() {
    return waitFor("the places", [this] { return m_page->leftCellArr().size() == 3; }) &&
           save("first") && drawScan() && drawResult() && drawRemoval();
}

bool DiskUsageScenes::drawScan() {
    m_files.hold(heldFolder);
    m_page->takeFolder(m_sample.family());
    const bool isSaved =
        waitFor("the scan to rest",
                [this] { return m_files.isHolding() && m_browser->lastColumn() == 0; }) &&
        save("progress");
    m_files.release();
    return isSaved && waitForEnd();
}

bool DiskUsageScenes::drawResult() {
    choose(0, "Videos");
    tick(1, heldVideo);
    choose(0, "Pictures");
    tick(0, "Downloads");
    choose(0, "Videos");
    choose(1, heldVideo);
    // What flies has landed, and what is asked of the file has come.
    const auto* const facts = m_page->view()->findChild<QLabel*>(QStringLiteral("factsLines"));
    constexpr int flight = 1200;  // milliseconds
    QElapsedTimer since;
    since.start();
    const auto isSettled = [&] {
        return since.hasExpired(flight) && facts->text().count(QLatin1Char('\n')) > 1;
    };
    if (!waitFor("the facts", isSettled) || !save("detail")) return false;
    return drawMap("map") && drawChanges();
}

// As if there had been less in Videos and Downloads, and more in Backup.
void DiskUsageScenes::keepEarlierScan() const {
    DiskUsageScan scan({.files = &m_realFiles, .mainQueue = nullptr, .news = {}});
    scan.start(std::make_shared<FSNodeTree>(m_sample.family()), {.records = true});
    scan.waitForEnd();
    const auto record = scan.record();
    if (record == nullptr) return;
    const auto at = [](RecordedEntry*& first, std::string_view name) -> RecordedEntry*& {
        RecordedEntry** place = &first;
        while (*place != nullptr && name != (*place)->name) place = &(*place)->next;
        return *place;
    };
    RecordedEntry image{.name = "disk image.iso", .size = 734'003'200};
    const auto add = [&](const char* folder, std::uint64_t bytes) {
        RecordedEntry& entry = *at(record->first, folder);
        entry.size += bytes;
        record->facts.size += bytes;
        return &entry;
    };
    constexpr std::uint64_t video = 1'480'220'416, photos = 188'402'113;
    add("Videos", 0 - video)->first = nullptr;
    RecordedEntry*& archive = at(add("Downloads", 0 - photos)->first, "holiday-photos.zip");
    archive = archive->next;
    RecordedEntry& backup = *add("Backup", image.size);
    image.next = std::exchange(backup.first, &image);
    constexpr std::int64_t lastDayOf2025 = 1'767'175'200;
    record->facts.time = lastDayOf2025;
    for (const bool allFileSystems : {false, true}) {
        record->facts.allFileSystems = allFileSystems;
        if (const auto stored = parseScan(encodeScan(*record)))
            static_cast<void>(ScanHistory(m_state.path().toStdString()).keep(*stored));
    }
}

bool DiskUsageScenes::drawMap(const char* scene) const {
    m_browser->closeBehind(0);
    click("mapBtn");
    const auto* const map = m_page->view()->findChild<TreemapView*>(QStringLiteral("map"));
    const bool isSaved =
        waitFor("the map", [&] { return map->isDrawn() && map->shownPicture() != nullptr; }) &&
        save(scene);
    click("columnsBtn");
    return isSaved;
}

// The menu stands beside the page, so that it is drawn alone.
bool DiskUsageScenes::drawCompareMenu() const {
    click("compareBtn");
    auto* const menu = m_page->view()->findChild<QMenu*>(QStringLiteral("compareMenu"));
    const bool isSaved = save("compare", menu);
    menu->close();
    return isSaved;
}

bool DiskUsageScenes::drawChanges() {
    const auto* const compare =
        m_page->view()->findChild<QAbstractButton*>(QStringLiteral("compareBtn"));
    if (!waitFor("the kept scan", [&] { return compare->isEnabled(); }) || !save("grown") ||
        !drawCompareMenu())
        return false;
    click("changesBtn");
    auto* const changes = m_page->view()->findChild<ColumnBrowser*>(QStringLiteral("changes"));
    if (!waitFor("the changes", [&] { return changes->isVisible(); })) return false;
    changes->choose(0, 0);
    bool isSaved = save("changes");
    constexpr QSize narrow{800, 560};
    const QSize usual = m_controller->window()->size();
    m_controller->window()->setContentSize(narrow);
    isSaved = isSaved && save("changes-narrow");
    m_controller->window()->resize(usual);
    click("columnsBtn");
    choose(0, "Backup");
    isSaved = isSaved && save("marked") && drawMap("map-changes");
    endComparison();
    return isSaved;
}

void DiskUsageScenes::endComparison() const {
    click("compareBtn");
    for (QMenu* const each : m_page->view()->findChildren<QMenu*>(QStringLiteral("compareMenu"))) {
        if (!each->isVisible()) continue;
        each->findChild<QAction*>(QStringLiteral("withoutComparison"))->trigger();
        each->close();
    }
}

bool DiskUsageScenes::drawRemoval() {
    choose(0, "Videos");
    m_files.hold(heldVideo);
    click("removeBtn");
    const auto sheet = [this] { return m_controller->window()->findChild<Sheet*>(); };
    if (!waitFor("the question",
                 [&] { return sheet() != nullptr && sheet()->content()->y() == 0; }) ||
        !save("question"))
        return false;
    sheet()->findChild<QAbstractButton*>()->click();  // the first one agrees
    if (!waitFor("the removal to reach the video", [&] { return m_files.isHolding(); }) ||
        !waitFor("the sheet to go", [&] { return sheet() == nullptr; }) || !save("removal"))
        return false;
    m_files.release();
    return waitForEnd() && save("after-removal");
}

}  // namespace orrinvale
