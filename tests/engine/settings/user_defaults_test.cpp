// Settings on a real file: what is written, what another process does to it, and damaged files.
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingsText.h"
#include "engine/settings/UserDefaults.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using Int = std::int64_t;

SettingValues storedIn(const std::string& path) {
    return parseSettings(contentOf(path)).value_or(ParsedSettings{}).values;
}

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
    EXPECT_EQ(storedIn(path), (SettingValues{{"a", Int{2}}, {"share", 0.25F}}));
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
    EXPECT_EQ(storedIn(path), (SettingValues{{"both", Int{2}}, {"fade", true}, {"kept", Int{1}}}));
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
    ASSERT_TRUE(tree.write("f/settings.ini.bad", "older") && tree.folder("f/settings.ini.bad.2"));
    int kept = 2;
    for (const std::string& bytes :
         {std::string("garbage"), std::string(), std::string(std::size_t{10'000'000}, 'x')}) {
        ASSERT_TRUE(tree.write("f/settings.ini", bytes));
        UserDefaults defaults(tree.at("f/settings.ini"));
        defaults.registerDefaults({{"a", Int{7}}});
        EXPECT_EQ(defaults.integerForKey("a"), 7);
        EXPECT_EQ(contentOf(tree.at("f/settings.ini.bad." + std::to_string(++kept))), bytes);
        defaults.setInteger(8, "b");
        EXPECT_TRUE(defaults.synchronize());
        // Damaged while we run: what we know of it is written again.
        ASSERT_TRUE(tree.write("f/settings.ini", "x"));
        defaults.setInteger(9, "c");
        EXPECT_TRUE(defaults.synchronize());
        EXPECT_EQ(contentOf(tree.at("f/settings.ini.bad." + std::to_string(++kept))), "x");
        EXPECT_EQ(storedIn(tree.at("f/settings.ini")),
                  (SettingValues{{"b", Int{8}}, {"c", Int{9}}}));
    }
    EXPECT_EQ(contentOf(tree.at("f/settings.ini.bad")), "older");
}

TEST_F(UserDefaultsTest, OfAFileWithABadLineTheOthersHoldAndACopyIsKeptOnce) {
    const std::string text = "[Orrinvale]\nSpaceAlarm = 0,2\nfade = perhaps\nmine = 3\n";
    ASSERT_TRUE(tree.write("f/settings.ini", text) && tree.write("f/settings.ini.bad", "older"));
    const std::string file = tree.at("f/settings.ini");
    testing::LogLines log;
    UserDefaults defaults(file);
    EXPECT_EQ(defaults.floatForKey("SpaceAlarm"), 0.2F);
    EXPECT_EQ(defaults.integerForKey("mine"), 3);
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_EQ(
        log.lines.front(),
        file + ": line 3 can not be read, the others hold. A copy is kept as " + file + ".bad.2.");
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(contentOf(file), text) << "reading alone changes nothing";
    defaults.setInteger(4, "mine");
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(storedIn(file), (SettingValues{{"SpaceAlarm", 0.2F}, {"mine", Int{4}}}));
    EXPECT_EQ(contentOf(file + ".bad.2"), text);
    EXPECT_EQ(contentOf(file + ".bad"), "older");
    EXPECT_FALSE(std::filesystem::exists(file + ".bad.3"));
    EXPECT_EQ(log.lines.size(), 1U);
}

// Without a copy a save would be the end of what somebody typed.
TEST_F(UserDefaultsTest, ABadLineThatCanNotBeKeptIsNotWrittenOver) {
    const std::string text = "[Orrinvale]\nmine = 3\nfade = perhaps\n";
    ASSERT_TRUE(tree.write("f/settings.ini", text) && tree.folder("f/settings.ini.bad.new"));
    UserDefaults defaults(tree.at("f/settings.ini"));
    EXPECT_EQ(defaults.integerForKey("mine"), 3);
    defaults.setInteger(4, "mine");
    EXPECT_FALSE(defaults.synchronize());
    EXPECT_EQ(contentOf(tree.at("f/settings.ini")), text);
}

TEST_F(UserDefaultsTest, OnesOwnLinkIsFollowedToOnesOwnFile) {
    ASSERT_TRUE(tree.write("dots/real.ini", "[Orrinvale]\nk = 1\n") &&
                tree.symlink("real.ini", "dots/middle") && tree.folder("f") &&
                tree.symlink("../dots/middle", "f/settings.ini") &&
                tree.symlink("../dots/none.ini", "f/new.ini") && tree.symlink("loop", "f/loop"));
    UserDefaults defaults(tree.at("f/settings.ini"));
    EXPECT_EQ(defaults.integerForKey("k"), 1);
    defaults.setInteger(2, "k");
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(storedIn(tree.at("dots/real.ini")), (SettingValues{{"k", Int{2}}}));
    EXPECT_TRUE(std::filesystem::is_symlink(tree.at("f/settings.ini")) &&
                std::filesystem::is_symlink(tree.at("dots/middle")));
    UserDefaults dangling(tree.at("f/new.ini"));
    dangling.setInteger(3, "k");
    EXPECT_TRUE(dangling.synchronize());
    EXPECT_EQ(storedIn(tree.at("dots/none.ini")), (SettingValues{{"k", Int{3}}}));
    UserDefaults endless(tree.at("f/loop"));
    endless.setInteger(4, "k");
    EXPECT_FALSE(endless.synchronize());
    if (::geteuid() != 0) GTEST_SKIP() << "only root can make files of another user";
    for (const char* name : {"dots/real.ini", "f/settings.ini"}) {
        ASSERT_EQ(::lchown(tree.at(name).c_str(), 65534, 65534), 0);
        UserDefaults others(tree.at("f/settings.ini"));
        EXPECT_EQ(others.integerForKey("k"), 0) << name;
        others.setInteger(5, "k");
        EXPECT_FALSE(others.synchronize()) << name;
        EXPECT_EQ(storedIn(tree.at("dots/real.ini")), (SettingValues{{"k", Int{2}}})) << name;
        ASSERT_EQ(::lchown(tree.at(name).c_str(), 0, 0), 0);
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
            good =
                defaults.integerForKey(name) == round && defaults.synchronize().has_value() && good;
        }
        return good;
    };
    UserDefaults ours(path);
    const auto observation = ours.addObserverOfAll([&] { (void)ours.floatForKey("a"); });
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (const char* name : {"a", "b"})
        threads.emplace_back([&, name] { good += work(ours, name) ? 1 : 0; });
    for (const char* name : {"c", "d"})
        threads.emplace_back([&, name] {
            UserDefaults other(path);
            good += work(other, name) ? 1 : 0;
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(good, 4);
    const Int last = kRounds;
    EXPECT_EQ(storedIn(path), (SettingValues{{"a", last}, {"b", last}, {"c", last}, {"d", last}}));
}

}  // namespace
}  // namespace orrinvale
