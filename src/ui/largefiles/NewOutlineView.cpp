// NewOutlineView: see NewOutlineView.h.
#include "ui/largefiles/NewOutlineView.h"

#include <QHeaderView>
#include <QKeyEvent>

#include "ui/kit/controls/TickBox.h"
#include "ui/kit/look/Theme.h"
#include "ui/largefiles/CustomHeaderCell.h"
#include "ui/largefiles/FileNodeModel.h"
#include "ui/largefiles/FileNodeRowDelegate.h"

namespace orrinvale {
namespace {

constexpr int sizeColumnWidth = 96;
// So many rows before the end the next ones are asked for, so that nobody runs into the end by
// scrolling.
constexpr int rowsAhead = 200;

}  // namespace

NewOutlineView::NewOutlineView(QWidget* parent)
    : TickOutline({FileNodeModel::CheckBox, FileNodeModel::StateRole}, new CustomHeaderCell,
                  parent) {
    setObjectName(QStringLiteral("outlineView"));
    setAccessibleName(tr("Files and folders by size"));
    setItemDelegate(new FileNodeRowDelegate(this));
    headerBox()->setObjectName(QStringLiteral("selectAllButton"));
    headerBox()->setAccessibleName(tr("Select everything"));
    setMouseTracking(true);
}

void NewOutlineView::setModel(QAbstractItemModel* model) {
    TickOutline::setModel(model);
    using Model = FileNodeModel;
    setTreePosition(Model::Name);
    QHeaderView& columns = *header();
    columns.setSectionResizeMode(QHeaderView::Fixed);
    for (const int column : {Model::Name, Model::Path})
        columns.setSectionResizeMode(column, QHeaderView::Stretch);
    for (const int column : {Model::CheckBox, Model::OpenFinder, Model::Pareview})
        columns.resizeSection(column, boxColumnWidth);
    columns.resizeSection(Model::Size, sizeColumnWidth);
    placeHeaderBox();
}

void NewOutlineView::clearRowNum() { selectionModel()->clearSelection(); }

void NewOutlineView::keyPressEvent(QKeyEvent* event) {
    // Opening all below a folder at once would read a whole disk into the list.
    if (event->key() == Qt::Key_Asterisk) return;
    TickOutline::keyPressEvent(event);
}

void NewOutlineView::verticalScrollbarValueChanged(int value) {
    TickOutline::verticalScrollbarValueChanged(value);
    QList<QPersistentModelIndex> ending;  // asking for more moves rows
    for (QModelIndex index = indexAt(viewport()->rect().bottomLeft()); index.isValid();
         index = index.parent())
        if (index.row() + rowsAhead >= model()->rowCount(index.parent()))
            ending.push_back(index.parent());
    for (const QPersistentModelIndex& level : ending) Q_EMIT moreWanted(level);
}

}  // namespace orrinvale
