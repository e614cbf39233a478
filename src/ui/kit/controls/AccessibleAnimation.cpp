// Only the value is added to what the toolkit says of any widget, and a reader can not set it.
#include "ui/kit/controls/AccessibleAnimation.h"

#include <QAccessibleWidget>

#include "ui/kit/controls/Animation.h"

namespace orrinvale {
namespace {

class AccessibleAnimation final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleAnimation(Animation& strip)
        : QAccessibleWidget(&strip, QAccessible::ProgressBar), m_strip(strip) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }
    QVariant currentValue() const override { return m_strip.shownPercent(); }
    void setCurrentValue(const QVariant& /*value*/) override {}
    QVariant minimumValue() const override { return 0; }
    QVariant maximumValue() const override { return 100; }
    QVariant minimumStepSize() const override { return 1; }

private:
    Animation& m_strip;
};

QAccessibleInterface* makeAnimation(const QString& /*className*/, QObject* object) {
    auto* strip = qobject_cast<Animation*>(object);
    return strip != nullptr ? new AccessibleAnimation(*strip) : nullptr;  // Qt owns it
}

}  // namespace

void installAccessibleAnimation() {
    [[maybe_unused]] static const bool isInstalled =
        (QAccessible::installFactory(&makeAnimation), true);
}

}  // namespace orrinvale
