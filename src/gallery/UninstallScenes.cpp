// The applications and their pictures are made up, as each machine that draws has others. What a
// worker may still look at is never freed.
#include "gallery/UninstallScenes.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDeadlineTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QTemporaryDir>
#include <array>
#include <atomic>
#include <chrono>
#include <memory>
#include <thread>

#include "gallery/PageWorkings.h"
#include "gallery/drawing.h"
#include "platform/linux/LinuxFiles.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/lists/TickOutline.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/uninstall/UninstallAppsController.h"
#include "ui/uninstall/UninstallAppsModel.h"

namespace orrinvale {
namespace {

struct MadeUp {
    const char *name, *version;
    ApplicationType type;
    double megabytes;
    int daysUnused;
    bool isSystem, isTicked;
    const char* color;
};

constexpr std::array applications{
    MadeUp{"Aurora Sketch", "4.2.1", ApplicationType::Flatpak, 1240, 3, false, false, "#0f766e"},
    MadeUp{"Birdsong Recorder", "2.0", ApplicationType::AppImage, 188, 410, false, true, "#b45309"},
    MadeUp{"Calculator", "1:43.0.1-2", ApplicationType::Deb, 9.3, 1, false, false, "#475569"},
    MadeUp{"Files", "43.2-1", ApplicationType::Deb, 31.4, 0, true, false, "#1d4ed8"},
    MadeUp{"Harbour Chess", "7.1", ApplicationType::Snap, 412, 96, false, false, "#7c2d12"},
    MadeUp{"Letters", "12.4.0", ApplicationType::Flatpak, 655, 240, false, true, "#be123c"},
    MadeUp{"Mapmaker Studio", "2026.1", ApplicationType::Folder, 3820, 71, false, false, "#4d7c0f"},
    MadeUp{"Old Encyclopedia", "1.3", ApplicationType::App, 702, -1, false, false, "#6d28d9"},
    MadeUp{"Settings", "1:43.4-1", ApplicationType::Deb, 28.7, 2, true, false, "#334155"},
    MadeUp{"Terminal", "3.46.8-1", ApplicationType::Deb, 7.9, 0, false, false, "#111827"},
    MadeUp{"Tide Tables", "0.9.14", ApplicationType::AppImage, 96.2, 33, false, false, "#0369a1"},
    MadeUp{"Video Bench", "22.12", ApplicationType::Deb, 214, 12, false, false, "#9f1239"},
};

constexpr std::int64_t dayOfUse = 86'400'000'000'000;
constexpr std::int64_t today = 1'795'305'600'000'000'000;  // in November 2026

std::string drawIcon(const QTemporaryDir& folder, const MadeUp& from) {
    constexpr int side = 128, radius = 28;
    QImage icon(side, side, QImage::Format_ARGB32_Premultiplied);
    icon.fill(Qt::transparent);
    QPainter painter(&icon);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(QLatin1String(from.color)));
    painter.drawRoundedRect(icon.rect().adjusted(8, 8, -8, -8), radius, radius);
    QFont font = painter.font();
    font.setPixelSize(side / 2);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::white);
    painter.drawText(icon.rect(), Qt::AlignCenter, QString(QLatin1Char(from.name[0])));
    painter.end();
    const QString path = folder.filePath(QLatin1String(from.name) + QStringLiteral(".png"));
    icon.save(path);
    return path.toStdString();
}

std::shared_ptr<AppItems> made(const QTemporaryDir& folder, const MadeUp& from) {
    auto item = std::make_shared<AppItems>();
    ApplicationRecord record;
    record.type = from.type;
    record.id = record.name = from.name;
    record.path = std::string("/opt/applications/") + from.name;
    record.icon = drawIcon(folder, from);
    record.isSystem = from.isSystem;
    item->name = from.name;
    item->path = record.path;
    item->bundleVersion = from.version;
    item->date = Date{today - 500 * dayOfUse};
    item->isSystemApp = from.isSystem;
    item->bIsSelected = from.isTicked;
    item->record = std::make_shared<const ApplicationRecord>(std::move(record));
    return item;
}

