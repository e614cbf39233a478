// How long the window stands still: the real page on real files, driven by clicks, with the program's own counter of stalls.
// Makes a folder of duplicates, searches it, and then opens, sorts, ticks, scrolls and removes. Windows are drawn offscreen.
//     window-bench [--groups N] [--leaves N] [--at FOLDER] [--scan FOLDER] [--json]
// Ends with 1 when a step stands still for longer than the bar, or redraws too rarely.
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QHeaderView>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>
#include <chrono>
#include <functional>
#include <thread>

#include "engine/base/Log.h"
#include "engine/base/NotificationCenter.h"
#include "engine/cleaning/QnAuthorization.h"
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
#include "ui/kit/controls/TickBox.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/look/Theme.h"
#include "ui/shell/DuplicateMainWindowController.h"
#include "ui/shell/FileIcons.h"
#include "ui/shell/MyNSApplication.h"
#include "ui/shell/StallCounter.h"

namespace orrinvale {
namespace {

constexpr qint64 longestStall = 50;   // milliseconds
constexpr double fewestRedraws = 60;  // a second

struct Setting {
    std::size_t groups = 60'000;
    std::size_t leaves = 200'000;
    std::string at;
    std::string scan;
    bool json = false;
};

// Groups of equal small files, spread over the six types of the page and over folders of a thousand files.
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
            const std::string path = fmt::format("{}/{:x} {}.{}", folder, made * 2'654'435'761U % 1'000'003U, made,
                                                 extensions[group % extensions.size()]);
            const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
            const bool written = file >= 0 && ::write(file, bytes.data(), bytes.size()) == ssize_t(bytes.size());
            if (file >= 0) ::close(file);
            if (!written) return false;
        }
    }
    return true;
}

/// Agrees to every question, from the event loop, as a person would.
class Agreeing final : public Dialogs {
public:
    void alert(QWidget* /*window*/, const Alert& /*alert*/, Answer answered) override {
        QTimer::singleShot(0, &m_context, [answered = std::move(answered)] { answered(0); });
    }
    void choosePaths(QWidget* /*window*/, const PathChoice& /*choice*/, Paths chosen) override {
        QTimer::singleShot(0, &m_context, [chosen = std::move(chosen)] { chosen({}); });
    }

private:
    QObject m_context;
};

struct Row {
    std::string step;
    qint64 longest = 0;  // milliseconds
    qint64 total = 0;    // milliseconds until the step was over
    qint64 busy = 0;     // milliseconds of processor time on the main thread, which other programs do not stretch
    double redraws = 0;  // a second; 0 where nothing was scrolled
};

class Bench final {
public:
    Bench(const Setting& setting, const std::string& folder)
        : m_setting(setting),
          m_folder(folder),
          m_window({.files = &m_files,
                    .notifications = &m_notifications,
                    .defaults = &UserDefaults::standardUserDefaults(),
                    .dialogs = &m_dialogs,
                    .mainQueue = &m_mainQueue,
                    .icons = [this](const IconRequest& request) { return m_icons.icon(request); },
                    .reveal = {},
                    .openAddress = {}},
                   m_icons) {
        QnAuthorization::shareQnAuthorization().setParts(
            {.authorization = &m_authorization, .files = &m_files, .permissions = &m_permissions, .ownFiles = {}});
        m_window.showWindow();
        m_outline = m_window.sameFileDeleteVC()->detailView()->findChild<ResultOutline*>(QStringLiteral("outline"));
    }

    /// False when the counter does not see work that holds the loop up, whatever kind of event it comes with.
    bool counterWorks() {
        constexpr std::chrono::milliseconds held{60};
        const auto hold = [held] { std::this_thread::sleep_for(held); };
        pass(50);
        static_cast<void>(m_stalls.takeLongest());
        QTimer::singleShot(1, &m_context, hold);
        pass(100);
        const qint64 byTimer = m_stalls.takeLongest();
        QMetaObject::invokeMethod(&m_context, hold, Qt::QueuedConnection);
        pass(100);
        const qint64 byPost = m_stalls.takeLongest();
        pass(200);
        return byTimer >= held.count() && byPost >= held.count() && m_stalls.takeLongest() < held.count();
    }

    void run() {
        if (!m_setting.scan.empty()) search("search of the given folder", m_setting.scan);
        search("search and open", m_folder);
        sort("closed");
        step("expand all", [this] { m_outline->expandAll(); });
        scroll("scroll, all open");
        sort("open");
        tick();
        for (std::int32_t row = 1; row <= 7; ++row) switchTo(row % 7);
        step("collapse all", [this] { m_outline->collapseAll(); });
        scroll("scroll, closed");
        remove();
        search("search again", m_folder);
        step("close", [this] { m_window.closeWindow(); });
    }

