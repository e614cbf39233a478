// RecordedDialogs: answers the questions of a page in a test, and keeps what was asked. Answers are
// preloaded; they come from the event loop, as those of a user do.
#pragma once

#include <QObject>

#include <deque>
#include <string>
#include <vector>

#include "ui/kit/dialogs/Dialogs.h"

namespace orrinvale::testing {

/// A question without a preloaded answer fails the test, and is answered by Escape or with no path.
/// So does, at the end, an answer that nobody asked for.
class RecordedDialogs final : public Dialogs {
public:
    ~RecordedDialogs() override;

    void willAnswer(int button) { m_buttons.push_back(button); }
    void willChoose(std::vector<std::string> paths) { m_choices.push_back(std::move(paths)); }

    [[nodiscard]] const std::vector<Alert>& alerts() const { return m_alerts; }
    [[nodiscard]] const std::vector<PathChoice>& choices() const { return m_asked; }

    void alert(QWidget* window, const Alert& alert, Answer answered) override;
    void choosePaths(QWidget* window, const PathChoice& choice, Paths chosen) override;

private:
    QObject m_context;  // nothing is answered after the end
    std::deque<int> m_buttons;
    std::deque<std::vector<std::string>> m_choices;
    std::vector<Alert> m_alerts;
    std::vector<PathChoice> m_asked;
};

}  // namespace orrinvale::testing
