// How much the disk gave back, where several folders share one.
#include "engine/cleaning/SpaceGain.h"

#include <future>
#include <thread>

#include "platform/freeSpace.h"
#include "support/test.h"

namespace orrinvale {
namespace {

// Each subvolume calls itself a device of its own.
TEST(SpaceGain, subvolumesOfOneDiskCountOnce) {
    withOwnMounts([]() -> std::string {
        if (::system("cd /mnt && truncate -s 300M image && mkfs.btrfs -q image 2>/dev/null "
                     ">/dev/null && mkdir disk && mount -o loop image disk") != 0)
            return "skip: no btrfs or no loop device here";
        if (::system(
                "cd /mnt/disk && btrfs -q subvolume create a && btrfs -q subvolume create b && "
                "for v in a b; do head -c 20000000 /dev/urandom > $v/x; done && sync") != 0)
            return "no subvolumes";
        if (spaceOf("/mnt/disk/a") != spaceOf("/mnt/disk/b") ||
            spaceOf("/mnt/disk/a") == spaceOf("/mnt"))
            return "told apart otherwise";
        std::vector<CleanRow> rows(3);
        rows[0].path = "/mnt/disk/a/x";
        rows[1].path = "/mnt/disk/b/x";
        rows[2].path = "/mnt/x";
        rows[0].identity.device = 1;
        rows[1].identity.device = 2;
        SpaceGain gain(rows);
        gain.begin();
        if (::system("rm /mnt/disk/a/x /mnt/disk/b/x") != 0) return "no removal";
        const std::int64_t gained = gain.gained().value_or(0);
        return gained > 35'000'000 && gained < 45'000'000 ? "" : std::to_string(gained);
    });
}

// It has much to write before it can tell: the clean begins without a figure, and tells none.
TEST(SpaceGain, aDiskThatDoesNotSettleHoldsNoCleanUp) {
    std::promise<void> settled;
    SpaceGain gain({"/"}, [held = settled.get_future().share()](const std::string&) {
        held.wait();
        return SysResult<std::uint64_t>(1);
    });
    std::thread clean([&gain] { gain.begin(); });
    const auto begun = std::async(std::launch::async, [&clean] { clean.join(); });
    EXPECT_EQ(begun.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    settled.set_value();
    begun.wait();
    EXPECT_EQ(gain.gained(), std::nullopt);
}

}  // namespace
}  // namespace orrinvale
