// Request: see Request.h. Works on bytes alone and asks the disk nothing; that is done in Checks.cpp.
#include "helper/Request.h"

#include <algorithm>
#include <cstring>

namespace orrinvale::helper {
namespace {

template <class T> T valueAt(std::string_view packet, std::size_t offset) {
    T value{};
    std::memcpy(&value, packet.data() + offset, sizeof value);
    return value;
}

constexpr std::size_t kTypeAt = 24;

bool isType(unsigned char type) {
    return type > static_cast<unsigned char>(FileType::Unknown) &&
           type <= static_cast<unsigned char>(FileType::BlockDevice);
}

std::string_view faultOfPath(std::string_view path) {
    if (path.empty() || path.front() != '/') return "the path is not absolute";
    if (path.find('\0') != std::string_view::npos) return "the path has a NUL byte";
    for (std::string_view rest = path; !rest.empty();) {
        rest.remove_prefix(1);  // the slash
        const std::string_view name = rest.substr(0, rest.find('/'));
        if (name.empty()) return "the path has an empty name or ends with a slash";
        if (name == "." || name == "..") return "the path has \".\" or \"..\" for a name";
        rest.remove_prefix(name.size());
    }
    return {};
}

}  // namespace

std::uint32_t sequenceOf(std::string_view packet) {
    return packet.size() >= HelperRequest::headSize ? valueAt<std::uint32_t>(packet, 4) : 0;
}

tl::expected<HelperRequest, std::string_view> readRequest(std::string_view packet) {
    const auto refused = [](std::string_view reason) { return tl::unexpected(reason); };
    if (packet.size() > HelperRequest::mostBytes) return refused("the packet is too large");
    if (packet.size() < HelperRequest::headSize || valueAt<std::uint32_t>(packet, 0) != HelperRequest::mark)
        return refused("the packet is no request");
    const auto type = valueAt<unsigned char>(packet, kTypeAt);
    const std::string_view filler = packet.substr(kTypeAt + 1, HelperRequest::headSize - kTypeAt - 1);
    if (!isType(type) || std::any_of(filler.begin(), filler.end(), [](char c) { return c != 0; }))
        return refused("the packet names no type of entry");
    const std::string_view path = packet.substr(HelperRequest::headSize);
    if (const std::string_view fault = faultOfPath(path); !fault.empty()) return refused(fault);
    return HelperRequest{sequenceOf(packet), valueAt<std::uint64_t>(packet, 8), valueAt<std::uint64_t>(packet, 16),
                         static_cast<FileType>(type), std::string(path)};
}

}  // namespace orrinvale::helper
