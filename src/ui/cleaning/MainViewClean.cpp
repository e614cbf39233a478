// MainViewController: the clean. First the questions, then six removals, which take turns, and what
// they came to.
#include <QApplication>
#include <QPointer>
#include <QStackedWidget>
#include <algorithm>
#include <utility>

#include "engine/base/Log.h"
#include "engine/cleaning/ParseFileLog.h"
#include "platform/paths.h"
#include "services/foundation/runAside.h"
#include "ui/cleaning/CleanViews.h"
#include "ui/cleaning/MainViewController.h"
#include "ui/cleaning/ScanListModel.h"
#include "ui/cleaning/cleanWords.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/dialogs/removalWords.h"
#include "ui/page/Padlock.h"

namespace orrinvale {
namespace {

constexpr std::size_t downloads = 5;
constexpr unsigned everyCategory = 0b111111;
constexpr unsigned allButDownloads = 0b011111;
constexpr int cleanAlertDelay = 200;  // milliseconds from the end of a clean to its sheet

}  // namespace

// While a question stands nothing else begins.
void MainViewController::ask(const Alert& question, std::function<void(int button)> answered) {
    m_isAsking = true;
    m_parts.pages.dialogs->alert(
        m_mainWindow, question,
        [self = QPointer(this), answered = std::move(answered)](int button) {
            if (self == nullptr || !std::exchange(self->m_isAsking, false)) return;
            answered(button);
        });
}

// What is asked about is what goes, row by row: where it is another by the time of the answer,
// nothing goes.
void MainViewController::confirm(unsigned categories, bool isOne) {
    const CleanChoice asked = choice(categories);
    if (asked.sums.ticked == 0) return giveButtonsBack();
    std::size_t ticked = 0;
    for (std::size_t i = 0; i < m_sums.size(); ++i)
        if ((categories >> i & 1U) != 0) ticked += m_sums.at(i).ticked;
    ask(cleanQuestion(asked.sums, ticked - asked.sums.ticked),
        [this, categories, isOne, asked](int button) {
            if (button == 0 && choice(categories) == asked)
                return beginClean(asked, categories, isOne);
            giveButtonsBack();
            if (button == 0) m_parts.pages.dialogs->alert(m_mainWindow, changedAlert(), [](int) {});
        });
}

void MainViewController::giveButtonsBack() {
    m_views->customTableView->setIsCleanInfo(false);
    enter(State::Reviewing);
    const QPointer<QWidget> button = std::exchange(m_pressed, nullptr);
    if (button != nullptr && button->isEnabled()) button->setFocus(Qt::PopupFocusReason);
}

// The button goes off, and with it the keyboard would jump to the first row on the left.
void MainViewController::keepFocus() {
    QWidget* const focus = QApplication::focusWidget();
    m_pressed =
        focus == m_views->cleanButton || focus == m_views->oneListCleanButton ? focus : nullptr;
    // Nothing in it has a ring: nobody has gone there.
    if (m_pressed != nullptr) m_views->content->setFocus(Qt::OtherFocusReason);
}

void MainViewController::allCleanButtonActionInfo() {
    if (m_state != State::Reviewing || m_isAsking) return;
    keepFocus();
    m_views->cleanButton->setEnabled(false);
    m_views->backButton->setEnabled(false);
    m_views->customTableView->setIsCleanInfo(true);
    m_views->customTableView->setTotalSelectNum(0);
    if (m_shownSums.at(downloads).ticked > 0) return showAlertWindow();
    confirm(everyCategory, false);
}

void MainViewController::showAlertWindow() {
    Alert question = downloadsAlongQuestion();
    question.linkAction = [this] { openViewNewLink(); };
    ask(question, [this](int button) {
        if (button != 0 && button != 1) return giveButtonsBack();
        confirm(button == 0 ? everyCategory : allButDownloads, false);
    });
}

void MainViewController::openViewNewLink() const {
    const auto& rows = m_tableControllers.at(downloads)->scanFiles;
    if (m_parts.openFolder && rows && !rows->empty())
        m_parts.openFolder(folderOf(rows->front()->path));
}

void MainViewController::cleanButtonAction() {
    if (selectRowNum == 0) return cleanButtonActionInfo();
    if (selectRowNum <= std::ssize(m_tableControllers))
        oneScanAction(std::size_t(selectRowNum) - 1);
}

void MainViewController::oneScanAction(std::size_t category) {
    if (m_state != State::Reviewing || m_isAsking || category >= m_tableControllers.size()) return;
    keepFocus();
    mainViewOneCleanRow = static_cast<int>(category);
    const auto goOn = [this, category] { confirm(1U << category, true); };
    if (category != downloads) return goOn();
    Alert question = downloadsQuestion();
    question.linkAction = [this] { openViewNewLink(); };
    ask(question, [this, goOn](int button) {
        if (button == 0) goOn();
        else giveButtonsBack();
    });
}

// All share one gain, since they free what lies on the same disks.
void MainViewController::beginClean(const CleanChoice& choice, unsigned categories, bool isOne) {
    newRun(categories);
    m_run.promise(choice, m_parts.freeSpace);
    isOneCleanButton = isOne;
    isCleanFinshed = false;
    m_views->customTableView->setIsCleanInfo(true);
    m_views->customTableView->setTotalSelectNum(0);
    m_views->customTableView->setSelectTotalSize(choice.sums.bytes);
    enter(isOne ? State::CleaningOne : State::CleaningAll);
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        V3MainListView& row = *m_views->allNewViewArr.at(i);
        if (!isOne) row.setSizeStrLabelString({});
        if (!m_run.takesPart(i)) continue;
        ScanViewController& list = *m_tableControllers.at(i);
        bindScanview(list, i, true);
        CleanSums going;
        for (const auto& each : choice.rows.at(i)) going.add(*each);
        m_going.at(i) = going.bytes;
        list.beginCleanTask(choice.rows.at(i), m_run.gain());
        if (!choice.rows.at(i).empty()) row.minishPrograss();
    }
}

