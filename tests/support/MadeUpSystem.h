// A machine whose facts a test makes up.
#pragma once

#include <cerrno>
#include <cstdint>
#include <map>
#include <string>

#include "platform/systemValues.h"

namespace orrinvale::testing {

struct MadeUpSystem final : SystemValues {
    [[nodiscard]] SysResult<std::string> sysctlbyname(std::string_view name) const override {
        const auto found = values.find(name);
        if (found == values.end()) return tl::unexpected(ENOENT);
        return found->second;
    }
    static std::string number(std::uint64_t value) {
        return {reinterpret_cast<const char*>(&value), sizeof value};
    }

    std::map<std::string, std::string, std::less<>> values{
        {"hw.machine", "x86_64"},
        {"hw.model", "Desk 7"},
        {"hw.memsize", number(8ULL << 30U)},
        {"machdep.cpu.vendor", "MadeUp"},
        {"machdep.cpu.brand_string", "MadeUp Core 9"},
        {"kern.ostype", "Linux"},
        {"kern.osrelease", "6.1.0-18-amd64"},
        {"kern.hostname", "annas-desk.example"}};
};

}  // namespace orrinvale::testing