ApplicationDetails measured(const ApplicationRecord& record) {
    ApplicationDetails details;
    for (const MadeUp& each : applications) {
        if (record.name != each.name) continue;
        details.bytes = static_cast<std::uint64_t>(each.megabytes * 1e6);
        details.isUpTo = each.type == ApplicationType::Flatpak;
        if (each.daysUnused >= 0) details.lastUse = today - each.daysUnused * dayOfUse;
    }
    return details;
}

Leftover leftover(const char* name, LeftoverGrade grade, std::uint64_t bytes,
                  std::uint64_t documents) {
    Leftover made;
    made.path = std::string("/home/anna/.var/app/org.example.Letters/") + name;
    made.grade = grade;
    made.bytes = bytes;
    made.preciousCount = documents;
    return made;
}

// What the question of two applications tells, and a removal of which one stays. It waits where it
// is to be seen at work.
class SampleWork final : public UninstallWork {
public:
    static inline std::atomic<bool> isHeld{false};

    UninstallOutlook forecast(const std::vector<AppItems>& items,
                              const std::atomic<bool>& /*stop*/) override {
        UninstallOutlook out;
        out.plan = std::make_shared<const UninstallPlan>();
        for (const AppItems& item : items) {
            UninstallForecast& each = out.apps.emplace_back();
            if (item.name == "Birdsong Recorder") {
                each.running = RunState::Yes;
                each.paths = {"/home/anna/Applications/Birdsong.AppImage",
                              "/home/anna/.local/share/applications/birdsong.desktop"};
            }
            if (item.name != "Letters") continue;
            each.goesAlong = {"org.example.Letters.Locale"};
            each.leftovers = {leftover("cache", LeftoverGrade::Certain, 182'400'000, 0),
                              leftover("data", LeftoverGrade::Likely, 1'204'000'000, 2)};
            each.leftovers.back().precious = {"mail/archive.mbox", "addresses.vcf"};
        }
        return out;
    }
    std::vector<UninstallResult> remove(const UninstallPlan& /*plan*/,
                                        const std::vector<UninstallRequest>& requests,
                                        ProgressBox& progress,
                                        const std::atomic<bool>& /*stop*/) override {
        std::vector<UninstallResult> out;
        for (const UninstallRequest& each : requests) {
            progress.setCurrent(each.item.name);
            const bool isGone = each.item.name != "Letters";
            out.push_back({isGone,
                           isGone ? "" : "The password was not given",
                           {},
                           isGone ? each.item.fileSizeNum : 0,
                           {}});
        }
        constexpr std::chrono::milliseconds pause(20);
        while (isHeld) std::this_thread::sleep_for(pause);
        return out;
    }
    bool askToQuit(const ApplicationRecord& /*record*/) override { return false; }
    RunState running(const ApplicationRecord& /*record*/) override { return RunState::Yes; }
};

struct Machine {
    LinuxFileSystem files;
    PageWorkings workings;
    QTemporaryDir folder;
};

UninstallPageParts partsOf(const Machine& machine) {
    UninstallPageParts parts;
    parts.inventory = [&machine](const UninstallPageParts::News& news) {
        AppItemsArray found;
        for (const MadeUp& each : applications) {
            found.push_back(made(machine.folder, each));
            if (found.size() == 1) news(found);
            constexpr std::chrono::milliseconds pause(20);
            while (SampleWork::isHeld) std::this_thread::sleep_for(pause);
        }
        return FoundApplications{found, {}};
    };
    parts.measure = [](const ApplicationRecord& record, const std::atomic<bool>& /*stop*/) {
        return measured(record);
    };
    parts.work = std::make_shared<SampleWork>();
    return parts;
}

bool isListed(const QWidget& window) {
    const auto* const table = window.findChild<TickOutline*>();
    if (table == nullptr || table->model()->rowCount() != int(applications.size())) return false;
    const auto* const first = table->model();
    return first->index(0, UninstallAppsModel::Size).data().toString() != QLatin1String("--");
}

bool saveSheet(const PictureFolder& pictures, const char* name, TCImageWindow& window,
               const char* button) {
    const auto sheet = [&] { return window.findChild<Sheet*>(); };
    const auto isOut = [&] {
        const auto* const waiting = window.findChild<QLabel*>(QStringLiteral("waitingLabel"));
        return sheet() != nullptr && sheet()->content()->y() == 0 &&
               (waiting == nullptr || waiting->isHidden());
    };
    if (!waitFor(name, isOut)) return false;
    window.activateWindow();
    QApplication::processEvents();
    if (!pictures.save(QLatin1String(name), window.grab())) return false;
    sheet()->findChild<QAbstractButton*>(QLatin1String(button))->click();
    return waitFor("the sheet to go", [&] { return sheet() == nullptr; });
}

bool drawLooking(const PictureFolder& pictures, TCImageWindow& window) {
    const auto hasFirst = [&] {
        const auto* const table = window.findChild<TickOutline*>();
        return table != nullptr && table->isVisible() && table->model()->rowCount() == 1;
    };
    const bool isDrawn = waitFor("the first application", hasFirst) &&
                         pictures.save(QStringLiteral("uninstall-looking"), window.grab());
    SampleWork::isHeld = false;
    return isDrawn;
}

bool drawFilter(const PictureFolder& pictures, TCImageWindow& window) {
    auto* const field = window.findChild<QLineEdit*>(QStringLiteral("filterField"));
    field->setText(QStringLiteral("zither"));
    const bool isDrawn = pictures.save(QStringLiteral("uninstall-nothing-found"), window.grab());
    field->clear();
    return isDrawn;
}

bool drawRemoval(const PictureFolder& pictures, TCImageWindow& window) {
    const auto button = [&](const char* name) {
        return window.findChild<QAbstractButton*>(QLatin1String(name));
    };
    const auto mayAgree = [&] {
        return button("uninstallYes") != nullptr && button("uninstallYes")->isEnabled();
    };
    button("uninstallButton")->click();
    if (!waitFor("the question", mayAgree)) return false;
    SampleWork::isHeld = true;
    button("uninstallYes")->click();
    const auto isAtWork = [&] {
        const auto* const said = window.findChild<QLabel*>(QStringLiteral("uninstallTextField"));
        return window.findChild<Sheet*>() == nullptr && button("stopButton")->isVisible() &&
               said->text().contains(QLatin1String("Letters"));
    };
    const bool isDrawn = waitFor("the removal", isAtWork) &&
                         pictures.save(QStringLiteral("uninstall-removal"), window.grab());
    SampleWork::isHeld = false;
    const auto isQuiet = [patience = QDeadlineTimer(400)] { return patience.hasExpired(); };
    return isDrawn && waitFor("its end", [&] { return !button("stopButton")->isVisible(); }) &&
           waitFor("the pictures of further rows", isQuiet) &&
           pictures.save(QStringLiteral("uninstall-failure"), window.grab());
}

}  // namespace

bool drawUninstall(UserDefaults& defaults, const PictureFolder& pictures,
                   const QSet<QString>& wanted) {
    if (!wanted.isEmpty() && !wanted.contains(QStringLiteral("uninstall"))) return true;
    Machine& machine = *new Machine;
    AppPrefsWindowController controller;
    controller.registerPage(
        uninstallPage(machine.workings.parts(machine.files, defaults), partsOf(machine)));
    SampleWork::isHeld = true;
    controller.showWindow();
    TCImageWindow& window = *controller.window();
    window.activateWindow();
    if (!drawLooking(pictures, window)) return false;
    if (!waitFor("the applications", [&] { return isListed(window); })) return false;
    const auto isQuiet = [patience = QDeadlineTimer(400)] { return patience.hasExpired(); };
    if (!waitFor("the pictures", isQuiet)) return false;
    if (!pictures.save(QStringLiteral("uninstall-list"), window.grab())) return false;
    auto* const table = window.findChild<TickOutline*>();
    Q_EMIT table->clicked(table->model()->index(0, UninstallAppsModel::View));
    if (!saveSheet(pictures, "uninstall-details", window, "okButton")) return false;
    window.findChild<QAbstractButton*>(QStringLiteral("uninstallButton"))->click();
    if (!saveSheet(pictures, "uninstall-question", window, "cancelButton")) return false;
    if (!drawFilter(pictures, window) || !drawRemoval(pictures, window)) return false;
    constexpr QSize wide(1200, 620);
    window.resize(wide);
    const auto isDrawn = [patience = QDeadlineTimer(400)] { return patience.hasExpired(); };
    if (!waitFor("the pictures of further rows", isDrawn)) return false;
    return pictures.save(QStringLiteral("uninstall-wide"), window.grab());
}

}  // namespace orrinvale
