// SameFileDeleteViewController: how the list is to look: folders that are equal as wholes in place
// of their files, the biggest gain first, and the folders that are equal in parts.
#include <QActionGroup>
#include <QMenu>

#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/results/GainOrder.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "platform/paths.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/duplicates/PartlyPanel.h"
#include "ui/duplicates/ResultOutline.h"
#include "ui/duplicates/SameFileDeleteViewController.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/duplicates/entryWords.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/lists/TickOutline.h"

namespace orrinvale {

void SameFileDeleteViewController::showViewMenu() {
    if (!bSearchFinished() || !m_views->otherWayBtn->isEnabled()) return;
    auto* const menu = new QMenu(m_views->detailView);
    menu->setObjectName(QStringLiteral("viewMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setToolTipsVisible(true);
    const auto add = [&](const QString& text, bool isOn, auto action) {
        QAction* const entry = menu->addAction(text, this, action);
        entry->setCheckable(true);
        entry->setChecked(isOn);
        return entry;
    };
    const bool showsFolders = m_parts.defaults->boolForKey(wholeFoldersKey);
    add(tr("Whole Folders"), showsFolders, [this, showsFolders] { showFolders(!showsFolders); })
        ->setToolTip(tr("Folders that are equal as wholes stand above the files, and the files in "
                        "them are not listed one by one"));
    menu->addSeparator();
    const bool isGainFirst = m_parts.defaults->boolForKey(gainFirstKey);
    auto* const orders = new QActionGroup(menu);
    orders->addAction(add(tr("As Found"), !isGainFirst, [this] { orderBy(false); }));
    orders->addAction(add(tr("Biggest Gain First"), isGainFirst, [this] { orderBy(true); }))
        ->setToolTip(tr("What their removal gives, as long as one copy stays"));
    menu->addSeparator();
    QAction* const partly =
        menu->addAction(tr("Partly Equal Folders\u2026"), this, [this] { showPartly(); });
    partly->setEnabled(foundFolders() != nullptr && !foundFolders()->partly.empty());
    partly->setToolTip(showsFolders ? tr("Folders that are for the most part in another one")
                                    : tr("Found by a search with Whole Folders on"));
    const QWidget& button = *m_views->otherWayBtn;
    const QSize size = menu->sizeHint();
    menu->popup(button.mapToGlobal(QPoint(button.width() - size.width(), -size.height())));
    menu->setActiveAction(menu->actions().front());
}

// A search that nobody asked for folders knows of none, so that the other way needs a new one; what
// was read is remembered.
void SameFileDeleteViewController::showFolders(bool on) {
    whenTicksMayGo([this, on] {
        if (!bSearchFinished()) return;
        m_parts.defaults->setBool(on, wholeFoldersKey);
        searchBtnClicked();
        forwardViewForAnimation();
    });
}

void SameFileDeleteViewController::orderBy(bool isGainFirst) {
    if (!bSearchFinished()) return;
    m_parts.defaults->setBool(isGainFirst, gainFirstKey);
    finishSorting();
    m_sortings = {};
    m_lastColumn = -1;
    showSortIndicator();
    const GroupOrder order = isGainFirst ? GroupOrder::Gain : GroupOrder::Found;
    if (m_treeData != nullptr) m_model->reorder([&] { orderGroups(*m_treeData, order); });
    for (std::size_t row = 0; row < resultRows.size(); ++row)
        if (TreeNode* const tree = m_results.tree(row); tree != nullptr && tree != m_treeData)
            orderGroups(*tree, order);
}

const FolderFindings* SameFileDeleteViewController::foundFolders() const {
    const auto search = m_duplicateOpt ? m_duplicateOpt->search() : nullptr;
    return search ? &search->folders() : nullptr;  // of the search that the page holds
}

void SameFileDeleteViewController::showPartly() {
    QWidget* const window = m_mainWindow;
    if (window == nullptr || !bSearchFinished() || foundFolders() == nullptr ||
        foundFolders()->partly.empty())
        return;
    auto* const panel = new PartlyPanel(foundFolders()->partly);
    auto* const sheet = new Sheet(*window, panel);  // ends itself
    connect(panel->showButton, &QAbstractButton::clicked, this, [this, panel] {
        if (!m_parts.reveal) return;
        for (const std::string& folder : {panel->chosen().folder, panel->chosen().other})
            m_parts.reveal(folder);
    });
    const auto searchTwo = [this, panel, sheet] {
        sheet->close([self = QPointer(this), pair = panel->chosen()] {
            if (self == nullptr) return;
            self->whenTicksMayGo([self, pair] {
                if (self != nullptr) self->searchRequest(self->requestFor(pair));
            });
        });
    };
    connect(panel->searchButton, &QAbstractButton::clicked, sheet, searchTwo);
    connect(panel->list, &QAbstractItemView::activated, sheet, searchTwo);
    const auto end = [sheet] { sheet->close({}); };
    connect(panel->closeButton, &QAbstractButton::clicked, sheet, end);
    connect(sheet, &Sheet::cancelled, sheet, end);
    sheet->open(panel->list);
}

// What is protected stays so by whatever path it was named. What lies in one of the two is searched
// as well where a search of that one would leave it out.
SearchRequest SameFileDeleteViewController::requestFor(const PartlyEqual& pair) const {
    SearchRequest request = m_request;
    request.roots = {pair.folder, pair.other};
    for (const std::string& each : m_request.protectedFolders)
        if (isWithin(each, pair.folder) || isWithin(each, pair.other))
            request.roots.push_back(each);
    return request;
}

// Where the search has run.
void SameFileDeleteViewController::orderResult(const ResultViews& found, bool isGainFirst) {
    for (std::size_t row = 0; isGainFirst && row < resultRows.size(); ++row)
        if (TreeNode* const tree = found.tree(row)) orderGroups(*tree, GroupOrder::Gain);
}

SameFileDeleteViewController::TickedFolders SameFileDeleteViewController::tickedFolders() const {
    TickedFolders sums;
    const TreeNode* const all = m_results.hasWholeFolders() ? m_results.tree(0) : nullptr;
    for (std::size_t g = 0; all != nullptr && g < all->numberOfChildren(); ++g) {
        const TreeNode& group = *all->childAtIndex(g);
        if (simpleData(group)->wholeFolder() == nullptr) continue;
        const std::size_t ticked = countTicked(group);
        sums.folders += ticked;
        sums.files += ticked * simpleData(group)->wholeFolder()->files;
    }
    return sums;
}

QString SameFileDeleteViewController::folderConsequence() const {
    const TickedFolders ticked = tickedFolders();
    if (ticked.folders == 0) return {};
    const QString files = countedEntries({static_cast<std::size_t>(ticked.files), 0});
    return ticked.folders == 1 ? tr("1 of them is a folder: all that is in it goes, %1.").arg(files)
                               : tr("%Ln of them are folders: all that is in them goes, %1.",
                                    nullptr, static_cast<int>(ticked.folders))
                                     .arg(files);
}

}  // namespace orrinvale
