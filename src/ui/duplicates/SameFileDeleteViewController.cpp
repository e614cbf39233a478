// SameFileDeleteViewController: choosing a folder, the search, and how it ends. See the header for
// the other sources.
#include "ui/duplicates/SameFileDeleteViewController.h"

#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QShortcut>
#include <QStackedWidget>
#include <utility>

#include "engine/base/UtilityObject.h"
#include "engine/base/notices.h"
#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/cache/HashCache.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UnitTags.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "platform/files.h"
#include "services/foundation/runAside.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/PageRemoval.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/duplicates/duplicatePreview.h"
#include "ui/kit/chrome/AnimationHoverImageView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/look/picture.h"
#include "ui/page/Padlock.h"

namespace orrinvale {
namespace {

// What a new search no longer shows. Moved out of the page, so that whichever thread holds it last
// frees it.
struct Leftovers {
    void free() {
        removal.reset();
        ticked.clear();
        results.clear();
        search.reset();
    }
    std::shared_ptr<DuplicateFilesOpt> search;
    std::shared_ptr<PageRemoval> removal;
    TickedLeaves ticked;
    ResultViews results;
};

QString bytesToText(const std::string& bytes) { return QString::fromStdString(bytes); }

}  // namespace

SameFileDeleteViewController::SameFileDeleteViewController(PageServices services, QObject* parent)
    : QObject(parent),
      m_parts(std::move(services)),
      m_views(std::make_unique<SameFileDeleteViews>(*m_parts.notifications)),
      m_model(std::make_unique<DuplicateResultModel>(
          m_parts.icons, [this](const TreeNode::Pointer& node,
                                const QModelIndex& index) { boxClicked(node, index); })),
      m_opening(std::make_unique<FolderOpening>(m_parts, *m_model)),
      m_entrance(m_parts, *this,
                 {.isFree = [this] { return bSearchFinished(); },
                  .wouldForget =
                      [this] {
                          return !m_selection.allSelectNumArr().empty() &&
                                 m_views->detailView->isVisible();
                      },
                  .take = [this](const std::string& path,
                                 bool isOneOfSeveral) { searchFolder(path, isOneOfSeveral); }},
                 {.title = tr("Search another folder?"),
                  .text = tr("What is ticked here is forgotten, and nothing is removed. To be "
                             "searched: %1"),
                  .yes = tr("Search")}),
      m_controls(stateTable()),
      m_flight(*m_views->detailView) {
    m_views->outline->setModel(m_model.get());
    for (DragView* const area : {m_views->dragView, m_views->resultDragView})
        area->setDelegate(this);
    m_flight.setDelegate(this);
    m_searchPath = QFile::encodeName(QDir::homePath()).toStdString();
    m_views->titleLabel->setText(bytesToText(m_searchPath));
    showPercent(0);
    connectControls();
    m_observations.push_back(notice::refViewBgColor.observe(
        *m_parts.notifications, [this](ChosenRow chosen) { refViewBgColor(chosen.row); }));
    enter(State::Start);
}

SameFileDeleteViewController::~SameFileDeleteViewController() {
    if (m_duplicateOpt) m_duplicateOpt->stopSearch();
    m_model->setTree(nullptr);
    if (m_views->fristView != nullptr) m_views->dragView->setDelegate(nullptr);
    if (m_views->resultView != nullptr) m_views->resultDragView->setDelegate(nullptr);
}

QWidget* SameFileDeleteViewController::view() const { return m_views->fristView; }
QWidget* SameFileDeleteViewController::progressageView() const { return m_views->progressageView; }
QWidget* SameFileDeleteViewController::detailView() const { return m_views->resultView; }

void SameFileDeleteViewController::connectControls() {
    using Self = SameFileDeleteViewController;
    SameFileDeleteViews& views = *m_views;
    connect(views.pathChoseBtn, &QAbstractButton::clicked, this, &Self::clickScanBtn);
    connect(views.scopeBtn, &QAbstractButton::clicked, this, [this] { openScope(); });
    auto* const scopeKey =
        new QShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_O), views.fristView);
    connect(scopeKey, &QShortcut::activated, this, [this] { openScope(); });
    connect(views.firstMoreBtn, &QAbstractButton::clicked, this, &Self::showMoreMenu);
    connectDesks();
    views.dragView->installEventFilter(this);
    connect(views.animationHoverImageView, &QAbstractButton::clicked, this, &Self::clickScanBtn);
    connect(views.otherFolderBtn, &QAbstractButton::clicked, this, &Self::clickScanBtn);
    connect(views.searchBtn, &QAbstractButton::clicked, this, &Self::searchBtnClicked);
    connect(views.stopScanBtn, &QAbstractButton::clicked, this, &Self::stopScanBtnClicked);
    connect(views.backButton, &QAbstractButton::clicked, this, &Self::backButtonAction);
    connect(views.keepBtn, &QAbstractButton::clicked, this, &Self::showKeepMenu);
    connect(views.openBtn, &QAbstractButton::clicked, this, &Self::openFinderBtnClicked);
    connect(views.RevealFinder, &QAbstractButton::clicked, this, &Self::RevealInFinderBtnClicked);
    connect(views.button, &QAbstractButton::clicked, this, &Self::setAllSelectOrNoSelect);
    connect(views.stopBtn, &QAbstractButton::clicked, this, &Self::removeBtnClicked);
    connect(views.otherWayBtn, &QAbstractButton::clicked, this, &Self::showWayMenu);
    connect(views.undoBtn, &QAbstractButton::clicked, this, &Self::undoBtnClicked);
    connect(views.againBtn, &QAbstractButton::clicked, this, &Self::searchAgain);
    const auto onKey = [&](const QKeySequence& keys, void (Self::*action)()) {
        auto* const shortcut = new QShortcut(keys, views.detailView);
        connect(shortcut, &QShortcut::activated, this, action);
    };
    onKey(Qt::Key_Delete, &Self::removeBtnClicked);
    onKey(Qt::CTRL | Qt::Key_Z, &Self::undoBtnClicked);
    onKey(Qt::CTRL | Qt::Key_R, &Self::searchAgain);
    onKey(Qt::CTRL | Qt::Key_K, &Self::showKeepMenu);
    onKey(Qt::CTRL | Qt::Key_L, &Self::showViewMenu);
    onKey(Qt::CTRL | Qt::Key_S, &Self::savePlan);
    onKey(Qt::CTRL | Qt::SHIFT | Qt::Key_S, &Self::shareTicked);
    views.detailView->installEventFilter(this);
    connect(views.stopRemoveBtn, &QAbstractButton::clicked, this, &Self::stopRemoveBtnClicked);
    connect(views.lockButton, &QAbstractButton::clicked, this, &Self::unlockRigths);
    connect(views.lockButton, &Padlock::answered, this, [this] { enter(m_state); });
    connect(views.logoButton, &QAbstractButton::clicked, this, &Self::openHttpOfQuennet);
    connect(views.quietLine, &QAbstractButton::clicked, this, &Self::showSkipped);
    connect(views.failureLine, &QAbstractButton::clicked, this, &Self::showFailures);
    connect(views.outline->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
            &Self::shouldSelectItem);
    connect(views.outline->header(), &QHeaderView::sectionClicked, this,
            &Self::didClickTableColumn);
    connect(views.outline, &QTreeView::expanded, this, &Self::openFolder);
    connect(views.outline, &QTreeView::collapsed, this, &Self::closeFolder);
    connect(views.outline, &ResultOutline::menuWanted, this, &Self::showRowMenu);
    connect(views.outline, &ResultOutline::previewWanted, this, &Self::openFinderBtnClicked);
    startPreview(views, m_parts);
    m_newTimer.setInterval(100);
    connect(&m_newTimer, &QTimer::timeout, this, &Self::getPathForSreachDuplicate);
    m_sortTimer.setInterval(0);
    connect(&m_sortTimer, &QTimer::timeout, this, &Self::sortFurther);
    m_keepTimer.setInterval(0);
    connect(&m_keepTimer, &QTimer::timeout, this, &Self::tickFurther);
    m_removalDelay.setSingleShot(true);
    connect(&m_removalDelay, &QTimer::timeout, this, &Self::doRemoveDuplicateAction);
    m_removalTimer.setInterval(100);
    connect(&m_removalTimer, &QTimer::timeout, this, &Self::deleteUpView);
}

