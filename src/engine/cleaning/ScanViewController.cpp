// A thread holds a Scan and never the controller, which may be gone before a slow disk answers.
#include "engine/cleaning/ScanViewController.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <map>
#include <set>
#include <system_error>
#include <thread>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/endAside.h"
#include "engine/base/saturating.h"
#include "engine/cleaning/CleanList.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/cleaning/ScanErrand.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds newsInterval{50};
// Of a removal in one turn of the main thread.
constexpr std::size_t mostNews = 4096;
constexpr const char* startButtonKey = "startButton";
constexpr const char* animationKey = "animation";
constexpr const char* isSelectKey = "isSelect";

std::shared_ptr<CleanFileInfo> infoOf(const CleanRow& row) {
    return std::make_shared<CleanFileInfo>(IconRequest{IconRequest::Path, row.path},
                                           std::string(lastPathComponent(row.path)), row.path,
                                           UtilityFunction::convertVolSpace(row.bytes), row.bytes);
}

// What of the disk's share belongs to the bytes that are left; nobody counts it file by file.
std::uint64_t shareOf(std::uint64_t onDisk, std::uint64_t left, std::uint64_t all) {
    if (left >= all) return onDisk;
    return static_cast<std::uint64_t>(static_cast<double>(onDisk) * static_cast<double>(left) /
                                      static_cast<double>(all));
}

// Not sorted: with 20,000 long paths the order alone would hold the main thread up.
using Paths = std::unordered_set<std::string_view>;

// Returned is what left, for its end elsewhere.
ScanViewController::Rows takeOut(ScanViewController::Rows& rows, const Paths& leaving) {
    ScanViewController::Rows gone, staying;
    for (auto& row : rows) (leaving.contains(row->path) ? gone : staying).push_back(std::move(row));
    rows = std::move(staying);
    return gone;
}

std::vector<CleanRow> takeOut(std::vector<CleanRow>& rows, const Paths& leaving) {
    std::vector<CleanRow> gone, staying;
    for (CleanRow& row : rows)
        (leaving.contains(row.path) ? gone : staying).push_back(std::move(row));
    rows = std::move(staying);
    return gone;
}

}  // namespace

Notification NoticeForm<CleanSelection>::write(std::string name, const CleanSelection& payload) {
    Notification notice{std::move(name), {}, {}};
    if (payload.state) notice.object = *payload.state;
    if (payload.isAnimated)
        notice.userInfo = {{startButtonKey, payload.startButton},
                           {animationKey, std::string(animationKey)}};
    return notice;
}

std::optional<CleanSelection> NoticeForm<CleanSelection>::read(const Notification& notice) {
    CleanSelection out;
    if (const auto* const state = std::any_cast<bool>(&notice.object)) out.state = *state;
    out.isAnimated = notice.userInfo.contains(animationKey);
    if (const auto button = notice.userInfo.find(startButtonKey); button != notice.userInfo.end())
        out.startButton = button->second;
    return out;
}

Notification NoticeForm<UntickedRow>::write(std::string name, const UntickedRow& payload) {
    return {std::move(name), payload.row, {{isSelectKey, payload.isSelect}}};
}

std::optional<UntickedRow> NoticeForm<UntickedRow>::read(const Notification& notice) {
    const auto* const row = std::any_cast<std::int32_t>(&notice.object);
    const auto state = notice.userInfo.find(isSelectKey);
    if (row == nullptr || state == notice.userInfo.end()) return std::nullopt;
    const auto* const isSelect = std::any_cast<bool>(&state->second);
    return UntickedRow{*row, isSelect != nullptr && *isSelect};
}

/// One scan, and the thread that listens to it. Its owner lets go of it; what comes later is lost.
class ScanViewController::Scan final : public std::enable_shared_from_this<Scan> {
public:
    Scan(ScanViewController& owner, ScanErrand::FolderNames folders)
        : m_owner(&owner),
          m_queue(*owner.m_parts.mainQueue),
          m_errand(owner.m_parts.clean, std::move(folders)) {}

    void start() {
        try {
            std::thread([self = shared_from_this()] { self->listen(); }).detach();
        } catch (const std::system_error&) {  // no thread left for this user
            m_errand.stop();
            tellEnd();
        }
    }
    void stop() { m_errand.stop(); }
    void letGo() {
        m_owner = nullptr;
        m_errand.stop();
    }

private:
    void listen() {
        std::uint64_t told = 0;
        for (;;) {
            const auto state = m_errand.wait(newsInterval);
            if (state != ScanErrand::State::Running) break;
            const std::uint64_t total = m_errand.total();
            if (total == told) continue;
            told = total;
            m_queue.async([self = shared_from_this(), total] {
                if (self->m_owner != nullptr) self->m_owner->setFilesSize(total);
            });
        }
        tellEnd();
    }

