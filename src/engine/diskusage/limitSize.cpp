// Read anew at each scan, so that a change in the preferences counts at once.
#include "engine/diskusage/limitSize.h"

#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UnitTags.h"
#include "engine/settings/UserDefaults.h"

namespace orrinvale {

std::uint64_t getLimitSize(const UserDefaults& defaults) {
    return sizeLimit(static_cast<std::uint64_t>(defaults.integerForKey(ZvDiskUsageLimit)),
                     defaults.integerForKey(ZvDiskUsageUnit));
}

}  // namespace orrinvale
