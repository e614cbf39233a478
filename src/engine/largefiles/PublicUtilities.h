// PublicUtilities: sizes as the large file page writes them, in steps of a thousand.
#pragma once

#include <cstdint>
#include <string>

namespace orrinvale {

class PublicUtilities final {
public:
    PublicUtilities() = delete;

    /// "999 byte", "1.00 KB", "2.35 TB": decimal steps, two places from a thousand bytes on, a
    /// point in every locale. Any thread.
    [[nodiscard]] static std::string byteToSizeWithByte(std::uint64_t bytes);
};

}  // namespace orrinvale
