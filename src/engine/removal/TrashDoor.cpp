// Trash.h does the moving.
#include "engine/removal/TrashDoor.h"

#include <cerrno>

#include "engine/files/HeldEntry.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {

// Somebody else has removed it. Where its folder is not there either, its disk may be what is gone.
bool TrashDoor::isAbsent(const std::string& path) const {
    const auto parent = HeldEntry::holdParentOf(m_files, path);
    if (!parent) return false;
    const std::string name(lastPathComponent(path));
    const auto seen = m_files.attributes(parent->get(), name.c_str(), Links::Keep);
    return !seen && seen.error() == ENOENT;
}

RemovalResult TrashDoor::remove(const LeavingEntry& entry, const std::atomic<bool>& /*stop*/) {
    RemovalResult result;
    const auto moved = m_trash.move(entry.path, entry.identity);
    result.gone = moved.has_value() || isAbsent(entry.path);
    result.removed = moved ? 1 : 0;
    if (!result.gone) {
        result.failed = 1;
        result.failures.push_back({entry.path, moved.error(), StayReason::System});
    }
    return result;
}

}  // namespace orrinvale
