// viewParts: the small pieces that the views of every page are made of.
#pragma once

#include <QLatin1String>
#include <QPalette>
#include <QString>

#include "ui/kit/look/Theme.h"

class QLabel;

namespace orrinvale {

class TCImageButton;

/// Gives the control its object name, and a name for screen readers where its text does not say it.
template <class Control>
Control* named(Control* control, const char* name, const QString& accessibleName = {}) {
    control->setObjectName(QLatin1String(name));
    if (!accessibleName.isEmpty()) control->setAccessibleName(accessibleName);
    return control;
}

/// A label for plain text in the middle of its place.
[[nodiscard]] QLabel* makeLabel(const char* name, Theme::Text text,
                                QPalette::ColorRole role = QPalette::WindowText);

/// A picture to press, as high as the other controls of a bar.
[[nodiscard]] TCImageButton* makeImageButton(const char* name, const QString& image,
                                             const QString& toolTip);

}  // namespace orrinvale
