// The build makes the array out of the property list.
#include "engine/files/systemPlaces.h"

#include "systemPlaceArray.h"

namespace orrinvale {

std::span<const std::string_view> systemPlaces() { return kSystemPlaces; }

}  // namespace orrinvale
