// SheetButton: see SheetButton.h.
#include "ui/kit/dialogs/SheetButton.h"

#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

using Color = Theme::Color;

constexpr int leastWidth = 84, ring = 3;  // the ring of focus stands outside of the face

struct Faces {
    Color normal, hover, pressed, text;
};

Faces facesOf(SheetButton::Kind kind) {
    switch (kind) {
        case SheetButton::Kind::Primary:
            return {Color::Accent, Color::AccentHover, Color::AccentPressed, Color::TextOnAccent};
        case SheetButton::Kind::Danger:
            return {Color::Danger, Color::DangerHover, Color::DangerPressed, Color::TextOnAccent};
        case SheetButton::Kind::Link: return {Color::SurfaceRaised, Color::Hover, Color::Pressed, Color::Accent};
        case SheetButton::Kind::Plain: break;
    }
    return {Color::Surface, Color::Hover, Color::Pressed, Color::Text};
}

}  // namespace

SheetButton::SheetButton(const QString& text, Kind kind, QWidget* parent) : QPushButton(parent), m_kind(kind) {
    // A '&' in a text is a letter: the sheet has no mnemonics.
    setText(QString(text).replace(QLatin1Char('&'), QStringLiteral("&&")));
    setAccessibleName(text);
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::StrongFocus);
    setFont(Theme::shared().font(kind == Kind::Plain ? Theme::Text::Body : Theme::Text::BodyStrong));
}

QSize SheetButton::sizeHint() const {
    const int text = fontMetrics().horizontalAdvance(accessibleName()) + 2 * Theme::gapLarge;
    return {std::max(leastWidth, text) + 2 * ring, Theme::controlHeight + 2 * ring};
}

void SheetButton::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) click();
    else QPushButton::keyPressEvent(event);
}

void SheetButton::paintEvent(QPaintEvent* /*event*/) {
    const Theme& theme = Theme::shared();
    const Faces faces = facesOf(m_kind);
    Color face = faces.normal;
    if (isDown()) face = faces.pressed;
    else if (underMouse() && isEnabled()) face = faces.hover;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr qreal faint = 0.4;
    if (!isEnabled()) painter.setOpacity(faint);
    const QRectF box = QRectF(rect()).adjusted(ring, ring, -ring, -ring);
    const bool isOutlined = m_kind == Kind::Plain;
    painter.setPen(isOutlined ? QPen(theme.color(Color::Outline), 1) : QPen(Qt::NoPen));
    painter.setBrush(theme.color(face));
    const qreal half = isOutlined ? 0.5 : 0.0;
    painter.drawRoundedRect(box.adjusted(half, half, -half, -half), Theme::radiusSmall + 2, Theme::radiusSmall + 2);
    painter.setPen(theme.color(faces.text));
    painter.setFont(font());
    painter.drawText(box, Qt::AlignCenter, accessibleName());
    if (!hasFocus()) return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(theme.color(Color::FocusRing), 2));
    painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), Theme::radius, Theme::radius);
}

}  // namespace orrinvale
