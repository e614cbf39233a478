// Which volumes are warned of, and what is remembered of that.
#include "engine/volumes/LowSpace.h"

#include "support/test.h"

namespace orrinvale {
namespace {

SeenVolume volume(const std::string& root, std::uint64_t freePercent,
                  std::int32_t type = LocalVolume) {
    ZvVolumeInfo info;
    info.volRootDir = root;
    info.volType = type;
    info.nTotalSize = 1000;
    info.nFreeSize = freePercent * 10;
    return {std::make_shared<ZvVolumeInfo>(info)};
}

std::string rootsOf(const std::vector<SeenVolume>& volumes) {
    std::string roots;
    for (const SeenVolume& each : volumes) roots += each.record->volRootDir + ' ';
    return roots;
}

TEST(LowSpace, AWarningIsGivenOnceAndAgainOnlyAfterARiseOfTwoPoints) {
    const struct {
        std::uint64_t free;
        float level;
        bool isDue;
    } steps[] = {
        {30, 10, false}, {11, 10, false}, {10, 10, true},  {9, 10, false},
        {11, 10, false}, {10, 10, false}, {12, 10, false}, {10, 10, true},
        {5, 10, false},  {5, 3, false},   {5, 10, true},  // it has risen two points above the level
                                                          // of then
    };
    LowSpace running;
    std::string stored;
    for (const auto& step : steps) {
        const std::vector<SeenVolume> look{volume("/", step.free)};
        EXPECT_EQ(running.take(look, step.level).size(), step.isDue ? 1U : 0U) << step.free;
        // The same over a restart before each look.
        LowSpace restarted(stored);
        EXPECT_EQ(restarted.take(look, step.level).size(), step.isDue ? 1U : 0U) << step.free;
        stored = restarted.remembered();
    }
}

TEST(LowSpace, OnlyDisksOfPeopleThatAnswerAreWarnedOf) {
    SeenVolume silent = volume("/nas", 1);
    silent.silence = "gone";
    std::vector<SeenVolume> look{volume("/", 1),
                                 volume("/x", 1, ExternalVolume),
                                 volume("/cd", 0, OpticalVolume),
                                 volume("/s", 1, NetworkVolume),
                                 volume("/i", 1, DiskImageVolume),
                                 silent};
    LowSpace rule;
    EXPECT_EQ(rootsOf(rule.take(look, 10)), "/ /x ");
    rule.wasNotTold("/x");
    EXPECT_EQ(rootsOf(rule.take(look, 10)), "") << "not at once";
    EXPECT_EQ(rootsOf(LowSpace(rule.remembered()).take(look, 10)), "/x ")
        << "but at the next start";
    EXPECT_EQ(rootsOf(rule.take({}, 10)), "");
    EXPECT_EQ(rule.remembered(), "/") << "who is away is not forgotten";
}

TEST(LowSpace, RootsOfAnyBytesAreKeptAndGarbageIsLeftOut) {
    const std::string odd = "/a b%\n\xff\xc3\xa4";
    LowSpace rule;
    EXPECT_EQ(rule.take({volume(odd, 1)}, 10).size(), 1U);
    EXPECT_EQ(rule.remembered(), "/a%20b%25%0A%FF%C3%A4");
    EXPECT_EQ(LowSpace(rule.remembered()).remembered(), rule.remembered());
    EXPECT_EQ(LowSpace("  /a %zz / %2 x %2Fb %").remembered(), "/a / /b");
    std::string many;
    for (int i = 0; i < 70; ++i) many += fmt::format("/{} ", i);
    EXPECT_TRUE(LowSpace(many).remembered().ends_with("/69"));
    std::vector<SeenVolume> look;
    for (int i = 0; i < 70; ++i) look.push_back(volume(fmt::format("/{}", i), 1));
    EXPECT_EQ(rule.take(look, 10).size(), 70U);
    EXPECT_TRUE(rule.remembered().starts_with("/0 ")) << "who is away goes";
    EXPECT_EQ(rule.take(look, 10).size(), 0U);
    EXPECT_EQ(LowSpace(rule.remembered()).take(look, 10).size(), 0U);
    look.erase(look.begin() + 1, look.end());
    EXPECT_EQ(rule.take(look, 10).size(), 0U);
    EXPECT_TRUE(rule.remembered().starts_with("/0 /7 ")) << "of those the oldest";
}

TEST(LowSpace, AWarningThatNobodyShowedIsRepeatedMoreAndMoreSeldom) {
    using namespace std::chrono_literals;
    const std::vector<SeenVolume> look{volume("/", 1)};
    const LowSpace::Clock::time_point begin{};
    const struct {
        std::chrono::seconds at;
        bool isDue;
    } steps[] = {{0min, true}, {299s, false},  {300s, true}, {899s, false},
                 {900s, true}, {2099s, false}, {2100s, true}};
    LowSpace rule;
    for (const auto& step : steps) {
        EXPECT_EQ(rule.take(look, 10, begin + step.at).size(), step.isDue ? 1U : 0U)
            << step.at.count();
        if (!step.isDue) continue;
        EXPECT_EQ(rule.remembered(), "/");
        if (step.at < 2100s) rule.wasNotTold("/", begin + step.at);
    }
    EXPECT_EQ(rule.take(look, 10, begin + 999h).size(), 0U) << "shown in the end";
}

TEST(LowSpace, AnotherDiskAtTheSameRootIsWarnedOfToo) {
    const auto disk = [](std::int16_t number, const char* name, std::uint64_t total) {
        ZvVolumeInfo info = *volume("/mnt", 1).record;
        info.volRefNumber = number;
        info.volumeName = name;
        info.nTotalSize = total;
        return SeenVolume{std::make_shared<ZvVolumeInfo>(info)};
    };
    const struct {
        const char* what;
        std::vector<SeenVolume> look;
        std::size_t due;
    } steps[] = {
        {"known from before the start", {disk(1, "a", 1000)}, 0},
        {"renamed and grown where it stands", {disk(1, "b", 1001)}, 0},
        {"away", {}, 0},
        {"the same again", {disk(2, "b", 1001)}, 0},
        {"another size", {disk(3, "b", 2000)}, 1},
        {"another name", {disk(4, "c", 2000)}, 1},
        {"one over the other", {disk(4, "c", 2000), disk(5, "d", 2000)}, 0},
        {"one over the other", {disk(4, "c", 2000), disk(5, "d", 2000)}, 0},
    };
    LowSpace rule("/mnt");
    for (const auto& step : steps)
        EXPECT_EQ(rule.take(step.look, 10).size(), step.due) << step.what;
}

}  // namespace
}  // namespace orrinvale
