// FastClean: the one Fast Clean of the program, whoever asks for it: the menu, or a start from
// outside. CleanSysController.h is one run.
#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <vector>

#include "ui/bubbles/BubbleView.h"
#include "ui/fastclean/CleanSysController.h"

namespace orrinvale {

/// Main thread only.
class FastClean final : public QObject {
    Q_OBJECT
public:
    /// `changed` is called when canStart() may have changed.
    FastClean(FastCleanParts parts, std::function<void()> changed);
    ~FastClean() override;

    /// Begins a run, or brings the window of the running one to the front.
    void cleaningFile();
    /// Shows the window, which waits for a click where nothing runs yet; or says why it can not.
    void open();
    /// The answer to ZvShouldCloseWindow.
    void handleCloseCleanWindow();
    /// Allows the next one.
    void runAsMain();

    /// Nothing is cleaned, by a page or by the last entry of a run that was stopped, whose gain is
    /// measured.
    [[nodiscard]] bool canStart() const;
    /// For the end of the program, as those of a page.
    [[nodiscard]] bool isRemoving() const;
    void giveUp();

    [[nodiscard]] CleanSysController* clrSysController() const {
        return m_controller.get();
    }  ///< null while no window of it is open

private:
    [[nodiscard]] bool makeController();
    void tell(const QStringList& lines);
    void release(CleanSysController* controller);

    const FastCleanParts m_parts;
    const std::function<void()> m_changed;
    std::unique_ptr<CleanSysController> m_controller;
    std::vector<std::unique_ptr<CleanSysController>> m_leaving;  // closed, and not yet gone
    std::unique_ptr<BubbleView> m_note;                          // why nothing was begun
};

/// What Fast Clean removes of a category through: only of trash and downloads may the
/// administrator's tool get whole folders.
[[nodiscard]] std::unique_ptr<RemovalDoor> fastCleanDoor(CleanCategory category);

}  // namespace orrinvale
