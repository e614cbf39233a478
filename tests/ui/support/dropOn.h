// dropOn: folders that are dragged in from the desktop.
#pragma once

#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QUrl>
#include <QWidget>
#include <QWindow>

#include "support/test.h"

namespace orrinvale::testing {

/// Through the window, as the desktop does it: it falls to whoever takes it at that place.
inline void dropOn(QWidget& place, const Strings& folders) {
    QMimeData dragged;
    QList<QUrl> urls;
    for (const std::string& each : folders)
        urls.push_back(QUrl::fromLocalFile(QString::fromStdString(each)));
    dragged.setUrls(urls);
    QWidget& window = *place.window();
    const QPoint at = place.mapTo(&window, place.rect().center());
    QDragEnterEvent enters(at, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.windowHandle(), &enters);
    EXPECT_TRUE(enters.isAccepted());
    QDragMoveEvent moves(at, Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.windowHandle(), &moves);
    QDropEvent drop(QPointF(at), Qt::CopyAction, &dragged, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(window.windowHandle(), &drop);
}

}  // namespace orrinvale::testing
