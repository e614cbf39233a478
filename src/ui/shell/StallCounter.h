// StallCounter: tells of every turn of the event loop that keeps the window from being drawn.
#pragma once

#include <QElapsedTimer>
#include <QObject>

namespace orrinvale {

/// Watches the event loop of the main thread, and counts the turns that take longer than one frame
/// of the screen. A turn lasts from the first event after the loop waited, or could have waited, to
/// the next such moment. With `print` it writes each long one to standard error: the environment's
/// ORRINVALE_STALLS=1 asks for it. Made once the application object is there; main thread only.
class StallCounter final : public QObject {
    Q_OBJECT
public:
    static constexpr int frameMilliseconds = 16;

    explicit StallCounter(bool print, QObject* parent = nullptr);

    /// The longest turn since the last call, in milliseconds. The turn under way does not count
    /// yet.
    [[nodiscard]] qint64 takeLongest();
    /// Likewise of the processor time that turns took, which other programs do not stretch; in
    /// microseconds.
    [[nodiscard]] qint64 takeBusiest();
    [[nodiscard]] int count() const { return m_count; }

    bool eventFilter(QObject* receiver, QEvent* event) override;

private:
    void turnEnds();

    const bool m_print;
    QElapsedTimer m_turn;
    qint64 m_longest = 0;
    qint64 m_busyBefore = 0;  // the turn; microseconds of this thread
    qint64 m_busiest = 0;
    int m_count = 0;
};

}  // namespace orrinvale
