// SameFileDeleteViewController: ticks of a whole view at once, by a rule that says which copies
// stay, or by folder. KeepTicks does it, a few groups at a time.
#include <QMenu>
#include <algorithm>
#include <chrono>
#include <utility>

#include "platform/paths.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/Dialogs.h"

namespace orrinvale {
namespace {

// "&" would name a key in a menu.
QString inMenu(QString text) { return text.replace(QLatin1Char('&'), QLatin1String("&&")); }

QString shownFolder(const std::string& folder) {
    return inMenu(onOneLine(QString::fromStdString(std::string(lastPathComponent(folder)))));
}

}  // namespace

void SameFileDeleteViewController::showKeepMenu() {
    if (!bSearchFinished() || !m_views->keepBtn->isEnabled() || m_treeData == nullptr) return;
    auto* const menu = new QMenu(m_views->detailView);
    menu->setObjectName(QStringLiteral("keepMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setToolTipsVisible(true);
    const auto add = [&](const QString& text, const KeepRule& rule) {
        QAction* const action = menu->addAction(text, this, [this, rule, number = m_resultNumber] {
            if (number == m_resultNumber) keepBy(rule);
        });
        action->setCheckable(true);
        action->setChecked(!m_keepRules.empty() && m_keepRules.front() == rule);
        action->setToolTip(tr("Where it leaves copies equal, the rule chosen before decides"));
    };
    using By = KeepRule::By;
    add(tr("Newest"), {By::Newest});
    add(tr("Oldest"), {By::Oldest});
    add(tr("Shortest Path"), {By::ShortestPath});
    add(tr("Shortest Name"), {By::ShortestName});
    menu->addSeparator();
    if (const std::string folder = folderOfRow(m_views->outline->currentIndex()); !folder.empty())
        add(tr("In \u201C%1\u201D").arg(shownFolder(folder)), {By::BestPlace, {folder}});
    menu->addAction(tr("In Folder\u2026"), this, [this] { chooseKeptFolder(); });
    menu->addAction(tr("Best Places\u2026"), this, [this] { openPlaces(); });
    const QWidget& button = *m_views->keepBtn;
    menu->popup(button.mapToGlobal(QPoint(0, button.height())));
    menu->setActiveAction(menu->actions().front());
}

void SameFileDeleteViewController::chooseKeptFolder() {
    PathChoice choice;
    choice.title = tr("Copies in this folder stay");
    choice.directory = m_searchPath;
    m_parts.dialogs->choosePaths(
        m_mainWindow, choice,
        [self = QPointer(this), number = m_resultNumber](const std::vector<std::string>& paths) {
            if (self == nullptr || number != self->m_resultNumber || paths.empty()) return;
            self->withoutLinks(paths.front(), [self, number](const std::string& folder) {
                if (self != nullptr && number == self->m_resultNumber)
                    self->keepBy({KeepRule::By::BestPlace, {folder}});
            });
        });
}

// The rules chosen before go on to order what the new one leaves equal.
void SameFileDeleteViewController::keepBy(KeepRule rule) {
    if (!bSearchFinished() || m_treeData == nullptr) return;
    std::erase(m_keepRules, rule);
    m_keepRules.insert(m_keepRules.begin(), std::move(rule));
    finishSorting();
    m_keepTicks.keep(*m_treeData, m_keepRules);
    setTickedByHeader(true);  // the next click on the box over the list clears
    beginTicks();
}

// Without links, as far as the search knows; of a group that of its first copy, as everywhere.
std::string SameFileDeleteViewController::folderOfRow(const QModelIndex& index) const {
    if (DuplicateResultModel::isInFolder(index)) return folderOfRow(index.parent());
    std::string path = pathOf(index);
    if (path.empty()) return path;
    TreeNode::Pointer node = m_model->node(index);
    if (node && simpleData(*node)->isGroup() && node->numberOfChildren() > 0)
        node = node->childAtIndex(0);
    if (!node || simpleData(*node)->name() != path) return folderOf(path);
    const SimpleNodeData& leaf = *simpleData(*node);
    const bool isLink = leaf.identity() && leaf.identity()->type == FileType::SymbolicLink;
    return folderOf(isLink || leaf.linkTarget().empty() ? path : leaf.linkTarget());
}

void SameFileDeleteViewController::addFolderActions(QMenu& menu, const std::string& folder) {
    const auto add = [&](const QString& text,
                         void (KeepTicks::*tick)(TreeNode & tree, std::string folder)) {
        QAction* const action =
            menu.addAction(text, this, [this, tick, folder, number = m_resultNumber] {
                if (!bSearchFinished() || number != m_resultNumber || m_treeData == nullptr) return;
                finishSorting();
                (m_keepTicks.*tick)(*m_treeData, folder);
                beginTicks();
            });
        action->setToolTip(asToolTip(QString::fromStdString(folder)));
    };
    menu.setToolTipsVisible(true);
    const QString name = shownFolder(folder);
    add(tr("Tick All Copies in \u201C%1\u201D").arg(name), &KeepTicks::tickFolder);
    add(tr("Untick All in \u201C%1\u201D").arg(name), &KeepTicks::untickFolder);
}

void SameFileDeleteViewController::beginTicks() {
    tickFurther();
    if (m_keepTicks.isPending()) m_keepTimer.start();
}

void SameFileDeleteViewController::tickFurther() {
    constexpr std::chrono::milliseconds slice{10};
    if (m_keepTicks.step(std::chrono::steady_clock::now() + slice)) {
        m_keepTimer.stop();
        showTicks();
        tellOfEmptyFolder();
        return;
    }
    showGain();
    m_views->outline->viewport()->update();
}

void SameFileDeleteViewController::finishTicks() {
    m_keepTimer.stop();
    if (!m_keepTicks.isPending()) return;
    m_keepTicks.finish();
    showTicks();
    tellOfEmptyFolder();
}

// Else a folder chosen by mistake would look like a rule that was followed.
void SameFileDeleteViewController::tellOfEmptyFolder() {
    const std::vector<std::string> folders = m_keepTicks.takeEmptyFolders();
    if (folders.empty()) return;
    Alert alert;
    alert.title = tr("No copy lies in \u201C%1\u201D")
                      .arg(onOneLine(
                          QString::fromStdString(std::string(lastPathComponent(folders.front())))));
    alert.text = tr("The rules chosen before decide which copies stay.");
    alert.buttons = QStringList{tr("OK")};
    m_parts.dialogs->alert(m_mainWindow, alert, [](int /*button*/) {});
}

void SameFileDeleteViewController::showTicks() {
    setRemoveButtonState();
    changeAllSelectCheckBoxState();
    setSelectCount();
    m_model->refresh();
}

}  // namespace orrinvale
