// ResultRowDelegate: see ResultRowDelegate.h.
#include "ui/duplicates/ResultRowDelegate.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>

#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/kit/controls/FlatHeader.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

// The folder gives way first: the name is what tells two rows apart.
void drawPath(QPainter& painter, const QRect& rect, const QString& path, const QFont& font, const QColor& nameColor) {
    const QFontMetrics metrics(font);
    const qsizetype cut = path.lastIndexOf(QLatin1Char('/')) + 1;
    const QString name = path.mid(cut);
    const int nameWidth = qMin(metrics.horizontalAdvance(name), rect.width());
    const QString folder = shortenedFolder(path.left(cut), metrics, rect.width() - nameWidth);
    const int folderWidth = metrics.horizontalAdvance(folder);
    painter.setFont(font);
    painter.setPen(Theme::shared().color(Theme::Color::TextSecondary));
    painter.drawText(rect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, folder);
    painter.setPen(nameColor);
    painter.drawText(rect.adjusted(folderWidth, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     metrics.elidedText(name, Qt::ElideMiddle, rect.width() - folderWidth));
}

}  // namespace

void ResultRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    cell.index = index;
    QStyle* const style = option.widget != nullptr ? option.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, option.widget);

    const Theme& theme = Theme::shared();
    const bool isGroup = index.data(DuplicateResultModel::IsGroupRole).toBool();
    const QString text = onOneLine(index.data(Qt::DisplayRole).toString());
    QRect rect = option.rect.adjusted(FlatHeader::textMargin, 0, -FlatHeader::textMargin, 0);
    painter->save();
    if (index.column() == DuplicateResultModel::NameColumn) {
        rect.setLeft(option.rect.left() + Theme::gapTiny);  // beside its chevron
        const auto icon = index.data(DuplicateResultModel::IconRole).value<QIcon>();
        const QRect iconRect(rect.left(), rect.top() + (rect.height() - iconSide) / 2, iconSide, iconSide);
        icon.paint(painter, iconRect);
        rect.setLeft(iconRect.right() + 1 + Theme::gapSmall);
        drawPath(*painter, rect, text, theme.font(isGroup ? Theme::Text::BodyStrong : Theme::Text::Body),
                 theme.color(Theme::Color::Text));
    } else {
        const auto alignment = index.data(Qt::TextAlignmentRole).toInt();
        const QFont font = theme.font(Theme::Text::Body);
        painter->setFont(font);
        painter->setPen(theme.color(isGroup ? Theme::Color::Text : Theme::Color::TextSecondary));
        painter->drawText(rect, alignment | Qt::TextSingleLine,
                          QFontMetrics(font).elidedText(text, Qt::ElideRight, rect.width()));
    }
    painter->restore();
}

QSize ResultRowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const QFontMetrics metrics(Theme::shared().font(Theme::Text::Body));
    int width = metrics.horizontalAdvance(index.data(Qt::DisplayRole).toString()) + Theme::gapLarge;
    if (index.column() == DuplicateResultModel::NameColumn) width += iconSide + Theme::gapSmall;
    return {width, qMax(rowHeight, option.fontMetrics.height() + Theme::gapSmall)};
}

}  // namespace orrinvale
