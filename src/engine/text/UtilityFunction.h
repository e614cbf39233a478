// UtilityFunction: the texts of sizes and dates, their way back, and a few small services of the
// whole program.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "platform/workspace.h"

namespace orrinvale {

class NotificationCenter;
class System;

/// Sizes are computed in 32-bit floating point throughout: a count becomes a single-precision
/// number first and is then scaled by a single-precision constant, so the text of a large size
/// carries 24 bits, and a text read back gives a count that differs from the first one by that
/// rounding. No result depends on the locale.
///
/// The operations on texts and numbers keep no state and may be called from any thread. The shared
/// instance holds what the main function handed over; it must be handed over before other threads
/// start and must outlive them.
class UtilityFunction final {
public:
    /// Made at the first call, never freed.
    [[nodiscard]] static UtilityFunction& getMyFunction();

    /// Not owned. What was never handed over is null, and the operations below say what happens
    /// then.
    void setWorkspace(const Workspace* workspace) { m_workspace = workspace; }
    void setSystem(const System* system) { m_system = system; }
    void setNotificationCenter(const NotificationCenter* center) { m_center = center; }

    /// Bytes as "1.50 GB" in decimal units KB, MB and GB; never in bytes, never in larger units.
    [[nodiscard]] static std::string convertVolSpace(std::uint64_t bytes);

    /// Bytes in binary units, with the same three labels. The form for memory.
    [[nodiscard]] static std::string covertCleanMemory(std::uint64_t bytes);

    /// Whole units of the given base, truncated, as "3.00 GB". Square and cube of the base wrap at
    /// 32 bits; where the divisor so made is 0, so is the number shown.
    [[nodiscard]] static std::string formatValue(std::uint64_t value, std::int32_t baseNumber);

    /// The bytes of a size text that ends in KB, MB, GB or TB (decimal), with or without a blank
    /// before; 0 for any other end. The number is what stands at the start of the text, up to the
    /// last two bytes. A product below 0 gives 0, one of 2^64 or more gives the largest count.
    /// Throws std::out_of_range for a text of fewer than two bytes.
    [[nodiscard]] static std::uint64_t getVolSpaceFromString(std::string_view text);

    /// The GB of a size text "NUMBER UNIT" with a unit of KB, MB, GB or T, for comparisons; 0 for
    /// any other unit, "TB" among them. Throws std::out_of_range for a text with no blank.
    [[nodiscard]] static float returnParserFromVolSpace(std::string_view text);

    /// "2013-04-09 10:20:30 +0000" as "04/09/2013 10:20:30". Throws std::out_of_range when the text
    /// has no blank or its first piece has fewer than two hyphens.
    [[nodiscard]] static std::string parseDateTime(std::string_view text);

    /// A rectangle of this size about the centre of the main screen; about the origin when there is
    /// no screen or no workspace.
    [[nodiscard]] static Rect returnRectOfWindcenterWithWidht(float width, float height);

    /// Posts "shouldSelectRow" with a RowSelection; does nothing when there is no notification
    /// centre.
    static void callSelectNotificationForMainWindowLeft(std::int32_t row);

    /// True when the system's "sysv" figure lies below 0x1060. False when no system was handed
    /// over: a program that can not ask does not refuse to start.
    [[nodiscard]] static bool isBelow1050SystemVer();

    UtilityFunction(const UtilityFunction&) = delete;
    UtilityFunction& operator=(const UtilityFunction&) = delete;

private:
    UtilityFunction() = default;
    ~UtilityFunction() = default;

    std::atomic<const Workspace*> m_workspace{nullptr};
    std::atomic<const System*> m_system{nullptr};
    std::atomic<const NotificationCenter*> m_center{nullptr};
};

}  // namespace orrinvale
