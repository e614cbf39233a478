// A removal that lacks rights.
#pragma once

#include "engine/removal/PlainDoor.h"
#include "platform/paths.h"

namespace orrinvale::testing {

/// A door that this user may not pass with entries whose names begin with "locked".
class LockedDoor final : public RemovalDoor {
public:
    explicit LockedDoor(const FileSystem& files) : m_plain(files, ProtectedPlaces()) {}
    RemovalResult remove(const LeavingEntry& entry, const std::atomic<bool>& stop) override {
        if (!lastPathComponent(entry.path).starts_with("locked"))
            return m_plain.remove(entry, stop);
        RemovalResult refused;
        refused.failed = 1;
        refused.failures.push_back({entry.path, "Permission denied", StayReason::Rights});
        return refused;
    }

private:
    PlainDoor m_plain;
};

}  // namespace orrinvale::testing
