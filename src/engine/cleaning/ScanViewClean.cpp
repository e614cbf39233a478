// ScanViewController: its clean, over the one removal job. Rows go by their places in the list,
// which nothing but a new scan changes meanwhile.
#include <algorithm>
#include <tuple>
#include <utility>

#include "engine/base/endAside.h"
#include "engine/cleaning/CleanList.h"
#include "engine/cleaning/ScanViewController.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale {
namespace {

// Of a removal in one turn of the main thread: about a millisecond of them.
constexpr std::size_t mostGoneInATurn = 4096;

// What of the disk's share belongs to the bytes that are left; nobody counts it file by file.
std::uint64_t shareOf(std::uint64_t onDisk, std::uint64_t left, std::uint64_t all) {
    if (left >= all) return onDisk;
    return static_cast<std::uint64_t>(static_cast<double>(onDisk) * static_cast<double>(left) /
                                      static_cast<double>(all));
}

}  // namespace

/// One clean. What it keeps of a row stands at the place that the row has among those that go.
class ScanViewController::Clean final {
public:
    Clean(ScanViewController& owner, Rows infos, std::vector<CleanRow> rows,
          std::shared_ptr<SpaceGain> gain)
        : m_list(
              std::make_shared<CleanList>(owner.m_parts.clean, std::move(rows), std::move(gain))),
          m_gone(m_list->rows().size(), 0),
          m_isLeaving(m_list->rows().size(), false),
          m_infos(std::move(infos)),
          m_places(owner.placesOf(m_infos)),
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
    std::vector<std::size_t> m_gone;  // entries that went, as far as was told
    std::vector<bool> m_isLeaving;    // the list of the page
    Rows m_infos;
    std::vector<std::size_t> m_places;  // in the list of the page; none once that is another
    RemovalJob m_job;
};

void ScanViewController::beginCleanTask(std::shared_ptr<SpaceGain> gain) {
    if (m_clean != nullptr) return;
    getSelectPath("clean");
    begin(std::move(gain));
}

void ScanViewController::beginCleanTask(const Rows& chosen, std::shared_ptr<SpaceGain> gain) {
    if (m_clean != nullptr) return;
    selectButton = false;
    selDelFiles.clear();
    for (const std::size_t place : placesOf(chosen))
        if (const auto& row = (*scanFiles)[place]; row->bIsSelected) selDelFiles.push_back(row);
    begin(std::move(gain));
}

void ScanViewController::begin(std::shared_ptr<SpaceGain> gain) {
    iCleanSize = 0;
    m_cleanedRows.clear();
    std::vector<CleanRow> rows;
    rows.reserve(selDelFiles.size());
    for (const std::size_t place : placesOf(selDelFiles)) rows.push_back(m_listing.rows[place]);
    m_clean = std::make_shared<Clean>(*this, selDelFiles, std::move(rows), std::move(gain));
}

void ScanViewController::stopClean() {
    if (m_clean != nullptr) m_clean->m_job.stop();
}

RemovalJob::Progress ScanViewController::cleanProgress() const {
    return m_clean != nullptr ? m_clean->m_job.progress() : RemovalJob::Progress{};
}

void ScanViewController::forgetPlaces() {
    if (m_clean != nullptr) m_clean->m_places.clear();
}

void ScanViewController::takeCleanNews() {
    const RemovalJob::News news = m_clean->m_job.takeNews(mostGoneInATurn);
    const std::size_t before = m_cleanedRows.size();
    for (const RemovalJob::Settled& each : news.settled) {
        if (!each.gone) continue;
        const std::size_t row = m_clean->m_list->rowOf(each.index);
        if (++m_clean->m_gone[row] == m_clean->m_list->entriesOf(row)) rowIsGone(row);
    }
    if (m_cleanedRows.size() != before) tellTotal();
    if (news.isMore) m_clean->m_job.callAgain();
    if (news.ending) m_clean->m_ending = news.ending;
    if (!m_clean->m_ending) return;
    // The end has a turn of its own: with thousands of rows each of the two takes a good part of
    // one.
    if (!news.settled.empty()) return m_clean->m_job.callAgain();
    m_outcome = m_clean->m_ending;
    finishClean();
}

void ScanViewController::rowIsGone(std::size_t row) {
    const CleanList& list = *m_clean->m_list;
    countGone(list.goneBytes(row));
    m_clean->m_isLeaving[row] = true;
    m_cleanedRows.push_back(list.rows()[row].path);
}

// In bytes: from its own text a total of gigabytes would never fall by the small rows of a cache.
// Told by tellTotal(), once for many. The total of a newer scan is its own.
void ScanViewController::countGone(std::uint64_t bytes) {
    iCleanSize += bytes;
    if (!m_clean->m_places.empty()) m_total = std::max(m_total, bytes) - bytes;
}

void ScanViewController::finishClean() {
    std::shared_ptr<Clean> clean = std::exchange(m_clean, nullptr);
    const CleanList& list = *clean->m_list;
    const bool isListed = !clean->m_places.empty();
    std::vector<bool> isLeaving(isListed ? scanFiles->size() : 0, false);
    bool isOther = false;  // the list than before
    selDelFiles.clear();
    for (std::size_t i = 0; i < list.rows().size(); ++i) {
        const bool isBegun = list.isBegun(i);
        const std::uint64_t gone = list.goneBytes(i);
        if (!clean->m_isLeaving[i]) {
            iCleanSize += gone;  // the total is counted anew below
            if (list.isDone(i) && isBegun) m_cleanedRows.push_back(list.rows()[i].path);
        }
        const bool leaves = clean->m_isLeaving[i] || list.isKept(i) || list.isDone(i);
        if (!leaves) selDelFiles.push_back(clean->m_infos[i]);
        if (!isListed) continue;
        isOther = isOther || leaves || isBegun;
        isLeaving[clean->m_places[i]] = leaves;
        if (!leaves && isBegun) shrinkRow(clean->m_places[i], gone);
    }
    Left left;
    if (isOther) {
        left = dropRows(isLeaving);
        tellTotal();
        scanFilesChange.post(m_changes, true);
    }
    cleanFinished = true;
    cleanFinishedChange.post(m_changes, true);
    std::tuple past(clean->m_list, std::move(clean->m_infos), std::move(left));
    clean.reset();
    endAside(std::move(past));
}

void ScanViewController::shrinkRow(std::size_t place, std::uint64_t gone) {
    CleanRow& row = m_listing.rows[place];
    const std::uint64_t left = std::max(row.bytes, gone) - gone;
    row.isBegun = true;
    row.onDisk = shareOf(row.onDisk, left, row.bytes);
    row.bytes = left;
    CleanFileInfo& info = *(*scanFiles)[place];
    info.fileSizeNum = std::max(info.fileSizeNum, gone) - gone;
    info.size = UtilityFunction::convertVolSpace(info.fileSizeNum);
}

}  // namespace orrinvale
