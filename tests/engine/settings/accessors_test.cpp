// The shared accessors, the snapshot, and the small dictionary, on files of the test's own.
#include <regex>

#include "engine/files/systemPlaces.h"
#include "engine/settings/BundleResources.h"
#include "engine/settings/KeyedArchive.h"
#include "engine/settings/NetworkProbe.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/settings/SettingTable.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/SettingsText.h"
#include "engine/settings/TCPublicUtilities.h"
#include "engine/settings/UserDefaults.h"
#include "engine/settings/UserFolders.h"
#include "engine/settings/UtilityFunctionOfData.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using Int = std::int64_t;

/// The standard defaults of a fresh account.
struct AccessorsTest : ::testing::Test {
    AccessorsTest() { UserDefaults::setStandardUserDefaults(&defaults); }
    ~AccessorsTest() override { UserDefaults::setStandardUserDefaults(nullptr); }
    TestTree tree;
    UserDefaults defaults{tree.at("settings.ini")};
};

// A row of the guide's tables of settings: "| `key` | meaning | `default` ... |".
std::map<std::string, std::string> defaultsInTheGuide() {
    std::map<std::string, std::string> rows;
    std::istringstream guide(contentOf(ORRINVALE_SOURCES "/../docs/user-guide.md"));
    const std::regex row("\\| `(\\w+)` \\| [^|]+ \\| (?:`([^`]+)`|none)[^|]*\\|");
    bool isInSettings = false;
    for (std::string line; std::getline(guide, line);) {
        if (line.starts_with("## ")) isInSettings = line == "## Settings";
        std::smatch found;
        if (isInSettings && std::regex_match(line, found, row)) rows[found[1]] = found[2];
    }
    return rows;
}

TEST_F(AccessorsTest, TheGuideTellsEveryKeyAndItsDefault) {
    PreferenceViewController::initialize();
    registerPreferencesWindowDefaults();
    std::map<std::string, std::string> expected;
    const std::string keys = contentOf(ORRINVALE_SOURCES "/engine/settings/SettingsKeys.h");
    const std::regex key("const char\\* \\w+ =\\s+\"(\\w+)\"");
    for (std::sregex_iterator each(keys.begin(), keys.end(), key); each != std::sregex_iterator();
         ++each) {
        const std::string name = (*each)[1];
        const SettingObject value = defaults.objectForKey(name);
        const bool isText = value && std::holds_alternative<std::string>(*value);
        expected[name] = !value ? ""
                         : isText
                             ? (boolOf(*value) ? "true" : "false")
                             : printSettings({{"v", *value}}).substr(printSettings({}).size() + 4);
        if (expected[name].ends_with('\n')) expected[name].pop_back();
    }
    EXPECT_GT(expected.size(), 30U);
    EXPECT_EQ(defaultsInTheGuide(), expected);
    for (const SettingRule& rule : settingTable()) EXPECT_EQ(expected.erase(rule.key), 1U);
    EXPECT_THAT(expected, IsEmpty()) << "every key has a rule";
    EXPECT_FALSE(defaults.isUnsaved());
}

TEST_F(AccessorsTest, CategoriesKeepTheirNumberAndCountAsThere) {
    using P = PreferenceViewController;
    struct Row {
        Result<void> (*set)(SettingValue);
        SettingObject (*get)();
        const char* key;
    };
    for (const Row& row :
         {Row{&P::setSystemCashesClicked, &P::getSystemCashesClicked, "SystemCaches"},
          Row{&P::setUserCashesClicked, &P::getUserCashesClicked, "UserCaches"},
          Row{&P::setSystemLogsClicked, &P::getSystemLogsClickedClicked, "SystemLogs"},
          Row{&P::setUserLogsClicked, &P::getUserLogsClicked, "UserLogs"},
          Row{&P::setUserTrashClicked, &P::getUserTrashClicked, "UserTrash"},
          Row{&P::setUserDownLoadsFolderClicked, &P::getUserDownLoadsFoldeClicked,
              "UserDownloads"}})
        for (const Int state : {Int{2}, Int{0}}) {
            EXPECT_TRUE(row.set(state)) << row.key;
            EXPECT_EQ(UserDefaults(defaults.path()).objectForKey(row.key), SettingObject(state))
                << row.key;
            EXPECT_EQ(row.get(), SettingObject(state)) << row.key;
            EXPECT_TRUE(row.get()) << "a stored 0 is there, " << row.key;
        }
}

