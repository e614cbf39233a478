// Takes its size when it is shown, since nobody resizes a window in the middle of a drag.
#include "ui/kit/controls/DropInvitation.h"

#include <QPainter>
#include <utility>

#include "ui/kit/look/Theme.h"

namespace orrinvale {

DropInvitation::DropInvitation(QString text, QWidget& over)
    : QWidget(&over), m_text(std::move(text)) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void DropInvitation::setShown(bool isShown) {
    if (isShown) {
        setGeometry(parentWidget()->rect());
        raise();
    }
    setVisible(isShown);
}

void DropInvitation::paintEvent(QPaintEvent* /*event*/) {
    const Theme& theme = Theme::shared();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor veil = theme.color(Theme::Color::Window);
    veil.setAlphaF(0.82F);
    painter.fillRect(rect(), veil);
    constexpr qreal lineWidth = 2;
    painter.setPen(QPen(theme.color(Theme::Color::Accent), lineWidth));
    painter.setBrush(Qt::NoBrush);
    constexpr qreal inset = Theme::gapSmall;
    painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), Theme::radius,
                            Theme::radius);
    painter.setFont(theme.font(Theme::Text::Heading));
    painter.setPen(theme.color(Theme::Color::Text));
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextWordWrap, m_text);
}

}  // namespace orrinvale
