// Request: reads and judges what the window program asks for. The form of a packet is in platform/linux/HelperPacket.h.
#pragma once

#include <string_view>
#include <tl/expected.hpp>

#include "platform/linux/HelperPacket.h"

namespace orrinvale::helper {

/// The request of a packet, or the reason to refuse it, for people. A request that comes back has an absolute path whose components
/// are names, none of them empty, "." or "..", and the type of a real entry.
[[nodiscard]] tl::expected<HelperRequest, std::string_view> readRequest(std::string_view packet);

/// The sequence of a packet, for the reply to one that is refused; 0 for one too short to have any.
[[nodiscard]] std::uint32_t sequenceOf(std::string_view packet);

}  // namespace orrinvale::helper
