// DiskUsageAppController: its columns and their boxes, and what is done with one item.
#include <fmt/format.h>

#include <QLabel>
#include <QLocale>
#include <QMenu>
#include <algorithm>

#include "engine/base/Log.h"
#include "engine/diskusage/UsageSelection.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/DiskUsageViews.h"
#include "ui/diskusage/FileSystemBrowserCell.h"
#include "ui/diskusage/ItemFacts.h"
#include "ui/diskusage/TreemapView.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/look/picture.h"
#include "ui/page/rowMenu.h"

namespace orrinvale {
namespace {

constexpr int flyingSide = 30;

}  // namespace

FSNode* DiskUsageAppController::nodeOf(const QModelIndex& row) {
    const auto* const column = qobject_cast<const FSNodeColumn*>(row.model());
    return column != nullptr ? column->node(row.row()) : nullptr;
}

QIcon DiskUsageAppController::iconOf(const FSNode& node) const {
    if (node.isDirectory()) return picture(QStringLiteral("folder"));
    return m_parts.icons ? m_parts.icons({IconRequest::BareName, std::string(node.name())})
                         : QIcon();
}

void DiskUsageAppController::willDisplayCell(FileSystemBrowserCell& cell, const QModelIndex& row) {
    FSNode* const node = nodeOf(row);
    const bool isRunning = m_state == State::Scanning && !m_isRescan;
    cell.nodeValue = node;
    cell.titleStr = row.data().toString();
    cell.isEnabled = m_state == State::Result;
    cell.share.reset();
    cell.noteStr.clear();
    if (node == nullptr) {
        const auto& column = static_cast<const FSNodeColumn&>(*row.model());
        cell.image = {};
        cell.button.reset();
        cell.opensColumn = false;
        cell.sizeStr = bytesWords(column.folder().leftOut().size);
        cell.labelColor = cell.sizeColor = Theme::Color::TextSecondary;
        return;
    }
    cell.image = iconOf(*node);
    cell.button = tickState(int(node->isButtonState()));
    cell.opensColumn = node->isDirectory();
    cell.sizeStr = sizeWords(*node, isRunning);
    cell.labelColor = Theme::Color::Text;
    cell.sizeColor = getColorWithNode(node->size());
    cell.noteStr = markOf(*node);
    const std::uint64_t whole = node->father() != nullptr ? node->father()->size() : 0;
    // While the first level is counted nobody knows what its whole will be.
    if (whole != 0 && !isRunning) cell.share = double(node->size()) / double(whole);
}

void DiskUsageAppController::boxClicked(FSNode* node) {
    if (node == nullptr || m_state != State::Result) return;
    clickBox(*node);
    // Columns that stand open show what goes, as if they were loaded now.
    const ColumnBrowser& browser = *m_views->browser;
    for (int column = 0; column <= browser.lastColumn(); ++column)
        static_cast<void>(
            openColumn(static_cast<const FSNodeColumn&>(browser.model(column)).folder()));
    notice::refRemoveButtonState.post(*m_parts.notifications, node);
}

void DiskUsageAppController::getSelectRowPath(const std::string& path) {
    m_itemPath = path;
    removeBtnState(m_views->removeBtn->isEnabled());
}

void DiskUsageAppController::chosenChanged() {
    const QModelIndex row = m_views->browser->current();
    const FSNode* const node = nodeOf(row);
    if (node != nullptr) m_itemPath = node->path();
    if (node != nullptr && !node->isDirectory()) m_views->itemFacts->showFile(*node, iconOf(*node));
    else if (node == nullptr && row.isValid())
        m_views->itemFacts->showLeftOut(static_cast<const FSNodeColumn&>(*row.model()).folder(),
                                        current()->shown->limit);
    else m_views->itemFacts->clear();
    showMapFolder();
    removeBtnState(m_views->removeBtn->isEnabled());
}

void DiskUsageAppController::refRemoveButtonState() {
    const FSNode* const root = rootNode();
    const bool isOn = root != nullptr && m_state == State::Result && hasTicks(*root);
    const std::vector<FSNode*> ticked = isOn ? prePareDelData(root) : std::vector<FSNode*>();
    std::uint64_t size = 0;
    for (const FSNode* const each : ticked) size += each->size();
    m_views->removeBtn->setText(isOn ? tr("Remove %1").arg(bytesWords(size)) : tr("Remove"));
    ResultFrame::showLine(
        *m_views->tickedLabel,
        isOn ? tr("%Ln ticked", nullptr, static_cast<int>(ticked.size())) : QString());
    removeBtnState(isOn);
    m_views->browser->redraw();
    m_views->map->reload();
}

void DiskUsageAppController::removeBtnState(bool isOn) {
    m_views->removeBtn->setEnabled(isOn);
    const bool hasItem = m_state == State::Result && !m_itemPath.empty();
    m_views->openFinderBtn->setEnabled(hasItem);
    m_views->revealFinderBtn->setEnabled(hasItem);
}

void DiskUsageAppController::flyFileAnimation(const FSNode* node) {
    if (node == nullptr || node->isButtonState() != FSNode::Selected) return;
    ColumnBrowser& browser = *m_views->browser;
    for (int column = browser.lastColumn(); column >= 0; --column) {
        const auto& shown = static_cast<const FSNodeColumn&>(browser.model(column));
        if (&shown.folder() != node->father()) continue;
        Log::line(fmt::format("columnum  == {}", column));
        const QRect row = browser.rowRect(column, shown.rowOf(*node));
        if (row.isEmpty()) return;
        const QRect box = FileSystemBrowserCell::checkBoxForFrame(row, browser.layoutDirection())
                              .translated(browser.mapTo(m_views->resultView, QPoint(0, 0)));
        m_flight.fly(picturePixmap(QStringLiteral("file1.png"), QSize(flyingSide, flyingSide),
                                   browser.devicePixelRatioF()),
                     box, m_views->backButton);
        return;
    }
}

void DiskUsageAppController::openFileClick() {
    if (m_state == State::Result && !m_itemPath.empty() && m_own.open)
        static_cast<void>(m_own.open(m_itemPath));
}

void DiskUsageAppController::revealFinderClick() {
    if (m_state == State::Result && !m_itemPath.empty() && m_parts.reveal)
        m_parts.reveal(m_itemPath);
}

void DiskUsageAppController::showRowMenu(FSNode* node, QPoint position) {
    Scanned* const scanned = current();
    if (node == nullptr || scanned == nullptr) return;
    // The tree lives as long as the menu, so that its node does; another scan may have begun
    // meanwhile.
    const auto tree = scanned->shown->tree;
    QMenu* const menu = makeRowMenu(m_views->page, *this,
                                    {.preview = {},
                                     .reveal =
                                         [this, path = node->path()] {
                                             if (m_parts.reveal) m_parts.reveal(path);
                                         },
                                     .path = [tree, node] { return node->path(); }});
    if (node->isDirectory()) {
        QAction* const rescan = menu->addAction(tr("Scan This Folder Again"), this, [=, this] {
            if (m_state == State::Result && current() != nullptr && current()->shown->tree == tree)
                scanAgain({node});
        });
        rescan->setObjectName(QStringLiteral("scanAgain"));
        rescan->setEnabled(m_state == State::Result);
    }
    menu->popup(position);
}

}  // namespace orrinvale
