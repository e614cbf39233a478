// A style without animation, and the events that bring a control into its state.
#include "gallery/Portrait.h"

#include <QAbstractButton>
#include <QApplication>
#include <QEnterEvent>
#include <QPainter>
#include <QProxyStyle>
#include <QStyleFactory>

#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

// Nothing fades: the state is there at once.
class StillStyle final : public QProxyStyle {
public:
    StillStyle() : QProxyStyle(QStyleFactory::create(QStringLiteral("Fusion"))) {}
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_Widget_Animation_Duration
                   ? 0
                   : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

void bringInto(QWidget& control, ControlState state) {
    auto* const button = qobject_cast<QAbstractButton*>(&control);
    const QPointF middle = QRectF(control.rect()).center();
    switch (state) {
        case ControlState::Normal: break;
        case ControlState::Hover:
        case ControlState::Pressed: {
            QEnterEvent enter(middle, middle, middle);
            QApplication::sendEvent(&control, &enter);
            if (state == ControlState::Pressed && button != nullptr) button->setDown(true);
            break;
        }
        case ControlState::Focused: control.setFocus(Qt::TabFocusReason); break;
        case ControlState::Disabled: control.setEnabled(false); break;
        case ControlState::Checked:
            if (button == nullptr) break;
            button->setCheckable(true);
            button->setChecked(true);
    }
}

}  // namespace

Portrait::Portrait(Make make, ControlState state, QWidget* parent)
    : QWidget(parent), m_make(std::move(make)), m_state(state) {
    connect(&Theme::shared(), &Theme::changed, this, [this] { take(); });
    take();
}

void Portrait::take() {
    static StillStyle still;
    QWidget stage;
    stage.setAttribute(Qt::WA_DontShowOnScreen);
    stage.setFocusPolicy(Qt::StrongFocus);
    QWidget* const control = m_make();
    control->setParent(&stage);
    control->setStyle(&still);
    control->resize(control->sizeHint());
    stage.resize(control->size());
    stage.show();
    stage.setFocus();
    QWidget* const before = QApplication::activeWindow();
    if (m_state == ControlState::Focused) QApplication::setActiveWindow(&stage);
    bringInto(*control, m_state);
    m_picture = control->grab();
    setFixedSize(control->size());
    if (m_state == ControlState::Focused) QApplication::setActiveWindow(before);
    update();
}

void Portrait::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.drawPixmap(0, 0, m_picture);
}

}  // namespace orrinvale
