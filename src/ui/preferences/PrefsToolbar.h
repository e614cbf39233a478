// PrefsToolbar: the row of items under the title of a window, one of them selected.
#pragma once

#include <QString>
#include <QWidget>

#include "ui/preferences/ToolbarItem.h"

class QHBoxLayout;

namespace orrinvale {

/// The Tab key stops at one item of it, the arrow keys, Home and End go from item to item, and a
/// context menu chooses what of them is shown. Without a flexible space its items stand on the
/// left. Main thread only.
class PrefsToolbar final : public QWidget {
    Q_OBJECT
public:
    explicit PrefsToolbar(QWidget* parent = nullptr);

    // Places count from 0, spaces included.
    void insertItem(int place, ToolbarItem* item);  ///< takes it over
    void insertFlexibleSpace(int place);
    void insertSpace(int place);

    /// The selectable item of this identifier, and no other; none where there is no such item.
    void setSelectedItemIdentifier(const QString& identifier);
    /// Empty while none is selected.
    [[nodiscard]] QString selectedItemIdentifier() const;

    [[nodiscard]] ToolbarDisplay display() const { return m_display; }
    void setDisplay(ToolbarDisplay display);

Q_SIGNALS:
    void itemClicked(const QString& identifier);
    /// Whoever changed it.
    void displayChanged(orrinvale::ToolbarDisplay display);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;

private:
    [[nodiscard]] QList<ToolbarItem*> items() const;  // from the left in most languages
    void setTabStop(ToolbarItem* item);

    QHBoxLayout* m_row;
    ToolbarDisplay m_display = ToolbarDisplay::IconAndText;
};

}  // namespace orrinvale
