// The memory is made up, so that each run draws the same. What a worker may still look at is never
// freed.
#include "gallery/MemoryScenes.h"

#include <QApplication>
#include <QLabel>
#include <cstdint>

#include "gallery/PageWorkings.h"
#include "gallery/drawing.h"
#include "platform/fake/FakeVolumes.h"
#include "platform/linux/LinuxFiles.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/memory/CleanMemoryController.h"
#include "ui/memory/ProgramList.h"
#include "ui/preferences/AppPrefsWindowController.h"

namespace orrinvale {
namespace {

constexpr std::uint64_t mebibyte = 1ULL << 20;
constexpr std::uint64_t page = 4096;

class MadeUpMemory final : public Memory {
public:
    std::uint64_t free = 1843, available = 9318;  // mebibytes, as the others

    [[nodiscard]] SysResult<std::optional<std::uint64_t>> figure(
        std::string_view name) const override {
        return name == "hw.pagesize" ? page : 15'902 * mebibyte;
    }
    [[nodiscard]] SysResult<MemoryCounts> counts() const override {
        const auto pages = [](std::uint64_t mebibytes) { return mebibytes * mebibyte / page; };
        return MemoryCounts{.free = pages(free),
                            .active = pages(5870),
                            .inactive = pages(15'902 - 5870 - 1122 - free),
                            .wired = pages(1122)};
    }
    [[nodiscard]] SysResult<MemoryState> state() const override {
        return MemoryState{available * mebibyte, 4096 * mebibyte, 212 * mebibyte, 0.31};
    }
    [[nodiscard]] std::uint64_t room() const override { return available * mebibyte; }
    [[nodiscard]] bool endThisProcessFirst() const override { return false; }
};

std::vector<ProgramMemory> madeUpPrograms(std::size_t /*most*/) {
    return {{"firefox-esr", 2214 * mebibyte, false, 14}, {"gnome-shell", 611 * mebibyte, false, 1},
            {"thunderbird", 544 * mebibyte, false, 3},   {"code", 498 * mebibyte, false, 9},
            {"soffice.bin", 301 * mebibyte, false, 1},   {"Xorg", 214 * mebibyte, true, 1},
            {"postgres", 158 * mebibyte, true, 7},       {"evolution", 122 * mebibyte, false, 2},
            {"packagekitd", 96 * mebibyte, true, 1},     {"orrinvale", 52 * mebibyte, false, 1}};
}

struct MemoryMachine {
    FakeVolumes volumes;
    MadeUpMemory memory;
    PageWorkings workings;
    SystemWatch watch{volumes, memory, workings.mainQueue, std::chrono::hours(1)};
    LinuxFileSystem files;
};

// `run`: after one that gave 1.9 GB back.
bool drawPage(UserDefaults& defaults, const PictureFolder& pictures, const QString& name,
              std::uint64_t available, bool run) {
    MemoryMachine& machine = *new MemoryMachine;
    machine.memory.available = available;
    AppPrefsWindowController controller;
    controller.setOpenAddress([](const QString& /*address*/) {});
    controller.setOpenHelp([] {});
    controller.registerPage(
        memoryPage(machine.workings.parts(machine.files, defaults),
                   {&machine.memory, &machine.watch, {"/usr/bin/true", {}, {}}, madeUpPrograms}));
    controller.showWindow();
    controller.window()->activateWindow();
    auto* const shown = static_cast<CleanMemoryController*>(controller.pages().front().get());
    const auto isFilled = [&] {
        const auto* const state = shown->view()->findChild<QLabel*>(QStringLiteral("stateLine"));
        const auto* const programs = shown->view()->findChild<ProgramList*>();
        return !state->text().isEmpty() && !programs->programs().empty();
    };
    if (!waitFor("the memory", isFilled)) return false;
    if (run) {
        shown->CleanButtonAction();
        machine.memory.free += 1946;
        if (!waitFor("the end of the run", [&] { return !shown->isFreeing(); })) return false;
    }
    QApplication::processEvents();
    return pictures.save(name, controller.window()->grab());
}

}  // namespace

bool drawMemory(UserDefaults& defaults, const PictureFolder& pictures,
                const QSet<QString>& wanted) {
    const struct {
        QString name;
        std::uint64_t available;
        bool run;
    } scenes[] = {{QStringLiteral("memory"), 9318, false},
                  {QStringLiteral("memory-freed"), 9318, true},
                  {QStringLiteral("memory-low"), 811, false}};
    for (const auto& each : scenes)
        if ((wanted.isEmpty() || wanted.contains(each.name)) &&
            !drawPage(defaults, pictures, each.name, each.available, each.run))
            return false;
    return true;
}

}  // namespace orrinvale
