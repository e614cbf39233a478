// MainViewController: the disk, and what the last clean recovered.
#include <QEvent>
#include <QStackedWidget>
#include <QVBoxLayout>

#include "engine/base/Log.h"
#include "engine/cleaning/CleanPageRows.h"
#include "engine/cleaning/ParseFileLog.h"
#include "engine/volumes/SpaceLevel.h"
#include "services/foundation/runAside.h"
#include "ui/cleaning/CleanViews.h"
#include "ui/cleaning/DiskRing.h"
#include "ui/cleaning/MainViewController.h"
#include "ui/cleaning/cleanWords.h"
#include "ui/kit/controls/numberText.h"
#include "ui/page/PageStack.h"
#include "ui/volumes/FreeSpacePage.h"
#include "ui/volumes/MyMacView.h"
#include "ui/volumes/levelNow.h"

namespace orrinvale {

void MainViewController::changeNoteText(std::int32_t row) {
    CleanViews& views = *m_views;
    const FigureSentence history = historySentence(m_history.size, m_history.date,
                                                   shownSize(totleString), shownSize(freeString));
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

// The disk may take its time, and others clean as well: `orrinvale-cli clean` writes it, too.
void MainViewController::readHistory() {
    runAside(
        this, "cleanHistory",
        [folder = m_parts.pages.stateFolder] {
            History history;
            history.size = ParseFileLog(folder).getSize(&history.date);
            return history;
        },
        [this, number = ++m_historyAsked](const History& history) {
            if (number != m_historyAsked) return;
            m_history = history;
            changeNoteText(selectRowNum);
        });
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
    if (isOnScreen) readHistory();
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
    if (m_myMacView == nullptr || m_myMacView->customView() == nullptr ||
        m_myMacView->level() != levelNow()) {
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
}

// The rows come first where there is little room; the sentence above tells of the disk as well.
void MainViewController::showCard() {
    if (m_myMacView == nullptr) return;
    constexpr int rows = 6;
    m_myMacView->setVisible(m_views->v3MainView->height() >=
                            CustomVolumView::cardHeight + rows * V3MainListView::leastHeight);
}

}  // namespace orrinvale
