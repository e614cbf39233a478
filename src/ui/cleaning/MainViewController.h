// MainViewController: the cleaning page with its six lists: scan, ticks, clean, questions, padlock,
// notes. Sources: MainViewController.cpp its controls and states, MainViewScan.cpp,
// MainViewTicks.cpp, MainViewClean.cpp, MainViewNotes.cpp what it tells, MainViewDisk.cpp the disk
// and the last clean, MainViewRows.cpp what is done with rows. NewMainViewController.h adds the
// outline.
#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "engine/base/notices.h"
#include "engine/cleaning/CleanRun.h"
#include "engine/cleaning/FileLog.h"
#include "engine/cleaning/ScanViewController.h"
#include "engine/cleaning/SpaceGain.h"
#include "services/volumes/Ejections.h"
#include "services/volumes/SystemWatch.h"
#include "ui/kit/controls/Animation.h"
#include "ui/page/Page.h"
#include "ui/page/PageServices.h"
#include "ui/page/StateTable.h"
#include "ui/volumes/CustomVolumView.h"

namespace orrinvale {

struct Alert;
struct ShownListing;
class CleanViews;
class FreeSpacePage;
class MyMacView;
class PageStack;
class ScanListModel;
class V3MainListView;

/// What the page works with; nothing is owned, and what it points to outlives the page and the last
/// of its scans and removals.
struct CleanPageParts {
    PageServices pages;
    CleanParts clean;
    SystemWatch* watch = nullptr;    ///< null: nothing is known of the disk
    Ejections* ejections = nullptr;  ///< with it the list of volumes
    /// Called on the removing thread.
    std::function<std::unique_ptr<RemovalDoor>(CleanCategory)> makeDoor;
    std::function<void(const std::string& folder)> openFolder = {};
    SpaceGain::FreeSpace freeSpace = settledFreeSpace;
    std::function<bool()> hasUninstall = {};  ///< whether there is a page that uninstalls
    std::function<void()> openUninstall = {};
};

/// Main thread only, where all that its lists tell comes too. A scan or a removal under way when
/// the page ends is let go of.
class MainViewController : public QObject, public Page, private CustomVolumViewDelegate {
    Q_OBJECT
public:
    explicit MainViewController(CleanPageParts parts, QObject* parent = nullptr);
    ~MainViewController() override;

    [[nodiscard]] QWidget* view() const override;
    void setMainWindow(QWidget* window) override { m_mainWindow = window; }
    [[nodiscard]] bool isBusy() const override;
    [[nodiscard]] bool isRemoving() const override;
    void giveUp() override;

    /// In the order of the columns in stateTable().
    enum class State : std::uint8_t {
        Fresh,
        Scanning,
        Stopping,  ///< a scan was cancelled, and not all lists stand yet
        Reviewing,
        CleaningAll,
        CleaningOne
    };
    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] bool isAsking() const { return m_isAsking; }

    // Controls and notices.
    /// Scans; while a scan runs, cancels it. Does nothing during a clean or a question.
    void scanButtonAction();
    /// Cancels a scan, or goes back.
    void backToAnimationPage();
    void cleanButtonActionInfo() { allCleanButtonActionInfo(); }
    void allCleanButtonActionInfo();
    void cleanButtonAction();
    /// Cleans one category, after its questions.
    void oneScanAction(std::size_t category);
    void unlockRigths();
    /// The box of a summary row: turns the category's setting round, and has the list follow.
    void checkBoxAction(std::size_t category);
    void updateSelectNumber(std::int32_t category);
    void cleanShowSelectNumInBottom(const CleanSelection& selection);
    /// Brings rows and settings to what is ticked in the lists.
    void cleanShowSelectNumCommAction();
    void setCleanButtonState();
    /// A row of the left table. One that is none changes nothing.
    void shouldSelectRow(std::int32_t row);
    /// Shows the list of a category. Throws std::out_of_range for none.
    void displayTableController(std::size_t category);
    void changeNoteText(std::int32_t row);
    void refNewTableViewSizeLabel(std::int32_t category);
    void GetFreeTotleArr(const std::vector<std::string>& texts);
    /// The six settings, as texts.
    [[nodiscard]] std::vector<std::string> getDefaultsValue() const;
    void changeCheckBoxInUserDefaults(std::size_t category, std::int32_t number) const;
    void stopButtonAction();

