// UninstallAppsController: the inventory, and what follows what is installed meanwhile. See the
// header for the other sources.
#include "ui/uninstall/UninstallAppsController.h"

#include <QApplication>
#include <QEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QShortcut>
#include <QStackedWidget>
#include <chrono>
#include <mutex>
#include <utility>

#include "engine/base/Log.h"
#include "engine/text/UtilityFunction.h"
#include "engine/uninstall/uninstallNotices.h"
#include "services/foundation/runAside.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/Spinner.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/page/Padlock.h"
#include "ui/uninstall/UninstallAppsModel.h"
#include "ui/uninstall/UninstallAppsViews.h"
#include "ui/uninstall/UninstallLeftCell.h"

namespace orrinvale {
namespace {

// A package manager writes for a while; what stands the same at two looks is done.
constexpr std::chrono::milliseconds changePause{2000};

constexpr std::chrono::milliseconds progressPause{100};

// The inventory is made once in a process, whatever pages it has.
bool& hasSearched() {
    static bool has = false;
    return has;
}

// Letters without accents and capitals, by which people look for names.
std::string nameKey(const std::string& name) {
    QString key =
        QString::fromStdString(name).normalized(QString::NormalizationForm_KD).toCaseFolded();
    key.removeIf([](QChar each) { return each.category() == QChar::Mark_NonSpacing; });
    return key.toStdString();
}

}  // namespace

// The inventory's thread has it too, and may outlast the page.
struct UninstallAppsController::News {
    explicit News(UninstallAppsController& of) : page(&of) {}
    std::mutex mutex;
    UninstallAppsController* page;  // null once it is gone
    AppItemsArray soFar;
};

UninstallAppsController::UninstallAppsController(PageServices services, UninstallPageParts parts)
    : m_services(std::move(services)),
      m_parts(std::move(parts)),
      m_list(nameKey),
      m_views(std::make_unique<UninstallAppsViews>(*m_services.notifications)),
      m_icons(*m_services.files),
      m_sizes(m_parts.measure),
      m_model(std::make_unique<UninstallAppsModel>(
          m_list, UninstallAppsModel::Workings{
                      .icon = [this](const std::string& name) { return m_icons.icon(name); },
                      .clickBox = [this](AppItems& item) { boxClicked(item); },
                      .mayTick = [this] { return mayTick(); }})),
      m_controls(stateTable()),
      m_news(std::make_shared<News>(*this)),
      m_sortColumn(UninstallAppsModel::Name) {
    m_views->tableView->setModel(m_model.get());
    m_changeTimer.setInterval(changePause);
    m_repaintTimer.setSingleShot(true);
    m_progressTimer.setInterval(progressPause);
    m_list.sortBy(UninstallList::Sort::Name, false);
    m_views->tableView->header()->setSortIndicator(m_sortColumn, Qt::AscendingOrder);
    m_views->tableView->header()->setSortIndicatorShown(true);
    connect(this, &UninstallAppsController::newsCame, this,
            &UninstallAppsController::showFoundSoFar, Qt::QueuedConnection);
    connectControls();
    connectKeys();
    enter(State::NotSearched);
}

UninstallAppsController::~UninstallAppsController() {
    {
        const std::lock_guard lock(m_news->mutex);
        m_news->page = nullptr;
    }
    if (m_hasBegun) hasSearched() = false;
    giveUp();
    delete m_alert.data();
    delete m_listWindow.data();
    if (m_views->resultView != nullptr) m_views->tableView->setModel(nullptr);
}

QWidget* UninstallAppsController::view() const { return m_views->resultView; }

StateTable UninstallAppsController::stateTable() const {
    using enum Look;
    const UninstallAppsViews& views = *m_views;
    // NotSearched, Searching, ListingAnew, Ready, Removing
    return {
        // Whoever writes into it keeps the keyboard while the list follows a change by itself.
        {views.filterField, {Off, Off, On, On, Off}},
        {views.stopButton, {Hidden, Hidden, Hidden, Hidden, On}},
        {views.selectButton, {Off, Off, On, On, Off}},
        // A removal is seen as a change and listed anew; what it came to stays to be read.
        {views.quietLine, {Kept, Kept, Kept, Kept, Hidden}},
        {views.failureLine, {Kept, Kept, Kept, Kept, Hidden}},
        {views.removedLine, {Kept, Kept, Kept, Kept, Hidden}},
    };
}

void UninstallAppsController::enter(State state) {
    m_state = state;
    m_controls.apply(state);
    getSelectAllOrNull();
    showTitle();
}

void UninstallAppsController::connectControls() {
    using Self = UninstallAppsController;
    UninstallAppsViews& views = *m_views;
    NotificationCenter& center = *m_services.notifications;
    m_observations.push_back(notice::changeSelectCell.observe(
        center, [this](const SelectedCell& cell) { changeSelectCell(cell.row); }));
    m_observations.push_back(notice::uninstallShowSelectNumInBottom.observe(
        center, [this](const std::string& object) { uninstallShowSelectNumInBottom(object); }));
    connect(views.selectButton, &QAbstractButton::clicked, this, &Self::selectAllList);
    connect(views.lockButton, &QAbstractButton::clicked, this, &Self::unlockRigths);
    connect(views.uninstallButton, &QAbstractButton::clicked, this, &Self::uninstallButtonAction);
    connect(views.stopButton, &QAbstractButton::clicked, this, &Self::stopButtonAction);
    connect(views.failureLine, &QAbstractButton::clicked, this, &Self::showFailures);
    connect(views.quietLine, &QAbstractButton::clicked, this, [this] {
        QStringList lines;
        for (const auto& [type, reason] : m_unread)
            lines.push_back(QStringLiteral("%1: %2").arg(kindWord(type), inWords(reason)));
        showLineList(m_mainWindow, tr("Could not be read"), lines);
    });
    connect(views.filterField, &QLineEdit::textChanged, this, &Self::filter);
    UninstallAppsTable& table = *views.tableView;
    connect(table.header(), &QHeaderView::sectionClicked, this, &Self::sortByColumn);
    connect(&table, &QAbstractItemView::clicked, this, &Self::cellClicked);
    connect(&table, &TickOutline::menuWanted, this, &Self::showRowMenu);
    connect(&table, &UninstallAppsTable::detailsWanted, this,
            [this, &table] { cellClickOfView(table.currentIndex()); });
    connect(&table, &UninstallAppsTable::removalWanted, this, &Self::uninstallButtonAction);
    connect(&m_sizes, &ApplicationSizes::changed, this, [this] {
        m_model->refresh();
        uninstallShowSelectNumInBottom(notice::uninstalledObject);
    });
    connect(&m_icons, &ApplicationIcons::changed, &m_repaintTimer, qOverload<>(&QTimer::start));
    connect(&m_repaintTimer, &QTimer::timeout, table.viewport(), qOverload<>(&QWidget::update));
    connect(&m_changeTimer, &QTimer::timeout, this, &Self::lookForChanges);
    connect(&m_progressTimer, &QTimer::timeout, this, &Self::showRemoving);
    views.resultView->installEventFilter(this);
    views.filterField->installEventFilter(this);
}

void UninstallAppsController::connectKeys() {
    QWidget* const view = m_views->resultView;
    const auto key = [&](const QKeySequence& keys, auto action) {
        auto* const made = new QShortcut(keys, view);
        made->setContext(Qt::WidgetWithChildrenShortcut);
        connect(made, &QShortcut::activated, this, action);
    };
    key(QKeySequence::Find, [this] { m_views->filterField->setFocus(Qt::ShortcutFocusReason); });
    key(QKeySequence(Qt::CTRL | Qt::Key_R), [this] { refresh(); });
    key(QKeySequence::Refresh, [this] { refresh(); });
}

bool UninstallAppsController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_views->resultView) {
        if (event->type() == QEvent::Show) {
            beginSearchApps();
            if (m_parts.stamp) m_changeTimer.start();
        }
        if (event->type() == QEvent::Hide) m_changeTimer.stop();
    }
    if (watched == m_views->filterField && event->type() == QEvent::KeyPress) {
        const int pressed = static_cast<QKeyEvent*>(event)->key();
        if (pressed == Qt::Key_Escape) m_views->filterField->clear();
        if (pressed == Qt::Key_Escape || pressed == Qt::Key_Down) {
            m_views->tableView->setFocus();
            return true;
        }
    }
    return QObject::eventFilter(watched, event);
}

