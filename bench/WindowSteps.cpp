// WindowSteps: see WindowSteps.h.
#include "WindowSteps.h"

#include <fmt/format.h>
#include <time.h>

#include <QAbstractScrollArea>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QMouseEvent>
#include <QScrollBar>
#include <QTimer>
#include <chrono>
#include <cstdio>
#include <thread>

namespace orrinvale {
namespace {

constexpr qint64 longestStall = 50;   // milliseconds
constexpr double fewestRedraws = 60;  // a second

qint64 busy() {
    timespec now{};
    ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return std::int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

}  // namespace

bool isOver(const Row& row) {
    return row.longest > longestStall || (row.redraws != 0 && row.redraws < fewestRedraws);
}

void print(const std::vector<Row>& rows, bool asJson) {
    std::string text;
    for (const Row& row : rows) {
        if (asJson)
            text += fmt::format(
                R"({}{{"step":"{}","longest_ms":{},"busiest_ms":{:.1f},"total_ms":{},"busy_ms":{},"redraws_per_second":{:.0f},"over":{}}})",
                text.empty() ? "[" : ",\n ", row.step, row.longest, row.busiest, row.total,
                row.busy, row.redraws, isOver(row));
        else
            text += fmt::format("{:<32}{:>8} ms{:>8.1f} ms{:>8} ms{:>8} ms{:>10}{}\n", row.step,
                                row.longest, row.busiest, row.total, row.busy,
                                row.redraws == 0 ? "" : fmt::format("{:.0f}/s", row.redraws),
                                isOver(row) ? "  over" : "");
    }
    if (asJson) text += "]\n";
    else
        text.insert(0, fmt::format("{:<32}{:>11}{:>11}{:>11}{:>11}{:>10}\n", "step", "longest",
                                   "busiest", "total", "busy", "redraws"));
    std::fputs(text.c_str(), stdout);
}

bool WindowSteps::counterWorks() {
    constexpr std::chrono::milliseconds held{60};
    const auto hold = [held] { std::this_thread::sleep_for(held); };
    pass(50);
    static_cast<void>(m_stalls.takeLongest());
    QTimer::singleShot(1, &m_context, hold);
    pass(100);
    const qint64 byTimer = m_stalls.takeLongest();
    QMetaObject::invokeMethod(&m_context, hold, Qt::QueuedConnection);
    pass(100);
    const qint64 byPost = m_stalls.takeLongest();
    pass(200);
    return byTimer >= held.count() && byPost >= held.count() &&
           m_stalls.takeLongest() < held.count();
}

void WindowSteps::pass(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, [&loop] { loop.quit(); });
    loop.exec();
}

void WindowSteps::step(const std::string& name, const std::function<void()>& action,
                       const std::function<bool()>& isOver) {
    pass(150);
    static_cast<void>(m_stalls.takeLongest());
    static_cast<void>(m_stalls.takeBusiest());
    QElapsedTimer clock;
    clock.start();
    const qint64 busyBefore = busy();
    bool begun = false;
    QTimer::singleShot(0, &m_context, [&] {
        action();
        // Behind the clicks that the action has posted.
        QMetaObject::invokeMethod(
            &m_context, [&] { begun = true; }, Qt::QueuedConnection);
    });
    while (!begun || !isOver()) pass(1);
    const qint64 total = clock.elapsed();
    pass(150);
    rows.push_back({.step = name,
                    .longest = m_stalls.takeLongest(),
                    .busiest = static_cast<double>(m_stalls.takeBusiest()) / 1000,
                    .total = total,
                    .busy = busy() - busyBefore});
}

void WindowSteps::click(QWidget& widget, QPoint position) {
    const QPointF local(position);
    const QPointF global(widget.mapToGlobal(position));
    for (const auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease})
        QCoreApplication::postEvent(
            &widget,
            new QMouseEvent(type, local, global, Qt::LeftButton,
                            type == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, {}));
}

void WindowSteps::scroll(const std::string& name, QAbstractScrollArea& list) {
    constexpr int redraws = 300;
    QScrollBar& bar = *list.verticalScrollBar();
    int drawn = 0;
    QElapsedTimer clock;
    QTimer frames;
    frames.setInterval(0);
    QObject::connect(&frames, &QTimer::timeout, &list, [&] {
        bar.setValue(static_cast<int>(std::int64_t{bar.maximum()} * drawn / redraws));
        list.viewport()->repaint();
        if (++drawn == redraws) frames.stop();
    });
    step(
        name,
        [&] {
            clock.start();
            frames.start();
        },
        [&] { return drawn == redraws; });
    rows.back().redraws = redraws * 1000.0 / static_cast<double>(rows.back().total);
    bar.setValue(0);
}

}  // namespace orrinvale