    // What the state consists of, as far as others look at it.
    [[nodiscard]] const std::array<std::unique_ptr<ScanViewController>, 6>& tableControllers()
        const {
        return m_tableControllers;
    }
    /// Scans or cleans not yet ended.
    [[nodiscard]] std::size_t finishScanCount() const { return m_run.left(); }
    std::vector<std::string> selectArray;
    std::uint64_t showCleanedSize = 0;     ///< the last total
    std::uint64_t allSelectTotalSize = 0;  ///< of all ticked rows
    int selectCount2Clean = 0;             ///< ticked rows
    int selectRowNum = 0;                  ///< row of the left table
    int mainViewOneCleanRow = 0;           ///< category of a clean of one
    bool isFirstComeIn = true;             ///< no scan has run yet
    bool isCancelButton = false;           ///< a scan runs
    bool bClickScanBtn = false;            ///< keeps the clean button off during a scan
    bool isShowCleanedSize = false;
    bool isOneCleanButton = false;
    bool isCleanFinshed = true;
    std::string freeString, totleString;  ///< of the boot volume

protected:
    // What the page with the outline does besides.
    virtual void willScan() {}
    virtual void scansEnded() {}
    /// Rows have left the lists.
    virtual void listsChanged() {}
    /// This row alone has left its list.
    virtual void rowTaken(std::size_t category, const std::string& path) {
        static_cast<void>(category), static_cast<void>(path);
    }
    /// What stands on the right may be another row's.
    virtual void rowShown() {}
    /// Ticks of the lists may be others.
    virtual void ticksChanged() {}
    virtual void fly(const QWidget* from) { static_cast<void>(from); }
    /// All of it went.
    virtual void cleanSuccessBtnShowStyle() {}
    virtual void filterChanged(const QString& words) { static_cast<void>(words); }
    /// What stands for row 0.
    [[nodiscard]] virtual QWidget* overview() const;
    /// A step back from row 0; false where the start is the next one.
    virtual bool goBackFromOverview() { return false; }
    virtual void forwardViewAnimation();
    virtual void backViewAnimation();

    void enter(State state);
    [[nodiscard]] bool isFree() const {
        return !m_isAsking && (m_state == State::Fresh || m_state == State::Reviewing);
    }
    [[nodiscard]] bool isCleaning() const {
        return m_state == State::CleaningAll || m_state == State::CleaningOne;
    }
    void showRow();
    void showTitle();
    void showPlace(const QPoint& position, const std::string& path, std::size_t category);
    void reveal(const std::string& path) const;
    [[nodiscard]] CleanViews& views() const { return *m_views; }
    [[nodiscard]] const CleanPageParts& parts() const { return m_parts; }
    [[nodiscard]] std::vector<ScanViewController*> lists() const;
    [[nodiscard]] const std::unordered_set<std::string>& cleaned() const { return m_cleaned; }

private:
    [[nodiscard]] StateTable stateTable() const;
    void makeLists();
    void connectControls();
    void connectList(std::size_t category);
    void connectKeys();
    void initClickCellNotification();
    bool eventFilter(QObject* watched, QEvent* event) override;

    // Scan.
    void bindScanview(ScanViewController& list, std::size_t category, bool isClean);
    void unbind(std::size_t category);
    void newRun(unsigned categories);
    void beginScan();
    void scanEnded(std::size_t category);
    void takeSettings();
    void setHiddenCheckBoxAction();
    void showShares();
    [[nodiscard]] std::uint64_t foundBytes() const;

