// Qt 6.4 does not hand on what the desktops store, so their files are read here. What their
// settings service says comes through Theme, which listens to it.
#include "ui/kit/look/motion.h"

#include <QSettings>
#include <QStandardPaths>
#include <QStyle>
#include <QWidget>

#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

// The value as the first file that has it tells: the user's own comes before the system's.
QString desktopValue(const QString& file, const QString& key) {
    for (const QString& path :
         QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation, file)) {
        const QSettings settings(path, QSettings::IniFormat);
        if (settings.contains(key)) return settings.value(key).toString();
    }
    return {};
}

// Plasma: how long animations take, relative to the usual; 0 in the settings page's position
// "instant".
bool isPlasmaStill() {
    bool isNumber = false;
    const double factor =
        desktopValue(QStringLiteral("kdeglobals"), QStringLiteral("KDE/AnimationDurationFactor"))
            .toDouble(&isNumber);
    return isNumber && factor <= 0.0;
}

bool isGtkStill() {
    for (const char* version : {"gtk-4.0", "gtk-3.0"}) {
        const QString value = desktopValue(QLatin1String(version) + QStringLiteral("/settings.ini"),
                                           QStringLiteral("Settings/gtk-enable-animations"));
        if (!value.isEmpty())
            return value == QLatin1String("0") || value.toLower() == QLatin1String("false");
    }
    return false;
}

}  // namespace

bool mayAnimate(const QWidget& widget) {
    if (widget.style()->styleHint(QStyle::SH_Widget_Animation_Duration, nullptr, &widget) <= 0)
        return false;
    return Theme::shared().desktopAnimates() && !isPlasmaStill() && !isGtkStill();
}

}  // namespace orrinvale
