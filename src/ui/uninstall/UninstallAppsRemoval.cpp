// UninstallAppsController: the attempts with their rights, and what is told of them.
// UninstallAppsAsking.cpp asks before.
#include <QCoreApplication>
#include <QLabel>
#include <QLocale>
#include <algorithm>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/UtilityObject.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/cleaning/QnAuthorization.h"
#include "engine/cleaning/SpaceGain.h"
#include "engine/text/UtilityFunction.h"
#include "engine/uninstall/uninstallNotices.h"
#include "services/foundation/runAside.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/uninstall/UninstallAppsController.h"
#include "ui/uninstall/UninstallAppsViews.h"

namespace orrinvale {
namespace {

bool hasRight() {
    QnAuthorization& right = QnAuthorization::shareQnAuthorization();
    const AuthorizationRef reference = right.getAuthorizationRet();
    if (reference == AuthorizationRef::null) return false;
    static_cast<void>(FolderUtilities::DeleteAuthoration(reference));
    return true;
}

QString failureText(const std::string& of, const QString& reason) {
    return QStringLiteral("%1: %2").arg(onOneLine(QString::fromStdString(of)), reason);
}

struct Attempted {
    std::vector<UninstallResult> results;
    std::optional<std::int64_t> gained;
};

}  // namespace

/// One removal, from the person's yes to its end.
struct UninstallAppsController::Batch {
    struct Row {
        std::shared_ptr<AppItems> item;
        UninstallRequest request;
        UninstallResult result;
    };
    std::shared_ptr<const UninstallPlan> plan;  // that was shown
    std::vector<Row> rows;
    std::vector<std::size_t> attempt;  // the rows that the attempt under way is at
    ProgressBox progress;
    std::atomic<bool> stop{false};
    std::unique_ptr<SpaceGain> space;    // asked aside; null where nobody tells
    std::optional<std::int64_t> gained;  // bytes, as measured after the last attempt
    bool hasRefused = false;             // something that stays was ticked too
    QStringList failures;                // of what was refused before

