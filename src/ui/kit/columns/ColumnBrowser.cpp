// A column is a record; its view comes when it is in sight. Places are counted from the edge where
// reading begins, and mirrored when they are given to a widget.
#include "ui/kit/columns/ColumnBrowser.h"

#include <QEvent>
#include <QItemSelectionModel>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>
#include <algorithm>

#include "ui/kit/columns/ColumnGrip.h"
#include "ui/kit/columns/ColumnView.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int detailWidth = 260;

}  // namespace

ColumnBrowser::ColumnBrowser(QWidget* parent) : QAbstractScrollArea(parent) {
    setFrameShape(NoFrame);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    horizontalScrollBar()->setSingleStep(columnWidth / 4);
    connect(&Theme::shared(), &Theme::changed, viewport(), [this] { viewport()->update(); });
}

// Views use the models of the columns.
ColumnBrowser::~ColumnBrowser() {
    for (Column& column : m_columns) putAway(column);
}

void ColumnBrowser::setDetail(QWidget* detail) {
    m_detail = detail;
    detail->setParent(viewport());
    detail->hide();
}

void ColumnBrowser::setRoot(std::unique_ptr<ColumnModel> root) {
    const bool hadFocus = hasFocus();
    dropBehind(-1);
    if (root) push(std::move(root));
    select(0);
    place();
    if (hadFocus) setFocus();
    Q_EMIT chosenChanged();
}

std::vector<int> ColumnBrowser::currentRows() const {
    std::vector<int> rows;
    for (const Column& column : m_columns)
        if (column.current.isValid()) rows.push_back(column.current.row());
    return rows;
}

QModelIndex ColumnBrowser::current() const {
    for (auto column = m_columns.rbegin(); column != m_columns.rend(); ++column)
        if (column->current.isValid()) return column->current;
    return {};
}

bool ColumnBrowser::hasDetail() const {
    return m_detail != nullptr && !m_columns.empty() && m_columns.back().current.isValid();
}

void ColumnBrowser::push(std::unique_ptr<ColumnModel> model) {
    Column column;
    column.model = std::move(model);
    m_columns.push_back(std::move(column));
}

void ColumnBrowser::drop(Column& column) {
    putAway(column);
    column.current = QPersistentModelIndex();
    // A model is often closed from within one of its own signals.
    column.model.release()->deleteLater();
}

void ColumnBrowser::dropBehind(int column) {
    const bool hadFocus = m_selected > column && column >= 0 && hasFocus();
    while (lastColumn() > column) {
        drop(m_columns.back());
        m_columns.pop_back();
    }
    if (m_selected > column) select(std::max(column, 0));
    if (hadFocus) setFocus();
}

void ColumnBrowser::setCurrent(int column, const QModelIndex& row) {
    Column& in = m_columns[std::size_t(column)];
    in.current = row;
    if (in.view == nullptr || in.view->currentIndex() == row) return;
    const QScopedValueRollback taking(m_isTaking, true);
    if (row.isValid()) in.view->setCurrentIndex(row);
    else in.view->selectionModel()->clear();
}

void ColumnBrowser::take(int column, const QModelIndex& row) {
    if (m_isTaking || row == m_columns[std::size_t(column)].current) return;
    dropBehind(column);
    setCurrent(column, row);
    if (auto next = row.isValid() ? model(column).open(row.row()) : nullptr) push(std::move(next));
    place();
    showEnd();
    Q_EMIT chosenChanged();
}

void ColumnBrowser::choose(int column, int row) {
    if (column < 0 || column > lastColumn()) return;
    select(column);
    take(column, model(column).index(row));
}

void ColumnBrowser::openRows(const std::vector<int>& rows) {
    for (std::size_t column = 0; column < rows.size() && column < m_columns.size(); ++column) {
        const QModelIndex row = m_columns[column].model->index(rows[column]);
        if (!row.isValid()) break;
        dropBehind(int(column));
        setCurrent(int(column), row);
        if (auto next = model(int(column)).open(row.row())) push(std::move(next));
        m_selected = int(column);
    }
    place();
    select(m_selected);
    showEnd();
    if (!rows.empty() && m_selected <= lastColumn() && view(m_selected) != nullptr)
        view(m_selected)->scrollTo(m_columns[std::size_t(m_selected)].current);
    Q_EMIT chosenChanged();
}

