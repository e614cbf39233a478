// SameFileDeleteViewController: ticked copies that share the space of those that stay. What does so
// leaves the list: it has nothing to give any more, and its size would be counted as a gain.
#include <QLabel>
#include <QStackedWidget>
#include <algorithm>
#include <string>
#include <unordered_map>
#include <utility>

#include "engine/duplicates/plan/planOfTicks.h"
#include "services/foundation/runAside.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/PageRemoval.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/duplicates/removalWays.h"
#include "ui/duplicates/shareWords.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/LineList.h"

namespace orrinvale {
namespace {

// What the tree has to know: what shares leaves it, and of the copies that got further names the
// number of these and the time of change are others.
std::vector<PlanDesk::Settled> settledBy(const ShareList& list) {
    using As = ShareList::Settled::As;
    std::unordered_map<std::string, PlanDesk::Settled> byPath;
    const auto of = [&](const std::string& path) -> PlanDesk::Settled& {
        PlanDesk::Settled& settled = byPath[path];
        settled.path = path;
        return settled;
    };
    for (std::size_t i = 0; i < list.account().size(); ++i) {
        const ShareList::Settled& each = list.account()[i];
        if (each.as == As::Shared || each.as == As::GoneByOthers) of(list.path(i)).isGone = true;
        if (each.changed) of(list.path(i)).changed = each.changed;
        if (each.as != As::Shared || !each.shared.keptChanged) continue;
        PlanDesk::Settled& kept = of(each.shared.with);
        kept.changed = std::max(kept.changed, each.shared.keptChanged);
        ++kept.namesMade;
    }
    for (const RemovalResult::Shared& each : list.takenBack()) {
        PlanDesk::Settled& kept = of(each.with);
        kept.changed = std::max(kept.changed, each.keptChanged);
    }
    std::vector<PlanDesk::Settled> settled;
    settled.reserve(byPath.size());
    for (auto& [path, each] : byPath) settled.push_back(std::move(each));
    return settled;
}

}  // namespace

void SameFileDeleteViewController::shareTicked() {
    if (!bSearchFinished() || m_mainWindow == nullptr) return;
    finishSorting();
    if (m_selection.allSelectNumArr().empty()) return;
    m_sharing.look(*m_mainWindow,
                   planOfTicks(m_selection.allSelectNumArr().entries(), planOrigin()),
                   [this](const ShareErrand::Outlook& outlook) {
                       deskChanged();
                       if (outlook) askAboutSharing(*outlook);
                   });
    deskChanged();
}

void SameFileDeleteViewController::askAboutSharing(const ShareOutlook& outlook) {
    if (m_mainWindow == nullptr) return;
    Alert question = shareQuestion(outlook);
    if (!question.linkText.isEmpty())
        question.linkAction = [window = m_mainWindow, lines = linesByReason(outlook.kept)] {
            if (window != nullptr) showLineList(window, tr("Keep their own space"), lines);
        };
    m_parts.dialogs->alert(m_mainWindow, question,
                           [self = QPointer(this), outlook, number = m_resultNumber](int button) {
                               const auto yes = shareYesOf(outlook, button);
                               if (self == nullptr || !yes || number != self->m_resultNumber ||
                                   !self->bSearchFinished())
                                   return;
                               self->beginSharing(outlook.list, *yes == ShareYes::Links);
                           });
}

void SameFileDeleteViewController::beginSharing(const std::shared_ptr<ShareList>& list,
                                                bool mayLink) {
    m_removal = std::make_unique<PageRemoval>();
    m_removal->sharing = list;
    list->measureGain();
    showRemoving();
    m_removal->job = std::make_unique<RemovalJob>(
        RemovalJob::Parts{m_parts.files, m_parts.mainQueue,
                          sharingDoorOf(*m_parts.files, list, mayLink), m_parts.stateFolder},
        list, [this] { sharingNews(); });
}

// A disk tells what is free once it has written what waits, which is asked aside, and not for ever:
// until then the page shows that it measures, and a stop does without the figure.
void SameFileDeleteViewController::sharingNews() {
    if (!m_removal || !m_removal->job) return;
    RemovalJob::News news = m_removal->job->takeNews();
    if (!news.ending) return;
    m_removal->outcome = std::move(*news.ending);
    // It is the job's own call that is running, so that the job goes in a later turn.
    m_parts.mainQueue->async([ended = std::shared_ptr<RemovalJob>(std::move(m_removal->job))] {});
    const auto worker = runAside(
        this, "gainOfSharing", [list = m_removal->sharing] { return list->gained(); },
        [this](std::optional<std::int64_t> gained) {
            m_removal->gained = gained;
            sharingEnded();
        });
    if (worker == nullptr) sharingEnded();
}

void SameFileDeleteViewController::sharingEnded() {
    SameFileDeleteViews& views = *m_views;
    m_removalTimer.stop();
    views.searchBtn->setEnabled(true);
    m_treeData = m_results.tree(static_cast<std::size_t>(m_remberWitchSelect));
    m_model->setTree(m_treeData);
    enter(State::Result);
    views.clearLoadPath();
    takeOutGone(settledBy(*m_removal->sharing));
    showTicks();
    showFitting();
    if (views.detailView->isVisible()) views.content->currentWidget()->setFocus();
}

}  // namespace orrinvale
