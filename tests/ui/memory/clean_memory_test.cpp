// The page "Memory" over a memory of the test's making, and runs that really run.
#include <QAbstractButton>
#include <QLabel>
#include <QTest>

#include "engine/memory/FakeMemory.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "services/foundation/QtMainQueue.h"
#include "support/SteadyVolumes.h"
#include "support/test.h"
#include "ui/kit/look/Theme.h"
#include "ui/memory/CleanMemoryController.h"
#include "ui/memory/PieChartView.h"
#include "ui/memory/ProgramList.h"
#include "ui/support/soon.h"

namespace orrinvale::testing {
namespace {

constexpr std::uint64_t mebibyte = 1 << 20;
constexpr std::uint64_t pages = mebibyte / 4096;

// 1 GiB, of which `available` programs can have. Never freed, for those who look aside.
struct Machine {
    struct State final : Memory {
        FakeMemory figures;
        std::uint64_t available = 512 * mebibyte;
        mutable std::atomic<int> readings{0};
        mutable std::mutex mutex;  // the watch looks, too
        [[nodiscard]] SysResult<std::optional<std::uint64_t>> figure(
            std::string_view name) const override {
            return figures.figure(name);
        }
        [[nodiscard]] SysResult<MemoryCounts> counts() const override {
            const std::lock_guard lock(mutex);
            ++readings;
            return figures.counts();
        }
        [[nodiscard]] SysResult<MemoryState> state() const override {
            return MemoryState{available, 100 * mebibyte, 25 * mebibyte, 1.5};
        }
        [[nodiscard]] std::uint64_t room() const override { return figures.room(); }
        [[nodiscard]] bool endThisProcessFirst() const override { return false; }
    };
    State memory;
    SteadyVolumes volumes;
    QtMainQueue queue;
    SystemWatch watch{volumes, memory, queue, 1h};
    const std::vector<ProgramMemory> programs{{"firefox", 600 * mebibyte, false, 4},
                                              {"R&D\nserver", 200 * mebibyte, true, 1}};
    std::atomic<int> programLooks{0};
};

class MemoryPage : public ::testing::Test {
protected:
    MemoryPage() {
        setFree(100);
        defaults.setFloat(0.1F, ZvMemoryAlarmKey);
        services.defaults = &defaults;
    }
    void setFree(std::uint64_t mebibytes) {
        const std::lock_guard lock(machine.memory.mutex);
        machine.memory.figures.counted = MemoryCounts{.free = mebibytes * pages,
                                                      .active = 500 * pages,
                                                      .inactive = (404 - mebibytes) * pages,
                                                      .wired = 120 * pages};
    }
    // The run is a script, which ends once the file "end" is there.
    CleanMemoryController& open(const std::string& script = "exit 0", bool isOwnProgram = false) {
        tree.write("purge", "#!/bin/sh\n" + script + "\n");
        std::filesystem::permissions(tree.at("purge"), std::filesystem::perms::owner_all);
        page = std::make_unique<CleanMemoryController>(
            services, MemoryParts{&machine.memory, &machine.watch,
                                  isOwnProgram ? PurgePrograms{.executable = tree.at("purge")}
                                               : PurgePrograms{.systemPurge = tree.at("purge")},
                                  [&on = machine](std::size_t most) {
                                      EXPECT_EQ(most, 10U);
                                      ++on.programLooks;
                                      return on.programs;
                                  }});
        page->view()->resize(800, 440);
        page->view()->show();
        return *page;
    }
    [[nodiscard]] QString text(const char* name) const {
        return page->view()->findChild<QLabel*>(QLatin1String(name))->text();
    }
    [[nodiscard]] bool isShown(const char* name) const {
        return page->view()->findChild<QWidget*>(QLatin1String(name))->isVisible();
    }
    [[nodiscard]] QAbstractButton& button() const {
        return *page->view()->findChild<QAbstractButton*>(QStringLiteral("clearMemBtn"));
    }

