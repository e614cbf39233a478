// The session bus side of ProgramInstance, over sd-bus(3) and not over the toolkit: a start that
// only hands over loads no windows.
#include <array>
#include <cerrno>
#include <string>

#include "platform/FileUrl.h"
#include "platform/deadline.h"
#include "platform/instance.h"
#include "platform/linux/BusHandles.h"

namespace orrinvale {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

constexpr milliseconds longestGreeting{400};

BusHandle sessionBus(milliseconds patience) {
    sd_bus* opened = nullptr;
    if (!hasSdBus() || sdBus().open_user(&opened) < 0) return nullptr;
    BusHandle bus(opened);
    return becomesReady(*bus, patience) ? std::move(bus) : nullptr;
}

int appendPlatformData(sd_bus_message& message, const StartRequest& request) {
    if (request.activationToken.empty()) return sdBus().message_append(&message, "a{sv}", 0);
    const char* const token = request.activationToken.c_str();
    return sdBus().message_append(&message, "a{sv}", 2, "activation-token", "s", token,
                                  "desktop-startup-id", "s", token);
}

int appendArguments(sd_bus_message& message, const StartRequest& request) {
    switch (request.kind) {
        case StartRequest::Kind::Activate: break;
        case StartRequest::Kind::Open:
            if (const int failed =
                    sdBus().message_append(&message, "as", 1, fileUrlOf(request.text).c_str());
                failed < 0)
                return failed;
            break;
        case StartRequest::Kind::Action:
            if (const int failed = sdBus().message_append(&message, "sav", request.text.c_str(), 0);
                failed < 0)
                return failed;
            break;
    }
    return appendPlatformData(message, request);
}

const char* methodFor(StartRequest::Kind kind) {
    switch (kind) {
        case StartRequest::Kind::Activate: return "Activate";
        case StartRequest::Kind::Open: return "Open";
        case StartRequest::Kind::Action: return "ActivateAction";
    }
    return "";
}

BusMessage callFor(sd_bus& bus, const StartRequest& request) {
    sd_bus_message* made = nullptr;
    const int failed = sdBus().message_new_method_call(
        &bus, &made, programBusName, programBusPath, programBusInterface, methodFor(request.kind));
    BusMessage call(made);
    if (failed < 0 || appendArguments(*call, request) < 0) return nullptr;
    // A bus that starts the program by its service file would start this very one again.
    sdBus().message_set_auto_start(call.get(), 0);
    return call;
}

}  // namespace

BusHandOver handOverBySessionBus(const StartRequest& request, milliseconds patience) {
    const auto end = Clock::now() + patience;
    BusHandOver out;
    const BusHandle bus = sessionBus(std::min(patience, longestGreeting));
    if (!bus) return out;
    out.isBusThere = true;
    const BusMessage call = callFor(*bus, request);
    if (!call) return out;
    // What is left of the time, and never 0, which would mean 25 seconds.
    const auto left = std::max(milliseconds(1), timeUntil(end));
    BusError error;
    sd_bus_message* answered = nullptr;
    const int result =
        sdBus().call(bus.get(), call.get(), busMicroseconds(left), error.get(), &answered);
    const BusMessage answer(answered);
    if (result >= 0) out.told = ProgramInstance::Start::HandedOver;
    if (result == -ETIMEDOUT) out.told = ProgramInstance::Start::Unanswered;
    return out;
}

}  // namespace orrinvale
