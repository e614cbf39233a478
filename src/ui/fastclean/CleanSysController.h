// CleanSysController: the small window of Fast Clean, which measures a category, empties it and
// tells what went. FastClean.h owns it; CleanSysReport.cpp has its end.
#pragma once

#include <QObject>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/base/notices.h"
#include "engine/cleaning/BrowseFolderOperation.h"
#include "engine/cleaning/CleanCategory.h"
#include "engine/cleaning/DeleteFolderOperation.h"
#include "ui/fastclean/FastCleanBubbleView.h"
#include "ui/fastclean/FastCleanViews.h"
#include "ui/fastclean/fastCleanWords.h"
#include "ui/page/PageServices.h"

namespace orrinvale {

class TCImageWindow;

/// The window of Fast Clean is to be closed.
inline constexpr Notice<> ZvShouldCloseWindow{"ShouldCloseWindow"};

/// What Fast Clean works with; what it points to outlives the last of its windows.
struct FastCleanParts {
    PageServices pages;
    CleanParts clean;
    /// Called on the removing thread.
    std::function<std::unique_ptr<RemovalDoor>(CleanCategory)> makeDoor;
    SpaceGain::FreeSpace freeSpace = settledFreeSpace;
    BubbleGround bubbles;
    std::chrono::milliseconds closingPause{
        1000};  ///< from the end of the bubble to that of the window
    std::chrono::milliseconds namePatience{
        5000};  ///< so long a disk may take for the names of the folders
};

/// One run. Main thread only, where all notices of its operations come.
class CleanSysController final : public QObject, private FastCleanBubbleViewDelegate {
    Q_OBJECT
public:
    enum class State : std::uint8_t {
        Idle,       ///< nothing was begun
        Measuring,  ///< up to the answer of the question, where there is one
        Deleting,
        Reporting,  ///< the bubble stands, or is about to
        Closing     ///< stopped, and on the way to its bubble; or with nothing left to do
    };

    /// Null when there is nothing to clean; `tell` has then got the reason, and the program has
    /// been told as if a run had ended.
    [[nodiscard]] static std::unique_ptr<CleanSysController> init(
        const FastCleanParts& parts, const std::function<void(const QStringList& lines)>& tell);
    ~CleanSysController() override;

    /// The folders of the last category that is ticked as a whole, and of no other. A disk that
    /// sleeps names them later: until then there are none, and isAskingNames().
    void readSettings();
    void resetStatus();
    /// The first call begins the run, of what was shown if it stood waiting: where another category
    /// is ticked by now it shows that one, and waits again. Every call brings the window to the
    /// front.
    void showWindow();
    /// Shows what would be cleaned, and waits for a click.
    void showWindowWaiting();
    /// The window goes at once; the run ends before its next entry, and tells then what went.
    void stopFastClean();
    /// What the close button does: in a run it stops it.
    void performClose();
    /// The answer to ZvShouldCloseWindow: the window goes; gone() follows, now or later.
    void close();
    /// The program is about to end: nothing that stands open is answered any more.
    void giveUp();

    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] CleanCategory category() const { return m_category; }
    /// The disk has not named the folders yet, nor stayed silent for too long.
    [[nodiscard]] bool isAskingNames() const { return m_nameTimer.isActive(); }
    [[nodiscard]] TCImageWindow* window() const { return m_window.get(); }  ///< null before
    /// An entry may go at any moment, or what went is being noted.
    [[nodiscard]] bool isRemoving() const;
    /// An operation is not at its end.
    [[nodiscard]] bool isWorking() const { return m_isWorking; }
    [[nodiscard]] FastCleanBubbleView* bubbleView() const {
        return m_bubbleView.get();
    }  ///< null while none stands

    std::vector<std::string> foldersArr;
    std::uint64_t totalSize = 0;  ///< bytes measured
    std::uint64_t fileCount = 0;  ///< entries measured
    std::uint64_t failedCount = 0;
    std::uint64_t failedSize = 0;
    std::uint64_t totalDelSize = 0;  ///< bytes told so far
    double progressVal = 0;          ///< percent; may pass 100, and is no number where nothing was
                                     ///< measured
    std::string curDeleteFile;       ///< exact bytes
    QString showFixedText;

Q_SIGNALS:
    /// isWorking() or isRemoving() has become false.
    void rested();
    /// It is closed, and nothing of it is left on the screen.
    void gone();

private:
    explicit CleanSysController(const FastCleanParts& parts);

    void makeWindow();
    void windowDidLoad();
    // CleanSysFolders.cpp
    void askNames();
    void takeNames(std::optional<std::vector<std::string>> folders);
    [[nodiscard]] QString waitingText() const;
    [[nodiscard]] bool isAsShown() const;

    void browse();
    void registerNotification();
    void unRegisterNotification();
    void handleSingleFolder(const FolderPath& folder);
    void handleScanFinish(const FolderTotals& totals);
    void handleBeginFastClean();
    void handleDelFileSuccess(const CleanedFile& file) { updateFastClean(file); }
    void handleDelFileFailed(const CleanedFile& file);
    void handleFinishClean();
    void handleCancelClean();
    void updateFastClean(const CleanedFile& file);
    void askBefore();
    void beginRemoval();
    void rest();
    void enter(State state);
    void bringForward();
    void draw();
    [[nodiscard]] QString doingText() const;
    [[nodiscard]] QString pictureName() const;

    // CleanSysReport.cpp
    void endRun(std::uint64_t count, std::uint64_t bytes);
    void settle();
    void report(std::optional<std::int64_t> gained);
    QStringList showFurther(std::optional<std::int64_t> gained);
    void showCleanFinishBubble(std::uint64_t count, std::uint64_t bytes,
                               std::optional<std::int64_t> gained);
    void timerDeleteBubble();
    void fastCleantimerKillToDeleteDelegate() override;
    void fastCleantimerBeginToBeleteBubbleViewDelegate() override;
    void leaveIfOver();

    const FastCleanParts m_parts;
    CleanCategory m_category = CleanCategory::UserLogs;
    std::vector<std::string> m_runFolders;  // of the run, whatever becomes of foldersArr
    bool m_isAnyTicked = false;
    bool m_isSilent = false;  // the disk did not name the folders
    int m_asked = 0;          // questions for names; late answers to old ones are dropped
    QTimer m_nameTimer;       // the patience with the last one
    State m_state = State::Idle;
    bool m_isWorking = false;
    bool m_isSettling = false;  // the end is noted and measured
    bool m_isReported = false;
    bool m_isClosed = false;
    std::unique_ptr<TCImageWindow> m_window;
    FastCleanViews m_views;
    QTimer m_drawTimer;
    CategoryListing m_listing;  // measured; without its rows once a removal has begun
    bool m_isEmpty = false;     // it was, and nothing may go
    std::uint64_t m_promised = 0;
    std::vector<NotificationCenter::Observation> m_observations;
    NotificationCenter::Observation m_failedObservation;  // stays to the end
    std::unique_ptr<BrowseFolderOperation> m_browse;
    std::unique_ptr<DeleteFolderOperation> m_removal;
    std::uint64_t m_endCount = 0, m_endBytes = 0;
    QString m_further;  // the lines of the end beside count and size
    QString m_furtherTip;
    std::unique_ptr<FastCleanBubbleView> m_bubbleView;
    QTimer m_timer;  // of the bubble
};

}  // namespace orrinvale
