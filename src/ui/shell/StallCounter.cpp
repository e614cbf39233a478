// Where in a turn the loop says that it wakes and blocks differs: the dispatcher over GLib wakes
// after the events of a turn, the plain one before the posted events and before it waits for
// timers. So a turn is begun by the first event itself, and ended by whichever of the two comes
// first.
#include "ui/shell/StallCounter.h"

#include <fmt/format.h>
#include <ctime>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <algorithm>

#include "engine/base/Log.h"

namespace orrinvale {
namespace {

qint64 processorTime() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return qint64{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

}  // namespace

StallCounter::StallCounter(bool print, QObject* parent) : QObject(parent), m_print(print) {
    auto* const dispatcher = QAbstractEventDispatcher::instance();
    if (dispatcher == nullptr || QCoreApplication::instance() == nullptr) return;
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, &StallCounter::turnEnds);
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, &StallCounter::turnEnds);
    QCoreApplication::instance()->installEventFilter(this);
}

bool StallCounter::eventFilter(QObject* receiver, QEvent* event) {
    if (!m_turn.isValid()) {
        m_turn.start();
        m_busyBefore = processorTime();
    }
    return QObject::eventFilter(receiver, event);
}

void StallCounter::turnEnds() {
    if (!m_turn.isValid()) return;
    const qint64 took = m_turn.elapsed();
    m_turn.invalidate();
    m_longest = std::max(m_longest, took);
    const qint64 busy = processorTime() - m_busyBefore;
    m_busiest = std::max(m_busiest, busy);
    if (took <= frameMilliseconds) return;
    ++m_count;
    if (m_print)
        Log::line(fmt::format("stall: {} ms, of which {} ms of a processor", took, busy / 1000));
}

qint64 StallCounter::takeLongest() { return std::exchange(m_longest, 0); }
qint64 StallCounter::takeBusiest() { return std::exchange(m_busiest, 0); }

}  // namespace orrinvale
