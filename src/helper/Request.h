// Request: reads and judges what the window program asks for. The form of a packet is in
// platform/linux/HelperPacket.h.
#pragma once

#include <string_view>
#include <tl/expected.hpp>

#include "platform/linux/HelperPacket.h"

namespace orrinvale::helper {

/// The request of a packet, or the reason to refuse it, for people. What comes back names an entry,
/// and the copy that stays where there is one: absolute paths whose components are names, none of
/// them empty, "." or "..", and types of real entries. Of a copy that stays the state is told as
/// well.
[[nodiscard]] tl::expected<HelperRequest, std::string_view> readRequest(std::string_view packet);

/// The sequence of a packet, for the reply to one that is refused; 0 for one too short to have any.
[[nodiscard]] std::uint32_t sequenceOf(std::string_view packet);

}  // namespace orrinvale::helper
