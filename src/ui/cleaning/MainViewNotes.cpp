// MainViewController: titles, sentences, buttons, and what stands on the right.
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>
#include <algorithm>
#include <span>

#include "engine/base/Log.h"
#include "engine/cleaning/CleanPageRows.h"
#include "ui/cleaning/CleanViews.h"
#include "ui/cleaning/DiskRing.h"
#include "ui/cleaning/MainViewController.h"
#include "ui/cleaning/ScanListView.h"
#include "ui/cleaning/V3MainListView.h"
#include "ui/cleaning/cleanWords.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/page/PageStack.h"

namespace orrinvale {
namespace {

constexpr int waitsThatLast = 3;  // of the progress timer

// A tidy disk is one that was looked through to the end.
QString emptyPicture(std::span<ScanViewController* const> lists) {
    if (std::ranges::any_of(
            lists, [](const auto* list) { return list->wasStopped() || !list->scanFiles; }))
        return QStringLiteral("empty_search");
    const bool isAllLookedAt =
        std::ranges::all_of(lists, [](const auto* list) { return list->listing().closed.empty(); });
    return isAllLookedAt ? QStringLiteral("empty_done") : QStringLiteral("empty_error");
}

}  // namespace

std::vector<ShownListing> MainViewController::shownListings() const {
    std::vector<ShownListing> listings;
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i)
        if (selectRowNum == overviewRow || selectRowNum == int(i) + 1)
            listings.push_back({cleanRowTitle(int(i) + 1), &m_tableControllers.at(i)->listing()});
    return listings;
}

void MainViewController::showSelection() {
    if (isFirstComeIn) {
        m_views->stateTextField->hide();
        return;
    }
    const FigureSentence shown = selectedSentence(shownSums());
    m_views->stateTextField->showSentence(shown.pattern, shown.figures);
    m_views->stateTextField->setVisible(m_state == State::Reviewing &&
                                        selectRowNum != freeSpaceRow && shownSums().rows > 0);
}

void MainViewController::changeStateTextFeild(std::uint64_t bytes) {
    const FigureSentence shown = cleanedSentence(bytes);
    m_views->stateTextField->showSentence(shown.pattern, shown.figures);
    m_views->stateTextField->show();
}

void MainViewController::showCleanButton(TextImageButton& button, const CleanSums& sums) const {
    const bool isOn = m_state == State::Reviewing && sums.ticked > 0;
    button.setText(sums.ticked > 0 ? tr("Clean %1").arg(sizeWords(sums.bytes)) : tr("Clean"));
    button.setEnabled(isOn && !m_isAsking);
    button.setToolTip(isOn ? QString() : tr("Tick first what is to go"));
}

void MainViewController::setCleanButtonState() {
    const bool isIdle = m_state == State::Reviewing;
    const bool isOverview = selectRowNum == overviewRow;
    const bool isList = isCategoryRow(selectRowNum);
    m_views->cleanButton->setVisible(isOverview && isIdle);
    m_views->oneListCleanButton->setVisible(isList && isIdle);
    // Shown by who knows what it is to say.
    if (!isIdle || isFirstComeIn || !(isOverview || isList)) m_views->stateTextField->hide();
    if (isOverview) showCleanButton(*m_views->cleanButton, shownSums());
    if (!isList) return;
    showCleanButton(*m_views->oneListCleanButton, shownSums());
    showSelection();
}

void MainViewController::showKept() {
    const KeptWords kept = m_state == State::Reviewing ? keptWords(shownListings()) : KeptWords();
    ResultFrame::showLine(*m_views->quietLine, kept.count);
    // Beside what was gained there is no room for it.
    ResultFrame::showLine(*m_views->keptReason,
                          m_views->gainLabel->isHidden() ? kept.because : QString());
    m_views->keptReason->setToolTip(kept.because);
    m_views->quietLine->setToolTip(kept.because);
    m_views->quietLine->setAccessibleDescription(kept.because);
}

void MainViewController::showKeptLines() {
    showLineList(m_mainWindow, tr("What is kept, and why"), keptLines(shownListings()));
}

QString MainViewController::titleText() const {
    const QString found = sizeWords(foundBytes());
    switch (m_state) {
        case State::Fresh: return tr("Nothing has been looked through yet");
        case State::Scanning: return tr("Looking for what can go: %1 so far").arg(found);
        case State::Stopping: return tr("Stopping");
        case State::CleaningAll:
        case State::CleaningOne: {
            const QString inHand = onOneLine(QString::fromStdString(m_run.current()));
            if (m_waits >= waitsThatLast) return tr("Waiting for another removal to end");
            if (!inHand.isEmpty()) return tr("Removing %1").arg(inHand);
            return tr("Removing what was ticked");
        }
        case State::Reviewing: break;
    }
    if (selectRowNum != overviewRow) return cleanRowTitle(selectRowNum);
    const auto categories =
        static_cast<int>(std::ranges::count_if(m_tableControllers, [](const auto& each) {
            return each->scanFiles && !each->scanFiles->empty();
        }));
    const bool isStopped = std::ranges::any_of(m_tableControllers,
                                               [](const auto& each) { return each->wasStopped(); });
    if (categories == 0)
        return isStopped ? tr("Stopped before its end: there may be more") : tr("Nothing can go");
    if (isStopped) return tr("%1 found before the scan was stopped").arg(found);
    return (categories == 1 ? tr("%1 in one category can go")
                            : tr("%1 in %n categories can go", nullptr, categories))
        .arg(found);
}

