// The disk is held where a picture is to be taken.
#include "gallery/FastCleanScenes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QElapsedTimer>
#include <QLabel>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <utility>

#include "engine/cleaning/FolderUtilities.h"
#include "engine/removal/PlainDoor.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "gallery/SampleFolder.h"
#include "gallery/drawing.h"
#include "platform/paths.h"
#include "ui/fastclean/FastClean.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/dialogs/Sheet.h"

namespace orrinvale {
namespace {

constexpr std::uint64_t freedMegabyte = 1'000'000;
constexpr int shownTime = 250;  // milliseconds
constexpr const char* heldFile = "large.png";
constexpr const char* categoryKeys[] = {ZvSystemCachesKey, ZvUserCachesKey, ZvSystemLogsKey,
                                        ZvUserLogsKey,     ZvUserTrashKey,  ZvUserDownloadsKey};

// What was written a moment ago would stay.
std::int64_t anHourAfter() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               (std::chrono::system_clock::now() + std::chrono::hours(1)).time_since_epoch())
        .count();
}

void writeHoles(const std::string& path, std::uint64_t size) {
    std::filesystem::create_directories(folderOf(path));
    std::ofstream(path).flush();
    std::filesystem::resize_file(path, size);
}

}  // namespace

FastCleanScenes::FastCleanScenes(const SampleFolder& sample, UserDefaults& defaults,
                                 const PictureFolder& pictures, QSet<QString> wanted)
    : m_pictures(pictures),
      m_wanted(std::move(wanted)),
      m_defaults(defaults),
      m_home(folderOf(sample.settings()) + "/home/anna"),
      m_folders(FolderVariables{.home = m_home}),
      m_utilities(std::make_unique<const FolderUtilities>(
          m_staged, m_folders, [] { return std::vector<std::string>(); })) {
    fill();
    FastCleanParts parts;
    parts.pages = m_workings.parts(m_staged, defaults);
    parts.pages.stateFolder = m_home + "/.local/state";
    parts.clean = {.files = &m_staged,
                   .folders = &m_folders,
                   .utilities = m_utilities.get(),
                   .settingsFolder = m_home + "/.config/orrinvale",
                   .clock = anHourAfter};
    parts.makeDoor = [this](CleanCategory) {
        return std::make_unique<PlainDoor>(m_staged, ProtectedPlaces());
    };
    parts.freeSpace = [this](const std::string&) {
        return SysResult<std::uint64_t>(std::exchange(m_free, 1'204 * freedMegabyte));
    };
    m_clean = std::make_unique<FastClean>(std::move(parts), [] {});
    m_closing = ZvShouldCloseWindow.observe(m_workings.notifications,
                                            [this] { m_clean->handleCloseCleanWindow(); });
}

FastCleanScenes::~FastCleanScenes() { m_staged.release(); }

void FastCleanScenes::fill() const {
    const struct {
        const char* name;
        std::uint64_t megabytes;
    } files[] = {{"/.cache/fontconfig", 3},      {"/.cache/mesa_shader_cache", 212},
                 {"/.cache/mozilla.pack", 607},  {"/.cache/thumbnails/large.png", 388},
                 {"/.cache/vlc.art", 9},         {"/Downloads/Ubuntu 24.iso", 2'840},
                 {"/Downloads/Tax form.exe", 4}, {"/Downloads/Song.mp3", 7}};
    for (const auto& each : files) writeHoles(m_home + each.name, each.megabytes * freedMegabyte);
}

TCImageWindow& FastCleanScenes::window() const { return *m_clean->clrSysController()->window(); }

void FastCleanScenes::choose(const char* settingKey) {
    for (const char* const key : categoryKeys)
        m_defaults.setInteger(key == settingKey ? 1 : 0, key);
}

bool FastCleanScenes::save(const char* scene) {
    const QString name = QLatin1String(scene);
    if (!m_wanted.isEmpty() && !m_wanted.contains(name)) return true;
    window().activateWindow();
    if (!waitFor("the window to come to the front", [this] { return window().isActiveWindow(); }))
        return false;
    QApplication::processEvents();
    return m_pictures.save(QStringLiteral("fast-clean-") + name, window().grab());
}

bool FastCleanScenes::draw() { return drawRun() && drawQuestion(); }

bool FastCleanScenes::drawRun() {
    using State = CleanSysController::State;
    choose(ZvUserCachesKey);
    m_clean->open();
    if (!save("first")) return false;
    m_staged.hold(heldFile);
    m_clean->cleaningFile();
    const CleanSysController& run = *m_clean->clrSysController();
    if (!waitFor("the file that is held", [&] {
            return m_staged.isHolding() && run.state() == State::Deleting && run.progressVal > 60;
        }))
        return false;
    const auto* const file = window().findChild<QLabel*>(QStringLiteral("curFileName"));
    if (!waitFor("the name of the folder",
                 [file] { return file->text().endsWith(QStringLiteral("thumbnails")); }))
        return false;
    if (!save("progress")) return false;
    m_staged.release();
    if (!waitFor("the end", [&] { return run.state() == State::Reporting; })) return false;
    if (!save("reporting")) return false;
    window().performClose();
    return waitFor("the window to go", [this] { return m_clean->clrSysController() == nullptr; });
}

bool FastCleanScenes::drawQuestion() {
    choose(ZvUserDownloadsKey);
    m_clean->cleaningFile();
    const auto sheet = [this] { return window().findChild<Sheet*>(); };
    // Its last steps are smaller than a pixel, and still make the window behind it darker.
    QElapsedTimer sinceThere;
    const bool isThere = waitFor("the question", [&] {
        if (sheet() == nullptr || sheet()->content()->y() != 0) return false;
        if (!sinceThere.isValid()) sinceThere.start();
        return sinceThere.elapsed() > shownTime;
    });
    if (!isThere) return false;
    if (!save("question")) return false;
    window().performClose();
    return waitFor("the window to go", [this] { return m_clean->clrSysController() == nullptr; });
}

}  // namespace orrinvale
