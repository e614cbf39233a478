// UninstallQuestion: what the sheet asks before applications go: each with what goes along, what
// stays, and what it left, which the person may tick.
#pragma once

#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/uninstall/UninstallWork.h"

class QCheckBox;
class QLabel;
class QScrollArea;
class QVBoxLayout;

namespace orrinvale {

class TextImageButton;
class TickBox;

/// The forecast comes while it stands; before, nobody can agree. Main thread only.
class UninstallQuestion final : public QWidget {
    Q_OBJECT
public:
    UninstallQuestion(const AppItemsArray& items, const QString& informativeText);

    void showForecast(const std::vector<UninstallForecast>& forecast);
    /// No forecast came; `reason` is for people.
    void showSilence(const QString& reason);
    /// Of the application of this number.
    void showRunning(std::size_t number, RunState state);
    /// It was asked to quit, and knows no such thing.
    void showCannotQuit(std::size_t number);

    /// What was agreed to: all that may go, with the leftovers that are ticked.
    [[nodiscard]] std::vector<UninstallRequest> requests() const;

    TextImageButton* uninstallYes = nullptr;
    TextImageButton* cancelButton = nullptr;

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void quitWanted(std::size_t number);

private:
    struct Part {
        std::shared_ptr<AppItems> item;
        UninstallForecast forecast;
        QVBoxLayout* lines = nullptr;
        QWidget* running = nullptr;
        QLabel* runningLabel = nullptr;
        TextImageButton* quitButton = nullptr;
        std::vector<std::pair<TickBox*, Leftover>> leftovers;
    };
    void addHead(QVBoxLayout& column, const QString& informativeText);
    void addParts(QVBoxLayout& column, const AppItemsArray& items);
    void addButtons(QVBoxLayout& column);
    void fillPart(Part& part, std::size_t number);
    void addRunning(Part& part, std::size_t number);
    void addLeftovers(Part& part, LeftoverGrade grade, const QString& title);
    QLabel* addLine(Part& part, const QString& text, bool isQuiet = true);

    std::vector<Part> m_parts;
    QLabel* m_waiting = nullptr;
    QScrollArea* m_area = nullptr;
};

}  // namespace orrinvale
