// The search for bundles, and the records that it makes.
#include "engine/uninstall/UninstallAppInfo.h"
#include "engine/uninstall/inventoryStamp.h"
#include "platform/linux/LinuxApplications.h"
#include "support/MadeUpMachine.h"
#include "support/test.h"

namespace orrinvale {
namespace {

std::string list(const std::string& identifier, const std::string& version = "1.0") {
    return R"(<?xml version="1.0"?><plist version="1.0"><dict><key>CFBundleIdentifier</key><string>)" +
           identifier + "</string><key>CFBundleShortVersionString</key><string>" + version +
           "</string></dict></plist>";
}

TEST(Inventory, FindsBundlesInTheFourPlacesAndReadsTheirLists) {
    TestTree tree;
    const auto bundle = [&](const std::string& path, const std::string& text) {
        (void)tree.write(path + "/Contents/Info.plist", text);
    };
    bundle("Applications/a/deep/er/One.app", list("com.example.One", "2.5"));
    bundle("Applications/a/deep/er/One.app/Contents/Inner.app", list("inner"));
    bundle("Applications/Caps.App/Inside.app", list("com.apple.Inside"));
    bundle("Network/Applications/NoList.app", "garbage");
    bundle("Network/Applications/Large.app", list("com.large") + std::string(10'000'000, ' '));
    bundle("home/Applications/Near.app", list("com.apple"));
    (void)tree.write("Applications/file.app", "no folder");
    (void)tree.symlink("..", "Applications/a/loop");
    (void)tree.symlink("../home/Applications/Near.app", "Applications/Linked.app");
    const LinuxFileSystem files;
    const UninstallAppDelegate search(files, tree.at("home"), nullptr, tree.path());
    search.getAppInfo(nullptr);
    const UninstallAppInfo info(search);
    std::map<std::string, std::string> found;
    for (const auto& each : const_cast<UninstallAppInfo&>(info).allAppsInfo()) {
        found[each->name] = each->bundleID.value_or("nil") + ' ' +
                            each->bundleVersion.value_or("nil") + ' ' + each->isSystemAppStr;
        EXPECT_TRUE(each->date && each->fileSize.empty() && each->fileSizeNum == 0) << each->name;
    }
    const std::map<std::string, std::string> expected{
        {"One", "com.example.One 2.5 NO"}, {"Inside", "com.apple.Inside 1.0 YES"},
        {"NoList", "nil nil NO"},          {"Large", "nil nil NO"},
        {"Near", "com.apple 1.0 NO"},      {"Linked", "com.apple 1.0 NO"}};
    EXPECT_EQ(found, expected);
}

TEST(Inventory, ItsStampIsAnotherWhereverSomethingIsInstalled) {
    testing::MadeUpMachine machine;
    machine.places.flatpaks.push_back(machine.tree.at("disk/flatpak"));
    const LinuxFileSystem files;
    const LinuxApplications applications(machine.places);
    const auto stamp = [&] { return inventoryStamp(files, machine.places.home, &applications); };
    for (const char* const added :
         {"home/.local/share/applications/x.desktop", "home/.local/share/flatpak/.changed",
          "disk/flatpak/.changed", "usr/share/applications/x.desktop", "dpkg/status",
          "home/Downloads/x.AppImage", "home/Applications/x.app", "opt/game"}) {
        const std::string before = stamp();
        (void)machine.tree.write(added, "1");
        EXPECT_NE(stamp(), before) << added;
        EXPECT_EQ(stamp(), stamp());
    }
    // Written anew in their places, which changes no folder; a download that grows is nobody's.
    for (const auto& [written, isStamped] :
         std::map<const char*, bool>{{"usr/share/applications/x.desktop", true},
                                     {"home/Downloads/x.AppImage", true},
                                     {"home/Downloads/film.part", false}}) {
        (void)machine.tree.write(written, "1");
        const std::string before = stamp();
        std::ofstream(machine.tree.at(written), std::ios::app) << "more";
        EXPECT_EQ(stamp() != before, isStamped) << written;
    }
}

TEST(Inventory, TellsWhatItHasAfterEachKind) {
    testing::MadeUpMachine machine;
    const TestTree& tree = machine.tree;
    (void)machine.tree.write("Applications/One.app/Contents/Info.plist", list("com.example.One"));
    machine.program("usr/bin/tool");
    machine.entry("tool", "Exec=tool");
    machine.package("tool", "", {"usr/bin/tool", "usr/share/applications/tool.desktop"});
    machine.program("opt/game/bin/game");
    machine.entry("game", "Exec=" + tree.at("opt/game/bin/game"));
    const LinuxFileSystem files;
    const LinuxApplications applications(machine.places);
    Strings told;
    AppItemsArray last;
    const UninstallAppInfo info(
        UninstallAppDelegate(files, tree.at("home"), &applications, tree.path()),
        [&](const AppItemsArray& soFar) {
            EXPECT_TRUE(std::equal(last.begin(), last.end(), soFar.begin())) << "other objects";
            last = soFar;
            std::string names;
            for (const auto& each : soFar) names += each->name + ' ';
            if (told.empty() || told.back() != names) told.push_back(names);
        });
    EXPECT_THAT(told, ElementsAre("One ", "One tool ", "One tool game "));
    EXPECT_EQ(const_cast<UninstallAppInfo&>(info).allAppsInfo(), last);
}

TEST(Inventory, ACopyKeepsOnlyTheTextOfBeingOfTheSystem) {
    AppItems item;
    EXPECT_EQ(item.bundleID, "");
    item.isSystemApp = item.bIsSelected = true;
    item.isSystemAppStr = "YES";
    const AppItems copy = item.copyWithZone();
    EXPECT_FALSE(copy.isSystemApp || copy.bIsSelected);
    EXPECT_EQ(copy.isSystemAppStr, "YES");
}

}  // namespace
}  // namespace orrinvale
