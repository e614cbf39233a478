// StallCounter: see StallCounter.h.
#include "ui/shell/StallCounter.h"

#include <fmt/format.h>

#include <QAbstractEventDispatcher>
#include <algorithm>

#include "engine/base/Log.h"

namespace orrinvale {

StallCounter::StallCounter(bool print, QObject* parent) : QObject(parent), m_print(print) {
    auto* const dispatcher = QAbstractEventDispatcher::instance();
    if (dispatcher == nullptr) return;
    connect(dispatcher, &QAbstractEventDispatcher::awake, this, [this] { m_turn.start(); });
    connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this, [this] { turnEnds(); });
}

void StallCounter::turnEnds() {
    if (!m_turn.isValid()) return;
    const qint64 took = m_turn.elapsed();
    m_turn.invalidate();
    m_longest = std::max(m_longest, took);
    if (took <= frameMilliseconds) return;
    ++m_count;
    if (m_print) Log::line(fmt::format("stall: {} ms", took));
}

qint64 StallCounter::takeLongest() { return std::exchange(m_longest, 0); }

}  // namespace orrinvale
