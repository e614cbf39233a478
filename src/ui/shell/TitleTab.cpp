// The pointer changes the text alone; the picture says which page is shown.
#include "ui/shell/TitleTab.h"

#include <QPainter>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/kit/look/getColor.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int tabHeight = 36;
constexpr int textPixels = 14;

QFont tabFont() {
    QFont font = Theme::shared().font(Theme::Text::BodyStrong);
    font.setPixelSize(textPixels);
    font.setBold(true);
    return font;
}

// The dark blue of the tabs is written for a light bar.
QColor textColor(bool isOn) {
    if (!isOn) return Theme::shared().color(Theme::Color::TextSecondary);
    return Theme::shared().scheme() == Theme::Scheme::Light
               ? getColor(38, 52, 76, 1)
               : Theme::shared().color(Theme::Color::Text);
}

}  // namespace

TitleTab::TitleTab(const QString& title, QWidget* parent) : QAbstractButton(parent) {
    setText(title);
    setAccessibleName(title);
    setAccessibleTraits(
        *this, {.role = QAccessible::PageTab, .isSelectable = true, .press = [this] { click(); }});
    setFocusPolicy(Qt::TabFocus);
    followTheme(*this);
}

void TitleTab::setOn(bool isOn) {
    m_isOn = isOn;
    setAccessiblySelected(*this, isOn);
    update();
}

QSize TitleTab::sizeHint() const {
    return {QFontMetrics(tabFont()).horizontalAdvance(text()) + 2 * Theme::gapHuge, tabHeight};
}

void TitleTab::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QString name = m_isOn ? QStringLiteral("tab_on") : QStringLiteral("tab");
    painter.drawPixmap(rect(), picturePixmap(name, size(), devicePixelRatioF()));
    painter.setFont(tabFont());
    painter.setPen(textColor(m_isOn || underMouse()));
    painter.drawText(rect(), Qt::AlignCenter, text());
    if (m_keyboardFocus.isShown(*this)) drawFocusRing(painter, rect(), Theme::radius);
}

void TitleTab::focusInEvent(QFocusEvent* event) {
    m_keyboardFocus.focusIn(*event);
    QAbstractButton::focusInEvent(event);
}

}  // namespace orrinvale
