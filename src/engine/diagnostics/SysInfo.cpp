// The values in the order of the record's report.
#include "engine/diagnostics/SysInfo.h"

#include <algorithm>
#include <span>

namespace orrinvale {

std::uint64_t numberIn(const std::string& bytes) {
    std::uint64_t number = 0;
    if (bytes.size() >= sizeof number) std::memcpy(&number, bytes.data(), sizeof number);
    return number;
}

std::int32_t getSysInfo(_SYS_INFO* info, const SystemValues& system) {
    if (info == nullptr) return -1;
    std::int32_t status = 0;
    const auto ask = [&](const char* name) {
        const auto value = system.sysctlbyname(name);
        if (!value) status = value.error();
        return value.value_or(std::string());
    };
    const auto take = [&](const char* name, std::span<char> field) {
        const std::string value = ask(name);
        std::ranges::copy_n(value.begin(),
                            static_cast<std::ptrdiff_t>(std::min(value.size(), field.size())),
                            field.begin());
    };
    take("hw.machine", info->MachineType);
    take("hw.model", info->Model);
    if (const std::string size = ask("hw.memsize"); !size.empty()) info->TotalMem = numberIn(size);
    take("machdep.cpu.vendor", info->CpuVendor);
    take("machdep.cpu.brand_string", info->CpuBrandString);
    take("kern.ostype", info->OSType);
    take("kern.osrelease", info->OSVersion);
    take("kern.hostname", info->Hostname);
    return status;
}

}  // namespace orrinvale
