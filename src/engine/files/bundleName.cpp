// The one rule for bundles, on names and on whole paths.
#include "engine/files/bundleName.h"

#include "platform/paths.h"

namespace orrinvale {

bool isBundleName(std::string_view name) { return equalIgnoringCase(pathExtension(name), "app"); }

std::string outermostBundle(std::string_view path) {
    for (std::string_view rest = path; !rest.empty();)
        if (isBundleName(nextComponent(rest)))
            return std::string(path.substr(0, path.size() - rest.size()));
    return {};
}

}  // namespace orrinvale
