// releaseKeys: whom the program believes about newer versions.
#pragma once

#include <array>
#include <string_view>

namespace orrinvale {

/// Public keys (Ed25519, 64 hexadecimal digits each) of which one has to have signed the
/// description of the newest version. Two, so that a new one is known before the old one goes. A
/// vendor who releases builds writes his own in here; with none the program looks for nothing.
inline constexpr std::array<std::string_view, 2> releaseKeys{"", ""};

}  // namespace orrinvale
