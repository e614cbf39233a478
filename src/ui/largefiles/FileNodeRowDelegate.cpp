// FileNodeRowDelegate: see FileNodeRowDelegate.h.
#include "ui/largefiles/FileNodeRowDelegate.h"

#include <QApplication>
#include <QIcon>
#include <QPainter>

#include "ui/kit/controls/FlatHeader.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/Theme.h"
#include "ui/largefiles/FileNodeModel.h"

namespace orrinvale {
namespace {

// All lie below the folder that was scanned, so that its path is the first to go.
QString shownPath(const QString& path, const QModelIndex& index, const QFontMetrics& metrics,
                  int width) {
    const QString scanned = index.data(FileNodeModel::ScannedFolderRole).toString();
    const PathParts shown = shortenedPath(path, scanned, metrics, width);
    return shown.folder + shown.name;
}

}  // namespace

// The style says of the whole row that the pointer is over it; which picture it is on shows the
// pointer's place.
void FileNodeRowDelegate::drawButton(QPainter& painter, const QStyleOptionViewItem& option,
                                     const QModelIndex& index) {
    const auto icon = index.data(FileNodeModel::IconRole).value<QIcon>();
    if (icon.isNull()) return;
    QRect place(QPoint(), QSize(buttonSide, buttonSide));
    place.moveCenter(option.rect.center());
    const bool isHovered = option.state.testFlag(QStyle::State_MouseOver) &&
                           option.widget != nullptr &&
                           option.rect.contains(option.widget->mapFromGlobal(QCursor::pos()));
    if (isHovered) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::shared().color(Theme::Color::Pressed));
        painter.drawRoundedRect(
            place.adjusted(-Theme::gapTiny, -Theme::gapTiny, Theme::gapTiny, Theme::gapTiny),
            Theme::radiusSmall, Theme::radiusSmall);
    }
    icon.paint(&painter, place);
}

void FileNodeRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    cell.index = index;
    QStyle* const style = option.widget != nullptr ? option.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, option.widget);

    painter->save();
    if (index.column() == FileNodeModel::OpenFinder || index.column() == FileNodeModel::Pareview) {
        drawButton(*painter, option, index);
        painter->restore();
        return;
    }
    const Theme& theme = Theme::shared();
    const bool isName = index.column() == FileNodeModel::Name;
    const bool isPath = index.column() == FileNodeModel::Path;
    QRect rect = option.rect.adjusted(FlatHeader::textMargin, 0, -FlatHeader::textMargin, 0);
    if (isName) {
        rect.setLeft(option.rect.left() + Theme::gapTiny);  // beside its chevron
        const QRect place(rect.left(), rect.top() + (rect.height() - iconSide) / 2, iconSide,
                          iconSide);
        index.data(FileNodeModel::IconRole).value<QIcon>().paint(painter, place);
        rect.setLeft(place.right() + 1 + Theme::gapSmall);
    }
    const QFont font = theme.font(Theme::Text::Body);
    const QFontMetrics metrics(font);
    const QString text = onOneLine(index.data(Qt::DisplayRole).toString());
    painter->setFont(font);
    painter->setPen(theme.color(isName ? Theme::Color::Text : Theme::Color::TextSecondary));
    // Of a name both ends count.
    painter->drawText(
        rect, index.data(Qt::TextAlignmentRole).toInt() | Qt::TextSingleLine,
        isPath ? shownPath(text, index, metrics, rect.width())
               : metrics.elidedText(text, isName ? Qt::ElideMiddle : Qt::ElideRight, rect.width()));
    painter->restore();
}

QSize FileNodeRowDelegate::sizeHint(const QStyleOptionViewItem& option,
                                    const QModelIndex& /*index*/) const {
    return {option.rect.width(), qMax(rowHeight, option.fontMetrics.height() + Theme::gapSmall)};
}

}  // namespace orrinvale
