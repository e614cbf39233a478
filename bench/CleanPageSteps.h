// CleanPageSteps: the cleaning page over very many rows: the scan beside the terminal's, ticking,
// the filter, a clean of all of them.
#pragma once

#include <cstddef>
#include <string>

namespace orrinvale {

struct PageServices;
class WindowSteps;

/// Makes a home of so many rows in one list, and fifteen files a row in the folders of another;
/// false when that can not be.
[[nodiscard]] bool makeCleanHome(const std::string& home, std::size_t rows);

/// Leads the page through its steps in that home; the last removes all of the long list. `terminal`
/// is orrinvale-cli, which lists the same home in turn with the page; empty for none.
void runCleanPageSteps(WindowSteps& steps, const PageServices& services, const std::string& home,
                       const std::string& terminal);

}  // namespace orrinvale
