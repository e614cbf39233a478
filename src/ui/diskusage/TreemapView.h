// TreemapView: the map of a folder, beside the columns: every file a rectangle as large as its
// share. TreemapPicture.h draws it.
#pragma once

#include <QTimer>
#include <QWidget>
#include <memory>

#include "ui/diskusage/TreemapPicture.h"

namespace orrinvale {

/// Main thread only; layout and drawing go on aside, and the picture before stays until the new one
/// is there. The arrow keys go through what lies directly in the folder, Return goes there, the
/// Backspace key up, Space ticks.
class TreemapView final : public QWidget {
    Q_OBJECT
public:
    explicit TreemapView(QWidget* parent = nullptr);

    /// Null: nothing is shown.
    void setFolder(std::shared_ptr<const ShownScan> scan, FSNode* folder);
    [[nodiscard]] FSNode* folder() const { return m_folder; }
    /// What it shows has changed: sizes, ticks, entries.
    void reload();
    /// The item with the frame; null for none.
    void setCurrent(FSNode* node);
    [[nodiscard]] FSNode* current() const { return m_current; }

    /// No newer picture is on its way.
    [[nodiscard]] bool isDrawn() const { return !m_isDrawing && !m_isStale; }
    /// Null before the first one.
    [[nodiscard]] const TreemapPicture* shownPicture() const { return m_picture.get(); }

    [[nodiscard]] QSize minimumSizeHint() const override { return {200, 160}; }

Q_SIGNALS:
    /// What is under the pointer; null for nothing. Good during the call.
    void hovered(const TreemapEntry* entry);
    void goWanted(FSNode* node);
    void upWanted();
    void tickWanted(FSNode* node);
    void menuWanted(FSNode* node, QPoint globalPosition);
    /// The keyboard has gone to it.
    void chosen(FSNode* node);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void draw();
    void drawn(std::unique_ptr<TreemapPicture> picture);
    void hover(const TreemapEntry* entry);
    void step(int by);
    [[nodiscard]] const TreemapEntry* entryAt(QPointF place) const;
    void drawFrame(QPainter& painter, const FSNode* node, Theme::Color color) const;

    std::shared_ptr<const ShownScan> m_scan;
    FSNode* m_folder = nullptr;   // of that scan's tree
    FSNode* m_current = nullptr;  // likewise
    const FSNode* m_hovered = nullptr;
    bool m_isOverLeftOut = false;
    FSNode* m_pressed = nullptr;
    std::unique_ptr<TreemapPicture> m_picture;
    QTimer m_timer;  // one drawing for all that changes in a turn
    bool m_isDrawing = false;
    bool m_isStale = false;
};

}  // namespace orrinvale
