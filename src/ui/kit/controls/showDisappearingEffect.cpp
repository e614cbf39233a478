// The cloud is a widget that ends itself, so that nobody has to keep it.
#include "ui/kit/controls/showDisappearingEffect.h"

#include <QPainter>
#include <QVariantAnimation>
#include <QWidget>

#include "ui/kit/look/Theme.h"
#include "ui/kit/look/motion.h"

namespace orrinvale {
namespace {

constexpr int side = 72;
constexpr int duration =
    450;  // milliseconds: long enough to be seen, short enough not to be waited for

// Puffs that drift apart, swell and fade.
class Cloud final : public QWidget {
public:
    Cloud(QWidget& over, QPoint place) : QWidget(&over) {
        setObjectName(QStringLiteral("disappearingEffect"));
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_NoSystemBackground);
        setGeometry(place.x() - side / 2, place.y() - side / 2, side, side);
        m_run.setStartValue(0.0);
        m_run.setEndValue(1.0);
        m_run.setDuration(duration);
        m_run.setEasingCurve(QEasingCurve::OutQuad);
        connect(&m_run, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
        connect(&m_run, &QVariantAnimation::finished, this, &QObject::deleteLater);
        show();
        raise();
        m_run.start();
    }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        const qreal share = m_run.currentValue().toReal();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::shared().color(Theme::Color::TextSecondary));
        painter.setOpacity((1.0 - share) / 2);
        painter.translate(rect().center());
        constexpr int puffs = 6;
        const qreal radius = side / 9.0 * (1.0 + share / 2);
        const qreal distance = side / 3.0 * (0.3 + 0.7 * share);
        for (int i = 0; i < puffs; ++i) {
            painter.drawEllipse(QPointF(distance, 0), radius, radius);
            painter.rotate(360.0 / puffs);
        }
    }

private:
    QVariantAnimation m_run;
};

}  // namespace

void showDisappearingEffect(QWidget& over, QPoint place) {
    if (over.isVisible() && mayAnimate(over)) new Cloud(over, place);  // ends itself
}

}  // namespace orrinvale
