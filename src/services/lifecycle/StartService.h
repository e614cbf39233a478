// StartService: takes over what later starts of the program ask for. platform/instance.h is how
// they ask.
#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QStringList>
#include <QVariantMap>
#include <functional>
#include <memory>

#include "platform/instance.h"

namespace orrinvale {

/// Listens at the instance's socket and, under the program's name, on the session bus, where the
/// desktop asks too (the interface is that of the Desktop Entry standard). Without a bus, or where
/// another process has the name, the socket alone serves. Main thread only; the instance outlives
/// the service.
class StartService final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    using Handler = std::function<void(const StartRequest& request)>;

    /// `handler` runs on the main thread, one request after another.
    StartService(ProgramInstance& instance, Handler handler);
    ~StartService() override;

    /// Takes nothing over any more: who starts the program now finds nobody, and becomes the
    /// program as soon as this one has ended. What has been answered on the bus is sent before this
    /// returns.
    void stop();

public Q_SLOTS:
    // Of the interface; the names are those of the bus.
    void Activate(const QVariantMap& platform_data);
    void Open(const QStringList& uris, const QVariantMap& platform_data);
    void ActivateAction(const QString& action_name, const QVariantList& parameter,
                        const QVariantMap& platform_data);

private:
    void receive();
    void joinBus();

    ProgramInstance& m_instance;
    const Handler m_handler;
    std::unique_ptr<QSocketNotifier> m_notifier;
    bool m_isOnBus = false;
};

}  // namespace orrinvale
