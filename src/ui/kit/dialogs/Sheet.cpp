// What goes into the panel stands in AlertPanel.cpp.
#include "ui/kit/dialogs/Sheet.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <utility>

#include "ui/kit/chrome/SheetHost.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/motion.h"

namespace orrinvale {
namespace {

constexpr int slideTime = 180;  // milliseconds; longer feels like waiting
constexpr int shadowReach = 18, shadowStep = 2;

// Straight where it hangs from the title bar.
QPainterPath panelShape(const QRectF& panel, qreal radius) {
    QPainterPath shape;
    shape.setFillRule(Qt::WindingFill);
    shape.addRoundedRect(panel, radius, radius);
    shape.addRect(panel.adjusted(0, 0, 0, -radius));
    return shape.simplified();
}

bool isActivation(const QKeyEvent& key) {
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter || key.key() == Qt::Key_Space;
}

bool isInside(const QWidget& ancestor, const QWidget* widget) {
    return widget != nullptr && (widget == &ancestor || ancestor.isAncestorOf(widget));
}

bool isInASheet(QWidget* widget) {
    for (QWidget* each = widget; each != nullptr; each = each->parentWidget())
        if (qobject_cast<Sheet*>(each) != nullptr) return true;
    return false;
}

}  // namespace

Sheet::Sheet(QWidget& widget, QWidget* content) : QWidget(widget.window()), m_content(content) {
    content->setParent(this);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_NoMousePropagation);
    qApp->installEventFilter(this);
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget* /*before*/, QWidget* now) { keepFocus(now); });
    connect(&Theme::shared(), &Theme::changed, this, [this] { update(); });
    connect(&m_slide, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_shown = value.toReal();
        layOut();
    });
    connect(&m_slide, &QVariantAnimation::finished, this, [this] {
        if (const auto ended = std::exchange(m_slideEnded, nullptr)) ended();
    });
}

// The keyboard leaves what is in it while that goes, of which a sheet that is half gone may not
// hear.
Sheet::~Sheet() { disconnect(qApp, nullptr, this, nullptr); }

void Sheet::open(QWidget* first) {
    m_first = first;
    m_focusBefore = window()->focusWidget();
    layOut();
    show();
    raise();
    if (auto* const host = dynamic_cast<SheetHost*>(parentWidget())) host->sheetRaised();
    takeFocus();
    slide(0.0, 1.0, nullptr);
}

void Sheet::close(std::function<void()> ended) {
    if (std::exchange(m_isClosing, true)) return;
    slide(m_shown, 0.0, [this, ended = std::move(ended)] {
        giveFocusBack();
        hide();
        deleteLater();
        if (ended) ended();
    });
}

// Ends from the event loop also where nothing moves, so that a caller sees the same order
// everywhere.
void Sheet::slide(qreal from, qreal to, std::function<void()> ended) {
    m_slide.stop();
    m_slideEnded = std::move(ended);
    m_slide.setStartValue(from);
    m_slide.setEndValue(to);
    m_slide.setEasingCurve(to > from ? QEasingCurve::OutCubic : QEasingCurve::InCubic);
    m_slide.setDuration(isVisible() && mayAnimate(*this) ? slideTime : 1);
    m_slide.start();
}

QRect Sheet::panelRect() const {
    const QSize room(width() - 2 * Theme::gapHuge, height() - Theme::gapHuge);
    QSize size = m_content->sizeHint().boundedTo(room);
    if (m_content->hasHeightForWidth())
        size.setHeight(std::min(m_content->heightForWidth(size.width()), room.height()));
    const int hidden = static_cast<int>((1.0 - m_shown) * (size.height() + shadowReach));
    return {QPoint((width() - size.width()) / 2, -hidden), size};
}

void Sheet::layOut() {
    const auto* host = dynamic_cast<const SheetHost*>(parentWidget());
    setGeometry(host != nullptr ? host->sheetArea() : parentWidget()->contentsRect());
    m_content->setGeometry(panelRect());
    update();
}

void Sheet::keepFocus(QWidget* now) {
    if (m_isClosing || !isVisible() || now == nullptr || now->window() != window()) return;
    if (isUnderOther() || isInASheet(now)) return;
    m_focusBefore = now;  // whoever asked for the keyboard gets it afterwards
    takeFocus();
}

// As if the keyboard had brought it: the button that Enter presses has its ring from the start.
void Sheet::takeFocus() {
    (m_first.isNull() ? this : m_first.data())->setFocus(Qt::OtherFocusReason);
}

// Children stand in the order in which they lie over each other.
bool Sheet::isUnderOther() const {
    const auto sheets = parentWidget()->findChildren<Sheet*>(QString(), Qt::FindDirectChildrenOnly);
    return sheets.last() != this;
}

void Sheet::giveFocusBack() {
    QWidget* before = m_focusBefore.data();
    if (before != nullptr && before->isVisible() && before->isEnabled())
        before->setFocus(Qt::PopupFocusReason);
    else if (isInside(*this, window()->focusWidget())) window()->setFocus(Qt::PopupFocusReason);
}

bool Sheet::event(QEvent* event) {
    // Taken here, a key comes to the sheet's own widgets and not to the shortcuts of the page
    // below.
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

bool Sheet::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) layOut();
    // The Enter that brought the sheet up may still be held down, and must not answer it.
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        const auto& key = static_cast<const QKeyEvent&>(*event);
        if (key.isAutoRepeat() && isActivation(key) &&
            isInside(*this, qobject_cast<QWidget*>(watched)))
            return true;
    }
    return QWidget::eventFilter(watched, event);
}

bool Sheet::focusNextPrevChild(bool isNext) {
    QWidget* const now = window()->focusWidget();
    QWidget* each = isInside(*this, now) ? now : m_content;
    for (QWidget* const start = each;;) {
        each = isNext ? each->nextInFocusChain() : each->previousInFocusChain();
        if (each == start) return true;  // nobody else takes it
        if (!m_content->isAncestorOf(each) || !each->isVisibleTo(this) || !each->isEnabled())
            continue;
        if (!(each->focusPolicy() & Qt::TabFocus)) continue;
        each->setFocus(isNext ? Qt::TabFocusReason : Qt::BacktabFocusReason);
        return true;
    }
}

void Sheet::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && !m_isClosing) Q_EMIT cancelled();
    event->accept();  // nothing passes to the page
}

void Sheet::paintEvent(QPaintEvent* /*event*/) {
    const Theme& theme = Theme::shared();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor dim(Qt::black);
    dim.setAlphaF(
        static_cast<float>((theme.scheme() == Theme::Scheme::Dark ? 0.45 : 0.25) * m_shown));
    painter.fillRect(rect(), dim);
    const QRectF panel = m_content->geometry();
    // A soft shadow of many thin layers; QGraphicsDropShadowEffect would render the content at
    // scale 1.
    QColor shadow = theme.color(Theme::Color::Shadow);
    shadow.setAlphaF(shadow.alphaF() * shadowStep / shadowReach);
    painter.setPen(Qt::NoPen);
    painter.setBrush(shadow);
    for (int reach = shadowReach; reach > 0; reach -= shadowStep)
        painter.drawPath(
            panelShape(panel.adjusted(-reach, 0, reach, reach), Theme::radiusWindow + reach));
    painter.setBrush(theme.color(Theme::Color::SurfaceRaised));
    painter.setPen(QPen(theme.color(Theme::Color::Line), 1));
    painter.drawPath(panelShape(panel.adjusted(0.5, -1.0, -0.5, -0.5), Theme::radiusWindow));
}

}  // namespace orrinvale
