// ResultRowDelegate: see ResultRowDelegate.h.
#include "ui/duplicates/ResultRowDelegate.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>

#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/kit/controls/FlatHeader.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int signSide = 16;

void drawPath(QPainter& painter, const QRect& rect, const PathParts& shown, const QFont& font) {
    const Theme& theme = Theme::shared();
    constexpr int how = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine;
    painter.setFont(font);
    painter.setPen(theme.color(Theme::Color::TextSecondary));
    painter.drawText(rect, how, shown.folder);
    painter.setPen(theme.color(Theme::Color::Text));
    painter.drawText(rect.adjusted(QFontMetrics(font).horizontalAdvance(shown.folder), 0, 0, 0),
                     how, shown.name);
}

// What is special about the file behind a row, in small pictures before its path. Returns where
// they end.
int drawSigns(QPainter& painter, const QRect& rect, const QModelIndex& index) {
    int left = rect.left();
    const auto draw = [&](const QString& name) {
        picture(name).paint(
            &painter, QRect(left, rect.top() + (rect.height() - signSide) / 2, signSide, signSide));
        left += signSide + Theme::gapTiny;
    };
    if (index.data(DuplicateResultModel::LinkRole).toBool()) draw(QStringLiteral("sign_link"));
    if (index.data(DuplicateResultModel::HardLinksRole).toUInt() > 1)
        draw(QStringLiteral("sign_hard_link"));
    return left;
}

void drawNameCell(QPainter& painter, const QRect& cell, const QModelIndex& index) {
    QRect rect =
        cell.adjusted(Theme::gapTiny, 0, -FlatHeader::textMargin, 0);  // beside its chevron
    constexpr int side = ResultRowDelegate::iconSide;
    const QRect iconRect(rect.left(), rect.top() + (rect.height() - side) / 2, side, side);
    index.data(DuplicateResultModel::IconRole).value<QIcon>().paint(&painter, iconRect);
    rect.setLeft(iconRect.right() + 1 + Theme::gapSmall);
    rect.setLeft(drawSigns(painter, rect, index));
    const bool isGroup = index.data(DuplicateResultModel::IsGroupRole).toBool();
    const QFont font = Theme::shared().font(isGroup ? Theme::Text::BodyStrong : Theme::Text::Body);
    const QString shared = index.data(DuplicateResultModel::SharedFolderRole).toString();
    const QString path = onOneLine(index.data(Qt::DisplayRole).toString());
    drawPath(painter, rect, shortenedPath(path, shared, QFontMetrics(font), rect.width()), font);
}

void drawTextCell(QPainter& painter, const QRect& cell, const QModelIndex& index) {
    const QRect rect = cell.adjusted(FlatHeader::textMargin, 0, -FlatHeader::textMargin, 0);
    const bool isGroup = index.data(DuplicateResultModel::IsGroupRole).toBool();
    const QFont font = Theme::shared().font(Theme::Text::Body);
    painter.setFont(font);
    painter.setPen(
        Theme::shared().color(isGroup ? Theme::Color::Text : Theme::Color::TextSecondary));
    painter.drawText(rect, index.data(Qt::TextAlignmentRole).toInt() | Qt::TextSingleLine,
                     QFontMetrics(font).elidedText(index.data(Qt::DisplayRole).toString(),
                                                   Qt::ElideRight, rect.width()));
}

}  // namespace

void ResultRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                              const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    cell.index = index;
    QStyle* const style = option.widget != nullptr ? option.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, option.widget);

    painter->save();
    if (index.column() == DuplicateResultModel::NameColumn)
        drawNameCell(*painter, option.rect, index);
    else drawTextCell(*painter, option.rect, index);
    painter->restore();
}

QSize ResultRowDelegate::sizeHint(const QStyleOptionViewItem& option,
                                  const QModelIndex& index) const {
    const QFontMetrics metrics(Theme::shared().font(Theme::Text::Body));
    int width = metrics.horizontalAdvance(index.data(Qt::DisplayRole).toString()) + Theme::gapLarge;
    if (index.column() == DuplicateResultModel::NameColumn) width += iconSide + Theme::gapSmall;
    return {width, qMax(rowHeight, option.fontMetrics.height() + Theme::gapSmall)};
}

}  // namespace orrinvale
