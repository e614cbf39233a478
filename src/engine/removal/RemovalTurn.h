// RemovalTurn: the removals of one user take turns, whichever of our programs they run in.
#pragma once

#include <atomic>
#include <functional>
#include <string>

#include "platform/descriptor.h"

namespace orrinvale {

/// Two removals with opposite ticks could otherwise each find the other's copy standing where
/// nothing can be set aside.
class [[nodiscard]] RemovalTurn final {
public:
    /// Waits until no other removal of this user runs, or until `stop`; `waiting` is called once if
    /// it has to wait. The lock file is in `folder`, which is made if need be. Where no lock can be
    /// had (a folder that can not be written, a file system without locks) the removal goes on
    /// without one.
    RemovalTurn(const std::string& folder, const std::atomic<bool>& stop,
                const std::function<void()>& waiting);

private:
    Descriptor m_file;  // locked as long as it is open
};

}  // namespace orrinvale
