// DiskUsageAppController: the scan of a place, what is shown of it while it runs, and how it ends.
#include <QLabel>
#include <QLocale>
#include <QStackedWidget>
#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>

#include "engine/base/Log.h"
#include "engine/diskusage/limitSize.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/DiskUsageViews.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/controls/Animation.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/LineList.h"

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds patience{900};

UsageOptions optionsOf(const ShownScan& shown) {
    return {.limit = shown.limit, .allFileSystems = shown.allFileSystems};
}

// Those of the folders themselves among them.
void forgetWithin(std::vector<Error>& errors, const std::set<std::string, std::less<>>& folders) {
    std::erase_if(errors, [&](const Error& error) {
        std::string_view path = error.path;
        while (!folders.contains(path)) {
            const std::size_t end = path.rfind('/');
            if (end == std::string_view::npos || path.size() == 1) return false;
            path = path.substr(0, std::max<std::size_t>(end, 1));
        }
        return true;
    });
}

}  // namespace

DiskUsageAppController::Scanned* DiskUsageAppController::current() {
    const auto found = m_scans.find(m_selectedPath);
    return found == m_scans.end() ? nullptr : &found->second;
}

FSNode* DiskUsageAppController::rootNode() const {
    const auto found = m_scans.find(m_selectedPath);
    return found == m_scans.end() ? nullptr : &found->second.shown->tree->root();
}

void DiskUsageAppController::getLocalPath() {
    if (!isFree()) return;
    if (m_beforeSelectRow >= 0) {
        browserFiles(m_leftCellArr.at(std::size_t(m_beforeSelectRow))->pathName());
        return;
    }
    Alert alert;
    alert.text = tr("Please select some path to scan.");
    m_parts.dialogs->alert(m_mainWindow, alert, [](int /*button*/) {});
}

void DiskUsageAppController::browserFiles(const std::string& path) {
    m_views->browser->setRoot(nullptr);
    m_views->changes->setRoot(nullptr);
    m_outcome = {};
    auto shown = std::make_shared<ShownScan>();
    shown->tree = std::make_shared<FSNodeTree>(path);
    shown->limit = getLimitSize(*m_parts.defaults);
    shown->allFileSystems = !m_parts.defaults->boolForKey(oneFileSystemKey);
    shown->isRunning = true;
    m_scans[path] = {.shown = shown, .skipped = {}};
    m_isRescan = false;
    m_shownSteps = 0;
    m_views->animation->setAddNumber(0);
    m_views->animation->setPrograssMax(std::numeric_limits<std::int32_t>::max());
    m_views->animation->initZeroPrograss();
    forwardViewForAnimation();
    enter(State::Scanning);
    showFitting();
    m_refreshTimer.start();
    m_scan = std::make_unique<DiskUsageScan>(UsageScanParts{
        m_parts.files, m_parts.mainQueue, [this](const UsageNews& news) { scanNews(news); }});
    UsageOptions options = optionsOf(*shown);
    options.records = !m_parts.stateFolder.empty();
    m_scan->start(shown->tree, options);
    m_views->stopBtn->setFocus();
}

// Other folders of the tree stay as they are.
void DiskUsageAppController::scanAgain(std::vector<FSNode*> folders) {
    Scanned* const scanned = current();
    if (scanned == nullptr || folders.empty()) return;
    m_isRescan = true;
    scanned->shown->hasChanged = true;
    m_rescanned.clear();
    for (const FSNode* const folder : folders) m_rescanned.insert(folder->path());
    m_views->animation->initZeroPrograss();
    enter(State::Scanning);
    m_refreshTimer.start();
    m_scan = std::make_unique<DiskUsageScan>(UsageScanParts{
        m_parts.files, m_parts.mainQueue, [this](const UsageNews& news) { scanNews(news); }});
    m_scan->scanAgain(scanned->shown->tree, std::move(folders), optionsOf(*scanned->shown));
}

void DiskUsageAppController::scanNews(const UsageNews& news) {
    Scanned* const scanned = current();
    if (scanned == nullptr) return;
    if (news.levelStands) {
        m_views->animation->setPrograssMax(std::int32_t(m_scan->progress().of));
        m_views->browser->setRoot(
            std::make_unique<FSNodeColumn>(scanned->shown, scanned->shown->tree->root()));
    }
    const bool moves = !news.left.empty() || !news.counted.empty();
    if (moves && !news.ended && !m_reloadTimer.isActive()) m_reloadTimer.start();
    refreshProgress();
    if (news.ended) browseFilesFinished();
}

