// Two lines in a narrow row: the name, and below it the share as a bar beside the size.
#include "ui/diskusage/FileSystemBrowserCell.h"

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "ui/kit/chrome/buttonLook.h"
#include "ui/kit/columns/ColumnView.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int boxStart = Theme::gapSmall;
constexpr int afterBox = boxStart + tickBoxSize + Theme::gapSmall;
constexpr int chevronSide = 12;
constexpr int cellBarHeight = 4;
constexpr int nameHeight = 18;

QRect mirrored(const QStyleOptionViewItem& option, const QRect& logical) {
    return QStyle::visualRect(option.direction, option.rect, logical);
}

int aligned(const QStyleOptionViewItem& option, Qt::Alignment side) {
    return int(QStyle::visualAlignment(option.direction, side | Qt::AlignVCenter));
}

}  // namespace

Theme::Color getColorWithNode(std::uint64_t size) {
    if (size <= 1'000) return Theme::Color::SizeWhite;
    if (size <= 1'000'000) return Theme::Color::SizeGreen;
    if (size <= 999'999'999) return Theme::Color::SizeYellow;
    if (size <= 18'446'744'072'982'171'647U) return Theme::Color::SizeOrange;
    return Theme::Color::SizeRed;
}

bool FSBrowserCell::hitTestForEvent(QPoint place, const QRect& frame) {
    constexpr int counted = 17;
    return QRect(frame.topLeft(), QSize(counted, frame.height())).contains(place);
}

FileSystemBrowserCell::FileSystemBrowserCell(Page page, QObject* parent)
    : QStyledItemDelegate(parent), m_page(std::move(page)) {}

QRect FileSystemBrowserCell::checkBoxForFrame(const QRect& frame, Qt::LayoutDirection direction) {
    const int top = frame.top() + (frame.height() - tickBoxSize) / 2;
    return QStyle::visualRect(direction, frame,
                              {frame.left() + boxStart, top, tickBoxSize, tickBoxSize});
}

QRect FileSystemBrowserCell::hitRect(const QRect& frame, Qt::LayoutDirection direction) {
    return checkBoxForFrame(frame, direction)
        .adjusted(-tickBoxHalo, -tickBoxHalo, tickBoxHalo, tickBoxHalo);
}

// The fields are those of one row for as long as it is drawn.
void FileSystemBrowserCell::fill(const QModelIndex& index) const {
    m_page.willDisplay(const_cast<FileSystemBrowserCell&>(*this), index);
}

QSize FileSystemBrowserCell::sizeHint(const QStyleOptionViewItem& option,
                                      const QModelIndex& /*index*/) const {
    // Letters may be larger than usual.
    return {1, std::max(rowHeight, 2 * option.fontMetrics.height())};
}

void FileSystemBrowserCell::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                  const QModelIndex& index) const {
    fill(index);
    QStyleOptionViewItem row = option;
    row.index = index;
    QStyle* const style = option.widget != nullptr ? option.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &row, painter, option.widget);
    painter->save();
    if (button) drawBox(*painter, option, index);
    drawWords(*painter, option);
    const auto* const view = qobject_cast<const ColumnView*>(option.widget);
    if (view != nullptr && view->showsFocus() && view->currentIndex() == index)
        drawFocusRing(*painter, QRectF(option.rect).adjusted(1, 1, -1, -1), Theme::radiusSmall);
    painter->restore();
}

