// What the uninstall page is told of a removal, and that nothing else goes.
#include "engine/removal/TrashDoor.h"
#include "engine/uninstall/PlannedUninstallWork.h"
#include "engine/uninstall/UninstallAppInfo.h"
#include "platform/linux/LinuxApplications.h"
#include "support/MadeUpMachine.h"
#include "support/test.h"

namespace orrinvale {
namespace {

const std::atomic<bool> never{false};

class Planned : public ::testing::Test {
protected:
    Planned() {
        for (const char* const name : {"game", "tool"}) {
            machine.program(std::string("opt/") + name + "/bin/" + name);
            machine.entry(name, "Exec=" + tree.at(std::string("opt/") + name + "/bin/" + name));
        }
        UninstallDoors doors = UninstallDoors::usual(parts);
        doors.trash = [this]() -> std::unique_ptr<RemovalDoor> {
            return std::make_unique<TrashDoor>(files, ProtectedPlaces(), variables());
        };
        work = std::make_unique<PlannedUninstallWork>(
            parts, LeftoverPlaces{{tree.at("home/.config")}, {}, {}, {}}, doors, nullptr,
            [this](const std::string& path) { return noTrash.contains(path) ? "no room" : ""; });
    }
    FolderVariables variables() { return {.home = tree.at("home"), .user = ::getuid()}; }
    std::vector<AppItems> listed() {
        UninstallAppInfo info(UninstallAppDelegate(files, parts.home, &applications, parts.root));
        std::vector<AppItems> out;
        for (const auto& each : info.allAppsInfo()) out.push_back(*each);
        return out;
    }

    testing::MadeUpMachine machine;
    TestTree& tree = machine.tree;
    LinuxFileSystem files;
    LinuxApplications applications{machine.places};
    UninstallParts parts{&files, &applications, tree.at("home"), tree.path()};
    std::set<std::string> noTrash;
    std::unique_ptr<PlannedUninstallWork> work;
    ProgressBox progress;
};

TEST_F(Planned, ARemovalKeepsToThePlanThatItWasShown) {
    const std::vector<AppItems> items = listed();
    ASSERT_EQ(items.size(), 2U);
    const UninstallOutlook asked = work->forecast({items[0]}, never);
    EXPECT_EQ(asked.apps[0].paths, (Strings{items[0].path, items[0].record->entries[0]}));
    // Another question is answered later, and another folder has come into one's place.
    const UninstallOutlook later = work->forecast({items[1]}, never);
    EXPECT_FALSE(work->remove(*asked.plan, {{items[1], {}}}, progress, never)[0].isGone);
    std::filesystem::rename(items[1].path, items[1].path + ".old");
    tree.write("opt/tool/other", "1");
    const auto results =
        work->remove(*later.plan, {{items[1], {}}, {items[0], {}}}, progress, never);
    EXPECT_EQ(results[0].reason, "changed since the scan");
    EXPECT_TRUE(isThere(tree.at("opt/tool/other")) && isThere(items[0].path));
    EXPECT_TRUE(work->remove(*asked.plan, {{items[0], {}}}, progress, never)[0].isGone);
    EXPECT_FALSE(isThere(items[0].path));
}

TEST_F(Planned, TellsBeforehandWhatCanNotGo) {
    std::vector<AppItems> items = listed();
    for (const char* const name : {"game", "tool"})
        tree.write(std::string("home/.config/") + name + "/x", "1");
    noTrash = {items[0].path, tree.at("home/.config/tool")};
    AppItems gone = items[1];
    ApplicationRecord record = *gone.record;
    record.path += "-of-yesterday";
    gone.record = std::make_shared<const ApplicationRecord>(record);
    items.push_back(gone);
    const UninstallOutlook outlook = work->forecast(items, never);
    EXPECT_EQ(outlook.apps[0].refusal, "no room");
    EXPECT_EQ(outlook.apps[1].refusal, "");
    EXPECT_EQ(outlook.apps[1].noTrash, "no room");
    EXPECT_TRUE(outlook.apps[1].leftovers.empty());
    EXPECT_EQ(outlook.apps[2].refusal, "not installed any more as it was listed");
    EXPECT_FALSE(work->remove(*outlook.plan, {{items[0], {}}}, progress, never)[0].isGone);
    EXPECT_TRUE(isThere(items[0].path));
}

}  // namespace
}  // namespace orrinvale
