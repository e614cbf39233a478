// StatusItem: the program's picture in the tray of the desktop, made once something shows it.
#pragma once

#include <QIcon>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QSystemTrayIcon>
#include <functional>
#include <memory>

#include "platform/tray.h"

class QMenu;

namespace orrinvale {

/// The toolkit decides at the first question whether there is a tray, and never again: so it is not
/// asked before setKind() has told of one. From then on it brings the item back by itself when a
/// host restarts. Main thread only.
class StatusItem final : public QObject {
    Q_OBJECT
public:
    /// `showsMainWindow` is for a click where no popup can be placed.
    explicit StatusItem(std::function<void()> showsMainWindow, QObject* parent = nullptr);
    ~StatusItem() override;

    void setKind(TrayKind kind);
    /// Hidden the item is given back to the host; it begins shown.
    void setHidden(bool isHidden);
    /// One of picture().
    void setImage(const QIcon& image);
    void setToolTip(const QString& text);
    /// The menu in words, for hosts, and the one with rows, where a popup can be placed. Either may
    /// go; null is none.
    void setMenus(QMenu* host, QMenu* popup);

    /// Whether a person can see it: there is a tray, of the kind that the toolkit has decided for
    /// in this process, and the item is not hidden.
    [[nodiscard]] bool isShown() const { return hasHost() && !m_isHidden; }
    /// The same of an item that is not hidden.
    [[nodiscard]] bool hasHost() const;
    [[nodiscard]] bool isHidden() const { return m_isHidden; }

private:
    void make();
    void activate(QSystemTrayIcon::ActivationReason reason);
    [[nodiscard]] bool canPlacePopup() const;

    const std::function<void()> m_showsMainWindow;
    TrayKind m_kind = TrayKind::None;
    bool m_isHidden = false;
    QIcon m_image;
    QString m_toolTip;
    QPointer<QMenu> m_hostMenu;
    QPointer<QMenu> m_popup;
    std::unique_ptr<QSystemTrayIcon> m_item;
};

}  // namespace orrinvale
