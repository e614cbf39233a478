// The release text is read once a question; nobody asks more than once a start.
#include "platform/linux/LinuxSystem.h"

#include <sys/utsname.h>

#include <charconv>
#include <compare>
#include <optional>
#include <utility>

namespace orrinvale {
namespace {

constexpr std::uint32_t kTooOld = 0x1050;
constexpr std::uint32_t kNewEnough = 0x1060;
constexpr std::pair<unsigned, unsigned> kFirstKernelWithStatx{4, 11};

std::optional<std::pair<unsigned, unsigned>> kernelVersion(std::string_view release) {
    const char* const end = release.data() + release.size();
    std::pair<unsigned, unsigned> version;
    const auto major = std::from_chars(release.data(), end, version.first);
    if (major.ec != std::errc{} || major.ptr == end || *major.ptr != '.') return std::nullopt;
    if (std::from_chars(major.ptr + 1, end, version.second).ec != std::errc{}) return std::nullopt;
    return version;
}

}  // namespace

std::uint32_t LinuxSystem::gestalt(std::string_view selector) const {
    if (selector != "sysv") return 0;
    utsname names{};
    return ::uname(&names) == 0 ? versionOfRelease(names.release) : kNewEnough;
}

std::uint32_t LinuxSystem::versionOfRelease(std::string_view release) {
    const auto version = kernelVersion(release);
    return version && *version < kFirstKernelWithStatx ? kTooOld : kNewEnough;
}

}  // namespace orrinvale
