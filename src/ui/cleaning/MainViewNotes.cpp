// MainViewController: titles, sentences, buttons, and the figures of the disk.
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "engine/base/Log.h"
#include "engine/cleaning/CleanPageRows.h"
#include "engine/cleaning/ParseFileLog.h"
#include "engine/volumes/SpaceLevel.h"
#include "ui/cleaning/CleanViews.h"
#include "ui/cleaning/DiskRing.h"
#include "ui/cleaning/MainViewController.h"
#include "ui/cleaning/ScanListView.h"
#include "ui/cleaning/cleanWords.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/QnProgressView.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/page/PageStack.h"
#include "ui/volumes/FreeSpacePage.h"
#include "ui/volumes/MyMacView.h"

namespace orrinvale {

std::vector<const CategoryListing*> MainViewController::shownListings() const {
    std::vector<const CategoryListing*> listings;
    for (std::size_t i = 0; i < m_tableControllers.size(); ++i)
        if (selectRowNum == overviewRow || selectRowNum == int(i) + 1)
            listings.push_back(&m_tableControllers.at(i)->listing());
    return listings;
}

CleanSums MainViewController::shownSums() const {
    if (isCategoryRow(selectRowNum))
        return sumsOf(*m_tableControllers.at(std::size_t(selectRowNum) - 1));
    return sums(0, m_tableControllers.size());
}

void MainViewController::showSelection() {
    if (isFirstComeIn) {
        m_views->stateTextField->hide();
        return;
    }
    const FigureSentence shown = selectedSentence(shownSums());
    m_views->stateTextField->showSentence(shown.pattern, shown.figures);
    m_views->stateTextField->setVisible(m_state == State::Reviewing &&
                                        selectRowNum != freeSpaceRow);
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
    m_views->stateTextField->setVisible(isIdle && (isOverview || isList) && !isFirstComeIn);
    if (isOverview) showCleanButton(*m_views->cleanButton, shownSums());
    if (!isList) return;
    showCleanButton(*m_views->oneListCleanButton, shownSums());
    showSelection();
}

void MainViewController::showKept() {
    ResultFrame::showLine(*m_views->quietLine,
                          m_state == State::Reviewing ? keptWords(shownListings()) : QString());
}

void MainViewController::showKeptLines() {
    showLineList(m_mainWindow, tr("What is kept, and why"), keptLines(shownListings()));
}

QString MainViewController::titleText() const {
    const std::string found = m_views->customTableView->getTotalSize();
    switch (m_state) {
        case State::Fresh: return tr("Nothing has been looked through yet");
        case State::Scanning:
            return tr("Looking for what can go: %1 so far").arg(foundWords(found));
        case State::Stopping: return tr("Stopping");
        case State::CleaningAll:
        case State::CleaningOne: {
            for (const ScanViewController* const each : m_scanObjsArr) {
                const RemovalJob::Progress progress = each->cleanProgress();
                if (!each->isCleaning()) continue;
                if (progress.isWaiting) continue;
                if (!progress.current.empty())
                    return tr("Removing %1")
                        .arg(onOneLine(QString::fromStdString(progress.current)));
            }
            return tr("Removing what was ticked");
        }
        case State::Reviewing: break;
    }
    if (selectRowNum != overviewRow) return cleanRowTitle(selectRowNum);
    const auto categories =
        static_cast<int>(std::ranges::count_if(m_tableControllers, [](const auto& each) {
            return each->scanFiles && !each->scanFiles->empty();
        }));
    if (categories == 0) return tr("Nothing can go");
    return (categories == 1 ? tr("%1 in one category can go")
                            : tr("%1 in %n categories can go", nullptr, categories))
        .arg(foundWords(found));
}

void MainViewController::showTitle() {
    m_views->titleLabel->setText(titleText());
    if (isCleaning())
        m_views->totalProgress->changeProgressValue(
            static_cast<float>(m_views->customTableView->cleanedPercent()));
    m_views->diskRing->setCleanable(
        m_state == State::Reviewing ? m_views->customTableView->totalScanSize() : 0);
    m_views->startHeading->setText(m_state == State::Reviewing ? titleText()
                                                               : tr("See what can go"));
}

void MainViewController::showProgress() { showTitle(); }

void MainViewController::shouldSelectRow(std::int32_t row) {
    Log::line("row :" + std::to_string(row));
    if (row < 0 || row >= std::ssize(cleanPageRows) || row == utilitiesRow || row == uninstallRow)
        return;
    selectRowNum = row;
    m_views->customTableView->select(row);
    if (row != overviewRow) m_stack->showView(m_views->resultView);
    if (isCategoryRow(row)) displayTableController(std::size_t(row) - 1);
    showRow();
    changeNoteText(row);
    setCleanButtonState();
    showKept();
    if (row == overviewRow && isShowCleanedSize) changeStateTextFeild(showCleanedSize);
    else showSelection();
}

void MainViewController::displayTableController(std::size_t category) {
    static_cast<void>(m_tableControllers.at(category));
    m_views->content->setCurrentWidget(m_views->lists.at(category));
}

// The list, or words in its place where there is nothing to list.
void MainViewController::showRow() {
    CleanViews& views = *m_views;
    const bool isWorking = !isFree() && !m_isAsking;
    views.rightImageView->setPicture(
        QString::fromStdString(std::string(cleanPageRows.at(std::size_t(selectRowNum)).image)));
    views.noteBar->setVisible(selectRowNum != freeSpaceRow);
    showTitle();
    if (selectRowNum == freeSpaceRow) return showDiskPage();
    if (selectRowNum == overviewRow) {
        const bool isEmpty = m_state == State::Reviewing && isCleanFinshed && !isShowCleanedSize &&
                             sums(0, m_tableControllers.size()).rows == 0;
        views.emptyLabel->setText(tr("Nothing can go. Your disk is tidy."));
        views.content->setCurrentWidget(isEmpty ? views.emptyView : overview());
        return showFilter();
    }
    const auto category = std::size_t(selectRowNum) - 1;
    const auto& rows = m_tableControllers.at(category)->scanFiles;
    const QString title = cleanRowTitle(selectRowNum);
    views.emptyLabel->setText(isFirstComeIn ? tr("Scan first, to see what can go.")
                              : isWorking && !isCleaning()
                                  ? tr("%1: looking ...").arg(title)
                                  : tr("Nothing in %1 can go.").arg(title));
    if (rows && !rows->empty() && !(isWorking && !isCleaning())) displayTableController(category);
    else views.content->setCurrentWidget(views.emptyView);
    showFilter();
}

// Where there are names to filter.
void MainViewController::showFilter() {
    const QWidget* const shown = m_views->content->currentWidget();
    m_views->filterField->setVisible(m_state == State::Reviewing && shown != m_views->v3MainView &&
                                     shown != m_views->emptyView &&
                                     shown != m_views->diskSizePlace);
}

// The rows come first where there is little room; the sentence above tells of the disk as well.
void MainViewController::showCard() {
    if (m_myMacView == nullptr) return;
    constexpr int rows = 6;
    m_myMacView->setVisible(m_views->v3MainView->height() >=
                            CustomVolumView::cardHeight + rows * V3MainListView::leastHeight);
}

void MainViewController::changeNoteText(std::int32_t row) {
    CleanViews& views = *m_views;
    std::optional<Date> date;
    const std::uint64_t size = ParseFileLog(m_parts.pages.stateFolder).getSize(&date);
    const FigureSentence history =
        historySentence(size, date, shownSize(totleString), shownSize(freeString));
    views.startNote->showSentence(history.pattern, history.figures, true);
    if (row == overviewRow)
        return views.noteTextField->showSentence(history.pattern, history.figures, true);
    const QString words =
        row > 0 && row < std::ssize(cleanPageRows) ? cleanRowDescription(row) : QString();
    if (words.isEmpty()) return Log::line("请核对名字（KEY）是否与LocalSizeStr对应");
    constexpr int trash = 5;
    const QString more =
        row == trash ? trashWords(m_tableControllers.at(trash - 1)->listing()) : QString();
    views.noteTextField->showSentence(more.isEmpty() ? words : words + QLatin1Char(' ') + more, {});
}

// The notice has the total first.
void MainViewController::GetFreeTotleArr(const std::vector<std::string>& texts) {
    if (texts.size() < 2) return;
    totleString = texts[0];
    freeString = texts[1];
    if (selectRowNum == overviewRow) changeNoteText(overviewRow);
}

bool MainViewController::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_views->v3MainView) {
        if (event->type() == QEvent::Resize) showCard();
        return false;
    }
    if (event->type() == QEvent::Show) look(true);
    if (event->type() == QEvent::Hide) look(false);
    return QObject::eventFilter(watched, event);
}

