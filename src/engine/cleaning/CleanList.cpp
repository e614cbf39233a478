// Rules hold for the folder of a row and are kept by it; running programs are asked once a second
// at most.
#include "engine/cleaning/CleanList.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/LogHush.h"
#include "engine/base/saturating.h"
#include "engine/removal/stayReasons.h"
#include "platform/files.h"
#include "platform/folders.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// Programs come and go while a removal runs; asking them takes some ten milliseconds.
constexpr std::chrono::seconds asksProgramsEach{1};

}  // namespace

CleanList::CleanList(const CleanParts& parts, std::vector<CleanRow> rows,
                     std::shared_ptr<SpaceGain> gain)
    : m_parts(parts),
      m_rows(std::move(rows)),
      m_gain(std::move(gain)),
      m_count(m_rows.size(), 1),
      m_left(m_rows.size(), 1),
      m_isKept(m_rows.size(), false),
      m_isBegun(m_rows.size(), false),
      m_goneBytes(m_rows.size(), 0) {}

CleanList::~CleanList() = default;

void CleanList::turnHasCome() {
    if (m_rows.empty()) {
        m_isPrepared = true;
        return;
    }
    m_rules = std::make_unique<CleanRules>(m_parts);
    for (const CleanRow& row : m_rows) learnGround(folderOf(row.path));
    askAnew();
    for (std::size_t row = 0; row < m_rows.size(); ++row) expand(row);
    m_isPrepared = true;
    if (m_gain != nullptr) m_gain->begin();
}

void CleanList::learnGround(const std::string& folder) {
    if (m_grounds.contains(folder)) return;
    const auto real = m_parts.files->resolved(folder).value_or(folder);
    m_grounds.emplace(folder, m_rules->groundAsBefore({.path = folder, .real = real}));
    if (const auto seen = m_rules->folders().lookAt(folder))
        m_objections.emplace(folder, seen->objection);
}

void CleanList::askAnew() {
    const auto now = std::chrono::steady_clock::now();
    if (m_asked != std::chrono::steady_clock::time_point{} && now - m_asked < asksProgramsEach)
        return;
    m_asked = now;
    std::vector<std::string> folders;
    for (const auto& [path, ground] : m_grounds) folders.push_back(ground.real);
    m_rules->askAnew(folders);
    for (auto& [path, ground] : m_grounds) m_rules->learnMounts(ground);
}

void CleanList::expand(std::size_t row) {
    const CleanRow& each = m_rows[row];
    const KeepList& keep = *m_grounds.find(folderOf(each.path))->second.keep;
    const bool isFolder = each.identity.type == FileType::Folder;
    if (!isFolder || (each.goesWhole && !keep.keepsBelow(realOf(each, each.path)))) {
        m_entries.push_back({row, each.path, each.identity, true});
        return;
    }
    std::vector<CleanWalk::File> files;
    const KeptBecause reason = ask(each, &files);
    if (reason != KeptBecause::Nothing) {  // judge() tells
        m_entries.push_back({row, each.path, each.identity, true, reason});
        return;
    }
    for (CleanWalk::File& file : files)
        m_entries.push_back(
            {row, std::move(file.path), file.identity, false, reason, file.verdict});
    m_left[row] = m_count[row] = files.size();
}

// Of the row or an entry in it, without links on the way to its last component.
std::string CleanList::realOf(const CleanRow& row, const std::string& path) const {
    const CleanGround& ground = m_grounds.find(folderOf(row.path))->second;
    return ground.real + path.substr(ground.folder.size());
}

// Without a look at it, as the removal itself has one: a file is as the scan saw it, or stays.
KeptBecause CleanList::askAboutFile(const CleanRow& row, const std::string& path,
                                    const EntryIdentity& entry) const {
    const CleanGround& ground = m_grounds.find(folderOf(row.path))->second;
    const std::string real = realOf(row, path);
    if (ground.keep->keeps(real)) return KeptBecause::Asked;
    const auto isOn = [&](const std::string& mount) { return isWithin(real, mount); };
    if (std::ranges::any_of(ground.mounts, isOn)) return KeptBecause::Mount;
    const bool isRow = path == row.path && entry.type == FileType::Regular;
    const auto journal =
        isRow ? keptByJournal(*m_parts.files, row.rules, FileSystem::noParent, path, entry.size)
              : KeptBecause::Nothing;
    return std::min(journal,
                    keptByPrograms(ground, row.rules, lastPathComponent(row.path), real, entry));
}

