// diskUsagePage: the disk usage browser as a page of the toolbar window.
#pragma once

#include "ui/page/Page.h"

namespace orrinvale {

struct DiskUsageParts;
struct PageServices;

[[nodiscard]] PageDescriptor diskUsagePage(const PageServices& services,
                                           const DiskUsageParts& parts);

}  // namespace orrinvale
