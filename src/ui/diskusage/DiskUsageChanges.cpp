// DiskUsageAppController: what changed since an earlier scan, as a list and beside the sizes.
#include <QMenu>
#include <utility>

#include "engine/diskusage/history/ScanDifference.h"
#include "engine/diskusage/history/changeWords.h"
#include "ui/diskusage/ChangesColumn.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/DiskUsageViews.h"
#include "ui/diskusage/FileSystemBrowserCell.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/picture.h"
#include "ui/page/rowMenu.h"

namespace orrinvale {

void DiskUsageAppController::connectChanges() {
    using Self = DiskUsageAppController;
    DiskUsageViews& views = *m_views;
    connect(views.changesBtn, &QAbstractButton::clicked, this, &Self::compareWithOffered);
    connect(views.grownLine, &QAbstractButton::clicked, this, [this] {
        if (const Scanned* const scanned = current(); scanned != nullptr && scanned->earlier)
            compareWith(scanned->earlier->time);
    });
    connect(views.compareBtn, &QAbstractButton::clicked, this, &Self::showCompareMenu);
    ColumnBrowser& browser = *views.changes;
    browser.setItemDelegate(new FileSystemBrowserCell(
        {.willDisplay = [this](FileSystemBrowserCell& cell,
                               const QModelIndex& row) { willDisplayChange(cell, row); },
         .touched = [](const QModelIndex& /*row*/) {},
         .boxClicked = [](const QModelIndex& /*row*/) {}},
        &browser));
    const auto numberAt = [&browser](int column, int row) {
        return static_cast<const ChangesColumn&>(browser.model(column)).number(row);
    };
    connect(&browser, &ColumnBrowser::openWanted, this, [this, numberAt](int column, int row) {
        if (const auto number = numberAt(column, row)) goToChange(*number);
    });
    connect(&browser, &ColumnBrowser::menuWanted, this,
            [this, numberAt](int column, int row, QPoint place) {
                if (const auto number = numberAt(column, row)) showChangeMenu(*number, place);
            });
}

std::unique_ptr<ColumnModel> DiskUsageAppController::changesColumn(
    const std::shared_ptr<ShownScan>& shown) {
    if (shown->compared == nullptr) return nullptr;
    return std::make_unique<ChangesColumn>(shown, 0);
}

void DiskUsageAppController::showChanges() {
    m_views->changes->setRoot(changesColumn(current()->shown));
    if (m_state == State::Result) showAs(ShownAs::Changes);
}

bool DiskUsageAppController::showsChanges() const {
    const auto found = m_scans.find(m_selectedPath);
    return m_shownAs == ShownAs::Changes && m_state != State::Scanning && found != m_scans.end() &&
           found->second.shown->compared != nullptr;
}

// What there is now, after a removal too. Which place it is the left side shows, and since when the
// button beside, so that the figure has room in a narrow window.
QString DiskUsageAppController::changesTitle() const {
    const ShownScan& shown = *m_scans.find(m_selectedPath)->second.shown;
    const std::uint64_t before = shown.compared->root().sizeBefore;
    const std::uint64_t now = shown.tree->root().size();
    if (now == before) return tr("As much as then");
    return (now > before ? tr("%1 more") : tr("%1 less"))
        .arg(aboutText(bytesWords(now > before ? now - before : before - now),
                       doubtWord(shown.compared->root()).has_value()));
}

void DiskUsageAppController::willDisplayChange(FileSystemBrowserCell& cell,
                                               const QModelIndex& row) {
    const auto& column = static_cast<const ChangesColumn&>(*row.model());
    const auto number = column.number(row.row());
    cell.nodeValue = nullptr;
    cell.button.reset();
    cell.share.reset();
    cell.titleStr = row.data().toString();
    cell.sizeStr = column.sizeText(row.row());
    cell.noteStr = column.note(row.row());
    cell.image = {};
    cell.opensColumn = false;
    cell.labelColor = cell.sizeColor = Theme::Color::TextSecondary;
    if (!number) return;
    const ScanChange& change = column.difference().all()[*number];
    cell.opensColumn = change.childCount != 0;
    cell.image =
        change.isFolder ? picture(QStringLiteral("folder"))
        : m_parts.icons
            ? m_parts.icons({IconRequest::BareName, std::string(column.difference().name(change))})
            : QIcon();
    if (!column.isGone(row.row())) cell.labelColor = Theme::Color::Text;
    cell.sizeColor = column.change(row.row()) > 0 ? Theme::Color::Warning : Theme::Color::Success;
    if (cell.noteStr.isEmpty()) cell.share = column.share(row.row());
}

// Beside its size; empty where nothing is compared.
QString DiskUsageAppController::markOf(const FSNode& node) const {
    const auto found = m_scans.find(m_selectedPath);
    if (found == m_scans.end() || found->second.shown->compared == nullptr) return {};
    return changeMark(*found->second.shown->compared, node);
}

// In the columns, as far down as there is something of it in the tree.
void DiskUsageAppController::goToChange(std::uint32_t number) {
    const Scanned* const scanned = current();
    if (scanned == nullptr || scanned->shown->compared == nullptr || m_state != State::Result)
        return;
    FSNode& root = scanned->shown->tree->root();
    const ChangedNode found = nodeOfChange(*scanned->shown->compared, number, root);
    showAs(ShownAs::Columns);
    goTo(*found.node);
}

void DiskUsageAppController::showChangeMenu(std::uint32_t number, QPoint position) {
    const Scanned* const scanned = current();
    if (scanned == nullptr || scanned->shown->compared == nullptr) return;
    const auto compared = scanned->shown->compared;
    const bool isGone = compared->all()[number].kind == ScanChange::Kind::Went;
    QMenu* const menu =
        makeRowMenu(m_views->page, *this,
                    {.preview = {},
                     .reveal =
                         [this, compared, number] {
                             if (m_parts.reveal) m_parts.reveal(compared->path(number));
                         },
                     .path = [compared, number] { return compared->path(number); }});
    QAction* const show = menu->addAction(tr("Show in Columns"), this, [this, number, compared] {
        const Scanned* const stands = current();
        if (stands != nullptr && stands->shown->compared == compared) goToChange(number);
    });
    show->setEnabled(!isGone && m_state == State::Result);
    menu->popup(position);
}

}  // namespace orrinvale
