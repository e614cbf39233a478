// Removal of applications: what a bundle takes along, and the order of kinds.
#include "engine/cleaning/QnAuthorization.h"
#include "engine/removal/TrashDoor.h"
#include "engine/uninstall/PlannedUninstallWork.h"
#include "engine/uninstall/UninstallAppInfo.h"
#include "engine/uninstall/UninstallRun.h"
#include "platform/fake/FakeAuthorization.h"
#include "platform/linux/LinuxApplications.h"
#include "platform/linux/LinuxPermissions.h"
#include "support/MadeUpMachine.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using State = ApplicationRemoval::State;
const std::atomic<bool> never{false};

std::shared_ptr<AppItems> item(ApplicationType type, const std::string& id,
                               const std::string& path = {}) {
    ApplicationRecord record;
    record.type = type;
    record.id = record.name = id;
    record.path = path;
    return UninstallAppDelegate::itemOf(std::move(record));
}

TEST(Uninstall, ABundleTakesWhatBeginsWithItsIdentifierAndIsNobodyElses) {
    struct Case {
        std::string identifier;
        Strings others;
        Strings expected;
    };
    TestTree tree;
    const Strings names{"com.example.App",
                        "com.example.App.plist",
                        "com.example.Application",
                        "com.example.Apple",
                        "com",
                        "com.x",
                        "com..x.plist",
                        "Com.example.App"};
    for (const std::string& each : names) (void)tree.write("L/" + each, "1");
    const LinuxFileSystem files;
    const Case cases[] = {
        {"com.example.App", {}, {names[0], names[1], names[2], names[3]}},
        {"com.example.App", {"com.example.Application"}, {names[0], names[1], names[3]}},
        {"com.example.App", {"com.example.App"}, {}},  // a copy of it stays
        {"com.example.App", {"com.example"}, {names[0], names[1], names[2], names[3]}},
        {"com.example.App", {"com.example.Ap"}, {names[0], names[1], names[2], names[3]}},
        {"com.example.App.plist.x", {}, {}},
        {"com", {}, {"com"}},
        {"com.x", {}, {"com.x"}},
        {"com..x", {}, {}},
        {"com.example", {}, {}},
        {"", {}, {}},
    };
    for (const Case& each : cases) {
        Strings found;
        for (const std::string& path :
             UninstallApp(files, "/none", each.others)
                 .getFilesByBundle(each.identifier, {tree.at("L"), tree.at("L/../L")}))
            found.push_back(path.substr(path.rfind('/') + 1));
        std::sort(found.begin(), found.end());
        Strings expected = each.expected;
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(found, expected) << each.identifier;
    }
}

class Uninstalling : public ::testing::Test {
protected:
    Uninstalling() {
        right.freeAuthorization();
        right.setParts({&system, &files, &permissions, {}});
        parts = {&files, &applications, tree.at("home"), tree.path()};
        doors = UninstallDoors::usual(parts);
        doors.trash = [this]() -> std::unique_ptr<RemovalDoor> {
            FolderVariables variables;
            variables.home = tree.at("home");
            variables.user = ::getuid();
            return std::make_unique<TrashDoor>(files, ProtectedPlaces(), variables);
        };
    }
    ~Uninstalling() override { right.setParts({}); }

    UninstallOutcome run(const AppItemsArray& apps, const std::vector<Leftover>& left = {}) {
        return runUninstall(parts, planUninstall(parts, apps, apps, never), left, doors, never, {});
    }

    testing::MadeUpMachine machine;
    TestTree& tree = machine.tree;
    LinuxFileSystem files;
    LinuxPermissions permissions;
    FakeAuthorization system;
    LinuxApplications applications{machine.places};
    QnAuthorization& right = QnAuthorization::shareQnAuthorization();
    UninstallParts parts;
    UninstallDoors doors;
};

