// Each flight, also one that never moves, ends in animationDidStop(): the page waits for the
// callback.
#include "ui/kit/controls/PathAnimation.h"

#include <QLabel>
#include <QWidget>

#include <algorithm>
#include <cmath>

#include "engine/base/Log.h"
#include "ui/kit/look/motion.h"

namespace orrinvale {
namespace {

constexpr int flightTime = 1000;  // milliseconds

QLabel* makeIconView(QWidget& page) {
    auto* view = new QLabel(&page);  // owned by the page
    view->setAttribute(Qt::WA_TransparentForMouseEvents);
    view->setAttribute(Qt::WA_NoSystemBackground);
    view->hide();
    return view;
}

}  // namespace

PathAnimation::PathAnimation(QWidget& page, QObject* parent)
    : QObject(parent), m_page(&page), m_animatedIconView(makeIconView(page)) {
    m_flight.setStartValue(0.0);
    m_flight.setEndValue(1.0);
    m_flight.setDuration(flightTime);
    m_flight.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_flight, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& share) { moveTo(share.toReal()); });
    connect(&m_flight, &QVariantAnimation::finished, this, &PathAnimation::animationDidStop);
}

PathAnimation::~PathAnimation() { delete m_animatedIconView.data(); }

QLabel* PathAnimation::animatedIconView() const { return m_animatedIconView; }

void PathAnimation::fly(const QPixmap& image, const QRect& start, const QWidget* endButton) {
    if (m_isFly) {
        m_flight.stop();
        animationDidStop();
    }
    const bool isMoving = !m_page.isNull() && !m_animatedIconView.isNull() &&
                          endButton != nullptr && m_page->isVisible() && mayAnimate(*m_page);
    animationDidStart();
    if (!isMoving) {
        animationDidStop();
        return;
    }
    m_animatedIconView->setPixmap(image);
    m_animatedIconView->adjustSize();
    m_start = QRectF(start).center();
    m_end = m_page->mapFromGlobal(endButton->mapToGlobal(endButton->rect().center()));
    moveTo(0.0);
    m_animatedIconView->show();
    m_animatedIconView->raise();
    m_flight.start();
}

QPointF PathAnimation::pointOfPath(QPointF start, QPointF end, qreal share) {
    // A quadratic curve; its handle stands above the middle, by a share of the distance that looks
    // thrown, not dropped.
    const QPointF way = end - start;
    const qreal lift = std::max<qreal>(40.0, std::hypot(way.x(), way.y()) * 0.35);
    const QPointF handle((start.x() + end.x()) / 2, std::min(start.y(), end.y()) - lift);
    const qreal rest = 1.0 - share;
    return rest * rest * start + 2 * rest * share * handle + share * share * end;
}

void PathAnimation::animationDidStart() {
    m_isFly = true;
    Log::line("animation start");
}

void PathAnimation::animationDidStop() {
    m_isFly = false;
    Log::line("animation end");
    if (!m_animatedIconView.isNull()) m_animatedIconView->hide();
    if (m_delegate != nullptr)
        m_delegate->callBackDeleteItemWithIndex();  // last: it may end this object
}

void PathAnimation::moveTo(qreal share) {
    if (m_animatedIconView.isNull()) return;
    const QRect frame = m_animatedIconView->rect();
    m_animatedIconView->move(
        (pointOfPath(m_start, m_end, share) - QRectF(frame).center()).toPoint());
}

}  // namespace orrinvale
