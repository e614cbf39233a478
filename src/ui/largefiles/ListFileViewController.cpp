// ListFileViewController: choosing a folder, the scan, and how it ends. See the header for the
// other sources.
#include "ui/largefiles/ListFileViewController.h"

#include <QLabel>
#include <QLocale>
#include <QStackedWidget>
#include <algorithm>
#include <chrono>
#include <utility>

#include "engine/base/Log.h"
#include "engine/largefiles/PublicUtilities.h"
#include "platform/files.h"
#include "ui/kit/chrome/AnimationHoverImageView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/controls/SegmentedControl.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/largefiles/FileNodeModel.h"
#include "ui/largefiles/LargestFilesDesk.h"
#include "ui/largefiles/LargestFilesView.h"
#include "ui/largefiles/ListFileViews.h"
#include "ui/largefiles/NewOutlineView.h"
#include "ui/preview/PreviewHost.h"
#include "ui/preview/PreviewPane.h"

namespace orrinvale {
namespace {

// Rows that jump more often can not be read.
constexpr std::chrono::milliseconds listRefreshTime{2000};
// What there is to see at first comes sooner, and a short scan is over before the first refresh.
constexpr std::chrono::milliseconds firstRefresh{200};
constexpr std::chrono::milliseconds endWatch{100};

}  // namespace

ListFileViewController::ListFileViewController(PageServices services, QObject* parent)
    : QObject(parent),
      m_parts(std::move(services)),
      m_views(std::make_unique<ListFileViews>()),
      m_model(std::make_unique<FileNodeModel>(m_parts.icons,
                                              [this](FileNode& node) { boxClicked(node); })),
      m_files(std::make_unique<LargestFilesDesk>(*m_views->filesView, m_parts.icons)),
      m_entrance(m_parts, *this,
                 {.isFree = [this] { return !isBusy(); },
                  .wouldForget =
                      [this] { return m_selectAllButSt != 0 && m_views->listView->isVisible(); },
                  .take =
                      [this](const std::string& path, bool isOneOfSeveral) {
                          // It may have gone while the panel stood, and the list is worth more.
                          whenFolderIsThere(m_parts, *this, path, [=, this] {
                              if (!isBusy()) scanFolder(path, isOneOfSeveral);
                          });
                      }},
                 {.title = tr("Look into another folder?"),
                  .text = tr("What is ticked here is forgotten, and nothing is removed. To be "
                             "looked into: %1"),
                  .yes = tr("Look")}),
      m_controls(stateTable()) {
    m_views->outlineView->setModel(m_model.get());
    for (DragView* const area : {m_views->dragView, m_views->resultDragView})
        area->setDelegate(this);
    Controller::getController().setADelegate(this);
    connectControls();
    connectList(*m_views->filesView->filesList);
    m_sortTimer.setInterval(listRefreshTime);
    connect(&m_sortTimer, &QTimer::timeout, this, &ListFileViewController::refreshList);
    m_reloadTimer.setSingleShot(true);
    connect(&m_reloadTimer, &QTimer::timeout, this, &ListFileViewController::refreshList);
    m_removalDelay.setSingleShot(true);
    connect(&m_removalDelay, &QTimer::timeout, this, &ListFileViewController::doRemoveAction);
    m_endTimer.setInterval(endWatch);
    connect(&m_endTimer, &QTimer::timeout, this, &ListFileViewController::watchForEnd);
}

ListFileViewController::~ListFileViewController() {
    Controller& controller = Controller::getController();
    if (controller.aDelegate() == this) controller.setADelegate(nullptr);
    if (isScan()) controller.stopScan();
    m_model->setTree(nullptr);
    m_files.reset();
    delete m_progress;
    if (m_views->aLoadView != nullptr) m_views->dragView->setDelegate(nullptr);
    if (m_views->resultView != nullptr) m_views->resultDragView->setDelegate(nullptr);
}

QWidget* ListFileViewController::aLoadView() const { return m_views->aLoadView; }
QWidget* ListFileViewController::listView() const { return m_views->resultView; }

void ListFileViewController::connectControls() {
    using Self = ListFileViewController;
    ListFileViews& views = *m_views;
    connect(views.selectFileButton, &QAbstractButton::clicked, this, &Self::selectFileButtonAction);
    connect(views.animationHoverImageView, &QAbstractButton::clicked, this,
            &Self::selectFileButtonAction);
    connect(views.stopScanButton, &QAbstractButton::clicked, this, &Self::stopScanButtonAction);
    connect(views.backButton, &QAbstractButton::clicked, this, &Self::backButtonAction);
    connect(views.deleteButton, &QAbstractButton::clicked, this, &Self::deleteFiles);
    connect(views.selectAllButton, &QAbstractButton::clicked, this, &Self::setAllSelectOrNoSelect);
    connect(views.quietLine, &QAbstractButton::clicked, this, &Self::showSkipped);
    connect(views.failureLine, &QAbstractButton::clicked, this, &Self::showFailures);
    NewOutlineView& outline = *views.outlineView;
    connect(&outline, &QTreeView::expanded, this, &Self::outlineViewItemDidExpand);
    connect(&outline, &QTreeView::collapsed, this, &Self::outlineViewItemDidCollapse);
    connect(&outline, &QAbstractItemView::clicked, this, &Self::cellClicked);
    connect(&outline, &TickOutline::menuWanted, this, &Self::showRowMenu);
    connect(&outline, &TickOutline::previewWanted, this,
            [this, &outline] { preview(outline.currentIndex()); });
    connect(outline.selectionModel(), &QItemSelectionModel::currentChanged, this,
            &Self::showPreview);
    views.previewPane->start(*m_parts.files, m_parts.reveal);
    views.previewHost->setSwitch(*views.previewBtn, *views.listView, *m_parts.defaults,
                                 "largeFilesPreviewShown");
}

StateTable ListFileViewController::stateTable() const {
    using enum Look;
    const ListFileViews& views = *m_views;
    // Start, Scanning, Result, Removing
    return {
        {views.stopScanButton, {On, On, Hidden, Hidden}},
        {views.quietLine, {Kept, Hidden, Kept, Kept}},
        {views.removedLine, {Kept, Hidden, Kept, Kept}},
        {views.failureLine, {Kept, Hidden, Kept, Kept}},
    };
}

void ListFileViewController::enter(State state) {
    m_state = state;
    m_controls.apply(state);
    changeDeleteButtonState();
}

void ListFileViewController::selectFileButtonAction() { m_entrance.choose(m_mainWindow, {}); }

void ListFileViewController::scanFolder(const std::string& path, bool isOneOfSeveral) {
    getRootNodeListWithPath(path);
    const QString name = pathParts(QString::fromStdString(path)).name;
    m_views->onlyOneNote->setText(
        tr("One folder at a time: only %1 is looked into").arg(onOneLine(name)));
    m_views->onlyOneNote->setVisible(isOneOfSeveral);
    showDetailPage();
}

void ListFileViewController::getRootNodeListWithPath(const std::string& path) {
    m_rootNodeArr = std::make_shared<FileNodeTree>(path);
    m_removal = {};
    m_views->titleLabel->setText(QString::fromStdString(path));
    m_views->showProgress();
    m_files->setTree(nullptr);
    m_model->setTree(m_rootNodeArr);
    showPreview();
    Controller::getController().eumeAllRootFileNodeWithRootArr(m_rootNodeArr, path);
}

void ListFileViewController::showDetailPage() {
    enter(State::Scanning);
    m_sortTimer.start();
    m_endTimer.start();
    QTimer::singleShot(firstRefresh, this, [this, tree = std::weak_ptr(m_rootNodeArr)] {
        if (isScan() && tree.lock() == m_rootNodeArr) refreshList();
    });
    changeSelectAllButtonState(0);
    showFitting();
    if (m_detagate != nullptr) m_detagate->showDetailPage();
    shownOutline().setFocus();
}

void ListFileViewController::refreshList() {
    m_files->refresh();
    showTicked();
    m_model->refresh();
    showFitting();
    showPreview();
    if (isScan() && m_rootNodeArr) showProgress();
}

void ListFileViewController::showProgress() {
    const Controller& controller = Controller::getController();
    const float progress = controller.getProgress();
    if (m_views->progressView != nullptr) {
        m_views->progressLabel->setText(
            shownPercent(QString::number(static_cast<double>(progress), 'f', 1)));
        m_views->progressView->changeProgressValue(progress);
    }
    Log::engine("-[ListFileViewController reloadTreeList]", "-----::{:f}", progress);
    constexpr float all = 100;
    // The last entries may be finished before all that is in them has come over.
    if (progress >= all && controller.eumeRoot()->isEnded()) endScan();
}

void ListFileViewController::endScan() {
    enter(State::Result);
    m_sortTimer.stop();
    m_endTimer.stop();
    m_views->removeProgress();
    m_files->setTree(m_rootNodeArr);
    showFitting();
    showQuietLine();
}

// An empty folder never gets beyond nothing of nothing, so that the scan's end alone ends no scan
// here.
void ListFileViewController::watchForEnd() {
    const EumeRoot* const scan = Controller::getController().eumeRoot();
    if (scan == nullptr || !scan->isEnded()) return;
    m_endTimer.stop();
    refreshList();
    showQuietLine();
}

void ListFileViewController::stopScanButtonAction() {
    Controller::getController().stopScan();
    endScan();
    m_model->refresh();
    shownOutline().setFocus();
}

void ListFileViewController::backButtonAction() {
    if (isRemoving()) return;
    changeSelectAllButtonState(0);
    m_views->removeProgress();
    if (isScan()) Controller::getController().stopScan();
    m_sortTimer.stop();
    m_endTimer.stop();
    m_rootNodeArr.reset();
    m_files->setTree(nullptr);
    m_model->setTree(nullptr);
    showPreview();
    Controller::getController().closeTree();
    if (m_detagate != nullptr) m_detagate->listFileBackButtonAction();
    m_views->selectFileButton->setFocus();
}

QString ListFileViewController::emptyText() const {
    const EumeRoot& scan = *Controller::getController().eumeRoot();
    if (m_rootNodeArr->nodeCount() > 0) {
        // What could not be removed or read is on the disk all the same.
        const bool isAnythingThere = m_removal.failed != 0 || !scan.skipped().empty();
        return isAnythingThere
                   ? tr("The list is empty. A new scan shows what stayed in this folder.")
                   : tr("Nothing is left in this folder.");
    }
    if (scan.isEmptyFolder()) return tr("This folder is empty.");
    return scan.skipped().empty() ? tr("Nothing was read of this folder.")
                                  : tr("This folder could not be read.");
}

// The list, or words in its place where there is nothing to list.
void ListFileViewController::showFitting() {
    ListFileViews& views = *m_views;
    const EumeRoot* const scan = Controller::getController().eumeRoot();
    const bool isEmpty = m_rootNodeArr && m_rootNodeArr->root().childCount() == 0 &&
                         scan != nullptr && scan->isEnded();
    QWidget* const list =
        isListShown() ? views.filesView : static_cast<QWidget*>(views.outlineView);
    QWidget* const shown = isEmpty ? views.emptyView : list;
    if (isEmpty) views.emptyLabel->setText(emptyText());
    if (views.content->currentWidget() == shown) return;
    views.content->setCurrentWidget(shown);
}

bool ListFileViewController::isListShown() const {
    return m_views->viewSwitch->selectedSegment() == 1;
}

TickOutline& ListFileViewController::shownOutline() const {
    if (isListShown()) return *m_views->filesView->filesList;
    return *m_views->outlineView;
}

void ListFileViewController::showTicked() {
    ResultFrame::showLine(*m_views->tickedLabel, isRemoving() ? QString() : tickedText());
}

// What Delete would take; in the list of files also how much there is of them, and how much of what
// is ticked is not among them.
QString ListFileViewController::tickedText() const {
    if (!m_rootNodeArr) return {};
    const auto sizeOf = [](std::uint64_t bytes) {
        return shownSize(PublicUtilities::byteToSizeWithByte(bytes));
    };
    const std::uint64_t ticked = Controller::getController().ticked().bytes;
    const bool isAny = m_selectAllButSt != 0;
    if (!isListShown()) return isAny ? tr("Ticked: %1").arg(sizeOf(ticked)) : QString();
    const LargestFiles* const list = m_files->list();
    if (list == nullptr) return {};
    const QString size = sizeOf(list->bytes());
    QString all = list->count() == 1
                      ? tr("1 file, %1").arg(size)
                      : tr("%1 files, %2").arg(QLocale().toString(qulonglong(list->count())), size);
    if (!isAny) return all;
    const std::uint64_t elsewhere = tickedElsewhere(ticked);
    if (elsewhere == 0) return tr("%1, ticked: %2").arg(all, sizeOf(ticked));
    return tr("%1, ticked: %2, of it not in this list: %3")
        .arg(all, sizeOf(ticked), sizeOf(elsewhere));
}

// Bytes of so many that are ticked, but in no row of the list of files; none while these are
// counted, and while the tree is seen, whose rows may be closed.
std::uint64_t ListFileViewController::tickedElsewhere(std::uint64_t ticked) const {
    if (!isListShown() || m_files->list() == nullptr) return 0;
    return ticked - std::min(ticked, m_files->tickedBytes().value_or(ticked));
}

void ListFileViewController::showQuietLine() {
    const EumeRoot* const scan = Controller::getController().eumeRoot();
    const std::size_t skipped = scan != nullptr ? scan->skipped().size() : 0;
    m_views->showSkipped(skipped);
}

void ListFileViewController::showSkipped() {
    const EumeRoot* const scan = Controller::getController().eumeRoot();
    if (scan != nullptr)
        showLineList(m_mainWindow, tr("Could not be read"), linesOf(scan->skipped()));
}

}  // namespace orrinvale