void UninstallAppsController::beginSearchApps() {
    if (hasSearched()) return;
    m_views->selectButton->setState(TickState::Nothing);
    if (!UtilityFunction::isBelow1050SystemVer()) {
        m_views->content->setCurrentWidget(m_views->searchView);
        m_views->searchAppsIndicator->start();
    }
    hasSearched() = m_hasBegun = true;
    search();
}

void UninstallAppsController::search() {
    struct Found {
        FoundApplications applications;
        std::string stamp;
    };
    enter(m_isScaned ? State::ListingAnew : State::Searching);
    m_twSearchApplications = runAside(
        this, "searchApplications",
        [parts = m_parts, news = m_news, isFirst = !m_isScaned] {
            // The stamp first: what changes meanwhile is then seen as a change.
            Found found{{}, parts.stamp ? parts.stamp() : std::string()};
            // A list that stands is not replaced piece by piece.
            found.applications = parts.inventory([&](const AppItemsArray& soFar) {
                const std::lock_guard lock(news->mutex);
                if (!isFirst || news->page == nullptr) return;
                news->soFar = soFar;
                Q_EMIT news->page->newsCame({});
            });
            return found;
        },
        [this](const Found& found) { searchAppsFinished(found.applications, found.stamp); });
    if (m_twSearchApplications == nullptr)
        searchAppsFinished({m_list.searchAllAppArr(), m_unread}, {});
}

