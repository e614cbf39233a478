// The signature is looked at before the description is parsed, so that only what a holder of a key
// wrote ever reaches the parser.
#include "engine/updates/UpdateCheck.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <charconv>

#include "engine/base/Log.h"
#include "platform/signatures.h"

namespace orrinvale {
namespace {

constexpr std::chrono::seconds day{86'400};
constexpr std::chrono::seconds week{604'800};
constexpr std::chrono::seconds month{2'592'000};

// Empty for digits that are none.
std::string bytesOf(std::string_view digits) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
        unsigned value = 0;
        const char* const end = digits.data() + i + 2;
        if (std::from_chars(digits.data() + i, end, value, 16).ptr != end) return {};
        bytes += static_cast<char>(value);
    }
    return bytes;
}

bool hasKeys(const UpdateParts& parts) {
    return std::ranges::any_of(parts.keys, [](const std::string& key) { return !key.empty(); });
}

void tell(const std::string& reason) {
    Log::line(fmt::format("The description of the newest version can not be used: {}", reason));
}

bool isSigned(const UpdateParts& parts, std::string_view bytes, std::string_view signature) {
    for (const std::string& key : parts.keys)
        switch (checkSignature(bytes, signature, bytesOf(key))) {
            case SignatureCheck::Good: return true;
            case SignatureCheck::Bad: break;
            case SignatureCheck::Unknown:
                tell("nothing on this machine can check its signature");
                return false;
        }
    tell("its signature is of nobody whom this program knows");
    return false;
}

// Nothing where one of the two can not be had, with a line in the log unless it was stopped.
std::optional<std::string> fetched(const UpdateParts& parts, const std::string& address,
                                   const std::function<bool()>& isStopped) {
    auto bytes = parts.transport->fetch(address, isStopped);
    if (bytes) return std::move(*bytes);
    if (bytes.error().number != ECANCELED)
        tell(fmt::format("{}: {}", address, bytes.error().reason()));
    return std::nullopt;
}

std::optional<PropertyList> signedDescription(const UpdateParts& parts,
                                              const std::function<bool()>& isStopped) {
    const auto bytes = fetched(parts, parts.address, isStopped);
    if (!bytes) return std::nullopt;
    const auto signature = fetched(parts, parts.address + ".sig", isStopped);
    if (!signature || !isSigned(parts, *bytes, *signature)) return std::nullopt;
    auto list = PropertyList::parse(*bytes);
    if (list) return std::move(*list);
    tell(list.error().reason());
    return std::nullopt;
}

void note(const UpdateParts& parts) {
    if (const auto written = parts.writeTime(iso8601(parts.clock())); !written)
        Log::line(fmt::format("The time of the check is not kept: {}", written.error().reason()));
}

}  // namespace

Date UpdateParts::currentDate() {
    return {std::chrono::duration_cast<std::chrono::nanoseconds>(
                std::chrono::system_clock::now().time_since_epoch())
                .count()};
}

UpdateRoad updateRoad(const UpdateParts& parts) {
    if (parts.isOwnedByPackage && parts.isOwnedByPackage()) return UpdateRoad::Package;
    return hasKeys(parts) ? UpdateRoad::Server : UpdateRoad::NoKeys;
}

FetchedUpdate fetchUpdate(const UpdateParts& parts, const std::function<bool()>& isStopped) {
    using End = FetchedUpdate::End;
    const UpdateRoad road = updateRoad(parts);
    if (road != UpdateRoad::Server) return {.end = End::OtherRoad, .road = road};
    if (isStopped()) return {.end = End::Stopped};
    const bool hasNetwork = parts.isCanBeUseNetWork(isStopped);
    if (isStopped()) return {.end = End::Stopped};
    if (!hasNetwork) return {.end = End::NoNetwork};
    FetchedUpdate update;
    update.description = signedDescription(parts, isStopped);
    if (isStopped()) return {.end = End::Stopped};
    if (update.description) note(parts);
    return update;
}

std::chrono::seconds checkInterval(std::int64_t tag) {
    for (const std::chrono::seconds each : {day, month})
        if (tag == each.count()) return each;
    return week;
}

ScheduleStep scheduleStep(std::chrono::seconds interval, std::optional<Date> last, Date now) {
    if (!last || *last > now) return ScheduleStep::Begin;
    // Of two moments of any distance: a difference of theirs need not fit.
    const auto passed = (now.nanoseconds / 1'000'000'000) - (last->nanoseconds / 1'000'000'000);
    return passed >= interval.count() ? ScheduleStep::Check : ScheduleStep::Wait;
}

ScheduledCheck checkIfDue(const UpdateParts& parts, std::chrono::seconds interval,
                          const std::function<bool()>& isStopped) {
    if (updateRoad(parts) != UpdateRoad::Server) return {};
    const auto text = parts.lastTime();
    switch (scheduleStep(interval, text ? parseDate(*text) : std::nullopt, parts.clock())) {
        case ScheduleStep::Wait: return {};
        case ScheduleStep::Begin: note(parts); return {};
        case ScheduleStep::Check: break;
    }
    FetchedUpdate update = fetchUpdate(parts, isStopped);
    if (update.end == FetchedUpdate::End::Stopped) return {};
    if (!update.description) return {.isFailed = true};
    return {.found = takeNewVersion(&*update.description, parts.localNumber().value_or(0))};
}

}  // namespace orrinvale
