// Never within a character; a short extension stays.
#include "engine/files/shortenedName.h"

#include <algorithm>

#include "platform/paths.h"

namespace orrinvale {

std::string shortenedName(std::string_view name, std::string_view behind, std::size_t most) {
    constexpr std::size_t longestExtension = 20;
    std::string_view extension = pathExtension(name);
    if (extension.size() > longestExtension)
        extension = {};  // no extension, but a name with a dot in it
    std::string_view stem = name;
    if (!extension.empty()) stem.remove_suffix(extension.size() + 1);
    std::string end(behind);
    if (!extension.empty()) (end += '.') += extension;
    std::size_t length = std::min(stem.size(), most - end.size());
    // Never within a character: its other bytes begin with the bits 10.
    const auto isWithin = [&] {
        return length < stem.size() && (static_cast<unsigned char>(stem[length]) & 0xC0U) == 0x80U;
    };
    while (length > 1 && isWithin()) --length;
    return std::string(stem.substr(0, length)) + end;
}

}  // namespace orrinvale
