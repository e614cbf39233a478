// Volumes that come and go when a test says so. Read platform/mounts.h first.
#pragma once

#include <utility>
#include <vector>

#include "platform/mounts.h"

namespace orrinvale {

/// Has no descriptor: nobody is woken by it.
struct FakeMountChanges final : public MountChanges {
    std::vector<MountChange> changes;  ///< of the next look

    [[nodiscard]] int descriptor() const override { return -1; }
    [[nodiscard]] std::vector<MountChange> look() override { return std::exchange(changes, {}); }
};

}  // namespace orrinvale
