// diskUsagePage: what the toolbar shows of the disk usage browser, and how it is made.
#include "ui/diskusage/diskUsagePage.h"

#include "ui/diskusage/DiskUsageAppController.h"

namespace orrinvale {

PageDescriptor diskUsagePage(const PageServices& services, const DiskUsageParts& parts) {
    return {.identifier = QStringLiteral("disk_usage"),
            .label = DiskUsageAppController::tr("Disk Usage"),
            .picture = QStringLiteral("disk_usage"),
            .make = [services, parts] {
                return std::make_unique<DiskUsageAppController>(services, parts);
            }};
}

}  // namespace orrinvale
