// BundleResources: the property lists and addresses that are built into the program from
// resources/.
#pragma once

#include <string>
#include <string_view>

#include "engine/settings/PropertyList.h"
#include "platform/error.h"

namespace orrinvale {

/// The bytes of resources/propertylists/NAME.plist; empty when there is none of that name.
[[nodiscard]] std::string_view builtInPropertyList(std::string_view name);

/// The dictionary of that resource, read afresh at every call; ErrorKind::NotFound when there is
/// none.
[[nodiscard]] Result<PropertyList> propertyListOfResource(std::string_view name);

/// The address of that key in resources/addresses.strings, such as "WEB_SITE"; empty for an unknown
/// key.
[[nodiscard]] std::string vendorAddress(std::string_view key);

}  // namespace orrinvale
