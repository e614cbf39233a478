// DiskUsageAppController: scans that are kept, and the one that is compared with.
// DiskUsageChanges.cpp shows what changed.
#include <QDateTime>
#include <QLocale>
#include <QMenu>
#include <algorithm>
#include <array>
#include <cerrno>
#include <ctime>
#include <utility>

#include "engine/diskusage/history/ScanHistory.h"
#include "engine/diskusage/history/changeWords.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "services/foundation/runAside.h"
#include "ui/diskusage/ChangesColumn.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/DiskUsageViews.h"
#include "ui/diskusage/TreemapView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/failureWords.h"

namespace orrinvale {
namespace {

QString scanMoment(std::int64_t seconds) {
    return QLocale().toString(QDateTime::fromSecsSinceEpoch(seconds), QLocale::ShortFormat);
}

// With the time where the day would say nothing.
QString scanDay(std::int64_t seconds) {
    const QDate day = QDateTime::fromSecsSinceEpoch(seconds).date();
    return day == QDate::currentDate() ? scanMoment(seconds)
                                       : QLocale().toString(day, QLocale::ShortFormat);
}

// The same words as those of the terminal.
QString sinceText(std::string_view word) {
    constexpr std::array<std::pair<std::string_view, const char*>, 4> words{
        {{lastScanWord, QT_TRANSLATE_NOOP("DiskUsageAppController", "Last scan")},
         {"yesterday", QT_TRANSLATE_NOOP("DiskUsageAppController", "Yesterday")},
         {"last-week", QT_TRANSLATE_NOOP("DiskUsageAppController", "Last week")},
         {"last-month", QT_TRANSLATE_NOOP("DiskUsageAppController", "Last month")}}};
    const auto* const found =
        std::ranges::find(words, word, [](const auto& each) { return each.first; });
    return found == words.end()
               ? QString()
               : QCoreApplication::translate("DiskUsageAppController", found->second);
}

// Of a week ago, or what comes nearest to it.
std::optional<KeptScan> offeredOf(const std::vector<KeptScan>& kept) {
    const auto moment = momentOfWord("last-week", std::time(nullptr));
    return moment ? scanBefore(kept, *moment) : std::nullopt;
}

/// What comes of a scan that has ended.
struct RememberedScan {
    std::shared_ptr<const StoredScan> scan;
    std::vector<KeptScan> kept;        // before it
    std::optional<ScanFacts> earlier;  // of the one that is offered
};

RememberedScan rememberedScan(const ScanHistory& history, ScanRecord& record, bool isKept) {
    RememberedScan done;
    auto scan = parseScan(encodeScan(record));
    if (!scan) return done;
    const ScanHistory::Place place{scan->facts.root, scan->facts.allFileSystems,
                                   scan->facts.volume};
    // First, since that forgets the oldest. Where it fails it is only not there another day.
    if (isKept) static_cast<void>(history.keep(*scan));
    done.kept = history.list(place);
    const auto leave = [&](std::int64_t time) {
        std::erase_if(done.kept, [time](const KeptScan& each) { return each.time == time; });
    };
    leave(scan->facts.time);
    while (const auto offered = offeredOf(done.kept)) {
        if (auto earlier = history.load(place, offered->time)) {
            done.earlier = std::move(earlier->facts);
            break;
        }
        leave(offered->time);
    }
    done.scan = std::make_shared<const StoredScan>(std::move(*scan));
    return done;
}

}  // namespace

// Of a folder that could not be read there is nothing to be kept.
void DiskUsageAppController::rememberScan() {
    const Scanned* const scanned = current();
    const auto record = m_scan->record();  // the scan object ends in this turn
    if (scanned == nullptr || record == nullptr || m_parts.stateFolder.empty() ||
        scanned->shown->tree->root().has(FSNode::Unread))
        return;
    runAside(
        this, "remember scan",
        [record, history = ScanHistory(m_parts.stateFolder),
         isKept = m_parts.defaults->boolForKey(rememberScansKey)] {
            return rememberedScan(history, *record, isKept);
        },
        [this, of = std::weak_ptr(scanned->shown)](RememberedScan done) {
            Scanned* const stands = scannedOf(of);
            if (stands == nullptr) return;
            stands->stored = std::move(done.scan);
            stands->kept = std::move(done.kept);
            stands->earlier = std::move(done.earlier);
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

QString DiskUsageAppController::compareTip(const Scanned* scanned) const {
    if (scanned == nullptr) return {};
    if (scanned->stored != nullptr && !scanned->kept.empty())
        return tr("Show what changed since an earlier scan");
    if (scanned->stored == nullptr &&
        (scanned->wasStopped || scanned->shown->tree->root().has(FSNode::Unread)))
        return tr("Only a scan that came to its end can be compared");
    return m_parts.defaults->boolForKey(rememberScansKey)
               ? tr("No earlier scan of this place is kept")
               : tr("The preferences say that scans are not remembered");
}

// Empty where the list of changes says it, or the line has something newer to tell.
QString DiskUsageAppController::grownText(const Scanned* scanned) const {
    if (scanned == nullptr || m_state != State::Result || !scanned->earlier ||
        scanned->stored == nullptr || scanned->shown->compared != nullptr || m_outcome.removed != 0)
        return {};
    const ScanFacts& earlier = *scanned->earlier;
    const std::uint64_t before = earlier.size;
    const std::uint64_t now = scanned->shown->tree->root().size();
    const std::uint64_t difference = std::max(before, now) - std::min(before, now);
    const bool isDoubtful = doubtWord(wholeChange(earlier, scanned->stored->facts)).has_value();
    constexpr std::uint64_t worthTelling = 1000;
    if (difference < worthTelling) return tr("As much as on %1").arg(scanDay(earlier.time));
    return (now > before ? tr("%1 more than on %2") : tr("%1 less than on %2"))
        .arg(aboutText(bytesWords(difference), isDoubtful), scanDay(earlier.time));
}

void DiskUsageAppController::refreshComparing() {
    const Scanned* const scanned = current();
    const bool isCompared = scanned != nullptr && scanned->shown->compared != nullptr;
    const bool canCompare = m_state == State::Result && scanned != nullptr &&
                            scanned->stored != nullptr && !scanned->kept.empty();
    if (m_shownAs == ShownAs::Changes && !isCompared) {
        m_shownAs = ShownAs::Columns;
        m_views->columnsBtn->setChecked(true);
    }
    TextImageButton& compare = *m_views->compareBtn;
    const QString words = isCompared
                              ? tr("Since %1").arg(scanDay(scanned->shown->compared->before().time))
                              : tr("Compare");
    compare.setText(words + QStringLiteral(" ") + QChar(0x25BE));
    compare.setAccessibleName(words);
    compare.setEnabled(canCompare);
    compare.setToolTip(compareTip(scanned));
    m_views->changesBtn->setEnabled(canCompare || (isCompared && m_state == State::Result));
    m_views->changesBtn->setToolTip(m_views->changesBtn->isEnabled() ? tr("Changes")
                                                                     : compareTip(scanned));
    ResultFrame::showLine(*m_views->grownLine, grownText(scanned));
    if (m_state == State::Result) showFitting();
    showTitle();
    m_views->browser->redraw();
    m_views->map->reload();
}

void DiskUsageAppController::showCompareMenu() {
    const Scanned* const scanned = current();
    if (scanned == nullptr || m_state != State::Result) return;
    auto* const menu = new QMenu(m_views->compareBtn);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->setObjectName(QStringLiteral("compareMenu"));
    const auto& compared = scanned->shown->compared;
    const std::int64_t now = std::time(nullptr);
    for (auto each = scanned->kept.rbegin(); each != scanned->kept.rend(); ++each) {
        const QString word = sinceText(wordOfScan(scanned->kept, *each, now));
        const QString moment = scanMoment(each->time);
        QAction* const action = menu->addAction(
            word.isEmpty() ? moment : QStringLiteral("%1  \u00B7  %2").arg(word, moment), this,
            [this, time = each->time] { compareWith(time); });
        action->setCheckable(true);
        action->setChecked(compared != nullptr && compared->before().time == each->time);
    }
    menu->addSeparator();
    QAction* const without =
        menu->addAction(tr("Without Comparison"), this, [this] { endComparison(); });
    without->setObjectName(QStringLiteral("withoutComparison"));
    without->setEnabled(compared != nullptr);
    menu->addAction(tr("Forget the Scans of This Place"), this, [this] { askToForget(); })
        ->setObjectName(QStringLiteral("forgetScans"));
    menu->popup(m_views->compareBtn->mapToGlobal(m_views->compareBtn->rect().bottomLeft()));
}

// The look changes once there is something to look at.
void DiskUsageAppController::compareWithOffered() {
    const Scanned* const scanned = current();
    if (scanned == nullptr) return;
    if (scanned->shown->compared != nullptr) return showAs(ShownAs::Changes);
    (m_shownAs == ShownAs::Map ? m_views->mapBtn : m_views->columnsBtn)->setChecked(true);
    if (const auto offered = offeredOf(scanned->kept)) compareWith(offered->time);
}

void DiskUsageAppController::compareWith(std::int64_t time) {
    Scanned* const scanned = current();
    if (scanned == nullptr || scanned->stored == nullptr || m_state != State::Result) return;
    scanned->wanted = time;
    using Compared = tl::expected<std::shared_ptr<const ScanDifference>, std::string>;
    runAside(
        this, "compare scans",
        [history = ScanHistory(m_parts.stateFolder), now = scanned->stored, time]() -> Compared {
            const auto before =
                history.load({now->facts.root, now->facts.allFileSystems, now->facts.volume}, time);
            if (!before) return tl::unexpected(before.error().reason());
            auto difference = ScanDifference::of(*before, *now);
            if (!difference) return tl::unexpected(systemError("read", {}, EBADMSG).reason());
            return std::make_shared<const ScanDifference>(std::move(*difference));
        },
        [this, of = std::weak_ptr(scanned->shown), time](Compared compared) {
            Scanned* const stands = scannedOf(of);
            // Another one is wanted by now, or none.
            if (stands == nullptr || stands->wanted != time) return;
            stands->wanted.reset();
            if (compared) {
                stands->shown->compared = std::move(*compared);
                if (stands == current()) showChanges();
            } else {
                std::erase_if(stands->kept,
                              [time](const KeptScan& each) { return each.time == time; });
                if (stands->earlier && stands->earlier->time == time) stands->earlier.reset();
                comparisonFailed(*stands, compared.error());
            }
            refreshComparing();
        });
}

void DiskUsageAppController::comparisonFailed(const Scanned& scanned, const std::string& reason) {
    if (&scanned != current()) return;
    Alert alert;
    alert.title = tr("This scan can not be read.");
    alert.text = inWords(reason);
    m_parts.dialogs->alert(m_mainWindow, alert, [](int /*button*/) {});
}

void DiskUsageAppController::endComparison() {
    Scanned* const scanned = current();
    if (scanned == nullptr || m_state != State::Result) return;
    scanned->wanted.reset();
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
    m_parts.dialogs->alert(m_mainWindow, question,
                           [self = QPointer(this), of = std::weak_ptr(scanned->shown)](int button) {
                               if (self != nullptr && button == 0) self->forgetScans(of);
                           });
}

void DiskUsageAppController::forgetScans(const std::weak_ptr<ShownScan>& of) {
    Scanned* const stands = scannedOf(of);
    if (stands == nullptr) return;
    runAside(
        this, "forget scans",
        [history = ScanHistory(m_parts.stateFolder), root = stands->shown->tree->rootPath()] {
            return history.forget(root);
        },
        [this](bool isForgotten) {
            if (isForgotten) return;
            Alert alert;
            alert.title = tr("The scans could not be forgotten.");
            m_parts.dialogs->alert(m_mainWindow, alert, [](int /*button*/) {});
        });
    stands->kept.clear();
    stands->earlier.reset();
    stands->wanted.reset();
    if (stands == current()) endComparison();
    else stands->shown->compared = nullptr;
    refreshComparing();
}

}  // namespace orrinvale
