// The older, one-shot way to the administrator right: ask the person once more, keep nothing.
#pragma once

#include "platform/authorization.h"

namespace orrinvale {

/// Asks for the right on a new reference. The one handed in stays as it was, and nothing frees the new one: the answer tells only
/// that the person agreed.
[[nodiscard]] bool createOneShotRight(AuthorizationRef reference);

/// Frees the reference; false when the platform does not know it.
[[nodiscard]] bool deleteOneShotRight(AuthorizationRef reference);

}  // namespace orrinvale
