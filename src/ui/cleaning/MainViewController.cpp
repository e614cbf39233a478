// MainViewController: the scan, and how ticks, rows and settings keep together. See the header for
// the other sources.
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
namespace {

constexpr const char* noSize = "0.00KB";

}  // namespace

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
bool MainViewController::isRemoving() const { return isCleaning(); }

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
        m_selectNewViewDic[list.dicKeyStr] = m_views->allNewViewArr.at(i);
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
    connect(views.filterField, &QLineEdit::textChanged, this, [this](const QString& words) {
        for (const auto& each : m_models) each->setFilter(words);
        filterChanged(words);
    });
    connect(views.customTableView, &LeftRail::chosen, this, [this](int row) {
        if (row != uninstallRow) shouldSelectRow(row);
        else if (m_parts.openUninstall) m_parts.openUninstall();
    });
    connect(views.customTableView, &CustomTableView::boxClicked, this,
            [this](int row) { checkBoxAction(std::size_t(row) - 1); });
    for (std::size_t i = 0; i < m_models.size(); ++i) {
        V3MainListView* const row = views.allNewViewArr.at(i);
        connect(row, &V3MainListView::boxClicked, this, [this, i] { checkBoxAction(i); });
        connect(row, &V3MainListView::chosen, this, [this, i] { shouldSelectRow(int(i) + 1); });
        ScanListView* const list = views.lists.at(i);
        connect(list->headerBox(), &QAbstractButton::clicked, this,
                [this, i] { listHeaderClicked(i); });
        connect(list, &ScanListView::orderWanted, this, [this, i](int key, bool isDescending) {
            m_models.at(i)->setOrder(static_cast<CleanOrder>(key), isDescending);
        });
        connect(list, &ScanListView::buttonClicked, this, [this, i](const QModelIndex& index) {
            if (const ScanListRow* pressed = m_models.at(i)->row(index))
                reveal(pressed->info->path);
        });
        connect(list, &TickOutline::menuWanted, this,
                [this, i](const QModelIndex& index, QPoint position) {
                    if (const ScanListRow* asked = m_models.at(i)->row(index))
                        showPlace(position, asked->info->path, i);
                });
    }
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
    add(QKeySequence::Find, result, [this] { m_views->filterField->setFocus(); });
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
        {views.quietLine, {Kept, Hidden, Hidden, Kept, Hidden, Hidden}},
    };
}

void MainViewController::enter(State state) {
    m_state = state;
    m_controls.apply(state);
    m_views->lockButton->restWhileAsking();
    m_views->totalProgress->setIndeterminate(state == State::Scanning || state == State::Stopping);
    if (isCleaning()) m_progressTimer.start();
    else m_progressTimer.stop();
    showTitle();
    showFilter();
    setCleanButtonState();
}

void MainViewController::bindScanview(ScanViewController& list, std::size_t category,
                                      bool isClean) {
    const std::string context(cleanCategories.at(category).context);
    Binding& binding = m_bindings.at(category);
    binding.size = list.addObserver<std::string>(
        ScanViewController::filesSizeChange, context,
        [row = m_views->allNewViewArr.at(category)](
            const std::string& of, const std::string& size) { row->observeFoundText(of, size); });
    binding.tableSize =
        list.addObserver<std::string>(ScanViewController::filesSizeChange, context,
                                      [this](const std::string& of, const std::string& size) {
                                          m_views->customTableView->observeFoundText(of, size);
                                          showTitle();
                                      });
    binding.finish = list.addObserver<bool>(
        isClean ? ScanViewController::cleanFinishedChange : ScanViewController::scanFinishedChange,
        isClean ? KVO_CONTEXT_CLEAN_FINISH : KVO_CONTEXT_SCAN_FINISH,
        [this, category](const std::string& of, const bool& /*value*/) {
            if (of == KVO_CONTEXT_CLEAN_FINISH) cleanEnded(category);
            else scanEnded();
        });
}

void MainViewController::unbind(std::size_t category) { m_bindings.at(category) = {}; }

void MainViewController::scanButtonAction() {
    if (m_isAsking || isCleaning()) return;
    isFirstComeIn = false;
    isShowCleanedSize = false;
    if (isCancelButton) {
        enter(State::Stopping);
        for (ScanViewController* const each : m_scanObjsArr) each->cancelScanTask();
        return;
    }
    finishScanCount = 0;
    isCancelButton = bClickScanBtn = true;
    m_scanObjsArr.clear();
    selectArray = getDefaultsValue();
    m_views->customTableView->setSelectArray(selectArray);
    m_views->customTableView->comeBackStringValue();
    m_views->customTableView->setIsCleanInfo(false);
    m_outcome = {};
    willScan();
    enter(State::Scanning);
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        ScanViewController& list = *m_tableControllers.at(i);
        m_models.at(i)->clear();
        m_views->customTableView->setProImageNum(0);
        V3MainListView& row = *m_views->allNewViewArr.at(i);
        row.setBoxHidden(true);
        row.startPrograssAnimation();
        row.initSizeLable(noSize);
        isScaned = true;
        ++finishScanCount;
        m_scanObjsArr.push_back(&list);
        bindScanview(list, i, false);
        // Even where the folders are is asked of a disk that may sleep.
        list.beginScanTask([utilities = m_parts.clean.utilities, i] {
            return utilities->getFolderPath(static_cast<std::uint32_t>(i));
        });
    }
    showRow();
    showSelection();
}