void DiskUsageAppController::refreshProgress() {
    if (m_removal != nullptr || m_counting != nullptr || m_scan == nullptr) return;
    const Progress progress = m_scan->progress();
    m_views->stripLabel->setText(
        tr("%1 items").arg(QLocale().toString(qulonglong(m_scan->foundCount()))));
    refreshColumn();
    if (m_isRescan) {
        m_views->animation->baseNumberSetPrograss(std::int32_t(progress.percent()));
        return;
    }
    if (progress.of == 0 || progress.done <= m_shownSteps) return;
    const auto steps = std::int32_t(progress.done - std::exchange(m_shownSteps, progress.done));
    m_views->animation->prograssShowDependChangeSize(steps);
}

void DiskUsageAppController::refreshColumn() { m_views->browser->redraw(); }

void DiskUsageAppController::stopBtnClick() {
    if (m_state == State::Counting && m_counting) {
        m_counting->stop = true;
        // A disk that does not answer holds its thread, and nobody else.
        QTimer::singleShot(patience, this, [this, counting = m_counting] {
            if (m_counting == counting) countingEnded(nullptr, {});
        });
    }
    if (m_state == State::Removing && m_removal) m_removal->stop();
    if (m_state == State::Scanning && m_scan) {
        Log::line("stopBtnClick");
        m_views->animation->stop();
        m_views->animation->setAddNumber(0);
        m_scan->stopScan();
    }
    m_views->stopBtn->setEnabled(false);
}

// The strip is full; what is still to come is the order of the columns.
void DiskUsageAppController::allThreadFinishCallBack() {
    if (m_state == State::Scanning) Log::line("allThread is over.....");
}

void DiskUsageAppController::browseFilesFinished() {
    Scanned& scanned = *current();
    m_diskUsageScaned = true;
    m_refreshTimer.stop();
    m_reloadTimer.stop();
    scanned.shown->isRunning = false;
    scanned.wasStopped = m_scan->wasStopped();
    if (m_isRescan) forgetWithin(scanned.skipped, m_rescanned);
    else scanned.skipped.clear();
    for (const Error& each : m_scan->skipped()) scanned.skipped.push_back(each);
    if (!m_isRescan) rememberScan();
    // It is the scan's own call that is running, so that it goes in a later turn.
    m_parts.mainQueue->async([ended = std::shared_ptr<DiskUsageScan>(std::move(m_scan))] {});
    m_views->browser->reload();
    m_views->changes->reload();
    m_allNodeSize = scanned.shown->tree->root().size();
    if (m_beforeSelectRow == 0) m_leftCellArr.front()->updateSize(bytesWords(m_allNodeSize));
    if (m_beforeSelectRow >= 0) m_leftCellArr[std::size_t(m_beforeSelectRow)]->setIsScaned(true);
    m_views->showSkipped(scanned.skipped.size());
    enter(State::Result);
    showFitting();
    showRemoved();
    if (!m_isRescan) tellIfEmpty();
}

// What could not be read of entries that are gone is nobody's business any more.
void DiskUsageAppController::forgetSkipped(const std::vector<FSNode*>& gone) {
    std::vector<Error>& skipped = current()->skipped;
    if (skipped.empty()) return;
    std::set<std::string, std::less<>> paths;
    for (const FSNode* const node : gone) paths.insert(node->path());
    forgetWithin(skipped, paths);
}

void DiskUsageAppController::tellIfEmpty() {
    if (current() == nullptr) return;  // its volume left at this very end
    const Scanned& scanned = *current();
    if (scanned.wasStopped || !scanned.shown->tree->root().children().empty()) return;
    Alert alert;
    alert.text = tr("No items found in selected folder. Please try another one.");
    m_parts.dialogs->alert(m_mainWindow, alert, [](int /*button*/) {});
}

void DiskUsageAppController::showTree() {
    Scanned* const scanned = current();
    m_views->browser->setRoot(
        scanned == nullptr
            ? nullptr
            : std::make_unique<FSNodeColumn>(scanned->shown, scanned->shown->tree->root()));
    m_views->changes->setRoot(scanned == nullptr ? nullptr : changesColumn(scanned->shown));
    m_views->showSkipped(scanned == nullptr ? 0 : scanned->skipped.size());
    showFitting();
    showRemoved();
    refRemoveButtonState();
    refreshComparing();
}

void DiskUsageAppController::showSkipped() {
    if (const Scanned* const scanned = current())
        showLineList(m_mainWindow, tr("Could not be read"), linesOf(scanned->skipped));
}

}  // namespace orrinvale