TEST_F(AccessorsTest, OtherAccessors) {
    using P = PreferenceViewController;
    EXPECT_EQ(P::getUninstallClicked() + P::getFreeSpaceClicked(), 0);
    P::setUninstallClicked(0);
    P::setFreeSpaceClicked(256);
    EXPECT_EQ(P::getUninstallClicked() + P::getFreeSpaceClicked(), 2);
    EXPECT_EQ(defaults.integerForKey("ZvFreeSpace"), 256);
    P::setLoginItemIsHide(0);
    EXPECT_NE(P::getLoginItemIsHide(), 0);
    EXPECT_FALSE(defaults.boolForKey("ZvLoginItemIsHide"));
    P::setLastClickRow(Int{4});
    EXPECT_EQ(P::getLastClickRow(), 4);
    EXPECT_TRUE(defaults.isUnsaved()) << "one of these has synchronized";
    EXPECT_TRUE(P::setHiddenStatusItem(true));
    EXPECT_TRUE(P::getHiddenStatusItem() &&
                UserDefaults(defaults.path()).boolForKey("ZvShowStatusItem"));
    EXPECT_TRUE(P::compareBeforeRemoving());
    EXPECT_TRUE(P::setCompareBeforeRemoving(false));
    EXPECT_TRUE(!P::compareBeforeRemoving() &&
                UserDefaults(defaults.path()).objectForKey("compareBeforeRemoving"));
}

TEST(UserFolders, EachBelowItsOwnHome) {
    const TestTree tree;
    struct Row {
        std::string (*folder)();
        const char* variable;
        const char* usual;
    };
    const char* const before = std::getenv("HOME");
    const std::string home = before != nullptr ? before : "";
    ::setenv("HOME", tree.path().c_str(), 1);
    for (const Row& row : {Row{&userConfigFolder, "XDG_CONFIG_HOME", ".config"},
                           Row{&userDataFolder, "XDG_DATA_HOME", ".local/share"},
                           Row{&userStateFolder, "XDG_STATE_HOME", ".local/state"},
                           Row{&userCacheFolder, "XDG_CACHE_HOME", ".cache"}}) {
        ::unsetenv(row.variable);
        EXPECT_EQ(row.folder(), tree.at(std::string(row.usual) + "/com.kelpford.Orrinvale"));
        ::setenv(row.variable, tree.at("own").c_str(), 1);
        EXPECT_EQ(row.folder(), tree.at("own/com.kelpford.Orrinvale")) << row.variable;
        ::unsetenv(row.variable);
    }
    ::setenv("HOME", home.c_str(), 1);
}

TEST_F(AccessorsTest, SnapshotAndItsArchive) {
    PreferenceViewController::initialize();
    defaults.setInteger(2, ZvUserTrashKey);
    defaults.setInteger(3, ZvDisplayTypeKey);
    const auto items = UtilityFunctionOfData::getMyData().readerTxtForSettingValue();
    defaults.setInteger(0, ZvUserTrashKey);
    EXPECT_EQ(items->errorValue, "0.100000");
    EXPECT_EQ(items->graphic, "");
    EXPECT_EQ(items->digital + items->systemCaches + items->userCaches + items->systemLogs +
                  items->userLogs + items->userTrash + items->downloads,
              "3111120");
    KeyedArchive archive;
    items->encodeWithCoder(archive);
    const auto again = KeyedArchive::withData(archive.data());
    ASSERT_TRUE(again);
    EXPECT_EQ(SettingItems(*again), *items);
    for (const char* key : {"ErrorValue", "Graphic", "Digital", "SystemCache", "UserCaches",
                            "SystemLog", "UserLogs", "UserTrash", "Downloads"})
        EXPECT_TRUE(again->decodeObjectForKey(key)) << key;
    EXPECT_EQ(SettingItems(KeyedArchive()), SettingItems());
}

TEST(UtilityFunctionOfData, FormBodies) {
    const auto& data = UtilityFunctionOfData::getMyData();
    EXPECT_FALSE(data.parseFormBodyWith(std::nullopt));
    using Pairs = std::map<std::string, std::string>;
    EXPECT_EQ(data.parseFormBodyWith(""), Pairs{});
    EXPECT_EQ(data.parseFormBodyWith("a=1&b&c=1=2&&a=%20&=x&y="),
              (Pairs{{"a", "%20"}, {"", "x"}, {"y", ""}}));
    EXPECT_EQ(UtilityFunctionOfData::setAttributeString("t"),
              (AttributedText{"t", "Lucida Grande", 11.0}));
}

