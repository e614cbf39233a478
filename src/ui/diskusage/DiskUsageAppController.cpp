// DiskUsageAppController: its controls and states. See the header for the other sources.
#include "ui/diskusage/DiskUsageAppController.h"

#include <QEvent>
#include <QLabel>
#include <QScrollArea>
#include <QShortcut>
#include <QStackedWidget>
#include <utility>

#include "engine/diskusage/UsageSelection.h"
#include "platform/files.h"
#include "ui/diskusage/DiskUsageViews.h"
#include "ui/diskusage/FileSystemBrowserCell.h"
#include "ui/diskusage/TreemapView.h"
#include "ui/kit/chrome/AnimationHoverImageView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/pathText.h"
#include "ui/page/Padlock.h"

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds refreshTime{100};
// Rows that leave may be thousands; each time the column is laid out anew.
constexpr std::chrono::milliseconds reloadTime{250};

}  // namespace

DiskUsageAppController::DiskUsageAppController(PageServices services, DiskUsageParts parts,
                                               QObject* parent)
    : QObject(parent),
      m_parts(std::move(services)),
      m_own(std::move(parts)),
      m_views(std::make_unique<DiskUsageViews>(*m_parts.notifications, *m_parts.files)),
      m_entrance(m_parts, *this,
                 {.isFree = [this] { return isFree(); },
                  .wouldForget =
                      [this] {
                          const auto custom = m_scans.find(m_pathStrDrag);
                          return custom != m_scans.end() &&
                                 hasTicks(custom->second.shown->tree->root());
                      },
                  .take = [this](const std::string& path,
                                 bool /*isOneOfSeveral*/) { takeCustomFolder(path); }},
                 {.title = tr("Look into another folder?"),
                  .text = tr("What is ticked in the folder before is forgotten, and nothing is "
                             "removed. To be looked into: %1"),
                  .yes = tr("Look")}),
      m_controls(stateTable()),
      m_flight(*m_views->resultView) {
    for (DragView* const area : {m_views->dragView, m_views->resultDragView})
        area->setDelegate(this);
    m_refreshTimer.setInterval(refreshTime);
    connect(&m_refreshTimer, &QTimer::timeout, this, &DiskUsageAppController::refreshProgress);
    m_reloadTimer.setSingleShot(true);
    m_reloadTimer.setInterval(reloadTime);
    connect(&m_reloadTimer, &QTimer::timeout, m_views->browser, &ColumnBrowser::reload);
    connectControls();
    connectKeys();
    connectBrowser();
    connectMap();
    connectChanges();
    initNotification();
    getLocalDiskInfo();
    enter(State::Start);
    m_views->page->installEventFilter(this);
}

DiskUsageAppController::~DiskUsageAppController() {
    if (m_counting) m_counting->stop = true;
    m_views->browser->disconnect(this);
    m_views->map->disconnect(this);
    m_views->map->setFolder(nullptr, nullptr);
    m_views->browser->setRoot(nullptr);
    m_views->changes->disconnect(this);
    m_views->changes->setRoot(nullptr);
    m_views->dragView->setDelegate(nullptr);
    if (m_views->resultView != nullptr) m_views->resultDragView->setDelegate(nullptr);
}

QWidget* DiskUsageAppController::view() const { return m_views->page; }

void DiskUsageAppController::connectControls() {
    using Self = DiskUsageAppController;
    DiskUsageViews& views = *m_views;
    for (QAbstractButton* const each :
         {static_cast<QAbstractButton*>(views.chooseButton),
          static_cast<QAbstractButton*>(views.animationHoverImageView),
          static_cast<QAbstractButton*>(views.otherFolderBtn)})
        connect(each, &QAbstractButton::clicked, this, &Self::clickIconAction);
    connect(views.columnsBtn, &QAbstractButton::clicked, this,
            [this] { showAs(ShownAs::Columns); });
    connect(views.mapBtn, &QAbstractButton::clicked, this, [this] { showAs(ShownAs::Map); });
    connect(views.scanBtn, &QAbstractButton::clicked, this, &Self::getLocalPath);
    connect(views.stopBtn, &QAbstractButton::clicked, this, &Self::stopBtnClick);
    connect(views.removeBtn, &QAbstractButton::clicked, this, &Self::removeBtnClick);
    connect(views.openFinderBtn, &QAbstractButton::clicked, this, &Self::openFileClick);
    connect(views.revealFinderBtn, &QAbstractButton::clicked, this, &Self::revealFinderClick);
    connect(views.lockButton, &QAbstractButton::clicked, this, &Self::unlockRigths);
    connect(views.lockButton, &Padlock::answered, this, [this] { enter(m_state); });
    connect(views.quietLine, &QAbstractButton::clicked, this, &Self::showSkipped);
    connect(views.failureLine, &QAbstractButton::clicked, this, &Self::showFailures);
    connect(views.backButton, &QAbstractButton::clicked, this, &Self::goBack);
}

