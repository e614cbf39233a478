// MainViewController: its lists, its controls and what they do in which state.
#include "ui/cleaning/MainViewController.h"

#include <QEvent>
#include <QLineEdit>
#include <QShortcut>
#include <QStackedWidget>
#include <algorithm>
#include <utility>

#include "engine/cleaning/CleanPageRows.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/cleaning/cleanNotices.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "engine/volumes/volumeNotices.h"
#include "ui/cleaning/CleanViews.h"
#include "ui/cleaning/ScanListModel.h"
#include "ui/cleaning/ScanListView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/page/Padlock.h"
#include "ui/page/PageStack.h"
#include "ui/volumes/FreeSpacePage.h"

namespace orrinvale {

MainViewController::MainViewController(CleanPageParts parts, QObject* parent)
    : QObject(parent),
      m_parts(std::move(parts)),
      m_views(std::make_unique<CleanViews>(*m_parts.pages.notifications)),
      m_stack(new PageStack("cleanPage")),
      m_controls(stateTable()),
      m_blinking(*m_parts.pages.notifications) {
    m_stack->showView(m_views->startView);
    m_stack->installEventFilter(this);
    m_views->v3MainView->installEventFilter(this);
    selectArray = getDefaultsValue();
    makeLists();
    m_views->customTableView->setSelectArray(selectArray);
    connectControls();
    connectKeys();
    initClickCellNotification();
    m_progressTimer.setInterval(100);
    connect(&m_progressTimer, &QTimer::timeout, this, &MainViewController::showProgress);
    enter(State::Fresh);
    changeNoteText(overviewRow);
}

MainViewController::~MainViewController() {
    for (Binding& each : m_bindings) each = {};
    if (m_stack != nullptr) {
        m_stack->removeEventFilter(this);
        m_views->v3MainView->removeEventFilter(this);
        for (ScanListView* const each : m_views->lists) each->setModel(nullptr);
        // The views go with whoever shows them, or with these.
        if (m_stack->parentWidget() == nullptr) delete m_stack.data();
    }
}

QWidget* MainViewController::view() const { return m_stack; }

QWidget* MainViewController::overview() const { return m_views->v3MainView; }

std::vector<ScanViewController*> MainViewController::lists() const {
    std::vector<ScanViewController*> all;
    for (const auto& each : m_tableControllers) all.push_back(each.get());
    return all;
}

bool MainViewController::isBusy() const { return !isFree(); }
// What a clean came to would be lost with the program.
bool MainViewController::isRemoving() const { return isCleaning() || m_saving > 0; }

void MainViewController::giveUp() {
    for (const auto& each : m_tableControllers) each->stopClean();
}

void MainViewController::makeLists() {
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        const auto category = static_cast<CleanCategory>(i);
        m_tableControllers.at(i) = std::make_unique<ScanViewController>(ScanViewParts{
            .clean = m_parts.clean,
            .notifications = m_parts.pages.notifications,
            .mainQueue = m_parts.pages.mainQueue,
            .stateFolder = m_parts.pages.stateFolder,
            .makeDoor = [make = m_parts.makeDoor, category] { return make(category); },
            .openFolder = m_parts.openFolder});
        ScanViewController& list = *m_tableControllers.at(i);
        list.dicKeyStr = std::to_string(i);
        list.aTag = -1;  // the settings follow in cleanShowSelectNumCommAction(), all at once
        m_models.at(i) = std::make_unique<ScanListModel>(
            m_parts.pages.icons, [this, i](std::size_t row) { listBoxClicked(i, row); }, m_cleaned);
        m_views->lists.at(i)->setModel(m_models.at(i).get());
    }
}

void MainViewController::connectControls() {
    using Self = MainViewController;
    CleanViews& views = *m_views;
    connect(views.backButton, &QAbstractButton::clicked, this, &Self::backToAnimationPage);
    connect(views.rescanButton, &QAbstractButton::clicked, this, &Self::scanButtonAction);
    connect(views.stopButton, &QAbstractButton::clicked, this, &Self::stopButtonAction);
    connect(views.cleanButton, &QAbstractButton::clicked, this, &Self::cleanButtonActionInfo);
    connect(views.oneListCleanButton, &QAbstractButton::clicked, this, &Self::cleanButtonAction);
    connect(views.lockButton, &QAbstractButton::clicked, this, &Self::unlockRigths);
    connect(views.lockButton, &Padlock::answered, this, [this] { enter(m_state); });
    connect(views.startButton, &QAbstractButton::clicked, this, [this] {
        forwardViewAnimation();
        scanButtonAction();
    });
    connect(views.forwardButton, &QAbstractButton::clicked, this,
            [this] { forwardViewAnimation(); });
    connect(views.quietLine, &QAbstractButton::clicked, this, &Self::showKeptLines);
    connect(views.failureLine, &QAbstractButton::clicked, this, &Self::showFailures);
    connect(views.gainReason, &QAbstractButton::clicked, this, &Self::showGainReason);
    connect(views.filterField, &QLineEdit::textChanged, this, &Self::filterTyped);
    connect(views.customTableView, &LeftRail::chosen, this, [this](int row) {
        if (row != uninstallRow) shouldSelectRow(row);
        else if (m_parts.openUninstall) m_parts.openUninstall();
    });
    connect(views.customTableView, &CustomTableView::boxClicked, this,
            [this](int row) { checkBoxAction(std::size_t(row) - 1); });
    for (std::size_t i = 0; i < m_models.size(); ++i) connectList(i);
}

