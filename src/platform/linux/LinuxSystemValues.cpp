// One look at a file a question: nobody asks more than a few times in the program's life.
#include "platform/linux/LinuxSystemValues.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <utility>

#include "platform/linux/LinuxMemory.h"
#include "platform/linux/SystemText.h"

namespace orrinvale {
namespace {

constexpr std::size_t modelLimit = 4096;
constexpr std::size_t processorLimit = 64 * 1024;  // far above what tells of the first one

// A text of the firmware ends with a line break, or with a NUL, or is padded with blanks.
SysResult<std::string> toldIn(std::string_view text) {
    constexpr std::string_view edges(" \t\n\0", 4);
    const std::size_t first = text.find_first_not_of(edges);
    if (first == std::string_view::npos) return tl::unexpected(ENOENT);
    return std::string(text.substr(first, text.find_last_not_of(edges) + 1 - first));
}

SysResult<std::string> textOf(const std::optional<utsname>& names, const char* text) {
    return names ? toldIn(text) : SysResult<std::string>(tl::unexpected(ENOENT));
}

std::optional<utsname> namesOfThisSystem() {
    utsname names{};
    return ::uname(&names) == 0 ? std::optional(names) : std::nullopt;
}

}  // namespace

LinuxSystemValues::LinuxSystemValues(std::string root, std::optional<utsname> names)
    : m_root(std::move(root)), m_names(names ? names : namesOfThisSystem()) {}

SysResult<std::string> LinuxSystemValues::sysctlbyname(std::string_view name) const {
    if (name == "hw.machine") return textOf(m_names, m_names ? m_names->machine : "");
    if (name == "kern.ostype") return textOf(m_names, m_names ? m_names->sysname : "");
    if (name == "kern.osrelease") return textOf(m_names, m_names ? m_names->release : "");
    if (name == "kern.hostname") return textOf(m_names, m_names ? m_names->nodename : "");
    if (name == "hw.model") return model();
    if (name == "hw.memsize") return memorySize();
    if (name == "machdep.cpu.vendor") return processorLine("vendor_id");
    if (name == "machdep.cpu.brand_string") return processorLine("model name");
    return tl::unexpected(ENOENT);
}

SysResult<std::string> LinuxSystemValues::model() const {
    for (const char* const file : {"/sys/class/dmi/id/product_name", "/proc/device-tree/model"})
        if (const auto text = readSystemText(m_root + file, modelLimit))
            if (auto told = toldIn(*text)) return told;
    return tl::unexpected(ENOENT);
}

SysResult<std::string> LinuxSystemValues::memorySize() const {
    const auto size = LinuxMemory(m_root).figure("hw.memsize");
    if (!size) return tl::unexpected(size.error());
    if (!*size) return tl::unexpected(ENOENT);
    const std::uint64_t bytes = **size;
    return std::string(reinterpret_cast<const char*>(&bytes), sizeof bytes);
}

// "model name	: AMD Ryzen 7"
SysResult<std::string> LinuxSystemValues::processorLine(std::string_view name) const {
    const auto text = readSystemText(m_root + "/proc/cpuinfo", processorLimit);
    if (!text) return tl::unexpected(text.error());
    std::string_view rest = *text;
    while (!rest.empty()) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        const std::size_t colon = line.find(':');
        if (!line.starts_with(name) || colon == std::string_view::npos) continue;
        if (toldIn(line.substr(0, colon)) == name) return toldIn(line.substr(colon + 1));
    }
    return tl::unexpected(ENOENT);
}

}  // namespace orrinvale
