// The row is drawn in one piece. Only the box is a widget, and it shows what the page set last.
#include "ui/kit/lists/LeftRow.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "ui/kit/chrome/buttonLook.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/kit/look/getColor.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr qreal highlightRadius = 11;
constexpr int iconSide = 16;

// The light highlight is fixed; on a dark page it would outshine the text.
QColor highlight() {
    return Theme::shared().scheme() == Theme::Scheme::Light
               ? getColor(225, 231, 239, 1)
               : Theme::shared().color(Theme::Color::Selection);
}

}  // namespace

LeftRow::LeftRow(const Content& content, QWidget* parent) : QWidget(parent), m_content(content) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setFixedHeight(content.height);
    setAccessibleName(content.title);
    setAccessibleTraits(*this, {.role = QAccessible::ListItem,
                                .isSelectable = true,
                                .press = [this] { Q_EMIT chosen(); }});
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
}

void LeftRow::setSelected(bool isSelected) {
    m_isSelected = isSelected;
    setAccessiblySelected(*this, isSelected);
    update();
}

void LeftRow::setSizeText(const QString& text) {
    m_size = text;
    setAccessibleName(text.isEmpty() ? title() : title() + QStringLiteral(", ") + text);
    update();
}

void LeftRow::setBox(TickState state) {
    m_state = state;
    if (m_box == nullptr) {
        m_box = new TickBox({}, this);
        m_box->setAccessibleName(title());
        m_box->setFocusPolicy(Qt::NoFocus);  // the keyboard ticks from the row
        connect(m_box, &QAbstractButton::clicked, this, &LeftRow::clickBox);
        placeBox();
        m_box->show();
    }
    m_box->setState(state);
}

std::optional<TickState> LeftRow::box() const {
    return m_box != nullptr ? std::optional(m_state) : std::nullopt;
}

// The click has changed the box already, and the page may not follow it.
void LeftRow::clickBox() {
    m_box->setState(m_state);
    Q_EMIT boxClicked();
}

void LeftRow::placeBox() {
    if (m_box == nullptr) return;
    const QSize size = m_box->sizeHint();
    const QRect place(Theme::gapSmall - tickBoxHalo, (height() - size.height()) / 2, size.width(),
                      size.height());
    m_box->setGeometry(QStyle::visualRect(layoutDirection(), rect(), place));
}

void LeftRow::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    placeBox();
}

void LeftRow::drawGround(QPainter& painter) const {
    const QRectF frame = QRectF(rect()).adjusted(0, 2, 0, -2);
    if (m_isSelected || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_isSelected ? highlight() : Theme::shared().color(Theme::Color::Hover));
        painter.drawRoundedRect(frame, highlightRadius, highlightRadius);
    }
    if (hasFocus()) drawFocusRing(painter, frame, highlightRadius);
}

void LeftRow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.4);
    drawGround(painter);
    const int start = Theme::gapSmall + (m_box != nullptr ? tickBoxSize + Theme::gapSmall : 0);
    const QRect icon(start, (height() - iconSide) / 2, iconSide, iconSide);
    picture(m_content.picture).paint(&painter, QStyle::visualRect(layoutDirection(), rect(), icon));
    drawWords(painter, rect().adjusted(icon.right() + Theme::gapSmall, 0, -Theme::gapSmall, 0));
}

void LeftRow::drawWords(QPainter& painter, QRect place) const {
    const Theme& theme = Theme::shared();
    const auto draw = [&](Qt::AlignmentFlag side, const QString& text) {
        const auto shown = QStyle::visualAlignment(layoutDirection(), side | Qt::AlignVCenter);
        painter.drawText(QStyle::visualRect(layoutDirection(), rect(), place), int(shown), text);
    };
    painter.setFont(theme.font(Theme::Text::Caption));
    painter.setPen(theme.color(Theme::Color::TextSecondary));
    draw(Qt::AlignRight, m_size);
    place.setRight(place.right() - painter.fontMetrics().horizontalAdvance(m_size) -
                   Theme::gapSmall);
    QFont titleFont = theme.font(Theme::Text::Body);
    titleFont.setBold(m_content.isStrong);
    painter.setFont(titleFont);
    painter.setPen(theme.color(Theme::Color::Text));
    draw(Qt::AlignLeft, painter.fontMetrics().elidedText(title(), Qt::ElideRight, place.width()));
}

void LeftRow::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) Q_EMIT chosen();
}

void LeftRow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Space:
            if (m_box == nullptr) Q_EMIT chosen();
            else if (!event->isAutoRepeat()) m_box->click();
            break;
        case Qt::Key_Return:
        case Qt::Key_Enter: Q_EMIT chosen(); break;
        case Qt::Key_Down: focusNextChild(); break;
        case Qt::Key_Up: focusPreviousChild(); break;
        default: QWidget::keyPressEvent(event);
    }
}

}  // namespace orrinvale
