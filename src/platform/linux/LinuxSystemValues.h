// SystemValues over uname(2) and files of the kernel. Read platform/systemValues.h first.
#pragma once

#include <sys/utsname.h>

#include <optional>
#include <string>

#include "platform/systemValues.h"

namespace orrinvale {

/// The model is what the firmware calls the machine: the DMI's product name, or the device tree's
/// model where there is no DMI. Maker and name of the processor are those of the first one in
/// /proc/cpuinfo, which some architectures do not tell.
class LinuxSystemValues final : public SystemValues {
public:
    /// `root` stands before /proc and /sys, and `names` in the place of what uname(2) tells:
    /// another machine's in tests.
    explicit LinuxSystemValues(std::string root = {}, std::optional<utsname> names = std::nullopt);

    [[nodiscard]] SysResult<std::string> sysctlbyname(std::string_view name) const override;

private:
    [[nodiscard]] SysResult<std::string> model() const;
    [[nodiscard]] SysResult<std::string> memorySize() const;
    [[nodiscard]] SysResult<std::string> processorLine(std::string_view name) const;

    const std::string m_root;
    std::optional<utsname> m_names;  // nothing where the system does not tell
};

}  // namespace orrinvale
