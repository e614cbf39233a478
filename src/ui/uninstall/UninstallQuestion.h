// UninstallQuestion: what the sheet asks before applications go: each with what goes along, what
// stays, and what it left, which the person may tick.
#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/uninstall/UninstallWork.h"

class QLabel;
class QScrollArea;
class QVBoxLayout;

namespace orrinvale {

class TextImageButton;
class TickBox;

/// It keeps what it was asked about as it was then: whatever the list becomes, what is shown is
/// what goes. The forecast comes while it stands; before, nobody can agree. Of thousands those are
/// made into widgets that somebody scrolls to; a line says how many follow. Main thread only.
class UninstallQuestion final : public QWidget {
    Q_OBJECT
public:
    UninstallQuestion(const AppItemsArray& items, const QString& informativeText);

    void showForecast(const UninstallOutlook& outlook);
    /// No forecast came; `reason` is for people.
    void showSilence(const QString& reason);
    /// Of the application of this number.
    void showRunning(std::size_t number, RunState state);
    /// True once for each: one that was asked to quit is looked at until the sheet is shut.
    [[nodiscard]] bool beginsToLook(std::size_t number);
    /// There is no way to ask it to quit.
    void showCannotQuit(std::size_t number);

    /// What was agreed to: all that may go, with the leftovers that are ticked.
    [[nodiscard]] std::vector<UninstallRequest> requests() const;
    /// The promise that was shown; null before the forecast.
    [[nodiscard]] std::shared_ptr<const UninstallPlan> plan() const {
        return m_outlook ? m_outlook->plan : nullptr;
    }
    /// The forecast found some that are not as they were listed.
    [[nodiscard]] bool isListOld() const { return m_outlook && m_outlook->isListOld; }
    [[nodiscard]] std::shared_ptr<const ApplicationRecord> record(std::size_t number) const {
        return m_parts.at(number).item.record;
    }

    TextImageButton* uninstallYes = nullptr;
    TextImageButton* cancelButton = nullptr;

    [[nodiscard]] QSize sizeHint() const override;

Q_SIGNALS:
    void quitWanted(std::size_t number);

private:
    struct Part {
        AppItems item;
        UninstallForecast forecast;
        QVBoxLayout* lines = nullptr;
        QWidget* running = nullptr;
        QLabel* runningLabel = nullptr;
        TextImageButton* quitButton = nullptr;
        bool isLookedAt = false;
        std::vector<std::pair<TickBox*, Leftover>> leftovers;
    };
    void addHead(QVBoxLayout& column, const QString& informativeText);
    void addParts(QVBoxLayout& column, const AppItemsArray& items);
    void goOn();
    void addBlock();
    void addNotes();
    void addSummary();
    void showMore();
    void addButtons(QVBoxLayout& column);
    void fillPart(Part& part, std::size_t number);
    void addPaths(Part& part);
    void addRunning(Part& part, std::size_t number);
    void addLeftovers(Part& part, LeftoverGrade grade, const QString& title);

    std::vector<Part> m_parts;
    std::shared_ptr<const UninstallOutlook> m_outlook;  // null before the forecast
    QTimer m_nextTurn;
    std::size_t m_shown = 0;           // of the parts, from the first
    std::size_t m_noted = 0;           // of the notes, which stand behind all parts
    QVBoxLayout* m_summary = nullptr;  // above the list: what concerns all of them
    QVBoxLayout* m_list = nullptr;
    QLabel* m_more = nullptr;
    QLabel* m_waiting = nullptr;
    QScrollArea* m_area = nullptr;
};

}  // namespace orrinvale
