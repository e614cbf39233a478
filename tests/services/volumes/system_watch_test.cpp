// The shared look at the volumes: when it tells, and when it rests.
#include "services/volumes/SystemWatch.h"

#include "support/ServedQueue.h"
#include "support/SteadyVolumes.h"
#include "support/test.h"

namespace orrinvale {
namespace {

// Never freed: the watch's thread may be in the midst of a look when a test ends.
struct Machine {
    testing::SteadyVolumes volumes;
    testing::CountedMemory memory;
    testing::ServedQueue queue;

    static Machine& make() {
        static auto* const all = new std::vector<Machine*>;  // which keeps them in reach
        auto* const made = all->emplace_back(new Machine);
        made->volumes.fake.volumes = {FakeVolumes::volume(1, "root", "/", false, 1'000'000'000),
                                      FakeVolumes::volume(2, "a", "/a", true, 1'000'000'000)};
        return *made;
    }
    // Serves until that many looks were taken from now on.
    void serveLooks(int count) {
        const int until = volumes.walks + count;
        while (volumes.walks < until)
            if (!queue.step()) ::usleep(200);
        while (queue.step()) {}
    }
};

TEST(SystemWatch, TellsWhatPeopleWouldSeeAndOfTheFirstLookAnyway) {
    Machine& machine = Machine::make();
    SystemWatch watch(machine.volumes, machine.memory, machine.queue, 1ms);
    EXPECT_EQ(watch.latest(), nullptr);
    std::vector<SystemSight> told;
    auto seen = watch.observe(SystemWatch::Part::Volumes,
                              [&](const SystemSight& sight) { told.push_back(sight); });
    ASSERT_TRUE(machine.queue.serveUntil([&] { return told.size() == 1; }));
    EXPECT_EQ(told[0].volumes.size(), 2U);

    for (int i = 0; i < 10; ++i) {
        machine.volumes.change([](auto& volumes) { ++volumes[0].volume.info.freeBytes; });
        machine.serveLooks(2);
    }
    EXPECT_EQ(told.size(), 1U) << "a byte is nothing to see";
    machine.volumes.change([](auto& volumes) { volumes[0].volume.info.freeBytes -= 20'000'000; });
    ASSERT_TRUE(machine.queue.serveUntil([&] { return told.size() == 2; }));
    machine.volumes.change(
        [](auto& volumes) { volumes[1] = FakeVolumes::volume(3, "b", "/a", true); });
    ASSERT_TRUE(machine.queue.serveUntil([&] { return told.size() == 3; }));
    EXPECT_FALSE(hasSameSequence(told[1], told[2])) << "one went while another came";
    EXPECT_TRUE(hasSameSequence(*watch.latest(), told[2]));
    machine.serveLooks(3);
    EXPECT_EQ(told.size(), 3U);
    EXPECT_EQ(machine.memory.readings, 0) << "nobody wants to know";

    // A second one is told of what stands already, and ends the first from within.
    int second = 0;
    const auto other = watch.observe(SystemWatch::Part::Volumes, [&](const SystemSight&) {
        ++second;
        seen.reset();
    });
    ASSERT_TRUE(machine.queue.serveUntil([&] { return second == 1; }));
    const std::size_t before = told.size();
    machine.volumes.change([](auto& volumes) { volumes.pop_back(); });
    ASSERT_TRUE(machine.queue.serveUntil([&] { return second == 2; }));
    EXPECT_EQ(told.size(), before);
}

TEST(SystemWatch, LooksAtWhatIsObservedAndRestsWithoutObservers) {
    Machine& machine = Machine::make();
    SystemWatch watch(machine.volumes, machine.memory, machine.queue, 1ms);
    watch.lookNow();
    int told = 0;
    auto memory = watch.observe(SystemWatch::Part::Memory, [&](const SystemSight&) { ++told; });
    ASSERT_TRUE(machine.queue.serveUntil([&] { return told == 5; }));
    EXPECT_EQ(machine.volumes.walks, 0);
    EXPECT_TRUE(watch.latest()->memoryState.has_value());
    memory.reset();
    ::usleep(20'000);  // for a look that is under way
    const int readings = machine.memory.readings;
    ::usleep(50'000);
    EXPECT_EQ(machine.memory.readings, readings);
    memory = watch.observe(SystemWatch::Part::Memory, [&](const SystemSight&) { ++told; });
    EXPECT_TRUE(machine.queue.serveUntil([&] { return told > 6; })) << "and begins again";
}

TEST(SystemWatch, AChangeIsSeenWithoutWaitingForTheTime) {
    Machine& machine = Machine::make();
    SystemWatch watch(machine.volumes, machine.memory, machine.queue, 1h);
    std::size_t count = 0;
    const auto seen = watch.observe(SystemWatch::Part::Volumes, [&](const SystemSight& sight) {
        count = sight.volumes.size();
    });
    ASSERT_TRUE(machine.queue.serveUntil([&] { return count == 2; }));
    machine.volumes.change([](auto& volumes) { volumes.pop_back(); });
    watch.lookNow();
    EXPECT_TRUE(machine.queue.serveUntil([&] { return count == 1; }));
}

TEST(SystemWatch, NothingIsToldBehindItsEnd) {
    Machine& machine = Machine::make();
    auto watch = std::make_unique<SystemWatch>(machine.volumes, machine.memory, machine.queue, 1ms);
    int told = 0;
    const auto seen =
        watch->observe(SystemWatch::Part::Volumes, [&](const SystemSight&) { ++told; });
    ASSERT_TRUE(machine.queue.serveUntil([&] { return told == 1; }));
    {
        const std::lock_guard hold(machine.volumes.walk);  // the next look waits in here
        ::usleep(5'000);
        watch.reset();
        machine.volumes.fake.volumes.clear();
    }
    ::usleep(20'000);
    while (machine.queue.step()) {}
    EXPECT_EQ(told, 1);
}

}  // namespace
}  // namespace orrinvale
