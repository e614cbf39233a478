// GroupMembers: the copies of a group that a search has found, as rules see them, without a tree.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/keep/KeepRule.h"

namespace orrinvale {

/// Owns what the members look at. Made for one group after another; one thread.
class GroupMembers final {
public:
    /// The search outlives the object.
    explicit GroupMembers(const duplicateFind& search) : m_search(search) {}

    /// In the order of the result tree. Good until the next call.
    const std::vector<KeepMember>& of(const DuplicateGroup& group);

    /// Bytes of the member, of a bundle those of all its files.
    [[nodiscard]] std::uint64_t size(std::size_t member) const { return m_sizes[member]; }

private:
    void add(std::string path, const EntryIdentity& identity, std::uint64_t size);

    const duplicateFind& m_search;
    std::vector<std::string> m_paths;
    std::vector<EntryIdentity> m_identities;
    std::vector<std::uint64_t> m_sizes;
    std::vector<KeepMember> m_members;
};

}  // namespace orrinvale
