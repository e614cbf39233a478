// SameFileDeleteViewController: the removal on a worker, the upkeep of tree and totals meanwhile,
// and the padlock.
#include <QCoreApplication>
#include <QLabel>
#include <QLocale>
#include <QStackedWidget>
#include <algorithm>

#include "engine/duplicates/plan/planOfTicks.h"
#include "engine/duplicates/results/GoneFolders.h"
#include "engine/duplicates/scope/ProtectedFolders.h"
#include "engine/removal/stayReasons.h"
#include "engine/settings/PreferenceViewController.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/PageRemoval.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/duplicates/removalWays.h"
#include "ui/duplicates/trashWords.h"
#include "ui/kit/chrome/AnimationHoverImageView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/showDisappearingEffect.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/removalWords.h"
#include "ui/kit/look/picture.h"
#include "ui/page/Padlock.h"

namespace orrinvale {
namespace {

// A mount that came since the search may show what is protected by a path on which the folder that
// goes does not lie.
ListingObjection objectionToProtected(const FileSystem& files,
                                      const std::vector<std::string>& folders) {
    return [&files, folders, guard = std::shared_ptr<const ProtectedFolders>()](
               const HeldEntry& bundle,
               const BundleListing& listing) mutable -> std::optional<StayedEntry> {
        if (guard == nullptr) guard = std::make_shared<ProtectedFolders>(files, folders);
        for (const BundleEntry& entry : listing.entries)
            if (entry.attributes.type == FileType::Folder && guard->isOneOrAbove(entry.attributes))
                return StayedEntry{bundle.path, std::string(stay::isProtected),
                                   StayReason::Protected};
        return std::nullopt;
    };
}

// As the main thread leaves it alone, and as it is compared: by the setting.
std::shared_ptr<RemovalPlan> planOf(const FileSystem& files,
                                    const std::vector<TreeNode::Pointer>& ticked,
                                    const std::vector<std::string>& protectedFolders) {
    const bool compares = PreferenceViewController::compareBeforeRemoving();
    auto plan = std::make_shared<RemovalPlan>(
        files, ticked, compares ? RemovalPlan::Comparing::Always : RemovalPlan::Comparing::Never);
    if (!protectedFolders.empty())
        plan->setObjection(objectionToProtected(files, protectedFolders));
    return plan;
}

// What undo needs to know of what goes.
DuplicatePlan notedPlan(const RemovalPlan& plan, const PlanOrigin& origin,
                        const DuplicateFilesOpt& search, const FileSystem& files,
                        const std::atomic<bool>& stop) {
    std::vector<TreeNode::Pointer> leaves;
    for (std::size_t i = 0; i < plan.size(); ++i) leaves.push_back(plan.leaf(i));
    DuplicatePlan noted = planOfTicks(leaves, origin);
    noteListings(noted, files, search, stop);
    return noted;
}

}  // namespace

void SameFileDeleteViewController::alertEnded_aContext(int code) {
    if (code == 1) agree(false);
}

void SameFileDeleteViewController::agree(bool isToTrash) {
    if (!bSearchFinished() || m_selection.allSelectNumArr().empty()) return;
    finishSorting();
    m_removal = std::make_unique<PageRemoval>();
    m_removal->ticked = m_selection.allSelectNumArr().entries();
    m_removal->isToTrash = isToTrash;
    enter(State::Agreed);
    m_removalDelay.start(500);
}

void SameFileDeleteViewController::doRemoveDuplicateAction() {
    delDuplicateItems();
    const QWidget& basket = *m_views->trashBtn;
    showDisappearingEffect(*m_views->detailView,
                           basket.mapTo(m_views->detailView, basket.rect().center()));
}

void SameFileDeleteViewController::showRemoving() {
    SameFileDeleteViews& views = *m_views;
    views.searchBtn->setEnabled(false);
    views.showLoadPathInDetail();
    views.content->setCurrentWidget(views.removalView);
    enter(State::Removing);
    finishSorting();
    m_model->setTree(nullptr);  // the tree changes under the hidden list
    m_progressNum = 1;
    m_removalTimer.start();
    deleteUpView();
}

void SameFileDeleteViewController::delDuplicateItems() {
    showRemoving();
    m_removal->plan = planOf(*m_parts.files, m_removal->ticked, m_request.protectedFolders);
    std::shared_ptr<RemovalList> list = m_removal->plan;
    if (m_removal->isToTrash)
        list = m_removal->undoable = std::make_shared<UndoableRemoval>(
            *m_parts.files, m_parts.stateFolder, m_removal->plan,
            [plan = m_removal->plan, origin = planOrigin(), search = m_duplicateOpt,
             files = m_parts.files](const std::atomic<bool>& stop) {
                return notedPlan(*plan, origin, *search, *files, stop);
            });
    m_removal->job = std::make_unique<RemovalJob>(
        RemovalJob::Parts{m_parts.files, m_parts.mainQueue,
                          doorOf(*m_parts.files, m_removal->isToTrash), m_parts.stateFolder},
        std::move(list), [this] { removalNews(); });
}

void SameFileDeleteViewController::deleteUpView() {
    const bool isMeasuring = m_removal && m_removal->sharing && m_removal->sharing->isMeasuring();
    if (!m_removal || (!m_removal->job && !isMeasuring)) return;
    const RemovalJob::Progress progress =
        m_removal->job ? m_removal->job->progress() : RemovalJob::Progress{};
    const QString shown = isMeasuring          ? tr("Measuring the free space\u2026")
                          : progress.isWaiting ? tr("Waiting for another removal to end")
                                               : QString::fromStdString(progress.current);
    m_views->nameTextStr->setText(shown.isEmpty() ? QStringLiteral(" ") : shown);
    m_views->imageView->setPixmap(picturePixmap(QStringLiteral("loading_%1").arg(m_progressNum),
                                                QSize(64, 64),
                                                m_views->imageView->devicePixelRatioF()));
    constexpr std::int32_t pictures = 12;
    m_progressNum = m_progressNum % pictures + 1;
    if (!m_removal->job) return;
    const QString done = m_removal->sharing             ? tr("Shared: %1 of %2")
                         : !m_removal->plan->compares() ? tr("%1 of %2")
                         : m_removal->isToTrash         ? tr("Compared again and moved: %1 of %2")
                                                : tr("Compared again and removed: %1 of %2");
    m_views->countsLabel->setText(done.arg(QLocale().toString(qulonglong(progress.done)),
                                           QLocale().toString(qulonglong(progress.of))));
}

void SameFileDeleteViewController::removalNews() {
    if (!m_removal || !m_removal->job) return;
    RemovalJob::News news = m_removal->job->takeNews();
    refreshOutlineView(news.settled);
    if (!news.ending) return;
    m_removal->outcome = std::move(*news.ending);
    forgetAside(*this, m_removal->undoable);
    // It is the job's own call that is running, so that the job goes in a later turn.
    m_parts.mainQueue->async([ended = std::shared_ptr<RemovalJob>(std::move(m_removal->job))] {});
    deleteFinished();
}

void SameFileDeleteViewController::refreshOutlineView(
    const std::vector<RemovalJob::Settled>& settled) {
    std::vector<TreeNode::Pointer> gone;
    std::vector<RemovalPlan::Excuse> excuses;
    for (const RemovalJob::Settled& each : settled) {
        const TreeNode::Pointer& leaf = m_removal->plan->leaf(each.index);
        if (each.changed) excuses.push_back({leaf, *each.changed, each.gone});
        if (each.gone) gone.push_back(leaf);
    }
    RemovalPlan::excuse(excuses);
    if (gone.empty()) return;
    m_results.removeLeaves(gone);
    showSameFileSize();
    m_removal->delNodesArr.insert(m_removal->delNodesArr.end(), gone.begin(), gone.end());
}

// What lay in a folder is tied to it where the search saw that by its path; what it met through a
// link is found here.
void SameFileDeleteViewController::takeOutBelowGone() {
    std::vector<std::string> folders;
    for (const TreeNode::Pointer& leaf : m_removal->delNodesArr)
        if (const auto& identity = simpleData(*leaf)->identity();
            identity && identity->type == FileType::Folder)
            folders.push_back(simpleData(*leaf)->name());
    const GoneFolders gone(folders);
    const TreeNode* const all = m_results.tree(0);
    if (gone.empty() || all == nullptr) return;
    std::vector<TreeNode::Pointer> leaves;
    for (std::size_t g = 0; g < all->numberOfChildren(); ++g)
        for (std::size_t i = 0; i < all->childAtIndex(g)->numberOfChildren(); ++i)
            if (const TreeNode::Pointer& leaf = all->childAtIndex(g)->childAtIndex(i);
                gone.held(*simpleData(*leaf)))
                leaves.push_back(leaf);
    m_results.removeLeaves(leaves);
    m_removal->delNodesArr.insert(m_removal->delNodesArr.end(), leaves.begin(), leaves.end());
}

void SameFileDeleteViewController::deleteFinished() {
    SameFileDeleteViews& views = *m_views;
    m_removalTimer.stop();
    views.searchBtn->setEnabled(true);
    views.searchBtn->setIcon(picture(QStringLiteral("scan_b_normal")));
    takeOutBelowGone();
    TickedLeaves& selected = m_selection.allSelectNumArr();
    if (m_state == State::StoppingRemoval) selected.clear();
    else selected.removeAll(m_removal->delNodesArr);

    m_treeData = m_results.tree(static_cast<std::size_t>(m_remberWitchSelect));
    m_model->setTree(m_treeData);
    alertCanNotRemoveSome();
    changeAllSelectCheckBoxState();
    updateCheckBox();
    enter(State::Result);
    views.clearLoadPath();
    showFitting();
    setSelectCount();
    // The buttons that may have had it are gone or disabled.
    if (views.detailView->isVisible()) views.content->currentWidget()->setFocus();
}

// The padlock is pointed at where it would help.
void SameFileDeleteViewController::alertCanNotRemoveSome() {
    if (m_selection.allSelectNumArr().empty() || m_removal->outcome.failed == 0) return;
    Alert alert = stayedAlert(m_removal->outcome);
    if (m_removal->isToTrash) {
        alert.title = unmovedText(m_removal->outcome);  // which no administrator does either
    } else if (m_removal->outcome.lacksRights) {
        m_views->animation->startUnlockAnimation(m_views->lockButton);
        alert.title = tr("Some files that require admin access can't be removed!");
        alert.text.clear();
    }
    m_parts.dialogs->alert(m_mainWindow, alert, [self = QPointer(this)](int /*button*/) {
        if (self == nullptr) return;
        self->m_views->animation->stopUnlockAnimation(self->m_views->lockButton);
        self->m_views->lockButton->showRight();
        self->setSelectCount();
    });
}

void SameFileDeleteViewController::stopRemoveBtnClicked() {
    if (m_state == State::Undoing) {
        m_undoing.stop();
        m_views->stopRemoveBtn->setEnabled(false);
        return;
    }
    if (!m_removal || bSearchFinished() || (!m_removal->job && !m_removal->sharing)) return;
    if (m_removal->sharing) m_removal->sharing->stopMeasuring();
    if (m_removal->job) m_removal->job->stop();
    enter(State::StoppingRemoval);
}

void SameFileDeleteViewController::giveUp() {
    m_plans.stop();
    m_history.stop();
    m_sharing.stop();
    if (m_state != State::Agreed) {
        stopRemoveBtnClicked();
        return;
    }
    m_removalDelay.stop();
    m_removal.reset();
    enter(State::Result);
    setRemoveButtonState();
}

void SameFileDeleteViewController::unlockRigths() {
    if (bSearchFinished()) m_views->lockButton->toggleRight();
    else m_views->lockButton->showRight();
}

}  // namespace orrinvale
