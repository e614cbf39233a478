// How long the window stands still: the real page on real files, driven by clicks, with the
// program's own counter of stalls. Makes a folder of duplicates, searches it, and then opens,
// sorts, ticks, scrolls and removes. Windows are drawn offscreen. The large file page and the page
// of disk usage follow on a folder of their own, the preview on a folder of pictures, and the
// cleaning page in a home of its own.
//     window-bench [--groups N] [--leaves N] [--entries N] [--rows N] [--terminal PROGRAM]
//                  [--pictures N] [--at FOLDER] [--scan FOLDER] [--json]
// Ends with 1 when a step stands still for longer than the bar, or redraws too rarely.
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QHeaderView>
#include <QTemporaryDir>
#include <functional>

#include "CleanPageSteps.h"
#include "LargePageSteps.h"
#include "PreviewSteps.h"
#include "UsagePageSteps.h"
#include "WindowSteps.h"
#include "engine/base/Log.h"
#include "engine/base/NotificationCenter.h"
#include "engine/cleaning/QnAuthorization.h"
#include "engine/largefiles/Controller.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/UserDefaults.h"
#include "platform/linux/LinuxAuthorization.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxPermissions.h"
#include "services/foundation/QtMainQueue.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/DuplicationLeftCell.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/look/Theme.h"
#include "ui/shell/DuplicateMainWindowController.h"
#include "ui/shell/FileIcons.h"
#include "ui/shell/MyNSApplication.h"

namespace orrinvale {
namespace {

struct Setting {
    std::size_t groups = 60'000;
    std::size_t leaves = 200'000;
    std::size_t entries = 1'000'000;
    std::size_t rows = 20'000;
    std::size_t pictures = 10'000;
    std::string at;
    std::string scan;
    std::string terminal;
    bool json = false;
};

// Groups of equal small files, spread over the six types of the page and over folders of a thousand
// files.
bool makeFiles(const std::string& root, const Setting& setting) {
    constexpr std::array<const char*, 6> extensions{"jpg", "pdf", "mkv", "mp3", "zip", "dat"};
    constexpr std::size_t inFolder = 1000;
    std::size_t made = 0;
    for (std::size_t group = 0; group < setting.groups; ++group) {
        std::string bytes = fmt::format("group {} ", group);
        bytes.resize(bytes.size() + group * 7919 % 3000, '.');
        const std::size_t end = (group + 1) * setting.leaves / setting.groups;
        for (; made < end; ++made) {
            const std::string folder = fmt::format("{}/folder {}", root, made / inFolder);
            if (made % inFolder == 0 && ::mkdir(folder.c_str(), 0755) != 0) return false;
            const std::string path =
                fmt::format("{}/{:x} {}.{}", folder, made * 2'654'435'761U % 1'000'003U, made,
                            extensions[group % extensions.size()]);
            const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
            const bool written =
                file >= 0 && ::write(file, bytes.data(), bytes.size()) == ssize_t(bytes.size());
            if (file >= 0) ::close(file);
            if (!written) return false;
        }
    }
    return true;
}

class Bench final {
public:
    Bench(const Setting& setting, const std::string& folder, WindowSteps& steps)
        : m_setting(setting),
          m_folder(folder),
          m_steps(steps),
          m_services({.files = &m_files,
                      .notifications = &m_notifications,
                      .defaults = &UserDefaults::standardUserDefaults(),
                      .dialogs = &m_dialogs,
                      .mainQueue = &m_mainQueue,
                      .stateFolder = {},
                      .icons = [this](const IconRequest& request) { return m_icons.icon(request); },
                      .reveal = {},
                      .openAddress = {}}),
          m_window(m_services, m_icons) {
        QnAuthorization::shareQnAuthorization().setParts({.authorization = &m_authorization,
                                                          .files = &m_files,
                                                          .permissions = &m_permissions,
                                                          .ownFiles = {}});
        Controller::getController().setParts({.files = &m_files,
                                              .mainQueue = &m_mainQueue,
                                              .ownFiles = {},
                                              .reveal = {},
                                              .openFolder = {}});
        m_window.showWindow();
        m_outline = m_window.sameFileDeleteVC()->detailView()->findChild<ResultOutline*>(
            QStringLiteral("outline"));
    }

