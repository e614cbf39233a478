// GainOrder: groups by what their removal gives, as an order beside that of the result.
#pragma once

#include <cstdint>
#include <functional>

#include "engine/duplicates/DuplicateFilesOpt.h"

namespace orrinvale {

/// Bytes that go when all but the first copy of the group go. Names of one file count once, and not
/// at all where one of them stays, here or elsewhere.
[[nodiscard]] std::uint64_t gainOfGroup(const DuplicateGroup& group);

/// Calls the visitor for each group that DuplicateFilesOpt::visitGroups() tells of, the biggest
/// gain first; equal ones in the order of the result.
void visitByGain(const DuplicateFilesOpt& search,
                 const std::function<void(const DuplicateGroup&)>& visit);

/// The same for what a tree has of a group now; a bundle counts as one file.
[[nodiscard]] std::uint64_t gainOfRows(const TreeNode& group);

/// How the groups of a view stand; whole folders above files.
enum class GroupOrder : std::uint8_t { Found, Gain };
void orderGroups(TreeNode& tree, GroupOrder order);

}  // namespace orrinvale
