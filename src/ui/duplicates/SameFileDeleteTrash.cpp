// SameFileDeleteViewController: the two ways out, what is said before one is gone, and the way back
// from the trash. What came back is not put into the list: its times of change are new, and what
// the search knew of it holds no more, so that a new search is offered.
#include <QEvent>
#include <QLabel>
#include <QLocale>
#include <QStackedWidget>
#include <algorithm>

#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "ui/duplicates/PageRemoval.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/duplicates/entryWords.h"
#include "ui/duplicates/shareWords.h"
#include "ui/duplicates/trashWords.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/dialogs/removalWords.h"

namespace orrinvale {

// What the buttons say is what they do, also where the setting has changed since.
void SameFileDeleteViewController::showWays() {
    m_isTrashFirst = m_parts.defaults->boolForKey(trashFirstKey);
    const TickedSums& sums = m_selection.sums();
    const QString gain = shownSize(UtilityFunction::convertVolSpace(sums.bytes));
    const QString count = QLocale().toString(qulonglong(sums.copies));
    TextImageButton& first = *m_views->stopBtn;
    const QString name = m_isTrashFirst ? tr("Move to Trash") : tr("Remove");
    first.setRole(m_isTrashFirst ? TextImageButton::Role::Primary : TextImageButton::Role::Danger);
    if (sums.copies == 0) first.setText(name);
    else if (sums.bytes == 0)
        first.setText((m_isTrashFirst ? tr("Move %1 to Trash") : tr("Remove %1")).arg(count));
    else
        first.setText(
            (m_isTrashFirst ? tr("Move %1 to Trash \u00B7 %2") : tr("Remove %1 \u00B7 %2"))
                .arg(count, gain));
    first.setAccessibleName(name);  // its text counts
    first.setAccessibleDescription(sums.copies == 0 ? QString()
                                                    : count + u", " + m_views->gainLabel->text());
    first.setToolTip(m_isTrashFirst ? tr("Move selected files to the trash")
                                    : tr("Remove selected file"));
    // Where nothing is ticked the bottom line needs the room for what went.
    m_views->otherWayBtn->setEnabled(bSearchFinished());
    m_views->otherWayBtn->setVisible(bSearchFinished() &&
                                     (sums.copies != 0 || m_views->removedLine->isHidden()));
}

void SameFileDeleteViewController::removeBtnClicked() { ask(m_isTrashFirst); }

void SameFileDeleteViewController::ask(bool isToTrash) {
    if (!bSearchFinished()) return;
    finishTicks();
    if (m_selection.allSelectNumArr().empty()) return;
    // What was ticked when the person confirms is what goes.
    // Not what a later search may have put in its place.
    m_parts.dialogs->alert(m_mainWindow, questionAboutTicked(isToTrash),
                           [self = QPointer(this), asked = m_duplicateOpt, isToTrash](int button) {
                               if (self == nullptr || self->m_duplicateOpt != asked) return;
                               constexpr int toTrashInstead = 2;
                               if (isToTrash ? button == 0 : button == toTrashInstead)
                                   self->agree(true);
                               else self->alertEnded_aContext(button == 0 ? 1 : 0);
                           });
}

// What is said of both ways.
QStringList SameFileDeleteViewController::consequences() const {
    QStringList lines;
    const auto outside = static_cast<int>(m_selection.sums().outside);
    if (outside == 1) lines << tr("1 of them lies outside of the folder that was searched.");
    else if (outside > 1)
        lines << tr("%Ln of them lie outside of the folder that was searched.", nullptr, outside);
    if (const QString folders = folderConsequence(); !folders.isEmpty()) lines << folders;
    // Where there are no folders a group's own state says it.
    const bool areFolders = m_results.hasWholeFolders();
    const auto losesItsLast = [areFolders](const TreeNode& group) {
        return areFolders ? losesAll(group) : simpleData(group)->selectNum() == 1;
    };
    int whole = 0;
    if (const TreeNode* const all = m_results.tree(0))
        for (std::size_t i = 0; i < all->numberOfChildren(); ++i)
            whole += losesItsLast(*all->childAtIndex(i)) ? 1 : 0;
    if (whole == 1) lines << tr("1 group loses all its copies.");
    else if (whole > 1) lines << tr("%Ln groups lose all their copies.", nullptr, whole);
    return lines;
}

Alert SameFileDeleteViewController::questionAboutTicked(bool isToTrash) const {
    const TickedSums& sums = m_selection.sums();
    const std::size_t folders = tickedFolders().folders;
    const EntryCounts counts{sums.copies - std::min(folders, sums.copies), folders};
    const QString size = shownSize(UtilityFunction::convertVolSpace(sums.bytes));
    QStringList lines = consequences();
    Alert question = removalQuestion();
    if (isToTrash) {
        question.title = tr("Move %1 to the trash?").arg(countedEntries(counts));
        question.isDestructive = false;
        question.severity = Alert::Severity::Information;
        question.buttons.front() = tr("Move to Trash");
        lines.prepend(tr("%1 in all. What is moved can be brought back until the trash is emptied.")
                          .arg(size));
    } else {
        question.buttons << tr("Move to Trash");
        lines.prepend(goForGoodText(counts, sums.bytes));
    }
    question.text = lines.join(QLatin1Char('\n'));
    return question;
}

PlanOrigin SameFileDeleteViewController::planOrigin() const {
    PlanOrigin origin;
    origin.roots = m_request.roots.empty() ? std::vector{m_searchPath} : m_request.roots;
    origin.protectedFolders = m_request.protectedFolders;
    return origin;
}

void SameFileDeleteViewController::showRemovalEnded() {
    const bool isToTrash = m_removal && m_removal->isToTrash;
    const RemovalOutcome outcome = m_removal ? m_removal->outcome : RemovalOutcome{};
    const auto undone = m_removal ? m_removal->undone : std::nullopt;
    const auto shared =
        m_removal && m_removal->sharing ? std::optional(sharedOf(*m_removal)) : std::nullopt;
    ResultFrame::showLine(*m_views->removedLine, undone      ? backText(*undone)
                                                 : isToTrash ? movedText(outcome)
                                                 : shared    ? sharedText(*shared)
                                                             : removedText(outcome));
    m_views->removedLine->setToolTip(shared ? gainTip(*shared) : QString());
    ResultFrame::showLine(*m_views->failureLine, undone      ? leftText(*undone)
                                                 : isToTrash ? unmovedText(outcome)
                                                 : shared    ? unsharedText(outcome)
                                                             : stayedText(outcome));
    m_views->undoBtn->setVisible(isToTrash && !m_removal->undoable->undoId().empty() &&
                                 (!undone || undone->stopped));
    m_views->againBtn->setVisible(undone.has_value());
    showWays();
}

void SameFileDeleteViewController::showFailures() {
    if (!m_removal || !bSearchFinished()) return;
    if (m_removal->undone)
        showLineList(m_mainWindow, tr("Could not be brought back"), leftLines(*m_removal->undone));
    else
        showLineList(m_mainWindow,
                     m_removal->sharing     ? tr("Keep their own space")
                     : m_removal->isToTrash ? tr("Could not be moved")
                                            : tr("Could not be removed"),
                     linesByReason(m_removal->outcome.stayed));
}

void SameFileDeleteViewController::undoBtnClicked() {
    if (!bSearchFinished() || !m_removal || m_views->undoBtn->isHidden()) return;
    finishTicks();
    enter(State::Undoing);
    showWays();
    ResultFrame::showLine(*m_views->removedLine, tr("Bringing it back\u2026"));
    m_views->stopRemoveBtn->setFocus();
    m_undoing.begin(m_removal->undoable->undoId(),
                    [this](const UndoErrand::Result& result) { undoEnded(result); });
}

void SameFileDeleteViewController::undoEnded(const UndoErrand::Result& result) {
    enter(State::Result);
    setRemoveButtonState();
    if (result) {
        std::size_t before = 0, foldersBefore = 0;  // of a run that was stopped
        if (m_removal->undone) {
            before = m_removal->undone->restored.size();
            foldersBefore = m_removal->undone->restoredFolders;
        }
        m_removal->undone = *result;
        m_removal->undone->restoredFolders += foldersBefore;
        m_removal->undone->restored.resize(before + result->restored.size());
        m_removal->undone->inPlace -= std::min(before, m_removal->undone->inPlace);
    }
    showRemovalEnded();
    QWidget* const next = m_views->againBtn->isHidden() ? m_views->content->currentWidget()
                                                        : static_cast<QWidget*>(m_views->againBtn);
    if (m_views->detailView->isVisible()) next->setFocus();
    if (result) return;
    Alert alert;
    alert.title = tr("It could not be brought back");
    alert.text = inWords(result.error());
    alert.severity = Alert::Severity::Warning;
    m_parts.dialogs->alert(m_mainWindow, alert, [](int /*button*/) {});
}

void SameFileDeleteViewController::searchAgain() {
    whenTicksMayGo([this] {
        if (!bSearchFinished()) return;
        searchBtnClicked();
        forwardViewForAnimation();
    });
}

void SameFileDeleteViewController::whenTicksMayGo(std::function<void()> then) {
    if (!bSearchFinished()) return;
    finishTicks();
    if (m_selection.allSelectNumArr().empty()) {
        then();
        return;
    }
    Alert question;
    question.title = tr("Search again?");
    question.text = tr("What is ticked here is forgotten, and nothing is removed.");
    question.buttons = QStringList{tr("Search"), tr("Cancel")};
    question.cancelButton = 1;
    m_parts.dialogs->alert(m_mainWindow, question,
                           [self = QPointer(this), then = std::move(then)](int button) {
                               if (self != nullptr && button == 0) then();
                           });
}

}  // namespace orrinvale
