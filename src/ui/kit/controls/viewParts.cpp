#include "ui/kit/controls/viewParts.h"

#include <QLabel>

#include "ui/kit/chrome/TCImageButton.h"

namespace orrinvale {

QLabel* makeLabel(const char* name, Theme::Text text, QPalette::ColorRole role) {
    auto* const made = named(new QLabel, name);
    made->setTextFormat(Qt::PlainText);
    made->setFont(Theme::shared().font(text));
    made->setForegroundRole(role);
    made->setAlignment(Qt::AlignCenter);
    return made;
}

TCImageButton* makeImageButton(const char* name, const QString& image, const QString& toolTip) {
    auto* const made = named(new TCImageButton, name);
    made->setImage(image);
    made->setIconSize({20, 20});
    made->setFixedSize(Theme::controlHeight, Theme::controlHeight);
    made->setToolTip(toolTip);
    return made;
}

}  // namespace orrinvale
