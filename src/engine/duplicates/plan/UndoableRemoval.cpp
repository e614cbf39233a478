// engine/duplicates/plan/PlanHistory.h keeps what is noted.
#include "engine/duplicates/plan/UndoableRemoval.h"

#include <fmt/format.h>

#include <utility>

#include "engine/base/Log.h"
#include "engine/duplicates/plan/PlanHistory.h"
#include "engine/removal/stayReasons.h"

namespace orrinvale {

UndoableRemoval::UndoableRemoval(const FileSystem& files, std::string stateFolder,
                                 std::shared_ptr<RemovalList> list, MakePlan plan)
    : m_files(files),
      m_stateFolder(std::move(stateFolder)),
      m_list(std::move(list)),
      m_makePlan(std::move(plan)) {}

void UndoableRemoval::forgetUnused() {
    m_held.reset();
    if (!m_isAnyAway && !m_id.empty()) PlanHistory(m_stateFolder).forget(m_id);
}

void UndoableRemoval::listenTo(const std::atomic<bool>& stop) {
    m_stop = &stop;
    m_list->listenTo(stop);
}

void UndoableRemoval::prepare() {
    m_list->prepare();
    m_plan = std::exchange(m_makePlan, nullptr)(*m_stop);
}

// Folders are noted as they are when things leave them, not as they were before the wait.
void UndoableRemoval::turnHasCome() {
    m_list->turnHasCome();
    if (*m_stop) return;  // nothing goes any more
    const PlanHistory history(m_stateFolder);
    auto noted = history.note(m_files, m_plan);
    m_plan = {};
    if (noted) {
        m_id = std::move(*noted);
        m_held = history.hold(m_id);
    } else Log::line(fmt::format("A removal could not be noted for undo: {}", noted.error()));
}

tl::expected<std::unique_ptr<CopyLook>, StayedEntry> UndoableRemoval::judge(std::size_t index) {
    if (m_id.empty())
        return tl::unexpected(
            StayedEntry{path(index), std::string(stay::notNoted), StayReason::System});
    return m_list->judge(index);
}

// What went wrong on its way back from the trash lies there too.
void UndoableRemoval::settled(std::size_t index, const RemovalResult& result) {
    m_isAnyAway = m_isAnyAway || result.moved || result.removed > 0 ||
                  (!result.failures.empty() && result.failures.front().kind == StayReason::Aside);
    m_list->settled(index, result);
}

}  // namespace orrinvale
