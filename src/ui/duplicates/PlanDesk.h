// PlanDesk: keeps what is ticked as a plan, and opens a plan and does it: the two sheets for that,
// and the removal behind the second one.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/plan/DuplicatePlan.h"
#include "engine/removal/RemovalJob.h"
#include "ui/duplicates/UndoErrand.h"
#include "ui/page/PageServices.h"

class QWidget;

namespace orrinvale {

class PlanPanel;
class PlanRemoval;
class SavePlanPanel;
class Sheet;
class UndoableRemoval;
struct PlanFacts;

/// One sheet at a time. When this object ends what is under way stops before its next entry. Main
/// thread only.
class PlanDesk final : public QObject {
    Q_OBJECT
public:
    explicit PlanDesk(const PageServices& services, QObject* parent = nullptr);
    ~PlanDesk() override;

    /// Something goes, or comes back.
    [[nodiscard]] bool isRunning() const { return m_run != nullptr || m_undoing.isRunning(); }
    void stop();

    /// What a plan did to an entry.
    struct Settled {
        std::string path;
        bool isGone = false;                  ///< or in the trash
        std::optional<std::int64_t> changed;  ///< RemovalResult::changed
        std::uint32_t namesMade = 0;          ///< of its file, beside those that it had
        bool isFolder = false;
    };

    /// Asks where the plan is to be kept, in a later turn. `search` has the hashes of its files.
    void save(QWidget* window, DuplicatePlan plan, std::shared_ptr<const DuplicateFilesOpt> search);
    /// Lets the person choose a plan, shows what it would let go, and does it.
    void open(QWidget* window);

Q_SIGNALS:
    void runningChanged();
    /// A plan has been done, to its end or up to a stop.
    void settled(const std::vector<orrinvale::PlanDesk::Settled>& entries);

private:
    struct Run;
    struct Draft;
    void askWhere(QWidget* window, const Draft& draft);
    void savePlanAt(const std::string& path);
    void load(const std::string& path);
    void tellUnusable(const std::string& path, const std::string& fault);
    void show(std::shared_ptr<const DuplicatePlan> plan, const PlanFacts& facts);
    void closeSheet();
    void confirmRemoval();
    void begin(bool isToTrash);
    void go(std::shared_ptr<PlanRemoval> list);
    void news();
    [[nodiscard]] Settled settledOf(const RemovalJob::Settled& each, std::string path) const;
    void ended(const RemovalOutcome& outcome);
    void undo();
    void undone(const UndoErrand::Result& result);

    const PageServices& m_services;
    QPointer<QWidget> m_window;
    QPointer<Sheet> m_sheet;
    QPointer<PlanPanel> m_panel;
    QPointer<SavePlanPanel> m_savePanel;
    std::shared_ptr<const DuplicatePlan> m_plan;  // of the sheet
    PlanSums m_sums;                              // of the one that was opened
    bool m_isDrafting = false;
    std::unique_ptr<Run> m_run;  // under way
    std::string m_undoId;        // of the last one
    QStringList m_failedLines;
    QTimer m_timer;
    UndoErrand m_undoing;
    std::string m_folder;  // where plans were kept last
};

}  // namespace orrinvale
