// Login items over entries in folders of a test's own: what is listed, what a switch changes and
// leaves, what is added and removed, and the statuses of the functions over them.
#include <set>
#include <thread>

#include "engine/loginitems/LoginFolders.h"
#include "engine/loginitems/LoginItemRegistry.h"
#include "engine/loginitems/launchAtLogin.h"
#include "engine/loginitems/removeLoginItem.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "platform/FileUrl.h"
#include "platform/linux/LinuxFiles.h"
#include "support/ScopedVariable.h"

namespace orrinvale::testing {
namespace {

const std::string head = "[Desktop Entry]\nType=Application\nName=N\n";

TEST(LoginItems, TellWhatEachEntryDoes) {
    LoginFolders on;
    TestTree& tree = on.tree;
    ASSERT_TRUE(on.program("bin/tool"));
    ASSERT_TRUE(tree.write("etc/autostart/sys.desktop", head + "Exec=tool\nName[de]=Werkzeug\n") &&
                tree.write("etc/autostart/off.desktop", head + "Exec=tool\n") &&
                tree.write("etc2/autostart/off.desktop", head + "Exec=none\n") &&
                tree.write("dots/linked.desktop", head + "Exec=tool\n"));
    const std::string long10 = head + "Exec=tool\n#" + std::string(10'000'000, 'x');
    const struct {
        const char* name;
        std::string text;
        bool starts;
        const char* fault;
    } rows[] = {
        {"a.desktop", head + "Exec=tool --x\n", true, ""},
        {"quoted.desktop", head + "Exec=\"" + tree.at("bin/tool") + "\" %u\n", true, ""},
        {"hidden.desktop", head + "Exec=tool\nHidden=true\n", false, ""},
        {"shown.desktop", head + "Exec=tool\nHidden=false\n", true, ""},
        {"gnome.desktop", head + "Exec=tool\nX-GNOME-Autostart-enabled=false\n", false, ""},
        {"kde.desktop", head + "Exec=tool\nOnlyShowIn=KDE;XFCE;\n", false, ""},
        {"notgnome.desktop", head + "Exec=tool\nNotShowIn=KDE;GNOME\n", false, ""},
        {"nowhere.desktop", head + "Exec=tool\nOnlyShowIn=\n", false, ""},
        {"gone.desktop", head + "Exec=/no/such\n", false, "its program is gone"},
        {"try.desktop", head + "TryExec=nosuch\nExec=tool\n", false, "its program is gone"},
        {"open.desktop", head + "Exec=\"tool\n", false, "its program is gone"},
        {"noexec.desktop", head, false, "it names no program"},
        {"other.desktop", "[Other]\nExec=tool\n", false, "it is no entry that starts a program"},
        {"garbage.desktop", std::string("\xff\0\n[", 4), false,
         "it is no entry that starts a program"},
        {"huge.desktop", long10, false, "File too large"},
        {"off.desktop", "[Desktop Entry]\nHidden=true\n", false, ""},
    };
    for (const auto& row : rows)
        ASSERT_TRUE(tree.write(std::string("config/autostart/") + row.name, row.text));
    ASSERT_TRUE(tree.symlink("../../dots/linked.desktop", "config/autostart/linked.desktop") &&
                tree.symlink("nowhere", "config/autostart/dangling.desktop") &&
                tree.fifo("config/autostart/fifo.desktop") &&
                tree.write("config/autostart/readme", "Exec=x"));
    for (const auto& row : rows) {
        const LoginItemRecord item = on.named(row.name);
        EXPECT_EQ(item.starts, row.starts) << row.name;
        EXPECT_EQ(item.fault, row.fault) << row.name;
        EXPECT_TRUE(item.isPersons) << row.name;
    }
    for (const char* const name : {"kde.desktop", "notgnome.desktop", "nowhere.desktop"})
        EXPECT_FALSE(on.named(name).isForThisDesktop) << name;
    EXPECT_TRUE(on.named("a.desktop").isForThisDesktop);
    EXPECT_TRUE(on.named("linked.desktop").starts);
    EXPECT_EQ(on.named("dangling.desktop").fault, "No such file or directory");
    EXPECT_EQ(on.named("off.desktop").path, tree.at("bin/tool")) << "as the first system has it";
    EXPECT_EQ(on.named("sys.desktop").name, "Werkzeug");
    EXPECT_TRUE(on.named("sys.desktop").starts && !on.named("sys.desktop").isPersons);
    const auto all = on.list();
    EXPECT_EQ(all.size(), std::size(rows) + 4);
    EXPECT_TRUE(isItem(all.front()) && all.back().fileName == "sys.desktop");
    EXPECT_TRUE(std::ranges::is_partitioned(all, isItem));
}

TEST(LoginItems, ASwitchChangesOneLine) {
    LoginFolders on;
    ASSERT_TRUE(on.program("bin/tool"));
    const std::string text =
        "# mine\r\n[Desktop Entry]\nName = N\n Hidden = false \nExec=tool\n\n[Desktop Action x]\n"
        "Hidden=false\nExec=y";
    ASSERT_TRUE(on.tree.write("config/autostart/a.desktop", text));
    const std::string path = on.tree.at("config/autostart/a.desktop");
    ASSERT_EQ(::chmod(path.c_str(), 0640), 0);
    ASSERT_TRUE(on.items.setStarts("a.desktop", false));
    std::string off = text;
    off.replace(off.find(" Hidden = false "), 16, "Hidden=true");
    EXPECT_EQ(on.entry("a.desktop"), off);
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms(0640));
    ASSERT_TRUE(on.items.setStarts("a.desktop", true));
    EXPECT_TRUE(on.named("a.desktop").starts);
    EXPECT_EQ(on.items.setHidden("a.desktop", true).error().number, ENOTSUP) << "not made here";