    [[nodiscard]] const std::vector<Row>& rows() const { return m_rows; }

private:
    SameFileDeleteViewController& page() { return *m_window.sameFileDeleteVC(); }

    void pass(int milliseconds) {
        QEventLoop loop;
        QTimer::singleShot(milliseconds, &loop, [&loop] { loop.quit(); });
        loop.exec();
    }

    // The action runs as an event of its own; what it asks to be drawn follows before the step is over.
    void step(
        const std::string& name, const std::function<void()>& action,
        const std::function<bool()>& isOver = [] { return true; }) {
        pass(150);
        static_cast<void>(m_stalls.takeLongest());
        QElapsedTimer clock;
        clock.start();
        const qint64 busyBefore = busy();
        bool begun = false;
        QTimer::singleShot(0, &m_context, [&] {
            action();
            // Behind the clicks that the action has posted.
            QMetaObject::invokeMethod(
                &m_context, [&] { begun = true; }, Qt::QueuedConnection);
        });
        while (!begun || !isOver()) pass(1);
        const qint64 total = clock.elapsed();
        pass(150);
        m_rows.push_back({name, m_stalls.takeLongest(), total, busy() - busyBefore, 0});
    }

    static qint64 busy() {
        timespec now{};
        ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
        return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
    }

    void search(const std::string& name, const std::string& folder) {
        step(
            name, [&] { page().viewDragAction(folder); }, [this] { return page().bSearchFinished(); });
    }

    static void click(QWidget& widget, QPoint position) {
        const QPointF local(position);
        const QPointF global(widget.mapToGlobal(position));
        for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
            QCoreApplication::postEvent(
                &widget, new QMouseEvent(type, local, global, Qt::LeftButton,
                                         type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, {}));
    }

    void sort(const std::string& state) {
        using Model = DuplicateResultModel;
        for (const auto& [column, key] :
             {std::pair(Model::NameColumn, "name"), {Model::FileSize, "size"}, {Model::ModifyDate, "date"}})
            for (const char* const direction : {"up", "down"})
                step(fmt::format("sort by {} {}, {}", key, direction, state), [this, section = column] {
                    QHeaderView& header = *m_outline->header();
                    click(*header.viewport(),
                          {header.sectionViewportPosition(section) + header.sectionSize(section) / 2,
                           header.height() / 2});
                });
    }

    void clickBox(const QModelIndex& group) {
        m_outline->scrollTo(group);
        click(*m_outline->viewport(),
              m_outline->visualRect(group.siblingAtColumn(DuplicateResultModel::Checkbox)).center());
    }

    void tick() {
        const auto header = [this] { m_outline->headerBox()->click(); };
        QAbstractItemModel& model = *m_outline->model();
        step("tick all by the header box", header);
        step("clear a group", [&] { clickBox(model.index(0, 0)); });
        step("tick a group", [&] { clickBox(model.index(0, 0)); });
        step("clear a leaf", [&] { clickBox(model.index(0, 0, model.index(0, 0))); });
        step("clear all by the header box", header);
        step("tick all again", header);
        step("clear all again", header);
    }

    void switchTo(std::int32_t row) {
        step(fmt::format("switch to view {}", row), [this, row] {
            for (auto* const cell : page().detailView()->findChildren<DuplicationLeftCell*>())
                if (cell->rowViewNum() == row) click(*cell, cell->rect().center());
        });
    }

    // The whole list goes by, so that every redraw draws other rows.
    void scroll(const std::string& name) {
        constexpr int redraws = 300;
        QScrollBar& bar = *m_outline->verticalScrollBar();
        int drawn = 0;
        QElapsedTimer clock;
        QTimer frames;
        frames.setInterval(0);
        QObject::connect(&frames, &QTimer::timeout, m_outline, [&] {
            bar.setValue(static_cast<int>(std::int64_t{bar.maximum()} * drawn / redraws));
            m_outline->viewport()->repaint();
            if (++drawn == redraws) frames.stop();
        });
        step(
            name,
            [&] {
                clock.start();
                frames.start();
            },
            [&] { return drawn == redraws; });
        m_rows.back().redraws = redraws * 1000.0 / static_cast<double>(m_rows.back().total);
        bar.setValue(0);
    }

