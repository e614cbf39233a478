// UninstallAppsController: the page that lists what is installed. Four sources: this class's
// inventory, UninstallAppsRows.cpp its ticks, filters and details, UninstallAppsAsking.cpp its
// question, UninstallAppsRemoval.cpp its removal. The decisions stand in engine/uninstall:
// UninstallList.h, UninstallRights.h.
#pragma once

#include <QObject>
#include <QPointer>
#include <QStringList>
#include <QTimer>
#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/base/NotificationCenter.h"
#include "engine/uninstall/UninstallList.h"
#include "engine/uninstall/UninstallRights.h"
#include "engine/uninstall/UninstallWork.h"
#include "platform/fileTypes.h"
#include "ui/page/Page.h"
#include "ui/page/PageServices.h"
#include "ui/page/StateTable.h"
#include "ui/uninstall/ApplicationIcons.h"
#include "ui/uninstall/ApplicationSizes.h"

class QModelIndex;
class QPoint;

namespace orrinvale {

class Sheet;
class ThreadWorker;
class UninstallAppsModel;
class UninstallAppsViews;
class UninstallQuestion;

/// What the page asks beside the services of all pages. All is asked on threads aside, and outlives
/// these.
struct UninstallPageParts {
    /// Told of what is found so far, each kind behind the other.
    using News = std::function<void(const AppItemsArray& soFar)>;
    std::function<FoundApplications(const News& news)> inventory;
    ApplicationSizes::Measure measure;
    /// Another text when something was installed or removed; empty: nobody can tell.
    std::function<std::string()> stamp{};
    std::shared_ptr<UninstallWork> work{};
    /// What is free at a folder's disk, to tell what a removal gave back; empty: nobody tells.
    std::function<SysResult<std::uint64_t>(const std::string& folder)> freeSpace{};
    std::vector<std::string> disks{};  ///< a folder on each that applications may lie on
    std::chrono::milliseconds forecastPatience{10'000};
};

/// The inventory begins when the page is first shown, once a process; later ones only follow what
/// was installed or removed meanwhile. Main thread only.
class UninstallAppsController final : public QObject, public Page {
    Q_OBJECT
public:
    UninstallAppsController(PageServices services, UninstallPageParts parts);
    ~UninstallAppsController() override;

    [[nodiscard]] QWidget* view() const override;
    void setMainWindow(QWidget* window) override { m_mainWindow = window; }
    [[nodiscard]] bool isBusy() const override { return isRemoving(); }
    /// From the person's yes to the end of the last attempt.
    [[nodiscard]] bool isRemoving() const override { return m_state == State::Removing; }
    void giveUp() override;

    [[nodiscard]] const AppItemsArray& allApplications() const { return m_list.allApplications(); }
    [[nodiscard]] const AppItemsArray& searchAllAppArr() const { return m_list.searchAllAppArr(); }
    [[nodiscard]] std::int32_t nowSelectRow() const { return m_list.nowSelectRow(); }
    [[nodiscard]] bool isScaned() const { return m_isScaned; }
    [[nodiscard]] bool searchFinished() const { return m_searchFinished; }
    [[nodiscard]] Sheet* listWindow() const;

    /// Called when the page is shown; does nothing after the first time in a process.
    void beginSearchApps();
    /// Takes the signs of the search away; the search goes on.
    void cancelSearchApps();

public Q_SLOTS:
    /// Lists what is installed now; ticks stay.
    void refresh();
    void selectAllList();
    void unlockRigths();
    void uninstallButtonAction();
    void stopButtonAction() { giveUp(); }

Q_SIGNALS:
    /// Other records are shown, or in another order.
    void allApplicationsChanged();
    /// From the inventory's thread: it has found more.
    void newsCame(QPrivateSignal);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// In the order of the columns in stateTable().
    enum class State : std::uint8_t {
        NotSearched,
        Searching,
        ListingAnew,  ///< while a list is shown
        Ready,
        Removing  ///< from the person's yes on
    };
    void enter(State state);
    [[nodiscard]] StateTable stateTable() const;
    [[nodiscard]] bool isFree() const { return m_state == State::Ready; }
    /// Ticks stand in records, which outlast a new list.
    [[nodiscard]] bool mayTick() const { return m_state != State::Removing; }
    /// Records stay as they are while somebody is asked about them.
    [[nodiscard]] bool mayListAnew() const;

