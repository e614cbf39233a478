#include "ui/largefiles/NewOutlineView.h"

#include <QKeyEvent>

#include "ui/kit/lists/TickBox.h"
#include "ui/largefiles/CustomHeaderCell.h"

namespace orrinvale {

NewOutlineView::NewOutlineView(QWidget* parent) : TickOutline(new CustomHeaderCell, parent) {
    setObjectName(QStringLiteral("outlineView"));
    setAccessibleName(tr("Files and folders by size"));
    headerBox()->setObjectName(QStringLiteral("selectAllButton"));
    headerBox()->setAccessibleName(tr("Select everything"));
    setMouseTracking(true);
}

void NewOutlineView::clearRowNum() { selectionModel()->clearSelection(); }

void NewOutlineView::keyPressEvent(QKeyEvent* event) {
    // Opening all below a folder at once would read a whole disk into the list.
    if (event->key() == Qt::Key_Asterisk) return;
    TickOutline::keyPressEvent(event);
}

}  // namespace orrinvale
