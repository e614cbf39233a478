// The words for why a copy stays, which the window translates (ui/kit/dialogs/failureWords.cpp).
// What concerns one entry alone goes to the log.
#pragma once

#include <string_view>

namespace orrinvale::stay {

inline constexpr std::string_view changed = "changed since the scan";
inline constexpr std::string_view noCopy = "no other verified copy is left";
inline constexpr std::string_view otherContents =
    "its contents are not those of the copy that stays";
inline constexpr std::string_view sameEntry =
    "the copy that stays is the same entry by another path";
inline constexpr std::string_view isProtected = "in a protected folder";
inline constexpr std::string_view inUse = "a program has it open for writing";
inline constexpr std::string_view copyInUse = "a program has the copy that stays open for writing";
inline constexpr std::string_view nameTaken =
    "kept aside under another name, since its own is taken by now";
inline constexpr std::string_view copyHasMount = "something is mounted in the copy that stays";
inline constexpr std::string_view notNoted = "it could not be noted for undo";
inline constexpr std::string_view otherInPlace = "another entry is in its place";

}  // namespace orrinvale::stay