void ColumnBrowser::closeBehind(int column) {
    dropBehind(column);
    setCurrent(column, {});
    place();
    Q_EMIT chosenChanged();
}

// Going back leaves the column open that was come from, with nothing chosen in it.
void ColumnBrowser::goTo(int column, int step) {
    const int to = column + step;
    if (to < 0 || to > lastColumn()) return;
    if (step < 0) closeBehind(column);
    select(to);
    if (view(to) == nullptr) showColumn(to);
    if (view(to) != nullptr) view(to)->setFocus(Qt::TabFocusReason);
    if (step > 0 && !m_columns[std::size_t(to)].current.isValid()) take(to, model(to).index(0));
    showColumn(to);
}

// One column is a stop of the Tab key.
void ColumnBrowser::select(int column) {
    m_selected = std::clamp(column, 0, std::max(lastColumn(), 0));
    for (int each = 0; each <= lastColumn(); ++each)
        if (view(each) != nullptr)
            view(each)->setFocusPolicy(each == m_selected ? Qt::StrongFocus : Qt::ClickFocus);
    setFocusProxy(m_columns.empty() ? nullptr : view(m_selected));
}

void ColumnBrowser::redraw() {
    for (const Column& column : m_columns)
        if (column.view != nullptr) column.view->viewport()->update();
}

void ColumnBrowser::reload() {
    {
        const QScopedValueRollback taking(m_isTaking, true);
        for (const Column& column : m_columns) column.model->reload();
    }
    for (int column = 0; column < lastColumn(); ++column) {
        if (m_columns[std::size_t(column)].current.isValid()) continue;
        closeBehind(column);
        return;
    }
    place();
    Q_EMIT chosenChanged();
}

QRect ColumnBrowser::rowRect(int column, int row) const {
    if (column < 0 || column > lastColumn() || view(column) == nullptr) return {};
    const QRect place = view(column)->visualRect(model(column).index(row));
    return {view(column)->viewport()->mapTo(this, place.topLeft()), place.size()};
}

int ColumnBrowser::columnOf(const ColumnView* view) const {
    const auto found = std::ranges::find(m_columns, view, &Column::view);
    return found == m_columns.end() ? -1 : int(found - m_columns.begin());
}

void ColumnBrowser::makeView(int number) {
    Column& column = m_columns[std::size_t(number)];
    auto* const view = new ColumnView(viewport());
    view->setObjectName(QStringLiteral("column%1").arg(number));
    view->setAccessibleName(column.model->headerData(0, Qt::Horizontal).toString());
    if (m_delegate != nullptr) view->setItemDelegate(m_delegate);
    view->setModel(column.model.get());
    column.view = view;
    column.grip = new ColumnGrip(viewport());
    QWidget::setTabOrder(this, view);
    connectView(*view);
    setCurrent(number, column.current);
}

void ColumnBrowser::connectView(ColumnView& made) {
    ColumnView* const view = &made;
    const auto told = [this, view](auto signal) {
        return [this, view, signal](const QModelIndex& index) {
            Q_EMIT(this->*signal)(columnOf(view), index.row());
        };
    };
    connect(view->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this, view](const QModelIndex& row) { take(columnOf(view), row); });
    // Whoever has gone deeper comes back by a click on the row that is chosen already.
    connect(view, &QAbstractItemView::clicked, this, [this, view] {
        const int column = columnOf(view);
        if (column < lastColumn() && m_columns[std::size_t(column) + 1].current.isValid())
            closeBehind(column + 1);
    });
    connect(view, &ColumnView::columnWanted, this,
            [this, view](int step) { goTo(columnOf(view), step); });
    connect(view, &ColumnView::focused, this, [this, view] { select(columnOf(view)); });
    connect(view, &ColumnView::removalWanted, this, &ColumnBrowser::removalWanted);
    connect(view, &ColumnView::tickWanted, this, told(&ColumnBrowser::tickWanted));
    connect(view, &QAbstractItemView::activated, this, told(&ColumnBrowser::openWanted));
    connect(view, &ColumnView::menuWanted, this, [this, view](const QModelIndex& row, QPoint at) {
        Q_EMIT menuWanted(columnOf(view), row.row(), at);
    });
    ColumnGrip* const grip = m_columns[std::size_t(columnOf(view))].grip;
    const auto widen = [this, view](int width) {
        m_columns[std::size_t(columnOf(view))].width = std::max(width, narrowest);
        place();
    };
    connect(grip, &ColumnGrip::pressed, this, [this, view] { m_widthAtPress = view->width(); });
    connect(grip, &ColumnGrip::dragged, this,
            [this, widen](int by) { widen(m_widthAtPress + 1 + by); });
    connect(grip, &ColumnGrip::resetWanted, this, [widen] { widen(columnWidth); });
}

