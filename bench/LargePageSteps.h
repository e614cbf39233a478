// LargePageSteps: the large file page over very many entries: the scan, a level of hundreds of
// thousands, scrolling, ticking.
#pragma once

#include <cstddef>
#include <string>

namespace orrinvale {

class DuplicateMainWindowController;
class WindowSteps;

/// Half of the entries in folders of a thousand, half in one folder. False with errno set when they
/// can not be made.
[[nodiscard]] bool makeEntries(const std::string& root, std::size_t entries);

/// Leads the page through its steps on that folder; nothing is removed.
void runLargePageSteps(WindowSteps& steps, DuplicateMainWindowController& window,
                       const std::string& folder);

}  // namespace orrinvale
