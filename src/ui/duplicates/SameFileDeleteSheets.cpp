// SameFileDeleteViewController: what stands off the way of those who only search and remove: plans,
// the history of removals, and the order of best places. PlanDesk.h and HistoryDesk.h do it.
#include <QMenu>
#include <QShortcut>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "engine/duplicates/plan/planOfTicks.h"
#include "engine/duplicates/results/GoneFolders.h"
#include "engine/duplicates/results/RemovalPlan.h"
#include "platform/files.h"
#include "services/foundation/runAside.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/PlacesPanel.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/Sheet.h"

namespace orrinvale {
namespace {

constexpr QKeyCombination openPlanKeys = Qt::CTRL | Qt::SHIFT | Qt::Key_P;
constexpr QKeyCombination historyKeys = Qt::CTRL | Qt::Key_H;
constexpr QKeyCombination saveKeys = Qt::CTRL | Qt::Key_S;
constexpr QKeyCombination shareKeys = Qt::CTRL | Qt::SHIFT | Qt::Key_S;
constexpr QKeyCombination againKeys = Qt::CTRL | Qt::Key_R;
constexpr QKeyCombination viewKeys = Qt::CTRL | Qt::Key_L;

QMenu* newMoreMenu(QWidget* over) {
    auto* const menu = new QMenu(over);
    menu->setObjectName(QStringLiteral("moreMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    return menu;
}

// The page's own shortcuts answer to the keys, which the entry only shows.
QAction* addMoreEntry(QMenu& menu, const QString& text, const QKeySequence& keys,
                      SameFileDeleteViewController& page,
                      void (SameFileDeleteViewController::*action)()) {
    QAction* const entry = menu.addAction(text, &page, action);
    entry->setShortcut(keys);
    entry->setShortcutContext(Qt::WidgetShortcut);
    entry->setShortcutVisibleInContextMenu(true);
    return entry;
}

GoneFolders goneFoldersOf(const std::vector<PlanDesk::Settled>& settled) {
    std::vector<std::string> folders;
    for (const PlanDesk::Settled& each : settled)
        if (each.isGone && each.isFolder) folders.push_back(each.path);
    return GoneFolders(folders);
}

}  // namespace

// Keys work on both views, from which the sheets can be reached.
void SameFileDeleteViewController::connectDesks() {
    connect(&m_plans, &PlanDesk::runningChanged, this, &SameFileDeleteViewController::deskChanged);
    connect(&m_history, &HistoryDesk::runningChanged, this,
            &SameFileDeleteViewController::deskChanged);
    connect(&m_plans, &PlanDesk::settled, this, &SameFileDeleteViewController::takeOutGone);
    for (QWidget* const view : {m_views->fristView.data(), m_views->detailView}) {
        auto* const plan = new QShortcut(openPlanKeys, view);
        connect(plan, &QShortcut::activated, this, &SameFileDeleteViewController::openPlan);
        auto* const history = new QShortcut(historyKeys, view);
        connect(history, &QShortcut::activated, this, &SameFileDeleteViewController::showHistory);
    }
}

void SameFileDeleteViewController::showMoreMenu() {
    if (!bSearchFinished()) return;
    QMenu* const menu = newMoreMenu(m_views->fristView);
    addMoreEntry(*menu, tr("Open Plan\u2026"), openPlanKeys, *this,
                 &SameFileDeleteViewController::openPlan);
    addMoreEntry(*menu, tr("Removals of 30 Days\u2026"), historyKeys, *this,
                 &SameFileDeleteViewController::showHistory);
    const QWidget& button = *m_views->firstMoreBtn;
    menu->popup(button.mapToGlobal(QPoint(0, button.height())));
    menu->setActiveAction(menu->actions().front());
}

// Both ways, so that the menu is the same whichever is first, but for the order.
void SameFileDeleteViewController::showWayMenu() {
    if (!bSearchFinished()) return;
    const bool isAnyTicked = !m_selection.allSelectNumArr().empty();
    QMenu* const menu = newMoreMenu(m_views->detailView);
    for (const bool isToTrash : {m_isTrashFirst, !m_isTrashFirst})
        menu->addAction(isToTrash ? tr("Move to Trash\u2026") : tr("Remove for Good\u2026"), this,
                        [this, isToTrash] { ask(isToTrash); })
            ->setEnabled(isAnyTicked);
    addMoreEntry(*menu, tr("Share the Space\u2026"), shareKeys, *this,
                 &SameFileDeleteViewController::shareTicked)
        ->setEnabled(isAnyTicked);
    menu->addSeparator();
    addMoreEntry(*menu, tr("Save Plan\u2026"), saveKeys, *this,
                 &SameFileDeleteViewController::savePlan)
        ->setEnabled(isAnyTicked);
    addMoreEntry(*menu, tr("Open Plan\u2026"), openPlanKeys, *this,
                 &SameFileDeleteViewController::openPlan);
    addMoreEntry(*menu, tr("Removals of 30 Days\u2026"), historyKeys, *this,
                 &SameFileDeleteViewController::showHistory);
    menu->addSeparator();
    addMoreEntry(*menu, tr("Search Again"), againKeys, *this,
                 &SameFileDeleteViewController::searchAgain);
    addMoreEntry(*menu, tr("View\u2026"), viewKeys, *this,
                 &SameFileDeleteViewController::showViewMenu);
    const QWidget& button = *m_views->otherWayBtn;
    const QSize size = menu->sizeHint();
    menu->popup(button.mapToGlobal(QPoint(button.width() - size.width(), -size.height())));
    menu->setActiveAction(menu->actions().at(isAnyTicked ? 1 : 5));
}

void SameFileDeleteViewController::savePlan() {
    if (!bSearchFinished()) return;
    finishSorting();
    if (m_selection.allSelectNumArr().empty()) return;
    m_plans.save(m_mainWindow, planOfTicks(m_selection.allSelectNumArr().entries(), planOrigin()),
                 m_duplicateOpt);
}

void SameFileDeleteViewController::openPlan() {
    if (bSearchFinished()) m_plans.open(m_mainWindow);
}

void SameFileDeleteViewController::showHistory() {
    if (bSearchFinished()) m_history.open(m_mainWindow);
}

void SameFileDeleteViewController::deskChanged() {
    m_isAtDesk = m_plans.isRunning() || m_history.isRunning() || m_sharing.isLooking();
    setRemoveButtonState();
}

// What lay in a folder that went is gone too. Their other ticks stay.
void SameFileDeleteViewController::takeOutGone(const std::vector<PlanDesk::Settled>& settled) {
    const TreeNode* const all = m_results.tree(0);
    if (!bSearchFinished() || all == nullptr) return;
    finishSorting();
    std::unordered_map<std::string_view, const PlanDesk::Settled*> byPath;
    for (const PlanDesk::Settled& each : settled) byPath.emplace(each.path, &each);
    const GoneFolders goneFolders = goneFoldersOf(settled);
    std::vector<TreeNode::Pointer> leaves;
    std::vector<RemovalPlan::Excuse> excuses;
    for (std::size_t g = 0; g < all->numberOfChildren(); ++g) {
        TreeNode& group = *all->childAtIndex(g);
        std::vector<std::uint8_t> gone(group.numberOfChildren());
        const std::size_t before = leaves.size();
        for (std::size_t i = 0; i < gone.size(); ++i) {
            const TreeNode::Pointer& leaf = group.childAtIndex(i);
            const auto found = byPath.find(simpleData(*leaf)->name());
            if (found != byPath.end() && found->second->changed)
                excuses.push_back({leaf, *found->second->changed, found->second->isGone,
                                   found->second->namesMade});
            const bool isGone = found != byPath.end() ? found->second->isGone
                                                      : goneFolders.held(*simpleData(*leaf));
            if (!isGone) continue;
            gone[i] = 1;
            leaves.push_back(leaf);
        }
        if (leaves.size() != before) tickGoneToo(group, gone);
    }
    RemovalPlan::excuse(excuses);
    if (!leaves.empty()) removeFromList(leaves);
}

// As if the person had ticked them. Where a plan took the last clear copy, one that was ticked is
// clear now: nobody was asked whether all copies may go.
void SameFileDeleteViewController::tickGoneToo(TreeNode& group,
                                               std::span<const std::uint8_t> gone) {
    std::vector<std::uint8_t> ticks(gone.begin(), gone.end());
    std::optional<std::size_t> last;
    bool isAnyClear = false;
    for (std::size_t i = 0; i < ticks.size(); ++i) {
        if (gone[i] != 0) continue;
        ticks[i] = simpleData(*group.childAtIndex(i))->selectNum() == 1 ? 1 : 0;
        if (ticks[i] != 0) last = i;
        else isAnyClear = true;
    }
    if (!isAnyClear && last) ticks[*last] = 0;
    m_selection.setTicks(group, ticks);
}

void SameFileDeleteViewController::removeFromList(const std::vector<TreeNode::Pointer>& leaves) {
    m_model->setTree(nullptr);
    m_results.removeLeaves(leaves);
    m_selection.allSelectNumArr().removeAll(leaves);
    m_selection.allSelectNumArr().removeClear();
    m_selection.allSelectNumArr().removeOrphans();
    m_selection.recount();
    m_treeData = m_results.tree(static_cast<std::size_t>(m_remberWitchSelect));
    m_model->setTree(m_treeData);
    showSameFileSize();
    showTicks();
    showFitting();
}

// The folders of the last such order are there again.
void SameFileDeleteViewController::openPlaces() {
    QWidget* const window = m_mainWindow;
    if (!bSearchFinished() || window == nullptr || m_treeData == nullptr) return;
    auto* const panel = new PlacesPanel(m_bestPlaces);
    auto* const sheet = new Sheet(*window, panel);  // ends itself
    const QPointer<PlacesPanel> guarded(panel);
    connect(panel->addButton, &QAbstractButton::clicked, this, [this, guarded] {
        PathChoice choice;
        choice.title = tr("Copies in this folder stay");
        choice.directory = m_searchPath;
        choice.withSeveral = true;
        m_parts.dialogs->choosePaths(
            m_mainWindow, choice, [self = QPointer(this), guarded](const auto& paths) {
                if (self == nullptr) return;
                for (const std::string& path : paths)
                    self->withoutLinks(path, [guarded](const std::string& folder) {
                        if (guarded != nullptr) guarded->add(folder);
                    });
            });
    });
    connect(panel->keepButton, &QAbstractButton::clicked, this,
            [this, guarded, sheet, number = m_resultNumber] {
                m_bestPlaces = guarded->folders();
                sheet->close([self = QPointer(this), number] {
                    if (self != nullptr && number == self->m_resultNumber)
                        self->keepBy({KeepRule::By::BestPlace, self->m_bestPlaces});
                });
            });
    const auto end = [sheet] { sheet->close({}); };
    connect(panel->cancelButton, &QAbstractButton::clicked, sheet, end);
    connect(sheet, &Sheet::cancelled, sheet, end);
    sheet->open(panel->list->model()->rowCount() > 0 ? static_cast<QWidget*>(panel->list)
                                                     : panel->addButton);
}

void SameFileDeleteViewController::withoutLinks(
    const std::string& folder, std::function<void(const std::string& resolved)> then) {
    static_cast<void>(runAside(
        this, "withoutLinks",
        [files = m_parts.files, folder] { return files->resolved(folder).value_or(folder); },
        [then = std::move(then)](const std::string& resolved) { then(resolved); }));
}

}  // namespace orrinvale
