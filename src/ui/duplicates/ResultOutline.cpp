// ResultOutline: see ResultOutline.h.
#include "ui/duplicates/ResultOutline.h"

#include <QContextMenuEvent>
#include <QDateTime>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLocale>
#include <QPainter>
#include <algorithm>

#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/ResultRowDelegate.h"
#include "ui/kit/controls/FlatHeader.h"
#include "ui/kit/controls/TickBox.h"
#include "ui/kit/controls/TickBoxDelegate.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int boxColumnWidth = 34;
constexpr int countColumnWidth = 64;
constexpr int sizeColumnWidth = 86;

// As wide as a date in the language of the desktop.
int dateColumnWidth() {
    const QDateTime wide(QDate(2028, 12, 28), QTime(20, 58));
    QString text = QLocale::system().toString(wide, QLocale::ShortFormat);
    // Digits differ in width; the date that is shown may have the widest throughout.
    const QFontMetrics metrics(Theme::shared().font(Theme::Text::Body));
    const auto narrower = [&](QChar a, QChar b) { return metrics.horizontalAdvance(a) < metrics.horizontalAdvance(b); };
    const QString digits = QStringLiteral("0123456789");
    const QChar widest = *std::max_element(digits.begin(), digits.end(), narrower);
    for (QChar& letter : text)
        if (letter.isDigit()) letter = widest;
    return metrics.horizontalAdvance(text) + 2 * FlatHeader::textMargin + 1;
}

constexpr int chevronSide = 14;

}  // namespace

ResultOutline::ResultOutline(QWidget* parent) : QTreeView(parent) {
    setHeader(new FlatHeader(this));
    m_headerBox = new TickBox({}, header());
    followTheme();
    connect(&Theme::shared(), &Theme::changed, this, &ResultOutline::followTheme);
    setObjectName(QStringLiteral("outline"));
    setAccessibleName(tr("Groups of duplicates"));
    setUniformRowHeights(true);  // with hundreds of thousands of rows the view must not ask each for its height
    setSelectionBehavior(SelectRows);
    setSelectionMode(SingleSelection);
    setEditTriggers(NoEditTriggers);
    setExpandsOnDoubleClick(true);
    setIndentation(20);
    setFrameShape(NoFrame);
    setVerticalScrollMode(ScrollPerPixel);
    setItemDelegate(new ResultRowDelegate(this));
    setItemDelegateForColumn(DuplicateResultModel::Checkbox,
                             new TickBoxDelegate(DuplicateResultModel::StateRole, this));
    m_headerBox->setObjectName(QStringLiteral("button"));
    m_headerBox->setAccessibleName(tr("Select all but one of each group"));
    header()->setSectionsClickable(true);
    header()->setSortIndicatorShown(false);
    header()->setStretchLastSection(false);
    header()->setHighlightSections(false);
    connect(header(), &QHeaderView::sectionResized, this, [this] { placeHeaderBox(); });
    connect(header(), &QHeaderView::geometriesChanged, this, [this] { placeHeaderBox(); });
}

void ResultOutline::setModel(QAbstractItemModel* model) {
    QTreeView::setModel(model);
    using Model = DuplicateResultModel;
    setTreePosition(Model::NameColumn);
    QHeaderView& columns = *header();
    columns.setSectionsMovable(false);
    columns.setMinimumSectionSize(boxColumnWidth);
    columns.setSectionResizeMode(Model::Checkbox, QHeaderView::Fixed);
    columns.setSectionResizeMode(Model::NameColumn, QHeaderView::Stretch);
    columns.resizeSection(Model::Checkbox, boxColumnWidth);
    columns.resizeSection(Model::AllSelectNum, countColumnWidth);
    columns.resizeSection(Model::FileSize, sizeColumnWidth);
    columns.resizeSection(Model::ModifyDate, dateColumnWidth());
    placeHeaderBox();
}

// A row of the accent's colour would drown its grey path; the selection is the quiet colour that the rest of the page uses.
void ResultOutline::followTheme() {
    QPalette colors;
    colors.setColor(QPalette::Highlight, Theme::shared().color(Theme::Color::Selection));
    colors.setColor(QPalette::HighlightedText, Theme::shared().color(Theme::Color::Text));
    setPalette(colors);
}

void ResultOutline::placeHeaderBox() {
    const QSize size = m_headerBox->sizeHint();
    const int left = header()->sectionViewportPosition(DuplicateResultModel::Checkbox);
    // In one line with the boxes of the rows, whose halo reaches out to the same left.
    m_headerBox->setGeometry(left + Theme::gapTiny - tickBoxHalo, (header()->height() - size.height()) / 2,
                             size.width(), size.height());
}

void ResultOutline::dataChanged(const QModelIndex& topLeft, const QModelIndex& bottomRight, const QList<int>& roles) {
    // The base class looks both rows up among all that are open, which took 45 ms of 260,000; no row changes its height here.
    if (topLeft.row() != bottomRight.row()) viewport()->update();
    else QTreeView::dataChanged(topLeft, bottomRight, roles);
}

void ResultOutline::keyPressEvent(QKeyEvent* event) {
    const QModelIndex current = currentIndex();
    if (event->key() == Qt::Key_Space && current.isValid()) {
        if (event->modifiers().testFlag(Qt::ControlModifier)) Q_EMIT previewWanted();
        else if (!event->isAutoRepeat())
            model()->setData(current.siblingAtColumn(DuplicateResultModel::Checkbox), {},
                             DuplicateResultModel::StateRole);
        return;
    }
    QTreeView::keyPressEvent(event);
}

void ResultOutline::contextMenuEvent(QContextMenuEvent* event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = byKey ? currentIndex() : indexAt(event->pos());
    if (!index.isValid()) return;
    setCurrentIndex(index);
    Q_EMIT menuWanted(index, byKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos());
}

void ResultOutline::focusInEvent(QFocusEvent* event) {
    m_keyboardFocus.focusIn(*event);
    QTreeView::focusInEvent(event);
}

void ResultOutline::drawRow(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QTreeView::drawRow(painter, option, index);
    const QModelIndex current = currentIndex();
    if (!m_keyboardFocus.isShown(*this) || index.row() != current.row() || index.parent() != current.parent()) return;
    drawFocusRing(*painter, QRectF(option.rect).adjusted(1, 1, -1, -1), Theme::radiusSmall);
}

void ResultOutline::drawBranches(QPainter* painter, const QRect& rect, const QModelIndex& index) const {
    if (!model()->hasChildren(index.siblingAtColumn(0))) return;
    const bool isOpen = isExpanded(index.siblingAtColumn(0));
    const QRect box(rect.right() - indentation() + (indentation() - chevronSide) / 2,
                    rect.top() + (rect.height() - chevronSide) / 2, chevronSide, chevronSide);
    const bool mirrored = layoutDirection() == Qt::RightToLeft;
    picture(isOpen     ? QStringLiteral("chevron_down")
            : mirrored ? QStringLiteral("chevron_left")
                       : QStringLiteral("chevron_right"))
        .paint(painter, box);
}

}  // namespace orrinvale