    // A link gives way to a copy; what it leads to is never written.
    const std::string dots = head + "Exec=tool\nX-GNOME-Autostart-enabled=false\n";
    ASSERT_TRUE(on.tree.write("dots/l.desktop", dots) &&
                on.tree.symlink("../../dots/l.desktop", "config/autostart/l.desktop"));
    ASSERT_TRUE(on.items.setStarts("l.desktop", true));
    EXPECT_TRUE(on.named("l.desktop").starts);
    EXPECT_EQ(contentOf(on.tree.at("dots/l.desktop")), dots);
    EXPECT_TRUE(std::filesystem::is_regular_file(
        std::filesystem::symlink_status(on.tree.at("config/autostart/l.desktop"))));

    // One of the system is put out by an entry that goes again, unless somebody wrote into it.
    ASSERT_TRUE(on.tree.write("etc/autostart/s.desktop", head + "Exec=tool\n"));
    ASSERT_TRUE(on.items.setStarts("s.desktop", false));
    EXPECT_EQ(on.entry("s.desktop"), overrideText("N"));
    EXPECT_TRUE(on.named("s.desktop").isDeleted && !on.named("s.desktop").starts);
    ASSERT_TRUE(on.items.setStarts("s.desktop", true));
    EXPECT_FALSE(isThere(on.tree.at("config/autostart/s.desktop")));
    EXPECT_EQ(contentOf(on.tree.at("data/Trash/files/s.desktop")), overrideText("N"));
    ASSERT_TRUE(on.items.setStarts("s.desktop", false));
    ASSERT_TRUE(on.tree.write("config/autostart/s.desktop",
                              overrideText("N") + "Comment=why\nExec=tool\n"));
    ASSERT_TRUE(on.items.setStarts("s.desktop", true));
    EXPECT_THAT(on.entry("s.desktop"), AllOf(HasSubstr("Comment=why"), HasSubstr("Hidden=false")));