// News may come behind the whole.
void UninstallAppsController::showFoundSoFar() {
    AppItemsArray soFar;
    {
        const std::lock_guard lock(m_news->mutex);
        soFar = m_news->soFar;
    }
    if (m_state != State::Searching || soFar.size() == m_list.searchAllAppArr().size()) return;
    m_list.setFound(soFar);
    showLeftRows();
    showRows();
}

void UninstallAppsController::searchAppsFinished(const FoundApplications& found,
                                                 const std::string& stamp) {
    // The table asks for its old rows once more before it lets them go.
    const AppItemsArray before = m_list.searchAllAppArr();
    m_list.setFound(found.items, found.unread);
    m_unread = found.unread;
    Log::line("*******************Refresh uninstall table view*******************");
    m_stamp = m_lastStamp = stamp;
    m_isScaned = true;
    m_searchFinished = true;
    cancelSearchApps();
    m_twSearchApplications.reset();
    enter(State::Ready);
    showUnread();
    showLeftRows();
    showRows();
    m_sizes.fillIn(m_list.searchAllAppArr());
}

void UninstallAppsController::cancelSearchApps() { m_views->searchAppsIndicator->stop(); }

bool UninstallAppsController::mayListAnew() const { return isFree() && m_alert == nullptr; }

void UninstallAppsController::refresh() {
    if (mayListAnew()) search();
}

// Aside, since a home may lie on a disk that does not answer.
void UninstallAppsController::lookForChanges() {
    if (!mayListAnew() || std::exchange(m_isLooking, true)) return;
    const auto worker = runAside(
        this, "changes of applications", [stamp = m_parts.stamp] { return stamp(); },
        [this](const std::string& stamp) {
            m_isLooking = false;
            const bool isSettled = std::exchange(m_lastStamp, stamp) == stamp;
            if (stamp != m_stamp && isSettled) refresh();
        });
    if (worker == nullptr) m_isLooking = false;
}

void UninstallAppsController::showUnread() {
    // What a removal came to needs the room.
    const bool hasRoom = m_views->removedLine->isHidden() && m_views->failureLine->isHidden();
    ResultFrame::showLine(*m_views->quietLine,
                          m_unread.empty() || !hasRoom ? QString() : tr("Not all could be read"));
    m_views->quietLine->setToolTip(tr("Of these kinds more may be installed than is listed"));
}

// The list, or words in its place where there is nothing to list.
void UninstallAppsController::showFitting() {
    UninstallAppsViews& views = *m_views;
    const bool isEmpty = m_list.allApplications().empty();
    if (isEmpty && !m_isScaned) return;
    const bool hadFocus = views.searchView->isAncestorOf(QApplication::focusWidget());
    if (isEmpty)
        views.emptyLabel->setText(m_list.isFiltered()
                                      ? tr("No application here has this in its name.")
                                      : tr("There are no applications of this kind here."));
    views.content->setCurrentWidget(isEmpty ? views.emptyView
                                            : static_cast<QWidget*>(views.tableView));
    if (hadFocus) views.tableView->setFocus();
}

void UninstallAppsController::showTitle() {
    const std::size_t all = m_list.searchAllAppArr().size();
    const std::size_t shown = m_list.allApplications().size();
    const auto number = [](std::size_t count) { return QLocale().toString(qulonglong(count)); };
    const bool isFirst = m_state != State::Ready && !m_isScaned;
    m_views->titleLabel->setText(isFirst    ? tr("Looking for applications ...")
                                 : all == 1 ? tr("1 application is installed")
                                 : shown == all
                                     ? tr("%1 applications are installed").arg(number(all))
                                     : tr("%1 of %2 applications").arg(number(shown), number(all)));
}

void UninstallAppsController::showLeftRows() {
    for (std::int32_t row = 0; row < UninstallList::rowCount; ++row) {
        const std::size_t count = m_list.countOf(row);
        UninstallLeftCell& cell = *m_views->leftCellArr[std::size_t(row)];
        cell.setSizeText(QLocale().toString(qulonglong(count)));
        cell.setVisible(row < UninstallList::FirstKind || count != 0 || row == nowSelectRow());
    }
}

PageDescriptor uninstallPage(const PageServices& services, const UninstallPageParts& parts) {
    return {.identifier = QStringLiteral("uninstall"),
            .label = UninstallAppsController::tr("Uninstall"),
            .picture = QStringLiteral("uninstall"),
            .make = [services, parts] {
                return std::make_unique<UninstallAppsController>(services, parts);
            }};
}

}  // namespace orrinvale