TEST_F(Uninstalling, StopsABundleAtTheFirstEntryThatStays) {
    for (const char* const name :
         {"Library/com.e.App", "home/Library/Caches/com.e.App/x", "Apps/App.app/x"})
        (void)tree.write(name, "1");
    (void)tree.folder("home/Library/Preferences/com.e.App.plist");
    const auto app = item(ApplicationType::App, "com.e.App", tree.at("Apps/App.app"));
    const UninstallApp bundles(files, parts.home, {}, parts.root);
    auto plan = bundles.planOf(*app);
    ASSERT_EQ(plan.size(), 4U);
    EXPECT_EQ(plan.front().path, tree.at("Library/com.e.App"));
    EXPECT_EQ(plan.back().path, app->path);
    plan[1].identity.inode += 1;  // another folder has come into its place
    std::string reason;
    EXPECT_FALSE(
        UninstallApp::uninstallApp(*app, plan, *QnAuthorization::makeDoor(), never, &reason));
    EXPECT_EQ(reason, "changed since the scan");
    EXPECT_FALSE(isThere(tree.at("Library/com.e.App")));
    EXPECT_TRUE(isThere(tree.at("home/Library/Caches/com.e.App")) && isThere(app->path));
    EXPECT_TRUE(bundles.uninstallApp(*app));
    EXPECT_FALSE(isThere(app->path) || isThere(tree.at("home/Library/Caches/com.e.App")));
}

// Each bundle takes what is its own, and of copies the last that goes what they share.
TEST_F(Uninstalling, OfSeveralBundlesTakesNothingThatOneThatStaysNeeds) {
    struct Case {
        const char* name;
        Strings identifiers;
        std::set<std::size_t> ticked, locked;  // that one is replaced meanwhile, and stays
        Strings left;                          // in the library
    };
    const std::string app = "com.e.App";
    const std::string longer = "com.e.App.Helper";
    const Case cases[] = {
        {"both copies", {app, app}, {0, 1}, {}, {}},
        {"one copy of two", {app, app}, {0}, {}, {app, longer}},
        {"the first copy stays", {app, app}, {0, 1}, {0}, {app, longer}},
        {"the last copy stays", {app, app}, {0, 1}, {1}, {}},
        {"both of two names", {app, longer}, {0, 1}, {}, {}},
        {"the longer name stays", {app, longer}, {0, 1}, {1}, {}},
        {"the vendor's own is ticked",
         {"com.kelpford.Tide", "com.kelpford.TidewrackPro"},
         {0, 1},
         {},
         {"com.kelpford.TidewrackPro"}},
    };
    for (const Case& each : cases) {
        std::filesystem::remove_all(tree.at("home/Library"));
        AppItemsArray all, ticked;
        for (std::size_t i = 0; i < each.identifiers.size(); ++i) {
            const std::string path = "Apps/" + std::to_string(i) + ".app";
            (void)tree.write(path + "/x", "1");
            all.push_back(item(ApplicationType::App, each.identifiers[i], tree.at(path)));
            all.back()->bundleVersion = "3.0";
            if (each.ticked.contains(i)) ticked.push_back(all.back());
            for (const std::string& name : {each.identifiers[i], longer})
                if (name.starts_with(each.identifiers[0]))
                    (void)tree.write("home/Library/" + name, "1");
        }
        UninstallPlan plan = planUninstall(parts, ticked, all, never);
        for (const std::size_t locked : each.locked)
            plan.apps[locked].entries.back().identity.inode += 1;
        (void)runUninstall(parts, plan, {}, doors, never, {});
        EXPECT_EQ(namesIn(tree.at("home/Library")), each.left) << each.name;
    }
}

TEST_F(Uninstalling, LeavesAFolderInWhichSomethingElseLies) {
    machine.program("opt/maker/one/run");
    machine.program("opt/maker/two/run");
    machine.program("opt/maker/paid/run");
    machine.program("opt/other/run");
    for (const char* const name : {"maker/one", "maker/two", "maker/paid", "other"})
        machine.entry(std::filesystem::path(name).filename(),
                      "Exec=" + tree.at(std::string("opt/") + name + "/run"));
    const auto plan = [&] {
        const AppItemsArray apps =
            UninstallAppInfo(UninstallAppDelegate(files, parts.home, &applications, parts.root))
                .allAppsInfo();
        Strings out;
        for (const auto& each : planUninstall(parts, apps, apps, never).apps)
            out.push_back(each.item->name + ": " + each.refusal +
                          ::testing::PrintToString(each.along));
        return out;
    };
    EXPECT_THAT(plan(), ElementsAre(R"(one: { "paid", "two" })", "other: {}"));
    machine.package("paid", "", {"opt/maker/paid/run", "usr/share/applications/paid.desktop"});
    machine.package("part", "", {"opt/other/data/x"});
    EXPECT_THAT(plan(), ElementsAre(HasSubstr("paid: "), "one: paid lies in its folder{}",
                                    HasSubstr("Files of the package part")));
    (void)tree.write("dpkg/status", "");
    EXPECT_THAT(plan(), ::testing::Each(HasSubstr("Nobody can tell whether a package")));
}

