// threadsNow: what a test waits for, whose files must outlive those that work on them.
#pragma once

#include <cstddef>

namespace orrinvale::testing {

/// The threads of this process that are not the window library's, which have names of their own and
/// may stay.
[[nodiscard]] std::size_t threadsNow();

}  // namespace orrinvale::testing