// A control of the removal stands in the detail view, one of the search in the progress view, so
// that a state of the one says little of the other's.
StateTable SameFileDeleteViewController::stateTable() const {
    using enum Look;
    const SameFileDeleteViews& views = *m_views;
    // Start, Searching, Stopping, Stopped, Ending, Result, Agreed, Removing, StoppingRemoval,
    // Undoing
    return {
        {views.pathChoseBtn, {On, Off, Off, On, Off, On, On, On, Hidden, Off}},
        {views.animationHoverImageView, {On, Off, Off, On, Off, On, On, On, On, Off}},
        {views.scopeBtn, {On, Off, Off, On, Off, On, On, On, On, Off}},
        {views.firstMoreBtn, {On, Off, Off, On, Off, On, On, On, On, Off}},
        {views.stopScanBtn, {On, On, Off, Hidden, Off, Hidden, Hidden, Hidden, Hidden, Hidden}},
        {views.animation, {On, On, Hidden, Hidden, On, Hidden, Hidden, Hidden, On, Hidden}},
        {views.loadPathView, {On, On, On, Hidden, On, Hidden, Hidden, On, On, Hidden}},
        {views.rightImageView, {On, Hidden, Hidden, On, Hidden, On, On, On, On, On}},
        {views.btnBgView, {On, Hidden, Hidden, On, Hidden, On, On, On, On, On}},
        {views.keepBtn, {Off, Off, Off, On, Off, On, Off, Off, Hidden, Off}},
        {views.openBtn, {On, On, On, On, On, On, On, Off, Hidden, Off}},
        {views.RevealFinder, {On, On, On, On, On, On, On, Off, Hidden, Off}},
        {views.lockButton, {On, On, On, On, On, On, On, Off, Off, Off}},
        {views.backButton, {On, On, On, On, On, On, On, Off, Off, Off}},
        {views.titleLabel, {On, On, On, On, On, On, On, On, Hidden, On}},
        {views.removedLine, {Kept, Kept, Kept, Kept, Kept, Kept, Kept, Hidden, Hidden, Kept}},
        {views.failureLine, {Kept, Kept, Kept, Kept, Kept, Kept, Kept, Hidden, Hidden, Hidden}},
        {views.undoBtn, {Kept, Kept, Kept, Kept, Kept, Kept, Hidden, Hidden, Hidden, Hidden}},
        {views.againBtn, {Kept, Kept, Kept, Kept, Kept, Kept, Hidden, Hidden, Hidden, Hidden}},
        {views.stopRemoveBtn,
         {Hidden, Hidden, Hidden, Hidden, Hidden, Hidden, Hidden, On, Off, On}},
        {views.otherWayBtn, {Off, Off, Off, Kept, Off, Kept, Off, Hidden, Hidden, Hidden}},
        {views.stopBtn, {Off, Off, Off, Shown, Shown, Shown, Off, Hidden, Off, Hidden}},
    };
}

