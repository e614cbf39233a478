// Copies that share with another one than the copy that stays, links that are taken back, and the
// figure of what was gained.
#include "engine/duplicates/share/ShareGivers.h"

#include <functional>
#include <future>
#include <thread>
#include <utility>

#include "engine/duplicates/ShareRun.h"

namespace orrinvale {
namespace {

using testing::otherBelongings;
using testing::otherSystem;
using testing::promisedAndDone;
using testing::sharePlan;
using testing::ShareRun;

// What can not share with the copy that stays shares with what else can not.
TEST(ShareLinks, AnotherCopyGivesItsBytesWhereTheOneThatStaysIsOfNoUse) {
    TestTree tree("/dev/shm");
    TestTree elsewhere("/tmp");
    const auto plan = [&](const Strings& here, const Strings& there) {
        Strings paths;
        for (const std::string& name : here) {
            EXPECT_TRUE(tree.write(name, "same"));
            paths.push_back(tree.at(name));
        }
        for (const std::string& name : there) {
            EXPECT_TRUE(elsewhere.write(name, "same"));
            paths.push_back(elsewhere.at(name));
        }
        return paths;
    };
    const std::string state = tree.at("state");
    const Strings two = plan({"1/a", "1/b", "1/c"}, {"1/x", "1/y", "1/z"});
    if (attributesOf(two.front()).device == attributesOf(two.back()).device)
        GTEST_SKIP() << "one disk";
    EXPECT_EQ(promisedAndDone(sharePlan(two), state),
              std::string(otherSystem) + "link; link; link; link; ");
    EXPECT_EQ(attributesOf(two[5]).inode, attributesOf(two[3]).inode);

    const Strings modes = plan({"2/a", "2/b", "2/c", "2/d", "2/e"}, {});
    for (const char* const name : {"2/b", "2/c", "2/d"}) ASSERT_TRUE(tree.setMode(name, 0600));
    ASSERT_TRUE(tree.setMode("2/c", 0640));
    EXPECT_EQ(promisedAndDone(sharePlan(modes), state),
              std::string(otherBelongings) + otherBelongings + "link; link; ");

    // Of three that stay, none of which changes but for its names; the protected one gives none.
    const Strings staying = plan({"3/a", "3/kept/a", "3/b", "3/c", "3/d"}, {});
    for (const char* const name : {"3/b", "3/c"}) ASSERT_TRUE(tree.setMode(name, 0600));
    DuplicatePlan several = sharePlan(staying);
    for (const std::size_t i : {1U, 2U}) several.groups[0].members[i].goes = false;
    several.groups[0].members[1].isProtected = true;
    several.protectedFolders = {tree.at("3/kept")};
    EXPECT_EQ(promisedAndDone(several, state), "link; link; ");
    EXPECT_EQ(attributesOf(staying[3]).inode, attributesOf(staying[2]).inode);
    EXPECT_EQ(attributesOf(staying[4]).inode, attributesOf(staying[0]).inode);
    EXPECT_EQ(attributesOf(staying[1]).links, 1U);
    // Each with contents of its own is compared with what gives its bytes, which was not the copy
    // that stays.
    const Strings others = plan({"4/a"}, {"4/x", "4/y", "4/z"});
    ASSERT_TRUE(elsewhere.write("4/y", "Same"));
    EXPECT_EQ(ShareRun({.mayLink = true, .state = state}).run(files, sharePlan(others)),
              std::string(otherSystem) + std::string(otherSystem) + "link; ");
    EXPECT_EQ(contentOf(others[2]), "Same");
}

/// Refuses once to remove what is aside.
class StuckAside final : public ForwardingFiles {
public:
    StuckAside() : ForwardingFiles(files) {}
    SysResult<void> removeEntry(int folder, const char* name, FileType type) const override {
        if (!std::exchange(m_isDone, true)) return tl::unexpected(EIO);
        return ForwardingFiles::removeEntry(folder, name, type);
    }

private:
    mutable bool m_isDone = false;
};

// The link gave what stays another time of change, by which it would count as changed.
TEST(ShareLinks, ALinkThatWasTakenBackIsKnownOfTheCopyThatStays) {
    TestTree tree("/dev/shm");
    for (const char* const name : {"a", "b", "c"}) ASSERT_TRUE(tree.write(name, "same"));
    ShareRun run{.mayLink = true, .state = tree.at("state")};
    const StuckAside stuck;
    EXPECT_EQ(run.run(stuck, sharePlan({tree.at("a"), tree.at("b"), tree.at("c")})),
              "Input/output error; link; ");
    EXPECT_EQ(namesIn(tree.path()), (Strings{"a", "b", "c", "state"}));
    EXPECT_NE(attributesOf(tree.at("b")).inode, attributesOf(tree.at("a")).inode);
    ASSERT_EQ(run.list->takenBack().size(), 1U);
    EXPECT_EQ(run.list->takenBack()[0].with, tree.at("a"));
    EXPECT_TRUE(run.list->takenBack()[0].keptChanged);
    EXPECT_EQ(run.list->account()[0].changed, attributesOf(tree.at("b")).changed);
}

/// Something happens once the first copy is aside.
class HookedAside final : public ForwardingFiles {
public:
    explicit HookedAside(std::function<void()> then)
        : ForwardingFiles(files), m_then(std::move(then)) {}
    SysResult<void> renameInside(int folder, const char* name, const char* newName) const override {
        auto renamed = ForwardingFiles::renameInside(folder, name, newName);
        if (!std::exchange(m_isDone, true)) m_then();
        return renamed;
    }

private:
    std::function<void()> m_then;
    mutable bool m_isDone = false;
};

// The way aside and back gave it that time, though the giver that refused it at the end did not.
TEST(ShareLinks, ACopyThatCameBackKeepsItsNewTimeWhateverALaterGiverDid) {
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.write("a", "Same") && tree.write("b", "same") && tree.write("c", "same"));
    DuplicatePlan plan = sharePlan({tree.at("a"), tree.at("b"), tree.at("c")});
    plan.groups[0].members[1].goes = false;
    const std::int64_t before = attributesOf(tree.at("c")).changed;
    const HookedAside changing([&] { EXPECT_TRUE(tree.write("b", "SAME")); });
    ShareRun run{.mayLink = true, .state = tree.at("state")};
    EXPECT_EQ(run.run(changing, plan), "no other verified copy is left; ");
    EXPECT_EQ(contentOf(tree.at("c")), "same");
    EXPECT_NE(attributesOf(tree.at("c")).changed, before);
    EXPECT_EQ(run.list->account()[0].changed, attributesOf(tree.at("c")).changed);
}

// A disk that hangs never tells what is free.
TEST(ShareGain, NobodyWaitsForeverForTheFigure) {
    using std::chrono::milliseconds;
    TestTree tree("/dev/shm");
    ASSERT_TRUE(tree.write("a", "same") && tree.write("b", "same"));
    const auto hung = std::make_shared<std::promise<void>>();
    std::shared_ptr<std::atomic<int>> asked;  // of the newest list
    const std::shared_future<void> released = hung->get_future();
    const auto ask = [&asked, released](int most) -> FreeSpaceLook::Ask {
        asked = std::make_shared<std::atomic<int>>(0);
        return [count = asked, most,
                released](const std::set<std::string>&) -> std::optional<std::int64_t> {
            if (++*count <= most) return 5;
            released.wait();
            return 9;
        };
    };
    const auto listOf = [&](milliseconds patience, int most) {
        auto list = std::make_shared<ShareList>(files, sharePlan({tree.at("a"), tree.at("b")}));
        list->measureGain(patience, ask(most));
        list->prepare();
        list->turnHasCome();
        return list;
    };
    for (const int before : {0, 1}) {
        const auto list = listOf(milliseconds(300), before);
        EXPECT_FALSE(list->isMeasuring());
        EXPECT_EQ(list->gained(), std::nullopt) << "answers before it hangs: " << before;
        EXPECT_EQ(*asked, before + 1);
    }
    const auto list = listOf(std::chrono::hours(1), 1);
    std::jthread stop([&] {
        while (!list->isMeasuring()) std::this_thread::sleep_for(milliseconds(1));
        list->stopMeasuring();
    });
    EXPECT_EQ(list->gained(), std::nullopt);
    EXPECT_EQ(listOf(std::chrono::hours(1), 2)->gained(), 0);
    ShareList stopped(files, sharePlan({tree.at("a"), tree.at("b")}));
    stopped.measureGain(std::chrono::hours(1), ask(0));
    stopped.prepare();
    std::atomic<bool> isStopped{false};
    stopped.listenTo(isStopped);
    std::jthread signal([&] {
        while (!stopped.isMeasuring()) std::this_thread::sleep_for(milliseconds(1));
        isStopped = true;
    });
    stopped.turnHasCome();
    EXPECT_TRUE(isStopped);
    hung->set_value();
}

}  // namespace
}  // namespace orrinvale
