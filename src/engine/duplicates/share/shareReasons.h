// The words for why a copy keeps its own bytes, which the window translates
// (ui/kit/dialogs/failureWords.cpp), beside those of engine/removal/stayReasons.h.
#pragma once

#include <string_view>

namespace orrinvale::share {

inline constexpr std::string_view noExtents =
    "its file system can not let files have their space in common";
inline constexpr std::string_view notTheseTwo =
    "its file system does not let these two have their space in common";
inline constexpr std::string_view otherFileSystem = "the copy that stays is on another file system";
inline constexpr std::string_view noFile = "only files can have their space in common";
inline constexpr std::string_view keptIsProtected =
    "the copy that stays is protected, and a hard link would let it change";
inline constexpr std::string_view keptHasNames =
    "the copy that stays has further names, which may be protected";
inline constexpr std::string_view otherBelongings =
    "owner, group, rights or extended attributes are not those of the copy that stays";
inline constexpr std::string_view fixed = "it is marked as not to be changed";
inline constexpr std::string_view common = "anybody may put files into the folder that it is in";
inline constexpr std::string_view noAside = "nothing can be set aside in the folder that it is in";
inline constexpr std::string_view mostNames =
    "the copy that stays has as many names as its file system allows";

}  // namespace orrinvale::share
