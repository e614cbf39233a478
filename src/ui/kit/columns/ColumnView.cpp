// All rows are of one height, so that a column of a hundred thousand stands at once.
#include "ui/kit/columns/ColumnView.h"

#include <QContextMenuEvent>
#include <QKeyEvent>

#include "ui/kit/lists/menuPlace.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {

ColumnView::ColumnView(QWidget* parent) : QListView(parent) {
    setUniformItemSizes(true);
    setFrameShape(NoFrame);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setVerticalScrollMode(ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    setTabKeyNavigation(false);
    setFocusPolicy(Qt::ClickFocus);
    followTheme();
    connect(&Theme::shared(), &Theme::changed, this, &ColumnView::followTheme);
}

void ColumnView::followTheme() {
    QPalette colors;
    colors.setColor(QPalette::Highlight, Theme::shared().color(Theme::Color::Selection));
    colors.setColor(QPalette::HighlightedText, Theme::shared().color(Theme::Color::Text));
    setPalette(colors);
}

bool ColumnView::takesKey(const QKeyEvent& event) {
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    switch (event.key()) {
        case Qt::Key_Right: Q_EMIT columnWanted(isMirrored ? -1 : 1); return true;
        case Qt::Key_Left: Q_EMIT columnWanted(isMirrored ? 1 : -1); return true;
        case Qt::Key_Space:
            if (currentIndex().isValid() && !event.isAutoRepeat())
                Q_EMIT tickWanted(currentIndex());
            return true;
        case Qt::Key_Delete: Q_EMIT removalWanted(); return true;
        default: return false;
    }
}

void ColumnView::keyPressEvent(QKeyEvent* event) {
    if (!takesKey(*event)) QListView::keyPressEvent(event);
}

void ColumnView::contextMenuEvent(QContextMenuEvent* event) {
    if (const auto place = menuPlace(*this, *event))
        Q_EMIT menuWanted(place->index, place->position);
}

void ColumnView::focusInEvent(QFocusEvent* event) {
    m_keyboardFocus.focusIn(*event);
    // The base class would choose the first row, which opens a column that nobody asked for.
    // NOLINTNEXTLINE(bugprone-parent-virtual-call)
    QAbstractScrollArea::focusInEvent(event);
    viewport()->update();
    Q_EMIT focused();
}

// What the delegate takes, such as a click into a box, chooses no row.
bool ColumnView::isForDelegate(QMouseEvent& event) {
    const QModelIndex index = indexAt(event.position().toPoint());
    if (!index.isValid() || event.button() != Qt::LeftButton) return false;
    QStyleOptionViewItem option;
    initViewItemOption(&option);
    option.rect = visualRect(index);
    return itemDelegateForIndex(index)->editorEvent(&event, model(), option, index);
}

// A click beside the rows leaves what is chosen.
void ColumnView::mousePressEvent(QMouseEvent* event) {
    if (isForDelegate(*event)) return;
    if (indexAt(event->position().toPoint()).isValid()) QListView::mousePressEvent(event);
    else event->accept();
}

void ColumnView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (!isForDelegate(*event)) QListView::mouseDoubleClickEvent(event);
}

void ColumnView::mouseReleaseEvent(QMouseEvent* event) {
    if (!isForDelegate(*event)) QListView::mouseReleaseEvent(event);
}

}  // namespace orrinvale
