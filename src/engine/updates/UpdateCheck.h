// UpdateCheck: whether there is anything to ask, the asking, and when it is time for it.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/base/Date.h"
#include "engine/settings/TCPublicUtilities.h"
#include "engine/updates/NewVersion.h"
#include "engine/updates/UpdateTransport.h"

namespace orrinvale {

/// What the check works with. All functions may be called on any thread, and may block.
struct UpdateParts {
    const UpdateTransport* transport = nullptr;  ///< not owned; outlives the last check
    std::string address;                         ///< of the description; that of its signature has
                                                 ///< ".sig" behind it
    std::vector<std::string> keys;  ///< hexadecimal, see releaseKeys.h; empty ones are none
    std::function<bool()> isOwnedByPackage;
    std::function<bool(const std::function<bool()>& isStopped)> isCanBeUseNetWork =
        &TCPublicUtilities::isCanBeUseNetWork;
    std::function<std::optional<std::int64_t>()> localNumber = &TCPublicUtilities::versionCheck;
    /// When the description was last read.
    std::function<std::optional<std::string>()> lastTime = &TCPublicUtilities::getUpDataTimeStr;
    std::function<Result<void>(const std::string& time)> writeTime = [](const std::string& time) {
        return TCPublicUtilities::writeUpDataTimeStr(time);
    };
    std::function<Date()> clock = &currentDate;

    [[nodiscard]] static Date currentDate();
};

/// Where newer versions of this copy of the program come from.
enum class UpdateRoad : std::uint8_t {
    Server,
    Package,  ///< with the system
    NoKeys    ///< from nowhere that it knows: there is nobody whom it would believe
};

[[nodiscard]] UpdateRoad updateRoad(const UpdateParts& parts);

struct FetchedUpdate {
    enum class End : std::uint8_t {
        OtherRoad,  ///< the road is not the server; nothing was asked
        NoNetwork,
        Stopped,
        Fetched
    };
    End end = End::Fetched;
    UpdateRoad road = UpdateRoad::Server;
    /// Only of Fetched; none where nothing could be read, or nobody whom we know has signed it.
    std::optional<PropertyList> description = std::nullopt;
};

/// Asks for the description and for its signature, and for nothing where the road is another one.
/// A description that was read is noted with the time; why one was not is a line in the log. Blocks
/// the caller for some fifteen seconds at most.
[[nodiscard]] FetchedUpdate fetchUpdate(
    const UpdateParts& parts, const std::function<bool()>& isStopped = [] { return false; });

/// Of a number that is stored in "SUScheduledCheckInterval": a day, a week or a month in seconds,
/// and for all others a week.
[[nodiscard]] std::chrono::seconds checkInterval(std::int64_t tag);

enum class ScheduleStep : std::uint8_t {
    Wait,
    Begin,  ///< nobody knows of an earlier check: the time counts from now on
    Check
};

/// A time that is still to come is as good as none: the clock was wrong once.
[[nodiscard]] ScheduleStep scheduleStep(std::chrono::seconds interval, std::optional<Date> last,
                                        Date now);

struct ScheduledCheck {
    bool isFailed = false;  ///< it was time, and nothing could be read
    std::optional<NewVersion> found = std::nullopt;
};

/// Checks if it is time, which it never is at the first call of all. Blocks like fetchUpdate();
/// one that is stopped has not failed.
[[nodiscard]] ScheduledCheck checkIfDue(
    const UpdateParts& parts, std::chrono::seconds interval,
    const std::function<bool()>& isStopped = [] { return false; });

}  // namespace orrinvale