KeptBecause CleanList::ask(const CleanRow& row, std::vector<CleanWalk::File>* files) {
    if (row.identity.type != FileType::Folder) return askAboutFile(row, row.path, row.identity);
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

// Programs of other users and in containers do not show what they have open. Of caches, which may
// hold a million files, only those are asked about that hurt most.
AskWriters CleanList::asksWriters(std::size_t index) const {
    const CleanCategory rules = m_rows[m_entries[index].row].rules;
    if (!CleanablePlaces::isMindfulOfPrograms(rules)) return AskWriters::OfNone;
    return rules == CleanCategory::UserCaches ? AskWriters::OfLargeFiles : AskWriters::OfAllFiles;
}

tl::expected<std::unique_ptr<CopyLook>, StayedEntry> CleanList::judge(std::size_t index) {
    askAnew();
    if (auto objection = objectionTo(m_entries[index])) return tl::unexpected(*objection);
    return nullptr;
}

std::optional<StayedEntry> CleanList::objectionTo(const Entry& entry) {
    const auto kept = [&](std::string_view words) {
        return StayedEntry{entry.path, std::string(words), StayReason::Kept};
    };
    const CleanRow& row = m_rows[entry.row];
    if (const std::string fault = m_rules->objection(); !fault.empty()) return kept(fault);
    if (const auto& folder = m_objections[folderOf(row.path)]; !folder.empty()) {
        const std::string objection = m_rules->folders().objectionToEntry(row.path);
        if (!objection.empty()) return kept(objection);
    }
    if (entry.verdict == SeenEntries::Verdict::Changed)
        return StayedEntry{entry.path, std::string(stay::changed), StayReason::Changed};
    if (entry.verdict == SeenEntries::Verdict::Unseen)
        return StayedEntry{entry.path, "not seen by the scan", StayReason::CameLater};
    KeptBecause reason = entry.kept;
    if (reason == KeptBecause::Nothing && entry.isRow) {
        const KeepList& keep = *m_grounds.find(folderOf(row.path))->second.keep;
        reason = keep.keepsBelow(realOf(row, row.path)) ? KeptBecause::Asked : ask(row, nullptr);
    } else if (reason == KeptBecause::Nothing) {
        reason = askAboutFile(row, entry.path, entry.identity);
    }
    return reason == KeptBecause::Nothing ? std::nullopt : std::optional(kept(wordsOf(reason)));
}

void CleanList::settled(std::size_t index, const RemovalResult& result) {
    const Entry& entry = m_entries[index];
    const bool isOurs = result.gone && !result.byOthers;
    addSaturating(m_goneBytes[entry.row], result.lengths.value_or(isOurs ? bytes(index) : 0));
    if (result.removed > 0) m_isBegun[entry.row] = true;
    if (result.gone) {
        --m_left[entry.row];
        if (entry.isRow && !result.byOthers) removeTrashRecord(entry.path);
        return;
    }
    for (const StayedEntry& each : result.failures) {
        if (each.kind == StayReason::Kept && entry.isRow && result.refused)
            m_isKept[entry.row] = true;
        m_hasFailed = m_hasFailed || !isByRule(each.kind);
    }
    if (!result.failures.empty() && result.failures.front().kind != StayReason::Kept)
        Log::line(fmt::format("Clean deletable file failed: {}-{}", entry.path,
                              result.failures.front().reason));
}

std::uint64_t CleanList::goneBytes() const {
    std::uint64_t sum = 0;
    for (const std::uint64_t each : m_goneBytes) addSaturating(sum, each);
    return sum;
}

// The record of where it came from is of no use to anybody then.
void CleanList::removeTrashRecord(const std::string& path) {
    const auto record = m_parts.folders->trashRecordOf(path);
    if (!record) return;
    const auto parent = m_records.hold(*m_parts.files, folderOf(*record));
    if (!parent) return;
    const std::string name(lastPathComponent(*record));
    static_cast<void>(
        m_parts.files->removeEntry((*parent)->folder.get(), name.c_str(), FileType::Regular));
}

RemovalResult QuietDoor::remove(const LeavingEntry& entry, const std::atomic<bool>& stop) {
    const LogHush hush;
    return m_door->remove(entry, stop);
}

}  // namespace orrinvale