    [[nodiscard]] bool isEverythingGone() const {
        return !hasRefused &&
               std::ranges::all_of(rows, [](const Row& row) { return row.result.isGone; });
    }
};

void UninstallAppsController::beginRemoval(const std::shared_ptr<const UninstallPlan>& plan,
                                           std::vector<UninstallRequest> requests) {
    m_batch = std::make_shared<Batch>();
    m_batch->plan = plan;
    if (m_parts.freeSpace)
        m_batch->space = std::make_unique<SpaceGain>(m_parts.disks, m_parts.freeSpace);
    for (UninstallRequest& request : requests) {
        const auto item = std::ranges::find(m_asked, request.item.record, &AppItems::record);
        if (!isNeverRemoved(request.item)) m_batch->rows.push_back({*item, std::move(request), {}});
    }
    m_batch->hasRefused = m_batch->rows.size() < m_asked.size();
    tellRefused();
    m_views->uninstallTextField->show();
    m_sizes.stop();
    enter(State::Removing);
    goOn(firstUninstallStep(rights()));
}

// They were asked for as well, so the end says why they stay. The one that never goes has no
// reason.
void UninstallAppsController::tellRefused() {
    for (const UninstallPlan::App& each : m_batch->plan->apps)
        if (!each.refusal.empty() && !isNeverRemoved(*each.item))
            m_batch->failures.push_back(failureText(each.item->name, inWords(each.refusal)));
}

// Of those that are still there.
UninstallRights UninstallAppsController::rights() const {
    return {.isSystemRow = nowSelectRow() == UninstallList::SystemProgram,
            .hasDoorItems = std::ranges::any_of(m_batch->rows,
                                                [](const Batch::Row& row) {
                                                    return !row.result.isGone &&
                                                           goesThroughDoor(row.request.item);
                                                }),
            .mayAsk = !UtilityObject::getMyObject().isOpenLocked && !hasRight()};
}

void UninstallAppsController::goOn(UninstallStep step) {
    using enum UninstallStep;
    switch (step) {
        case AskBefore:
        case AskAfter: askForRight(step); break;
        case FirstAttempt:
        case SecondAttempt: uninstallActionfromBottomButton(step); break;
        case Succeeded:
        case Failed: endUninstall(step == Succeeded); break;
    }
}

// The answer is the whole program's, also when this page has gone meanwhile.
void UninstallAppsController::askForRight(UninstallStep asked) {
    m_views->uninstallTextField->setText(tr("Waiting for your password ..."));
    const auto worker = runAside(
        QCoreApplication::instance(), "allocAuthorization",
        [] { return QnAuthorization::shareQnAuthorization().allocAuthorization(); },
        [self = QPointer(this), center = m_services.notifications, asked](bool isGranted) {
            if (isGranted) {
                UtilityObject::getMyObject().setIsOpenLocked(true);
                notice::changeLockState.post(*center);
            }
            if (self == nullptr || !self->m_batch) return;
            if (!isGranted) self->showResult(false);
            self->goOn(self->m_batch->stop ? UninstallStep::Failed
                                           : uninstallStepAfterAsking(asked, isGranted));
        });
    if (worker == nullptr) endUninstall(false);
}

void UninstallAppsController::uninstallActionfromBottomButton(UninstallStep attempt) {
    m_views->selectButton->setState(TickState::Nothing);
    std::vector<UninstallRequest> requests;
    m_batch->attempt.clear();
    for (std::size_t i = 0; i < m_batch->rows.size(); ++i) {
        const Batch::Row& row = m_batch->rows[i];
        const bool isDue = attempt == UninstallStep::FirstAttempt ||
                           (!row.result.isGone && goesThroughDoor(row.request.item));
        if (!isDue) continue;
        m_batch->attempt.push_back(i);
        requests.push_back(row.request);
    }
    m_progressTimer.start();
    const auto worker = runAside(
        this, "uninstall",
        [work = m_parts.work, batch = m_batch, requests = std::move(requests)] {
            Attempted out;
            if (batch->space) batch->space->begin();
            out.results = work->remove(*batch->plan, requests, batch->progress, batch->stop);
            if (batch->space) out.gained = batch->space->gained();
            return out;
        },
        [this, attempt](const Attempted& attempted) {
            m_batch->gained = attempted.gained;
            attemptEnded(attempt, attempted.results);
        });
    if (worker == nullptr) endUninstall(false);
}

void UninstallAppsController::attemptEnded(UninstallStep attempt,
                                           const std::vector<UninstallResult>& results) {
    m_progressTimer.stop();
    AppItemsArray removed;
    for (std::size_t i = 0; i < m_batch->attempt.size() && i < results.size(); ++i) {
        Batch::Row& row = m_batch->rows[m_batch->attempt[i]];
        // Leftovers follow the first attempt alone.
        std::vector<UninstallResult::Stayed> stayed = std::move(row.result.leftovers);
        row.result = results[i];
        row.result.leftovers.insert(row.result.leftovers.end(), stayed.begin(), stayed.end());
        if (row.result.isGone) removed.push_back(row.item);
        else Log::line("uninstall can not work!");
    }
    m_list.takeOut(removed);
    showLeftRows();
    showRows();
    goOn(m_batch->stop ? m_batch->isEverythingGone() ? UninstallStep::Succeeded  //
                                                     : UninstallStep::Failed
                       : uninstallStepAfterAttempt(attempt, m_batch->isEverythingGone(), rights()));
}

void UninstallAppsController::endUninstall(bool isEverythingGone) {
    m_progressTimer.stop();
    const std::shared_ptr<Batch> batch = std::exchange(m_batch, nullptr);
    m_asked.clear();
    enter(State::Ready);
    showResult(isEverythingGone);
    showGone(*batch);
    m_failures = failuresOf(*batch);
    ResultFrame::showLine(*m_views->failureLine, m_failures.isEmpty() ? QString() : tr("Why?"));
    notice::uninstallShowSelectNumInBottom.post(*m_services.notifications,
                                                notice::uninstalledObject);
    m_sizes.fillIn(m_list.searchAllAppArr());
    m_views->tableView->setFocus();
}

// What went, and what that gave back by now: the trash gives nothing back before it is emptied.
void UninstallAppsController::showGone(const Batch& batch) {
    std::uint64_t gone = 0;
    std::uint64_t size = 0;
    for (const Batch::Row& row : batch.rows) {
        gone += row.result.isGone ? 1 : 0;
        size += row.result.gained;
    }
    const auto sizeText = [](std::uint64_t bytes) {
        return shownSize(UtilityFunction::convertVolSpace(bytes));
    };
    QStringList said;
    if (gone != 0)
        said.push_back(
            tr("%1 removed, %2").arg(QLocale().toString(qulonglong(gone)), sizeText(size)));
    if (gone != 0 && batch.gained.value_or(0) > 0)
        said.push_back(tr("free space grew by %1").arg(sizeText(std::uint64_t(*batch.gained))));
    ResultFrame::showLine(*m_views->removedLine, said.join(QStringLiteral(", ")));
}

QStringList UninstallAppsController::failuresOf(const Batch& batch) {
    QStringList lines = batch.failures;
    const auto add = [&](const std::string& of, const QString& reason) {
        lines.push_back(failureText(of, reason));
    };
    for (const Batch::Row& row : batch.rows) {
        if (!row.result.isGone && !row.result.reason.empty())
            add(row.item->name, inWords(row.result.reason));
        else if (!row.result.isGone && batch.stop)
            add(row.item->name, tr("stopped before its turn came"));
        if (!row.result.note.empty()) add(row.item->name, inWords(row.result.note));
        for (const auto& [path, reason] : row.result.leftovers) add(path, inWords(reason));
    }
    return lines;
}

void UninstallAppsController::showResult(bool isEverythingGone) {
    m_views->uninstallTextField->show();
    m_views->uninstallTextField->setText(
        isEverythingGone ? tr("Selected application(s) were uninstalled successfully.")
                         : tr("Failed to uninstall the selected application(s). Please refer to "
                              "Help for more info."));
}

void UninstallAppsController::showRemoving() {
    if (m_batch && m_batch->stop) {
        m_views->uninstallTextField->setText(tr("Stopping ..."));
        return;
    }
    const std::string current = m_batch ? m_batch->progress.copy().current : std::string();
    if (current.empty()) return;
    constexpr int most = 220;  // of a name, so that the line stays one
    const QString name = m_views->uninstallTextField->fontMetrics().elidedText(
        onOneLine(QString::fromStdString(current)), Qt::ElideMiddle, most);
    m_views->uninstallTextField->setText(tr("Removing %1 ...").arg(name));
}

void UninstallAppsController::showFailures() {
    showLineList(m_mainWindow, tr("Could not be removed"), m_failures);
}

void UninstallAppsController::giveUp() {
    if (!m_batch) return;
    m_batch->stop = true;
    if (m_views->resultView == nullptr) return;  // it went with its window
    m_views->stopButton->setEnabled(false);
    showRemoving();
}

}  // namespace orrinvale
