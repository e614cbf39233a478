// Memory: what the machine's memory is used for, and how much of it a program may take without
// harm. linux/LinuxMemory.h implements it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/fileTypes.h"

namespace orrinvale {

/// What the pages of the machine are used for. Free, active, inactive and wired ones add up to all
/// of them; the other three count what happened since the system was started, and are nothing where
/// that can not be read.
struct MemoryCounts {
    std::uint64_t free = 0;
    std::uint64_t active = 0;    ///< used lately, or to be had only by writing it out first
    std::uint64_t inactive = 0;  ///< copies of files that nobody looked at lately
    std::uint64_t wired = 0;     ///< all the rest: the kernel's own
    std::optional<std::uint64_t> bytesIn{};   ///< read from disks
    std::optional<std::uint64_t> bytesOut{};  ///< written to disks
    std::optional<std::uint64_t> faults{};    ///< each asked for one page
};

/// What people ask for beside the counts. Bytes.
struct MemoryState {
    /// What programs can have before anything is written out; nothing where it is not told.
    std::optional<std::uint64_t> available;
    std::uint64_t swapTotal = 0;
    std::uint64_t swapUsed = 0;
    /// The share of the last minute, in percent, in which some program waited for memory; nothing
    /// where the system does not measure it.
    std::optional<double> pressure;
};

/// Any thread.
class Memory {
public:
    virtual ~Memory() = default;

    /// A figure by its name: "hw.pagesize", "hw.physmem" and "hw.memsize", in bytes. An error where
    /// the system does not know the figure, nothing where it knows it and can not read it.
    [[nodiscard]] virtual SysResult<std::optional<std::uint64_t>> figure(
        std::string_view name) const = 0;

    [[nodiscard]] virtual SysResult<MemoryCounts> counts() const = 0;
    [[nodiscard]] virtual SysResult<MemoryState> state() const = 0;

    /// How many bytes this process may still take before anything else has to be written out or
    /// ended: what is available, and never more than the limits of the groups that it belongs to
    /// leave. 0 where the system does not tell, or where a group can not be seen.
    [[nodiscard]] virtual std::uint64_t room() const = 0;

    /// Makes this process the first to be ended where memory runs out, for the rest of its life.
    /// False when that can not be had.
    [[nodiscard]] virtual bool endThisProcessFirst() const = 0;

protected:
    Memory() = default;
    Memory(const Memory&) = default;
    Memory& operator=(const Memory&) = default;
};

/// Whether the file of an absolute path, and every folder on the way to it, is the administrator's
/// and nobody else may write to it. A link is not.
[[nodiscard]] bool onlyRootCanHavePut(const std::string& path);

/// The programs that may be asked to free memory, each by its absolute path. An empty one is never
/// asked.
struct PurgePrograms {
    std::string systemPurge{};    ///< the operating system's own
    std::string resourcePurge{};  ///< the one that may lie beside this program's resources
    std::string executable{};     ///< this very program, which frees memory when it is told "fr"
    /// Whether resourcePurge is there and may be run; asked anew before each start.
    bool (*isTrusted)(const std::string& path) = &onlyRootCanHavePut;
};

/// Those of this machine.
[[nodiscard]] PurgePrograms purgePrograms();

}  // namespace orrinvale
