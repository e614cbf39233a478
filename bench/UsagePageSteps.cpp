// UsagePageSteps: see UsagePageSteps.h.
#include "UsagePageSteps.h"

#include <QAbstractButton>
#include <QVBoxLayout>

#include "WindowSteps.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "ui/diskusage/DiskUsageAppController.h"
#include "ui/diskusage/FileSystemBrowserCell.h"
#include "ui/diskusage/TreemapView.h"
#include "ui/kit/columns/ColumnBrowser.h"
#include "ui/kit/columns/ColumnView.h"

namespace orrinvale {

void runUsagePageSteps(WindowSteps& steps, const PageServices& services,
                       const std::string& folder) {
    services.defaults->setInteger(0, ZvDiskUsageLimit);
    QWidget window;
    window.resize(1000, 620);
    std::unique_ptr<DiskUsageAppController> page;
    steps.step("usage: first look at the page", [&] {
        page = std::make_unique<DiskUsageAppController>(
            services, DiskUsageParts{.watch = nullptr, .home = folder, .userName = {}, .open = {}});
        (new QVBoxLayout(&window))->addWidget(page->view());
        page->setMainWindow(&window);
        window.show();
    });
    const auto find = [&]<class Control>(Control*& found, const char* name) {
        found = page->view()->findChild<Control*>(QLatin1String(name));
    };
    ColumnBrowser* browser = nullptr;
    TreemapView* map = nullptr;
    QAbstractButton *mapButton = nullptr, *columnsButton = nullptr, *remove = nullptr;
    find(browser, "browser");
    find(map, "map");
    find(mapButton, "mapBtn");
    find(columnsButton, "columnsBtn");
    find(remove, "removeBtn");
    const auto isIdle = [&] { return !page->isBusy(); };
    steps.step(
        "usage: scan", [&] { page->takeFolder(folder); }, isIdle);
    steps.step("usage: open the largest column", [&] { browser->choose(0, 0); });
    steps.scroll("usage: scroll it", *browser->view(1));
    const auto tick = [&](int column, int row) {
        ColumnView& view = *browser->view(column);
        const QModelIndex index = view.model()->index(row, 0);
        view.scrollTo(index);
        WindowSteps::click(*view.viewport(), FileSystemBrowserCell::checkBoxForFrame(
                                                 view.visualRect(index), Qt::LeftToRight)
                                                 .center());
    };
    steps.step("usage: tick a row of it", [&] { tick(1, 1); });
    steps.step(
        "usage: map", [&] { mapButton->click(); }, [&] { return map->isDrawn(); });
    steps.step(
        "usage: map of all", [&] { browser->closeBehind(0); }, [&] { return map->isDrawn(); });
    steps.step("usage: back to the columns", [&] { columnsButton->click(); });
    steps.step("usage: tick the largest folder", [&] { tick(0, 0); });
    bool begun = false;
    steps.step(
        "usage: count, ask and remove it", [&] { remove->click(); },
        [&] {
            begun = begun || page->isRemoving();
            return begun && isIdle();
        });
    page.reset();
}

}  // namespace orrinvale
