// Settings on a real file: what is written, what another process does to it, and damaged files.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/SettingsText.h"
#include "engine/settings/UserDefaults.h"
#include "support/TestTree.h"

namespace orrinvale {
namespace {

using testing::contentOf;
using testing::TestTree;
using Int = std::int64_t;

struct UserDefaultsTest : ::testing::Test {
    TestTree tree;
    std::string path = tree.at("config/com.kelpford.Orrinvale/settings.ini");
};

TEST_F(UserDefaultsTest, RegisteredValuesAreNotWrittenAndSetOnesAre) {
    UserDefaults defaults(path);
    defaults.registerDefaults({{"a", true}, {"b", std::string("YES")}});
    EXPECT_TRUE(defaults.boolForKey("a") && defaults.boolForKey("b"));
    ASSERT_TRUE(defaults.synchronize());
    EXPECT_FALSE(std::filesystem::exists(path));

    defaults.setFloat(0.25F, "share");
    defaults.setInteger(2, "a");
    EXPECT_TRUE(defaults.isUnsaved());
    ASSERT_TRUE(defaults.synchronize());
    EXPECT_FALSE(defaults.isUnsaved());
    EXPECT_EQ(parseSettings(contentOf(path)), (SettingValues{{"a", Int{2}}, {"share", 0.25F}}));
    struct stat status {};
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 077U, 0U) << "others can read it";

    const UserDefaults second(path);
    EXPECT_EQ(second.integerForKey("a"), 2);
    EXPECT_EQ(second.floatForKey("share"), 0.25F);
    EXPECT_FALSE(second.objectForKey("b"));
}

TEST_F(UserDefaultsTest, ChangesOfTwoProcessesMeet) {
    UserDefaults ours(path);
    ours.setInteger(1, "both");
    ours.setInteger(1, "kept");
    ASSERT_TRUE(ours.synchronize());
    ours.setInteger(2, "both");
    std::vector<std::string> fired;
    const auto fade = ours.addObserver("fade", [&] {
        fired.emplace_back(ours.boolForKey("fade") ? "fade on" : "fade off");
        EXPECT_TRUE(ours.synchronize());  // no lock is held
    });
    const auto both = ours.addObserver("both", [&] { fired.emplace_back("both"); });
    EXPECT_EQ(testing::runInChild({},
                                  [&] {
                                      UserDefaults theirs(path);
                                      theirs.setBool(true, "fade");
                                      theirs.setInteger(3, "both");
                                      return theirs.synchronize() ? "" : "not saved";
                                  }),
              "");
    ASSERT_TRUE(ours.synchronize());
    EXPECT_EQ(fired, std::vector<std::string>{"fade on"});
    EXPECT_EQ(parseSettings(contentOf(path)), (SettingValues{{"both", Int{2}}, {"fade", true}, {"kept", Int{1}}}));
    // A file that the user has thrown away is a file without settings.
    ASSERT_EQ(::unlink(path.c_str()), 0);
    ASSERT_TRUE(ours.synchronize());
    EXPECT_EQ(fired.size(), 3U);
    EXPECT_FALSE(ours.objectForKey("kept"));
}

TEST_F(UserDefaultsTest, ObserversHearChangesOnlyAndOnlyWhileTheyAreKept) {
    UserDefaults defaults(path);
    defaults.registerDefaults({{"fade", std::string("YES")}});
    int count = 0;
    int all = 0;
    auto observation = defaults.addObserver("fade", [&] { ++count; });
    const auto every = defaults.addObserverOfAll([&] { ++all; });
    defaults.setBool(false, "fade");
    defaults.setBool(false, "fade");
    defaults.setInteger(0, "other");
    EXPECT_EQ(count, 1);
    EXPECT_EQ(all, 2);
    observation.remove();
    defaults.setBool(true, "fade");
    EXPECT_EQ(count, 1);
}

TEST_F(UserDefaultsTest, DamagedFilesAreSetAsideAndDefaultsHold) {
    for (const std::string& bytes :
         {std::string("garbage"), std::string(), std::string(std::size_t{10'000'000}, 'x')}) {
        ASSERT_TRUE(tree.write("f/settings.ini", bytes));
        UserDefaults defaults(tree.at("f/settings.ini"));
        defaults.registerDefaults({{"a", Int{7}}});
        EXPECT_EQ(defaults.integerForKey("a"), 7);
        EXPECT_EQ(contentOf(tree.at("f/settings.ini.bad")), bytes);
        defaults.setInteger(8, "b");
        EXPECT_TRUE(defaults.synchronize());
        // Damaged while we run: what we know of it is written again.
        ASSERT_TRUE(tree.write("f/settings.ini", "x"));
        defaults.setInteger(9, "c");
        EXPECT_TRUE(defaults.synchronize());
        EXPECT_EQ(parseSettings(contentOf(tree.at("f/settings.ini"))), (SettingValues{{"b", Int{8}}, {"c", Int{9}}}));
    }
}

TEST_F(UserDefaultsTest, WhatCanNotBeSavedIsToldAndStaysUnsaved) {
    ASSERT_TRUE(tree.folder("a/settings.ini") && tree.write("b", "no folder") &&
                tree.write("c/settings.ini", "[Orrinvale]\nk = 1\n"));
    std::vector<std::string> places{tree.at("a/settings.ini"), tree.at("b/settings.ini")};
    if (::geteuid() == 0 && ::chown(tree.at("c/settings.ini").c_str(), 65534, 65534) == 0)
        places.push_back(tree.at("c/settings.ini"));
    for (const std::string& place : places) {
        UserDefaults defaults(place);
        EXPECT_EQ(defaults.integerForKey("k"), 0) << place;
        defaults.setInteger(5, "k");
        EXPECT_FALSE(defaults.synchronize()) << place;
        EXPECT_TRUE(defaults.isUnsaved() && defaults.integerForKey("k") == 5) << place;
    }
    EXPECT_EQ(contentOf(tree.at("c/settings.ini")), "[Orrinvale]\nk = 1\n");
    UserDefaults defaults(path);
    defaults.setValue(std::string(kSettingsTextLimit, 'x'), "much");
    EXPECT_FALSE(defaults.synchronize()) << "a file was written that would not be read";
    if (places.size() < 3) GTEST_SKIP() << "only root can make a file of another user";
}

TEST_F(UserDefaultsTest, ManyThreadsAndProcessesLoseNothing) {
    constexpr int kRounds = 20;
    const auto work = [](UserDefaults& defaults, const std::string& name) {
        bool good = true;
        for (int round = 1; round <= kRounds; ++round) {
            defaults.setInteger(round, name);
            good = defaults.integerForKey(name) == round && defaults.synchronize().has_value() && good;
        }
        return good;
    };
    UserDefaults ours(path);
    const auto observation = ours.addObserverOfAll([&] { (void)ours.floatForKey("a"); });
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (const char* name : {"a", "b"}) threads.emplace_back([&, name] { good += work(ours, name) ? 1 : 0; });
    for (const char* name : {"c", "d"})
        threads.emplace_back([&, name] {
            UserDefaults other(path);
            good += work(other, name) ? 1 : 0;
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(good, 4);
    const Int last = kRounds;
    EXPECT_EQ(parseSettings(contentOf(path)), (SettingValues{{"a", last}, {"b", last}, {"c", last}, {"d", last}}));
}

}  // namespace
}  // namespace orrinvale
