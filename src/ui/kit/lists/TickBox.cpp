// To keys and screen readers a QCheckBox; the looks are paintTickBox.h's.
#include "ui/kit/lists/TickBox.h"

#include <QPainter>
#include <QStyle>

#include <algorithm>

#include "ui/kit/look/Theme.h"

namespace orrinvale {

TickBox::TickBox(const QString& text, QWidget* parent) : QCheckBox(text, parent) {
    setTristate(true);
    setAttribute(Qt::WA_Hover);
    setFont(Theme::shared().font(Theme::Text::Body));
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
}

TickState TickBox::state() const {
    if (checkState() == Qt::PartiallyChecked) return TickState::Some;
    return checkState() == Qt::Checked ? TickState::All : TickState::Nothing;
}

void TickBox::setState(TickState state) { setCheckState(orrinvale::checkState(state)); }

QSize TickBox::sizeHint() const {
    constexpr int box = tickBoxSize + 2 * tickBoxHalo;
    const int label =
        text().isEmpty() ? 0 : Theme::gapSmall + fontMetrics().horizontalAdvance(text()) + 1;
    return {box + label, std::max(box, fontMetrics().height())};
}

QRect TickBox::boxRect() const {
    const QRect box(tickBoxHalo, (height() - tickBoxSize) / 2, tickBoxSize, tickBoxSize);
    return QStyle::visualRect(layoutDirection(), rect(), box);
}

QRect TickBox::contentRect() const {
    const QRect content(0, 0, std::min(sizeHint().width(), width()), height());
    return QStyle::visualRect(layoutDirection(), rect(), content);
}

void TickBox::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const TickLook look{isEnabled(), underMouse(), isDown(), hasFocus(), false};
    paintTickBox(painter, boxRect(), state(), look);
    if (text().isEmpty()) return;
    const int left = tickBoxSize + 2 * tickBoxHalo + Theme::gapSmall;
    const QRect label =
        QStyle::visualRect(layoutDirection(), rect(), rect().adjusted(left, 0, 0, 0));
    const auto color = isEnabled() ? Theme::Color::Text : Theme::Color::TextDisabled;
    painter.setPen(Theme::shared().color(color));
    painter.setFont(font());
    const auto side = QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft | Qt::AlignVCenter);
    painter.drawText(label, static_cast<int>(side) | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideRight, label.width()));
}

}  // namespace orrinvale
