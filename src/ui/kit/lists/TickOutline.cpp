// Hundreds of thousands of rows may be open, so that a row's number is computed from its height,
// and a change redraws what is in view.
#include "ui/kit/lists/TickOutline.h"

#include <QAccessible>
#include <QContextMenuEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QPainter>

#include "ui/kit/lists/AccessibleOutline.h"
#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/lists/columnWidths.h"
#include "ui/kit/lists/menuPlace.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int outlineChevron = 14;
// So many rows before the end the next ones are shown, so that nobody runs into the end by
// scrolling.
constexpr int rowsAhead = 200;

}  // namespace

TickOutline::TickOutline(FlatHeader* header, QWidget* parent) : QTreeView(parent) {
    installAccessibleOutline();
    renewAccessible(*this);
    setHeader(header);
    m_headerBox = new TickBox({}, header);
    followTheme();
    connect(&Theme::shared(), &Theme::changed, this, &TickOutline::followTheme);
    setUniformRowHeights(
        true);  // with hundreds of thousands of rows the view must not ask each for its height
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setExpandsOnDoubleClick(true);
    setIndentation(20);
    setFrameShape(NoFrame);
    setVerticalScrollMode(ScrollPerPixel);
    setItemDelegate(new RowDelegate(this));
    header->setSortIndicatorShown(false);
    header->setStretchLastSection(false);
    header->setHighlightSections(false);
    header->setSectionsMovable(false);
    header->setMinimumSectionSize(boxColumnWidth);
    connect(header, &QHeaderView::sectionResized, this, [this] { placeHeaderBox(); });
    connect(header, &QHeaderView::geometriesChanged, this, [this] { placeHeaderBox(); });
}

// The header outlives this part of the object, and is told to hide when a window of its own ends.
TickOutline::~TickOutline() { header()->disconnect(this); }

// A row of the accent's colour would drown its grey path; the selection is the quiet colour that
// the rest of the page uses.
void TickOutline::followTheme() {
    QPalette colors;
    colors.setColor(QPalette::Highlight, Theme::shared().color(Theme::Color::Selection));
    colors.setColor(QPalette::HighlightedText, Theme::shared().color(Theme::Color::Text));
    setPalette(colors);
}

void TickOutline::setModel(QAbstractItemModel* model) {
    QTreeView::setModel(model);
    m_rows = qobject_cast<TickModel*>(model);
    if (m_rows != nullptr) layOutColumns();
}

void TickOutline::layOutColumns() {
    setTreePosition(m_rows->nameColumn());
    QHeaderView& columns = *header();
    for (int column = 0; column < m_rows->columnCount(); ++column) {
        const int width = m_rows->columnWidth(column);
        // Columns that can be clicked on can be pulled wider too.
        columns.setSectionResizeMode(column,
                                     width == 0 ? QHeaderView::Stretch
                                     : columns.sectionsClickable() && column != m_rows->boxColumn()
                                         ? QHeaderView::Interactive
                                         : QHeaderView::Fixed);
        if (width != 0) columns.resizeSection(column, width);
    }
    placeHeaderBox();
}

void TickOutline::placeHeaderBox() {
    const int column = m_rows != nullptr ? m_rows->boxColumn() : -1;
    const bool isAlone = column >= 0 && m_rows->look(column) == CellLook::Box;
    m_headerBox->setVisible(isAlone);
    if (!isAlone) return;
    const QSize size = m_headerBox->sizeHint();
    const int left = header()->sectionViewportPosition(column);
    // In one line with the boxes of the rows, whose halo reaches out to the same left.
    m_headerBox->setGeometry(left + Theme::gapTiny - tickBoxHalo,
                             (header()->height() - size.height()) / 2, size.width(), size.height());
}

void TickOutline::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight,
                              const QList<int>& roles) {
    // More than one cell, or one with rows below it: the models speak of the top level and mean all
    // that stands below it too.
    // The base class would draw the rows named and no others, and look both up among all that are
    // open, which took 45 ms of 260,000; no row changes its height here.
    if (topLeft != bottomRight || model()->hasChildren(topLeft.siblingAtColumn(0)))
        viewport()->update();
    else QTreeView::dataChanged(topLeft, bottomRight, roles);
    if (QAccessible::isActive() && hasFocus()) tellOfBox();
}