    // The rows are put together here, since 20,000 of them would hold the main thread up.
    void tellEnd() {
        if (m_errand.wait(std::chrono::milliseconds(0)) == ScanErrand::State::Ended)
            m_listing = m_errand.take();
        else m_listing.closed.push_back({{}, "no answer for 5 seconds"});
        m_rows.reserve(m_listing.rows.size());
        for (const CleanRow& row : m_listing.rows) m_rows.push_back(infoOf(row));
        m_queue.async([self = shared_from_this()] {
            ScanViewController* const owner = std::exchange(self->m_owner, nullptr);
            if (owner != nullptr)
                owner->scanTaskFinished(std::move(self->m_listing), std::move(self->m_rows));
        });
    }

    ScanViewController* m_owner;  // main thread
    MainQueue& m_queue;
    ScanErrand m_errand;        // listen()'s
    CategoryListing m_listing;  // up to the end listen()'s, then the main thread's
    Rows m_rows;
};

/// One clean. The rows of the list by their place among the ticked ones.
class ScanViewController::Clean final {
public:
    Clean(ScanViewController& owner, std::vector<CleanRow> rows, std::shared_ptr<SpaceGain> gain)
        : m_list(
              std::make_shared<CleanList>(owner.m_parts.clean, std::move(rows), std::move(gain))),
          m_gone(m_list->rows().size(), 0),
          m_job({.files = owner.m_parts.clean.files,
                 .mainQueue = owner.m_parts.mainQueue,
                 .makeDoor =
                     [makeDoor = owner.m_parts.makeDoor] {
                         return std::make_unique<QuietDoor>(makeDoor());
                     },
                 .stateFolder = owner.m_parts.stateFolder},
                m_list, [&owner] { owner.takeCleanNews(); }) {
        ++s_cleaning;
    }
    ~Clean() { --s_cleaning; }
    Clean(const Clean&) = delete;
    Clean& operator=(const Clean&) = delete;

    const std::shared_ptr<CleanList> m_list;
    std::optional<RemovalOutcome> m_ending;
    std::vector<std::size_t> m_gone;  // entries of each row that went, as far as was told
    Paths m_leaving{};                // of rows of m_list: those that leave the list of the page
    RemovalJob m_job;
};

ScanViewController::ScanViewController(ScanViewParts parts) : m_parts(std::move(parts)) {}

ScanViewController::~ScanViewController() {
    if (m_scan != nullptr) m_scan->letGo();
}

void ScanViewController::beginScanTask(std::vector<std::string> folders) {
    beginScanTask([folders] { return folders; });
    folderPaths = std::move(folders);
}

void ScanViewController::beginScanTask(std::function<std::vector<std::string>()> folders) {
    endAside(std::exchange(scanFiles, std::nullopt));
    folderPaths.clear();
    refreshTableView();
    if (m_scan != nullptr) m_scan->letGo();
    m_isStopped = false;
    m_total = 0;
    m_scan = std::make_shared<Scan>(*this, std::move(folders));
    m_scan->start();
}

void ScanViewController::cancelScanTask() {
    if (m_scan == nullptr) return;
    m_isStopped = true;
    m_scan->stop();
}

void ScanViewController::refreshTableView() {
    if (!scanFiles) return;
    scanFiles->clear();
    scanFilesChange.post(m_changes, true);
}

void ScanViewController::setFilesSize(std::uint64_t bytes) {
    m_total = bytes;
    tellTotal();
}

void ScanViewController::scanTaskFinished(CategoryListing listing, Rows rows) {
    endAside(std::exchange(m_listing, std::move(listing)));
    setFilesSize(m_listing.bytes);
    scanFiles = std::move(rows);
    scanFilesChange.post(m_changes, true);
    cleanShowSelectNumInBottomNotice.post(*m_parts.notifications, {});
    m_scan.reset();
    scanFinished = true;
    scanFinishedChange.post(m_changes, true);
}

void ScanViewController::setAll(bool isTicked) {
    if (scanFiles)
        for (const auto& row : *scanFiles) row->bIsSelected = isTicked;
    selectButton = isTicked;
}

