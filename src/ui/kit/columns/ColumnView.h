// ColumnView: one column of a ColumnBrowser as it stands on the screen.
#pragma once

#include <QListView>

#include "ui/kit/chrome/buttonLook.h"

namespace orrinvale {

/// What of the keyboard is meant for the whole browser is told, and done there. Main thread only.
class ColumnView final : public QListView {
    Q_OBJECT
public:
    explicit ColumnView(QWidget* parent);

    /// The keyboard has come to the row, and not by a click.
    [[nodiscard]] bool showsFocus() const { return m_keyboardFocus.isShown(*this); }

Q_SIGNALS:
    /// 1 to the column that this row opens, -1 to the one before.
    void columnWanted(int step);
    void tickWanted(const QModelIndex& index);
    void removalWanted();
    void menuWanted(const QModelIndex& index, QPoint globalPosition);
    void focused();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    [[nodiscard]] bool isForDelegate(QMouseEvent& event);
    [[nodiscard]] bool takesKey(const QKeyEvent& event);
    void followTheme();

    KeyboardFocus m_keyboardFocus;
};

}  // namespace orrinvale
