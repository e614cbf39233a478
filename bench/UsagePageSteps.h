// UsagePageSteps: the disk usage page over very many entries: the scan, a column of hundreds of
// thousands, scrolling, the map, ticking, the removal.
#pragma once

#include <string>

namespace orrinvale {

struct PageServices;
class WindowSteps;

/// Leads the page through its steps on that folder, without a limit; the last removes the largest
/// of its folders.
void runUsagePageSteps(WindowSteps& steps, const PageServices& services, const std::string& folder);

}  // namespace orrinvale
