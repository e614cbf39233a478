// HelperPacket: what the window program and the administrator's helper say to each other, one
// message a packet of a SOCK_SEQPACKET socket. Both ends run on one machine, so that numbers stand
// in its byte order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "platform/authorization.h"

namespace orrinvale {

/// "Remove this entry." Bytes: mark 4, sequence 4, count of entries 1, zero 3; then the entry, and
/// the copy that stays where there is one. Of each: device 8, inode 8, size 8, modified 8, changed
/// 8, born 8 (these four zero where they are not told), type 1, whether they are told 1, zero 2,
/// length of the path 4, path.
struct HelperRequest {
    std::uint32_t sequence = 0;  ///< comes back in the reply
    SeenEntry entry;
    std::optional<SeenEntry> stays;

    static constexpr std::uint32_t mark = 0x5252524F;      // "ORRR"
    static constexpr std::size_t headSize = 12;            ///< where the entries begin
    static constexpr std::size_t entryHeadSize = 56;       ///< of each entry; then comes its path
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
        Failed,  ///< the tool could not be started, or was ended, and the entry is there; the text
                 ///< is the reason
        Idle     ///< ten minutes without a request; the last packet, sequence 0
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