void MainViewController::connectList(std::size_t category) {
    V3MainListView* const row = m_views->allNewViewArr.at(category);
    connect(row, &V3MainListView::boxClicked, this, [this, category] { checkBoxAction(category); });
    connect(row, &V3MainListView::chosen, this,
            [this, category] { shouldSelectRow(int(category) + 1); });
    ScanListView* const list = m_views->lists.at(category);
    connect(list->headerBox(), &QAbstractButton::clicked, this,
            [this, category] { listHeaderClicked(category); });
    connect(list, &ScanListView::orderWanted, this, [this, category](int key, bool isDescending) {
        m_models.at(category)->setOrder(static_cast<CleanOrder>(key), isDescending);
    });
    connect(list, &ScanListView::buttonClicked, this, [this, category](const QModelIndex& index) {
        if (const ScanListRow* pressed = m_models.at(category)->row(index))
            reveal(pressed->info->path);
    });
    connect(list, &TickOutline::menuWanted, this,
            [this, category](const QModelIndex& index, QPoint position) {
                if (const ScanListRow* asked = m_models.at(category)->row(index))
                    showPlace(position, asked->info->path, category);
            });
}

void MainViewController::connectKeys() {
    const auto add = [this](const QKeySequence& keys, QWidget* over, auto action) {
        auto* const key = new QShortcut(keys, over);
        key->setContext(Qt::WidgetWithChildrenShortcut);
        connect(key, &QShortcut::activated, this, action);
    };
    QWidget* const result = m_views->resultView;
    add(QKeySequence::Refresh, result, [this] {
        if (isFree()) scanButtonAction();
    });
    add(QKeySequence::Find, result, [this] {
        if (m_views->filterField->isVisible()) m_views->filterField->setFocus();
    });
    add(QKeySequence(Qt::Key_Escape), result, [this] {
        if (!m_views->filterField->text().isEmpty()) m_views->filterField->clear();
        else if (!isCleaning()) backToAnimationPage();
    });
    add(QKeySequence::Delete, result, [this] {
        if (m_views->filterField->hasFocus()) return;
        if (selectRowNum == overviewRow) m_views->cleanButton->click();
        else m_views->oneListCleanButton->click();
    });
}

void MainViewController::initClickCellNotification() {
    NotificationCenter& center = *m_parts.pages.notifications;
    const auto keep = [this](NotificationCenter::Observation observation) {
        m_observations.push_back(std::move(observation));
    };
    keep(notice::shouldSelectRow.observe(
        center, [this](const RowSelection& selection) { shouldSelectRow(selection.row); }));
    keep(notice::updateNewDiskSizeView.observe(center, [this] { showDisk(); }));
    keep(notice::updateSizeView.observe(center, [this] { showDisk(); }));
    keep(notice::updateSelectNumber.observe(
        center, [this](ChosenRow row) { updateSelectNumber(row.row); }));
    keep(cleanShowSelectNumInBottomNotice.observe(
        center, [this](const CleanSelection& each) { cleanShowSelectNumInBottom(each); }));
    keep(notice::scanItemGetScanBtn.observe(center, [this] { scanButtonAction(); }));
    keep(notice::FreeTotleArr.observe(
        center, [this](const std::vector<std::string>& texts) { GetFreeTotleArr(texts); }));
    keep(notice::refNewTableViewSizeLabel.observe(
        center, [this](ChosenRow row) { refNewTableViewSizeLabel(row.row); }));
}

// The buttons that act decide by what is ticked, in setCleanButtonState().
StateTable MainViewController::stateTable() const {
    using enum Look;
    const CleanViews& views = *m_views;
    // Fresh, Scanning, Stopping, Reviewing, CleaningAll, CleaningOne
    return {
        {views.backButton, {On, On, Off, On, Off, Off}},
        {views.rescanButton, {On, Off, Off, On, Off, Off}},
        {views.lockButton, {On, On, Off, On, Off, Off}},
        {views.stopButton, {Hidden, On, Off, Hidden, On, On}},
        {views.totalProgress, {Hidden, On, On, Hidden, On, On}},
        {views.failureLine, {Kept, Hidden, Hidden, Kept, Hidden, Hidden}},
        {views.gainLabel, {Kept, Hidden, Hidden, Kept, Hidden, Hidden}},
        {views.gainReason, {Kept, Hidden, Hidden, Kept, Hidden, Hidden}},
        {views.quietLine, {Kept, Hidden, Hidden, Kept, Hidden, Hidden}},
        {views.keptReason, {Kept, Hidden, Hidden, Kept, Hidden, Hidden}},
    };
}

void MainViewController::enter(State state) {
    m_state = state;
    m_controls.apply(state);
    m_views->lockButton->restWhileAsking();
    m_views->totalProgress->setIndeterminate(state == State::Scanning || state == State::Stopping);
    m_waits = 0;
    if (isCleaning()) m_progressTimer.start();
    else m_progressTimer.stop();
    showTitle();
    showFilter();
    setCleanButtonState();
}

void MainViewController::refNewTableViewSizeLabel(std::int32_t category) {
    constexpr std::int32_t last = 5;
    if (category < 0 || category > last) return;
    V3MainListView& row = *m_views->allNewViewArr.at(std::size_t(category));
    row.initSizeLable(row.getFoundText());
}

void MainViewController::stopButtonAction() {
    if (m_state == State::Scanning) return scanButtonAction();
    if (!isCleaning()) return;
    m_views->stopButton->setEnabled(false);
    giveUp();
}

void MainViewController::unlockRigths() {
    if (isFree()) m_views->lockButton->toggleRight();
    else m_views->lockButton->showRight();
}

}  // namespace orrinvale
