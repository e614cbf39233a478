// ScanViewController: the list, its scan and its ticks; ScanViewClean.cpp is its clean. A thread
// holds a Scan and never the controller, which may be gone before a slow disk answers.
#include "engine/cleaning/ScanViewController.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <system_error>
#include <thread>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/endAside.h"
#include "engine/base/saturating.h"
#include "engine/cleaning/CleanTree.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/cleaning/ScanErrand.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds foundInterval{50};

std::shared_ptr<CleanFileInfo> infoOf(const CleanRow& row) {
    return std::make_shared<CleanFileInfo>(IconRequest{IconRequest::Path, row.path},
                                           std::string(lastPathComponent(row.path)), row.path,
                                           UtilityFunction::convertVolSpace(row.bytes), row.bytes);
}

// In one pass, by the places of the rows, since 20,000 paths to look up would hold the main thread
// up. Returned is what left, for its end elsewhere.
template <class Row>
std::vector<Row> takeOut(std::vector<Row>& rows, const std::vector<bool>& isLeaving) {
    const auto leaving = std::ranges::count(isLeaving, true);
    if (leaving == std::ssize(rows)) return std::exchange(rows, {});
    std::vector<Row> left;
    left.reserve(std::size_t(leaving));
    std::size_t stays = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (isLeaving[i]) left.push_back(std::move(rows[i]));
        else if (stays++ != i) rows[stays - 1] = std::move(rows[i]);
    }
    rows.erase(rows.begin() + std::ptrdiff_t(stays), rows.end());
    return left;
}

}  // namespace

/// One scan, and the thread that listens to it. Its owner lets go of it; what comes later is lost.
class ScanViewController::Scan final : public std::enable_shared_from_this<Scan> {
public:
    Scan(ScanViewController& owner, const CleanParts& parts, ScanErrand::FolderNames folders)
        : m_owner(&owner), m_queue(*owner.m_parts.mainQueue), m_errand(parts, std::move(folders)) {}

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
            const auto state = m_errand.wait(foundInterval);
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

    // Rows and tree are put together here, since 20,000 of them would hold the main thread up.
    void tellEnd() {
        if (m_errand.wait(std::chrono::milliseconds(0)) == ScanErrand::State::Ended)
            m_listing = m_errand.take();
        else m_listing.closed.push_back({{}, "no answer for 5 seconds"});
        m_rows.reserve(m_listing.rows.size());
        for (const CleanRow& row : m_listing.rows) m_rows.push_back(infoOf(row));
        m_group = groupOfRows(m_rows, m_listing.rows);
        m_queue.async([self = shared_from_this()] {
            ScanViewController* const owner = std::exchange(self->m_owner, nullptr);
            if (owner != nullptr)
                owner->scanTaskFinished(std::move(self->m_listing), std::move(self->m_rows),
                                        std::move(self->m_group));
        });
    }

    ScanViewController* m_owner;  // main thread
    MainQueue& m_queue;
    ScanErrand m_errand;        // listen()'s
    CategoryListing m_listing;  // up to the end listen()'s, then the main thread's
    Rows m_rows;
    std::shared_ptr<TreeNode> m_group;
};

ScanViewController::ScanViewController(ScanViewParts parts) : m_parts(std::move(parts)) {}

ScanViewController::~ScanViewController() {
    if (m_scan != nullptr) m_scan->letGo();
}

void ScanViewController::beginScanTask(std::vector<std::string> folders) {
    beginScanTask([folders] { return folders; });
    folderPaths = std::move(folders);
}

void ScanViewController::beginScanTask(std::function<std::vector<std::string>()> folders,
                                       std::shared_ptr<FoldersOfRun> run) {
    forgetPlaces();
    endAside(std::pair(std::exchange(scanFiles, std::nullopt), std::exchange(m_group, nullptr)));
    folderPaths.clear();
    refreshTableView();
    if (m_scan != nullptr) m_scan->letGo();
    m_isStopped = false;
    m_total = 0;
    CleanParts parts = m_parts.clean;
    parts.run = std::move(run);
    m_scan = std::make_shared<Scan>(*this, parts, std::move(folders));
    m_scan->start();
}

void ScanViewController::cancelScanTask() {
    if (m_scan == nullptr) return;
    m_isStopped = true;
    m_scan->stop();
}

void ScanViewController::refreshTableView() {
    if (!scanFiles) return;
    forgetPlaces();
    scanFiles->clear();
    scanFilesChange.post(m_changes, true);
}

void ScanViewController::setFilesSize(std::uint64_t bytes) {
    m_total = bytes;
    tellTotal();
}

void ScanViewController::scanTaskFinished(CategoryListing listing, Rows rows,
                                          std::shared_ptr<TreeNode> group) {
    endAside(std::exchange(m_listing, std::move(listing)));
    m_group = std::move(group);
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
    if (aTag < 0 || aTag >= std::ssize(cleanCategories)) return value;
    UserDefaults& defaults = UserDefaults::standardUserDefaults();
    const auto key = namesOf(CleanCategory{static_cast<std::uint32_t>(aTag)}).settingKey;
    if (defaults.integerForKey(key) != value) defaults.setInteger(value, key);
    return value;
}

void ScanViewController::getSelectPath(std::string_view text) {
    selDelFiles.clear();
    if (scanFiles)
        std::copy_if(scanFiles->begin(), scanFiles->end(), std::back_inserter(selDelFiles),
                     [](const auto& row) { return row->bIsSelected; });
    if (!text.empty()) selectButton = false;
}

std::vector<std::size_t> ScanViewController::placesOf(const Rows& some) const {
    std::vector<std::size_t> places;
    places.reserve(some.size());
    if (!isListed()) return places;
    for (std::size_t i = 0; i < scanFiles->size() && places.size() < some.size(); ++i)
        if ((*scanFiles)[i] == some[places.size()]) places.push_back(i);
    return places;
}

std::shared_ptr<TreeNode> ScanViewController::takeGroup() {
    return std::exchange(m_group, nullptr);
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

void ScanViewController::leaveOut(const std::string& path) {
    if (m_scan != nullptr || m_clean != nullptr || !isListed()) return;
    const auto row = std::ranges::find(m_listing.rows, path, &CleanRow::path);
    if (row == m_listing.rows.end()) return;
    // Of a part of the row it may have been known already.
    auto known = std::ranges::find(m_listing.kept, path, &CleanRow::path);
    if (known == m_listing.kept.end()) known = m_listing.kept.insert(known, *row);
    known->kept = KeptBecause::Asked;
    known->keptWords = wordsOf(known->kept);
    known->seen.reset();
    addSaturating(known->keptBytes, row->bytes);
    std::vector<bool> isLeaving;
    for (const auto& each : *scanFiles) isLeaving.push_back(each->path == path);
    static_cast<void>(dropRows(isLeaving));
    std::erase_if(selDelFiles, [&](const auto& each) { return each->path == path; });
    tellTotal();
    scanFilesChange.post(m_changes, true);
}

ScanViewController::Left ScanViewController::dropRows(const std::vector<bool>& isLeaving) {
    endAside(std::exchange(m_group, nullptr));
    Left left{takeOut(*scanFiles, isLeaving), takeOut(m_listing.rows, isLeaving)};
    recount();
    return left;
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

}  // namespace orrinvale
