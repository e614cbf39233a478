// HostMenu: the menu of the status item in words, for hosts of StatusNotifier items, which draw
// menus themselves and take nothing but texts.
#pragma once

#include <QMenu>
#include <QObject>
#include <QPointer>
#include <QString>
#include <functional>
#include <string>
#include <vector>

#include "ui/tray/MenuItemView.h"

namespace orrinvale {

/// A text as such a host shows it again: on one line, and without one of its letters being taken
/// for the mark of a key. In com.canonical.dbusmenu "_" is that mark, and the toolkit makes it of
/// the first "&".
[[nodiscard]] QString hostText(const QString& text);

/// Complete by itself, since some hosts open it at any click. Its entries change in place as long
/// as the same volumes stand. Main thread only.
class HostMenu final : public QObject {
    Q_OBJECT
public:
    explicit HostMenu(std::function<void(const std::string& root)> openVolume,
                      QObject* parent = nullptr);

    [[nodiscard]] QMenu& menu() { return m_menu; }

    /// Every entry anew, from the popup; null empties it.
    void take(const QMenu* popup);

    /// The figures of the rows.
    void refresh();

private:
    struct Row {
        QPointer<MenuItemView> view;
        QAction* opens = nullptr;
        QAction* ejects = nullptr;  // null where nothing can be ejected
    };
    void addRow(MenuItemView& view);

    const std::function<void(const std::string& root)> m_openVolume;
    QMenu m_menu;
    std::vector<Row> m_rows;
};

}  // namespace orrinvale
