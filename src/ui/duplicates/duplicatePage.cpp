// duplicatePage: what the toolbar shows of the duplicate finder, and how it is made.
#include "ui/duplicates/duplicatePage.h"

#include "ui/duplicates/SameFileDeleteViewController.h"

namespace orrinvale {

PageDescriptor duplicatePage(const PageServices& services) {
    return {
        .identifier = QStringLiteral("duplicates_file"),
        .label = SameFileDeleteViewController::tr("Duplicates"),
        .picture = QStringLiteral("duplicates_file"),
        .make = [services] { return std::make_unique<SameFileDeleteViewController>(services); }};
}

}  // namespace orrinvale
