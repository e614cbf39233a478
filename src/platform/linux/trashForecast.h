// What a removal does of the kinds that are a file or a folder and the entries that start it.
#pragma once

#include <vector>

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"

namespace orrinvale {

/// Refuses what a package has brought, in whole or in part, or alone starts, since only its own
/// service takes that away, and what a link on the way would lead to. Entries and links that this
/// person may not remove, or that are a package's, stay and are told.
[[nodiscard]] RemovalForecast forecastOfTrash(const std::vector<ApplicationRecord>& records,
                                              const ApplicationPlaces& places);

}  // namespace orrinvale