void FileSystemBrowserCell::drawBox(QPainter& painter, const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const {
    const QPoint pointer =
        option.widget != nullptr ? option.widget->mapFromGlobal(QCursor::pos()) : QPoint(-1, -1);
    TickLook look;
    look.isEnabled = isEnabled && option.state.testFlag(QStyle::State_Enabled);
    look.isHovered = look.isEnabled && option.state.testFlag(QStyle::State_MouseOver) &&
                     hitRect(option.rect, option.direction).contains(pointer);
    look.isPressed =
        look.isHovered && m_pressed == index && QGuiApplication::mouseButtons() != Qt::NoButton;
    paintTickBox(painter, checkBoxForFrame(option.rect, option.direction), *button, look);
}

void FileSystemBrowserCell::drawWords(QPainter& painter, const QStyleOptionViewItem& option) const {
    const Theme& theme = Theme::shared();
    QRect place = option.rect.adjusted(button ? afterBox : boxStart, 1, -Theme::gapSmall, -1);
    if (!image.isNull()) {
        const QRect icon(place.left(), place.top() + (place.height() - iconSide) / 2, iconSide,
                         iconSide);
        image.paint(&painter, mirrored(option, icon));
        place.setLeft(icon.right() + Theme::gapSmall);
    }
    if (opensColumn) {
        const QRect sign(place.right() - chevronSide + 3,
                         place.top() + (place.height() - chevronSide) / 2, chevronSide,
                         chevronSide);
        picture(option.direction == Qt::RightToLeft ? QStringLiteral("chevron_left")
                                                    : QStringLiteral("chevron_right"))
            .paint(&painter, mirrored(option, sign));
    }
    place.setRight(place.right() - chevronSide);  // sizes stand in one line, chevron or not

    QRect line = place;
    line.setHeight(std::max(nameHeight, place.height() / 2));
    painter.setFont(theme.font(Theme::Text::Body));
    painter.setPen(theme.color(labelColor));
    painter.drawText(
        mirrored(option, line), aligned(option, Qt::AlignLeft) | Qt::TextSingleLine,
        painter.fontMetrics().elidedText(onOneLine(titleStr), Qt::ElideMiddle, line.width()));
    line = place;
    line.setTop(place.top() + std::max(nameHeight, place.height() / 2) - 1);
    painter.setFont(theme.font(Theme::Text::Caption));
    painter.setPen(theme.color(sizeColor));
    painter.drawText(mirrored(option, line), aligned(option, Qt::AlignRight) | Qt::TextSingleLine,
                     sizeStr);
    // As wide as any size is, so that the bars of a column can be compared.
    line.setRight(line.right() -
                  std::max(painter.fontMetrics().horizontalAdvance(sizeStr),
                           painter.fontMetrics().horizontalAdvance(QStringLiteral("999.99 GB"))) -
                  Theme::gapSmall);
    if (!noteStr.isEmpty()) drawNote(painter, option, line);
    else if (share) drawShare(painter, option, line);
}

void FileSystemBrowserCell::drawNote(QPainter& painter, const QStyleOptionViewItem& option,
                                     const QRect& place) const {
    painter.setPen(Theme::shared().color(Theme::Color::TextSecondary));
    painter.drawText(mirrored(option, place), aligned(option, Qt::AlignLeft) | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(noteStr, Qt::ElideRight, place.width()));
}

void FileSystemBrowserCell::drawShare(QPainter& painter, const QStyleOptionViewItem& option,
                                      const QRect& place) const {
    const int top = place.center().y() - cellBarHeight / 2 + 1;
    QRectF bar(place.left(), top, place.width(), cellBarHeight);
    const auto draw = [&](Theme::Color color) {
        painter.setBrush(Theme::shared().color(color));
        painter.drawRoundedRect(mirrored(option, bar.toRect()), cellBarHeight / 2.0,
                                cellBarHeight / 2.0);
    };
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    draw(Theme::Color::Line);
    bar.setWidth(std::max(1.0, bar.width() * std::clamp(*share, 0.0, 1.0)));
    draw(Theme::Color::Accent);
}

bool FileSystemBrowserCell::editorEvent(QEvent* event, QAbstractItemModel* /*model*/,
                                        const QStyleOptionViewItem& option,
                                        const QModelIndex& index) {
    const bool isPress =
        event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (!isPress && event->type() != QEvent::MouseButtonRelease) return false;
    const auto& mouse = static_cast<const QMouseEvent&>(*event);
    if (mouse.button() != Qt::LeftButton) return false;
    if (isPress) m_page.touched(index);
    fill(index);
    const bool isInside =
        button && hitRect(option.rect, option.direction).contains(mouse.position().toPoint());
    if (isPress) {
        m_pressed = isInside ? QPersistentModelIndex(index) : QPersistentModelIndex();
        return isInside;
    }
    const bool wasPressed = m_pressed.isValid();
    const bool isClick = isInside && m_pressed == index && isEnabled;
    m_pressed = QPersistentModelIndex();
    if (isClick) m_page.boxClicked(index);
    return wasPressed;
}

}  // namespace orrinvale
