// MainViewController: the clean. First the questions, then six removals, which take turns, and what
// they came to.
#include <QPointer>
#include <algorithm>
#include <set>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/saturating.h"
#include "engine/cleaning/ParseFileLog.h"
#include "engine/text/UtilityFunction.h"
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
constexpr int alertDelay = 200;  // milliseconds from the end of a clean to its sheet

}  // namespace

CleanSums MainViewController::sums(std::size_t from, std::size_t to) const {
    CleanSums all;
    for (std::size_t i = from; i < to; ++i) all += sumsOf(*m_tableControllers.at(i));
    return all;
}

// While a question stands nothing else begins. What is asked about is what goes: where it is
// another by the time of the answer, nothing goes.
void MainViewController::ask(const Alert& question, std::function<void(int button)> answered) {
    m_isAsking = true;
    m_parts.pages.dialogs->alert(
        m_mainWindow, question,
        [self = QPointer(this), answered = std::move(answered)](int button) {
            if (self == nullptr || !std::exchange(self->m_isAsking, false)) return;
            answered(button);
        });
}

void MainViewController::confirm(std::size_t from, std::size_t to, std::function<void()> go) {
    const CleanSums asked = sums(from, to);
    if (asked.ticked == 0) return giveButtonsBack();
    ask(cleanQuestion(asked), [this, from, to, asked, go = std::move(go)](int button) {
        if (button == 0 && sums(from, to) == asked) go();
        else giveButtonsBack();
    });
}

void MainViewController::giveButtonsBack() {
    m_views->customTableView->setIsCleanInfo(false);
    finishScanCount = 0;
    m_scanObjsArr.clear();
    enter(State::Reviewing);
}

void MainViewController::allCleanButtonActionInfo() {
    if (m_state != State::Reviewing || m_isAsking) return;
    m_sizeArr.clear();
    for (const V3MainListView* const row : m_views->allNewViewArr)
        m_sizeArr.push_back(row->sizeText());
    m_views->cleanButton->setEnabled(false);
    m_views->backButton->setEnabled(false);
    finishScanCount = 0;
    m_scanObjsArr.clear();
    m_views->customTableView->setIsCleanInfo(true);
    m_views->customTableView->setTotalSelectNum(0);
    m_views->customTableView->setSelectTotalSize(allSelectTotalSize);
    if (sums(downloads, downloads + 1).ticked > 0) return showAlertWindow();
    confirm(0, m_tableControllers.size(), [this] { cleanAll(m_tableControllers.size()); });
}

void MainViewController::showAlertWindow() {
    Alert question = downloadsAlongQuestion();
    question.linkAction = [this] { openViewNewLink(); };
    ask(question, [this](int button) {
        if (button != 0 && button != 1) return giveButtonsBack();
        const std::size_t categories = button == 0 ? downloads + 1 : downloads;
        confirm(0, categories, [this, categories] { cleanAll(categories); });
    });
}

void MainViewController::openViewNewLink() const {
    const auto& rows = m_tableControllers.at(downloads)->scanFiles;
    if (m_parts.openFolder && rows && !rows->empty())
        m_parts.openFolder(folderOf(rows->front()->path));
}

// One for all, since they free what lies on the same disks.
std::shared_ptr<SpaceGain> MainViewController::makeGain(std::size_t from, std::size_t to) {
    std::set<std::string> folders;
    m_promised = 0;
    for (std::size_t i = from; i < to; ++i) {
        const ScanViewController& list = *m_tableControllers.at(i);
        if (!list.scanFiles) continue;
        const std::vector<CleanRow>& rows = list.listing().rows;
        std::string_view last;  // rows of one folder follow each other
        for (std::size_t row = 0; row < std::min(rows.size(), list.scanFiles->size()); ++row) {
            if (!(*list.scanFiles)[row]->bIsSelected) continue;
            addSaturating(m_promised, rows[row].onDisk);
            const std::string_view folder = splitPath(rows[row].path).folder;
            if (std::exchange(last, folder) != folder) folders.insert(folderOf(rows[row].path));
        }
    }
    return std::make_shared<SpaceGain>(std::vector(folders.begin(), folders.end()),
                                       m_parts.freeSpace);
}