void MainViewController::showTitle() {
    m_views->titleLabel->setText(titleText());
    if (isCleaning()) {
        m_views->customTableView->setCleanedSize(m_run.cleanedBytes());
        m_views->totalProgress->changeProgressValue(
            static_cast<float>(m_views->customTableView->cleanedPercent()));
    }
    m_views->diskRing->setCleanable(m_state == State::Reviewing ? foundBytes() : 0);
    m_views->startHeading->setText(m_state == State::Reviewing ? titleText()
                                                               : tr("See what can go"));
}

// Between two of our own lists there is a moment of waiting, too.
void MainViewController::showProgress() {
    m_waits = m_run.isWaiting() ? m_waits + 1 : 0;
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i)
        if (m_run.takesPart(i))
            m_views->allNewViewArr.at(i)->showCleaned(m_tableControllers.at(i)->iCleanSize,
                                                      m_going.at(i));
    showTitle();
}

void MainViewController::shouldSelectRow(std::int32_t row) {
    Log::line("row :" + std::to_string(row));
    if (row < 0 || row >= std::ssize(cleanPageRows) || row == utilitiesRow || row == uninstallRow)
        return;
    selectRowNum = row;
    m_views->customTableView->select(row);
    if (row != overviewRow) m_stack->showView(m_views->resultView);
    if (isCategoryRow(row)) displayTableController(std::size_t(row) - 1);
    showRow();
    setCleanButtonState();
    showKept();
    if (row == overviewRow && isShowCleanedSize) changeStateTextFeild(showCleanedSize);
    else showSelection();
}

void MainViewController::displayTableController(std::size_t category) {
    static_cast<void>(m_tableControllers.at(category));
    m_views->content->setCurrentWidget(m_views->lists.at(category));
}

void MainViewController::showRow() {
    CleanViews& views = *m_views;
    views.rightImageView->setPicture(
        QString::fromStdString(std::string(cleanPageRows.at(std::size_t(selectRowNum)).image)));
    views.noteBar->setVisible(selectRowNum != freeSpaceRow);
    showTitle();
    changeNoteText(selectRowNum);
    if (selectRowNum == freeSpaceRow) showDiskPage();
    else showContent();
    showFilter();
    rowShown();
}

// The list, or words in its place where there is nothing to list.
void MainViewController::showContent() {
    CleanViews& views = *m_views;
    views.emptyLabel->setText(emptyWords(selectRowNum));
    const auto all = lists();
    const bool isOverview = selectRowNum == overviewRow;
    const std::size_t first = isOverview ? 0 : std::size_t(selectRowNum) - 1;
    views.emptyView->findChild<PictureView*>()->setPicture(
        emptyPicture(std::span(all).subspan(first, isOverview ? all.size() : 1)));
    if (selectRowNum == overviewRow) {
        const bool isEmpty = m_state == State::Reviewing && isCleanFinshed && !isShowCleanedSize &&
                             std::ranges::all_of(m_sums, [](const auto& s) { return s.rows == 0; });
        views.content->setCurrentWidget(isEmpty ? views.emptyView : overview());
        return;
    }
    const auto category = std::size_t(selectRowNum) - 1;
    const auto& rows = m_tableControllers.at(category)->scanFiles;
    if (rows && !rows->empty()) displayTableController(category);
    else views.content->setCurrentWidget(views.emptyView);
}

// What nobody has looked at to the end is not tidy.
QString MainViewController::emptyWords(int row) const {
    if (isFirstComeIn) return tr("Scan first, to see what can go.");
    bool isStopped = false;
    std::string objection;
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i) {
        if (row != overviewRow && row != int(i) + 1) continue;
        const ScanViewController& list = *m_tableControllers.at(i);
        isStopped = isStopped || list.wasStopped();
        if (!list.listing().closed.empty()) objection = list.listing().closed.front().reason;
    }
    if (row == overviewRow) {
        if (isStopped) return tr("The scan was stopped before its end. There may be more.");
        return objection.empty()
                   ? tr("Nothing can go. Your disk is tidy.")
                   : tr("Nothing was found that can go, but not everything could be looked at.");
    }
    const QString title = cleanRowTitle(row);
    if (m_tableControllers.at(std::size_t(row) - 1)->isScanning())
        return tr("%1: looking ...").arg(title);
    if (!objection.empty()) return tr("%1 was left alone: %2.").arg(title, inWords(objection));
    if (isStopped) return tr("%1: the scan was stopped before its end.").arg(title);
    return tr("Nothing in %1 can go.").arg(title);
}

// Where there are names to filter. What nobody sees hides no rows.
void MainViewController::showFilter() {
    const QWidget* const shown = m_views->content->currentWidget();
    const bool hasNames = m_state == State::Reviewing && shown != m_views->v3MainView &&
                          shown != m_views->emptyView && shown != m_views->diskSizePlace;
    if (!hasNames) m_views->filterField->clear();
    m_views->filterField->setVisible(hasNames);
}

}  // namespace orrinvale
