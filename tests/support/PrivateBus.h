// A session bus for one test, on which nothing is started that the test does not start.
#pragma once

#include <QProcess>
#include <QStandardPaths>
#include <QString>

#include "support/TestTree.h"

namespace orrinvale::testing {

/// A program that ends with the test.
struct Helper final : QProcess {
    ~Helper() override {
        kill();
        waitForFinished();
    }
};

/// The usual configuration would start services that are installed here, such as a notification
/// server, which end at once where there is no display.
struct PrivateBus {
    PrivateBus() {
        if (!tree.write("bus.conf",
                        "<busconfig><type>session</type><listen>unix:tmpdir=/tmp</listen>"
                        "<policy context=\"default\"><allow send_destination=\"*\"/>"
                        "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>"))
            return;
        daemon.start(
            QStringLiteral("dbus-daemon"),
            {QStringLiteral("--nofork"), QStringLiteral("--print-address"),
             QStringLiteral("--config-file=") + QString::fromStdString(tree.at("bus.conf"))});
        if (daemon.waitForReadyRead()) address = QString::fromUtf8(daemon.readLine()).trimmed();
    }
    TestTree tree;
    Helper daemon;
    QString address;  ///< empty where there is none
};

}  // namespace orrinvale::testing