std::int32_t ScanViewController::getSelectAllOrNull() {
    const Rows none;
    const Rows& rows = scanFiles ? *scanFiles : none;
    const auto ticked =
        std::count_if(rows.begin(), rows.end(), [](const auto& row) { return row->bIsSelected; });
    const bool isAll = ticked > 0 && ticked == std::ssize(rows);
    const std::int32_t value = isAll ? 1 : ticked > 0 ? 2 : 0;
    selectButton = isAll;
    if (aTag >= 0 && aTag < std::ssize(cleanCategories))
        UserDefaults::standardUserDefaults().setInteger(
            value, namesOf(CleanCategory{static_cast<std::uint32_t>(aTag)}).settingKey);
    return value;
}

void ScanViewController::getSelectPath(std::string_view text) {
    selDelFiles.clear();
    if (scanFiles)
        std::copy_if(scanFiles->begin(), scanFiles->end(), std::back_inserter(selDelFiles),
                     [](const auto& row) { return row->bIsSelected; });
    if (!text.empty()) selectButton = false;
}

void ScanViewController::toggleRow(std::size_t row) {
    if (!scanFiles || row >= scanFiles->size()) return;
    CleanFileInfo& info = *(*scanFiles)[row];
    info.bIsSelected = !info.bIsSelected;
    isSlected = info.bIsSelected;
    getSelectAllOrNull();
    cleanShowSelectNumInBottomNotice.post(*m_parts.notifications, {.state = isSlected});
}

void ScanViewController::openFinder(std::size_t row) const {
    if (!scanFiles || row >= scanFiles->size() || !m_parts.openFolder) return;
    m_parts.openFolder(m_parts.clean.utilities->getFolderFromFile((*scanFiles)[row]->path));
}

bool ScanViewController::CellClick(bool state, std::int32_t row) {
    if (!state) return true;
    Log::line(fmt::format("CellClick={}", row));
    selectedRowInFastClean.post(*m_parts.notifications, {row, isSlected});
    return false;
}

void ScanViewController::cleanShowSelectNumInBottom(bool state, std::any startButton) {
    setAll(state);
    getSelectAllOrNull();
    const bool isLastTicked = scanFiles && !scanFiles->empty() && scanFiles->back()->bIsSelected;
    cleanShowSelectNumInBottomNotice.post(
        *m_parts.notifications,
        {.state = isLastTicked, .startButton = std::move(startButton), .isAnimated = true});
}

void ScanViewController::beginCleanTask(std::shared_ptr<SpaceGain> gain) {
    if (m_clean != nullptr) return;
    getSelectPath("clean");
    begin(std::move(gain));
}

void ScanViewController::beginCleanTask(const Rows& chosen, std::shared_ptr<SpaceGain> gain) {
    if (m_clean != nullptr) return;
    getSelectPath("clean");
    std::unordered_set<const CleanFileInfo*> wanted;
    for (const auto& row : chosen) wanted.insert(row.get());
    std::erase_if(selDelFiles, [&](const auto& row) { return !wanted.contains(row.get()); });
    begin(std::move(gain));
}

void ScanViewController::begin(std::shared_ptr<SpaceGain> gain) {
    iCleanSize = 0;
    m_cleanedRows.clear();
    Paths wanted;
    for (const auto& row : selDelFiles) wanted.insert(row->path);
    std::vector<CleanRow> rows;
    for (const CleanRow& row : m_listing.rows)
        if (wanted.contains(row.path)) rows.push_back(row);
    m_clean = std::make_unique<Clean>(*this, std::move(rows), std::move(gain));
}

void ScanViewController::stopClean() {
    if (m_clean != nullptr) m_clean->m_job.stop();
}

RemovalJob::Progress ScanViewController::cleanProgress() const {
    return m_clean != nullptr ? m_clean->m_job.progress() : RemovalJob::Progress{};
}

void ScanViewController::leaveOut(const std::string& path) {
    if (m_scan != nullptr || m_clean != nullptr || !scanFiles) return;
    const auto row = std::ranges::find(m_listing.rows, path, &CleanRow::path);
    if (row == m_listing.rows.end()) return;
    // Of a part of the row it may have been known already.
    auto known = std::ranges::find(m_listing.kept, path, &CleanRow::path);
    if (known == m_listing.kept.end()) known = m_listing.kept.insert(known, *row);
    known->kept = KeptBecause::Asked;
    known->keptWords = wordsOf(known->kept);
    known->seen.reset();
    addSaturating(known->keptBytes, row->bytes);
    dropRows({path});
    recount();
    tellTotal();
    scanFilesChange.post(m_changes, true);
}

