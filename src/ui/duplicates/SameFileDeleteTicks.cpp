// SameFileDeleteViewController: the boxes, the views by type, and the titles. DuplicateSelection
// holds the rules.
#include <QLabel>
#include <QLocale>

#include "engine/text/UtilityFunction.h"
#include "platform/paths.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/duplicates/duplicatePreview.h"
#include "ui/duplicates/entryWords.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/lists/LeftRail.h"
#include "ui/kit/lists/TickBox.h"

namespace orrinvale {
namespace {

QString toText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

// Files, and folders as wholes.
QString selectedEntriesText(std::size_t selected) {
    const int number = static_cast<int>(selected);
    return number == 1
               ? SameFileDeleteViewController::tr("selected 1 entry in All")
               : SameFileDeleteViewController::tr("selected %n entries in All", nullptr, number);
}

QString entriesText(int count) {
    return count == 1 ? SameFileDeleteViewController::tr("1 entry in %1")
                      : SameFileDeleteViewController::tr("%n entries in %1", nullptr, count);
}

// "file" stands where there is nothing to count, and not with one.
QString selectedText(std::size_t selected, bool isAnything) {
    const int number = static_cast<int>(selected);
    return isAnything
               ? SameFileDeleteViewController::tr("selected %n files in All", nullptr, number)
               : SameFileDeleteViewController::tr("selected %n file in All", nullptr, number);
}

QString titleText(const QString& count, const QString& selected) {
    return QStringLiteral("%1, %2.").arg(count, selected);
}

}  // namespace

QString SameFileDeleteViewController::rowLabel(std::int32_t row) const {
    if (row != 0) return resultRowTitle(static_cast<std::size_t>(row));
    if (m_request.roots.size() > 1)
        return tr("%n folders", nullptr, static_cast<int>(m_request.roots.size()));
    return QString::fromStdString(std::string(lastPathComponent(m_searchPath)));
}

void SameFileDeleteViewController::refViewBgColor(std::int32_t row) {
    if (row < 0 || static_cast<std::size_t>(row) >= resultRows.size()) return;
    finishSorting();
    m_remberWitchSelect = row;
    m_treeData = m_results.tree(static_cast<std::size_t>(row));
    m_views->rightImageView->setPicture(
        toText(resultRows.at(static_cast<std::size_t>(row)).picture));
    // While a removal changes the trees nothing looks at them; at its end the list gets the view
    // that was chosen last.
    if (m_state != State::Removing && m_state != State::StoppingRemoval)
        m_model->setTree(m_treeData);
    showSortIndicator();
    if (m_treeData != nullptr) {
        changeAllSelectCheckBoxState();
        if (m_model->rowCount() > 0) m_views->outline->expand(m_model->index(0, 0));
    }
    m_views->leftView->select(row);
}

void SameFileDeleteViewController::showSelectCountWithFileCount(std::size_t count,
                                                                const QString& pathName) {
    const auto number = static_cast<int>(count);
    m_viewCount =
        (m_results.hasWholeFolders() ? entriesText(number) : tr("%n files in %1", nullptr, number))
            .arg(pathName);
    m_views->titleLabel->setText(titleText(m_viewCount, selectedWords(count != 0)));
    m_views->titleLabel->setToolTip(m_viewCount);
}

void SameFileDeleteViewController::setSelectCount() {
    m_views->titleLabel->setText(
        titleText(m_viewCount, selectedWords(m_selection.sums().copies != 0)));
}

QString SameFileDeleteViewController::selectedWords(bool isAnything) const {
    const std::size_t selected = m_selection.sums().copies;
    return m_results.hasWholeFolders() ? selectedEntriesText(selected)
                                       : selectedText(selected, isAnything);
}

void SameFileDeleteViewController::boxClicked(const TreeNode::Pointer& node,
                                              const QModelIndex& index) {
    if (!bSearchFinished()) return;
    m_checkBoxItem = index;
    finishSorting();
    if (simpleData(*node)->isGroup()) {
        m_selection.clickGroup(*node);
        setSelectCount();
    } else {
        setSelectState(node);
    }
    setRemoveButtonState();
    changeAllSelectCheckBoxState();
    m_model->refresh();
}

void SameFileDeleteViewController::setSelectState(const TreeNode::Pointer& leaf) {
    switch (m_selection.clickLeaf(leaf, m_results.inFolders())) {
        case LeafClick::Protected: break;
        case LeafClick::Cleared: setSelectCount(); break;
        case LeafClick::Ticked: fly(leaf); break;
        case LeafClick::Question: {
            Alert question;
            question.title = tr("Are you sure you want to delete all the duplicate files?");
            question.text = whatTicksTake(*leaf);
            question.buttons = QStringList{tr("OK"), tr("Cancel")};
            question.cancelButton = 1;
            question.severity = Alert::Severity::Warning;
            m_parts.dialogs->alert(
                m_mainWindow, question,
                [self = QPointer(this), leaf, number = m_resultNumber](int button) {
                    if (self != nullptr)
                        self->alertEnded_context(button == 0 ? 1 : 0, leaf, number);
                });
            break;
        }
    }
}

// The question speaks of files, and a folder may be the last copy of more than one group.
QString SameFileDeleteViewController::whatTicksTake(const TreeNode& leaf) const {
    const FolderFacts* const folder = simpleData(leaf)->wholeFolder();
    if (folder == nullptr) return QStringLiteral(" ");
    const QString files = countedEntries({static_cast<std::size_t>(folder->files), 0});
    const auto lost = static_cast<int>(DuplicateSelection::groupsLost(leaf, m_results.inFolders()));
    return tr("It is a folder: all that is in it goes, %1.").arg(files) + QLatin1Char('\n') +
           (lost == 1 ? tr("1 group loses all its copies.")
                      : tr("%Ln groups lose all their copies.", nullptr, lost));
}

void SameFileDeleteViewController::alertEnded_context(int code, const TreeNode::Pointer& leaf,
                                                      std::uint64_t resultNumber) {
    // The tree, or the leaf's place in it, may have gone while the question stood.
    if (code != 1 || resultNumber != m_resultNumber || leaf->nodeParent() == nullptr ||
        !bSearchFinished())
        return;
    m_selection.tickLast(leaf, m_results.inFolders());
    m_selection.clearGoing(m_results.inFolders());
    changeAllSelectCheckBoxState();
    m_model->refresh();
    fly(leaf);
}

void SameFileDeleteViewController::fly(const TreeNode::Pointer& leaf) {
    QRect start = m_checkBoxItem.isValid() ? m_views->outline->visualRect(m_checkBoxItem) : QRect();
    if (start.isEmpty()) start = QRect(m_views->outline->viewport()->rect().center(), QSize(1, 1));
    const QPoint offset = m_views->outline->viewport()->mapTo(m_views->detailView, QPoint(0, 0));
    constexpr int side = 30;
    m_flight.fly(iconOf(*leaf).pixmap(QSize(side, side), m_views->detailView->devicePixelRatioF()),
                 start.translated(offset), m_views->trashBtn);
}

void SameFileDeleteViewController::callBackDeleteItemWithIndex() {
    if (!bSearchFinished()) return;
    setRemoveButtonState();
    setSelectCount();
}

void SameFileDeleteViewController::setRemoveButtonState() {
    m_selection.clearGoing(m_results.inFolders());
    m_views->stopBtn->setEnabled(bSearchFinished() && !m_selection.allSelectNumArr().empty());
    showGain();
    showPreview(*m_views, *m_model);  // another copy may be the one that stays
}

void SameFileDeleteViewController::showGain() {
    const TickedSums& sums = m_selection.sums();
    QLabel& label = *m_views->gainLabel;
    label.setVisible(sums.copies != 0);
    const QString gain = shownSize(UtilityFunction::convertVolSpace(sums.bytes));
    label.setText(sums.bytes == 0 ? tr("Nothing can be gained") : tr("%1 can be gained").arg(gain));
    label.setToolTip(
        tr("A file with several names counts once, and only when all its names are ticked."));
    showWays();
}

void SameFileDeleteViewController::showHeaderBox(const HeaderBox& box) {
    m_views->button->setState(!box.isOn                     ? TickState::Nothing
                              : box.picture == "option_yes" ? TickState::All
                                                            : TickState::Some);
}

void SameFileDeleteViewController::changeAllSelectCheckBoxState() {
    if (m_treeData == nullptr) return;
    const HeaderBox box = DuplicateSelection::headerBox(*m_treeData);
    forgetClearedKinds();
    showHeaderBox(box);
    showSelectCountWithFileCount(box.leaves, rowLabel(m_remberWitchSelect));
}

void SameFileDeleteViewController::forgetClearedKinds() {
    for (std::size_t row = 1; row < m_tickedByHeader.size(); ++row) {
        const SimpleTreeNode* const tree = m_results.tree(row);
        if (m_tickedByHeader[row] && (tree == nullptr || !DuplicateSelection::hasTicks(*tree)))
            m_tickedByHeader.reset(row);
    }
}

// The first row shows all kinds: there the box has ticked what is ticked when that is so of each
// kind with ticks.
bool SameFileDeleteViewController::isTickedByHeader() const {
    const auto view = static_cast<std::size_t>(m_remberWitchSelect);
    if (view != 0) return m_tickedByHeader[view];
    for (std::size_t row = 1; row < m_tickedByHeader.size(); ++row) {
        const SimpleTreeNode* const tree = m_results.tree(row);
        if (!m_tickedByHeader[row] && tree != nullptr && DuplicateSelection::hasTicks(*tree))
            return false;
    }
    return true;
}

void SameFileDeleteViewController::setTickedByHeader(bool on) {
    const auto view = static_cast<std::size_t>(m_remberWitchSelect);
    if (view != 0) m_tickedByHeader.set(view, on);
    else if (on) m_tickedByHeader.set();
    else m_tickedByHeader.reset();
}

void SameFileDeleteViewController::setAllSelectOrNoSelect() {
    // The box shows "some" both for what it has ticked itself, which the next click clears, and for
    // ticks made by hand.
    const bool wasClear = m_treeData == nullptr || !DuplicateSelection::hasTicks(*m_treeData);
    const bool on = wasClear || !isTickedByHeader();
    if (m_treeData == nullptr || m_treeData->numberOfChildren() == 0 || !bSearchFinished()) {
        showHeaderBox({});
        return;
    }
    finishSorting();
    m_selection.setAll(*m_treeData, on);
    setTickedByHeader(on);
    m_views->button->setState(on ? TickState::Some : TickState::Nothing);
    setRemoveButtonState();
    setSelectCount();
    m_model->refresh();
}

void SameFileDeleteViewController::updateCheckBox() {
    // After a stop nothing is selected any more, in whatever view it was ticked; else what failed
    // stays ticked in the other views.
    TreeNode* const cleared = m_state == State::StoppingRemoval ? m_results.tree(0) : m_treeData;
    if (cleared != nullptr) m_selection.clearTree(*cleared);
    m_selection.allSelectNumArr().removeOrphans();
    m_selection.recount();
    forgetClearedKinds();
    showHeaderBox({});
    showGain();
    m_model->refresh();
}

}  // namespace orrinvale
