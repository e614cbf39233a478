// Works on bytes alone and asks the disk nothing; that is done in Checks.cpp.
#include "helper/Request.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

namespace orrinvale::helper {
namespace {

template <class T> T valueAt(std::string_view packet, std::size_t offset) {
    T value{};
    std::memcpy(&value, packet.data() + offset, sizeof value);
    return value;
}

// Where the parts of an entry begin, from its own start.
constexpr std::size_t kStateAt = 16;
constexpr std::size_t kTypeAt = 48;
constexpr std::size_t kHasStateAt = 49;
constexpr std::size_t kLengthAt = 52;

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

bool isZero(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return c == 0; });
}

std::optional<EntryState> stateOf(std::string_view entry) {
    if (entry[kHasStateAt] == 0) return std::nullopt;
    return EntryState{
        .size = valueAt<std::uint64_t>(entry, kStateAt),
        .modified = valueAt<std::int64_t>(entry, kStateAt + 8),
        .changed = valueAt<std::int64_t>(entry, kStateAt + 16),
        .born = valueAt<std::int64_t>(entry, kStateAt + 24),
    };
}

/// Takes the next entry off the packet's rest.
tl::expected<SeenEntry, std::string_view> takeEntry(std::string_view& rest) {
    const auto refused = [](std::string_view reason) { return tl::unexpected(reason); };
    constexpr std::size_t head = HelperRequest::entryHeadSize;
    if (rest.size() < head) return refused("the packet is no request");
    const auto type = valueAt<unsigned char>(rest, kTypeAt);
    const auto hasState = valueAt<unsigned char>(rest, kHasStateAt);
    if (!isType(type)) return refused("the packet names no type of entry");
    if (hasState > 1 || !isZero(rest.substr(kHasStateAt + 1, kLengthAt - kHasStateAt - 1)) ||
        (hasState == 0 && !isZero(rest.substr(kStateAt, kTypeAt - kStateAt))))
        return refused("the packet is no request");
    const auto length = valueAt<std::uint32_t>(rest, kLengthAt);
    if (length > rest.size() - head) return refused("the packet is shorter than its path");
    const std::string_view path = rest.substr(head, length);
    if (const std::string_view fault = faultOfPath(path); !fault.empty()) return refused(fault);
    SeenEntry entry{.path = std::string(path),
                    .device = valueAt<std::uint64_t>(rest, 0),
                    .inode = valueAt<std::uint64_t>(rest, 8),
                    .type = static_cast<FileType>(type),
                    .state = stateOf(rest)};
    rest.remove_prefix(head + length);
    return entry;
}

}  // namespace

std::uint32_t sequenceOf(std::string_view packet) {
    return packet.size() >= HelperRequest::headSize ? valueAt<std::uint32_t>(packet, 4) : 0;
}

tl::expected<HelperRequest, std::string_view> readRequest(std::string_view packet) {
    const auto refused = [](std::string_view reason) { return tl::unexpected(reason); };
    if (packet.size() > HelperRequest::mostBytes) return refused("the packet is too large");
    if (packet.size() < HelperRequest::headSize ||
        valueAt<std::uint32_t>(packet, 0) != HelperRequest::mark)
        return refused("the packet is no request");
    const auto count = valueAt<unsigned char>(packet, 8);
    if (count < 1 || count > 2 || !isZero(packet.substr(9, 3)))
        return refused("the packet is no request");
    std::string_view rest = packet.substr(HelperRequest::headSize);
    auto entry = takeEntry(rest);
    if (!entry) return refused(entry.error());
    HelperRequest request{
        .sequence = sequenceOf(packet), .entry = std::move(*entry), .stays = std::nullopt};
    if (count == 2) {
        auto stays = takeEntry(rest);
        if (!stays) return refused(stays.error());
        if (!stays->state) return refused("the packet does not tell what stays");
        request.stays = std::move(*stays);
    }
    if (!rest.empty()) return refused("the packet is longer than its path");
    return request;
}

}  // namespace orrinvale::helper