void MainViewController::look(bool isOnScreen) {
    m_looking.reset();
    m_views->customTableView->cell(uninstallRow)
        .setEnabled(m_parts.hasUninstall && m_parts.hasUninstall());
    if (!isOnScreen || m_parts.watch == nullptr) return;
    m_looking = m_parts.watch->observe(SystemWatch::Part::Volumes, [this](const SystemSight& seen) {
        m_seen = seen;
        showDisk();
    });
}

void MainViewController::showDisk() {
    const SeenVolume* const boot = bootVolume(m_seen.volumes);
    if (boot == nullptr) return;
    if (m_myMacView == nullptr || m_myMacView->customView() == nullptr) {
        delete m_myMacView;
        m_myMacView =
            new MyMacView([this] { return m_seen.volumes; }, *m_parts.pages.notifications, *this);
        m_views->myMacPlace->addWidget(m_myMacView);
        showCard();
    } else {
        m_myMacView->updateViewAndData();
    }
    const VolumeSpace space = spaceOf(*boot->record);
    m_views->diskRing->setDisk(space.total, space.free);
    if (freeString == boot->record->freeSpace && totleString == boot->record->totalSpace) return;
    GetFreeTotleArr({boot->record->totalSpace, boot->record->freeSpace});
}

void MainViewController::showDiskPage() {
    if (m_freeSpacePage == nullptr && m_parts.watch != nullptr && m_parts.ejections != nullptr) {
        m_freeSpacePage = std::make_unique<FreeSpacePage>(
            m_parts.pages, FreeSpaceParts{.watch = m_parts.watch, .ejections = m_parts.ejections});
        m_views->diskSizePlace->layout()->addWidget(m_freeSpacePage->view());
    }
    m_views->content->setCurrentWidget(m_views->diskSizePlace);
    showFilter();
}

}  // namespace orrinvale