    ~Bench() { Controller::getController().setParts({}); }
    Bench(const Bench&) = delete;
    Bench& operator=(const Bench&) = delete;

    void run() {
        if (!m_setting.scan.empty()) search("search of the given folder", m_setting.scan);
        search("search and open", m_folder);
        sort("closed");
        m_steps.step("expand all", [this] { m_outline->expandAll(); });
        m_steps.scroll("scroll, all open", *m_outline);
        sort("open");
        tick();
        for (std::int32_t row = 1; row <= 7; ++row) switchTo(row % 7);
        m_steps.step("collapse all", [this] { m_outline->collapseAll(); });
        m_steps.scroll("scroll, closed", *m_outline);
        remove();
        search("search again", m_folder);
        if (m_setting.pictures != 0) runPreviewSteps(m_steps, m_window, m_folder + " pictures");
        if (m_setting.entries != 0) runLargePageSteps(m_steps, m_window, m_folder + " entries");
        if (m_setting.entries != 0) runUsagePageSteps(m_steps, m_services, m_folder + " entries");
        if (m_setting.rows != 0)
            runCleanPageSteps(m_steps, m_services, m_folder + " home", m_setting.terminal);
        m_steps.step("close", [this] { m_window.closeWindow(); });
    }

private:
    SameFileDeleteViewController& page() { return *m_window.sameFileDeleteVC(); }

    void search(const std::string& name, const std::string& folder) {
        m_steps.step(
            name, [&] { page().viewDragAction(folder); },
            [this] { return page().bSearchFinished(); });
    }

    void sort(const std::string& state) {
        using Model = DuplicateResultModel;
        for (const auto& [column, key] : {std::pair(Model::NameColumn, "name"),
                                          {Model::FileSize, "size"},
                                          {Model::ModifyDate, "date"}})
            for (const char* const direction : {"up", "down"})
                m_steps.step(fmt::format("sort by {} {}, {}", key, direction, state),
                             [this, section = column] {
                                 QHeaderView& header = *m_outline->header();
                                 WindowSteps::click(*header.viewport(),
                                                    {header.sectionViewportPosition(section) +
                                                         header.sectionSize(section) / 2,
                                                     header.height() / 2});
                             });
    }

    void clickBox(const QModelIndex& group) {
        m_outline->scrollTo(group);
        WindowSteps::click(
            *m_outline->viewport(),
            m_outline->visualRect(group.siblingAtColumn(DuplicateResultModel::Checkbox)).center());
    }

    void tick() {
        const auto header = [this] { m_outline->headerBox()->click(); };
        QAbstractItemModel& model = *m_outline->model();
        m_steps.step("tick all by the header box", header);
        m_steps.step("clear a group", [&] { clickBox(model.index(0, 0)); });
        m_steps.step("tick a group", [&] { clickBox(model.index(0, 0)); });
        m_steps.step("clear a leaf", [&] { clickBox(model.index(0, 0, model.index(0, 0))); });
        m_steps.step("clear all by the header box", header);
        m_steps.step("tick all again", header);
        m_steps.step("clear all again", header);
    }

    void switchTo(std::int32_t row) {
        m_steps.step(fmt::format("switch to view {}", row), [this, row] {
            for (auto* const cell : page().detailView()->findChildren<DuplicationLeftCell*>())
                if (cell->rowViewNum() == row) WindowSteps::click(*cell, cell->rect().center());
        });
    }

    // All copies but one of each group of pictures.
    void remove() {
        switchTo(5);
        m_outline->headerBox()->click();
        auto* const button =
            page().detailView()->findChild<QAbstractButton*>(QStringLiteral("stopBtn"));
        const int before = leaves();
        bool begun = false;
        m_steps.step(
            "remove", [&] { button->click(); },
            [&] {
                begun = begun || !page().bSearchFinished();
                return begun && page().bSearchFinished();
            });
        m_steps.rows.back().step = fmt::format("remove {} files", before - leaves());
        switchTo(0);
    }

    int leaves() const {
        const QAbstractItemModel& model = *m_outline->model();
        int count = 0;
        for (int row = 0; row < model.rowCount(); ++row)
            count += model.rowCount(model.index(row, 0)) - 1;
        return count;
    }