TEST_F(Uninstalling, MovesProgramsToTheTrashAndLeftoversOnlyOfWhatIsGone) {
    machine.program("opt/game/bin/game");
    machine.program("opt/stays/bin/stays");
    for (const char* const name : {"game", "stays"})
        machine.entry(name, "Exec=" + tree.at(std::string("opt/") + name + "/bin/" + name));
    AppItemsArray apps =
        UninstallAppInfo(UninstallAppDelegate(files, parts.home, &applications, parts.root))
            .allAppsInfo();
    ASSERT_EQ(apps.size(), 2U);
    std::vector<Leftover> left;
    const std::array<std::string, 4> folders{"game", "stays", "gone", "namesake"};
    for (const std::string& folder : folders) {
        (void)tree.write("home/.config/" + folder + "/x", "1");
        Leftover& each = left.emplace_back();
        each.path = tree.at("home/.config/" + folder);
        // Of an AppImage of the game's name, which is not on its way out.
        const bool isNamesake = folder == "namesake";
        each.of = isNamesake ? "game" : folder;
        each.ownerType = isNamesake ? ApplicationType::AppImage : ApplicationType::Folder;
        each.ownerPath = isNamesake ? "/x" : tree.at("opt/" + folder);
        each.isInstalled = folder != "gone";
        each.identity = EntryIdentity::of(attributesOf(each.path));
    }
    const auto plan = planUninstall(parts, apps, apps, never);
    ASSERT_EQ(plan.apps[0].entries.size(), 2U) << "the folder and its entry";
    (void)tree.write("elsewhere", "");
    std::filesystem::rename(tree.at("opt/stays"), tree.at("opt/other"));
    (void)tree.folder("opt/stays");
    const auto outcome = runUninstall(parts, plan, left, doors, never, {});
    EXPECT_FALSE(outcome.worked());
    EXPECT_FALSE(outcome.hasDoorFailed()) << "a password would help nothing";
    EXPECT_THAT(namesIn(tree.at("home/.config")), ElementsAre("namesake", "stays"));
    EXPECT_THAT(namesIn(tree.at("usr/share/applications")), ElementsAre("stays.desktop"));
    EXPECT_THAT(namesIn(tree.at("home/.local/share/Trash/files")),
                ElementsAre("game", "game 2", "game.desktop", "gone"));
}

TEST_F(Uninstalling, TellsOfLeftoversThatAStopKeeps) {
    std::vector<Leftover> left(2);
    for (Leftover& each : left) {
        const std::string name = &each == left.data() ? "home/.config/a" : "home/.config/b";
        (void)tree.write(name, "1");
        each.path = tree.at(name);
        each.identity = EntryIdentity::of(attributesOf(each.path));
    }
    std::atomic<bool> stop{false};
    const auto outcome = runUninstall(parts, {}, left, doors, stop,
                                      [&](const std::string& /*name*/) { stop = true; });
    Strings told;
    for (const StayedEntry& each : outcome.leftovers) told.push_back(each.path + each.reason);
    ASSERT_FALSE(told.empty());
    EXPECT_EQ(told.back(), left[1].path + "stopped");
    for (const Leftover& each : left)
        EXPECT_EQ(isThere(each.path), std::ranges::any_of(told, [&](const std::string& line) {
                      return line.starts_with(each.path);
                  }));
}

TEST_F(Uninstalling, AProgramIsGoneThoughAnEntryOfItsStays) {
    machine.program("opt/game/bin/game");
    machine.entry("game", "Exec=" + tree.at("opt/game/bin/game"));
    const AppItemsArray apps =
        UninstallAppInfo(UninstallAppDelegate(files, parts.home, &applications, parts.root))
            .allAppsInfo();
    UninstallPlan plan = planUninstall(parts, apps, apps, never);
    ASSERT_EQ(plan.apps.at(0).entries.size(), 2U);
    plan.apps[0].entries[1].identity.inode += 1;
    const auto outcome = runUninstall(parts, plan, {}, doors, never, {});
    EXPECT_TRUE(outcome.worked());
    EXPECT_EQ(outcome.apps[0].removal.note,
              plan.apps[0].entries[1].path + " stays: changed since the scan");
    EXPECT_FALSE(isThere(tree.at("opt/game")));
}

