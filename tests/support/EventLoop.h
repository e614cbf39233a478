// Running an event loop until something holds, for tests of what needs one.
#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <functional>

namespace orrinvale::testing {

/// Serves this thread's events until the condition holds; false when it does not within the seconds
/// given.
inline bool serveUntil(const std::function<bool()>& condition, int seconds = 20) {
    const QDeadlineTimer deadline(seconds * 1000);
    while (!condition()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
    return true;
}

}  // namespace orrinvale::testing
