// The binary form: "bplist00", objects, a table of their offsets, and a trailer of 32 bytes that
// tells the width of an offset (byte 6) and of a reference (7), the number of objects (8 to 15) and
// where the table is (24 to 31); numbers are big-endian. An object begins with a byte of kind
// (upper half) and count (lower half).
#include "engine/settings/PropertyListGuard.h"

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace orrinvale {
namespace {

constexpr std::size_t kContainerLimit = 4096;
constexpr std::uint64_t kReferenceLimit = 65'536;
constexpr std::uint64_t kUnfoldedLimit = std::uint64_t{16} << 20U;
constexpr std::size_t kTrailer = 32;

std::optional<std::uint64_t> numberAt(std::string_view bytes, std::uint64_t at, std::size_t width) {
    if (width == 0 || width > 8 || at > bytes.size() || bytes.size() - at < width)
        return std::nullopt;
    std::uint64_t number = 0;
    for (const char c : bytes.substr(at, width))
        number = number << 8U | static_cast<unsigned char>(c);
    return number;
}

// What is malformed ends the walk; the parser finds that for itself.
class BinaryWalk final {
public:
    explicit BinaryWalk(std::string_view bytes) : m_bytes(bytes) {}

    bool isHarmless() {
        if (m_bytes.size() < kTrailer) return true;
        const std::string_view trailer = m_bytes.substr(m_bytes.size() - kTrailer);
        m_offsetWidth = static_cast<unsigned char>(trailer[6]);
        m_referenceWidth = static_cast<unsigned char>(trailer[7]);
        const std::uint64_t objects = *numberAt(trailer, 8, 8);
        m_table = *numberAt(trailer, 24, 8);
        if (objects > kReferenceLimit) return false;
        m_isContainer.assign(objects, false);
        m_isNamed.assign(objects, false);
        for (std::size_t object = 0; object < objects; ++object)
            if (const auto kind = kindOf(object)) m_isContainer[object] = isContainer(*kind);
        for (std::size_t object = 0; object < objects; ++object) {
            if (m_isContainer[object] && !takeReferences(object)) return false;
            if (hasNull(object)) return false;
        }
        return m_containers <= kContainerLimit;
    }

private:
    static bool isContainer(std::uint64_t kind) {
        return kind >> 4U == 0xA || kind >> 4U == 0xC || kind >> 4U == 0xD;
    }

    std::optional<std::uint64_t> offsetOf(std::size_t object) const {
        return numberAt(m_bytes, m_table + object * m_offsetWidth, m_offsetWidth);
    }

    std::optional<std::uint64_t> kindOf(std::size_t object) const {
        const auto offset = offsetOf(object);
        return offset ? numberAt(m_bytes, *offset, 1) : std::nullopt;
    }

    struct Extent {
        std::uint64_t count;  // of references, of bytes, or of 16-bit units
        std::uint64_t start;  // of what follows the count
    };

    // Nothing where it can not be read.
    std::optional<Extent> extentOf(std::size_t object) const {
        const auto offset = offsetOf(object);
        const auto kind = kindOf(object);
        if (!kind) return std::nullopt;
        if ((*kind & 0xFU) != 0xF) return Extent{*kind & 0xFU, *offset + 1};
        // The count is an object of its own: 0x1n and 2^n bytes.
        const auto size = numberAt(m_bytes, *offset + 1, 1);
        if (!size || *size >> 4U != 1 || (*size & 0xFU) > 3) return std::nullopt;
        const std::size_t width = std::size_t{1} << (*size & 0xFU);
        const auto count = numberAt(m_bytes, *offset + 2, width);
        return count ? std::optional(Extent{*count, *offset + 2 + width}) : std::nullopt;
    }

    bool takeReferences(std::size_t object) {
        ++m_containers;
        const auto extent = extentOf(object);
        if (!extent) return true;
        if (extent->count > kReferenceLimit) return false;
        const std::uint64_t count =
            *kindOf(object) >> 4U == 0xD ? 2 * extent->count : extent->count;
        for (std::uint64_t i = 0; i < count; ++i) {
            const auto target =
                numberAt(m_bytes, extent->start + i * m_referenceWidth, m_referenceWidth);
            if (!target || *target >= m_isNamed.size())
                return false;  // the parser may go on past it
            if (++m_references > kReferenceLimit) return false;
            if (m_isContainer[*target] && m_isNamed[*target]) return false;
            m_isNamed[*target] = true;
            if (!m_isContainer[*target] && !takeLeaf(*target)) return false;
        }
        return true;
    }

    bool hasNull(std::size_t object) const {
        const auto extent = extentOf(object);
        const std::uint64_t kind = kindOf(object).value_or(0) >> 4U;
        const std::size_t width = kind == 5 ? 1 : kind == 6 ? 2 : 0;
        if (!extent || width == 0 || extent->count > m_bytes.size()) return false;
        for (std::uint64_t i = 0; i < extent->count; ++i)
            if (numberAt(m_bytes, extent->start + i * width, width) == 0) return true;
        return false;
    }

    // A text or data is copied each time it is named.
    bool takeLeaf(std::size_t object) {
        const auto extent = extentOf(object);
        if (!extent || extent->count > m_bytes.size()) return true;
        m_unfolded += extent->count;
        return m_unfolded <= kUnfoldedLimit;
    }

    std::string_view m_bytes;
    std::size_t m_offsetWidth = 0;
    std::size_t m_referenceWidth = 0;
    std::uint64_t m_table = 0;
    std::size_t m_containers = 0;
    std::uint64_t m_references = 0;
    std::uint64_t m_unfolded = 0;
    std::vector<bool> m_isContainer;
    std::vector<bool> m_isNamed;
};

std::size_t countOf(std::string_view bytes, std::string_view mark) {
    std::size_t count = 0;
    for (std::size_t at = bytes.find(mark); at != std::string_view::npos;
         at = bytes.find(mark, at + 1))
        ++count;
    return count;
}

// A null byte, as it stands or by its number, or a number that no character has.
bool hasNull(std::string_view text) {
    if (text.find('\0') != std::string_view::npos) return true;
    for (std::size_t at = text.find("&#"); at != std::string_view::npos;
         at = text.find("&#", at + 1)) {
        std::string_view digits = text.substr(at + 2, 64);
        const bool isHexadecimal = digits.starts_with('x') || digits.starts_with('X');
        if (isHexadecimal) digits.remove_prefix(1);
        std::uint32_t number = 0;
        const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), number,
                                            isHexadecimal ? 16 : 10);
        if (result.ec != std::errc{} || number == 0 || number > 0x10FFFF) return true;
    }
    return false;
}

}  // namespace

bool isHarmlessPropertyList(std::string_view bytes) {
    if (bytes.starts_with("bplist")) return BinaryWalk(bytes).isHarmless();
    return !hasNull(bytes) && countOf(bytes, "<array") + countOf(bytes, "<dict") <= kContainerLimit;
}

}  // namespace orrinvale