/// The user's data folder of a fresh account.
struct StringMessageTest : ::testing::Test {
    StringMessageTest() { ::setenv("XDG_DATA_HOME", tree.path().c_str(), 1); }
    ~StringMessageTest() override { ::unsetenv("XDG_DATA_HOME"); }
    TestTree tree;
    std::string copy = tree.at("com.kelpford.Orrinvale/StringMessage.plist");
};

TEST_F(StringMessageTest, ACopyIsMadeByTheFirstWrite) {
    EXPECT_FALSE(TCPublicUtilities::getUpDataTimeStr());
    const auto version = TCPublicUtilities::versionCheck();
    EXPECT_GT(version.value_or(0), 0);
    EXPECT_NE(::access(copy.c_str(), F_OK), 0);
    ASSERT_TRUE(TCPublicUtilities::writeUpDataTimeStr("2013-04-09 <&> 10:20"));
    EXPECT_EQ(TCPublicUtilities::getUpDataTimeStr(), "2013-04-09 <&> 10:20");
    // A copy from an older program does not hide this one's version, and keeps what else it holds.
    auto old = PropertyList::read(copy);
    ASSERT_TRUE(old);
    old->setString("1", "VersionCheck");
    old->setString("kept", "more");
    ASSERT_TRUE(tree.write("com.kelpford.Orrinvale/StringMessage.plist", old->toXml()));
    EXPECT_EQ(TCPublicUtilities::versionCheck(), version);
    ASSERT_TRUE(TCPublicUtilities::writeUpDataTimeStr("later"));
    EXPECT_EQ(PropertyList::read(copy)->stringForKey("more"), "kept");
}

TEST_F(StringMessageTest, DamagedCopyAndNoPlaceToWrite) {
    ASSERT_TRUE(tree.write("com.kelpford.Orrinvale/StringMessage.plist", "<plist"));
    EXPECT_FALSE(TCPublicUtilities::getUpDataTimeStr());
    EXPECT_EQ(::access((copy + ".bad").c_str(), F_OK), 0);
    ASSERT_TRUE(tree.folder("com.kelpford.Orrinvale/StringMessage.plist"));
    EXPECT_FALSE(TCPublicUtilities::writeUpDataTimeStr("t"));
    EXPECT_TRUE(TCPublicUtilities::versionCheck());
}

TEST(TCPublicUtilities, AsksTheVendorsSite) {
    struct Probe final : NetworkProbe {
        bool isAnswered(const std::string& address, milliseconds timeOut,
                        const std::function<bool()>&) const override {
            return address == "https://www.kelpford.com/" && timeOut == 5s;
        }
    };
    EXPECT_FALSE(TCPublicUtilities::isCanBeUseNetWork());
    const Probe probe;
    TCPublicUtilities::setNetworkProbe(&probe);
    EXPECT_TRUE(TCPublicUtilities::isCanBeUseNetWork());
    TCPublicUtilities::setNetworkProbe(nullptr);
}

TEST(BundleResources, SystemFileIsNumberedWithoutAGap) {
    const auto list = propertyListOfResource("SystemFile");
    ASSERT_TRUE(list);
    std::set<std::string> paths;
    for (std::size_t i = 0; i < list->count(); ++i) {
        const auto path = list->stringForKey(std::to_string(i));
        ASSERT_TRUE(path) << i;
        EXPECT_TRUE(path->starts_with('/') && (path->size() == 1 || !path->ends_with('/')))
            << *path;
        paths.insert(*path);
    }
    EXPECT_EQ(paths.size(), list->count());
    const auto places = systemPlaces();  // what removals refuse
    EXPECT_EQ(paths, std::set<std::string>(places.begin(), places.end()));
    for (const char* path : {"/", "/bin", "/boot", "/dev", "/etc", "/home", "/lib", "/proc",
                             "/root", "/run", "/sbin", "/sys", "/usr", "/var"})
        EXPECT_TRUE(paths.contains(path)) << path;
    EXPECT_FALSE(propertyListOfResource("NoSuch"));
}

}  // namespace
}  // namespace orrinvale
