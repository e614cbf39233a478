// DiskUsageAppController: the map, which shows the folder of the last column.
#include <QStackedWidget>
#include <algorithm>
#include <vector>

#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/DiskUsageViews.h"
#include "ui/diskusage/TreemapView.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/pathText.h"

namespace orrinvale {

void DiskUsageAppController::connectMap() {
    TreemapView& map = *m_views->map;
    connect(&map, &TreemapView::hovered, this, &DiskUsageAppController::mapHovered);
    connect(&map, &TreemapView::goWanted, this, [this](FSNode* node) { goTo(*node); });
    connect(&map, &TreemapView::upWanted, this, &DiskUsageAppController::goUp);
    connect(&map, &TreemapView::tickWanted, this, &DiskUsageAppController::boxClicked);
    connect(&map, &TreemapView::menuWanted, this, &DiskUsageAppController::showRowMenu);
    connect(&map, &TreemapView::chosen, this, [this](const FSNode* node) {
        notice::selectPath.post(*m_parts.notifications, node->path());
        showMapLine(node);
    });
    connect(m_views->mapUpBtn, &QAbstractButton::clicked, this, &DiskUsageAppController::goUp);
}

void DiskUsageAppController::showAs(ShownAs look) {
    m_shownAs = look;
    (look == ShownAs::Map       ? m_views->mapBtn
     : look == ShownAs::Changes ? m_views->changesBtn
                                : m_views->columnsBtn)
        ->setChecked(true);
    showFitting();
    showTitle();
    showMapFolder();
    m_views->shown->currentWidget()->setFocus();
}

void DiskUsageAppController::showMapFolder() {
    const Scanned* const scanned = current();
    ColumnBrowser& browser = *m_views->browser;
    if (m_shownAs != ShownAs::Map || scanned == nullptr || browser.lastColumn() < 0) {
        m_views->map->setFolder(nullptr, nullptr);
        return;
    }
    FSNode& folder = static_cast<FSNodeColumn&>(browser.model(browser.lastColumn())).folder();
    m_views->map->setFolder(scanned->shown, &folder);
    m_views->map->setCurrent(nodeOf(browser.current()));
    m_views->map->reload();
    m_views->mapUpBtn->setEnabled(m_state == State::Result && folder.father() != nullptr);
    showMapLine(nullptr);
}

void DiskUsageAppController::mapHovered(const TreemapEntry* entry) {
    const Scanned* const scanned = current();
    if (entry == nullptr || !entry->isLeftOut() || scanned == nullptr)
        return showMapLine(entry != nullptr ? entry->node : nullptr);
    m_views->mapLine->setText(
        QStringLiteral("%1  ·  %2")
            .arg(bytesWords(entry->size), restWords(*entry, scanned->shown->limit)));
}

// Null: of the folder.
void DiskUsageAppController::showMapLine(const FSNode* node) {
    const FSNode* const shown = node != nullptr ? node : m_views->map->folder();
    if (shown == nullptr) return;
    const QString mark = markOf(*shown);
    m_views->mapLine->setText(
        QStringLiteral("%1  ·  %2")
            .arg(mark.isEmpty() ? sizeWords(*shown, false)
                                : QStringLiteral("%1 (%2)").arg(sizeWords(*shown, false), mark),
                 onOneLine(QString::fromStdString(shown->path()))));
}

// From the root on, each in the list of its father.
void DiskUsageAppController::goTo(const FSNode& node) {
    std::vector<int> rows;
    for (const FSNode* each = &node; each->father() != nullptr; each = each->father()) {
        const auto children = each->father()->children();
        const auto found = std::ranges::find(children, each);
        if (found == children.end()) return;  // it has gone
        rows.push_back(int(found - children.begin()));
    }
    std::ranges::reverse(rows);
    if (rows.empty()) m_views->browser->closeBehind(0);
    else m_views->browser->openRows(rows);
}

void DiskUsageAppController::goUp() {
    const FSNode* const folder = m_views->map->folder();
    if (m_state == State::Result && folder != nullptr && folder->father() != nullptr)
        goTo(*folder->father());
}

}  // namespace orrinvale
