// Rules hold for the folder of a row and are kept by it; running programs are asked once a second
// at most.
#include "engine/cleaning/CleanList.h"

#include <fmt/format.h>

#include <utility>

#include "engine/base/Log.h"
#include "engine/base/LogHush.h"
#include "engine/base/saturating.h"
#include "engine/files/HeldEntry.h"
#include "platform/files.h"
#include "platform/folders.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// Programs come and go while a removal runs; asking them takes some ten milliseconds.
constexpr std::chrono::seconds asksProgramsEach{1};

}  // namespace

CleanList::CleanList(const CleanParts& parts, std::vector<CleanRow> rows)
    : m_parts(parts),
      m_rows(std::move(rows)),
      m_count(m_rows.size(), 1),
      m_left(m_rows.size(), 1) {}

CleanList::~CleanList() = default;

void CleanList::prepare() {
    m_rules = std::make_unique<CleanRules>(m_parts);
    for (const CleanRow& row : m_rows) {
        const std::string folder = folderOf(row.path);
        if (m_grounds.contains(folder)) continue;
        const auto real = m_parts.files->resolved(folder).value_or(folder);
        m_grounds.emplace(folder, m_rules->groundAsBefore({.path = folder, .real = real}));
    }
    askProgramsAnew();
    for (std::size_t row = 0; row < m_rows.size(); ++row) expand(row);
    m_isPrepared = true;
}

void CleanList::askProgramsAnew() {
    const auto now = std::chrono::steady_clock::now();
    if (m_asked != std::chrono::steady_clock::time_point{} && now - m_asked < asksProgramsEach)
        return;
    m_asked = now;
    std::vector<std::string> folders;
    for (const auto& [path, ground] : m_grounds) folders.push_back(ground.real);
    m_rules->askPrograms(folders);
}

void CleanList::expand(std::size_t row) {
    const CleanRow& each = m_rows[row];
    if (each.goesWhole || each.identity.type != FileType::Folder) {
        m_entries.push_back({row, each.path, each.identity, true});
        return;
    }
    std::vector<CleanWalk::File> files;
    if (ask(each, &files) != KeptBecause::Nothing) {  // judge() tells
        m_entries.push_back({row, each.path, each.identity, true});
        return;
    }
    for (CleanWalk::File& file : files)
        m_entries.push_back({row, std::move(file.path), file.identity, false});
    m_left[row] = m_count[row] = files.size();
}

// Without a look at it, as the removal itself has one: a file is as the scan saw it, or stays.
KeptBecause CleanList::askAboutFile(const CleanRow& row) const {
    const CleanGround& ground = m_grounds.find(folderOf(row.path))->second;
    const std::string real = joinPath(ground.real, lastPathComponent(row.path));
    if (ground.keep->keeps(real)) return KeptBecause::Asked;
    const bool isMindful = CleanablePlaces::isMindfulOfPrograms(row.rules);
    return isMindful && ground.open->isWithin(real) ? KeptBecause::Open : KeptBecause::Nothing;
}

KeptBecause CleanList::ask(const CleanRow& row, std::vector<CleanWalk::File>* files) {
    if (row.identity.type != FileType::Folder) return askAboutFile(row);
    const auto parent = HeldEntry::holdParentOf(*m_parts.files, row.path);
    if (!parent) return KeptBecause::Nothing;  // the removal tells what became of it
    CleanGround& ground = m_grounds.find(folderOf(row.path))->second;
    ground.rules = row.rules;
    ground.now = m_rules->now();
    CleanWalk walk(*m_parts.files, ground, {});
    return walk.askAgain(row, parent->get(), files);
}

std::string CleanList::path(std::size_t index) const {
    return m_isPrepared ? m_entries[index].path : m_rows[index].path;
}

std::optional<EntryIdentity> CleanList::identity(std::size_t index) const {
    return m_isPrepared ? m_entries[index].identity : m_rows[index].identity;
}

std::uint64_t CleanList::bytes(std::size_t index) const {
    if (!m_isPrepared) return m_rows[index].bytes;
    const Entry& entry = m_entries[index];
    return entry.isRow ? m_rows[entry.row].bytes : entry.identity.size;
}

std::shared_ptr<const SeenEntries> CleanList::seen(std::size_t index) {
    const Entry& entry = m_entries[index];
    return entry.isRow ? m_rows[entry.row].seen : nullptr;
}

tl::expected<std::unique_ptr<CopyLook>, StayedEntry> CleanList::judge(std::size_t index) {
    const Entry& entry = m_entries[index];
    if (m_rules->fault())
        return tl::unexpected(
            StayedEntry{entry.path, m_rules->fault()->reason(), StayReason::Kept});
    if (!entry.isRow) return nullptr;
    askProgramsAnew();
    const KeptBecause reason = ask(m_rows[entry.row], nullptr);
    if (reason == KeptBecause::Nothing) return nullptr;
    return tl::unexpected(StayedEntry{entry.path, std::string(wordsOf(reason)), StayReason::Kept});
}

void CleanList::settled(std::size_t index, const RemovalResult& result) {
    const Entry& entry = m_entries[index];
    if (result.gone) {
        --m_left[entry.row];
        addSaturating(m_goneBytes, bytes(index));
        if (entry.isRow) removeTrashRecord(entry.path);
        return;
    }
    if (!result.failures.empty() && result.failures.front().kind != StayReason::Kept)
        Log::line(fmt::format("Clean deletable file failed: {}-{}", entry.path,
                              result.failures.front().reason));
}

// The record of where it came from is of no use to anybody then.
void CleanList::removeTrashRecord(const std::string& path) const {
    const auto record = m_parts.folders->trashRecordOf(path);
    if (!record) return;
    const auto parent = HeldEntry::holdParentOf(*m_parts.files, *record);
    if (!parent) return;
    const std::string name(lastPathComponent(*record));
    static_cast<void>(m_parts.files->removeEntry(parent->get(), name.c_str(), FileType::Regular));
}

RemovalResult QuietDoor::remove(const LeavingEntry& entry, const std::atomic<bool>& stop) {
    const LogHush hush;
    return m_door->remove(entry, stop);
}

}  // namespace orrinvale
