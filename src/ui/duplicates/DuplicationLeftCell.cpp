// DuplicationLeftCell: see DuplicationLeftCell.h.
#include "ui/duplicates/DuplicationLeftCell.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include "engine/base/notices.h"
#include "ui/kit/chrome/buttonLook.h"
#include "ui/kit/controls/numberText.h"
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

DuplicationLeftCell::DuplicationLeftCell(std::int32_t rowViewNum, const QString& title,
                                         const QString& picture,
                                         const NotificationCenter& notifications, QWidget* parent)
    : QWidget(parent),
      m_rowViewNum(rowViewNum),
      m_title(title),
      m_picture(picture),
      m_isSelected(rowViewNum == 0),
      m_notifications(notifications) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setObjectName(QStringLiteral("leftCell%1").arg(rowViewNum));
    setAccessibleTraits(
        *this,
        {.role = QAccessible::ListItem, .isSelectable = true, .press = [this] { choose(); }});
    setAccessiblySelected(*this, m_isSelected);
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
    setSizeTextFieldString(shownSize("0.00K"));
}

void DuplicationLeftCell::setHiglightImage(bool isSelected) {
    m_isSelected = isSelected;
    setAccessiblySelected(*this, isSelected);
    update();
}

void DuplicationLeftCell::setSizeTextFieldString(const QString& text) {
    m_size = text;
    setAccessibleName(m_title + QStringLiteral(", ") + text);
    update();
}

QSize DuplicationLeftCell::sizeHint() const { return {188, cellHeight}; }

void DuplicationLeftCell::paintEvent(QPaintEvent* /*event*/) {
    const Theme& theme = Theme::shared();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF frame = QRectF(rect()).adjusted(0, 2, 0, -2);
    if (m_isSelected || underMouse()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_isSelected ? highlight() : theme.color(Theme::Color::Hover));
        painter.drawRoundedRect(frame, highlightRadius, highlightRadius);
    }
    if (hasFocus()) drawFocusRing(painter, frame, highlightRadius);

    const QRect icon(Theme::gapSmall, (height() - iconSide) / 2, iconSide, iconSide);
    picture(m_picture).paint(&painter, icon);
    QFont sizeFont = theme.font(Theme::Text::Caption);
    const int sizeWidth = QFontMetrics(sizeFont).horizontalAdvance(m_size);
    QRect text = rect().adjusted(icon.right() + Theme::gapSmall, 0, -Theme::gapSmall, 0);
    painter.setFont(sizeFont);
    painter.setPen(theme.color(Theme::Color::TextSecondary));
    painter.drawText(text, Qt::AlignRight | Qt::AlignVCenter, m_size);
    text.setRight(text.right() - sizeWidth - Theme::gapSmall);
    QFont titleFont = theme.font(Theme::Text::Body);
    titleFont.setBold(m_rowViewNum == 0);
    painter.setFont(titleFont);
    painter.setPen(theme.color(Theme::Color::Text));
    painter.drawText(text, Qt::AlignLeft | Qt::AlignVCenter,
                     QFontMetrics(titleFont).elidedText(m_title, Qt::ElideRight, text.width()));
}

void DuplicationLeftCell::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton) choose();
}

void DuplicationLeftCell::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Space:
        case Qt::Key_Return:
        case Qt::Key_Enter: choose(); break;
        case Qt::Key_Down: focusNextChild(); break;
        case Qt::Key_Up: focusPreviousChild(); break;
        default: QWidget::keyPressEvent(event);
    }
}

void DuplicationLeftCell::choose() { notice::refViewBgColor.post(m_notifications, {m_rowViewNum}); }

}  // namespace orrinvale
