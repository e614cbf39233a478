// CleanDesk: see CleanDesk.h.
#include "ui/cleaning/CleanDesk.h"

#include <QApplication>
#include <QTreeView>

#include "engine/cleaning/QnAuthorization.h"
#include "engine/settings/PreferenceViewController.h"
#include "ui/cleaning/CleanTreeModel.h"
#include "ui/cleaning/FigureLabel.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/kit/lists/RowDelegate.h"

namespace orrinvale::testing {

SysResult<Descriptor> HeldFolders::openFolder(int parent, const char* name, Links links) const {
    {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return !m_held.contains(name); });
    }
    return ForwardingFiles::openFolder(parent, name, links);
}

void HeldFolders::hold(const std::string& folder) {
    const std::lock_guard lock(m_mutex);
    m_held.insert(folder);
}

void HeldFolders::letGo(const std::string& folder) {
    const std::lock_guard lock(m_mutex);
    m_held.erase(folder);
    m_changed.notify_all();
}

void HeldFolders::letAllGo() {
    const std::lock_guard lock(m_mutex);
    m_held.clear();
    m_changed.notify_all();
}

CleanDesk::CleanDesk(std::initializer_list<std::pair<const char*, std::size_t>> files,
                     std::int64_t secondsLater, bool hasSheets) {
    home.secondsLater = secondsLater;
    for (const auto& [name, bytes] : files) write(name, bytes);
    home.files.beforeRemoval = [this](std::string_view operation) {
        if (operation == "removeEntry") removing.pass();
    };
    UserDefaults::setStandardUserDefaults(&defaults);
    PreferenceViewController::initialize();
    QnAuthorization::shareQnAuthorization().setParts(
        {&authorization, &home.files, &permissions, {}});
    platform.volumes = {FakeVolumes::volume(1, "System", "/", false)};
    watch = std::make_unique<SystemWatch>(platform, memory, queue, std::chrono::hours(1));
    ejections = std::make_unique<Ejections>(platform, queue);
    CleanPageParts parts;
    parts.pages.files = &home.files;
    parts.pages.notifications = &center;
    parts.pages.defaults = &defaults;
    parts.pages.dialogs = hasSheets ? static_cast<Dialogs*>(&sheets) : &dialogs;
    parts.pages.mainQueue = &queue;
    parts.pages.stateFolder = home.tree.at("state");
    parts.pages.reveal = [this](const std::string& path) { revealed.push_back(path); };
    parts.clean = home.parts();
    parts.clean.files = &held;
    parts.clean.folders = &folders;
    parts.clean.utilities = &utilities;
    parts.watch = watch.get();
    parts.ejections = ejections.get();
    parts.makeDoor = [this](CleanCategory) -> std::unique_ptr<RemovalDoor> {
        if (isLocked) return std::make_unique<LockedDoor>(home.files);
        return std::make_unique<PlainDoor>(home.files, ProtectedPlaces());
    };
    parts.openFolder = [this](const std::string& folder) { opened.push_back(folder); };
    parts.freeSpace = [this](const std::string&) {
        return SysResult<std::uint64_t>(free.fetch_add(2'000'000));
    };
    window = std::make_unique<AppPrefsWindowController>();
    window->registerPage({.identifier = QStringLiteral("Scan"),
                          .label = QStringLiteral("Clean"),
                          .picture = QStringLiteral("clean"),
                          .make = [this, parts] {
                              auto made = std::make_unique<NewMainViewController>(parts);
                              page = made.get();
                              return made;
                          }});
    window->showWindow();
    window->window()->resize(900, 640);
    EXPECT_TRUE(QTest::qWaitForWindowActive(window->window()));
}

CleanDesk::~CleanDesk() {
    held.letAllGo();
    removing.open();
    page->giveUp();
    EXPECT_TRUE(waitForRest());
    window.reset();
    QnAuthorization::shareQnAuthorization().freeAuthorization();
    QnAuthorization::shareQnAuthorization().setParts({});
    UserDefaults::setStandardUserDefaults(nullptr);
}

void CleanDesk::write(const std::string& name, std::size_t bytes) {
    EXPECT_TRUE(home.tree.write(name, std::string(bytes, 'x'))) << name;
}

void CleanDesk::tickOnly(std::initializer_list<CleanCategory> categories) {
    for (const CleanCategoryNames& each : cleanCategories)
        defaults.setInteger(std::ranges::count(categories, each.category), each.settingKey);
}

bool CleanDesk::scan() {
    if (isShown("startButton")) click("startButton");
    else click("rescanButton");
    EXPECT_EQ(int(state()), int(State::Scanning));
    return waitForRest();
}

bool CleanDesk::waitForRest() {
    return waitFor([this] { return !page->isBusy() || state() == State::Fresh; });
}

ScanViewController& CleanDesk::list(CleanCategory category) const {
    return *page->tableControllers().at(static_cast<std::size_t>(category));
}

std::string CleanDesk::outline() {
    const QAbstractItemModel& shown = *control<QTreeView>("outline").model();
    std::string text;
    for (int g = 0; g < shown.rowCount(); ++g) {
        const QModelIndex group = shown.index(g, 0);
        for (const int column :
             {CleanTreeModel::NameColumn, CleanTreeModel::AllSelectNum, CleanTreeModel::FileSize})
            text += group.siblingAtColumn(column).data().toString().toStdString() + ' ';
        for (int r = 0; r < shown.rowCount(group); ++r)
            text += shown.index(r, 0, group).data(TickModel::StateRole).toInt() == 1 ? 'x' : '.';
        text += '\n';
    }
    return text;
}

std::string CleanDesk::sentence(const char* label) {
    return control<FigureLabel>(label).sentence().toStdString();
}

std::string CleanDesk::settings() const {
    std::string all;
    for (const CleanCategoryNames& each : cleanCategories)
        all += std::to_string(defaults.integerForKey(each.settingKey));
    return all;
}

void CleanDesk::tick(QTreeView& view, const QModelIndex& row) {
    view.expand(row.parent());
    const QModelIndex cell = row.siblingAtColumn(0);
    view.scrollTo(cell);
    QStyleOptionViewItem option;
    option.rect = view.visualRect(cell);
    EXPECT_TRUE(view.viewport()->rect().contains(option.rect.center()));
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, RowDelegate::boxRect(option).center());
}

QModelIndex CleanDesk::rowOf(QTreeView& view, const std::string& name) const {
    const QAbstractItemModel& rows = *view.model();
    const auto isNamed = [&](const QModelIndex& row) {
        return row.siblingAtColumn(1).data().toString().endsWith(QString::fromStdString(name));
    };
    for (int g = 0; g < rows.rowCount(); ++g) {
        const QModelIndex top = rows.index(g, 0);
        if (isNamed(top)) return top;
        for (int r = 0; r < rows.rowCount(top); ++r)
            if (isNamed(rows.index(r, 0, top))) return rows.index(r, 0, top);
    }
    ADD_FAILURE() << "no row " << name;
    return {};
}

std::vector<QWidget*> CleanDesk::places() { return {window->window()}; }

}  // namespace orrinvale::testing