    // Ticks.
    void countTicks();
    void filterTyped(const QString& words);
    void listBoxClicked(std::size_t category, std::size_t row);
    void listHeaderClicked(std::size_t category);
    void refreshLists();
    [[nodiscard]] CleanSums shownSums() const;
    [[nodiscard]] CleanChoice choice(unsigned categories) const;

    // Clean. Categories are bits, 1 for the first.
    void ask(const Alert& question, std::function<void(int button)> answered);
    void showAlertWindow();
    void openViewNewLink() const;
    void confirm(unsigned categories, bool isOne);
    void keepFocus();
    void giveButtonsBack();
    void beginClean(const CleanChoice& choice, unsigned categories, bool isOne);
    void cleanEnded(std::size_t category);
    void oneCleanEnded();
    void allCleansEnded();
    void takeOutcome();
    void settle(std::uint64_t bytes);
    void measureGain();
    void showGainReason();
    void showAlertForPrivilegesToClean();
    void showFailures();

    // Notes.
    void showSelection();
    void changeStateTextFeild(std::uint64_t bytes);
    void showKept();
    void showKeptLines();
    void showCleanButton(class TextImageButton& button, const CleanSums& sums) const;
    [[nodiscard]] std::vector<ShownListing> shownListings() const;
    [[nodiscard]] QString titleText() const;
    [[nodiscard]] QString emptyWords(int row) const;
    void showProgress();
    void showContent();
    void showFilter();

    // The disk.
    void look(bool isOnScreen);
    void showDisk();
    void showDiskPage();
    void showCard();
    void readHistory();

    // Rows.
    void alwaysKeep(const std::string& path, std::size_t category);
    void leaveOut(const std::string& path, std::size_t category);
    void leaveOutLate();
    void listEnded(std::size_t category);
    void tellSize(std::size_t category);

    void ejectVolume(std::int16_t /*number*/, const std::string& /*root*/,
                     const std::string& /*name*/) override {}  // nobody ejects the boot volume
    void browseVolume(const std::string& volRootDir) override;

    const CleanPageParts m_parts;
    std::unordered_set<std::string> m_cleaned;  // paths that this process has cleaned
    std::unique_ptr<CleanViews> m_views;
    QPointer<PageStack> m_stack;
    std::array<std::unique_ptr<ScanViewController>, 6> m_tableControllers;
    std::array<std::unique_ptr<ScanListModel>, 6> m_models;
    CleanRun m_run;                                // under way, or the last
    std::array<std::uint64_t, 6> m_going{};        // bytes that the clean under way is to remove
    int m_runNumber = 0;                           // what an earlier one tells late is dropped
    std::array<CleanSums, 6> m_sums, m_shownSums;  // of all rows; of those that the filter shows
    std::vector<std::pair<std::size_t, std::string>> m_keptLate;  // categories and paths
    const StateTable m_controls;
    State m_state = State::Fresh;
    bool m_isAsking = false;
    QPointer<QWidget> m_mainWindow;
    QPointer<QWidget> m_pressed;  // the button that had the keyboard when it asked
    struct Binding {
        NotificationCenter::Observation size, tableSize, finish;
    };
    std::array<Binding, 6> m_bindings;
    std::vector<NotificationCenter::Observation> m_observations;

    QString m_gainReason;  // why the last clean gained less than was promised
    int m_saving = 0;      // records of cleans on their way to the disk
    RemovalOutcome m_outcome;
    QTimer m_progressTimer;
    int m_waits = 0;       // of that timer in a row in which nothing of ours went on
    Animation m_blinking;  // of the padlock

    struct History {
        std::uint64_t size = 0;
        std::optional<Date> date;
    };
    History m_history;
    int m_historyAsked = 0;
    SystemSight m_seen;
    SystemWatch::Observation m_looking;
    MyMacView* m_myMacView = nullptr;
    std::unique_ptr<FreeSpacePage> m_freeSpacePage;
};

}  // namespace orrinvale