TEST_F(Uninstalling, WhatSomebodyElseHasMovedAwayIsGone) {
    machine.program("opt/game/bin/game");
    machine.entry("game", "Exec=" + tree.at("opt/game/bin/game"));
    AppItemsArray apps =
        UninstallAppInfo(UninstallAppDelegate(files, parts.home, &applications, parts.root))
            .allAppsInfo();
    const auto plan = planUninstall(parts, apps, apps, never);
    std::filesystem::remove(tree.at("usr/share/applications/game.desktop"));
    EXPECT_TRUE(runUninstall(parts, plan, {}, doors, never, {}).worked());
    EXPECT_FALSE(isThere(tree.at("opt/game")));
    machine.entry("game", "Exec=x");
    const auto again = planUninstall(parts, apps, apps, never);
    machine.program("opt/game/bin/game");
    EXPECT_FALSE(runUninstall(parts, again, {}, doors, never, {}).worked())
        << "it was installed anew since";
    // With its folder it may only be out of reach.
    std::filesystem::rename(tree.at("opt"), tree.at("away"));
    EXPECT_FALSE(runUninstall(parts, plan, {}, doors, never, {}).worked());
}

TEST_F(Uninstalling, WhatCouldNotBeLookedAtStays) {
    (void)tree.write("home/Library/com.e.App.plist", "1");
    (void)tree.write("Apps/App.app/x", "1");
    (void)tree.setMode("home/Library", 0744);
    const auto refusal = [&] {
        const AppItemsArray apps{item(ApplicationType::App, "com.e.App", tree.at("Apps/App.app"))};
        return planUninstall(parts, apps, apps, never).apps[0].refusal;
    };
    EXPECT_THAT(testing::runInChild({.ordinaryUser = true}, refusal),
                HasSubstr("com.e.App.plist could not be looked at: "));
    EXPECT_EQ(refusal(), "");
}

// An editor that nobody could read may be called as this one and a little more.
TEST_F(Uninstalling, WhereABundleCouldNotBeReadWholeNamesGoAlone) {
    (void)tree.write("Applications/Editor.app/Contents/Info.plist",
                     "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
                     "<key>CFBundleIdentifier</key><string>com.e.Editor</string></dict></plist>");
    for (const char* const name : {"com.e.Editor", "com.e.Editor2.plist"})
        (void)tree.write(std::string("home/Library/") + name, "1");
    const auto paths = [&] {
        PlannedUninstallWork work(parts, {}, doors, nullptr, nullptr);
        UninstallAppInfo info(UninstallAppDelegate(files, parts.home, &applications, parts.root));
        const auto& all = info.allAppsInfo();
        const auto own =
            std::ranges::find(all, "Editor", [](const auto& each) { return each->name; });
        return work.forecast({**own}, never).apps[0].paths.size();
    };
    EXPECT_EQ(paths(), 3U);
    (void)tree.folder("Applications/Bare.app");
    EXPECT_EQ(paths(), 3U) << "a bundle without a list claims nothing";
    (void)tree.write("Applications/Broken.app/Contents/Info.plist", "garbage");
    EXPECT_EQ(paths(), 2U);
    std::filesystem::remove_all(tree.at("Applications/Broken.app"));
    (void)tree.folder("Applications/closed");
    (void)tree.setMode("Applications/closed", 0);
    EXPECT_EQ(testing::runInChild({.ordinaryUser = true}, [&] { return std::to_string(paths()); }),
              "2");
}

TEST_F(Uninstalling, NeverRemovesTheVendorsOwnAndThisProgram) {
    (void)tree.write("Apps/T.app/x", "1");
    const auto vendors =
        item(ApplicationType::App, "com.kelpford.TidewrackPro", tree.at("Apps/T.app"));
    vendors->bundleVersion = "3.0";
    EXPECT_EQ(run({vendors}).apps[0].removal.state, State::Refused);
    EXPECT_TRUE(isThere(vendors->path));
    vendors->bundleVersion = "3.1";
    EXPECT_TRUE(run({vendors}).worked());
    ApplicationRecord own;
    own.isOurs = true;
    own.path = tree.at("home");
    EXPECT_EQ(run({UninstallAppDelegate::itemOf(own)}).apps[0].removal.state, State::Refused);
    EXPECT_EQ(run({item(ApplicationType::Snap, "code")}).apps[0].removal.reason,
              "The snap service is not there");
}

}  // namespace
}  // namespace orrinvale