void DiskUsageAppController::connectKeys() {
    const auto addKey = [this](const QKeySequence& keys, auto action) {
        connect(
            new QShortcut(keys, m_views->page, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
            &QShortcut::activated, this, action);
    };
    const auto scan = [this] {
        if (m_state == State::Result) getLocalPath();
    };
    addKey(Qt::Key_F5, scan);
    addKey(Qt::CTRL | Qt::Key_R, scan);
    addKey(Qt::Key_Escape, [this] {
        if (isBusy()) stopBtnClick();
        else if (m_state == State::Result) m_views->backButton->click();
    });
}

void DiskUsageAppController::connectBrowser() {
    using Self = DiskUsageAppController;
    ColumnBrowser& browser = *m_views->browser;
    auto* const cell = new FileSystemBrowserCell(
        {.willDisplay = [this](FileSystemBrowserCell& shown,
                               const QModelIndex& row) { willDisplayCell(shown, row); },
         .touched =
             [this](const QModelIndex& row) {
                 if (const FSNode* const node = nodeOf(row))
                     notice::selectPath.post(*m_parts.notifications, node->path());
             },
         .boxClicked = [this](const QModelIndex& row) { boxClicked(nodeOf(row)); }},
        &browser);
    browser.setItemDelegate(cell);
    const auto at = [&browser](int column, int row) { return browser.model(column).index(row); };
    connect(&browser, &ColumnBrowser::chosenChanged, this, &Self::chosenChanged);
    connect(&browser, &ColumnBrowser::tickWanted, this,
            [this, at](int column, int row) { boxClicked(nodeOf(at(column, row))); });
    connect(&browser, &ColumnBrowser::openWanted, this, [this, at](int column, int row) {
        const FSNode* const node = nodeOf(at(column, row));
        if (node != nullptr && !node->isDirectory()) openFileClick();
    });
    connect(&browser, &ColumnBrowser::removalWanted, this, &Self::removeBtnClick);
    connect(&browser, &ColumnBrowser::menuWanted, this,
            [this, at](int column, int row, QPoint place) {
                showRowMenu(nodeOf(at(column, row)), place);
            });
}

void DiskUsageAppController::initNotification() {
    NotificationCenter& center = *m_parts.notifications;
    m_observations.push_back(notice::updateLeftCellBackGrounImage.observe(
        center, [this](const ClickedPlace& clicked) { updateLeftCellBackGrounImage(clicked); }));
    m_observations.push_back(
        notice::allThreadFinishCallBack.observe(center, [this] { allThreadFinishCallBack(); }));
    m_observations.push_back(notice::refRemoveButtonState.observe(center, [this](FSNode* node) {
        refRemoveButtonState();
        flyFileAnimation(node);
    }));
    m_observations.push_back(notice::selectPath.observe(
        center, [this](const std::string& path) { getSelectRowPath(path); }));
}

StateTable DiskUsageAppController::stateTable() const {
    using enum Look;
    const DiskUsageViews& views = *m_views;
    // Start, Result, Scanning, Counting, Removing
    return {
        {views.leftView, {On, On, Off, Off, Off}},
        {views.dragView, {On, On, Off, Off, Off}},
        {views.backButton, {On, On, Off, Off, Off}},
        {views.columnsBtn, {On, On, Off, Off, Off}},
        {views.mapBtn, {On, On, Off, Off, Off}},
        {views.changesBtn, {Hidden, Shown, Hidden, Off, Off}},
        {views.compareBtn, {Hidden, Shown, Hidden, Off, Off}},
        {views.scanBtn, {Hidden, On, Hidden, Off, Off}},
        {views.openFinderBtn, {Hidden, Shown, Hidden, Off, Off}},
        {views.revealFinderBtn, {Hidden, Shown, Hidden, Off, Off}},
        {views.lockButton, {On, On, Off, Off, Off}},
        {views.stripBar, {Hidden, Hidden, Shown, Shown, Shown}},
        {views.animation, {Hidden, Hidden, Shown, Shown, Shown}},
        {views.stopBtn, {Off, Off, On, On, On}},
        {views.quietLine, {Hidden, Kept, Hidden, Kept, Hidden}},
        {views.grownLine, {Hidden, Kept, Hidden, Hidden, Hidden}},
        {views.removedLine, {Hidden, Kept, Hidden, Hidden, Hidden}},
        {views.failureLine, {Hidden, Kept, Hidden, Hidden, Hidden}},
    };
}

void DiskUsageAppController::enter(State state) {
    const bool hadKeyboard = m_views->page->isAncestorOf(m_views->page->window()->focusWidget());
    m_state = state;
    m_controls.apply(state);
    // One of both is on the screen, which the table does not know.
    m_views->browser->setEnabled(state <= State::Scanning);
    m_views->map->setEnabled(state == State::Result);
    m_views->changes->setEnabled(state == State::Result);
    showMapFolder();
    m_views->lockButton->restWhileAsking();
    refRemoveButtonState();
    refreshComparing();
    if (m_hasNewVolumes && isFree()) getLocalDiskInfo();
    // What had it may be greyed by now.
    if (state == State::Result && hadKeyboard) m_views->shown->currentWidget()->setFocus();
}

void DiskUsageAppController::showFitting() {
    const Scanned* const scanned = current();
    const bool isEmpty = scanned != nullptr && isFree() &&
                         scanned->shown->tree->root().children().empty() &&
                         scanned->shown->tree->root().leftOut().entries == 0;
    if (isEmpty)
        m_views->emptyLabel->setText(scanned->hasEmptied   ? tr("Nothing is left in this folder.")
                                     : scanned->wasStopped ? tr("Nothing was read of this folder.")
                                     : scanned->skipped.empty()
                                         ? tr("This folder is empty.")
                                         : tr("This folder could not be read."));
    const bool isMap = m_shownAs == ShownAs::Map && m_state != State::Scanning;
    // They are for the item of the columns.
    for (QWidget* const each : {m_views->openFinderBtn, m_views->revealFinderBtn})
        if (m_state == State::Result) each->setVisible(!showsChanges());
    m_views->shown->setCurrentWidget(isEmpty          ? m_views->emptyView
                                     : isMap          ? m_views->mapView
                                     : showsChanges() ? static_cast<QWidget*>(m_views->changes)
                                                      : static_cast<QWidget*>(m_views->browser));
}

void DiskUsageAppController::showTitle() {
    const Scanned* const scanned = current();
    if (scanned == nullptr) return;
    const FSNode& root = scanned->shown->tree->root();
    const QString path = onOneLine(QString::fromStdString(scanned->shown->tree->rootPath()));
    if (m_state == State::Scanning && !m_isRescan)
        m_views->titleLabel->setText(tr("Reading %1").arg(path));
    else if (showsChanges()) m_views->titleLabel->setText(changesTitle());
    else if (scanned->shown->limit == 0)
        m_views->titleLabel->setText(tr("%1 in %2").arg(sizeWords(root, false), path));
    else
        m_views->titleLabel->setText(
            tr("%1 in %2, shown from %3 on")
                .arg(sizeWords(root, false), path, bytesWords(scanned->shown->limit)));
}

bool DiskUsageAppController::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show) look(true);
    if (event->type() == QEvent::Hide) look(false);
    return QObject::eventFilter(watched, event);
}

void DiskUsageAppController::unlockRigths() {
    if (isFree()) m_views->lockButton->toggleRight();
    else m_views->lockButton->showRight();
}

}  // namespace orrinvale