void MainViewController::cleanAll(std::size_t categories) {
    m_gain = makeGain(0, categories);
    m_views->customTableView->setSelectTotalSize(sums(0, categories).bytes);
    isCleanFinshed = false;
    for (V3MainListView* const row : m_views->allNewViewArr) row->setSizeStrLabelString({});
    enter(State::CleaningAll);
    for (std::size_t i = 0; i < categories; ++i) {
        ScanViewController& list = *m_tableControllers.at(i);
        isScaned = false;
        ++finishScanCount;
        bindScanview(list, i, true);
        m_scanObjsArr.push_back(&list);
        const bool hasTicked = sumsOf(list).ticked > 0;
        list.beginCleanTask(m_gain);
        if (hasTicked) m_views->allNewViewArr.at(i)->minishPrograss();
    }
}

void MainViewController::cleanButtonAction() {
    if (selectRowNum == 0) return cleanButtonActionInfo();
    if (selectRowNum <= std::ssize(m_tableControllers))
        oneScanAction(std::size_t(selectRowNum) - 1);
}

void MainViewController::oneScanAction(std::size_t category) {
    if (m_state != State::Reviewing || m_isAsking || category >= m_tableControllers.size()) return;
    mainViewOneCleanRow = static_cast<int>(category);
    const auto goOn = [this, category] {
        confirm(category, category + 1, [this] { oneScanButtonAction(); });
    };
    if (category != downloads) return goOn();
    Alert question = downloadsQuestion();
    question.linkAction = [this] { openViewNewLink(); };
    ask(question, [this, goOn](int button) {
        if (button == 0) goOn();
        else giveButtonsBack();
    });
}

void MainViewController::oneScanButtonAction() {
    const auto category = std::size_t(mainViewOneCleanRow);
    m_oneCleanScanCtr = m_tableControllers.at(category).get();
    m_gain = makeGain(category, category + 1);
    isCleanFinshed = false;
    isOneCleanButton = true;
    V3MainListView& row = *m_views->allNewViewArr.at(category);
    m_scanObjsArr = {m_oneCleanScanCtr};
    m_views->customTableView->setIsCleanInfo(true);
    m_views->customTableView->setTotalSelectNum(0);
    m_views->customTableView->setSelectTotalSize(sumsOf(*m_oneCleanScanCtr).bytes);
    enter(State::CleaningOne);
    bindScanview(*m_oneCleanScanCtr, category, true);
    m_oneCleanScanCtr->beginCleanTask(m_gain);
    row.minishPrograss();
}

void MainViewController::cleanEnded(std::size_t category) {
    m_models.at(category)->setList(*m_tableControllers.at(category));
    if (isOneCleanButton) return oneCleanEnded();
    if (finishScanCount > 0 && --finishScanCount == 0) allCleansEnded();
}

void MainViewController::takeOutcomes(const std::vector<std::size_t>& categories) {
    m_outcome = {};
    for (const std::size_t category : categories) {
        const ScanViewController& list = *m_tableControllers.at(category);
        m_cleaned.insert(list.cleanedRows().begin(), list.cleanedRows().end());
        if (!list.lastOutcome()) continue;
        const RemovalOutcome& each = *list.lastOutcome();
        m_outcome.removed += each.removed;
        m_outcome.kept += each.kept;
        m_outcome.failed += each.failed;
        m_outcome.lacksRights = m_outcome.lacksRights || each.lacksRights;
        m_outcome.stopped = m_outcome.stopped || each.stopped;
        m_outcome.stayed.insert(m_outcome.stayed.end(), each.stayed.begin(), each.stayed.end());
    }
    const auto stayed = static_cast<int>(m_outcome.stayed.size());
    ResultFrame::showLine(*m_views->failureLine, stayed == 0 ? QString()
                                                 : stayed == 1
                                                     ? tr("1 entry stayed")
                                                     : tr("%Ln entries stayed", nullptr, stayed));
}

