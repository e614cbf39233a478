// HelperPacket: what the window program and the administrator's helper say to each other, one message a packet of a
// SOCK_SEQPACKET socket. Both ends run on one machine, so that numbers stand in its byte order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace orrinvale {

/// "Remove this entry." Bytes: mark 4, sequence 4, device 8, inode 8, type 1, zero 3, and the path up to the packet's end.
struct HelperRequest {
    std::uint32_t sequence = 0;  ///< comes back in the reply
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    FileType type = FileType::Unknown;
    std::string path;  ///< absolute, exact bytes

    static constexpr std::uint32_t mark = 0x5152524F;      // "ORRQ"
    static constexpr std::size_t headSize = 28;            ///< where the path begins
    static constexpr std::size_t mostBytes = 64UL * 1024;  ///< of a whole packet

    [[nodiscard]] std::string packed() const;
};

/// What the helper says. Bytes: mark 4, sequence 4, outcome 4, and a text up to the packet's end.
struct HelperReply {
    enum class Outcome : std::uint32_t {
        Ready,       ///< the helper stands; the first packet, sequence 0
        Removed,     ///< the entry is gone and the tool printed nothing
        Printed,     ///< the text is what the tool printed
        StillThere,  ///< the tool printed nothing and the entry is there; the text is the reason
        Refused,     ///< nothing was touched; the text is the reason
        Busy,        ///< a request is in flight; nothing was touched
        Failed,      ///< the tool could not be run; the text is the reason
        Idle         ///< ten minutes without a request; the last packet, sequence 0
    };
    std::uint32_t sequence = 0;
    Outcome outcome = Outcome::Failed;
    std::string text;

    static constexpr std::uint32_t mark = 0x4152524F;  // "ORRA"
    static constexpr std::size_t headSize = 12;
    static constexpr std::size_t mostText = 512;    ///< packed() cuts the text
    static constexpr std::size_t mostOutput = 128;  ///< of the tool's output

    [[nodiscard]] std::string packed() const;
    [[nodiscard]] static std::optional<HelperReply> read(std::string_view packet);
};

}  // namespace orrinvale
