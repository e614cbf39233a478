#include "ui/cleaning/cleanPage.h"

#include "ui/cleaning/NewMainViewController.h"

namespace orrinvale {

PageDescriptor cleanPage(const CleanPageParts& parts) {
    return {.identifier = QStringLiteral("Scan"),
            .label = MainViewController::tr("Clean"),
            .picture = QStringLiteral("clean"),
            .make = [parts] { return std::make_unique<NewMainViewController>(parts); }};
}

}  // namespace orrinvale
