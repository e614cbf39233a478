// Batches: turn, names into the journal, the entries one by one, what became of them counted.
#include "engine/removal/RemovalRun.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/saturating.h"
#include "engine/removal/RemovalTurn.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// Each batch waits for the disk once, until its names stand in the journal.
constexpr std::size_t batchSize = 2048;

}  // namespace

RemovalRun::RemovalRun(const FileSystem& files, const std::string& stateFolder, RemovalList& list,
                       RemovalDoor& door, const std::atomic<bool>& stop, Telling telling)
    : m_files(files),
      m_folder(stateFolder.empty() ? std::string() : asideJournalFolder(stateFolder)),
      m_list(list),
      m_door(door),
      m_stop(stop),
      m_telling(std::move(telling)) {}

RemovalOutcome RemovalRun::run() {
    m_list.listenTo(m_stop);
    m_list.prepare();
    const RemovalTurn turn(m_folder, m_stop, [this] { m_telling.waiting(true); });
    // Without its turn there is nothing to prepare for; it may be somebody else's.
    if (!m_stop) m_list.turnHasCome();
    m_outcome.chosen = m_list.size();
    m_telling.waiting(false);
    for (std::size_t from = 0; from < m_list.size() && !m_stop; from += batchSize)
        runBatch(from, std::min(from + batchSize, m_list.size()));
    const std::size_t settled = m_outcome.removed + m_outcome.byOthers + m_outcome.kept +
                                m_outcome.failed + m_outcome.shared;
    m_outcome.stopped = m_outcome.stopped || settled < m_outcome.chosen;
    return m_outcome;
}

void RemovalRun::runBatch(std::size_t from, std::size_t to) {
    const bool isAside = nameInJournal(from, to);
    for (std::size_t index = from; index < to && !m_stop; ++index) {
        const std::string path = m_list.path(index);
        const auto identity = m_list.identity(index);
        m_telling.begins(index, path, identity && identity->type == FileType::Folder);
        const RemovalResult result =
            removeOne(index, path, isAside ? m_tokens[index - from] : std::string());
        if (result.stopped && !result.gone) m_outcome.stopped = true;
        count(index, result);
        m_list.settled(index, result);
        m_telling.settled(index, result);
    }
    if (!m_door.setsAside()) m_door.flush();
}

// False when nothing of the batch is to be set aside.
bool RemovalRun::nameInJournal(std::size_t from, std::size_t to) {
    if (m_folder.empty() || m_isWithoutJournal || !m_door.setsAside()) return false;
    m_tokens.assign(to - from, {});
    std::vector<AsideRecord> records;
    for (std::size_t index = from; index < to; ++index)
        if (auto record = recordFor(index)) {
            m_tokens[index - from] = record->token;
            records.push_back(std::move(*record));
        }
    if (records.empty()) return false;
    const auto written = write(records);
    // A full disk is what brings people here: the comparison and the look before the removal stay.
    m_isWithoutJournal = !written;
    if (!written)
        Log::line(fmt::format(
            "{}, since the journal can not be written: {}",
            m_door.replaces() ? "Nothing is linked" : "Copies go without being set aside",
            written.error().reason()));
    return written.has_value();
}

std::optional<AsideRecord> RemovalRun::recordFor(std::size_t index) {
    const auto identity = m_list.isCopy(index) ? m_list.identity(index) : std::nullopt;
    if (!identity) return std::nullopt;
    std::string path = m_list.path(index);
    if (std::string folder = folderOf(path); folder != m_lastFolder) {
        const auto seen = m_files.attributes(FileSystem::noParent, folder.c_str(), Links::Follow);
        m_lastDevice = seen ? seen->device : identity->device;
        m_lastFolder = std::move(folder);
    }
    return AsideRecord{m_tokenSource.next(), std::move(path), m_lastDevice,
                       identity->inode,      identity->type,  m_door.replaces()};
}

Result<void> RemovalRun::write(const std::vector<AsideRecord>& records) {
    if (!m_journal) {
        auto journal = AsideJournal::begin(m_folder);
        if (!journal) return tl::unexpected(journal.error());
        m_journal.emplace(std::move(*journal));
    }
    return m_journal->add(records);
}

void RemovalRun::settleJournal() {
    if (m_journal && m_isAside) return;
    m_door.flush();
    if (m_journal) m_journal->settle();
}

RemovalResult RemovalRun::removeOne(std::size_t index, const std::string& path,
                                    const std::string& token) {
    auto look = m_list.judge(index);
    if (!look) {
        RemovalResult result;
        result.stopped = m_stop;  // maybe because of that alone
        if (result.stopped) return result;
        result.refused = true;
        result.failed = 1;
        result.failures.push_back(std::move(look.error()));
        Log::line(fmt::format("Not removed {}: {}", path, result.failures.front().reason));
        return result;
    }
    const auto seen = m_list.seen(index);
    return m_door.remove(
        {path, m_list.identity(index), look->get(), seen.get(), token, m_list.asksWriters(index)},
        m_stop);
}

// Of folders the removal itself knows best.
void RemovalRun::countBytes(std::size_t index, const RemovalResult& result) {
    const auto identity = m_list.identity(index);
    const bool isFile = identity && identity->type == FileType::Regular;
    if (isFile && !m_counted.insert({identity->device, identity->inode}).second) return;
    addSaturating(m_outcome.bytes,
                  isFile ? m_list.bytes(index) : result.bytes.value_or(m_list.bytes(index)));
}

void RemovalRun::count(std::size_t index, const RemovalResult& result) {
    if (result.shared) {
        ++m_outcome.shared;
        addSaturating(m_outcome.bytes, result.shared->bytes);
        return;
    }
    if (result.bytes) addSaturating(m_outcome.bytes, *result.bytes);
    if (result.gone) {
        ++(result.byOthers ? m_outcome.byOthers : m_outcome.removed);
        const auto identity = m_list.identity(index);
        if (!result.byOthers && identity && identity->type == FileType::Folder) ++m_outcome.folders;
        if (result.bytes) return;
        if (!result.byOthers) countBytes(index, result);
        return;
    }
    if (result.failed == 0) return;  // stopped
    const bool isKept = result.refused && !result.failures.empty() &&
                        result.failures.front().kind == StayReason::Kept;
    ++(isKept ? m_outcome.kept : m_outcome.failed);
    if (!isKept) m_outcome.failedEntries += result.failed;
    for (const StayedEntry& each : result.failures) {
        m_isAside = m_isAside || each.kind == StayReason::Aside;
        m_outcome.lacksRights = m_outcome.lacksRights || each.kind == StayReason::Rights;
        if (m_outcome.stayed.size() < RemovalOutcome::mostStayed) m_outcome.stayed.push_back(each);
    }
}

}  // namespace orrinvale
