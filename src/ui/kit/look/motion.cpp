// Qt 6.4 does not hand on what the desktops store, so their files are read here. What their
// settings service says comes through Theme, which listens to it.
#include "ui/kit/look/motion.h"

#include <QFile>
#include <QStandardPaths>
#include <QStyle>
#include <QWidget>
#include <optional>

#include "engine/files/DurableFile.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

// Whatever else lies there, a pipe or a file without end, is no file of settings, and holds nobody
// up. Many keep theirs behind a link.
QByteArray settingsIn(const QString& path) {
    constexpr std::size_t limit = 256 * 1024;
    const std::string name = QFile::encodeName(path).toStdString();
    const auto text = DurableFile::read(DurableFile::behindOwnLinks(name).value_or(name), limit,
                                        DurableFile::Owner::Any);
    return text ? QByteArray::fromStdString(*text) : QByteArray();
}

std::optional<QString> valueIn(const QByteArray& settings, const char* group, const char* key) {
    bool isInGroup = false;
    for (const QByteArray& each : settings.split('\n')) {
        const QByteArray line = each.trimmed();
        if (line.startsWith('[')) isInGroup = line == QByteArray(1, '[') + group + ']';
        const qsizetype sign = line.indexOf('=');
        if (isInGroup && sign > 0 && line.first(sign).trimmed() == key)
            return QString::fromUtf8(line.sliced(sign + 1).trimmed());
    }
    return std::nullopt;
}

// The value as the first file that has it tells: the user's own comes before the system's.
QString desktopValue(const QString& file, const char* group, const char* key) {
    for (const QString& path :
         QStandardPaths::locateAll(QStandardPaths::GenericConfigLocation, file))
        if (const auto value = valueIn(settingsIn(path), group, key)) return *value;
    return {};
}

// Plasma: how long animations take, relative to the usual; 0 in the settings page's position
// "instant".
bool isPlasmaStill() {
    bool isNumber = false;
    const double factor =
        desktopValue(QStringLiteral("kdeglobals"), "KDE", "AnimationDurationFactor")
            .toDouble(&isNumber);
    return isNumber && factor <= 0.0;
}

bool isGtkStill() {
    for (const char* version : {"gtk-4.0", "gtk-3.0"}) {
        const QString value = desktopValue(QLatin1String(version) + QStringLiteral("/settings.ini"),
                                           "Settings", "gtk-enable-animations");
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
