// accessibleRole: what screen readers hear of widgets that the toolkit takes for plain areas or
// buttons.
#pragma once

#include <QAccessible>
#include <functional>

class QObject;
class QWidget;

namespace orrinvale {

/// What a widget is. Set once, when the widget is made.
struct AccessibleTraits {
    QAccessible::Role role = QAccessible::Client;
    bool isModal = false;
    bool isSelectable = false;  ///< one of several of which some are selected, such as a tab
    std::function<void()> press =
        nullptr;  ///< what a press of it does; none where it is nothing to press
};

void setAccessibleTraits(QWidget& widget, AccessibleTraits traits);

/// Lets go of what screen readers were given of the object so far, which may have been made while
/// it was still one of its base classes. For constructors.
void renewAccessible(QObject& object);

/// Tells screen readers too. Only of a widget that is selectable.
void setAccessiblySelected(QWidget& widget, bool isSelected);

}  // namespace orrinvale
