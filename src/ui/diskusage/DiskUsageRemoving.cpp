// DiskUsageAppController: what is ticked is counted, asked about and removed, on threads of their
// own; the tree follows in batches.
#include <QCoreApplication>
#include <QLabel>
#include <QLocale>
#include <algorithm>
#include <chrono>
#include <span>
#include <utility>

#include "engine/cleaning/QnAuthorization.h"
#include "engine/diskusage/UsageRemoval.h"
#include "engine/diskusage/UsageSelection.h"
#include "engine/files/ProtectedPlaces.h"
#include "services/foundation/runAside.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/DiskUsageViews.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/controls/showDisappearingEffect.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/dialogs/removalWords.h"
#include "ui/page/Padlock.h"

namespace orrinvale {
namespace {

constexpr std::size_t mostAtOnce = 4096;  // nodes that leave the tree in one turn
constexpr std::chrono::milliseconds alertDelay{1000};

QString counted(std::uint64_t count) { return QLocale().toString(qulonglong(count)); }

QString text(const char* source) {
    return QCoreApplication::translate("DiskUsageAppController", source);
}

// The first of those that may not go, each with the reason.
QStringList stayingWords(const TickedCount& ticked) {
    constexpr std::size_t mostNamed = 3;
    QStringList lines;
    for (const auto& each :
         std::span(ticked.staying).first(std::min(ticked.staying.size(), mostNamed)))
        lines.push_back(QStringLiteral("%1: %2").arg(onOneLine(QString::fromStdString(each.path)),
                                                     inWords(each.reason)));
    if (ticked.staying.size() > mostNamed) lines.push_back(QString(QChar(0x2026)));
    return lines;
}

// What would go, in so many words as a person needs to agree.
QString countedWords(const TickedCount& ticked) {
    QStringList lines{text(QT_TRANSLATE_NOOP("DiskUsageAppController",
                                             "All checked files and folders will be removed."))};
    lines.push_back(
        text(QT_TRANSLATE_NOOP("DiskUsageAppController", "Files: %1. Folders: %2. Together: %3"))
            .arg(counted(ticked.files), counted(ticked.folders), bytesWords(ticked.size)));
    if (ticked.isUpTo || bytesWords(ticked.onDisk) != bytesWords(ticked.size))
        lines.push_back((ticked.isUpTo ? text(QT_TRANSLATE_NOOP("DiskUsageAppController",
                                                                "Gives back up to %1 of the disk."))
                                       : text(QT_TRANSLATE_NOOP("DiskUsageAppController",
                                                                "Gives back %1 of the disk.")))
                            .arg(bytesWords(ticked.onDisk)));
    if (!ticked.skipped.empty())
        lines.push_back(
            text(QT_TRANSLATE_NOOP("DiskUsageAppController", "What could not be read stays: %1"))
                .arg(counted(ticked.skipped.size())));
    if (ticked.hasForeign)
        lines.push_back(
            ticked.hasVolumes
                ? text(QT_TRANSLATE_NOOP("DiskUsageAppController",
                                         "What lies on other volumes and in subvolumes stays."))
                : text(QT_TRANSLATE_NOOP("DiskUsageAppController",
                                         "What lies on other disks stays.")));
    if (!ticked.staying.empty())
        lines.push_back(
            text(QT_TRANSLATE_NOOP("DiskUsageAppController", "Ticked, and stays all the same: %1"))
                .arg(counted(ticked.staying.size())));
    return (lines + stayingWords(ticked)).join(QLatin1Char('\n'));
}

}  // namespace

void DiskUsageAppController::removeBtnClick() {
    const FSNode* const root = rootNode();
    if (m_state == State::Result && root != nullptr && hasTicks(*root)) countTickedNow();
}

// Folders are counted afresh, with all that is too small to be in the tree.
void DiskUsageAppController::countTickedNow() {
    m_delNodesArr = prePareDelData(rootNode());
    const auto progress = std::make_shared<UsageCounts>();
    m_counting = progress;
    enter(State::Counting);
    m_views->animation->initZeroPrograss();
    m_views->animation->start();
    m_views->stripLabel->setText(tr("Counting what is ticked"));
    m_views->stopBtn->setFocus();
    const auto worker = runAside(
        this, "countTicked",
        [files = m_parts.files, ticked = tickedEntries(m_delNodesArr),
         own = current()->shown->tree->ownChanges(), progress]() mutable {
            const RemovalRules rules{QnAuthorization::protectedPlaces(), own};
            return std::make_shared<TickedCount>(
                countTicked(*files, rules, std::move(ticked), *progress));
        },
        [this, progress,
         of = std::weak_ptr(current()->shown)](const std::shared_ptr<TickedCount>& ended) {
            if (m_counting == progress) countingEnded(ended, of);
        });
    if (worker == nullptr) countingEnded(nullptr, {});
}

// Without a result where there will be none, or nobody waits for it any longer.
void DiskUsageAppController::countingEnded(const std::shared_ptr<TickedCount>& ended,
                                           const std::weak_ptr<ShownScan>& of) {
    m_counting.reset();
    m_views->animation->stop();
    enter(State::Result);
    // With its volume the whole place may have left.
    const Scanned* const now = current();
    const bool isThere = now != nullptr && now->shown == of.lock();
    if (ended == nullptr || ended->stopped || !isThere) m_delNodesArr.clear();
    else if (ended->entries.empty() && !ended->staying.empty()) tellNothingGoes(*ended);
    else askToRemove(ended);
}

void DiskUsageAppController::tellNothingGoes(const TickedCount& ended) {
    untick(m_delNodesArr);
    m_delNodesArr.clear();
    m_views->browser->reload();
    refRemoveButtonState();
    Alert alert;
    alert.title = tr("Nothing of what is ticked can be removed.");
    alert.text = stayingWords(ended).join(QLatin1Char('\n'));
    m_parts.dialogs->alert(m_mainWindow, alert, [](int /*button*/) {});
}

void DiskUsageAppController::askToRemove(std::shared_ptr<TickedCount> ended) {
    Alert question;
    question.title = tr("Are you sure you want to remove all checked items?");
    question.text = countedWords(*ended);
    question.buttons = QStringList{tr("OK"), tr("Cancel")};
    question.cancelButton = 1;
    question.severity = Alert::Severity::Warning;
    question.isDestructive = true;
    // What a later scan shows was not asked about.
    m_parts.dialogs->alert(m_mainWindow, question,
                           [self = QPointer(this), ended = std::move(ended),
                            asked = std::weak_ptr(current()->shown)](int button) {
                               if (self == nullptr) return;
                               const Scanned* const now = self->current();
                               if (now != nullptr && now->shown == asked.lock())
                                   self->firstAlertEnded(button == 0 ? 1 : 0, ended);
                           });
}

void DiskUsageAppController::firstAlertEnded(int code, const std::shared_ptr<TickedCount>& ended) {
    if (code != 1 || !isFree()) return;
    m_delNodesArr.clear();
    for (const TickedCount::Staying& each : ended->staying) m_delNodesArr.push_back(each.node);
    untick(std::exchange(m_delNodesArr, {}));
    for (const CountedEntry& each : ended->entries) m_delNodesArr.push_back(each.node);
    if (m_delNodesArr.empty()) {
        m_views->browser->reload();
        return;
    }
    m_partly.clear();
    m_outcome = {};
    enter(State::Removing);
    m_views->animation->initZeroPrograss();
    m_views->stripLabel->setText(tr("Removing"));
    m_views->stopBtn->setFocus();
    m_removalList = std::make_shared<UsageRemoval>(*m_parts.files, std::move(ended->entries));
    m_removal = std::make_unique<RemovalJob>(
        RemovalJob::Parts{m_parts.files, m_parts.mainQueue,
                          [own = current()->shown->tree->ownChanges()] {
                              return QnAuthorization::makeDoorAfter(own);
                          },
                          m_parts.stateFolder},
        m_removalList, [this] { removalNews(); });
}

void DiskUsageAppController::removalNews() {
    if (!m_removal) return;
    RemovalJob::News news = m_removal->takeNews(mostAtOnce);
    std::vector<FSNode*> gone;
    for (const RemovalJob::Settled& each : news.settled) {
        FSNode* const node = m_removalList->node(each.index);
        if (each.gone) gone.push_back(node);
        else if (node->isDirectory()) m_partly.push_back(node);
    }
    if (!gone.empty()) {
        forgetSkipped(gone);
        current()->shown->tree->takeOut(gone);
        current()->shown->hasChanged = true;
        if (!m_reloadTimer.isActive()) m_reloadTimer.start();
    }
    const RemovalJob::Progress progress = m_removal->progress();
    m_views->animation->baseNumberSetPrograss(std::int32_t(progress.percent()));
    m_views->stripLabel->setText(
        progress.isWaiting ? tr("Waiting for another removal to end")
                           : tr("Removing %1").arg(QString::fromStdString(progress.current)));
    if (news.isMore) m_removal->callAgain();
    if (!news.ending) return;
    // It is the job's own call that is running, so that the job goes in a later turn.
    m_parts.mainQueue->async([ended = std::shared_ptr<RemovalJob>(std::move(m_removal))] {});
    m_removalList.reset();
    removalEnded(*news.ending);
}

void DiskUsageAppController::removalEnded(const RemovalOutcome& outcome) {
    m_outcome = outcome;
    m_reloadTimer.stop();
    settleStates(m_delNodesArr);
    m_delNodesArr.clear();
    m_views->browser->reload();
    m_views->changes->reload();
    Scanned& scanned = *current();
    scanned.hasEmptied = outcome.removed != 0;
    if (m_beforeSelectRow == 0)
        m_leftCellArr.front()->updateSize(bytesWords(scanned.shown->tree->root().size()));
    enter(State::Result);
    showFitting();
    showRemoved();
    const QWidget& basket = *m_views->trashBtn;
    showDisappearingEffect(*m_views->resultView,
                           basket.mapTo(m_views->resultView, basket.rect().center()));
    scanAgain(std::exchange(m_partly, {}));
    if (outcome.failed != 0)
        QTimer::singleShot(alertDelay, this, [this, outcome] { delayTimer(outcome); });
}

void DiskUsageAppController::showRemoved() {
    ResultFrame::showLine(*m_views->removedLine, removedText(m_outcome));
    ResultFrame::showLine(*m_views->failureLine, stayedText(m_outcome));
}

// The padlock is pointed at where it would help.
void DiskUsageAppController::delayTimer(const RemovalOutcome& outcome) {
    Alert alert = stayedAlert(outcome);
    if (outcome.lacksRights) {
        m_views->animation->startUnlockAnimation(m_views->lockButton);
        alert.title = tr("Some files that require admin access can't be removed!");
        alert.text.clear();
    }
    m_parts.dialogs->alert(m_mainWindow, alert, [self = QPointer(this)](int /*button*/) {
        if (self == nullptr) return;
        self->m_views->animation->stopUnlockAnimation(self->m_views->lockButton);
        self->m_views->lockButton->showRight();
    });
}

void DiskUsageAppController::showFailures() {
    showLineList(m_mainWindow, tr("Could not be removed"), linesByReason(m_outcome.stayed));
}

void DiskUsageAppController::giveUp() {
    if (isRemoving() || m_counting) stopBtnClick();
}

}  // namespace orrinvale