// What went is what was counted on the way: rows that a rule keeps by now have left the list too,
// and were not cleaned.
void MainViewController::oneCleanEnded() {
    const auto category = std::size_t(mainViewOneCleanRow);
    ScanViewController& list = *m_oneCleanScanCtr;
    V3MainListView& row = *m_views->allNewViewArr.at(category);
    unbind(category);
    isOneCleanButton = false;
    row.setAnimationFinish();
    takeOutcomes({category});
    listsChanged();
    enter(State::Reviewing);
    cleanShowSelectNumInBottomNotice.post(*m_parts.pages.notifications, {});
    setHiddenCheckBoxAction();
    showShares();
    row.setSizeStrLabelString(sizeWords(list.iCleanSize));
    showRow();
    showKept();
    changeStateTextFeild(list.iCleanSize);
    settle(list.iCleanSize);
    list.getSelectPath({});
    if (!list.selDelFiles.empty()) showAlertForPrivilegesToClean();
    isCleanFinshed = true;
}

void MainViewController::allCleansEnded() {
    constexpr std::int32_t finished = 101;
    m_views->customTableView->setTotalSelectNum(finished);
    std::vector<std::size_t> categories;
    std::size_t left = 0;
    m_allCleanedSize = 0;
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        ScanViewController& list = *m_tableControllers.at(i);
        unbind(i);
        list.getSelectPath({});
        if (i != downloads) left += list.selDelFiles.size();
        if (std::ranges::find(m_scanObjsArr, &list) == m_scanObjsArr.end()) continue;
        categories.push_back(i);
        m_views->allNewViewArr.at(i)->setAnimationFinish();
        m_views->allNewViewArr.at(i)->setSizeStrLabelString(sizeWords(list.iCleanSize));
        addSaturating(m_allCleanedSize, list.iCleanSize);
    }
    takeOutcomes(categories);
    listsChanged();
    enter(State::Reviewing);
    cleanShowSelectNumInBottomNotice.post(*m_parts.pages.notifications, {});
    setHiddenCheckBoxAction();
    showShares();
    isShowCleanedSize = true;
    showCleanedSize = std::exchange(m_allCleanedSize, 0);
    m_sizeArr.clear();
    showRow();
    showKept();
    changeStateTextFeild(showCleanedSize);
    settle(showCleanedSize);
    if (left == 0) cleanSuccessBtnShowStyle();
    else QTimer::singleShot(alertDelay, this, [this] { showAlertForPrivilegesToClean(); });
    isCleanFinshed = true;
}

// The record and the free space are asked of disks that may take their time.
void MainViewController::settle(std::uint64_t bytes) {
    ResultFrame::showLine(*m_views->gainLabel, {});
    const int number = ++m_settled;
    if (bytes == 0) return;
    runAside(
        this, "cleanEnd",
        [gain = m_gain, bytes, folder = m_parts.pages.stateFolder] {
            if (!ParseFileLog(folder).setSize(bytes, FileLog().date.value()))
                Log::line("The last clean could not be noted.");
            return gain->gained();
        },
        [this, number](std::optional<std::int64_t> gained) {
            if (number != m_settled) return;
            ResultFrame::showLine(*m_views->gainLabel, gainedWords(gained));
            m_views->gainLabel->setToolTip(lessThanPromised(gained, m_promised));
            changeNoteText(selectRowNum);
        });
}

// The padlock is pointed at where it would help.
void MainViewController::showAlertForPrivilegesToClean() {
    if (m_outcome.failed == 0 || m_outcome.stopped || m_isAsking) return;
    const Alert alert = m_outcome.lacksRights ? privilegesAlert() : stayedAlert(m_outcome);
    if (m_outcome.lacksRights) m_blinking.startUnlockAnimation(m_views->lockButton);
    m_parts.pages.dialogs->alert(m_mainWindow, alert, [self = QPointer(this)](int /*button*/) {
        if (self == nullptr) return;
        self->m_blinking.stopUnlockAnimation(self->m_views->lockButton);
        self->m_views->lockButton->showRight();
    });
}

void MainViewController::showFailures() {
    showLineList(m_mainWindow, tr("What stayed"), linesByReason(m_outcome.stayed));
}

}  // namespace orrinvale
