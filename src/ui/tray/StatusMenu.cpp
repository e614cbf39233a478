// What the menu is made of, top to bottom, then the refresh of its rows.
#include "ui/tray/StatusMenu.h"

#include <fmt/format.h>

#include <QAction>
#include <QWidgetAction>
#include <algorithm>
#include <array>
#include <utility>

#include "engine/base/Log.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingItems.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/settings/UtilityFunctionOfData.h"
#include "engine/text/UtilityFunction.h"
#include "engine/volumes/SpaceLevel.h"
#include "ui/kit/look/picture.h"
#include "ui/tray/CustomGreyBarView.h"
#include "ui/volumes/CustomVolumView.h"

namespace orrinvale {
namespace {

constexpr const char* memoryTitle = "5";

QString text(const std::string& bytes) { return QString::fromStdString(bytes); }

// Four of five kinds can be ejected; for the disks in this machine alone nothing is.
bool hasOthersThanLocal(const MyItemSetObj& groups) {
    return !groups.superDriveArr.empty() || !groups.netWorkStorageArr.empty() ||
           !groups.diskImagesArr.empty() || !groups.exteralStorageArr.empty();
}

MyItemSetObj::Items* groupOf(MyItemSetObj& groups, std::int32_t type) {
    switch (type) {
        case LocalVolume: return &groups.localStrorageArr;
        case ExternalVolume: return &groups.exteralStorageArr;
        case OpticalVolume: return &groups.superDriveArr;
        case NetworkVolume: return &groups.netWorkStorageArr;
        case DiskImageVolume: return &groups.diskImagesArr;
        default: return nullptr;
    }
}

}  // namespace

StatusMenu::StatusMenu(Parts parts, QObject* parent) : QObject(parent), m_parts(std::move(parts)) {}

StatusMenu::~StatusMenu() = default;

void StatusMenu::addMenu(const SystemSight& sight) {
    if (!m_menu) {
        m_menu = std::make_unique<QMenu>();
        m_menu->setObjectName(QStringLiteral("statusMenu"));
        connect(m_menu.get(), &QMenu::aboutToHide, this, [this] {
            for (const QAction* const each : m_allDiskItemArr) viewOf(each)->setCurrent(false);
        });
    }
    m_built = sight;
    m_previousCount = sight.volumes.size();
    m_groups = {};
    m_allDiskItemArr.clear();
    m_allDiskItemArr.reserve(MyItemSetObj::capacity);
    m_freeMemoryArr.clear();
    m_freeMemoryArr.reserve(MyItemSetObj::capacity);
    std::int32_t tag = 0;
    for (const SeenVolume& each : sight.volumes) addVolume(each, tag++);
    addGroup(LocalVolume, m_groups.localStrorageArr);
    addGroup(ExternalVolume, m_groups.exteralStorageArr);
    addGroup(OpticalVolume, m_groups.superDriveArr);
    addGroup(NetworkVolume, m_groups.netWorkStorageArr);
    addGroup(DiskImageVolume, m_groups.diskImagesArr);
}

void StatusMenu::addVolume(const SeenVolume& seen, std::int32_t tag) {
    const ZvVolumeInfo& volume = *seen.record;
    const auto settings = UtilityFunctionOfData::getMyData().readerTxtForSettingValue();
    auto* const view = new MenuItemView(
        {.withStorage = static_cast<std::uint64_t>(volume.volType),
         .withVolIcon = picture(volumePicture(volume.volType, volume.bIsDefaultVol)),
         .withBCanEject = volume.bCanEject,
         .withVlumeName = text(volume.volumeName),
         .isPrograss = text(settings->digital).toInt(),
         .withTotolVol = text(volume.totalSpace),
         .withFreeVol = text(volume.freeSpace),
         .withTag = tag},
        {m_parts.actions.eject, m_parts.actions.openVolume});
    view->nTotalSize = volume.nTotalSize;
    view->nFreeSize = volume.nFreeSize;
    view->volRefNumber = volume.volRefNumber;
    view->bIsDefaultVol = volume.bIsDefaultVol;
    view->volRootDir = volume.volRootDir;
    view->errorValue = text(errorValueOf(settings->errorValue));
    view->setSeen(seen);
    view->setEjecting(isEjecting(*view));
    Log::line(fmt::format("totalSpace====={}", volume.totalSpace));
    auto* const item = new QWidgetAction(m_menu.get());
    item->setDefaultWidget(view);
    item->setData(QString::number(volume.volRefNumber));
    bindRow(*item, *view);
    m_allDiskItemArr.push_back(item);
    if (auto* const group = groupOf(m_groups, volume.volType)) group->push_back(item);
}

void StatusMenu::bindRow(QAction& item, MenuItemView& view) {
    // By the keyboard; the pointer goes to the view.
    connect(&item, &QAction::triggered, &view, &MenuItemView::mouseDown);
    // What screen readers hear of an entry.
    const auto takeText = [&item, &view] {
        item.setText(view.inOneLine().replace(QLatin1Char('&'), QLatin1String("&&")));
    };
    takeText();
    connect(&view, &MenuItemView::readsOtherwise, &item, takeText);
    // The menu has one current entry, whichever of pointer and keyboard came to it last.
    connect(m_menu.get(), &QMenu::hovered, &view,
            [&item, &view](const QAction* entry) { view.setCurrent(entry == &item); });
    connect(&view, &MenuItemView::pointed, &item,
            [menu = m_menu.get(), &item, &view](bool isThere) {
                if (!isThere && !view.isCurrent()) return;
                menu->setActiveAction(isThere ? &item : nullptr);
                view.setCurrent(isThere);
            });
}

bool StatusMenu::isEjecting(const MenuItemView& row) const {
    return row.bCanEject && m_parts.actions.isEjecting &&
           m_parts.actions.isEjecting({row.volRefNumber, row.volRootDir});
}

void StatusMenu::showEjecting() {
    for (const QAction* const each : m_allDiskItemArr)
        if (MenuItemView* const row = viewOf(each); row->isEjecting() != isEjecting(*row))
            row->setEjecting(!row->isEjecting());
}

void StatusMenu::addGroup(std::uint64_t code, const MyItemSetObj::Items& items) {
    if (items.empty()) return;
    auto* const bar = new QWidgetAction(m_menu.get());
    bar->setDefaultWidget(new CustomGreyBarView(code));
    bar->setEnabled(false);
    m_menu->addAction(bar);
    addMenuItemView(items);
}

void StatusMenu::addMenuItemView(const MyItemSetObj::Items& items) {
    for (QAction* const each : items) m_menu->addAction(each);
}

void StatusMenu::addOtherItem() {
    const auto add = [this](const char* name, const QString& title, const QKeySequence& key,
                            const std::function<void()>& action) {
        QAction* const item = m_menu->addAction(title);
        item->setObjectName(QLatin1String(name));
        item->setShortcut(key);
        item->setShortcutVisibleInContextMenu(true);
        item->setEnabled(action != nullptr);
        if (action) connect(item, &QAction::triggered, this, [action] { action(); });
    };
    m_menu->addSeparator();
    add("ejectAll", tr("Eject All"), QKeySequence(Qt::CTRL | Qt::Key_E),
        hasOthersThanLocal(m_groups) ? m_parts.actions.rejestAllDisk : nullptr);
    m_menu->addSeparator();
    add("mainWindow", tr("Main Window"), {}, m_parts.actions.showMainWindowWhenClickMenuItem);
    m_menu->addSeparator();
    add("quit", tr("Quit Orrinvale"), QKeySequence(Qt::CTRL | Qt::Key_Q), m_parts.actions.quit);
    Q_EMIT replaced();
    m_parts.actions.openMainWindow();
}

// Behind this turn of the event loop: what is dropped may be what is being clicked.
void StatusMenu::removeItems() {
    if (!m_menu) return;
    m_groups = {};
    m_allDiskItemArr.clear();
    m_menu->disconnect();
    m_menu.release()->deleteLater();
    Q_EMIT replaced();
}

void StatusMenu::cancelTracking() {
    if (m_menu) m_menu->close();
}

void StatusMenu::rebuild(const SystemSight& sight) {
    if (!m_menu) return;
    cancelTracking();
    removeItems();
    addMenu(sight);
    addOtherItem();
}

QAction* StatusMenu::itemWithTitle(const QString& title) const {
    if (!m_menu) return nullptr;
    const QList<QAction*> items = m_menu->actions();
    const auto found = std::ranges::find_if(items, [&](const QAction* each) {
        return each->data().toString() == title && viewOf(each) != nullptr;
    });
    return found == items.end() ? nullptr : *found;
}

MenuItemView* StatusMenu::viewOf(const QAction* item) {
    const auto* const row = qobject_cast<const QWidgetAction*>(item);
    return row == nullptr ? nullptr : qobject_cast<MenuItemView*>(row->defaultWidget());
}

void StatusMenu::updateDataForMenuItem(const SystemSight& sight) {
    // The count alone would leave the row of a volume that went to one that came, and eject it.
    if (!m_menu || sight.volumes.size() != m_previousCount || !hasSameRows(sight, m_built)) {
        cancelTracking();
        removeItems();
        addMenu(sight);
        addOtherItem();
    }
    if (sight.volumes.empty()) return;
    for (const SeenVolume& each : sight.volumes) updateRow(each);
    updateMemoryRow();
    Q_EMIT refreshed();
}

void StatusMenu::updateRow(const SeenVolume& seen) {
    const ZvVolumeInfo& volume = *seen.record;
    MenuItemView* const row = viewOf(itemWithTitle(QString::number(volume.volRefNumber)));
    if (row == nullptr) return;
    row->errorValue = text(refreshedErrorValue(m_parts.defaults->floatForKey(ZvSpaceAlarmKey)));
    row->setFreeTextFieldSpace(text(volume.freeSpace));
    row->setTotleTextFieldSpace(text(volume.totalSpace));
    row->setNFreeSize(volume.nFreeSize);
    row->setVolumName(text(volume.volumeName));
    row->setVolRootDir(volume.volRootDir);
    row->setNFreeSize(volume.nTotalSize);  // a second time, as its readers know it
    row->setPrograssImage();
    row->setSeen(seen);
}

void StatusMenu::readMemory() {
    if (!m_clearMemory)
        m_clearMemory = std::make_unique<ClearMemory>(*m_parts.memory, purgePrograms());
    if (!m_cleanMemInfo) m_cleanMemInfo = std::make_unique<cleanMemoryInfo>();
    m_clearMemory->getMemoryInfo(&m_memoryInfo);
    m_cleanMemInfo->freeMem = UtilityFunction::covertCleanMemory(m_memoryInfo.freeMem);
    m_cleanMemInfo->totalMem = UtilityFunction::covertCleanMemory(m_memoryInfo.totalMem);
}

void StatusMenu::updateMemoryRow() {
    MenuItemView* const row = viewOf(itemWithTitle(QLatin1String(memoryTitle)));
    if (row == nullptr || m_parts.memory == nullptr) return;
    readMemory();
    row->errorValue = text(refreshedErrorValue(m_parts.defaults->floatForKey(ZvMemoryAlarmKey)));
    row->setFreeTextFieldSpace(text(m_cleanMemInfo->freeMem));
    row->setTotleTextFieldSpace(text(m_cleanMemInfo->totalMem));
    row->setNFreeSize(m_memoryInfo.freeMem);
    row->setVolumName(tr("Memory"));
    row->setPrograssImage();
}

void StatusMenu::cleanMemoryClickAction() {
    if (m_parts.memory == nullptr) return;
    if (!m_clearMemory)
        m_clearMemory = std::make_unique<ClearMemory>(*m_parts.memory, purgePrograms());
    if (m_clearMemory->isRuning()) return;
    Log::line("clean Memory");
    _MEMORY_INFO now;  // what a run is to take is told by the reading before it
    m_clearMemory->getMemoryInfo(&now);
    m_clearMemory->clearMemory();
}

void StatusMenu::freeMemoryListView() {
    if (m_parts.memory == nullptr) return;
    readMemory();
    auto item = std::make_unique<QWidgetAction>(nullptr);
    auto* const row = new MenuItemView({.withStorage = memoryStorage,
                                        .withVolIcon = {},
                                        .withBCanEject = false,
                                        .withVlumeName = tr("Memory"),
                                        .isPrograss = 1,
                                        .withTotolVol = text(m_cleanMemInfo->totalMem),
                                        .withFreeVol = text(m_cleanMemInfo->freeMem),
                                        .withTag = memoryTag},
                                       {m_parts.actions.eject, m_parts.actions.openVolume});
    row->nTotalSize = UtilityFunction::getVolSpaceFromString(m_cleanMemInfo->totalMem);
    row->nFreeSize = UtilityFunction::getVolSpaceFromString(m_cleanMemInfo->freeMem);
    row->errorValue = text(refreshedErrorValue(m_parts.defaults->floatForKey(ZvMemoryAlarmKey)));
    item->setDefaultWidget(row);
    item->setData(QLatin1String(memoryTitle));
    m_freeMemoryArr.push_back(std::move(item));
}

}  // namespace orrinvale
