// SystemValues: facts about the machine and its system, each by its name.
// linux/LinuxSystemValues.h implements it, engine/diagnostics/SysInfo.h is who asks.
#pragma once

#include <string>
#include <string_view>

#include "platform/fileTypes.h"

namespace orrinvale {

class SystemValues {
public:
    virtual ~SystemValues() = default;

    /// The bytes of a value, without an end mark. Texts: "hw.machine", "hw.model",
    /// "machdep.cpu.vendor", "machdep.cpu.brand_string", "kern.ostype", "kern.osrelease",
    /// "kern.hostname". "hw.memsize" is a 64-bit number as it lies in memory. ENOENT for what this
    /// machine does not tell. Any thread; reads files of the kernel, which answer at once.
    [[nodiscard]] virtual SysResult<std::string> sysctlbyname(std::string_view name) const = 0;

protected:
    SystemValues() = default;
    SystemValues(const SystemValues&) = default;
    SystemValues& operator=(const SystemValues&) = default;
};

}  // namespace orrinvale