void ColumnBrowser::putAway(Column& column) {
    if (column.view == nullptr) return;
    column.scroll = column.view->verticalScrollBar()->value();
    if (focusProxy() == column.view) setFocusProxy(nullptr);
    for (QWidget* const each :
         {static_cast<QWidget*>(column.view), static_cast<QWidget*>(column.grip)}) {
        each->hide();
        each->deleteLater();
    }
    column.view->selectionModel()->disconnect(this);
    column.view->disconnect(this);
    column.view->setModel(nullptr);
    column.view = nullptr;
    column.grip = nullptr;
}

int ColumnBrowser::startOf(int column) const {
    int start = 0;
    for (int each = 0; each < column; ++each) start += m_columns[std::size_t(each)].width;
    return start;
}

void ColumnBrowser::place() {
    int total = startOf(lastColumn() + 1);
    if (hasDetail()) total += detailWidth;
    QScrollBar& bar = *horizontalScrollBar();
    bar.setPageStep(viewport()->width());
    bar.setRange(0, std::max(0, total - viewport()->width()));
    int start = -bar.value();
    for (int column = 0; column <= lastColumn(); ++column) {
        placeColumn(column, start);
        start += m_columns[std::size_t(column)].width;
    }
    if (m_detail == nullptr) return;
    m_detail->setVisible(hasDetail());
    // Where there is room behind it, it takes it.
    const int width = std::max(detailWidth, std::min(viewport()->width() - start, 2 * detailWidth));
    m_detail->setGeometry(QStyle::visualRect(layoutDirection(), viewport()->rect(),
                                             {start, 0, width, viewport()->height()}));
}

void ColumnBrowser::placeColumn(int number, int start) {
    Column& column = m_columns[std::size_t(number)];
    const bool isInSight = start + column.width > 0 && start < viewport()->width();
    const bool hasKeyboard = column.view != nullptr && column.view->hasFocus();
    if (!isInSight && !hasKeyboard) {
        putAway(column);
        return;
    }
    const bool isNew = column.view == nullptr;
    if (isNew) makeView(number);
    const auto shown = [this](const QRect& logical) {
        return QStyle::visualRect(layoutDirection(), viewport()->rect(), logical);
    };
    const int height = viewport()->height();
    column.view->setGeometry(shown({start, 0, column.width - 1, height}));
    column.grip->setGeometry(shown(
        {start + column.width - 1 - ColumnGrip::gripWidth / 2, 0, ColumnGrip::gripWidth, height}));
    if (!isNew) return;
    column.view->show();
    column.grip->show();
    column.grip->raise();
    if (column.scroll != 0) {
        column.view->doItemsLayout();  // before that there is nothing to scroll
        column.view->verticalScrollBar()->setValue(column.scroll);
    }
    if (number == m_selected) select(number);
}

void ColumnBrowser::showEnd() {
    QScrollBar& bar = *horizontalScrollBar();
    bar.setValue(bar.maximum());
    // The chosen row stays in sight, however narrow the window.
    showColumn(m_selected);
}

void ColumnBrowser::showColumn(int column) {
    if (column > lastColumn()) return;
    const int start = startOf(column);
    const int end = start + m_columns[std::size_t(column)].width;
    QScrollBar& bar = *horizontalScrollBar();
    if (end > bar.value() + viewport()->width()) bar.setValue(end - viewport()->width());
    if (start < bar.value()) bar.setValue(start);
}

void ColumnBrowser::resizeEvent(QResizeEvent* /*event*/) { place(); }

void ColumnBrowser::scrollContentsBy(int /*dx*/, int /*dy*/) { place(); }

void ColumnBrowser::changeEvent(QEvent* event) {
    QAbstractScrollArea::changeEvent(event);
    if (event->type() == QEvent::LayoutDirectionChange) place();
}

void ColumnBrowser::paintEvent(QPaintEvent* /*event*/) {
    QPainter(viewport()).fillRect(viewport()->rect(), Theme::shared().color(Theme::Color::Surface));
}

}  // namespace orrinvale
