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
    const auto add = [&](const QString& text, KeepRule rule) {
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
            if (self != nullptr && number == self->m_resultNumber && !paths.empty())
                self->keepBy({KeepRule::By::BestPlace, paths});
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

// Of a group that of its first copy, as everywhere.
std::string SameFileDeleteViewController::folderOfRow(const QModelIndex& index) const {
    const std::string path = pathOf(index);
    return path.empty() ? path : folderOf(path);
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
        action->setToolTip(onOneLine(QString::fromStdString(folder)));
    };
    menu.setToolTipsVisible(true);
    add(tr("Tick All Copies in This Folder"), &KeepTicks::tickFolder);
    add(tr("Untick All in This Folder"), &KeepTicks::untickFolder);
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
}

void SameFileDeleteViewController::showTicks() {
    setRemoveButtonState();
    changeAllSelectCheckBoxState();
    setSelectCount();
    m_model->refresh();
}

}  // namespace orrinvale
