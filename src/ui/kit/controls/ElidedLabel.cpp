// QLabel never cuts a text, so it is painted here, by the style, which knows how a disabled one
// looks.
#include "ui/kit/controls/ElidedLabel.h"

#include <QPainter>
#include <QStyle>
#include <cmath>

namespace orrinvale {

ElidedLabel::ElidedLabel(Qt::TextElideMode mode, QWidget* parent) : QLabel(parent), m_mode(mode) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QSize ElidedLabel::sizeHint() const {
    const QMargins margins = contentsMargins();
    // Half a pixel too few would cut a text that has all the room it asked for.
    const double width = std::ceil(QFontMetricsF(font()).horizontalAdvance(text()));
    return {static_cast<int>(width) + margins.left() + margins.right(),
            fontMetrics().height() + margins.top() + margins.bottom()};
}

QSize ElidedLabel::minimumSizeHint() const {
    return {fontMetrics().horizontalAdvance(QStringLiteral("mmm")), sizeHint().height()};
}

void ElidedLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QRect rect = contentsRect();
    // A line break in a file name would hide what follows it.
    QString shown = text();
    shown.replace(QLatin1Char('\n'), QChar(0x2424));
    style()->drawItemText(&painter, rect,
                          static_cast<int>(QStyle::visualAlignment(layoutDirection(), alignment())),
                          palette(), isEnabled(),
                          fontMetrics().elidedText(shown, m_mode, rect.width()), foregroundRole());
}

}  // namespace orrinvale
