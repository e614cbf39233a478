// ListFileViewController: the removal of what is selected, the window over it, and what is told at
// its end.
#include <QLabel>
#include <QLocale>
#include <chrono>

#include "engine/largefiles/PublicUtilities.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/largefiles/FileNodeModel.h"
#include "ui/largefiles/LargestFilesDesk.h"
#include "ui/largefiles/ListFileViewController.h"
#include "ui/largefiles/ListFileViews.h"
#include "ui/largefiles/NewOutlineView.h"

namespace orrinvale {
namespace {

// The question has slid away before the next window comes.
constexpr std::chrono::milliseconds beforeRemoval{500};

// Nodes below folders that are looked at before the question, in some milliseconds.
constexpr std::size_t linkedLooks = 100'000;

QString tickedSize(std::uint64_t bytes) {
    return shownSize(PublicUtilities::byteToSizeWithByte(bytes));
}

// With a place for the size.
QString goingWords(const TickedTotals& ticked) {
    const auto folders = static_cast<int>(ticked.folders);
    const auto files = static_cast<int>(ticked.nodes - ticked.folders);
    const QString folderWords =
        folders == 1
            ? ListFileViewController::tr("1 folder with all that is in it")
            : ListFileViewController::tr("%Ln folders with all that is in them", nullptr, folders);
    if (files == 0)
        return folders == 1 ? ListFileViewController::tr("%1, %2, goes for good.").arg(folderWords)
                            : ListFileViewController::tr("%1, %2, go for good.").arg(folderWords);
    const QString fileWords = files == 1 ? ListFileViewController::tr("1 file")
                                         : ListFileViewController::tr("%Ln files", nullptr, files);
    if (folders != 0)
        return ListFileViewController::tr("%1 and %2, %3 in all, go for good.")
            .arg(fileWords, folderWords);
    return files == 1 ? ListFileViewController::tr("%1, %2, goes for good.").arg(fileWords)
                      : ListFileViewController::tr("%1, %2, go for good.").arg(fileWords);
}

}  // namespace

void ListFileViewController::deleteFiles() {
    if (!isFree()) return;
    Alert question = removalQuestion();
    question.text = consequences().join(QLatin1Char('\n'));
    // What a later scan shows was not asked about.
    m_parts.dialogs->alert(
        m_mainWindow, question,
        [self = QPointer(this), asked = std::weak_ptr(m_rootNodeArr)](int button) {
            if (self != nullptr && self->m_rootNodeArr == asked.lock())
                self->alertEnded_code(button == 0 ? 1 : 0);
        });
}

// How much goes, and what of it the person does not see or does not get back.
QStringList ListFileViewController::consequences() const {
    const TickedTotals ticked = Controller::getController().ticked();
    QStringList lines{goingWords(ticked).arg(tickedSize(ticked.bytes))};
    m_files->finishCounting();
    const std::uint64_t elsewhere = tickedElsewhere(ticked.bytes);
    if (elsewhere != 0)
        lines << tr("%1 of it is not in the list that you see.").arg(tickedSize(elsewhere));
    const auto linked = static_cast<int>(ticked.linked);
    if (linked == 1)
        lines << tr("1 of the files has other names, and frees nothing while one of them is left.");
    else if (linked > 1)
        lines << tr(
            "%Ln of the files have other names, and free nothing while one of them is left.",
            nullptr, linked);
    if (Controller::getController().mayHoldLinked(linkedLooks))
        lines << tr(
            "What lies in folders and has other names elsewhere frees nothing while one of "
            "them is left.");
    return lines;
}

void ListFileViewController::alertEnded_code(int code) {
    if (code != 1 || !isFree() || !m_rootNodeArr) return;
    // What was selected when the person agreed is what goes: until then no box and no other folder.
    enter(State::Removing);
    m_removalDelay.start(beforeRemoval);
}

void ListFileViewController::giveUp() {
    if (m_removalDelay.isActive()) {
        m_removalDelay.stop();
        enter(State::Result);
    }
    stopRemove();
}

void ListFileViewController::doRemoveAction() {
    m_removal = {};
    m_views->removedLine->hide();
    m_views->failureLine->hide();
    if (!Controller::getController().deleteFilesWithDic()) {
        enter(State::Result);
        return;
    }
    m_progress = new ProgressWindowController(m_mainWindow, *this);
    m_progress->show();
}

void ListFileViewController::changeProgressWithPoint(std::int32_t percent,
                                                     const std::string& path) {
    if (m_progress != nullptr) m_progress->changeProgressValue(percent, path);
}

void ListFileViewController::stopRemove() { Controller::getController().stopRemove(); }

void ListFileViewController::removalEnded(const LargeFileRemoval& removal) {
    enter(State::Result);
    m_removal = removal;
    showRemoved();
    ResultFrame::showLine(*m_views->failureLine,
                          removal.failed == 0 ? QString()
                          : removal.failed == 1
                              ? tr("1 could not be removed; a new scan will show it again")
                              : tr("%1 could not be removed; a new scan will show them again")
                                    .arg(QLocale().toString(qulonglong(removal.failed))));
    refreshList();
    m_files->settle();
    shownOutline().setFocus();
}

void ListFileViewController::showRemoved() {
    const bool isAny = m_removal.stopped || m_removal.removed != 0 || m_removal.bytes != 0;
    const QString count = QLocale().toString(qulonglong(m_removal.removed));
    const QString size =
        QString::fromStdString(PublicUtilities::byteToSizeWithByte(m_removal.bytes));
    const QString said = m_removal.stopped ? tr("Stopped: %1 removed, %2") : tr("%1 removed, %2");
    ResultFrame::showLine(*m_views->removedLine, isAny ? said.arg(count, size) : QString());
}

void ListFileViewController::showFailures() {
    QStringList lines = linesByReason(m_removal.failures);
    if (m_removal.failedEntries > m_removal.failures.size())
        lines.push_back(
            tr("and %1 more")
                .arg(QLocale().toString(m_removal.failedEntries - m_removal.failures.size())));
    showLineList(m_mainWindow, tr("Could not be removed"), lines);
}

}  // namespace orrinvale