void SameFileDeleteViewController::enter(State state) {
    m_state = state;
    m_controls.apply(state);
    m_views->lockButton->restWhileAsking();
}

void SameFileDeleteViewController::clickScanBtn() {
    if (bSearchFinished()) m_entrance.choose(m_mainWindow, m_searchPath);
}

void SameFileDeleteViewController::searchFolder(const std::string& path, bool isOneOfSeveral) {
    if (!bSearchFinished()) return;
    updatePathString(path);
    for (QLabel* const label :
         {m_views->onlyOneLabel, static_cast<QLabel*>(m_views->onlyOneNote)}) {
        label->setText(tr("One folder at a time: only %1 is searched").arg(onOneLine(rowLabel(0))));
        label->setVisible(isOneOfSeveral);
    }
    searchBtnClicked();
    forwardViewForAnimation();
}

void SameFileDeleteViewController::updatePathString(const std::string& path) {
    showPercent(0);
    m_searchPath = path;
    m_request = {};
    m_request.roots = {path};
    const QString shown = bytesToText(path);
    constexpr int longest = 25;
    m_views->titleLabel->setText(
        shown.size() > longest ? shown.left(longest) + QStringLiteral("...") : shown);
    m_views->titleLabel->setToolTip(shown);
}

void SameFileDeleteViewController::forwardViewForAnimation() {
    if (m_delegate != nullptr) m_delegate->changeToProgressView();
    m_views->stopScanBtn->setFocus();  // the button that had it is on a view that is gone
}

void SameFileDeleteViewController::backViewForAnimation() {
    if (m_delegate != nullptr) m_delegate->backButtonAction();
    m_views->pathChoseBtn->setFocus();
}

