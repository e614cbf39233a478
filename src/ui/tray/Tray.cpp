// What comes from the watch goes to the menu first and then to the item, which shows the boot
// volume.
#include "ui/tray/Tray.h"

#include <QPointer>
#include <QTimer>
#include <utility>

#include "engine/base/MainQueue.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/volumes/volumeNotices.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/picture.h"
#include "ui/tray/trayNotices.h"

namespace orrinvale {
namespace {

// Milliseconds in which the desktop tells whether it has a tray. What it says later counts as well.
constexpr int hostPatience = 3000;
constexpr qsizetype blanks = 17;  // as wide as the two fields of the view

}  // namespace

Tray::Tray(Parts parts, QObject* parent)
    : QObject(parent),
      m_parts(std::move(parts)),
      m_item(m_parts.menu.actions.showMainWindowWhenClickMenuItem),
      m_menu(m_parts.menu),
      m_hostMenu(m_parts.menu.actions.openVolume) {
    // From the start on, so that a hidden item is not seen before the first look, and nobody counts
    // on it.
    m_item.setHidden(m_parts.menu.defaults->boolForKey(ZvShowStatusItem));
    setImage({});
    connect(&m_menu, &StatusMenu::replaced, this, &Tray::takeMenu);
    connect(&m_menu, &StatusMenu::refreshed, &m_hostMenu, &HostMenu::refresh);
    m_watching =
        m_parts.watch->observe(SystemWatch::Part::Volumes,
                               [this](const SystemSight& sight) { updateDataForMenuItem(sight); });
    if (m_parts.host == nullptr) {
        m_isHostKnown = true;
        return;
    }
    QTimer::singleShot(hostPatience, this, [this] { m_isHostKnown = true; });
    m_parts.host->watch([self = QPointer(this), queue = m_parts.mainQueue](TrayKind kind) {
        queue->async([self, kind] {
            if (self != nullptr) self->takeHost(kind);
        });
    });
}

Tray::~Tray() = default;

void Tray::takeHost(TrayKind kind) {
    m_isHostKnown = true;
    m_item.setKind(kind);
    Q_EMIT menuForWindowChanged();
}

void Tray::takeMenu() {
    QMenu* const popup = m_menu.menu();
    m_hostMenu.take(popup);
    m_item.setMenus(&m_hostMenu.menu(), popup);
    Q_EMIT menuForWindowChanged();
    if (popup == nullptr || !m_statusItemView) return;
    connect(popup, &QMenu::aboutToShow, m_statusItemView.get(),
            &CustomStatusItemView::menuWillOpen);
    connect(popup, &QMenu::aboutToHide, m_statusItemView.get(),
            &CustomStatusItemView::menuDidClose);
}

void Tray::showMenuBar() {
    if (m_statusItemView) return;
    m_statusItemView = std::make_unique<CustomStatusItemView>();
    m_statusItemView->updateShowSizeWithFree(m_statusFreeSpace, m_statusTotalSpace);
    m_statusItemView->setTitle(QString(blanks, QLatin1Char(' ')));
    takeMenu();
}

void Tray::setStatusBarHidden(bool isHidden) {
    if (!isHidden) showMenuBar();
    if (m_statusItemView)
        m_statusItemView->setTitle(QString(isHidden ? 1 : blanks, QLatin1Char(' ')));
    m_item.setHidden(isHidden);
    Q_EMIT menuForWindowChanged();
}

void Tray::refMenuItemWhenDeleteAndAdd() {
    if (const auto sight = m_parts.watch->latest()) m_menu.rebuild(*sight);
    m_parts.watch->lookNow();
}

void Tray::updateDataForMenuItem(const SystemSight& sight) {
    const bool isFirst = m_menu.menu() == nullptr;
    m_menu.updateDataForMenuItem(sight);
    if (const SeenVolume* const boot = bootVolume(sight.volumes)) showHomeDisk(*boot->record);
    else setImage({});
    if (!sight.volumes.empty()) notice::updateNewDiskSizeView.post(*m_parts.notifications);
    showMenuBar();
    // The stored value counts once the menu stands.
    if (isFirst)
        notice::setStatusBarHidden.post(*m_parts.notifications,
                                        m_parts.menu.defaults->boolForKey(ZvShowStatusItem));
}

void Tray::showHomeDisk(const ZvVolumeInfo& boot) {
    m_statusFreeSpace = QString::fromStdString(boot.freeSpace);
    m_statusTotalSpace = QString::fromStdString(boot.totalSpace);
    m_item.setToolTip(QStringLiteral("%1\n%2\n%3")
                          .arg(onOneLine(QString::fromStdString(boot.volumeName)),
                               tr("Total Size:%1").arg(shownSize(boot.totalSpace)),
                               tr("Free Space:%1").arg(shownSize(boot.freeSpace))));
    if (m_statusItemView)
        m_statusItemView->updateShowSizeWithFree(m_statusFreeSpace, m_statusTotalSpace);
    if (m_parts.sawHomeDisk) m_parts.sawHomeDisk(boot);
}

void Tray::setImage(const QIcon& image) {
    m_item.setImage(image.isNull() ? picture(QStringLiteral("appicon")) : image);
}

}  // namespace orrinvale
