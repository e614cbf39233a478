// The keeper on real files: another process's change reaches the observers, and what nobody saved
// is saved.
#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include "engine/base/Log.h"
#include "services/settings/SettingsKeeper.h"
#include "support/EventLoop.h"
#include "support/test.h"

namespace orrinvale {
namespace {

void turnFor(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

struct SettingsKeeperTest : ::testing::Test {
    // A process that stores one value.
    [[nodiscard]] std::string storeElsewhere(const char* key, bool value) const {
        return testing::runInChild({}, [&] {
            UserDefaults theirs(path);
            theirs.setBool(value, key);
            return theirs.synchronize() ? "" : "not saved";
        });
    }
    testing::TestTree tree;
    std::string path = tree.at("com.kelpford.Orrinvale/settings.ini");
    UserDefaults defaults{path};
};

TEST_F(SettingsKeeperTest, AnotherProcessIsHeardEachTime) {
    const SettingsKeeper keeper(defaults);
    std::string heard;
    const auto fade =
        defaults.addObserver("fade", [&] { heard += defaults.boolForKey("fade") ? "+" : "-"; });
    ASSERT_EQ(storeElsewhere("fade", true), "");
    EXPECT_TRUE(testing::serveUntil([&] { return heard == "+"; })) << heard;
    ASSERT_EQ(storeElsewhere("fade", false), "");  // the first file is gone by now
    EXPECT_TRUE(testing::serveUntil([&] { return heard == "+-"; })) << heard;
    // An editor that writes into the file itself.
    ASSERT_TRUE(tree.write("com.kelpford.Orrinvale/settings.ini", "[Orrinvale]\nfade = true\n"));
    EXPECT_TRUE(testing::serveUntil([&] { return heard == "+-+"; })) << heard;
}

TEST_F(SettingsKeeperTest, WhatWasSetOnAnyThreadIsSavedInTime) {
    const SettingsKeeper keeper(defaults);
    std::thread([&] { defaults.setInteger(4, "row"); }).join();
    EXPECT_TRUE(testing::serveUntil([&] { return !defaults.isUnsaved(); }));
    EXPECT_EQ(UserDefaults(path).integerForKey("row"), 4);
}

TEST_F(SettingsKeeperTest, TheEndSavesWhatIsLeft) {
    auto keeper = std::make_unique<SettingsKeeper>(defaults);
    defaults.setInteger(5, "row");
    keeper.reset();
    EXPECT_EQ(UserDefaults(path).integerForKey("row"), 5);
    defaults.setInteger(6, "row");  // nobody listens any more
    EXPECT_EQ(UserDefaults(path).integerForKey("row"), 5);
}

TEST_F(SettingsKeeperTest, WhatOthersStoredBeforeItsStartIsTakenUp) {
    ASSERT_EQ(storeElsewhere("theirs", true), "");
    const SettingsKeeper keeper(defaults);
    EXPECT_TRUE(testing::serveUntil([&] { return defaults.boolForKey("theirs"); }));
}

TEST_F(SettingsKeeperTest, WhatWasSetBeforeItsStartIsSaved) {
    defaults.setInteger(4, "ours");
    const SettingsKeeper keeper(defaults);
    EXPECT_TRUE(testing::serveUntil([&] { return UserDefaults(path).integerForKey("ours") == 4; }));
}

TEST_F(SettingsKeeperTest, TheEndOfTheApplicationSaves) {
    const SettingsKeeper keeper(defaults);
    defaults.setInteger(5, "row");
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
    EXPECT_EQ(UserDefaults(path).integerForKey("row"), 5);
}

TEST_F(SettingsKeeperTest, BehindALinkTheFileIsHeard) {
    ASSERT_TRUE(tree.write("dots/other.ini", "[Orrinvale]\nrow = 3\n") &&
                tree.folder("com.kelpford.Orrinvale") &&
                tree.symlink("../dots/real.ini", "com.kelpford.Orrinvale/settings.ini"));
    UserDefaults linked(path);
    const SettingsKeeper keeper(linked);
    // What happens now is heard by a watch, and not by the look at the start or after the change
    // before.
    const auto settle = [] { turnFor(300ms); };
    settle();
    for (const char* text : {"[Orrinvale]\nrow = 1\n", "[Orrinvale]\nrow = 2\n"}) {
        // As editors do: a new file in the place of the old one.
        ASSERT_TRUE(tree.write("elsewhere.ini", text));
        std::filesystem::rename(tree.at("elsewhere.ini"), tree.at("dots/real.ini"));
        EXPECT_TRUE(testing::serveUntil([&] {
            return linked.integerForKey("row") == text[18] - '0';
        })) << text;
        settle();
    }
    ASSERT_TRUE(tree.symlink("../dots/other.ini", "com.kelpford.Orrinvale/new"));
    std::filesystem::rename(tree.at("com.kelpford.Orrinvale/new"), path);
    EXPECT_TRUE(testing::serveUntil([&] { return linked.integerForKey("row") == 3; }))
        << "the link leads elsewhere now";
}

// An attempt makes and removes a file in the folder, which must not be taken for the next change.
TEST_F(SettingsKeeperTest, AFileThatCanNotBePutRightCostsOneAttempt) {
    ASSERT_TRUE(tree.folder("com.kelpford.Orrinvale/settings.ini"));
    const SettingsKeeper keeper(defaults);
    std::atomic<int> attempts{0};
    Log::setEnabled(true);
    Log::setSink([&](std::string_view line) {
        attempts += line.find("could not be saved") != std::string_view::npos ? 1 : 0;
    });
    defaults.setInteger(1, "a");
    EXPECT_FALSE(defaults.synchronize());
    turnFor(2500ms);
    Log::setSink({});
    Log::setEnabled(false);
    EXPECT_TRUE(defaults.isUnsaved());
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_TRUE(attempts >= 2 && attempts <= 4) << attempts;
}

}  // namespace
}  // namespace orrinvale
