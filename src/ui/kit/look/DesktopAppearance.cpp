// Three settings of the desktop's settings service. Theme.cpp decides what the answers count for.
#include "ui/kit/look/DesktopAppearance.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QStringList>

namespace orrinvale {
namespace {

struct Names {
    QString service = QStringLiteral("org.freedesktop.portal.Desktop");
    QString object = QStringLiteral("/org/freedesktop/portal/desktop");
    QString interface = QStringLiteral("org.freedesktop.portal.Settings");
    // The group of a setting and its key.
    QStringList scheme{QStringLiteral("org.freedesktop.appearance"),
                       QStringLiteral("color-scheme")};
    QStringList animations{QStringLiteral("org.gnome.desktop.interface"),
                           QStringLiteral("enable-animations")};
    QStringList doubleClick{QStringLiteral("org.gnome.desktop.wm.preferences"),
                            QStringLiteral("action-double-click-titlebar")};
};

const Names& names() {
    static const Names all;
    return all;
}

constexpr int busPatience = 200;  // milliseconds

QDBusMessage questionFor(const QStringList& setting) {
    QDBusMessage read = QDBusMessage::createMethodCall(names().service, names().object,
                                                       names().interface, QStringLiteral("Read"));
    read << setting.at(0) << setting.at(1);
    return read;
}

// Read() wraps the value in one variant more than the signal does.
QVariant unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
    return value;
}

}  // namespace

DesktopAppearance::DesktopAppearance(const QDBusConnection& bus, QObject* parent)
    : QObject(parent) {
    if (!bus.isConnected()) return;
    QDBusConnection(bus).connect(names().service, names().object, names().interface,
                                 QStringLiteral("SettingChanged"), this,
                                 SLOT(settingChanged(QDBusMessage)));
    const QDBusMessage question = questionFor(names().scheme);
    const QDBusMessage reply = bus.call(question, QDBus::Block, busPatience);
    if (reply.type() == QDBusMessage::ReplyMessage && !reply.arguments().isEmpty())
        takeScheme(reply.arguments().constFirst());
    else if (QDBusError(reply).type() == QDBusError::NoReply)
        takeLater(bus, question, &DesktopAppearance::takeScheme);
    else return;  // there is no such service
    takeLater(bus, questionFor(names().animations), &DesktopAppearance::takeAnimations);
    takeLater(bus, questionFor(names().doubleClick), &DesktopAppearance::takeTitleDoubleClick);
}

void DesktopAppearance::takeLater(const QDBusConnection& bus, const QDBusMessage& question,
                                  Taker taker) {
    const auto* late = new QDBusPendingCallWatcher(bus.asyncCall(question), this);
    connect(late, &QDBusPendingCallWatcher::finished, this,
            [this, taker](QDBusPendingCallWatcher* call) {
                const QDBusPendingReply<QDBusVariant> answer = *call;
                if (answer.isValid()) (this->*taker)(answer.value().variant());
                call->deleteLater();
            });
}

void DesktopAppearance::settingChanged(const QDBusMessage& message) {
    const QVariantList arguments = message.arguments();
    if (arguments.size() != 3) return;
    const QStringList setting{arguments[0].toString(), arguments[1].toString()};
    if (setting == names().scheme) takeScheme(arguments[2]);
    if (setting == names().animations) takeAnimations(arguments[2]);
    if (setting == names().doubleClick) takeTitleDoubleClick(arguments[2]);
}

void DesktopAppearance::takeScheme(const QVariant& value) {
    const uint preference = unwrapped(value).toUInt();
    std::optional<Theme::Scheme> scheme;
    if (preference == 1) scheme = Theme::Scheme::Dark;
    if (preference == 2) scheme = Theme::Scheme::Light;
    if (scheme == m_scheme) return;
    m_scheme = scheme;
    Q_EMIT changed();
}

void DesktopAppearance::takeAnimations(const QVariant& value) {
    if (const QVariant plain = unwrapped(value); plain.userType() == QMetaType::Bool)
        m_animates = plain.toBool();
}

void DesktopAppearance::takeTitleDoubleClick(const QVariant& value) {
    const QString action = unwrapped(value).toString();
    m_titleDoubleClick = TitleDoubleClick::Zoom;
    if (action == QLatin1String("minimize")) m_titleDoubleClick = TitleDoubleClick::Miniaturize;
    if (action == QLatin1String("none")) m_titleDoubleClick = TitleDoubleClick::Nothing;
}

}  // namespace orrinvale
