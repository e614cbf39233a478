// The gallery: a window with every control in every state, or the same and the pages as pictures in
// a folder.
#include <QApplication>
#include <QCommandLineParser>
#include <QHBoxLayout>
#include <QScrollArea>
#include <QShortcut>
#include <array>
#include <cstdio>
#include <optional>
#include <string_view>

#include "engine/base/NotificationCenter.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "gallery/CleanScenes.h"
#include "gallery/ControlSheet.h"
#include "gallery/DiskUsageScenes.h"
#include "gallery/DuplicateScenes.h"
#include "gallery/FastCleanScenes.h"
#include "gallery/LargeFileScenes.h"
#include "gallery/LoginItemScenes.h"
#include "gallery/MemoryScenes.h"
#include "gallery/PreferenceScenes.h"
#include "gallery/ProgramScenes.h"
#include "gallery/SampleFolder.h"
#include "gallery/UninstallScenes.h"
#include "gallery/UpdateScenes.h"
#include "gallery/VolumeScenes.h"
#include "gallery/drawToolbar.h"
#include "gallery/drawing.h"
#include "platform/linux/LinuxSystem.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/chrome/TitleBarView.h"
#include "ui/kit/chrome/ToplineView.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/Translations.h"

namespace orrinvale {
namespace {

struct Order {
    QString folder;
    bool isDark = false;
    bool isLarge = false;  // twice the pixels
    QString language;      // empty for English
};

void toggleScheme() {
    Theme& theme = Theme::shared();
    theme.setScheme(theme.scheme() == Theme::Scheme::Light ? Theme::Scheme::Dark
                                                           : Theme::Scheme::Light);
}

int showGallery(NotificationCenter& notifications) {
    TCImageWindow window;
    window.setWindowTitle(QStringLiteral("Controls"));
    window.setMinSize({600, 400});
    new ToplineView(window.titleBarView());
    auto* const scheme = new HoverButton;
    scheme->setText(QStringLiteral("Light or Dark"));
    auto* const bar = new QHBoxLayout(window.titleBarView());
    bar->setContentsMargins(0, 0, Theme::gapSmall, 0);
    bar->addStretch();
    bar->addWidget(scheme);
    QObject::connect(scheme, &QAbstractButton::clicked, &window, toggleScheme);
    auto* const area = new QScrollArea;
    area->setFrameShape(QFrame::NoFrame);
    area->setWidget(new ControlSheet(notifications));
    window.setContentView(area);
    constexpr QSize usual{1160, 760};
    window.setContentSize(usual);
    window.show();
    return QApplication::exec();
}

bool drawSheet(const PictureFolder& pictures, NotificationCenter& notifications) {
    ControlSheet sheet(notifications);
    sheet.show();
    QApplication::processEvents();
    return pictures.save(QStringLiteral("controls"), sheet.grab());
}

// The pages in full in one look; of the other looks those that tell most.
QSet<QString> wantedScenes(const Order& order) {
    if (!order.isDark && !order.isLarge) return {};
    if (order.isDark && !order.isLarge)
        return {QStringLiteral("first"),       QStringLiteral("progress"),
                QStringLiteral("detail"),      QStringLiteral("question"),
                QStringLiteral("folders"),     QStringLiteral("list"),
                QStringLiteral("partly"),      QStringLiteral("failure"),
                QStringLiteral("menu"),        QStringLiteral("free-space"),
                QStringLiteral("tray-menu"),   QStringLiteral("uninstall"),
                QStringLiteral("preferences"), QStringLiteral("memory"),
                QStringLiteral("login-items"), QStringLiteral("computer"),
                QStringLiteral("pane"),        QStringLiteral("changes"),
                QStringLiteral("map-changes"), QStringLiteral("trash-question"),
                QStringLiteral("history"),     QStringLiteral("plan")};
    return {QStringLiteral("first"), QStringLiteral("detail"), QStringLiteral("pane")};
}

// On a folder of its own, since pages remove things, and with settings of its own.
template <class Draw> bool drawWithSample(Draw draw) {
    const SampleFolder sample;
    if (!sample.failure().empty()) {
        std::fprintf(stderr, "orrinvale-gallery: %s\n", sample.failure().c_str());
        return false;
    }
    UserDefaults defaults(sample.settings());
    UserDefaults::setStandardUserDefaults(&defaults);
    PreferenceViewController::initialize();
    const bool isDrawn = draw(sample, defaults);
    UserDefaults::setStandardUserDefaults(nullptr);
    return isDrawn;
}

template <class Scenes> bool drawPage(const Order& order, const PictureFolder& pictures) {
    return drawWithSample([&](const SampleFolder& sample, UserDefaults& defaults) {
        return Scenes(sample, defaults, pictures, wantedScenes(order)).draw();
    });
}

bool drawProgram(const Order& order, const PictureFolder& pictures) {
    return drawWithSample([&](const SampleFolder& /*sample*/, UserDefaults& defaults) {
        return drawToolbar(defaults, pictures) &&
               drawVolumes(defaults, pictures, wantedScenes(order)) &&
               drawUninstall(defaults, pictures, wantedScenes(order)) &&
               drawLoginItems(defaults, pictures, wantedScenes(order)) &&
               drawPreferences(defaults, pictures, wantedScenes(order)) &&
               drawMemory(defaults, pictures, wantedScenes(order)) &&
               drawUpdates(pictures, wantedScenes(order)) &&
               ProgramScenes(defaults, pictures, wantedScenes(order)).draw();
    });
}

int drawGallery(const Order& order, NotificationCenter& notifications) {
    const QString language =
        order.language.isEmpty() ? QString() : QLatin1Char('-') + order.language;
    const PictureFolder pictures(order.folder, language +
                                                   QLatin1String(order.isDark ? "-dark" : "") +
                                                   QLatin1String(order.isLarge ? "@2x" : ""));
    if (!drawSheet(pictures, notifications)) return 1;
    if (order.isDark && order.isLarge) return 0;
    const bool isDrawn =
        drawPage<DuplicateScenes>(order, pictures) && drawPage<LargeFileScenes>(order, pictures) &&
        drawPage<DiskUsageScenes>(order, pictures) && drawPage<CleanScenes>(order, pictures) &&
        drawPage<FastCleanScenes>(order, pictures) && drawProgram(order, pictures);
    return isDrawn ? 0 : 1;
}

std::string_view valueAfter(int argc, char** argv, std::string_view option) {
    for (int i = 1; i + 1 < argc; ++i)
        if (argv[i] == option) return argv[i + 1];
    return {};
}

// Before Qt starts, which reads these once: the same letters, dates and pixels on every machine.
void fixSurroundings(int argc, char** argv) {
    const bool isGerman = valueAfter(argc, argv, "--language") == "de";
    const std::array<std::pair<const char*, const char*>, 7> fixed{
        {{"QT_QPA_PLATFORM", "offscreen"},
         {"QT_FONT_DPI", "96"},
         {"LC_ALL", isGerman ? "de_DE.UTF-8" : "en_GB.UTF-8"},
         {"LANGUAGE", ""},
         {"TZ", "UTC"},
         {"ORRINVALE_SYSTEM_FRAME", "0"},
         {"ORRINVALE_STALLS", "0"}}};
    for (const auto& [name, value] : fixed) qputenv(name, value);
    qputenv("QT_SCALE_FACTOR", valueAfter(argc, argv, "--scale") == "2" ? "2" : "1");
    qputenv("ORRINVALE_THEME", valueAfter(argc, argv, "--scheme") == "dark" ? "dark" : "light");
}

// None for what nobody can draw; standard error says why.
std::optional<Order> readOrder(const QCoreApplication& application) {
    QCommandLineParser parser;
    const QCommandLineOption draw(QStringLiteral("draw"),
                                  QStringLiteral("Write pictures into FOLDER."),
                                  QStringLiteral("FOLDER"));
    const QCommandLineOption scheme(QStringLiteral("scheme"), QStringLiteral("light or dark."),
                                    QStringLiteral("SCHEME"), QStringLiteral("light"));
    const QCommandLineOption scale(QStringLiteral("scale"), QStringLiteral("1 or 2."),
                                   QStringLiteral("SCALE"), QStringLiteral("1"));
    const QCommandLineOption language(QStringLiteral("language"),
                                      QStringLiteral("en or de; of the pictures."),
                                      QStringLiteral("LANGUAGE"), QStringLiteral("en"));
    parser.addOptions({draw, scheme, scale, language});
    parser.addHelpOption();
    parser.process(application);
    const QStringList schemes{QStringLiteral("light"), QStringLiteral("dark")};
    const QStringList scales{QStringLiteral("1"), QStringLiteral("2")};
    const QStringList languages{QStringLiteral("en"), QStringLiteral("de")};
    if (!parser.positionalArguments().isEmpty() || !schemes.contains(parser.value(scheme)) ||
        !scales.contains(parser.value(scale)) || !languages.contains(parser.value(language))) {
        std::fputs("orrinvale-gallery: see --help\n", stderr);
        return std::nullopt;
    }
    return Order{
        .folder = parser.value(draw),
        .isDark = parser.value(scheme) == schemes.last(),
        .isLarge = parser.value(scale) == scales.last(),
        .language = parser.value(language) == languages.last() ? languages.last() : QString()};
}

int run(int argc, char** argv) {
    if (!valueAfter(argc, argv, "--draw").empty()) fixSurroundings(argc, argv);
    const QApplication application(argc, argv);
    QCoreApplication::setApplicationVersion(QStringLiteral(ORRINVALE_VERSION));
    const auto order = readOrder(application);
    if (!order) return 2;
    const Translations translations;
    if (!order->folder.isEmpty() && translations.language() != order->language) {
        std::fputs("orrinvale-gallery: the translation is not built here\n", stderr);
        return 1;
    }
    Theme::shared().setScheme(Theme::desktopScheme());
    Theme::shared().install(*qApp);
    NotificationCenter notifications;
    UtilityFunction::getMyFunction().setNotificationCenter(&notifications);
    return order->folder.isEmpty() ? showGallery(notifications)
                                   : drawGallery(*order, notifications);
}

}  // namespace
}  // namespace orrinvale

int main(int argc, char** argv) {
    static const orrinvale::LinuxSystem system;
    orrinvale::UtilityFunction::getMyFunction().setSystem(&system);
    return orrinvale::run(argc, argv);
}
