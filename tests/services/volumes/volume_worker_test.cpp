// Requests about volumes where no thread can be had, and where there is one again.
#include "services/volumes/VolumeWorker.h"

#include <system_error>
#include <thread>

#include "platform/fake/FakeVolumes.h"
#include "support/ServedQueue.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

TEST(VolumeWorker, WithoutAThreadEveryRequestIsAnsweredWithTheReason) {
    FakeVolumes platform;
    platform.volumes = {FakeVolumes::volume(7, "Stick", "/s", true)};
    ServedQueue queue;
    bool hasThreads = false;
    VolumeWorker worker(platform, queue, [&](const std::function<void()>& work) {
        if (!hasThreads) throw std::system_error(EAGAIN, std::generic_category());
        std::thread(work).join();
    });
    Strings told;
    const auto tell = [&](std::int32_t status, const std::vector<EjectFailure>& failures) {
        told.push_back(std::to_string(status));
        for (const EjectFailure& each : failures) told.back() += ' ' + ejectFailureText(each);
    };
    const auto ask = [&] {
        told.clear();
        worker.ejectVolume(7, "/s", "Stick", tell);
        worker.ejectAllVolumes(tell);
        EXPECT_TRUE(told.empty()) << "later";
        EXPECT_TRUE(queue.serveUntil([&] { return told.size() == 2; }));
    };
    const LogLines log;
    ask();
    const std::string reason = " could not be ejected: Resource temporarily unavailable.";
    EXPECT_EQ(told, (Strings{"-36 \"Stick\"" + reason, "-36 The volume" + reason}));
    EXPECT_TRUE(platform.ejectedNumbers.empty()) << "nor by a later thread";
    EXPECT_EQ(log.lines.size(), 2U);
    hasThreads = true;
    ask();
    EXPECT_EQ(told, (Strings{"0", "0"}));
    EXPECT_EQ(platform.ejectedNumbers, (std::vector<std::int16_t>{7, 7}));
}

}  // namespace
}  // namespace orrinvale::testing