    const Setting& m_setting;
    const std::string m_folder;
    WindowSteps& m_steps;
    LinuxFileSystem m_files;
    LinuxPermissions m_permissions;
    LinuxAuthorization m_authorization;
    NotificationCenter m_notifications;
    QtMainQueue m_mainQueue;
    Agreeing m_dialogs;
    FileIcons m_icons;
    const PageServices m_services;
    DuplicateMainWindowController m_window;
    ResultOutline* m_outline = nullptr;
};

Setting settingFrom(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.addHelpOption();
    const auto add = [&](const char* name, const QString& what, const QString& value,
                         const QString& usual) {
        parser.addOption({QString::fromLatin1(name), what, value, usual});
    };
    add("groups", QStringLiteral("groups of equal files"), QStringLiteral("N"),
        QStringLiteral("60000"));
    add("leaves", QStringLiteral("files in all groups together"), QStringLiteral("N"),
        QStringLiteral("200000"));
    add("entries", QStringLiteral("files for the large file page"), QStringLiteral("N"),
        QStringLiteral("1000000"));
    add("rows", QStringLiteral("rows of the cleaning page, fifteen files each"),
        QStringLiteral("N"), QStringLiteral("20000"));
    add("pictures", QStringLiteral("rows of the list of pictures beside a preview"),
        QStringLiteral("N"), QStringLiteral("10000"));
    add("terminal", QStringLiteral("orrinvale-cli, to clean beside the page"),
        QStringLiteral("PROGRAM"), {});
    add("at", QStringLiteral("where the files are made"), QStringLiteral("FOLDER"),
        QDir::tempPath());
    add("scan", QStringLiteral("a folder to search first; it is left alone"),
        QStringLiteral("FOLDER"), {});
    parser.addOption({QStringLiteral("json"), QStringLiteral("print JSON")});
    parser.process(application);
    Setting setting;
    setting.groups = parser.value(QStringLiteral("groups")).toULongLong();
    setting.leaves = parser.value(QStringLiteral("leaves")).toULongLong();
    setting.entries = parser.value(QStringLiteral("entries")).toULongLong();
    setting.rows = parser.value(QStringLiteral("rows")).toULongLong();
    setting.pictures = parser.value(QStringLiteral("pictures")).toULongLong();
    setting.terminal = parser.value(QStringLiteral("terminal")).toStdString();
    setting.at = parser.value(QStringLiteral("at")).toStdString();
    setting.scan = parser.value(QStringLiteral("scan")).toStdString();
    setting.json = parser.isSet(QStringLiteral("json"));
    return setting;
}

int runBench(int argc, char** argv) {
    MyNSApplication application(argc, argv);
    const Setting setting = settingFrom(application);
    if (setting.groups == 0 || setting.leaves < 2 * setting.groups) {
        std::fputs("window-bench: every group needs two files\n", stderr);
        return 2;
    }
    const QTemporaryDir folder(QString::fromStdString(setting.at) +
                               QStringLiteral("/orrinvale-window-bench-XXXXXX"));
    const std::string settings = folder.filePath(QStringLiteral("settings")).toStdString();
    const std::string corpus = folder.filePath(QStringLiteral("files")).toStdString();
    if (!folder.isValid() || ::mkdir(settings.c_str(), 0755) != 0 ||
        ::mkdir(corpus.c_str(), 0755) != 0 || !makeFiles(corpus, setting) ||
        (setting.entries != 0 && !makeEntries(corpus + " entries", setting.entries)) ||
        (setting.pictures != 0 && !makePictures(corpus + " pictures", setting.pictures)) ||
        (setting.rows != 0 && !makeCleanHome(corpus + " home", setting.rows))) {
        std::fputs("window-bench: the files can not be made\n", stderr);
        return 2;
    }
    ::setenv("XDG_CONFIG_HOME", settings.c_str(), 1);
    Theme::shared().install(application);
    PreferenceViewController::initialize();
    WindowSteps steps;
    if (!steps.counterWorks()) {
        std::fputs("window-bench: the counter does not see stalls\n", stderr);
        return 2;
    }
    Bench(setting, corpus, steps).run();
    print(steps.rows, setting.json);
    return std::any_of(steps.rows.begin(), steps.rows.end(), isOver) ? 1 : 0;
}

}  // namespace
}  // namespace orrinvale

int main(int argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    orrinvale::Log::setEnabled(false);
    return orrinvale::runBench(argc, argv);
}