    // All copies but one of each group of pictures.
    void remove() {
        switchTo(5);
        m_outline->headerBox()->click();
        auto* const button = page().detailView()->findChild<QAbstractButton*>(QStringLiteral("stopBtn"));
        const int before = leaves();
        bool begun = false;
        step(
            "remove", [&] { button->click(); },
            [&] {
                begun = begun || !page().bSearchFinished();
                return begun && page().bSearchFinished();
            });
        m_rows.back().step = fmt::format("remove {} files", before - leaves());
        switchTo(0);
    }

    int leaves() const {
        const QAbstractItemModel& model = *m_outline->model();
        int count = 0;
        for (int row = 0; row < model.rowCount(); ++row) count += model.rowCount(model.index(row, 0)) - 1;
        return count;
    }

    const Setting& m_setting;
    const std::string m_folder;
    StallCounter m_stalls{false};
    LinuxFileSystem m_files;
    LinuxPermissions m_permissions;
    LinuxAuthorization m_authorization;
    NotificationCenter m_notifications;
    QtMainQueue m_mainQueue;
    Agreeing m_dialogs;
    FileIcons m_icons;
    DuplicateMainWindowController m_window;
    ResultOutline* m_outline = nullptr;
    QObject m_context;
    std::vector<Row> m_rows;
};

bool isOver(const Row& row) { return row.longest > longestStall || (row.redraws != 0 && row.redraws < fewestRedraws); }

void print(const std::vector<Row>& rows, bool asJson) {
    std::string text;
    for (const Row& row : rows) {
        if (asJson)
            text += fmt::format(
                R"({}{{"step":"{}","longest_ms":{},"total_ms":{},"busy_ms":{},"redraws_per_second":{:.0f},"over":{}}})",
                text.empty() ? "[" : ",\n ", row.step, row.longest, row.total, row.busy, row.redraws, isOver(row));
        else
            text +=
                fmt::format("{:<32}{:>8} ms{:>8} ms{:>8} ms{:>10}{}\n", row.step, row.longest, row.total, row.busy,
                            row.redraws == 0 ? "" : fmt::format("{:.0f}/s", row.redraws), isOver(row) ? "  over" : "");
    }
    if (asJson) text += "]\n";
    else text.insert(0, fmt::format("{:<32}{:>11}{:>11}{:>11}{:>10}\n", "step", "longest", "total", "busy", "redraws"));
    std::fputs(text.c_str(), stdout);
}

Setting settingFrom(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.addHelpOption();
    const auto add = [&](const char* name, const QString& what, const QString& value, const QString& usual) {
        parser.addOption({QString::fromLatin1(name), what, value, usual});
    };
    add("groups", QStringLiteral("groups of equal files"), QStringLiteral("N"), QStringLiteral("60000"));
    add("leaves", QStringLiteral("files in all groups together"), QStringLiteral("N"), QStringLiteral("200000"));
    add("at", QStringLiteral("where the files are made"), QStringLiteral("FOLDER"), QDir::tempPath());
    add("scan", QStringLiteral("a folder to search first; it is left alone"), QStringLiteral("FOLDER"), {});
    parser.addOption({QStringLiteral("json"), QStringLiteral("print JSON")});
    parser.process(application);
    Setting setting;
    setting.groups = parser.value(QStringLiteral("groups")).toULongLong();
    setting.leaves = parser.value(QStringLiteral("leaves")).toULongLong();
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
    const QTemporaryDir folder(QString::fromStdString(setting.at) + QStringLiteral("/orrinvale-window-bench-XXXXXX"));
    const std::string settings = folder.filePath(QStringLiteral("settings")).toStdString();
    const std::string corpus = folder.filePath(QStringLiteral("files")).toStdString();
    if (!folder.isValid() || ::mkdir(settings.c_str(), 0755) != 0 || ::mkdir(corpus.c_str(), 0755) != 0 ||
        !makeFiles(corpus, setting)) {
        std::fputs("window-bench: the files can not be made\n", stderr);
        return 2;
    }
    ::setenv("XDG_CONFIG_HOME", settings.c_str(), 1);
    Theme::shared().install(application);
    PreferenceViewController::initialize();
    Bench bench(setting, corpus);
    if (!bench.counterWorks()) {
        std::fputs("window-bench: the counter does not see stalls\n", stderr);
        return 2;
    }
    bench.run();
    print(bench.rows(), setting.json);
    return std::any_of(bench.rows().begin(), bench.rows().end(), isOver) ? 1 : 0;
}

}  // namespace
}  // namespace orrinvale

int main(int argc, char** argv) {
    ::setenv("QT_QPA_PLATFORM", "offscreen", 0);
    orrinvale::Log::setEnabled(false);
    return orrinvale::runBench(argc, argv);
}
