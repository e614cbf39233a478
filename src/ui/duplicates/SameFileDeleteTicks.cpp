// SameFileDeleteViewController: the boxes, the views by type, and the titles. DuplicateSelection holds the rules.
#include <QLocale>
#include <QLabel>

#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/TickBox.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

QString toText(std::string_view text) { return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())); }

}  // namespace

QString SameFileDeleteViewController::rowLabel() const {
    if (m_remberWitchSelect != 0) return toText(resultRows.at(static_cast<std::size_t>(m_remberWitchSelect)).title);
    const std::size_t cut = m_searchPath.find_last_of('/');
    const std::string last = cut == std::string::npos ? m_searchPath : m_searchPath.substr(cut + 1);
    return QString::fromStdString(last.empty() ? m_searchPath : last);
}

void SameFileDeleteViewController::refViewBgColor(std::int32_t row) {
    if (row < 0 || static_cast<std::size_t>(row) >= resultRows.size()) return;
    finishSorting();
    m_remberWitchSelect = row;
    m_treeData = m_results.tree(static_cast<std::size_t>(row));
    m_views->rightImageView->setPixmap(picturePixmap(toText(resultRows.at(static_cast<std::size_t>(row)).picture),
                                                     {20, 20}, m_views->rightImageView->devicePixelRatioF()));
    m_model->setTree(m_treeData);
    if (m_treeData != nullptr) {
        changeAllSelectCheckBoxState();
        if (m_model->rowCount() > 0) m_views->outline->expand(m_model->index(0, 0));
    }
    for (DuplicationLeftCell* const cell : m_views->leftCells) cell->setHiglightImage(cell->rowViewNum() == row);
}

void SameFileDeleteViewController::showSelectCountWithFileCount(std::size_t count, const QString& pathName) {
    const QString first = QStringLiteral("%1 files in %2").arg(QString::number(count), pathName);
    const QString second = QStringLiteral("selected %1 %2 in All")
                               .arg(QString::number(m_selection.allSelectNumArr().size()),
                                    count != 0 ? QStringLiteral("files") : QStringLiteral("file"));
    m_views->titleLabel->setText(QStringLiteral("%1, %2.").arg(first, second));
    m_views->titleLabel->setToolTip(first);
}

void SameFileDeleteViewController::setSelectCount() {
    // What stands before the first comma is the count of the view; a folder with a comma in its name loses its tail here.
    const QString first = m_views->titleLabel->text().section(QLatin1Char(','), 0, 0);
    const std::size_t selected = m_selection.allSelectNumArr().size();
    const QString second = QStringLiteral("selected %1 %2 in All")
                               .arg(QString::number(selected),
                                    selected != 0 ? QStringLiteral("files") : QStringLiteral("file"));
    m_views->titleLabel->setText(QStringLiteral("%1, %2.").arg(first, second));
}

void SameFileDeleteViewController::boxClicked(const TreeNode::Pointer& node) {
    if (!m_bSearchFinished) return;
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
    switch (m_selection.clickLeaf(leaf)) {
        case LeafClick::Cleared: setSelectCount(); break;
        case LeafClick::Ticked: fly(leaf); break;
        case LeafClick::Question: {
            Alert question;
            question.title = QStringLiteral("Are you sure you want to delete all the duplicate files?");
            question.text = QStringLiteral(" ");
            question.buttons = QStringList{QStringLiteral("OK"), QStringLiteral("Cancel")};
            question.cancelButton = 1;
            question.severity = Alert::Severity::Warning;
            m_parts.dialogs->alert(m_mainWindow, question,
                                   [self = QPointer(this), leaf, number = m_resultNumber](int button) {
                                       if (self != nullptr) self->alertEnded_context(button == 0 ? 1 : 0, leaf, number);
                                   });
            break;
        }
    }
}

void SameFileDeleteViewController::alertEnded_context(int code, const TreeNode::Pointer& leaf,
                                                      std::uint64_t resultNumber) {
    // The tree, or the leaf's place in it, may have gone while the question stood.
    if (code != 1 || resultNumber != m_resultNumber || leaf->nodeParent() == nullptr || !m_bSearchFinished) return;
    m_selection.tickLast(leaf);
    changeAllSelectCheckBoxState();
    m_model->refresh();
    fly(leaf);
}

void SameFileDeleteViewController::fly(const TreeNode::Pointer& leaf) {
    const QModelIndex current = m_views->outline->currentIndex();
    QRect start = current.isValid() ? m_views->outline->visualRect(current) : QRect();
    if (start.isEmpty()) start = QRect(m_views->outline->viewport()->rect().center(), QSize(1, 1));
    const QPoint offset = m_views->outline->viewport()->mapTo(m_views->detailView, QPoint(0, 0));
    constexpr int side = 30;
    m_flight.fly(iconOf(*leaf).pixmap(QSize(side, side), m_views->detailView->devicePixelRatioF()),
                 start.translated(offset), m_views->trashBtn);
}

void SameFileDeleteViewController::callBackDeleteItemWithIndex() {
    if (!m_bSearchFinished) return;
    setRemoveButtonState();
    setSelectCount();
}

void SameFileDeleteViewController::setRemoveButtonState() {
    m_views->stopBtn->setEnabled(m_bSearchFinished && !m_selection.allSelectNumArr().empty());
}

void SameFileDeleteViewController::showHeaderBox(const HeaderBox& box) {
    m_views->button->setState(!box.isOn                         ? TickState::Nothing
                              : box.picture == "option_yes" ? TickState::All
                                                            : TickState::Some);
}

void SameFileDeleteViewController::changeAllSelectCheckBoxState() {
    if (m_treeData == nullptr) return;
    const HeaderBox box = DuplicateSelection::headerBox(*m_treeData);
    showHeaderBox(box);
    showSelectCountWithFileCount(box.leaves, rowLabel());
}

void SameFileDeleteViewController::setAllSelectOrNoSelect() {
    const bool on = m_views->button->state() != TickState::Nothing;
    if (m_treeData == nullptr || m_treeData->numberOfChildren() == 0 || !m_bSearchFinished) {
        showHeaderBox({});
        return;
    }
    finishSorting();
    m_selection.setAll(*m_treeData, on);
    m_views->button->setState(on ? TickState::Some : TickState::Nothing);
    setRemoveButtonState();
    setSelectCount();
    m_model->refresh();
}

void SameFileDeleteViewController::updateCheckBox() {
    if (m_treeData != nullptr) m_selection.clearTree(*m_treeData);
    showHeaderBox({});
    m_model->refresh();
}

}  // namespace orrinvale
