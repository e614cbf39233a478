// Names on the bus: the reference of org.freedesktop.UDisks2.
#include "platform/linux/DiskService.h"

#include <algorithm>
#include <array>
#include <functional>
#include <string_view>
#include <utility>

#include "platform/deadline.h"

namespace orrinvale {
namespace {

using FailureKind = DiskServiceFailure::Kind;
using Clock = std::chrono::steady_clock;

constexpr const char* kService = "org.freedesktop.UDisks2";
constexpr const char* kManager = "/org/freedesktop/UDisks2";
constexpr std::chrono::minutes kLongestOperation{10};

constexpr const char* kSilent = "The disk service does not answer";

template <std::size_t size>
bool isOneOf(std::string_view text, const std::array<std::string_view, size>& list) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

constexpr std::array<std::string_view, 3> silentErrors{"org.freedesktop.DBus.Error.NoReply",
                                                       "org.freedesktop.DBus.Error.Timeout",
                                                       "org.freedesktop.DBus.Error.TimedOut"};
constexpr std::array<std::string_view, 3> goneErrors{"org.freedesktop.DBus.Error.UnknownObject",
                                                     "org.freedesktop.DBus.Error.UnknownInterface",
                                                     "org.freedesktop.DBus.Error.UnknownMethod"};

bool isAbsence(std::string_view name) {
    return name == "org.freedesktop.DBus.Error.ServiceUnknown" ||
           name == "org.freedesktop.DBus.Error.NameHasNoOwner" ||
           name.starts_with("org.freedesktop.DBus.Error.Spawn");
}

tl::unexpected<DiskServiceFailure> unreachable(const char* reason) {
    return tl::unexpected(DiskServiceFailure{FailureKind::Unreachable, reason});
}

DiskServiceFailure failureOf(const BusError& error) {
    const std::string_view name = error.name();
    if (isOneOf(name, silentErrors)) return {FailureKind::Unreachable, kSilent};
    if (isAbsence(name))
        return {FailureKind::Unreachable, "The disk service, udisks2, is not there"};
    std::string reason = error.message();
    if (reason.empty()) reason = "The disk service gave no reason";
    if (isOneOf(name, goneErrors)) return {FailureKind::Gone, "The drive is not there any more"};
    if (name == "org.freedesktop.UDisks2.Error.NotMounted")
        return {FailureKind::NotMounted, std::move(reason)};
    if (name == "org.freedesktop.UDisks2.Error.DeviceBusy")
        return {FailureKind::Busy, std::move(reason)};
    // For what the kernel says of an unmount it has only words.
    const bool isBusy = reason.find("is busy") != std::string::npos;
    return {isBusy ? FailureKind::Busy : FailureKind::Other, std::move(reason)};
}

std::string textOf(sd_bus_message* message, char type) {
    const char* text = nullptr;
    return sdBus().message_read_basic(message, type, &text) > 0 && text != nullptr ? text : "";
}

// A path; that of no object is "/".
std::string objectIn(sd_bus_message* message) {
    std::string path = textOf(message, 'o');
    return path == "/" ? std::string() : path;
}

bool truthIn(sd_bus_message* message) {
    int truth = 0;
    return sdBus().message_read_basic(message, 'b', &truth) > 0 && truth != 0;
}

// Bytes with a NUL behind them.
std::string bytesIn(sd_bus_message* message) {
    const void* bytes = nullptr;
    std::size_t size = 0;
    if (sdBus().message_read_array(message, 'y', &bytes, &size) <= 0 || size == 0) return {};
    const std::string_view all(static_cast<const char*>(bytes), size);
    return std::string(all.substr(0, all.find('\0')));
}

// Calls `each` inside every element until it can not be read. False for what is no such container.
bool eachIn(sd_bus_message* message, char type, const char* contents,
            const std::function<bool()>& each) {
    if (sdBus().message_enter_container(message, type, contents) <= 0) return false;
    while (sdBus().message_at_end(message, 0) == 0)
        if (!each()) return false;
    return sdBus().message_exit_container(message) >= 0;
}

struct Property {
    std::string_view interface;
    std::string_view name;
    std::string_view type;
    void (*take)(sd_bus_message* message, DiskObject& object);
};

void takeMountPoints(sd_bus_message* message, DiskObject& object) {
    eachIn(message, SD_BUS_TYPE_ARRAY, "ay", [&] {
        object.mountPoints.push_back(bytesIn(message));
        return true;
    });
}

void takeMedia(sd_bus_message* message, DiskObject& object) {
    eachIn(message, SD_BUS_TYPE_ARRAY, "s", [&] {
        if (textOf(message, 's').starts_with("optical")) object.isOptical = true;
        return true;
    });
}

void takeNumber(sd_bus_message* message, DiskObject& object) {
    sdBus().message_read_basic(message, 't', &object.number);
}

using Message = sd_bus_message;
constexpr Property properties[] = {
    {"Block", "DeviceNumber", "t", &takeNumber},
    {"Block", "Device", "ay",
     [](Message* from, DiskObject& object) { object.node = bytesIn(from); }},
    {"Block", "Drive", "o",
     [](Message* from, DiskObject& object) { object.drive = objectIn(from); }},
    {"Block", "CryptoBackingDevice", "o",
     [](Message* from, DiskObject& object) { object.locked = objectIn(from); }},
    {"Partition", "Table", "o",
     [](Message* from, DiskObject& object) { object.table = objectIn(from); }},
    {"Filesystem", "MountPoints", "aay", &takeMountPoints},
    {"Encrypted", "CleartextDevice", "o",
     [](Message* from, DiskObject& object) { object.unlocked = objectIn(from); }},
    {"Swapspace", "Active", "b",
     [](Message* from, DiskObject& object) { object.isActiveSwap = truthIn(from); }},
    {"Drive", "Ejectable", "b",
     [](Message* from, DiskObject& object) { object.canEject = truthIn(from); }},
    {"Drive", "CanPowerOff", "b",
     [](Message* from, DiskObject& object) { object.canPowerOff = truthIn(from); }},
    {"Drive", "MediaCompatibility", "as", &takeMedia},
    {"Drive", "SiblingId", "s",
     [](Message* from, DiskObject& object) { object.siblings = textOf(from, 's'); }},
};

// One "{sv}".
bool takeProperty(Message* message, std::string_view interface, DiskObject& object) {
    if (sdBus().message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sv") <= 0) return false;
    const std::string name = textOf(message, 's');
    const char* contents = nullptr;
    if (sdBus().message_peek_type(message, nullptr, &contents) <= 0 || contents == nullptr)
        return false;
    const auto* const known =
        std::find_if(std::begin(properties), std::end(properties), [&](const Property& each) {
            return each.interface == interface && each.name == name && each.type == contents;
        });
    if (known == std::end(properties)) {
        if (sdBus().message_skip(message, "v") < 0) return false;
    } else {
        if (sdBus().message_enter_container(message, SD_BUS_TYPE_VARIANT, contents) <= 0)
            return false;
        known->take(message, object);
        if (sdBus().message_exit_container(message) < 0) return false;
    }
    return sdBus().message_exit_container(message) >= 0;
}

// One "{sa{sv}}".
bool takeInterface(Message* message, DiskObject& object) {
    constexpr std::string_view prefix = "org.freedesktop.UDisks2.";
    if (sdBus().message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "sa{sv}") <= 0)
        return false;
    const std::string name = textOf(message, 's');
    const std::string_view interface =
        name.starts_with(prefix) ? std::string_view(name).substr(prefix.size()) : "";
    if (interface == "Block") object.isBlock = true;
    if (interface == "Drive") object.isDrive = true;
    if (interface == "Loop") object.isLoop = true;
    return eachIn(message, SD_BUS_TYPE_ARRAY, "{sv}",
                  [&] { return takeProperty(message, interface, object); }) &&
           sdBus().message_exit_container(message) >= 0;
}

// "a{oa{sa{sv}}}"; false for what is no such answer.
bool takeObjects(Message* message, std::vector<DiskObject>& objects) {
    return eachIn(message, SD_BUS_TYPE_ARRAY, "{oa{sa{sv}}}", [&] {
        if (sdBus().message_enter_container(message, SD_BUS_TYPE_DICT_ENTRY, "oa{sa{sv}}") <= 0)
            return false;
        DiskObject object;
        object.path = objectIn(message);
        if (!eachIn(message, SD_BUS_TYPE_ARRAY, "{sa{sv}}",
                    [&] { return takeInterface(message, object); }))
            return false;
        if (object.isBlock || object.isDrive) objects.push_back(std::move(object));
        return sdBus().message_exit_container(message) >= 0;
    });
}

}  // namespace

DiskServiceResult<DiskService> DiskService::open(std::chrono::milliseconds patience) {
    const auto end = Clock::now() + patience;
    sd_bus* connection = nullptr;
    if (!hasSdBus() || sdBus().open_system(&connection) < 0)
        return unreachable("The disk service can not be asked: no system bus");
    DiskService service{BusHandle(connection)};
    if (!becomesReady(*connection, patience)) return unreachable("The system bus does not answer");

    Message* message = nullptr;
    if (sdBus().message_new_method_call(connection, &message, kService, kManager,
                                        "org.freedesktop.DBus.ObjectManager",
                                        "GetManagedObjects") < 0)
        return unreachable(kSilent);
    const BusMessage question(message);
    BusError error;
    Message* reply = nullptr;
    // A time-out of 0 would be the library's own, which is long.
    if (sdBus().call(connection, question.get(),
                     std::max<std::uint64_t>(busMicroseconds(timeUntil(end)), 1), error.get(),
                     &reply) < 0)
        return tl::unexpected(failureOf(error));
    const BusMessage answer(reply);
    if (!takeObjects(reply, service.m_objects))
        return tl::unexpected(
            DiskServiceFailure{FailureKind::Other, "The disk service answers with something else"});
    return service;
}

DiskServiceResult<void> DiskService::call(const std::string& path, const char* interface,
                                          const char* operation) {
    Message* message = nullptr;
    if (sdBus().message_new_method_call(m_bus.get(), &message, kService, path.c_str(), interface,
                                        operation) < 0)
        return unreachable(kSilent);
    const BusMessage question(message);
    sdBus().message_set_allow_interactive_authorization(message, 1);
    BusError error;
    if (sdBus().message_append(message, "a{sv}", 0) < 0 ||
        sdBus().call(m_bus.get(), message, busMicroseconds(kLongestOperation), error.get(),
                     nullptr) < 0)
        return tl::unexpected(failureOf(error));
    return {};
}

}  // namespace orrinvale
