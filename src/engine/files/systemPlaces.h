// The places that every system of this kind needs where they are, as
// resources/propertylists/SystemFile.plist lists them. Built in as plain text, so that the
// administrator's helper reads no property lists.
#pragma once

#include <span>
#include <string_view>

namespace orrinvale {

/// Absolute plain paths, each for itself alone and not for what lies below it. Any thread.
[[nodiscard]] std::span<const std::string_view> systemPlaces();

}  // namespace orrinvale
