// signatures: whether the holder of a key has signed some bytes.
#pragma once

#include <cstdint>
#include <string_view>

namespace orrinvale {

enum class SignatureCheck : std::uint8_t {
    Good,
    Bad,
    Unknown  ///< nothing on this machine can tell
};

/// Ed25519 (RFC 8032) over the exact bytes. A key that is not 32 bytes long, or a signature that is
/// not 64, is Bad. Any thread.
[[nodiscard]] SignatureCheck checkSignature(std::string_view bytes, std::string_view signature,
                                            std::string_view publicKey);

}  // namespace orrinvale
