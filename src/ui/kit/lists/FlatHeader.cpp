// Sections paint no ground: it is painted once, behind all of them and where there is none.
#include "ui/kit/lists/FlatHeader.h"

#include <QMouseEvent>
#include <QPainter>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int headerChevron = 12;

}  // namespace

FlatHeader::FlatHeader(QWidget* parent) : QHeaderView(Qt::Horizontal, parent) {
    viewport()->setAttribute(Qt::WA_Hover);
    connect(&Theme::shared(), &Theme::changed, this, [this] { viewport()->update(); });
}

QColor FlatHeader::titleColor(int section) const {
    return Theme::shared().color(isSorted(section) ? Theme::Color::Text
                                                   : Theme::Color::TextSecondary);
}

QSize FlatHeader::sizeHint() const { return {QHeaderView::sizeHint().width(), Theme::rowHeight}; }

void FlatHeader::paintEvent(QPaintEvent* event) {
    {
        // Behind the sections and where there is none.
        QPainter painter(viewport());
        const QRect all = viewport()->rect();
        painter.fillRect(all, Theme::shared().color(Theme::Color::Surface));
        painter.fillRect(all.adjusted(0, all.height() - 1, 0, 0),
                         Theme::shared().color(Theme::Color::Line));
    }
    QHeaderView::paintEvent(event);
}

void FlatHeader::paintSection(QPainter* painter, const QRect& rect, int section) const {
    const QRect inside = rect.adjusted(textMargin, 0, -textMargin, 0);
    const QString text = model()->headerData(section, orientation(), Qt::DisplayRole).toString();
    if (text.isEmpty() || inside.isEmpty()) return;
    const QVariant wanted = model()->headerData(section, orientation(), Qt::TextAlignmentRole);
    const auto side = QStyle::visualAlignment(
        layoutDirection(),
        wanted.isValid() ? Qt::Alignment(wanted.toInt()) : Qt::AlignLeft | Qt::AlignVCenter);
    const bool hasChevron = isSorted(section);
    const QFont font = Theme::shared().font(Theme::Text::Caption);
    const QFontMetrics metrics(font);
    const QString shown =
        metrics.elidedText(text, Qt::ElideRight, inside.width() - (hasChevron ? headerChevron : 0));
    const int width = metrics.horizontalAdvance(shown);
    painter->setFont(font);
    painter->setPen(titleColor(section));
    painter->drawText(inside, static_cast<int>(side | Qt::AlignVCenter) | Qt::TextSingleLine,
                      shown);
    if (!hasChevron) return;
    // On the side of the text that has room, so that the text stays in line with its column.
    const int left = side.testFlag(Qt::AlignRight) ? inside.right() + 1 - width - headerChevron - 2
                                                   : inside.left() + width + 2;
    picture(sortIndicatorOrder() == Qt::AscendingOrder ? QStringLiteral("chevron_up")
                                                       : QStringLiteral("chevron_down"))
        .paint(painter, QRect(left, rect.top() + (rect.height() - headerChevron) / 2, headerChevron,
                              headerChevron));
}

}  // namespace orrinvale
