// PreviewCount: how many files are looked into at once, by all previews of the window together.
#pragma once

#include <atomic>
#include <memory>

namespace orrinvale {

/// A disk that hangs keeps the threads of its looks, and each look may take much memory. Any
/// thread.
class PreviewCount final {
public:
    static constexpr int most = 8;

    /// A place for one look, given back with the last copy of what this returns, on whichever
    /// thread holds that. Null where all are taken.
    [[nodiscard]] static std::shared_ptr<void> takePlace() {
        static std::atomic<int> taken{0};
        if (taken.fetch_add(1) >= most) {
            --taken;
            return nullptr;
        }
        return {&taken, [](std::atomic<int>* count) { --*count; }};
    }
};

}  // namespace orrinvale
