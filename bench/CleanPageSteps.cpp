// CleanPageSteps: see CleanPageSteps.h.
#include "CleanPageSteps.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <QAbstractButton>
#include <QHeaderView>
#include <QLineEdit>
#include <QProcess>
#include <QTreeView>
#include <QVBoxLayout>
#include <chrono>
#include <filesystem>

#include "WindowSteps.h"
#include "engine/cleaning/FolderUtilities.h"
#include "engine/removal/PlainDoor.h"
#include "platform/descriptor.h"
#include "platform/fake/MadeUpFolders.h"
#include "platform/linux/LinuxFolders.h"
#include "ui/cleaning/NewMainViewController.h"
#include "ui/cleaning/ScanListView.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/kit/lists/TickBox.h"

namespace orrinvale {
namespace {

constexpr std::size_t filesARow = 15, filesAFolder = 100;

bool makeFiles(const std::string& folder, std::size_t from, std::size_t to) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const Descriptor held(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (std::size_t i = from; i < to; ++i) {
        const Descriptor file(::openat(held.get(), fmt::format("entry {}.dat", i).c_str(),
                                       O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644));
        if (!file.isOpen() || ::ftruncate(file.get(), off_t(i * 7919 % 100'003)) != 0) return false;
    }
    return true;
}

std::int64_t anHourLater() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               (std::chrono::system_clock::now() + std::chrono::hours(1)).time_since_epoch())
        .count();
}

/// The page over a home, alone in a window.
struct CleanBench {
    CleanBench(WindowSteps& itsSteps, const PageServices& services, const std::string& home)
        : steps(itsSteps),
          real(FolderVariables{.home = home}),
          folders(real, home),
          utilities(*services.files, folders, [] { return std::vector<std::string>(); }) {
        CleanPageParts parts;
        parts.pages = services;
        parts.pages.stateFolder = home + "/state";
        parts.clean = {.files = services.files,
                       .folders = &folders,
                       .utilities = &utilities,
                       .settingsFolder = home + "/settings",
                       .clock = anHourLater};
        parts.makeDoor = [files = services.files](CleanCategory) {
            return std::make_unique<PlainDoor>(*files, ProtectedPlaces());
        };
        window.resize(1000, 620);
        page = std::make_unique<NewMainViewController>(parts);
        (new QVBoxLayout(&window))->addWidget(page->view());
        page->setMainWindow(&window);
        window.show();
    }

    template <class Control> Control& find(const char* name) {
        return *page->view()->findChild<Control*>(QLatin1String(name));
    }
    bool isIdle() const { return !page->isBusy(); }
    void box(QTreeView& list, const QModelIndex& row) {
        const QModelIndex cell = row.siblingAtColumn(0);
        list.scrollTo(cell);
        QStyleOptionViewItem option;
        option.rect = list.visualRect(cell);
        WindowSteps::click(*list.viewport(), RowDelegate::boxRect(option).center());
    }

    WindowSteps& steps;
    const LinuxFolders real;
    const MadeUpFolders folders;
    const FolderUtilities utilities;
    QWidget window;
    std::unique_ptr<NewMainViewController> page;
};

void compareScans(CleanBench& bench, const std::string& home, const std::string& terminal) {
    for (int pair = 0; pair < 3; ++pair) {
        bench.steps.step(
            "clean: scan",
            [&] {
                bench.find<QAbstractButton>(pair == 0 ? "startButton" : "rescanButton").click();
            },
            [&] { return bench.isIdle(); });
        if (terminal.empty()) continue;
        QProcess program;
        QProcessEnvironment environment;
        environment.insert(QStringLiteral("HOME"), QString::fromStdString(home));
        program.setProcessEnvironment(environment);
        program.setStandardOutputFile(QProcess::nullDevice());
        bench.steps.step(
            "clean: orrinvale-cli clean --json",
            [&] {
                program.start(QString::fromStdString(terminal),
                              {QStringLiteral("clean"), QStringLiteral("--json")});
            },
            [&] { return program.state() == QProcess::NotRunning; });
    }
}

void tickAll(CleanBench& bench) {
    auto& outline = bench.find<ScanListView>("outline");
    auto& list = bench.find<ScanListView>("list1");
    const auto header = [](ScanListView& view) { return [&view] { view.headerBox()->click(); }; };
    bench.steps.step("clean: tick all in the outline", header(outline));
    bench.steps.step("clean: clear all in the outline", header(outline));
    bench.steps.step("clean: tick a group",
                     [&] { bench.box(outline, outline.model()->index(0, 0)); });
    bench.steps.step("clean: clear a leaf", [&] {
        bench.box(outline, outline.model()->index(3, 0, outline.model()->index(0, 0)));
    });
    bench.steps.scroll("clean: scroll the outline", outline);
    bench.steps.step("clean: the long list", [&] { bench.page->shouldSelectRow(2); });
    bench.steps.step("clean: tick all in it", header(list));
    bench.steps.step("clean: clear all in it", header(list));
    bench.steps.step("clean: tick a row of it",
                     [&] { bench.box(list, list.model()->index(5, 0)); });
    for (const char* const direction : {"down", "up"})
        bench.steps.step(std::string("clean: order by size, ") + direction, [&] {
            QHeaderView& titles = *list.header();
            WindowSteps::click(*titles.viewport(),
                               {titles.sectionViewportPosition(2) + 20, titles.height() / 2});
        });
    bench.steps.scroll("clean: scroll the list", list);
}

void filter(CleanBench& bench) {
    auto& field = bench.find<QLineEdit>("filterField");
    for (const char* const words : {"1", "19", "199", ""})
        bench.steps.step(fmt::format("clean: filter \"{}\" in the list", words),
                         [&] { field.setText(QLatin1String(words)); });
    bench.steps.step("clean: back to the outline", [&] { bench.page->shouldSelectRow(0); });
    for (const char* const words : {"1", "19", ""})
        bench.steps.step(fmt::format("clean: filter \"{}\" in the outline", words),
                         [&] { field.setText(QLatin1String(words)); });
}

void removeTicked(CleanBench& bench, const char* howMany) {
    const std::size_t rows = bench.page->tableControllers()[1]->scanFiles->size();
    bool isBegun = false;
    bench.steps.step(
        fmt::format("clean: remove {} of {} rows", howMany, rows),
        [&] { bench.find<QAbstractButton>("oneListCleanButton").click(); },
        [&] {
            isBegun = isBegun || bench.page->isRemoving();
            return isBegun && !bench.page->isRemoving() && bench.isIdle();
        });
}

}  // namespace

bool makeCleanHome(const std::string& home, std::size_t rows) {
    if (!makeFiles(home + "/.cache", 0, rows)) return false;
    for (std::size_t made = rows; made < rows * filesARow; made += filesAFolder)
        if (!makeFiles(fmt::format("{}/Downloads/folder {}", home, made / filesAFolder), made,
                       std::min(made + filesAFolder, rows * filesARow)))
            return false;
    return true;
}

void runCleanPageSteps(WindowSteps& steps, const PageServices& services, const std::string& home,
                       const std::string& terminal) {
    std::unique_ptr<CleanBench> bench;
    steps.step("clean: first look at the page",
               [&] { bench = std::make_unique<CleanBench>(steps, services, home); });
    compareScans(*bench, home, terminal);
    tickAll(*bench);
    filter(*bench);
    bench->page->shouldSelectRow(2);
    removeTicked(*bench, "1");  // which tickAll() has left
    bench->find<ScanListView>("list1").headerBox()->click();
    removeTicked(*bench, "all");
    bench.reset();
}

}  // namespace orrinvale
