// What a removal does of the kinds that are a file or a folder and the entries that start it.
#pragma once

#include <vector>

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"

namespace orrinvale {

/// Refuses what a package has brought, in whole or in part, since only its own service takes that
/// away, and what a link on the way would lead to.
[[nodiscard]] RemovalForecast forecastOfTrash(const std::vector<ApplicationRecord>& records,
                                              const ApplicationPlaces& places);

}  // namespace orrinvale
