// The keeper on real files: another process's change reaches the observers, and what nobody saved is saved.
#include <gtest/gtest.h>

#include <QEventLoop>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <thread>

#include "engine/base/Log.h"
#include "services/settings/SettingsKeeper.h"
#include "support/TestTree.h"

namespace orrinvale {
namespace {

using namespace std::chrono_literals;

void turnFor(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

bool waitFor(const std::function<bool()>& condition) {
    for (int turns = 0; turns < 500; ++turns) {
        if (condition()) return true;
        turnFor(20ms);
    }
    return false;
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
    const auto fade = defaults.addObserver("fade", [&] { heard += defaults.boolForKey("fade") ? "+" : "-"; });
    ASSERT_EQ(storeElsewhere("fade", true), "");
    EXPECT_TRUE(waitFor([&] { return heard == "+"; })) << heard;
    ASSERT_EQ(storeElsewhere("fade", false), "");  // the first file is gone by now
    EXPECT_TRUE(waitFor([&] { return heard == "+-"; })) << heard;
    // An editor that writes into the file itself.
    ASSERT_TRUE(tree.write("com.kelpford.Orrinvale/settings.ini", "[Orrinvale]\nfade = true\n"));
    EXPECT_TRUE(waitFor([&] { return heard == "+-+"; })) << heard;
}

TEST_F(SettingsKeeperTest, WhatWasSetOnAnyThreadIsSavedInTime) {
    const SettingsKeeper keeper(defaults);
    std::thread([&] { defaults.setInteger(4, "row"); }).join();
    EXPECT_TRUE(waitFor([&] { return !defaults.isUnsaved(); }));
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

// An attempt makes and removes a file in the folder, which must not be taken for the next change.
TEST_F(SettingsKeeperTest, AFileThatCanNotBePutRightCostsOneAttempt) {
    ASSERT_TRUE(tree.write("com.kelpford.Orrinvale/settings.ini.bad/x", "") &&
                tree.write("com.kelpford.Orrinvale/settings.ini", "garbage"));
    const SettingsKeeper keeper(defaults);
    std::atomic<int> attempts{0};
    Log::setEnabled(true);
    Log::setSink(
        [&](std::string_view line) { attempts += line.find("could not be saved") != std::string_view::npos ? 1 : 0; });
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
