// PageWindow: see PageWindow.h.
#include "ui/support/PageWindow.h"

#include <QMimeData>
#include <QScreen>
#include <QTreeView>
#include <QUrl>
#include <thread>

#include "engine/cleaning/QnAuthorization.h"
#include "support/test.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/support/threadsNow.h"

namespace orrinvale::testing {

void Gate::pass() {
    std::unique_lock lock(m_mutex);
    ++m_waiting;
    m_opened.wait(lock, [this] { return m_isOpen; });
    --m_waiting;
}

bool Gate::isWaitedAt() {
    const std::lock_guard guard(m_mutex);
    return m_waiting != 0;
}

void Gate::set(bool isOpen) {
    const std::lock_guard guard(m_mutex);
    m_isOpen = isOpen;
    m_opened.notify_all();
}

std::size_t threadsNow() {
#if defined(__SANITIZE_THREAD__)
    // The sanitizer's own thread comes with the first of ours, and stays.
    [[maybe_unused]] static const bool isThere = (std::thread([] {}).join(), true);
#endif
    const auto nameOf = [](const std::filesystem::path& thread) {
        std::string name;
        std::getline(std::ifstream(thread / "comm"), name);
        return name;
    };
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return static_cast<std::size_t>(std::count_if(
        begin(threads), end(threads),
        [&](const auto& thread) { return nameOf(thread.path()) == nameOf("/proc/self"); }));
}

PageWindow::PageWindow() : m_defaults(m_settings.at("settings.ini")), m_threads(threadsNow()) {
    files.onOpenFile = [this](const char* /*name*/) { reading.pass(); };
    files.beforeRemoval = [this](const char* operation) {
        if (std::string_view(operation) == "removeEntry") removing.pass();
    };
    QnAuthorization::shareQnAuthorization().setParts({&authorization, &files, &m_permissions, {}});
    window = std::make_unique<DuplicateMainWindowController>(
        PageServices{.files = &files,
                     .notifications = &notifications,
                     .defaults = &m_defaults,
                     .dialogs = &dialogs,
                     .mainQueue = &m_mainQueue,
                     .stateFolder = stateFolder(),
                     .icons = [this](const IconRequest& request) { return m_icons.icon(request); },
                     .reveal = [this](const std::string& path) { revealed.push_back(path); },
                     .openAddress = {}},
        m_icons);
    window->showWindow();
    EXPECT_TRUE(QTest::qWaitForWindowActive(window->window()));
}

PageWindow::~PageWindow() {
    reading.open();
    removing.open();
    window.reset();
    // A thread that was told to stop still uses what stands here.
    EXPECT_SOON(threadsNow() <= m_threads);
    QnAuthorization::shareQnAuthorization().freeAuthorization();
    QnAuthorization::shareQnAuthorization().setParts({});
}

std::vector<QWidget*> PageWindow::places() {
    return {page().detailView(), page().progressageView(), page().view(), window->window()};
}

void PageWindow::drop(const std::string& path) {
    QMimeData dragged;
    dragged.setUrls({QUrl::fromLocalFile(QString::fromStdString(path))});
    EXPECT_TRUE(control<DragView>("dragView").performDragOperation(dragged)) << path;
}

bool PageWindow::holdSearch(const std::string& path) {
    reading.shut();
    drop(path);
    return waitFor([this] { return reading.isWaitedAt(); });
}

bool PageWindow::search(const std::string& path) {
    drop(path);
    return waitFor([this] { return page().bSearchFinished() && isShown("detailView"); });
}

bool PageWindow::remove(const std::function<void()>& meanwhile) {
    dialogs.willAnswer(0);
    if (meanwhile) removing.shut();
    click("stopBtn");
    if (meanwhile) {
        if (!waitFor([this] { return removing.isWaitedAt(); })) return false;
        meanwhile();
        removing.open();
    } else if (!waitFor([this] { return !page().bSearchFinished(); })) {
        return false;
    }
    return waitFor([this] { return page().bSearchFinished(); });
}

QAbstractItemModel& PageWindow::model() { return *control<QTreeView>("outline").model(); }

QImage PageWindow::onScreen(const QWidget& widget, const QRect& part) {
    QTest::qWait(30);  // what was asked for is drawn
    QWidget& shown = *window->window();
    const QPixmap all = shown.screen()->grabWindow(shown.winId());
    return all.copy(QRect(widget.mapTo(&shown, part.topLeft()), part.size())).toImage();
}

std::string PageWindow::list() {
    const QAbstractItemModel& shown = model();
    std::string text;
    const auto state = [&](const QModelIndex& row) {
        return row.siblingAtColumn(DuplicateResultModel::Checkbox)
            .data(DuplicateResultModel::StateRole)
            .toInt();
    };
    for (int g = 0; g < shown.rowCount(); ++g) {
        const QModelIndex group = shown.index(g, 0);
        const auto cell = [&](int column) {
            return group.siblingAtColumn(column).data().toString().toStdString();
        };
        text += cell(DuplicateResultModel::NameColumn) + ' ' + std::to_string(state(group)) + ' ' +
                cell(DuplicateResultModel::AllSelectNum) + ": ";
        for (int c = 0; c < shown.rowCount(group); ++c)
            text += state(shown.index(c, 0, group)) == 1 ? 'x' : '.';
        text += '\n';
    }
    return text;
}

std::string PageWindow::nameOf(const QModelIndex& row) {
    return row.siblingAtColumn(DuplicateResultModel::NameColumn).data().toString().toStdString();
}

QModelIndex PageWindow::row(const std::string& group, const std::string& copy) {
    const QAbstractItemModel& shown = model();
    for (int g = 0; g < shown.rowCount(); ++g) {
        const QModelIndex parent = shown.index(g, 0);
        if (nameOf(parent) != group) continue;
        if (copy.empty()) return parent;
        for (int c = 0; c < shown.rowCount(parent); ++c)
            if (nameOf(shown.index(c, 0, parent)).ends_with(copy)) return shown.index(c, 0, parent);
    }
    ADD_FAILURE() << "no row " << group << ' ' << copy;
    return {};
}

void PageWindow::tick(const QModelIndex& row) {
    auto& outline = control<QTreeView>("outline");
    outline.expand(row.parent());
    const QModelIndex cell = row.siblingAtColumn(DuplicateResultModel::Checkbox);
    outline.scrollTo(cell);
    QStyleOptionViewItem option;
    option.rect = outline.visualRect(cell);
    EXPECT_TRUE(outline.viewport()->rect().contains(option.rect.center()));
    QTest::mouseClick(outline.viewport(), Qt::LeftButton, {},
                      RowDelegate::boxRect(option).center());
}

}  // namespace orrinvale::testing