void SameFileDeleteViewController::searchBtnClicked() {
    if (!bSearchFinished()) return;
    SameFileDeleteViews& views = *m_views;
    views.showLoadPathInProgress();
    views.animation->baseNumberSetPrograss(5);
    enter(State::Searching);
    views.animation->startUpdatePrograss();
    m_tickedByHeader.reset();
    showHeaderBox({});
    // Hundreds of thousands of rows take long to free, so that the searching thread does it, before
    // it begins.
    const auto old = std::make_shared<Leftovers>();
    old->search = std::move(m_duplicateOpt);
    old->removal = std::move(m_removal);
    old->ticked = std::exchange(m_selection.allSelectNumArr(), {});
    m_selection.recount();
    showGain();
    old->results = resetOulineView();
    m_highestPercent = 0;
    showPercent(0);

    m_duplicateOpt = std::make_shared<DuplicateFilesOpt>(*m_parts.files);
    const SearchOption option{.searchHidden = m_parts.defaults->boolForKey(ZvHidenDuplication),
                              .searchSystem = m_parts.defaults->boolForKey(ZvSystemDuplication)};
    m_duplicateOpt->setSearchOption(&option);
    SearchRequest request = m_request;
    if (request.roots.empty()) request.roots = {m_searchPath};
    request.limit = duplicateSizeLimit(m_parts.defaults->integerForKey(ZvDuplicationLimit),
                                       m_parts.defaults->integerForKey(ZvDuplicatesUnit));
    if (!m_parts.stateFolder.empty() && m_parts.defaults->boolForKey(rememberContentsKey))
        request.cache = std::make_shared<HashCache>(hashCachePath());
    request.findsFolders = m_parts.defaults->boolForKey(wholeFoldersKey);
    m_twDuplicateSearch = runAside(
        this, "searchDuplicateFiles:worker:",
        [search = m_duplicateOpt, request = std::move(request), old,
         isGainFirst = m_parts.defaults->boolForKey(gainFirstKey)] {
            old->free();
            search->beginSearch(request);
            std::shared_ptr<SimpleTreeNode> all;
            ResultViews found;  // sorted into its views where the search runs: nothing shows it yet
            if (search->getDuplicateFiles(&all)) found.setResult(std::move(all));
            orderResult(found, isGainFirst);
            return found;
        },
        [this](ResultViews found) { searchFinished(std::move(found)); });
    if (m_twDuplicateSearch ==
        nullptr) {  // no thread to be had: an empty result, and the page stays usable
        searchFinished({});
        return;
    }
    m_newTimer.start();
}

void SameFileDeleteViewController::getPathForSreachDuplicate() {
    getPrograss();
    if (!m_duplicateOpt) return;
    const std::string path = m_duplicateOpt->getCurrentSearchFile();
    m_views->nameTextStr->setText(bytesToText(path));
    if (m_parts.icons) {
        const QIcon icon = m_parts.icons({IconRequest::Path, path});
        m_views->imageView->setPixmap(
            icon.pixmap(QSize(120, 120), m_views->imageView->devicePixelRatioF()));
    }
    if (const auto search = m_duplicateOpt->search()) {
        const SearchCounts counts = search->counts();
        const QString compared = shownSize(UtilityFunction::convertVolSpace(counts.hashedBytes));
        m_views->countsLabel->setText((counts.listedFiles == 1
                                           ? tr("1 file listed, %1 compared")
                                           : tr("%Ln files listed, %1 compared", nullptr,
                                                static_cast<int>(counts.listedFiles)))
                                          .arg(compared));
    }
}

void SameFileDeleteViewController::getPrograss() {
    const int percent = m_duplicateOpt ? static_cast<int>(m_duplicateOpt->getProgress()) : 0;
    constexpr int lowestShown = 6;  // the strip starts at 5
    // It only climbs: while bundles are compared the engine's falls.
    if (percent < lowestShown || percent < m_highestPercent) return;
    m_highestPercent = percent;
    m_views->animation->baseNumberSetPrograss(percent);
    showPercent(percent);
}

void SameFileDeleteViewController::showPercent(int percent) {
    m_views->progress->setText(shownPercent(QString::number(percent)));
}

