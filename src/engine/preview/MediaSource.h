// MediaSource: the bytes that the parsers of films and music read, a few at a time. MediaFacts.h is
// what they find.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace orrinvale {

/// Reads at most mostReads pieces: a file that sends its parser around in circles ends there, as if
/// it ended. One thread.
class MediaSource final {
public:
    /// Reads at an offset until the buffer is full or the bytes end; how many were read.
    using Read = std::function<std::size_t(std::uint64_t offset, std::span<char> buffer)>;
    static constexpr int mostReads = 4096;

    MediaSource(std::uint64_t size, Read read) : m_size(size), m_read(std::move(read)) {}

    [[nodiscard]] std::uint64_t size() const { return m_size; }

    /// All of it, or nothing.
    [[nodiscard]] bool read(std::uint64_t offset, std::span<char> buffer) {
        if (offset > m_size || buffer.size() > m_size - offset || m_reads >= mostReads)
            return false;
        ++m_reads;
        return m_read(offset, buffer) == buffer.size();
    }

    template <std::size_t size>
    [[nodiscard]] std::optional<std::array<char, size>> bytes(std::uint64_t offset) {
        std::array<char, size> buffer{};
        if (!read(offset, buffer)) return std::nullopt;
        return buffer;
    }

private:
    std::uint64_t m_size;
    Read m_read;
    int m_reads = 0;
};

/// The unsigned number of 1 to 8 bytes, the highest first.
[[nodiscard]] inline std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (const char each : bytes) number = (number << 8U) | static_cast<unsigned char>(each);
    return number;
}

/// The same, the lowest first.
[[nodiscard]] inline std::uint64_t littleEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (std::size_t i = bytes.size(); i > 0; --i)
        number = (number << 8U) | static_cast<unsigned char>(bytes[i - 1]);
    return number;
}

/// `size` bytes of an array from `at` on; both lie within it.
template <std::size_t count>
[[nodiscard]] std::string_view part(const std::array<char, count>& bytes, std::size_t at,
                                    std::size_t size) {
    return std::string_view(bytes.data(), bytes.size()).substr(at, size);
}

}  // namespace orrinvale
