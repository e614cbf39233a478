// menuPlace: which row the menu of a list is for, and where it opens.
#pragma once

#include <QAbstractItemView>
#include <QContextMenuEvent>
#include <optional>

namespace orrinvale {

struct MenuPlace {
    QModelIndex index;
    QPoint position;  ///< on the screen
};

/// The row under the pointer, or by key the current one, which it is made; nothing beside the rows.
[[nodiscard]] inline std::optional<MenuPlace> menuPlace(QAbstractItemView& view,
                                                        const QContextMenuEvent& event) {
    const bool byKey = event.reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = byKey ? view.currentIndex() : view.indexAt(event.pos());
    if (!index.isValid()) return std::nullopt;
    view.setCurrentIndex(index);
    return MenuPlace{index, byKey ? view.viewport()->mapToGlobal(view.visualRect(index).center())
                                  : event.globalPos()};
}

}  // namespace orrinvale
