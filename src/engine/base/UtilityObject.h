// UtilityObject: the few flags and counts that all pages of one process share.
#pragma once

#include <atomic>
#include <cstdint>

namespace orrinvale {

/// One instance a process, made at first use and never freed. Every field may be read and written
/// from any thread; each stands alone, so no order between two of them is promised.
class UtilityObject final {
public:
    [[nodiscard]] static UtilityObject& getMyObject();

    UtilityObject(const UtilityObject&) = delete;
    UtilityObject& operator=(const UtilityObject&) = delete;

    void setIsCanBeAction(bool value) { isCanBeAction = value; }
    void setIsOpenLocked(bool value) { isOpenLocked = value; }

    std::atomic<std::int32_t> totalBubbleCount{0};  ///< bubbles shown in the present series
    std::atomic<std::int32_t> liveBubbleCount{0};   ///< bubbles now on the screen
    std::atomic<bool> isCanBeAction{true};          ///< false while a Fast Clean runs
    std::atomic<bool> isOpenLocked{false};  ///< the padlock is open: an administrator right is held
    std::atomic<bool> isFristOpenTime{true};            ///< nothing reads it yet
    std::atomic<bool> isFristOpenTimeInMenuItem{true};  ///< nothing reads it yet

private:
    UtilityObject() = default;
    ~UtilityObject() = default;
};

}  // namespace orrinvale
