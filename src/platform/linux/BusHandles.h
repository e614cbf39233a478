// Handles of sd-bus(3) that let go by themselves. LinuxVolumesEjection speaks to the disk service with them, ProgramHandover
// to a running Orrinvale.
#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <memory>

namespace orrinvale {

struct BusCloser {
    // Not flushed, which would wait for a bus that hangs: calls are over when their answers are here.
    void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
};
struct BusMessageCloser {
    void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

/// A connection; belongs to one thread at a time.
using BusHandle = std::unique_ptr<sd_bus, BusCloser>;
using BusMessage = std::unique_ptr<sd_bus_message, BusMessageCloser>;

/// The reason of a call that failed; empty before.
class BusError final {
public:
    BusError() = default;
    ~BusError() { sd_bus_error_free(&m_error); }
    BusError(const BusError&) = delete;
    BusError& operator=(const BusError&) = delete;

    [[nodiscard]] sd_bus_error* get() { return &m_error; }
    [[nodiscard]] const char* name() const { return m_error.name != nullptr ? m_error.name : ""; }
    [[nodiscard]] const char* message() const { return m_error.message != nullptr ? m_error.message : ""; }

private:
    sd_bus_error m_error = SD_BUS_ERROR_NULL;
};

/// A time-out as sd-bus counts it.
[[nodiscard]] inline std::uint64_t busMicroseconds(std::chrono::milliseconds time) {
    return static_cast<std::uint64_t>(std::chrono::microseconds(time).count());
}

/// Waits until the bus has greeted this connection, which has been opened and has sent nothing; false when it has not within the time.
/// Whoever calls without asking this first may wait for half a minute on a bus that hangs.
[[nodiscard]] bool becomesReady(sd_bus& bus, std::chrono::milliseconds patience);

}  // namespace orrinvale
