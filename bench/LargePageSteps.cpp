// LargePageSteps: see LargePageSteps.h.
#include "LargePageSteps.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QHeaderView>
#include <algorithm>

#include "WindowSteps.h"
#include "platform/descriptor.h"
#include "ui/kit/controls/SegmentedControl.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/largefiles/FileNodeModel.h"
#include "ui/largefiles/LargestFilesModel.h"
#include "ui/largefiles/LargestFilesView.h"
#include "ui/largefiles/NewOutlineView.h"
#include "ui/shell/DuplicateMainWindowController.h"

namespace orrinvale {
namespace {

bool makeFolder(const std::string& path, std::size_t entries) {
    if (::mkdir(path.c_str(), 0755) != 0) return false;
    const Descriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (std::size_t i = 0; i < entries; ++i) {
        const Descriptor file(::openat(folder.get(), fmt::format("{}.dat", i).c_str(),
                                       O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
        // Sparse; in no order, so that the list has to find the biggest.
        const auto size = static_cast<off_t>(i * 2'654'435'761U % 1'000'003U);
        if (!file.isOpen() || ::ftruncate(file.get(), size) != 0) return false;
    }
    return true;
}

// The list of files beside the tree.
void runFileListSteps(WindowSteps& steps, ListFileViewController& page) {
    QWidget& window = *page.listView();
    auto& segments = *window.findChild<SegmentedControl*>();
    auto& list = *window.findChild<LargestFilesOutline*>();
    const QAbstractItemModel& model = *list.model();
    const auto isListed = [&] { return model.rowCount() > 0; };
    const auto header = [&] { list.headerBox()->click(); };
    steps.step(
        "large: list of files", [&] { segments.segment(1)->click(); }, isListed);
    steps.scroll("large: scroll the list", list);
    steps.step("large: scroll the list to its end", [&] { list.scrollToBottom(); });
    steps.step("large: list by name",
               [&] { Q_EMIT list.header()->sectionClicked(LargestFilesModel::Name); });
    steps.step("large: tick a file", [&] {
        WindowSteps::click(*list.viewport(),
                           list.visualRect(model.index(0, LargestFilesModel::CheckBox)).center());
    });
    steps.step("large: tick the whole list", header);
    steps.step("large: clear the whole list", header);
    segments.segment(0)->click();
}

}  // namespace

bool makeEntries(const std::string& root, std::size_t entries) {
    constexpr std::size_t inFolder = 1000;
    if (::mkdir(root.c_str(), 0755) != 0) return false;
    std::size_t left = entries / 2;
    for (std::size_t number = 0; left > 0; ++number) {
        const std::size_t here = std::min(left, inFolder);
        if (!makeFolder(fmt::format("{}/folder {}", root, number), here)) return false;
        left -= here;
    }
    return makeFolder(root + "/flat", entries - entries / 2);
}

void runLargePageSteps(WindowSteps& steps, DuplicateMainWindowController& window,
                       const std::string& folder) {
    steps.step("large: first look at the tab", [&] { window.selectFileListButtonAction(); });
    ListFileViewController& page = *window.listFileVC();
    auto& outline = *page.listView()->findChild<NewOutlineView*>();
    const QAbstractItemModel& model = *outline.model();
    const auto scan = [&](const char* name) {
        steps.step(
            name, [&] { page.viewDragAction(folder); }, [&] { return !page.isScan(); });
    };
    scan("large: scan");
    // All of it opened that a person would open during the scan, which it is for the next one.
    steps.step("large: open half of it", [&] { outline.expand(model.index(0, 0)); });
    steps.step(
        "large: scan with an open level", [&] { page.viewDragAction(folder); },
        [&] {
            const QModelIndex first = model.index(0, 0);
            if (first.isValid() && !outline.isExpanded(first)) outline.expand(first);
            return !page.isScan();
        });
    steps.scroll("large: scroll", outline);
    steps.step("large: scroll to the end", [&] { outline.scrollToBottom(); });
    steps.scroll("large: scroll further", outline);
    const auto header = [&] { outline.headerBox()->click(); };
    steps.step("large: tick all", header);
    steps.step("large: clear all", header);
    steps.step("large: tick a row", [&] {
        const QModelIndex box = model.index(0, FileNodeModel::CheckBox, model.index(0, 0));
        outline.scrollTo(box);
        WindowSteps::click(*outline.viewport(), outline.visualRect(box).center());
    });
    steps.step("large: close half of it", [&] { outline.collapse(model.index(0, 0)); });
    runFileListSteps(steps, page);
    steps.step("large: back", [&] { page.backButtonAction(); });
}

}  // namespace orrinvale
