// sd-bus(3), loaded when it is first wanted, and handles of it that let go by themselves.
// DiskService speaks to the disk service with them, LinuxInstanceBus to a running Orrinvale,
// StatusNotifierWatch to the tray, PackageService to the packages.
#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <memory>

namespace orrinvale {

/// The functions that we use of it.
#define ORRINVALE_SD_BUS(function)                                                          \
    function(add_match_async) function(call) function(close_unref) function(error_free)     \
        function(get_events) function(get_fd) function(is_ready) function(message_append)   \
            function(message_append_strv) function(message_at_end)                          \
                function(message_enter_container) function(message_exit_container)          \
                    function(message_get_member) function(message_get_sender)               \
                        function(message_new_method_call) function(message_peek_type)       \
                            function(message_read_array) function(message_read_basic)       \
                                function(message_set_allow_interactive_authorization)       \
                                    function(message_set_auto_start) function(message_skip) \
                                        function(message_unref) function(open_system)       \
                                            function(open_user) function(process) function(wait)

/// Its functions by their names without the prefix. The library brings six others with it, which
/// each start of the terminal command would have to load, so that nothing is linked with it.
struct SdBus {
// A name that is declared can not stand in parentheses.
#define ORRINVALE_MEMBER(name) \
    decltype(&::sd_bus_##name) name = nullptr;  // NOLINT(bugprone-macro-parentheses)
    ORRINVALE_SD_BUS(ORRINVALE_MEMBER)
#undef ORRINVALE_MEMBER
};

/// False where the library is not installed; nothing else here may be called then. Any thread.
[[nodiscard]] bool hasSdBus();
[[nodiscard]] const SdBus& sdBus();

struct BusCloser {
    // Not flushed, which would wait for a bus that hangs: calls are over when their answers are
    // here.
    void operator()(sd_bus* bus) const { sdBus().close_unref(bus); }
};
struct BusMessageCloser {
    void operator()(sd_bus_message* message) const { sdBus().message_unref(message); }
};

/// A connection; belongs to one thread at a time.
using BusHandle = std::unique_ptr<sd_bus, BusCloser>;
using BusMessage = std::unique_ptr<sd_bus_message, BusMessageCloser>;

/// The reason of a call that failed; empty before.
class BusError final {
public:
    BusError() = default;
    ~BusError() { sdBus().error_free(&m_error); }
    BusError(const BusError&) = delete;
    BusError& operator=(const BusError&) = delete;

    [[nodiscard]] sd_bus_error* get() { return &m_error; }
    [[nodiscard]] const char* name() const { return m_error.name != nullptr ? m_error.name : ""; }
    [[nodiscard]] const char* message() const {
        return m_error.message != nullptr ? m_error.message : "";
    }

private:
    sd_bus_error m_error = SD_BUS_ERROR_NULL;
};

/// A time-out as sd-bus counts it.
[[nodiscard]] inline std::uint64_t busMicroseconds(std::chrono::milliseconds time) {
    return static_cast<std::uint64_t>(std::chrono::microseconds(time).count());
}

/// Waits until the bus has greeted this connection, which has been opened and has sent nothing;
/// false when it has not within the time. Whoever calls without asking this first may wait for half
/// a minute on a bus that hangs.
[[nodiscard]] bool becomesReady(sd_bus& bus, std::chrono::milliseconds patience);

}  // namespace orrinvale
