// registerDuplicatePage: the duplicate finder as a page of the toolbar window.
#pragma once

#include "ui/duplicates/SameFileDeleteViewController.h"

namespace orrinvale {

class AppPrefsWindowController;

/// An instance of its own, made when its item is first chosen. Nobody swaps its views: the window
/// shows the first one alone. All parts outlive the controller. Main thread only.
void registerDuplicatePage(AppPrefsWindowController& controller, SameFileDeleteParts parts);

}  // namespace orrinvale