    for (const char* const name : {"none.desktop", "../a.desktop", "a"})
        EXPECT_FALSE(on.items.setStarts(name, true)) << name;
    ASSERT_TRUE(on.tree.write("config/autostart/bad.desktop", "garbage"));
    EXPECT_EQ(on.items.setStarts("bad.desktop", false).error().number, EBADMSG);
    EXPECT_EQ(on.entry("bad.desktop"), "garbage");
}

TEST(LoginItems, AreAddedOnceAndPutOutNothing) {
    LoginFolders on;
    TestTree& tree = on.tree;
    ASSERT_TRUE(on.program("bin/tool") && tree.write("letter.odt", "x") && tree.folder("place") &&
                tree.write("app.desktop", head + "Exec=tool\nHidden=true\n# kept\n") &&
                tree.write("bad.desktop", "x") && tree.write("etc/autostart/tool.desktop", head));
    const struct {
        const char* path;
        std::int32_t status;
        const char* file;
        const char* says;
    } rows[] = {
        {"bin/tool", 0, "tool-2.desktop", "Exec="},
        {"letter.odt", 0, "letter.odt.desktop", "Exec=xdg-open "},
        {"place", 0, "place.desktop", "Exec=xdg-open "},
        {"app.desktop", 0, "app.desktop", "# kept\n"},
        {"bad.desktop", errLoginItemName, "", ""},
        {"none", errLoginItemMissing, "", ""},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(on.items.add(tree.at(row.path), false), row.status) << row.path;
        EXPECT_EQ(on.items.add(tree.at(row.path), true), row.status) << "again";
        if (row.status != 0) continue;
        EXPECT_THAT(on.entry(row.file), HasSubstr(row.says)) << row.path;
        EXPECT_EQ(on.named(row.file).path, tree.at(row.path));
        EXPECT_TRUE(on.named(row.file).startsHidden) << "the second one set it";
    }
    EXPECT_EQ(on.list().size(), 5U) << "none twice, and the system's";
    EXPECT_TRUE(on.named("app.desktop").starts);
    if (::geteuid() == 0) return;
    ASSERT_EQ(::chmod(on.folders.persons.c_str(), 0500), 0);
    EXPECT_EQ(on.items.add("/bin/true", false), errLoginItemIO);
}

TEST(LoginItems, OnlyTheEntryThatWasShownGoes) {
    LoginFolders on;
    const std::string path = on.tree.at("config/autostart/a.desktop");
    ASSERT_TRUE(on.program("bin/tool") &&
                on.tree.write("config/autostart/a.desktop", head + "Exec=tool\n") &&
                on.tree.write("dots/l.desktop", head + "Exec=tool\n") &&
                on.tree.symlink("../../dots/l.desktop", "config/autostart/l.desktop"));
    const LoginItemRecord shown = on.named("a.desktop");
    ASSERT_TRUE(on.tree.write("new", head + "Exec=tool --other\n"));
    ASSERT_EQ(::rename(on.tree.at("new").c_str(), path.c_str()), 0);
    EXPECT_NE(on.takeAway(shown), "");
    EXPECT_THAT(on.entry("a.desktop"), HasSubstr("--other"));
    EXPECT_EQ(on.takeAway(on.named("a.desktop")), "");
    EXPECT_FALSE(isThere(path));
    EXPECT_EQ(on.takeAway(on.named("l.desktop")), "") << "a link itself";
    EXPECT_TRUE(isThere(on.tree.at("dots/l.desktop")));
}

TEST(LoginItems, OfOneNameAllStayThatAreAddedAtOnce) {
    LoginFolders on;
    constexpr int count = 8;
    for (int i = 0; i < count; ++i) ASSERT_TRUE(on.program(fmt::format("{}/tool", i)));
    {
        std::vector<std::jthread> writers;
        for (int i = 0; i < count; ++i)
            writers.emplace_back([&on, i] {
                EXPECT_EQ(on.items.add(on.tree.at(fmt::format("{}/tool", i)), false), 0);
            });
    }
    std::set<std::string> paths;
    for (const LoginItemRecord& each : on.list()) paths.insert(each.path);
    EXPECT_EQ(paths.size(), std::size_t{count});
}

TEST(LoginItems, OurOwnProgramIsKnownByItsEntry) {
    LoginFolders on;
    ASSERT_TRUE(on.program("bin/orrinvale") && on.tree.symlink("orrinvale", "bin/link") &&
                on.program("bin/tool") &&
                on.tree.write("own.desktop", head + "Exec=" + on.tree.at("bin/link") + " %U\n") &&
                on.tree.write("other.desktop", head + "Exec=tool\n"));
    EXPECT_EQ(on.items.pathToAdd(on.tree.at("other.desktop")), on.tree.at("other.desktop"));
    EXPECT_EQ(on.items.add(on.tree.at("own.desktop"), true), 0);
    const LoginItemRecord item = on.named("com.kelpford.Orrinvale.desktop");
    EXPECT_TRUE(item.isOurs && item.startsHidden);
    EXPECT_EQ(item.path, on.folders.ownProgram);
}

/// A list that is busy for a while.
struct BusyItems final : LoginItems {
    std::vector<LoginItemRecord> list(std::int32_t& status) const override {
        status = ++asked <= busy ? errAETimeout : 0;
        return {};
    }
    std::int32_t add(const std::string&, bool) override { return 0; }
    Result<void> setStarts(const std::string&, bool) override { return {}; }
    Result<void> setHidden(const std::string&, bool) override { return {}; }
    const LoginItemFolders& folders() const override { return none; }
    LoginItemFolders none;
    int busy = 0;
    mutable int asked = 0;
};

TEST(LoginItemRegistry, WaitsForABusyListAMinute) {
    for (const auto& [busy, asked, waits] :
         {std::tuple(0, 1, 0), {3, 4, 3}, {60, 61, 60}, {61, 61, 60}}) {
        BusyItems items;
        items.busy = busy;
        int waited = 0;
        LoginItemRegistry::setParts(
            {.items = &items, .remove = {}, .waitOneSecond = [&waited] { ++waited; }});
        LogLines log;
        EXPECT_EQ(LoginItemRegistry::allLoginItems().has_value(), busy < 61);
        EXPECT_EQ(items.asked, asked);
        EXPECT_EQ(waited, waits);
        EXPECT_EQ(std::ranges::count(log.lines, "Get login items error -1712 occur."),
                  std::min(busy, 61));
        EXPECT_EQ(std::ranges::count(log.lines, "Get login items error -1712 and timeout."),
                  busy > 60 ? 1 : 0);
    }
}

TEST(LoginItemRegistry, FindsAddsAndRemovesByPathAndAddress) {
    LoginFolders on;
    ASSERT_TRUE(on.program("bin/tool") && on.program("bin/orrinvale") &&
                on.tree.write("config/autostart/a b.desktop", head + "Exec=/no/such\n"));
    UserDefaults defaults(on.tree.at("settings.ini"));
    UserDefaults::setStandardUserDefaults(&defaults);
    LoginItemRegistry::setParts({.items = &on.items, .remove = on.takeAway, .waitOneSecond = {}});
    using R = LoginItemRegistry;
    const std::string own = joinPath(on.folders.persons, "a b.desktop");
    const auto items = R::allLoginItems();
    ASSERT_TRUE(items && items->size() == 1);
    EXPECT_EQ(items->front().URL, "file://localhost" + fileUrlOf(own).substr(7));
    EXPECT_EQ(R::indexForLoginItemWithPath(own), 0);
    EXPECT_TRUE(R::addLoginItemWithPath(on.tree.at("bin/tool"), true));
    EXPECT_EQ(R::indexForLoginItemWithPath(on.tree.at("bin/tool")), 1);
    EXPECT_TRUE(R::allLoginItems()->back().Hidden);
    LogLines log;
    EXPECT_FALSE(R::addLoginItemWithPath(on.tree.at("none"), false));
    EXPECT_FALSE(R::addLoginItemWithURL("https://x/", false));
    EXPECT_FALSE(R::removeLoginItemWithPath(on.tree.at("none")));
    EXPECT_THAT(log.lines, ElementsAre("Couldn't add login item error -43",
                                       "Couldn't add login item error -43"));
    EXPECT_TRUE(R::removeLoginItemWithPath(own));
    EXPECT_TRUE(isThere(on.tree.at("data/Trash/files/a b.desktop")));
    EXPECT_FALSE(R::removeLoginItemAtIndex(7));

    // Our own entry goes with its setting.
    defaults.setBool(true, ZvLoginItemIsHide);
    EXPECT_TRUE(launchAtLogin(1));
    EXPECT_EQ(readeFileOfLaunchAppWhenLogin(), "1");
    const std::string file = "com.kelpford.Orrinvale.desktop";
    EXPECT_TRUE(on.named(file).starts && on.named(file).startsHidden);
    EXPECT_THAT(on.entry(file), HasSubstr("orrinvale --at-login\n"));
    defaults.setBool(false, ZvLoginItemIsHide);
    startHiddenAsSet();
    EXPECT_FALSE(on.named(file).startsHidden);
    EXPECT_TRUE(launchAtLogin(0));
    EXPECT_FALSE(isThere(joinPath(on.folders.persons, file)));
    EXPECT_EQ(UserDefaults(defaults.path()).integerForKey(ZvLoginCheckKey), 0);
    UserDefaults::setStandardUserDefaults(nullptr);
}

}  // namespace
}  // namespace orrinvale::testing
