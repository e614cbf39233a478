// Colours by role and look stand in one table below.
#include "ui/kit/chrome/TextImageButton.h"

#include <QHelpEvent>
#include <QPainter>
#include <QStyle>
#include <QToolTip>

#include <algorithm>

#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

using Color = Theme::Color;

constexpr int leastButtonWidth = 84;  // short words make buttons of one width
constexpr int iconGap = Theme::gapSmall - 2;
// The focus ring stands outside of the fill, in a margin that is always there, so that nothing
// moves when it comes.
constexpr int ringMargin = 3;

QColor fillColor(TextImageButton::Role role, ButtonLook look) {
    struct Row {
        Color normal, hover, pressed;
    };
    constexpr Row rows[] = {{Color::SurfaceRaised, Color::Hover, Color::Pressed},
                            {Color::Accent, Color::AccentHover, Color::AccentPressed},
                            {Color::Danger, Color::DangerHover, Color::DangerPressed},
                            {Color::SurfaceRaised, Color::Hover, Color::Pressed}};
    const Row& row = rows[static_cast<int>(role)];
    switch (look) {
        case ButtonLook::Hover: return Theme::shared().color(row.hover);
        case ButtonLook::Pressed: return Theme::shared().color(row.pressed);
        case ButtonLook::Disabled: return Theme::shared().color(Color::Hover);
        case ButtonLook::Normal: break;
    }
    return Theme::shared().color(row.normal);
}

}  // namespace

TextImageButton::TextImageButton(const QString& text, Role role, QWidget* parent)
    : DrawnButton(parent), m_role(role) {
    setText(text);
    setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    const auto takeFont = [this] { setFont(Theme::shared().font(Theme::Text::BodyStrong)); };
    takeFont();
    connect(&Theme::shared(), &Theme::changed, this, takeFont);
}

void TextImageButton::setRole(Role role) {
    m_role = role;
    update();
}

int TextImageButton::widthAround(int textWidth) const {
    const int picture = icon().isNull() ? 0 : iconSize().width() + (text().isEmpty() ? 0 : iconGap);
    return textWidth + picture + 2 * (Theme::gapLarge + ringMargin);
}

QSize TextImageButton::sizeHint() const {
    const int textWidth = fontMetrics().size(Qt::TextShowMnemonic, text()).width();
    return {std::max(widthAround(textWidth), leastButtonWidth + 2 * ringMargin),
            Theme::controlHeight + 2 * ringMargin};
}

QSize TextImageButton::minimumSizeHint() const {
    return {std::min(sizeHint().width(), leastButtonWidth + 2 * ringMargin), sizeHint().height()};
}

void TextImageButton::drawBackground(QPainter& painter) const {
    const ButtonLook look = isChecked() ? ButtonLook::Pressed : buttonLook(*this);
    const QRectF fill = QRectF(rect()).adjusted(ringMargin, ringMargin, -ringMargin, -ringMargin);
    painter.setBrush(fillColor(m_role, look));
    painter.setPen(Qt::NoPen);
    painter.drawRoundedRect(fill, Theme::radius, Theme::radius);
    const bool isEdged = m_role == Role::Plain || look == ButtonLook::Disabled;
    if (isEdged) {
        const bool isMarked = isDefault() && isEnabled();
        const qreal width = isMarked ? 1.5 : 1;
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(Theme::shared().color(isMarked ? Color::Accent : Color::Line), width));
        painter.drawRoundedRect(fill.adjusted(width / 2, width / 2, -width / 2, -width / 2),
                                Theme::radius - width / 2, Theme::radius - width / 2);
    }
}

Theme::Color TextImageButton::textColor() const {
    if (!isEnabled()) return Color::TextDisabled;
    switch (m_role) {
        case Role::Plain: return Color::Text;
        case Role::Link: return Color::Accent;
        case Role::Primary:
        case Role::Danger: break;
    }
    return Color::TextOnAccent;
}

void TextImageButton::drawContents(QPainter& painter) const {
    const bool isOnColour = (m_role == Role::Primary || m_role == Role::Danger) && isEnabled();
    painter.setPen(Theme::shared().color(textColor()));
    const int room = width() - widthAround(0);
    const QString shown =
        fontMetrics().elidedText(text(), Qt::ElideRight, std::max(room, 0), Qt::TextShowMnemonic);
    const int textWidth = fontMetrics().size(Qt::TextShowMnemonic, shown).width();
    int x = (width() - widthAround(textWidth)) / 2 + Theme::gapLarge + ringMargin;
    if (!icon().isNull()) {
        const QRect place(QPoint(x, (height() - iconSize().height()) / 2), iconSize());
        drawPicture(painter, icon(), place,
                    isOnColour    ? PictureTint{1, painter.pen().color()}
                    : isEnabled() ? PictureTint()
                                  : faintPicture);
        x += iconSize().width() + iconGap;
    }
    const bool underlines = style()->styleHint(QStyle::SH_UnderlineShortcut, nullptr, this) != 0;
    const int flags = Qt::AlignVCenter | Qt::AlignLeft | Qt::TextSingleLine |
                      (underlines ? Qt::TextShowMnemonic : Qt::TextHideMnemonic);
    painter.drawText(QRect(x, 0, textWidth + 1, height()), flags, shown);
}

void TextImageButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawBackground(painter);
    drawContents(painter);
    drawFocus(painter, Theme::radius + ringMargin - 1);
}

void TextImageButton::showCutText(const QPoint& globalPlace) {
    QString plain = text();
    QToolTip::showText(globalPlace, plain.remove(QLatin1Char('&')), this);
}

bool TextImageButton::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && width() < sizeHint().width()) {
        showCutText(static_cast<QHelpEvent*>(event)->globalPos());
        return true;
    }
    return DrawnButton::event(event);
}

}  // namespace orrinvale
