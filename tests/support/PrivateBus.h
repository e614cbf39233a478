// A session bus for one test, on which nothing is started that the test does not start.
#pragma once

#include <QProcess>
#include <QStandardPaths>
#include <QString>

#include "support/TestTree.h"

namespace orrinvale::testing {

/// A program that ends with the test.
struct Helper final : QProcess {
    Helper() = default;
    Helper(const QString& program, const QStringList& arguments) { start(program, arguments); }
    ~Helper() override {
        kill();
        waitForFinished();
    }
    /// The next line that it says; empty where none comes within ten seconds.
    QString line() {
        while (!canReadLine())
            if (!waitForReadyRead(10'000)) return {};
        return QString::fromUtf8(readLine()).trimmed();
    }
};

/// The usual configuration would start services that are installed here, such as a notification
/// server, which end at once where there is no display.
struct PrivateBus {
    /// With `more` in its configuration. What it starts says its words through the daemon.
    explicit PrivateBus(
        const std::string& more = {},
        const QProcessEnvironment& environment = QProcessEnvironment::systemEnvironment()) {
        if (!tree.write("bus.conf",
                        "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>" + more +
                            "<policy context=\"default\"><allow send_destination=\"*\"/>"
                            "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>"))
            return;
        daemon.setProcessEnvironment(environment);
        daemon.setProcessChannelMode(QProcess::MergedChannels);
        daemon.start(
            QStringLiteral("dbus-daemon"),
            {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
             QStringLiteral("--config-file=") + QString::fromStdString(tree.at("bus.conf"))});
        address = daemon.line();
    }
    TestTree tree;
    Helper daemon;
    QString address;  ///< empty where there is none
};

}  // namespace orrinvale::testing
