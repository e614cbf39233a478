// The item is kept when a host goes, since it is the toolkit that brings it back.
#include "ui/tray/StatusItem.h"

#include <QCursor>
#include <QGuiApplication>
#include <QMenu>
#include <utility>

#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

// Of the process's first item. The toolkit puts all of them where it put that one.
TrayKind& decidedKind() {
    static TrayKind kind = TrayKind::None;
    return kind;
}

}  // namespace

StatusItem::StatusItem(std::function<void()> showsMainWindow, QObject* parent)
    : QObject(parent), m_showsMainWindow(std::move(showsMainWindow)) {
    // A tray may have been given what the picture looked like.
    connect(&Theme::shared(), &Theme::changed, this, [this] {
        if (m_item) m_item->setIcon(m_image);
    });
}

StatusItem::~StatusItem() = default;

void StatusItem::setKind(TrayKind kind) {
    m_kind = kind;
    make();
}

void StatusItem::setHidden(bool isHidden) {
    m_isHidden = isHidden;
    if (isHidden) m_item.reset();
    make();
}

bool StatusItem::hasHost() const {
    const TrayKind decided = decidedKind();
    return m_kind != TrayKind::None && (decided == TrayKind::None || decided == m_kind);
}

void StatusItem::make() {
    if (m_item || !isShown()) return;
    decidedKind() = m_kind;
    m_item = std::make_unique<QSystemTrayIcon>(m_image);
    m_item->setToolTip(m_toolTip);
    connect(m_item.get(), &QSystemTrayIcon::activated, this, &StatusItem::activate);
    // In a tray of X11 both buttons open the rows.
    if (m_kind == TrayKind::StatusNotifier) m_item->setContextMenu(m_hostMenu);
    m_item->show();
}

void StatusItem::setImage(const QIcon& image) {
    // For each new one a tray is sent its pixels in every size.
    if (image.name() == m_image.name()) return;
    m_image = image;
    if (m_item) m_item->setIcon(image);
}

void StatusItem::setToolTip(const QString& text) {
    if (std::exchange(m_toolTip, text) != text && m_item) m_item->setToolTip(text);
}

void StatusItem::setMenus(QMenu* host, QMenu* popup) {
    m_popup = popup;
    if (std::exchange(m_hostMenu, host) == host) return;
    if (m_item && decidedKind() == TrayKind::StatusNotifier) m_item->setContextMenu(host);
}

// Wayland lets nobody say where a window stands.
bool StatusItem::canPlacePopup() const {
    return QGuiApplication::platformName() == QLatin1String("xcb");
}

void StatusItem::activate(QSystemTrayIcon::ActivationReason reason) {
    if (reason == QSystemTrayIcon::MiddleClick || reason == QSystemTrayIcon::Unknown) return;
    if (m_popup == nullptr || !canPlacePopup()) m_showsMainWindow();
    else if (m_popup->isVisible()) m_popup->close();
    else m_popup->popup(QCursor::pos());
}

}  // namespace orrinvale
