// DiskUsageAppController: scans that are kept, and what changed since one of them.
#include <QDateTime>
#include <QLocale>
#include <QMenu>
#include <algorithm>
#include <cerrno>
#include <utility>

#include "engine/diskusage/history/ScanHistory.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "services/foundation/runAside.h"
#include "ui/diskusage/ChangesColumn.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/DiskUsageViews.h"
#include "ui/diskusage/FileSystemBrowserCell.h"
#include "ui/diskusage/TreemapView.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/look/picture.h"
#include "ui/page/rowMenu.h"

namespace orrinvale {
namespace {

QString momentText(std::int64_t seconds) {
    return QLocale().toString(QDateTime::fromSecsSinceEpoch(seconds), QLocale::ShortFormat);
}

QString dayText(std::int64_t seconds) {
    return QLocale().toString(QDateTime::fromSecsSinceEpoch(seconds).date(), QLocale::ShortFormat);
}

const ChangesColumn* changesOf(const QModelIndex& row) {
    return qobject_cast<const ChangesColumn*>(row.model());
}

/// What comes of a scan that has ended.
struct Remembered {
    std::shared_ptr<const StoredScan> scan;
    std::vector<KeptScan> kept;  // before it
};

Remembered remembered(const ScanHistory& history, ScanRecord& record, bool isKept) {
    Remembered done;
    auto scan = parseScan(encodeScan(record));
    if (!scan) return done;
    done.kept = history.list({scan->facts.root, scan->facts.allFileSystems});
    std::erase_if(done.kept, [&](const KeptScan& each) { return each.time == scan->facts.time; });
    if (isKept) static_cast<void>(history.keep(*scan));  // else it is only not there another day
    done.scan = std::make_shared<const StoredScan>(std::move(*scan));
    return done;
}

}  // namespace

void DiskUsageAppController::connectChanges() {
    DiskUsageViews& views = *m_views;
    connect(views.changesBtn, &QAbstractButton::clicked, this,
            [this] { showAs(ShownAs::Changes); });
    connect(views.compareBtn, &QAbstractButton::clicked, this,
            &DiskUsageAppController::showCompareMenu);
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

// The scan object ends in this turn.
void DiskUsageAppController::rememberScan() {
    const Scanned* const scanned = current();
    const auto record = m_scan->record();
    if (scanned == nullptr || record == nullptr || m_parts.stateFolder.empty()) return;
    runAside(
        this, "remember scan",
        [record, history = ScanHistory(m_parts.stateFolder),
         isKept = m_parts.defaults->boolForKey(rememberScansKey)] {
            return remembered(history, *record, isKept);
        },
        [this, of = std::weak_ptr(scanned->shown)](Remembered done) {
            Scanned* const stands = scannedOf(of);
            if (stands == nullptr) return;
            stands->stored = std::move(done.scan);
            stands->kept = std::move(done.kept);
            refreshComparing();
        });
}

// Null where another scan of the place has come, or the place has gone.
DiskUsageAppController::Scanned* DiskUsageAppController::scannedOf(
    const std::weak_ptr<ShownScan>& shown) {
    const auto found = std::ranges::find_if(
        m_scans, [held = shown.lock()](const auto& each) { return each.second.shown == held; });
    return found == m_scans.end() ? nullptr : &found->second;
}

void DiskUsageAppController::refreshComparing() {
    const Scanned* const scanned = current();
    const bool hasKept = scanned != nullptr && scanned->stored != nullptr && !scanned->kept.empty();
    const bool isFreeNow = m_state == State::Result;
    const bool isCompared = scanned != nullptr && scanned->shown->compared != nullptr;
    if (m_shownAs == ShownAs::Changes && !isCompared) {
        m_shownAs = ShownAs::Columns;
        m_views->columnsBtn->setChecked(true);
    }
    const QString arrow = QStringLiteral(" ") + QChar(0x25BE);
    m_views->compareBtn->setText(
        (isCompared ? tr("Since %1").arg(dayText(scanned->shown->compared->before().time))
                    : tr("Compare")) +
        arrow);
    m_views->compareBtn->setEnabled(hasKept && isFreeNow);
    m_views->compareBtn->setToolTip(hasKept ? tr("Show what changed since an earlier scan")
                                            : tr("No earlier scan of this place is kept"));
    m_views->changesBtn->setEnabled(isCompared && isFreeNow);
    if (m_state == State::Result) showFitting();
    showTitle();
    m_views->browser->redraw();
    m_views->map->reload();
}

bool DiskUsageAppController::showsChanges() const {
    const auto found = m_scans.find(m_selectedPath);
    return m_shownAs == ShownAs::Changes && m_state != State::Scanning && found != m_scans.end() &&
           found->second.shown->compared != nullptr;
}

QString DiskUsageAppController::changesTitle(const QString& path) const {
    const ScanDifference& difference = *m_scans.find(m_selectedPath)->second.shown->compared;
    const ScanChange& whole = difference.root();
    if (whole.change() == 0) return tr("As much as then in %1").arg(path);
    return (whole.change() > 0 ? tr("%1 more in %2") : tr("%1 less in %2"))
        .arg(bytesWords(whole.change() > 0 ? whole.sizeAfter - whole.sizeBefore
                                           : whole.sizeBefore - whole.sizeAfter),
             path);
}

void DiskUsageAppController::showCompareMenu() {
    const Scanned* const scanned = current();
    if (scanned == nullptr || m_state != State::Result) return;
    auto* const menu = new QMenu(m_views->compareBtn);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectName(QStringLiteral("compareMenu"));
    const auto& compared = scanned->shown->compared;
    for (auto each = scanned->kept.rbegin(); each != scanned->kept.rend(); ++each) {
        QAction* const action = menu->addAction(momentText(each->time), this,
                                                [this, time = each->time] { compareWith(time); });
        action->setCheckable(true);
        action->setChecked(compared != nullptr && compared->before().time == each->time);
    }
    menu->addSeparator();
    menu->addAction(tr("Without Comparison"), this, [this] { endComparison(); })
        ->setEnabled(compared != nullptr);
    menu->addAction(tr("Forget the Scans of This Place"), this, [this] { askToForget(); })
        ->setObjectName(QStringLiteral("forgetScans"));
    menu->popup(m_views->compareBtn->mapToGlobal(m_views->compareBtn->rect().bottomLeft()));
}

void DiskUsageAppController::compareWith(std::int64_t time) {
    const Scanned* const scanned = current();
    if (scanned == nullptr || scanned->stored == nullptr || m_state != State::Result) return;
    using Compared = tl::expected<std::shared_ptr<const ScanDifference>, std::string>;
    runAside(
        this, "compare scans",
        [history = ScanHistory(m_parts.stateFolder), now = scanned->stored, time]() -> Compared {
            const auto before = history.load({now->facts.root, now->facts.allFileSystems}, time);
            if (!before) return tl::unexpected(before.error().reason());
            auto difference = ScanDifference::of(*before, *now);
            if (!difference) return tl::unexpected(systemError("read", {}, EBADMSG).reason());
            return std::make_shared<const ScanDifference>(std::move(*difference));
        },
        [this, of = std::weak_ptr(scanned->shown), time](Compared compared) {
            Scanned* const stands = scannedOf(of);
            if (stands == nullptr) return;
            if (compared) stands->shown->compared = std::move(*compared);
            else
                std::erase_if(stands->kept,
                              [time](const KeptScan& each) { return each.time == time; });
            if (compared && stands == current() && m_state == State::Result) showChanges();
            refreshComparing();
            if (compared) return;
            Alert alert;
            alert.title = tr("This scan can not be read.");
            alert.text = inWords(compared.error());
            m_parts.dialogs->alert(m_mainWindow, alert, [](int /*button*/) {});
        });
}

std::unique_ptr<ColumnModel> DiskUsageAppController::changesColumn(const ShownScan& shown) {
    if (shown.compared == nullptr) return nullptr;
    return std::make_unique<ChangesColumn>(shown.compared, 0, shown.limit);
}

void DiskUsageAppController::showChanges() {
    m_views->changes->setRoot(changesColumn(*current()->shown));
    showAs(ShownAs::Changes);
}

void DiskUsageAppController::endComparison() {
    Scanned* const scanned = current();
    if (scanned == nullptr || m_state != State::Result) return;
    m_views->changes->setRoot(nullptr);
    scanned->shown->compared = nullptr;
    if (m_shownAs == ShownAs::Changes) showAs(ShownAs::Columns);
    refreshComparing();
}

void DiskUsageAppController::askToForget() {
    const Scanned* const scanned = current();
    if (scanned == nullptr) return;
    Alert question;
    question.title = tr("Forget the scans of this place?");
    question.text =
        tr("What it took up on earlier days can not be told any more. The files "
           "themselves stay as they are.");
    question.buttons = QStringList{tr("Forget"), tr("Cancel")};
    question.cancelButton = 1;
    m_parts.dialogs->alert(
        m_mainWindow, question, [this, of = std::weak_ptr(scanned->shown)](int button) {
            Scanned* const stands = scannedOf(of);
            if (button != 0 || stands == nullptr) return;
            runAside(
                this, "forget scans",
                [history = ScanHistory(m_parts.stateFolder),
                 root = stands->shown->tree->rootPath()] { return history.forget(root); },
                [](bool /*isForgotten*/) {});
            stands->kept.clear();
            if (stands == current()) endComparison();
            refreshComparing();
        });
}

void DiskUsageAppController::willDisplayChange(FileSystemBrowserCell& cell,
                                               const QModelIndex& row) {
    const ChangesColumn& column = *changesOf(row);
    const auto number = column.number(row.row());
    cell.nodeValue = nullptr;
    cell.button.reset();
    cell.share.reset();
    cell.titleStr = row.data().toString();
    cell.sizeStr = column.sizeText(row.row());
    cell.noteStr.clear();
    cell.image = {};
    cell.opensColumn = false;
    cell.labelColor = cell.sizeColor = Theme::Color::TextSecondary;
    if (!number) return;
    const ScanChange& change = column.difference().all()[*number];
    cell.noteStr = changeNote(column.difference(), *number);
    cell.opensColumn = change.childCount != 0;
    cell.image =
        change.isFolder ? picture(QStringLiteral("folder"))
        : m_parts.icons
            ? m_parts.icons({IconRequest::BareName, std::string(column.difference().name(change))})
            : QIcon();
    if (change.kind != ScanChange::Kind::Went) cell.labelColor = Theme::Color::Text;
    cell.sizeColor = change.change() > 0 ? Theme::Color::Warning : Theme::Color::Success;
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
    const ScanDifference& difference = *scanned->shown->compared;
    std::vector<std::string_view> way;
    for (; number != 0; number = difference.all()[number].parent)
        way.push_back(difference.name(difference.all()[number]));
    const FSNode* node = &scanned->shown->tree->root();
    for (auto each = way.rbegin(); each != way.rend(); ++each) {
        const auto children = node->children();
        const auto found = std::ranges::find(children, *each, &FSNode::name);
        if (found == children.end()) break;
        node = *found;
    }
    showAs(ShownAs::Columns);
    goTo(*node);
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
