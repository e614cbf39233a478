// isSanitized: what tests of memory and time leave out under a sanitizer.
#pragma once

namespace orrinvale::testing {

/// True where the programs carry their own allocator, so that limits on memory mean nothing and
/// times are long.
[[nodiscard]] constexpr bool isSanitized() {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return true;
#else
    return false;
#endif
}

}  // namespace orrinvale::testing
