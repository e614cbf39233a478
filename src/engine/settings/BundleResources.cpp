// The bytes come from the build as literals.
#include "engine/settings/BundleResources.h"

#include <cerrno>

#include "builtInResources.h"
#include "engine/text/Localized.h"

namespace orrinvale {

std::string_view builtInPropertyList(std::string_view name) {
    if (name == "StringMessage") return kStringMessage;
    if (name == "SystemFile") return kSystemFile;
    return {};
}

Result<PropertyList> propertyListOfResource(std::string_view name) {
    const std::string_view bytes = builtInPropertyList(name);
    if (bytes.empty()) return tl::unexpected(systemError("open", std::string(name), ENOENT));
    return PropertyList::parse(bytes);
}

std::string vendorAddress(std::string_view key) {
    static const auto* const table = new StringTable(parseStringTable(kAddresses));
    const auto found = table->texts.find(key);
    return found == table->texts.end() ? std::string() : found->second;
}

}  // namespace orrinvale
