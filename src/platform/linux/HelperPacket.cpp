// Requests are read where they are judged, in helper/Request.cpp.
#include "platform/linux/HelperPacket.h"

#include <cstring>

namespace orrinvale {
namespace {

template <class T> void append(std::string& out, T value) {
    char bytes[sizeof value];
    std::memcpy(bytes, &value, sizeof value);
    out.append(bytes, sizeof value);
}

std::uint32_t numberAt(std::string_view packet, std::size_t offset) {
    std::uint32_t value = 0;
    std::memcpy(&value, packet.data() + offset, sizeof value);
    return value;
}

void append(std::string& out, const SeenEntry& entry) {
    const EntryState state = entry.state.value_or(EntryState{});
    append(out, entry.device);
    append(out, entry.inode);
    append(out, state.size);
    append(out, state.modified);
    append(out, state.changed);
    append(out, state.born);
    append(out, entry.type);
    append(out, static_cast<std::uint8_t>(entry.state.has_value()));
    out.append(2, '\0');
    append(out, static_cast<std::uint32_t>(entry.path.size()));
    out += entry.path;
}

}  // namespace

std::string HelperRequest::packed() const {
    std::string out;
    out.reserve(headSize + 2 * entryHeadSize + entry.path.size() +
                (stays ? stays->path.size() : 0));
    append(out, mark);
    append(out, sequence);
    append(out, static_cast<std::uint8_t>(stays ? 2 : 1));
    out.append(3, '\0');
    append(out, entry);
    if (stays) append(out, *stays);
    return out;
}

std::string HelperReply::packed() const {
    std::string out;
    append(out, mark);
    append(out, sequence);
    append(out, outcome);
    return out += std::string_view(text).substr(0, mostText);
}

std::optional<HelperReply> HelperReply::read(std::string_view packet) {
    if (packet.size() < headSize || packet.size() > headSize + mostText ||
        numberAt(packet, 0) != mark)
        return std::nullopt;
    const std::uint32_t outcome = numberAt(packet, 8);
    if (outcome > static_cast<std::uint32_t>(Outcome::Idle)) return std::nullopt;
    return HelperReply{numberAt(packet, 4), static_cast<Outcome>(outcome),
                       std::string(packet.substr(headSize))};
}

}  // namespace orrinvale
