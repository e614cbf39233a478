// endAside: the end of something large, away from the thread that has no more use for it.
#pragma once

#include <system_error>
#include <thread>
#include <utility>

namespace orrinvale {

/// Ends `value` on a thread of its own, and here where there is none. To free tens of thousands of
/// rows takes longer than one turn of the main thread may. For values that any thread may end; of
/// what is shared the last holder frees it.
template <class Value> void endAside(Value value) {
    try {
        std::thread([held = std::move(value)] {}).detach();
    } catch (const std::system_error&) {  // no thread left for this user: it has ended here
    }
}

}  // namespace orrinvale
