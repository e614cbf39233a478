// WindowSteps: one step after the other on a window, each measured by the program's own counter of
// stalls.
#pragma once

#include <QObject>
#include <QPoint>
#include <QTimer>
#include <functional>
#include <string>
#include <vector>

#include "ui/kit/dialogs/Dialogs.h"
#include "ui/shell/StallCounter.h"

class QAbstractScrollArea;

namespace orrinvale {

/// Agrees to every question, from the event loop, as a person would.
class Agreeing final : public Dialogs {
public:
    void alert(QWidget* /*window*/, const Alert& /*alert*/, Answer answered) override {
        QTimer::singleShot(0, &m_context, [answered = std::move(answered)] { answered(0); });
    }
    void choosePaths(QWidget* /*window*/, const PathChoice& /*choice*/, Paths chosen) override {
        QTimer::singleShot(0, &m_context, [chosen = std::move(chosen)] { chosen({}); });
    }

private:
    QObject m_context;
};

struct Row {
    std::string step;
    qint64 longest = 0;  // milliseconds
    double busiest = 0;  // milliseconds of processor time of the busiest turn
    qint64 total = 0;    // milliseconds until the step was over
    qint64 busy = 0;  // milliseconds of processor time on the main thread, which other programs do
                      // not stretch
    double redraws = 0;  // a second; 0 where nothing was scrolled
};

/// Over the longest stall, 50 ms, or under 60 redraws a second.
[[nodiscard]] bool isOver(const Row& row);
void print(const std::vector<Row>& rows, bool asJson);

class WindowSteps final {
public:
    /// False when the counter does not see work that holds the loop up, whatever kind of event it
    /// comes with.
    [[nodiscard]] bool counterWorks();

    /// Runs the event loop.
    static void pass(int milliseconds);
    /// The action runs as an event of its own; what it asks to be drawn follows before the step is
    /// over.
    void step(
        const std::string& name, const std::function<void()>& action,
        const std::function<bool()>& isOver = [] { return true; });
    /// The whole list goes by, so that every redraw draws other rows.
    void scroll(const std::string& name, QAbstractScrollArea& list);
    /// Posts a click of the left button.
    static void click(QWidget& widget, QPoint position);

    std::vector<Row> rows;

private:
    StallCounter m_stalls{false};
    QObject m_context;
};

}  // namespace orrinvale