void SameFileDeleteViewController::searchFinished(ResultViews found) {
    if (m_state == State::Searching) enter(State::Ending);
    m_twDuplicateSearch.reset();
    m_results = std::move(found);
    constructSubtrees();
    if (m_model->rowCount() > 0) m_views->outline->expand(m_model->index(0, 0));
    m_views->animation->stop();
    showSelectCountWithFileCount(m_treeData != nullptr ? ResultViews::leafCount(*m_treeData) : 0,
                                 rowLabel(m_remberWitchSelect));
    QTimer::singleShot(1000, this, [this] { delayBtnChangeStateTime(); });
}

void SameFileDeleteViewController::constructSubtrees() {
    m_treeData = m_results.tree(static_cast<std::size_t>(m_remberWitchSelect));
    m_model->setTree(m_treeData);
}

void SameFileDeleteViewController::delayBtnChangeStateTime() {
    SameFileDeleteViews& views = *m_views;
    enter(m_state == State::Stopping ? State::Stopped : State::Result);
    showFitting();
    views.searchBtn->setEnabled(false);
    showSameFileSize();
    m_newTimer.stop();
    views.clearLoadPath();
    if (!m_duplicateScaned) {
        notice::changeViewActionForDuplicate.post(*m_parts.notifications);
        m_duplicateScaned = true;
    }
    if (isStopScan() || m_delegate == nullptr) return;
    m_delegate->changeToDetailView();
    m_views->content->currentWidget()->setFocus();
}

// The list, or words in its place where there is nothing to list; and the quiet line about what
// could not be read.
void SameFileDeleteViewController::showFitting() {
    SameFileDeleteViews& views = *m_views;
    const auto search = m_duplicateOpt ? m_duplicateOpt->search() : nullptr;
    const std::size_t skipped = search ? search->skipped().entries().size() : 0;
    views.showSkipped(skipped);
    if (search) showCovered(search->coveredRoots());
    showRemovalEnded();
    const bool isEmpty = m_results.tree(0) == nullptr || m_results.tree(0)->numberOfChildren() == 0;
    const bool removedAll = isEmpty && m_removal != nullptr;
    views.emptyLabel->setText(search && search->rootError() ? tr("This folder could not be read.")
                              : removedAll && m_removal->sharing
                                  ? tr("Nothing here takes its space twice any more.")
                              : removedAll ? tr("No duplicates are left here.")
                                           : tr("No two files here are the same."));
    views.content->setCurrentWidget(isEmpty ? views.emptyView
                                            : static_cast<QWidget*>(views.outline));
    showPreview(*m_views, *m_model);
}

void SameFileDeleteViewController::showSkipped() {
    const auto search = m_duplicateOpt ? m_duplicateOpt->search() : nullptr;
    if (search)
        showLineList(m_mainWindow, tr("Could not be read"), linesOf(search->skipped().entries()));
}

void SameFileDeleteViewController::stopScanBtnClicked() {
    if (m_state == State::Searching) enter(State::Stopping);
    m_views->searchBtn->setEnabled(false);
    m_newTimer.stop();
    if (m_duplicateOpt) m_duplicateOpt->stopSearch();
    QTimer::singleShot(1500, this, [this] {
        if (isStopScan()) backViewForAnimation();  // unless the next search has begun meanwhile
    });
}

void SameFileDeleteViewController::backButtonAction() {
    if (bSearchFinished()) backViewForAnimation();
}

void SameFileDeleteViewController::showSameFileSize() {
    for (std::size_t row = 0; row < m_views->leftCells.size(); ++row)
        m_views->leftCells.at(row)->setSizeTextFieldString(shownSize(m_results.sizeText(row)));
}

ResultViews SameFileDeleteViewController::resetOulineView() {
    m_treeData = nullptr;
    m_sortTimer.stop();
    m_leafSort.drop();
    m_keepTimer.stop();
    m_keepTicks.drop();
    m_keepRules.clear();
    m_model->setTree(nullptr);
    ResultViews old = std::exchange(m_results, {});
    ++m_resultNumber;
    m_openItemPath.clear();
    showPreview(*m_views, *m_model);
    m_lastColumn = -1;
    m_sortings = {};
    showSortIndicator();
    showSameFileSize();
    return old;
}

void SameFileDeleteViewController::openHttpOfQuennet() {
    if (m_parts.openAddress) m_parts.openAddress(QStringLiteral("https://www.kelpford.com/"));
}

}  // namespace orrinvale
