// KeepRule: which copy of a group stays, said once for all groups. KeepTicks.h ticks by it.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/files/EntryIdentity.h"

namespace orrinvale {

/// One way to put the copies of a group into order; what stands first stays.
struct KeepRule {
    enum class By : std::uint8_t { Newest, Oldest, ShortestPath, ShortestName, BestPlace };
    By by = By::Newest;
    /// Of BestPlace, paths without links, without a slash at the end, the best first; what lies
    /// deeper in one counts too. One folder alone is "in this folder".
    std::vector<std::string> folders = {};
    friend bool operator==(const KeepRule&, const KeepRule&) = default;
};

/// The first decides; each further one orders what those before it leave equal, and the path orders
/// the rest.
using KeepRules = std::vector<KeepRule>;

/// A rule as it is written: "newest", "oldest", "shortest-path", "shortest-name", "path:FOLDER".
/// Nothing for anything else. The folder is absolute and does not climb by "..".
[[nodiscard]] std::optional<KeepRule> keepRuleOf(std::string_view text);

/// The forms of it, for messages and help.
inline constexpr std::string_view keepRuleForms =
    "newest, oldest, shortest-path, shortest-name or path:FOLDER";

/// A copy of a group as a rule sees it. Views: what they look at lives for as long as the call.
struct KeepMember {
    std::string_view path;
    std::optional<std::int64_t> modified;     ///< nanoseconds since 1970 UTC; bundles have none
    const EntryIdentity* identity = nullptr;  ///< null where the search saw none
    std::uint32_t links = 1;                  ///< hard links
    std::string_view place = {};  ///< without links, where that is not the path; of a symbolic link
                                  ///< what it leads to
    bool isProtected = false;

    /// It holds no bytes of its own.
    [[nodiscard]] bool isSymbolicLink() const {
        return identity != nullptr && identity->type == FileType::SymbolicLink;
    }
};

/// In the folder or deeper in it, by its path or by its path without links.
[[nodiscard]] bool liesIn(const KeepMember& member, std::string_view folder);

/// For each member 1 where it stays, by the rules, which may be none; `stays` gets the size of
/// `members`. The one function for window, terminal and plan.
///
/// Protected members stay, and where one of them is a file or bundle it is the copy; else the first
/// by the rules is. A symbolic link is never the copy: a group of such links stays whole. What is
/// another name of something that stays, by hard link or by symbolic link, stays too, since nothing
/// is gained by it. A copy without a date is neither newer nor older than any other and stands
/// behind those with one.
void decideKept(const KeepRules& rules, std::span<const KeepMember> members,
                std::vector<std::uint8_t>& stays);

/// Adds ticks: of everything that lies in the folder, or deeper in it, but for what is protected,
/// for other names of what stays, and for the last copy of the group. Where all that is clear lies
/// in the folder the first by path stays clear. `ticked` has the size of `members`, 1 for a tick.
void tickWithin(std::string_view folder, std::span<const KeepMember> members,
                std::vector<std::uint8_t>& ticked);

/// Takes the ticks of everything that lies in the folder or deeper in it.
void untickWithin(std::string_view folder, std::span<const KeepMember> members,
                  std::vector<std::uint8_t>& ticked);

}  // namespace orrinvale
