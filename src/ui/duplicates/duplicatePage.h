// duplicatePage: the duplicate finder as a page of the toolbar window.
#pragma once

#include "ui/page/Page.h"

namespace orrinvale {

struct PageServices;

/// An instance of its own. Nobody swaps its views: the window shows the first one alone.
[[nodiscard]] PageDescriptor duplicatePage(const PageServices& services);

}  // namespace orrinvale