    // The inventory.
    void connectControls();
    void connectKeys();
    void search();
    void showFoundSoFar();
    void searchAppsFinished(const FoundApplications& found, const std::string& stamp);
    void showUnread();
    void lookForChanges();
    void showFitting();
    void showTitle();
    void showLeftRows();

    // Rows.
    void showRows();
    void changeSelectCell(std::int32_t row);
    void uninstallShowSelectNumInBottom(const std::string& object);
    void postSelectNum() const;
    void getSelectAllOrNull();
    void boxClicked(AppItems& item);
    void filter(const QString& text);
    void sortByColumn(int column);
    void cellClicked(const QModelIndex& index);
    void showRowMenu(const QModelIndex& index, QPoint position);
    void cellClickOfView(const QModelIndex& index);
    void alertWindowOkAction();

    // Removal.
    struct Batch;
    void showAlertForUninstall();
    void askForForecast(const AppItemsArray& items);
    void quitRunning(std::size_t number);
    void lookAtRunning(UninstallQuestion* question, std::size_t number,
                       std::chrono::milliseconds pause);
    void alertEnded_code(int code);
    void beginRemoval(const std::shared_ptr<const UninstallPlan>& plan,
                      std::vector<UninstallRequest> requests);
    void tellRefused();
    [[nodiscard]] UninstallRights rights() const;
    void goOn(UninstallStep step);
    void askForRight(UninstallStep asked);
    void uninstallActionfromBottomButton(UninstallStep attempt);
    void attemptEnded(UninstallStep attempt, const std::vector<UninstallResult>& results);
    void endUninstall(bool isEverythingGone);
    [[nodiscard]] static QStringList failuresOf(const Batch& batch);
    void showResult(bool isEverythingGone);
    void showGone(const Batch& batch);
    void showRemoving();
    void showFailures();

    const PageServices m_services;
    const UninstallPageParts m_parts;
    UninstallList m_list;
    std::unique_ptr<UninstallAppsViews> m_views;
    ApplicationIcons m_icons;
    ApplicationSizes m_sizes;
    std::unique_ptr<UninstallAppsModel> m_model;
    QPointer<QWidget> m_mainWindow;
    const StateTable m_controls;
    State m_state = State::NotSearched;
    bool m_isScaned = false;
    bool m_searchFinished = false;
    bool m_hasBegun = false;  // the search of this process is this page's
    struct News;
    const std::shared_ptr<News> m_news;
    std::shared_ptr<ThreadWorker> m_twSearchApplications;
    QPointer<Sheet> m_listWindow;
    QPointer<Sheet> m_alert;
    QPointer<UninstallQuestion> m_question;
    AppItemsArray m_asked;                            // that the question is about
    std::shared_ptr<Batch> m_batch;                   // what was agreed to; null before and after
    QStringList m_failures;                           // lines of the last removal
    std::map<ApplicationType, std::string> m_unread;  // of the last search
    QTimer m_progressTimer;
    QTimer m_changeTimer;     // looks for changes while somebody sees the page
    QTimer m_repaintTimer;    // answers all pictures that came in one turn by one drawing
    std::string m_stamp;      // of what is listed
    std::string m_lastStamp;  // of the last look
    bool m_isLooking = false;
    int m_sortColumn = 0;
    bool m_isDescending = false;
    std::vector<NotificationCenter::Observation> m_observations;
};

[[nodiscard]] PageDescriptor uninstallPage(const PageServices& services,
                                           const UninstallPageParts& parts);

}  // namespace orrinvale
