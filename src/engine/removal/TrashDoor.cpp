// Trash.h does the moving.
#include "engine/removal/TrashDoor.h"

namespace orrinvale {

RemovalResult TrashDoor::remove(const LeavingEntry& entry, const std::atomic<bool>& /*stop*/) {
    RemovalResult result;
    const auto moved = m_trash.move(entry.path, entry.identity);
    result.gone = moved.has_value();
    result.removed = moved ? 1 : 0;
    if (!moved) {
        result.failed = 1;
        result.failures.push_back({entry.path, moved.error(), StayReason::System});
    }
    return result;
}

}  // namespace orrinvale
