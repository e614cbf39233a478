// No volume ever comes or goes. Read platform/mounts.h first.
#pragma once

#include "platform/mounts.h"

namespace orrinvale {

struct FakeMountChanges final : public MountChanges {
    [[nodiscard]] int descriptor() const override { return -1; }
    [[nodiscard]] std::vector<MountChange> look() override { return {}; }
};

}  // namespace orrinvale
