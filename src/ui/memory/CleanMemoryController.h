// CleanMemoryController: the page "Memory": what the memory is used for, and the button that frees
// some. CleanMemoryViews.h has its widgets, engine/memory/ClearMemory.h the figures and the run.
#pragma once

#include <QObject>
#include <QTimer>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "engine/memory/ClearMemory.h"
#include "platform/programMemory.h"
#include "services/volumes/SystemWatch.h"
#include "ui/memory/CleanMemoryViews.h"
#include "ui/page/Page.h"
#include "ui/page/PageServices.h"

namespace orrinvale {

/// What the page works with beside the services of all pages; the pointers outlive it.
struct MemoryParts {
    const Memory* memory = nullptr;
    SystemWatch* watch = nullptr;  ///< of the state beside the figures
    PurgePrograms purge{};
    /// The programs that hold most, so many at most; asked on another thread.
    std::function<std::vector<ProgramMemory>(std::size_t most)> programs{};
};

/// Looks at the memory only while it is on the screen: at the figures every second, at the programs
/// every ten. Idle or freeing; freeing ends at the first look after the run has ended. Main thread
/// only.
class CleanMemoryController final : public QObject, public Page {
    Q_OBJECT
public:
    CleanMemoryController(const PageServices& services, MemoryParts parts);
    ~CleanMemoryController() override;

    [[nodiscard]] QWidget* view() const override { return m_views.customView; }
    void setMainWindow(QWidget* /*window*/) override {}

    /// One look at the figures.
    void updateTitleForLabelValue();
    /// Frees memory, unless that is under way.
    void CleanButtonAction();
    void cleanMemoryButtonClick() { CleanButtonAction(); }

    [[nodiscard]] bool isFreeing() const { return m_isFreeing; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void loadView();
    void beginTimer();
    void endTimer();
    void cleanBtnCancelHidden();
    void showTitle();
    void showState();
    void showPie();
    void lookAtPrograms();
    [[nodiscard]] QString noteOfRun() const;

    const PageServices m_services;
    const MemoryParts m_parts;
    CleanMemoryViews m_views;
    ClearMemory m_clearMemory;
    _MEMORY_INFO m_memoryInfo;
    std::optional<MemoryState> m_state;
    QTimer m_refreshTimer;
    QTimer m_programsTimer;
    SystemWatch::Observation m_looking;  // null while nobody sees the page
    bool m_isLookingAtPrograms = false;
    bool m_isFreeing = false;
    // In spite of their names the free bytes before and after a run, and how many more those are.
    std::uint64_t m_oldUsedMemory = 0;
    std::uint64_t m_newUsedMemory = 0;
    std::uint64_t m_cleanFreeSave = 0;
    PurgeOutlook m_outlook = PurgeOutlook::GivesUp;  // of the latest run, when it began
};

/// The page as the toolbar window has it.
[[nodiscard]] PageDescriptor memoryPage(const PageServices& services, const MemoryParts& parts);

}  // namespace orrinvale