// Of the row that the keyboard is on, where a person ticks who does not see the others change.
void TickOutline::tellOfBox() const {
    const QModelIndex current = currentIndex();
    QAccessibleInterface* const list =
        QAccessible::queryAccessibleInterface(const_cast<TickOutline*>(this));
    if (!current.isValid() || list == nullptr || m_rows == nullptr || m_rows->boxColumn() < 0)
        return;
    QAccessible::State changed;
    changed.checked = true;
    QAccessibleStateChangeEvent event(
        list->child((openRow(current) + 1) * m_rows->columnCount() + m_rows->boxColumn()), changed);
    QAccessible::updateAccessibility(&event);
}

// All rows are of one height, so that places are rows and the other way round; the base class keeps
// its table of rows to itself.
int TickOutline::openRow(const QModelIndex& index) const {
    const QRect row = visualRect(index.siblingAtColumn(treePosition()));
    return row.isEmpty() ? -1 : (row.y() + verticalOffset()) / row.height();
}

int TickOutline::openRows() const {
    QModelIndex last;
    while (model() != nullptr && model()->rowCount(last) > 0 &&
           (!last.isValid() || isExpanded(last)))
        last = model()->index(model()->rowCount(last) - 1, 0, last);
    return last.isValid() ? openRow(last) + 1 : 0;
}

QModelIndex TickOutline::indexOfOpenRow(int row, int column) const {
    const int height =
        model() != nullptr ? visualRect(model()->index(0, treePosition())).height() : 0;
    if (height == 0) return {};
    const QPoint place(columnViewportPosition(treePosition()),
                       row * height - verticalOffset() + height / 2);
    return indexAt(place).siblingAtColumn(column);
}

void TickOutline::toggleBox(const QModelIndex& index) {
    m_rows->setData(index.siblingAtColumn(m_rows->boxColumn()), {}, TickModel::StateRole);
}

void TickOutline::keyPressEvent(QKeyEvent* event) {
    const QModelIndex current = currentIndex();
    if (event->key() == Qt::Key_Space && current.isValid()) {
        if (event->modifiers().testFlag(Qt::ControlModifier)) Q_EMIT previewWanted();
        else if (!event->isAutoRepeat()) toggleBox(current);
        return;
    }
    QTreeView::keyPressEvent(event);
}

void TickOutline::contextMenuEvent(QContextMenuEvent* event) {
    if (const auto place = menuPlace(*this, *event))
        Q_EMIT menuWanted(place->index, place->position);
}

void TickOutline::focusInEvent(QFocusEvent* event) {
    m_keyboardFocus.focusIn(*event);
    QTreeView::focusInEvent(event);
}

void TickOutline::drawRow(QPainter* painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    QTreeView::drawRow(painter, option, index);
    const QModelIndex current = currentIndex();
    if (!m_keyboardFocus.isShown(*this) || index.row() != current.row() ||
        index.parent() != current.parent())
        return;
    drawFocusRing(*painter, QRectF(option.rect).adjusted(1, 1, -1, -1), Theme::radiusSmall);
}

void TickOutline::verticalScrollbarValueChanged(int value) {
    QTreeView::verticalScrollbarValueChanged(value);
    if (m_rows == nullptr) return;
    QList<QPersistentModelIndex> ending;  // showing more moves rows
    for (QModelIndex index = indexAt(viewport()->rect().bottomLeft()); index.isValid();
         index = index.parent())
        if (index.row() + rowsAhead >= m_rows->rowCount(index.parent()) &&
            m_rows->hasMore(index.parent()))
            ending.push_back(index.parent());
    for (const QPersistentModelIndex& level : ending) m_rows->showMore(level);
}

void TickOutline::drawBranches(QPainter* painter, const QRect& rect,
                               const QModelIndex& index) const {
    if (!model()->hasChildren(index.siblingAtColumn(0))) return;
    const bool isOpen = isExpanded(index.siblingAtColumn(0));
    const QRect box(rect.right() - indentation() + (indentation() - outlineChevron) / 2,
                    rect.top() + (rect.height() - outlineChevron) / 2, outlineChevron,
                    outlineChevron);
    const bool mirrored = layoutDirection() == Qt::RightToLeft;
    picture(isOpen     ? QStringLiteral("chevron_down")
            : mirrored ? QStringLiteral("chevron_left")
                       : QStringLiteral("chevron_right"))
        .paint(painter, box);
}

}  // namespace orrinvale
