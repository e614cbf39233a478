// The row is drawn in one piece. Only the box is a widget, and it shows what the page set last.
#include "ui/kit/lists/LeftRow.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>

#include "ui/kit/chrome/buttonLook.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/kit/look/getColor.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr qreal highlightRadius = 11;
constexpr int leftIconSide = 16;

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

int LeftRow::startOfIcon() const {
    return Theme::gapSmall + (m_box != nullptr ? tickBoxSize + Theme::gapSmall : 0);
}

QFont LeftRow::titleFont() const {
    QFont font = Theme::shared().font(Theme::Text::Body);
    font.setBold(m_content.isStrong);
    return font;
}

bool LeftRow::hasRoomFor(const QString& size, int width) const {
    const QFontMetrics small(Theme::shared().font(Theme::Text::Caption));
    const int beside = size.isEmpty() ? 0 : small.horizontalAdvance(size) + Theme::gapSmall;
    return startOfIcon() + leftIconSide + 2 * Theme::gapSmall + beside +
               QFontMetrics(titleFont()).horizontalAdvance(title()) <=
           width;
}

void LeftRow::setSizeBelow(bool isBelow) {
    m_isSizeBelow = isBelow;
    update();
}

void LeftRow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.4);
    drawGround(painter);
    const QRect icon(startOfIcon(), (height() - leftIconSide) / 2, leftIconSide, leftIconSide);
    picture(m_content.picture).paint(&painter, QStyle::visualRect(layoutDirection(), rect(), icon));
    drawWords(painter, rect().adjusted(icon.right() + 1 + Theme::gapSmall, 0, -Theme::gapSmall, 0));
}

void LeftRow::drawWords(QPainter& painter, QRect place) const {
    const Theme& theme = Theme::shared();
    const auto draw = [&](Qt::Alignment side, const QRect& where, const QString& text) {
        const auto shown = QStyle::visualAlignment(layoutDirection(), side);
        painter.drawText(QStyle::visualRect(layoutDirection(), rect(), where), int(shown), text);
    };
    QRect titlePlace = place;
    painter.setFont(theme.font(Theme::Text::Caption));
    painter.setPen(theme.color(Theme::Color::TextSecondary));
    if (m_isSizeBelow && !m_size.isEmpty()) {
        const int both = QFontMetrics(titleFont()).height() + painter.fontMetrics().height();
        place.adjust(0, (height() - both) / 2, 0, -(height() - both) / 2);
        titlePlace = place.adjusted(0, 0, 0, -painter.fontMetrics().height());
        draw(Qt::AlignLeft | Qt::AlignBottom, place, m_size);
    } else if (!m_size.isEmpty()) {
        draw(Qt::AlignRight | Qt::AlignVCenter, place, m_size);
        titlePlace.setRight(place.right() - painter.fontMetrics().horizontalAdvance(m_size) -
                            Theme::gapSmall);
    }
    painter.setFont(titleFont());
    painter.setPen(theme.color(Theme::Color::Text));
    draw(Qt::AlignLeft | Qt::AlignVCenter, titlePlace,
         painter.fontMetrics().elidedText(title(), Qt::ElideRight, titlePlace.width()));
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
