// FolderFates: which of equal folders stay by a person's rules, and what that means for whatever
// lies in them.
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "engine/duplicates/folders/FolderFindings.h"
#include "engine/duplicates/keep/KeepRule.h"

namespace orrinvale {

enum class FolderFate : std::uint8_t {
    Open,   ///< nothing is decided for it
    Stays,  ///< it is a folder that stays, or lies in one
    Goes    ///< likewise
};

/// The groups are decided from the largest to the smallest, so that what lies in a folder that goes
/// is no copy that stays, and nothing is taken out of a folder that does. One thread.
class FolderFates final {
public:
    /// What is found lives as long as the object. Nothing is decided without findings.
    FolderFates(const FolderFindings& findings, const KeepRules& rules);

    /// Of the folder or file at the path.
    [[nodiscard]] FolderFate of(std::string_view path) const;

    /// decideKept() among those of the members that are not decided yet: what stays with its folder
    /// is the copy, what goes with its folder never is.
    void decide(std::span<const KeepMember> members, std::vector<std::uint8_t>& stays) const;

    /// Bytes that go with all folders that go, each once.
    [[nodiscard]] std::uint64_t gain() const { return m_gain; }

private:
    [[nodiscard]] FolderFate of(const KeepMember& member) const;
    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    void decideGroup(const FolderGroup& group);

    const KeepRules& m_rules;
    std::unordered_map<std::string, FolderFate, Hash, std::equal_to<>>
        m_fates;  // by path, with and without links
    std::uint64_t m_gain = 0;
};

/// The folders of a group as rules see them.
[[nodiscard]] std::vector<KeepMember> keepMembersOf(const FolderGroup& group);

}  // namespace orrinvale
