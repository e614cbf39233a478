// cleanPage: the cleaning page as the toolbar window shows it.
#pragma once

#include "ui/page/Page.h"

namespace orrinvale {

struct CleanPageParts;

[[nodiscard]] PageDescriptor cleanPage(const CleanPageParts& parts);

}  // namespace orrinvale