void MainViewController::cleanEnded(std::size_t category) {
    m_models.at(category)->setList(*m_tableControllers.at(category));
    if (!m_run.end(category)) return;
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        if (!m_run.takesPart(i)) continue;
        unbind(i);
        V3MainListView& row = *m_views->allNewViewArr.at(i);
        row.setAnimationFinish();
        row.setSizeStrLabelString(sizeWords(m_tableControllers.at(i)->iCleanSize));
    }
    takeOutcome();
    leaveOutLate();
    listsChanged();
    enter(State::Reviewing);
    cleanShowSelectNumInBottomNotice.post(*m_parts.pages.notifications, {});
    setHiddenCheckBoxAction();
    showShares();
    if (std::exchange(isOneCleanButton, false)) oneCleanEnded();
    else allCleansEnded();
    isCleanFinshed = true;
}

void MainViewController::takeOutcome() {
    m_outcome = m_run.outcome();
    for (const ScanViewController* const list : m_run.lists()) {
        m_cleaned.reserve(m_cleaned.size() + list->cleanedRows().size());
        m_cleaned.insert(list->cleanedRows().begin(), list->cleanedRows().end());
    }
    const auto stayed = static_cast<int>(
        std::max<std::uint64_t>(m_outcome.stayed.size(), m_outcome.failedEntries + m_outcome.kept));
    ResultFrame::showLine(*m_views->failureLine, stayed == 0 ? QString()
                                                 : stayed == 1
                                                     ? tr("1 entry stayed")
                                                     : tr("%Ln entries stayed", nullptr, stayed));
}

// What went is what was counted on the way: rows that a rule keeps by now have left the list too,
// and were not cleaned.
void MainViewController::oneCleanEnded() {
    const ScanViewController& list = *m_run.lists().front();
    showRow();
    showKept();
    changeStateTextFeild(list.iCleanSize);
    settle(list.iCleanSize);
    if (!list.selDelFiles.empty()) showAlertForPrivilegesToClean();
}

void MainViewController::allCleansEnded() {
    constexpr std::int32_t finished = 101;
    m_views->customTableView->setTotalSelectNum(finished);
    std::size_t left = 0;
    for (const ScanViewController* const list : m_run.lists())
        if (list != m_tableControllers.at(downloads).get()) left += list->selDelFiles.size();
    isShowCleanedSize = true;
    showCleanedSize = m_run.cleanedBytes();
    showRow();
    showKept();
    changeStateTextFeild(showCleanedSize);
    settle(showCleanedSize);
    if (left == 0) cleanSuccessBtnShowStyle();
    else QTimer::singleShot(cleanAlertDelay, this, [this] { showAlertForPrivilegesToClean(); });
}

// The record is on the disk before the program may end.
void MainViewController::settle(std::uint64_t bytes) {
    if (bytes == 0) return;
    const auto saving = runAside(
        this, "cleanRecord",
        [bytes, folder = m_parts.pages.stateFolder] {
            if (!ParseFileLog(folder).setSize(bytes, FileLog().date.value()))
                Log::line("The last clean could not be noted.");
        },
        [this] {
            --m_saving;
            readHistory();
        });
    if (saving != nullptr) ++m_saving;
    measureGain();
}

// Disks may take their time; by then another run may have begun.
void MainViewController::measureGain() {
    runAside(
        this, "cleanGain", [gain = m_run.gain()] { return gain->gained(); },
        [this, number = m_runNumber,
         promised = m_run.promised()](std::optional<std::int64_t> gained) {
            if (number != m_runNumber) return;
            ResultFrame::showLine(*m_views->gainLabel, gainedWords(gained));
            m_gainReason = lessThanPromised(gained, promised);
            m_views->gainLabel->setToolTip(m_gainReason);
            m_views->gainReason->setAccessibleDescription(m_gainReason);
            m_views->gainReason->setVisible(!m_gainReason.isEmpty());
            showKept();
        });
}

void MainViewController::showGainReason() {
    Alert alert;
    alert.title = m_views->gainLabel->text();
    alert.text = m_gainReason;
    m_parts.pages.dialogs->alert(m_mainWindow, alert, [](int /*button*/) {});
}

// The padlock is pointed at where it would help.
void MainViewController::showAlertForPrivilegesToClean() {
    if (m_outcome.failed == 0 || m_outcome.stopped || m_isAsking || m_state != State::Reviewing)
        return;
    const Alert alert = m_outcome.lacksRights ? privilegesAlert() : stayedAlert(m_outcome);
    if (m_outcome.lacksRights) m_blinking.startUnlockAnimation(m_views->lockButton);
    m_parts.pages.dialogs->alert(m_mainWindow, alert, [self = QPointer(this)](int /*button*/) {
        if (self == nullptr) return;
        self->m_blinking.stopUnlockAnimation(self->m_views->lockButton);
        self->m_views->lockButton->showRight();
    });
}

void MainViewController::showFailures() {
    QStringList lines = linesByReason(m_outcome.stayed);
    const std::uint64_t all = m_outcome.failedEntries + m_outcome.kept;
    if (all > m_outcome.stayed.size())
        lines.push_back(tr("and %Ln more", nullptr, int(all - m_outcome.stayed.size())));
    showLineList(m_mainWindow, tr("What stayed"), lines);
}

}  // namespace orrinvale