void ScanViewController::takeCleanNews() {
    const RemovalJob::News news = m_clean->m_job.takeNews(mostNews);
    bool isAnyGone = false;
    for (const RemovalJob::Settled& each : news.settled) {
        if (!each.gone) continue;
        const std::size_t row = m_clean->m_list->rowOf(each.index);
        if (++m_clean->m_gone[row] != m_clean->m_list->entriesOf(row)) continue;
        rowIsGone(row);
        isAnyGone = true;
    }
    if (isAnyGone) tellTotal();
    if (news.isMore) m_clean->m_job.callAgain();
    if (news.ending) m_clean->m_ending = news.ending;
    if (!m_clean->m_ending) return;
    // The end has a turn of its own: with thousands of rows each of the two takes most of one.
    if (!news.settled.empty()) return m_clean->m_job.callAgain();
    m_outcome = m_clean->m_ending;
    finishClean();
}

void ScanViewController::rowIsGone(std::size_t row) {
    const CleanList& list = *m_clean->m_list;
    countGone(list.goneBytes(row));
    m_clean->m_leaving.insert(list.rows()[row].path);
    m_cleanedRows.push_back(list.rows()[row].path);
}

void ScanViewController::countGone(std::uint64_t bytes) {
    takeFromTotal(bytes);
    iCleanSize += bytes;
}

// In bytes: from its own text a total of gigabytes would never fall by the small rows of a cache.
// Told by tellTotal(), once for many.
void ScanViewController::takeFromTotal(std::uint64_t bytes) {
    m_total = std::max(m_total, bytes) - bytes;
}

// Of rows that others took a part of, less went than was listed.
void ScanViewController::recount() {
    m_listing.bytes = m_listing.onDisk = 0;
    for (const CleanRow& row : m_listing.rows) {
        addSaturating(m_listing.bytes, row.bytes);
        addSaturating(m_listing.onDisk, row.onDisk);
    }
    m_total = m_listing.bytes;
}

void ScanViewController::tellTotal() {
    filesSize = UtilityFunction::convertVolSpace(m_total);
    filesSizeChange.post(m_changes, filesSize);
}

void ScanViewController::finishClean() {
    std::unique_ptr<Clean> clean = std::move(m_clean);
    std::shared_ptr<CleanList> list = clean->m_list;
    std::map<std::string_view, std::uint64_t> begun;  // what went of rows that stay, by their paths
    for (std::size_t i = 0; i < list->rows().size(); ++i) {
        const CleanRow& row = list->rows()[i];
        if (clean->m_leaving.contains(row.path)) continue;
        const std::uint64_t gone = list->goneBytes(i);
        if (gone > 0) countGone(gone);
        if (list->isDone(i) && list->isBegun(i)) m_cleanedRows.push_back(row.path);
        if (list->isKept(i) || list->isDone(i)) clean->m_leaving.insert(row.path);
        else if (list->isBegun(i)) begun.emplace(row.path, gone);
    }
    std::tuple<Rows, Rows, std::vector<CleanRow>> gone;
    if (scanFiles && (!begun.empty() || !clean->m_leaving.empty())) {
        if (!begun.empty()) shrinkRows(begun);
        gone = {takeOut(*scanFiles, clean->m_leaving), takeOut(selDelFiles, clean->m_leaving),
                takeOut(m_listing.rows, clean->m_leaving)};
        recount();
        tellTotal();
        scanFilesChange.post(m_changes, true);
    }
    cleanFinished = true;
    cleanFinishedChange.post(m_changes, true);
    clean.reset();
    endAside(std::pair(std::move(list), std::move(gone)));
}

void ScanViewController::shrinkRows(const std::map<std::string_view, std::uint64_t>& begun) {
    for (CleanRow& row : m_listing.rows)
        if (const auto found = begun.find(row.path); found != begun.end()) {
            const std::uint64_t left = std::max(row.bytes, found->second) - found->second;
            row.isBegun = true;
            row.onDisk = shareOf(row.onDisk, left, row.bytes);
            row.bytes = left;
        }
    for (const auto& info : *scanFiles)
        if (const auto found = begun.find(info->path); found != begun.end()) {
            info->fileSizeNum = std::max(info->fileSizeNum, found->second) - found->second;
            info->size = UtilityFunction::convertVolSpace(info->fileSizeNum);
        }
}

void ScanViewController::dropRows(const std::set<std::string>& leaving) {
    const Paths paths(leaving.begin(), leaving.end());
    takeOut(*scanFiles, paths);
    takeOut(selDelFiles, paths);
    takeOut(m_listing.rows, paths);
}

}  // namespace orrinvale
