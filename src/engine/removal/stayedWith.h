// stayedWith: the result of an entry that stays as it is, for one reason.
#pragma once

#include <utility>

#include "engine/files/RemovalResult.h"

namespace orrinvale {

/// Nothing was done. It counts as refused where no administrator could help either.
[[nodiscard]] inline RemovalResult stayedWith(StayedEntry why) {
    RemovalResult result;
    result.refused = why.kind != StayReason::Rights && why.kind != StayReason::System;
    result.failed = 1;
    result.failures.push_back(std::move(why));
    return result;
}

}  // namespace orrinvale
