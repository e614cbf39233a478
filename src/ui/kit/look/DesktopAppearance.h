// DesktopAppearance: whether the desktop prefers dark and moves things, and what a double click on
// a title bar does there, from the settings service that the desktops share.
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <optional>

#include "ui/kit/look/Theme.h"

namespace orrinvale {

/// Reads "color-scheme" of "org.freedesktop.appearance" from org.freedesktop.portal.Settings (0 no
/// preference, 1 dark, 2 light), "enable-animations" of "org.gnome.desktop.interface" and
/// "action-double-click-titlebar" of "org.gnome.desktop.wm.preferences", and follows them. Desktops
/// whose palette Qt does not know, GNOME among them, tell it only there. Main thread.
class DesktopAppearance final : public QObject {
    Q_OBJECT
public:
    /// Asks for the scheme, and waits at most a fifth of a second: a window that comes up light and
    /// turns dark is worse than that. A service that is only being started answers later, through
    /// changed(); so do the other answers.
    DesktopAppearance(const QDBusConnection& bus, QObject* parent);

    /// None without the service, or where the user has no preference.
    [[nodiscard]] std::optional<Theme::Scheme> scheme() const { return m_scheme; }

    /// False only where the service says so.
    [[nodiscard]] bool animates() const { return m_animates; }

    /// Zoom where the service does not say, or says what a window can not do to itself.
    [[nodiscard]] TitleDoubleClick titleDoubleClick() const { return m_titleDoubleClick; }

Q_SIGNALS:
    /// The scheme is another one than before.
    void changed();

private Q_SLOTS:
    void settingChanged(const QDBusMessage& message);

private:
    using Taker = void (DesktopAppearance::*)(const QVariant& value);
    void takeLater(const QDBusConnection& bus, const QDBusMessage& question, Taker taker);
    void takeScheme(const QVariant& value);
    void takeAnimations(const QVariant& value);
    void takeTitleDoubleClick(const QVariant& value);

    std::optional<Theme::Scheme> m_scheme;
    bool m_animates = true;
    TitleDoubleClick m_titleDoubleClick = TitleDoubleClick::Zoom;
};

}  // namespace orrinvale