    Machine& machine = *new Machine;
    TestTree tree;
    UserDefaults defaults{tree.at("settings.ini")};
    PageServices services;
    std::unique_ptr<CleanMemoryController> page;
};

TEST_F(MemoryPage, ShowsFiguresThatAddUpAndTheProgramsThatHoldMost) {
    open();
    const struct {
        const char *field, *figure;
    } figures[] = {{"freeMemTF", "100.00 MB"},     {"activeMemTF", "500.00 MB"},
                   {"inactiveMemTF", "304.00 MB"}, {"wiredMemTF", "120.00 MB"},
                   {"usedMemTF", "924.00 MB"},     {"totalMemTF", "1.00 GB"}};
    for (const auto& each : figures) EXPECT_EQ(text(each.field), QLatin1String(each.figure));
    const auto& items = page->view()->findChild<PieChartView*>()->pieChartItems();
    ASSERT_EQ(items.size(), 4U);
    EXPECT_EQ(items[1].itemValue, 500.0F * mebibyte);
    EXPECT_EQ(items[3].itemColor, QColor::fromRgbF(1, 0.1647F, 0.1020F));
    EXPECT_EQ(page->view()->findChild<PieChartView*>()->total(), 1024.0F * mebibyte);
    EXPECT_SOON(text("titleLabel") ==
                QLatin1String("512.00 MB of 1.00 GB are available to programs"));
    EXPECT_EQ(text("stateLine").toStdString(),
              "Swap: 25.00 MB of 100.00 MB in use\n"
              "Programs waited for memory in 1.50% of the last minute");
    const auto& list = *page->view()->findChild<ProgramList*>();
    EXPECT_SOON(list.programs().size() == 2);
    EXPECT_EQ(list.accessibleName().toStdString(),
              "firefox (4 processes): 600.00 MB\nR&D\u2424server: up to 200.00 MB");
    EXPECT_FALSE(isShown("LastCleanText"));

    setFree(90);
    EXPECT_SOON(text("freeMemTF") == QLatin1String("90.00 MB")) << "every second";
    page->view()->hide();
    const int readings = machine.memory.readings;
    QTest::qWait(1200);
    EXPECT_EQ(machine.memory.readings, readings) << "nobody looks while it is not seen";
    EXPECT_EQ(machine.programLooks, 1);
}

TEST_F(MemoryPage, IsAmberByWhatProgramsCanHave) {
    const QColor amber = Theme::shared().color(Theme::Color::Warning);
    // A tenth of 1024 is the level; whole per cent count, as for volumes.
    const struct {
        qulonglong available;
        bool isLow;
    } cases[] = {{113, false}, {112, true}, {3, true}};
    for (const auto& each : cases) {
        const auto available = each.available;
        machine.memory.available = available * mebibyte;
        open();
        const auto* const title = page->view()->findChild<QLabel*>(QStringLiteral("titleLabel"));
        EXPECT_SOON(title->text().contains(QStringLiteral("%1.00 MB of").arg(available)));
        EXPECT_EQ(title->palette().color(QPalette::WindowText) == amber, each.isLow) << available;
        EXPECT_EQ(title->text().startsWith(QLatin1String("Memory runs low")), each.isLow)
            << available;
    }
}

TEST_F(MemoryPage, ARunIsOneAtATimeAndTellsWhatItFreed) {
    open("echo x >> " + tree.at("runs") + "; while [ ! -e " + tree.at("end") +
         " ]; do sleep 0.02; done");
    const LogLines log;
    button().click();
    EXPECT_FALSE(button().isEnabled());
    EXPECT_EQ(button().icon().name(), QStringLiteral("cleaning"));
    EXPECT_TRUE(isShown("noteCleaning"));
    page->CleanButtonAction();
    setFree(228);
    page->updateTitleForLabelValue();
    EXPECT_TRUE(page->isFreeing()) << "while it runs";
    tree.write("end", "");
    EXPECT_SOON(!page->isFreeing());
    EXPECT_EQ(text("LastCleanText"), QStringLiteral("128.00 MB freed."));
    EXPECT_TRUE(isShown("LastCleanText") && isShown("noteTipText") && button().isEnabled());
    EXPECT_FALSE(isShown("noteCleaning"));
    EXPECT_EQ(button().icon().name(), QStringLiteral("clean_memory_button"));

    button().click();
    setFree(200);
    EXPECT_SOON(!page->isFreeing());
    EXPECT_EQ(text("LastCleanText"), QStringLiteral("0.00 KB freed."));
    EXPECT_EQ(std::ranges::count(log.lines, "释放变小了"), 1);
    EXPECT_EQ(std::ranges::count(log.lines, "begin clear memory"), 2);
    EXPECT_EQ(contentOf(tree.at("runs")), "x\nx\n");
}

TEST_F(MemoryPage, SaysOfARunWhatIsTrueOfIt) {
    const std::string freed = "Copies of files went. Programs could have had that memory anyway.";
    const struct {
        bool isOwnProgram;
        std::uint64_t room, freeAfter;  // mebibytes
        std::string note;
    } cases[] = {
        {true, 1024, 228, freed},
        {false, 0, 228, freed},
        {true, 1024, 100,
         "No more is free than before: what was given up is in use again, if anything was."},
        {true, 90, 228, "Nothing had to be given up: as much as one run takes was free."},
        {true, 0, 228,
         "Nothing was taken: there is no room left for it here, or the system does not tell how "
         "much."},
    };
    for (const auto& each : cases) {
        setFree(100);
        machine.memory.figures.roomNow = [room = each.room] { return room * mebibyte; };
        std::filesystem::remove(tree.at("end"));
        open("while [ ! -e " + tree.at("end") + " ]; do sleep 0.02; done", each.isOwnProgram);
        button().click();
        setFree(each.freeAfter);
        tree.write("end", "");
        EXPECT_SOON(!page->isFreeing());
        EXPECT_EQ(text("noteTipText").toStdString(), each.note) << each.room;
    }
}

TEST_F(MemoryPage, ARunThatFailsSaysSoAndAMachineThatTellsNothingShowsNoPie) {
    open("exit 3");
    button().click();
    EXPECT_SOON(!page->isFreeing());
    EXPECT_EQ(text("noteTipText"), QStringLiteral("The run ended early."));
    machine.memory.figures.counted = MemoryCounts{};
    machine.memory.figures.figures["hw.memsize"] = tl::unexpected(ENOENT);
    open();
    EXPECT_EQ(text("totalMemTF"), QStringLiteral("0.00 KB"));
    EXPECT_EQ(text("titleLabel"),
              QStringLiteral("The system does not tell what its memory is used for"));
    EXPECT_EQ(page->view()->findChild<PieChartView*>()->total(), 0);
}

}  // namespace
}  // namespace orrinvale::testing