void MainViewController::scanEnded() {
    setHiddenCheckBoxAction();
    if (finishScanCount == 0 || --finishScanCount > 0) return;
    m_views->customTableView->setProImageNum(100);
    takeSettings();
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        unbind(i);
        V3MainListView& row = *m_views->allNewViewArr.at(i);
        row.setBoxHidden(false);
        row.stopPrograssAnimation();
        m_models.at(i)->setList(*m_tableControllers.at(i));
    }
    isCancelButton = bClickScanBtn = false;
    setHiddenCheckBoxAction();
    showShares();
    enter(State::Reviewing);
    scansEnded();
    refreshLists();
    showRow();
    showSelection();
    showKept();
    setCleanButtonState();
    m_views->forwardButton->show();
}

// Every scan begins with whole categories, since which rows were ticked before says nothing of
// what is there now.
void MainViewController::takeSettings() {
    selectArray = getDefaultsValue();
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        ScanViewController& list = *m_tableControllers.at(i);
        if (selectArray.at(i) == "0") {
            list.setNoCheckBoxSelect();
        } else {
            list.setAllCheckBoxSelect();
            if (selectArray.at(i) == "2") changeCheckBoxInUserDefaults(i, 1);
        }
        m_views->allNewViewArr.at(i)->refCheckBox(selectArray.at(i) == "0" ? 0 : 1);
    }
    selectArray = getDefaultsValue();
    m_views->customTableView->setSelectArray(selectArray);
}

void MainViewController::setHiddenCheckBoxAction() {
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        const auto& rows = m_tableControllers.at(i)->scanFiles;
        if (!rows || rows->empty()) m_views->allNewViewArr.at(i)->setBoxHidden(true);
    }
}

void MainViewController::showShares() {
    const auto total = static_cast<double>(m_views->customTableView->totalScanSize());
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        const std::string& text = m_tableControllers.at(i)->filesSize;
        const double size =
            text.empty() ? 0 : static_cast<double>(UtilityFunction::getVolSpaceFromString(text));
        m_views->allNewViewArr.at(i)->showShare(total > 0 ? size / total : 0);
    }
}

std::vector<std::string> MainViewController::getDefaultsValue() const {
    std::vector<std::string> values;
    for (const CleanCategoryNames& each : cleanCategories)
        values.push_back(
            std::to_string(UserDefaults::standardUserDefaults().integerForKey(each.settingKey)));
    return values;
}

// What stands there already is not set again: a setting that changes is written to the disk.
void MainViewController::changeCheckBoxInUserDefaults(std::size_t category,
                                                      std::int32_t number) const {
    UserDefaults& defaults = UserDefaults::standardUserDefaults();
    const auto key = cleanCategories.at(category).settingKey;
    if (defaults.integerForKey(key) != number) defaults.setInteger(number, key);
}

int MainViewController::returnSelectNum() const {
    return static_cast<int>(std::ranges::count_if(
        selectArray, [](const std::string& each) { return each == "1" || each == "2"; }));
}

void MainViewController::checkBoxAction(std::size_t category) {
    // The box has turned by itself.
    if (!isFree())
        return m_views->allNewViewArr.at(category)->refCheckBox(
            sumsOf(*m_tableControllers.at(category)).state());
    const std::string old = getDefaultsValue().at(category);
    const std::int32_t state = old == "1" ? 0 : 1;
    m_views->allNewViewArr.at(category)->refCheckBox(state);
    changeCheckBoxInUserDefaults(category, state);
    notice::updateSelectNumber.post(*m_parts.pages.notifications, {std::int32_t(category)});
}

void MainViewController::updateSelectNumber(std::int32_t category) {
    if (!isFree() || category < 0 || category >= std::ssize(m_tableControllers)) return;
    selectArray = getDefaultsValue();
    m_views->customTableView->setSelectArray(selectArray);
    ScanViewController& list = *m_tableControllers.at(std::size_t(category));
    if (selectArray.at(std::size_t(category)) == "0") list.setNoCheckBoxSelect();
    else list.setAllCheckBoxSelect();
    m_views->cleanButton->setEnabled(returnSelectNum() > 0);
    cleanShowSelectNumInBottomNotice.post(*m_parts.pages.notifications, {});
}

void MainViewController::cleanShowSelectNumInBottom(const CleanSelection& selection) {
    if (selection.isAnimated && selection.state.value_or(false)) {
        const auto* const from = std::any_cast<QWidget*>(&selection.startButton);
        if (from != nullptr) fly(*from);
    }
    // Rows that a scan has just brought are ticked by nobody yet, and say nothing to the settings;
    // before the first scan there are none.
    if (bClickScanBtn || isFirstComeIn) return showSelection();
    ticksChanged();
    cleanShowSelectNumCommAction();
    setCleanButtonState();
}

void MainViewController::cleanShowSelectNumCommAction() {
    CleanSums all;
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        ScanViewController& list = *m_tableControllers.at(i);
        const CleanSums sums = sumsOf(list);
        if (sums.state() == 1) list.setAllCheckBoxSelect();
        if (sums.state() == 0) list.setNoCheckBoxSelect();
        list.selectButton = sums.state() == 1;
        m_views->allNewViewArr.at(i)->refCheckBox(sums.state());
        changeCheckBoxInUserDefaults(i, sums.state());
        all += sums;
    }
    selectCount2Clean = static_cast<int>(all.ticked);
    allSelectTotalSize = all.bytes;
    selectArray = getDefaultsValue();
    m_views->customTableView->setSelectArray(selectArray);
    refreshLists();
    showSelection();
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
