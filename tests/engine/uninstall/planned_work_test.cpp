// What the uninstall page is told of a removal, and that nothing else goes.
#include <sys/syscall.h>

#include "engine/removal/TrashDoor.h"
#include "engine/uninstall/PlannedUninstallWork.h"
#include "engine/uninstall/UninstallAppInfo.h"
#include "platform/freeSpace.h"
#include "platform/linux/LinuxApplications.h"
#include "support/MadeUpMachine.h"
#include "support/test.h"

namespace orrinvale {
namespace {

const std::atomic<bool> plannedNever{false};

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
    const UninstallOutlook asked = work->forecast({items[0]}, plannedNever);
    EXPECT_EQ(asked.apps[0].paths, (Strings{items[0].path, items[0].record->entries[0]}));
    // Another question is answered later, and another folder has come into one's place.
    const UninstallOutlook later = work->forecast({items[1]}, plannedNever);
    EXPECT_FALSE(work->remove(*asked.plan, {{items[1], {}}}, progress, plannedNever)[0].isGone);
    std::filesystem::rename(items[1].path, items[1].path + ".old");
    tree.write("opt/tool/other", "1");
    const auto results =
        work->remove(*later.plan, {{items[1], {}}, {items[0], {}}}, progress, plannedNever);
    EXPECT_EQ(results[0].reason, "changed since the scan");
    EXPECT_TRUE(isThere(tree.at("opt/tool/other")) && isThere(items[0].path));
    EXPECT_TRUE(work->remove(*asked.plan, {{items[0], {}}}, progress, plannedNever)[0].isGone);
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
    const UninstallOutlook outlook = work->forecast(items, plannedNever);
    EXPECT_EQ(outlook.apps[0].refusal, "no room");
    EXPECT_EQ(outlook.apps[1].refusal, "");
    EXPECT_EQ(outlook.apps[1].noTrash, "no room");
    EXPECT_TRUE(outlook.apps[1].leftovers.empty());
    EXPECT_EQ(outlook.apps[2].refusal, "not installed any more as it was listed");
    EXPECT_FALSE(work->remove(*outlook.plan, {{items[0], {}}}, progress, plannedNever)[0].isGone);
    EXPECT_TRUE(isThere(items[0].path));
}

TEST_F(Planned, LeftoversThatNobodyLookedThroughAreNotOffered) {
    for (const char* const name : {"game", "tool"})
        tree.write(std::string("home/.config/") + name + "/deep/x", "1");
    tree.setMode("home/.config/tool/deep", 0);
    tree.setMode("usr/share/applications", 0777);
    const auto told = [&] {
        const UninstallOutlook outlook = work->forecast(listed(), plannedNever);
        std::string out;
        for (const auto& app : outlook.apps) out += std::to_string(app.leftovers.size());
        for (const std::string& each : outlook.notes) out += each;
        return out;
    };
    EXPECT_EQ(testing::runInChild({.ordinaryUser = true}, told),
              "10Could not be looked through and is not offered: " + tree.at("home/.config/tool"));
}

TEST_F(Planned, WhatIsAnotherApplicationByNowStays) {
    const std::vector<AppItems> items = listed();
    machine.program("opt/game/bin/later");
    machine.entry("later", "Exec=" + tree.at("opt/game/bin/later"));
    const UninstallOutlook outlook = work->forecast(items, plannedNever);
    EXPECT_EQ(outlook.apps[0].refusal, "not installed any more as it was listed");
    EXPECT_EQ(outlook.apps[1].refusal, "");
    EXPECT_TRUE(outlook.isListOld);
    EXPECT_FALSE(work->remove(*outlook.plan, {{items[0], {}}}, progress, plannedNever)[0].isGone);
    EXPECT_TRUE(isThere(tree.at("opt/game/bin/later")));
    EXPECT_FALSE(work->forecast(listed(), plannedNever).isListOld);
}

TEST_F(Planned, AForecastThatIsCutOffOrGetsNoThreadSaysSo) {
    EXPECT_THAT(work->forecast(listed(), std::atomic<bool>(true)).warnings,
                ElementsAre("What they left could not be looked for in time"));
    EXPECT_EQ(testing::runInChild({},
                                  [&]() -> std::string {
                                      if (!testing::failSystemCall(SYS_clone3, EAGAIN)) return "";
                                      return work->forecast(listed(), plannedNever).apps[0].refusal;
                                  }),
              "what would go along could not be found out");
}

// One kind, whose service removes whatever is asked.
struct OneKind final : Applications, ApplicationKind {
    OneKind(ApplicationType type, const Strings& names) : kindType(type) {
        for (const std::string& name : names) {
            ApplicationRecord& record = there.records.emplace_back();
            record.type = type;
            record.id = record.name = name;
        }
    }
    ApplicationType type() const override { return kindType; }
    void list(std::vector<StartingEntry>&, ApplicationInventory&) const override {}
    ApplicationDetails details(const ApplicationRecord&) const override { return {}; }
    RemovalForecast forecast(const std::vector<ApplicationRecord>& records,
                             const Waiting&) const override {
        RemovalForecast out;
        for (const ApplicationRecord& each : records) out.promised.push_back(each.id);
        out.kept[0] = {"/etc/of-the-first"};
        return out;
    }
    ApplicationInventory look(const KindNews&) const override { return there; }
    const ApplicationKind* kind(ApplicationType) const override { return this; }
    std::vector<RunState> running(const std::vector<const ApplicationRecord*>& of) const override {
        return std::vector<RunState>(of.size());
    }
    ApplicationType kindType;
    ApplicationInventory there;
};

TEST_F(Planned, NothingIsPromisedForWhatStays) {
    OneKind debs(ApplicationType::Deb, {"other", "tool"});
    parts.applications = &debs;
    PlannedUninstallWork planned(parts, {}, UninstallDoors::usual(parts), nullptr, nullptr);
    UninstallAppInfo info(UninstallAppDelegate(files, parts.home, &debs, parts.root));
    const std::vector<AppItems> items{*info.allAppsInfo()[0], *info.allAppsInfo()[1]};
    const std::vector<ApplicationRecord> before = debs.there.records;
    auto updated = before;
    updated[0].version = "2";
    const std::string other = "not installed any more as it was listed";
    const struct {
        std::vector<ApplicationRecord> records;
        std::string unread;
        Strings refusals, promised;
        bool isListOld;
    } cases[] = {
        {before, "", {"", ""}, {"other", "tool"}, false},
        {updated, "", {other, ""}, {"tool"}, true},
        {{before[1]}, "", {other, ""}, {"tool"}, true},
        {{}, "no word", {"no word", "no word"}, {}, false},
    };
    for (const auto& each : cases) {
        debs.there.records = each.records;
        debs.there.unread.clear();
        if (!each.unread.empty()) debs.there.unread[ApplicationType::Deb] = each.unread;
        const UninstallOutlook outlook = planned.forecast(items, plannedNever);
        EXPECT_EQ((Strings{outlook.apps[0].refusal, outlook.apps[1].refusal}), each.refusals);
        const auto& forecasts = outlook.plan->forecasts;
        const auto found = forecasts.find(ApplicationType::Deb);
        EXPECT_EQ(found == forecasts.end() ? Strings() : found->second.promised, each.promised);
        EXPECT_EQ(outlook.isListOld, each.isListOld);
        for (std::size_t i = 0; i < items.size(); ++i)
            EXPECT_EQ(outlook.apps[i].stays.size(),
                      !each.promised.empty() && items[i].record->id == each.promised[0] ? 1U : 0U);
    }
}

TEST_F(Planned, WhatTheSnapServiceTakesIsNoOnesToTick) {
    tree.write("home/snap/code/common/x", "1");
    tree.write("home/.config/code/x", "1");
    const OneKind snaps(ApplicationType::Snap, {"code"});
    parts.applications = &snaps;
    PlannedUninstallWork planned(
        parts, LeftoverPlaces{{tree.at("home/.config")}, {}, tree.at("home/snap"), {}},
        UninstallDoors::usual(parts), nullptr, nullptr);
    UninstallAppInfo info(UninstallAppDelegate(files, parts.home, &snaps, parts.root));
    const auto told = planned.forecast({*info.allAppsInfo().front()}, plannedNever).apps.front();
    ASSERT_EQ(told.refusal, "");
    Strings paths;
    for (const Leftover& each : told.leftovers) paths.push_back(each.path);
    EXPECT_THAT(paths, ElementsAre(tree.at("home/.config/code")));
}

// Refuses the path that is locked.
class LockedPathDoor final : public RemovalDoor {
public:
    explicit LockedPathDoor(const std::string& locked) : m_locked(locked) {}
    RemovalResult remove(const LeavingEntry& entry, const std::atomic<bool>& /*stop*/) override {
        RemovalResult out;
        out.gone = entry.path != m_locked;
        if (out.gone) std::filesystem::remove_all(entry.path);
        else out.failures.push_back({entry.path, "locked"});
        return out;
    }

private:
    const std::string m_locked;
};

TEST_F(Planned, ASecondAttemptTakesWhatTheFirstCopyLeftToTheSecond) {
    const std::string list =
        "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict>"
        "<key>CFBundleIdentifier</key><string>com.e.App</string></dict></plist>";
    for (const char* const name : {"One", "Two"})
        tree.write(std::string("Applications/") + name + ".app/Contents/Info.plist", list);
    tree.write("home/Library/com.e.App.plist", "1");
    std::string locked;
    UninstallDoors doors = UninstallDoors::usual(parts);
    doors.bundles = [&] { return std::make_unique<LockedPathDoor>(locked); };
    PlannedUninstallWork planned(parts, {}, doors, nullptr, nullptr);
    std::vector<AppItems> items;
    for (const AppItems& each : listed())
        if (each.record->type == ApplicationType::App) items.push_back(each);
    ASSERT_EQ(items.size(), 2U);
    const UninstallOutlook outlook = planned.forecast(items, plannedNever);
    ASSERT_EQ(outlook.apps[1].paths.size(), 2U);
    locked = outlook.apps[1].paths.front();
    const auto first =
        planned.remove(*outlook.plan, {{items[0], {}}, {items[1], {}}}, progress, plannedNever);
    EXPECT_TRUE(first[0].isGone && !first[1].isGone);
    locked.clear();
    EXPECT_TRUE(planned.remove(*outlook.plan, {{items[1], {}}}, progress, plannedNever)[0].isGone);
    EXPECT_FALSE(isThere(tree.at("home/Library/com.e.App.plist")));
}

// An ELF head with the mark of AppImages, and a packed folder with an entry and `megabytes` of
// data.
bool packAppImage(const std::string& folder, const std::string& path, int megabytes) {
    const auto write = [](const std::string& to, const std::string& text) {
        std::ofstream(to, std::ios::binary) << text;
    };
    std::filesystem::create_directories(folder);
    write(folder + "/painter.desktop",
          "[Desktop Entry]\nType=Application\nName=Painter\nExec=painter\n");
    write(folder + "/data", testing::someBytes(std::size_t(megabytes) << 20U, 1));
    std::string head(64, '\0');
    head.replace(0, 11,
                 "\x7F"
                 "ELF\x02\x01\0\0AI\x02",
                 11);
    head[0x28] = 64;
    if (std::system(("mksquashfs " + folder + " /mnt/packed -quiet -no-progress").c_str()) != 0)
        return false;
    write(path, head + contentOf("/mnt/packed"));
    std::filesystem::remove("/mnt/packed");
    std::filesystem::remove_all(folder);
    return ::chmod(path.c_str(), 0755) == 0;
}

TEST(PlannedRemoval, OfAnAppImageGivesBackWhatWasPromisedOnceTheTrashIsEmpty) {
    if (::access("/usr/bin/mksquashfs", X_OK) != 0) GTEST_SKIP() << "mksquashfs is not here";
    testing::withOwnMounts([]() -> std::string {
        testing::MadeUpMachine machine;
        const std::string home = "/mnt/home", image = home + "/Applications/painter.AppImage";
        const std::string entries = home + "/.local/share/applications";
        std::filesystem::create_directories(home + "/Applications");
        std::filesystem::create_directories(entries);
        if (!packAppImage("/mnt/folder", image, 12)) return "skip: nothing can be packed";
        std::ofstream(entries + "/painter.desktop")
            << "[Desktop Entry]\nType=Application\nName=Painter\nExec=" << image << '\n';
        machine.places.home = home;
        machine.places.dataFolders = {home + "/.local/share"};
        machine.places.appImageFolders = {home + "/Applications"};
        const LinuxApplications applications(machine.places);
        const LinuxFileSystem files;
        const UninstallParts parts{&files, &applications, home, machine.tree.path()};
        UninstallDoors doors = UninstallDoors::usual(parts);
        doors.trash = [&]() -> std::unique_ptr<RemovalDoor> {
            return std::make_unique<TrashDoor>(
                files, ProtectedPlaces(),
                FolderVariables{.home = home, .dataHome = home + "/.local/share", .user = 0});
        };
        PlannedUninstallWork work(parts, {}, doors, nullptr, nullptr);
        UninstallAppInfo info(UninstallAppDelegate(files, home, &applications, parts.root));
        if (info.allAppsInfo().size() != 1) return "it is not listed once";
        AppItems item = *info.allAppsInfo().front();
        const std::uint64_t promised = detailsOf(parts, item).bytes.value_or(0);
        item.fileSizeNum = promised;
        const auto free = [] { return std::int64_t(settledFreeSpace("/mnt").value_or(0)); };
        const std::int64_t before = free();
        const UninstallOutlook outlook = work.forecast({item}, plannedNever);
        ProgressBox progress;
        const auto result =
            work.remove(*outlook.plan, {{item, {}}}, progress, plannedNever).front();
        const std::int64_t inTrash = free() - before;
        if (!result.isGone || isThere(image) || isThere(entries + "/painter.desktop"))
            return "it stays: " + result.reason;
        std::filesystem::remove_all(home + "/.local/share/Trash");
        const std::int64_t gained = free() - before;
        const std::string figures = fmt::format("promised {}, told {}, in the trash {}, gained {}",
                                                promised, result.gained, inTrash, gained);
        constexpr std::int64_t page = 16384;  // of the file's end, its entry, and their folders
        const bool isKept = std::abs(gained - std::int64_t(promised)) <= page &&
                            promised >= std::uint64_t{12} << 20U && result.gained == promised &&
                            std::abs(inTrash) <= page;
        return isKept ? "" : figures;
    });
}

}  // namespace
}  // namespace orrinvale
