// The page of disk usage of AppDelegate, which stands in the toolbar window. See AppDelegate.h.
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/preferences/AppPrefsWindowController.h"
#include "ui/shell/AppDelegate.h"

namespace orrinvale {

void AppDelegate::onClickDiskUsage() {
    auto& pages = AppPrefsWindowController::sharedPrefsWindowController();
    if (m_isLeaving || !pages.hasPage(diskUsageIdentifier)) return;
    showPages();
    pages.displayViewForIdentifier(diskUsageIdentifier, true);
}

// A folder from outside, as if it had been dropped there.
void AppDelegate::lookInto(const std::string& path) {
    onClickDiskUsage();
    Page* const page =
        AppPrefsWindowController::sharedPrefsWindowController().page(diskUsageIdentifier);
    if (page == nullptr) return;
    if (!page->isBusy()) {
        page->takeFolder(path);
        return;
    }
    Alert alert;
    alert.title = tr("Something else is under way.");
    alert.text = tr("Stop it or wait for its end, and then choose %1 again.")
                     .arg(onOneLine(QString::fromStdString(path)));
    tell(alert);
}

}  // namespace orrinvale
