// The traits are a child object of the widget; the factory that the toolkit asks for interfaces
// looks for them there.
#include "ui/kit/look/accessibleRole.h"

#include <QAccessibleWidget>
#include <QWidget>
#include <utility>

namespace orrinvale {
namespace {

// Lives and ends with its widget.
class Traits final : public QObject {
public:
    Traits(AccessibleTraits traits, QWidget& widget) : QObject(&widget), given(std::move(traits)) {}

    static Traits* of(const QObject& widget) {
        for (QObject* const child : widget.children())
            if (auto* const traits = dynamic_cast<Traits*>(child)) return traits;
        return nullptr;
    }

    const AccessibleTraits given;
    bool isSelected = false;
};

class TraitsInterface final : public QAccessibleWidget {
public:
    TraitsInterface(QWidget& widget, const Traits& traits)
        : QAccessibleWidget(&widget, traits.given.role), m_traits(traits) {}

    QAccessible::State state() const override {
        QAccessible::State state = QAccessibleWidget::state();
        state.modal = m_traits.given.isModal;
        state.selectable = m_traits.given.isSelectable;
        state.selected = m_traits.isSelected;
        return state;
    }
    QStringList actionNames() const override {
        return m_traits.given.press ? QStringList{pressAction()} : QAccessibleWidget::actionNames();
    }
    void doAction(const QString& name) override {
        if (name == pressAction() && m_traits.given.press) m_traits.given.press();
        else QAccessibleWidget::doAction(name);
    }

private:
    const Traits& m_traits;
};

QAccessibleInterface* makeRole(const QString& /*className*/, QObject* object) {
    auto* const widget = qobject_cast<QWidget*>(object);
    const Traits* const traits = widget != nullptr ? Traits::of(*widget) : nullptr;
    return traits != nullptr ? new TraitsInterface(*widget, *traits) : nullptr;  // Qt owns it
}

}  // namespace

void setAccessibleTraits(QWidget& widget, AccessibleTraits traits) {
    [[maybe_unused]] static const bool isInstalled = (QAccessible::installFactory(&makeRole), true);
    new Traits(std::move(traits), widget);
    renewAccessible(widget);
}

// Names and sizes make the toolkit ask for it, whether a screen reader runs or not.
void renewAccessible(QObject& object) {
    if (QAccessibleInterface* const made = QAccessible::queryAccessibleInterface(&object))
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(made));
}

void setAccessiblySelected(QWidget& widget, bool isSelected) {
    Traits* const traits = Traits::of(widget);
    if (traits == nullptr || traits->isSelected == isSelected) return;
    traits->isSelected = isSelected;
    QAccessible::State changed;
    changed.selected = true;
    QAccessibleStateChangeEvent event(&widget, changed);
    QAccessible::updateAccessibility(&event);
}

}  // namespace orrinvale
