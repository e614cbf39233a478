// NoteSeal: the first line of a noted removal: its sums, and by what damage to the rest is seen
// without reading all of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

/// What lists tell of a removal.
struct RemovalSummary {
    std::size_t entries = 0;
    std::uint64_t bytes = 0;
};

/// Notes are up to a gibibyte, and a list of them has to be there at once: the checksum is of the
/// first and the last mebibyte of the rest, the length of all of it. What breaks off, runs on or
/// was never written shows in these at any size; a byte that changed in the middle of a note of
/// more than two mebibytes only when the plan is read.
struct NoteSeal {
    static constexpr std::size_t mostBytes = 256;  ///< of the line
    static constexpr std::size_t piece = std::size_t{1} << 20U;

    RemovalSummary sums = {};
    std::uint64_t rest = 0;   ///< bytes behind the line
    std::uint64_t check = 0;  ///< crc64 of the sums and of the two pieces of it

    [[nodiscard]] static NoteSeal of(const RemovalSummary& sums, std::string_view rest);
    /// With its end.
    [[nodiscard]] std::string line() const;
    /// Of the beginning of a note; nothing where that is no seal, as in older notes.
    [[nodiscard]] static std::optional<NoteSeal> parse(std::string_view beginning);
    [[nodiscard]] bool holds(std::string_view wholeRest) const;
};

/// What the seal of a file tells. Reads no more than it and the two pieces. WithoutSeal is only
/// what begins as older notes do.
struct SealedNote {
    enum class State : std::uint8_t { Whole, Damaged, WithoutSeal, Unreadable };
    State state = State::Unreadable;
    RemovalSummary sums = {};  ///< of a whole one
    int error = 0;             ///< errno, of one that can not be read
};
/// No link is followed, and only this user's own regular file is read. Any thread.
[[nodiscard]] SealedNote lookAtNote(const std::string& path);

}  // namespace orrinvale
