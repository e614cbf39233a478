// The kinds of applications on machines of the test's making.
#include "platform/applications.h"

#include "platform/linux/AppImageFile.h"
#include "platform/linux/DpkgDatabase.h"
#include "platform/linux/FlatpakLibrary.h"
#include "platform/linux/LinuxApplications.h"
#include "platform/linux/PackageFoundations.h"
#include "platform/linux/PackageService.h"
#include "platform/paths.h"
#include "support/MadeUpMachine.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::MadeUpMachine;

// "KIND ID" of each, with its package where it has one.
Strings listed(const MadeUpMachine& machine) {
    Strings out;
    for (const ApplicationRecord& each : LinuxApplications(machine.places).list())
        out.push_back(std::string(wordOf(each.type)) + ' ' + each.id +
                      (each.package.empty() ? "" : ' ' + each.package) +
                      (each.isSystem ? " system" : "") + (each.isOurs ? " ours" : ""));
    return out;
}

TEST(Applications, ArePackagesByTheProgramThatAnEntryStarts) {
    MadeUpMachine machine;
    machine.program("usr/bin/vim.basic");
    machine.program("usr/bin/tool");
    machine.program("usr/bin/orrinvale");
    machine.program("usr/bin/alone");
    (void)machine.tree.symlink("vim.basic", "usr/bin/vim");
    machine.entry("vim", "Exec=vim %F");
    machine.entry("tool", "Exec=tool");
    machine.entry("org.x.Tool-prefs", "Exec=env A=1 tool --preferences");
    machine.entry("hidden", "Exec=tool\nNoDisplay=true");
    machine.entry("untried", "Exec=tool\nTryExec=missing");
    machine.entry("gone", "Exec=missing");
    machine.entry("orrinvale", "Exec=orrinvale");
    machine.entry("alone", "Exec=alone");
    machine.program("usr/bin/opener");
    machine.entry("bank", "Exec=opener https://bank.example");
    machine.program("usr/bin/shell");
    machine.entry("office", "Exec=shell --to office");
    machine.package("opener", "", {"usr/bin/opener"});
    machine.package("shell", "", {"usr/bin/shell"});
    machine.package("office", "", {"usr/share/applications/office.desktop"});
    machine.package("vim-common", "", {"usr/share/applications/vim.desktop"});
    machine.package("vim", "Priority: important\n", {"usr/bin/vim.basic"});
    machine.package("tool",
                    "Depends: base (>= 1) | other, ui\nInstalled-Size: 12\n"
                    "Conffiles:\n /etc/tool 12\n /etc/old 1 obsolete\n",
                    {"usr/bin/tool", "usr/share/applications/tool.desktop",
                     "usr/share/applications/org.x.Tool-prefs.desktop"});
    machine.package("broken", "", {"usr/share/applications/gone.desktop"});
    machine.package("orrinvale", "",
                    {"usr/bin/orrinvale", "usr/share/applications/orrinvale.desktop"});
    machine.package("without-files", "", {});
    machine.package("left", "", {}, "deinstall ok config-files");
    machine.package("../x", "", {}, "deinstall ok config-files");
    // Of "bank" its person is the owner, and "office" is no name for the shell.
    const Strings expected{"deb gone broken", "deb orrinvale orrinvale ours", "deb shell shell",
                           "deb tool tool", "deb vim vim system"};
    Strings found = listed(machine);
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, expected);

    const LinuxApplications applications(machine.places);
    const auto records = applications.list();
    const auto tool = std::find_if(records.begin(), records.end(),
                                   [](const auto& each) { return each.package == "tool"; });
    EXPECT_EQ(tool->entries.size(), 2U);
    EXPECT_THAT(tool->others, ElementsAre("org.x.Tool-prefs"));
    const auto details = applications.kind(ApplicationType::Deb)->details(*tool);
    EXPECT_EQ(details.bytes, 12 * 1024U);
    EXPECT_THAT(details.configuration, ElementsAre("/etc/tool"));
    EXPECT_THAT(applications.inventory().formerNames, ElementsAre("left"));
}

TEST(Applications, OfPackagesAreGoneOnlyByADatabaseThatWasRead) {
    using enum DpkgDatabase::Presence;
    struct Case {
        const char* name;
        std::string fields, status;
        DpkgDatabase::Presence presence;
        std::string fault = {};  // "FILE", which is emptied or made, or "-FILE", which is missing
        bool isRead = true;
    };
    const Case cases[] = {
        {"installed", "", "install ok installed", There},
        {"removed", "", "deinstall ok config-files", Gone},
        {"purged", "", "purge ok not-installed", Gone},
        {"half", "", "deinstall reinstreq half-installed", There},
        {"waiting", "", "install ok triggers-pending", There},
        {"foreign", "Architecture: i386\n", "install ok installed", Gone},
        {"empty", "", "deinstall ok config-files", Unknown, "dpkg/status", false},
        {"missing", "", "deinstall ok config-files", Unknown, "-dpkg/status", false},
        {"cut off", "", "deinstall ok config-files", Unknown, "dpkg/updates/0001", false},
    };
    for (const Case& each : cases) {
        MadeUpMachine machine;
        machine.package("dpkg", "", {});
        machine.package("tool", each.fields, {}, each.status);
        if (each.fault.starts_with('-'))
            std::filesystem::remove(machine.tree.at(each.fault.substr(1)));
        else if (!each.fault.empty()) (void)machine.tree.write(each.fault, "");
        EXPECT_EQ(DpkgDatabase(machine.places.dpkg).presenceOf("tool"), each.presence) << each.name;
        EXPECT_EQ(LinuxApplications(machine.places).inventory().unread.empty(), each.isRead)
            << each.name;
    }
    EXPECT_EQ(DpkgDatabase("/none").presenceOf("tool"), Unknown);
    EXPECT_EQ(DpkgDatabase("/none").obstacle(), "") << "a machine without packages";
}

TEST(Applications, OfTheServiceForPackagesAreReadFieldByField) {
    struct Case {
        std::string id;
        Strings fields;
    };
    for (const auto& [id, fields] :
         {Case{"a;1;amd64;b", {"a", "1", "amd64", "b", ""}}, Case{"a;1", {"a", "1", "", "", ""}},
          Case{"a;", {"a", "", "", "", ""}}, Case{"", {"", "", "", "", ""}}})
        for (std::size_t i = 0; i < fields.size(); ++i)
            EXPECT_EQ((ServicePackage{13, id}.field(i)), fields[i]) << id << i;
}

TEST(Applications, OfPackagesAreOneEachByNameAndArchitecture) {
    const std::vector<ServicePackage> packages{{0, "wine;1;i386;x"},
                                               {0, "wine;1;amd64;x"},
                                               {0, "wine;1;amd64;x"},
                                               {0, "data;1;all;x"},
                                               {0, "lone;1;i386;x"}};
    struct Case {
        const char *key, *own, *id;
    };
    for (const Case& each :
         {Case{"wine", "amd64", "wine;1;amd64;x"}, Case{"wine:i386", "amd64", "wine;1;i386;x"},
          Case{"wine", "", ""}, Case{"data", "amd64", "data;1;all;x"}, Case{"lone", "amd64", ""},
          Case{"lone", "", "lone;1;i386;x"}, Case{"non", "amd64", ""}})
        EXPECT_EQ(idOf(packages, each.key, each.own).value_or(""), each.id)
            << each.key << ' ' << each.own;
    PackageCourse course;
    EXPECT_EQ(noteOn(course, {}), "");
    course.couldNotStop = true;
    EXPECT_EQ(noteOn(course, {"a", "b"}),
              "Another package went as well: a, b; "
              "The removal of packages could not be stopped any more");
}

TEST(Applications, OfPackagesStayWhatASessionRunsOn) {
    MadeUpMachine machine;
    TestTree& tree = machine.tree;
    const auto process = [&](const std::string& number, const std::string& parent,
                             const std::string& program, const std::string& group = {}) {
        const std::string folder = "proc/" + number + '/';
        if (!program.empty()) (void)tree.symlink(tree.at("usr/bin/" + program), folder + "exe");
        (void)tree.write(folder + "stat", number + " (a) b) S " + parent + " 0 0 0 -1 4194560 0");
        (void)tree.write(folder + "cmdline", "x");
        (void)tree.write(folder + "cgroup", "0::" + group + "/x\n");
    };
    process(std::to_string(::getpid()), "20", "");
    process("20", "30", "panel");
    process("30", "1", "leader");
    process("40", "1", "shell",
            "/user.slice/user@" + std::to_string(::getuid()) + ".service/session.slice");
    process("50", "1", "chat", "/user.slice/app.slice");
    process("60", "1", "framer");
    const Strings names{"panel",  "leader",  "shell",    "chat",  "framer", "idler",
                        "starts", "greeter", "greeter2", "agent", "plain"};
    for (const std::string& name : names) {
        const bool manages = name == "framer" || name == "idler";
        machine.program("usr/bin/" + name);
        machine.package(name,
                        manages           ? "Provides: x-window-manager\n"
                        : name == "agent" ? "Provides: polkit-1-auth-agent\n"
                                          : "",
                        {"usr/bin/" + name, "lib/" + name + ".service"});
    }
    machine.places.sessionFolders = {tree.at("xsessions")};
    (void)tree.write("xsessions/some.desktop",
                     "[Desktop Entry]\nType=Application\nName=x\nExec=env A=1 starts --now\n");
    machine.places.displayManagerUnit = tree.at("display-manager.service");
    (void)tree.write("lib/greeter.service", "");
    (void)tree.symlink(tree.at("lib/greeter.service"), "display-manager.service");
    machine.places.displayManagerFile = tree.at("default");
    (void)tree.write("default", tree.at("usr/bin/greeter2") + '\n');
    const DpkgDatabase database(machine.places.dpkg);
    const PackageFoundations foundations(database, machine.places);
    std::map<std::string, Strings> found;
    for (const std::string& name : names)
        found[std::string(foundations.reasonFor(name + ":amd64"))].push_back(name);
    const std::map<std::string, Strings> expected{
        {"", {"chat", "idler", "plain"}},
        {"the desktop runs on it", {"panel", "leader", "shell", "framer", "starts"}},
        {"people log in by it", {"greeter", "greeter2"}},
        {"rights are asked for by it", {"agent"}}};
    EXPECT_EQ(found, expected);
}
TEST(Applications, OfTheSystemAreThoseThatTakeItAlong) {
    MadeUpMachine machine;
    machine.package("lib", "", {});
    machine.package("other", "Provides: thing (= 1)\n", {});
    machine.package("needs", "Pre-Depends: lib:any (>= 2) [amd64]\n", {});
    machine.package("above", "Essential: yes\nDepends: needs\n", {});
    machine.package("choice", "Depends: lib | thing\n", {});
    machine.package("recommends", "Recommends: lib\n", {});
    const DpkgDatabase database(machine.places.dpkg);
    const auto along = [&](const char* name) {
        Strings out;
        for (const DpkgPackage* each : database.takenAlongBy(*database.installed(name)))
            out.emplace_back(each->name);
        return out;
    };
    EXPECT_THAT(along("lib"), ElementsAre("needs", "above"));
    EXPECT_THAT(along("other"), IsEmpty());
    machine.package("other", "", {});  // twice in the file, as after a fault
    EXPECT_THAT(along("choice"), IsEmpty());
}

TEST(Applications, OfFlatpakSayWhyTheyStayInWordsForPeople) {
    const std::string dismissed = "The password was not given, or the system does not allow it";
    for (const auto& [said, told] : std::map<const char*, std::string>{
             {"", "flatpak gave no reason"},
             {"GDBus.Error:org.freedesktop.DBus.Error.AccessDenied: Flatpak system operation "
              "Uninstall not allowed for user",
              dismissed},
             {"Flatpak system operation Uninstall not allowed for user", dismissed},
             {"org.a.B/x86_64/stable not installed", "org.a.B/x86_64/stable not installed"}})
        EXPECT_EQ(flatpakReason(said), told);
}

TEST(Applications, OfFlatpakAreReadFromItsFolders) {
    MadeUpMachine machine;
    TestTree& tree = machine.tree;
    const std::string app = "home/.local/share/flatpak/app/org.a.B/";
    const std::string active = app + "x86_64/stable/abc/";
    (void)tree.write(active + "deploy", "");
    (void)tree.write(active + "metadata", "[Application]\nname=org.a.B\n");
    (void)tree.write(active + "export/share/applications/org.a.B.desktop",
                     "[Desktop Entry]\nType=Application\nName=Bee\nName[de]=Biene\nIcon=bee\n");
    (void)tree.write(active + "files/share/metainfo/org.a.B.metainfo.xml",
                     "<component><releases><release date=\"1\" version=\"2.5\"/>"
                     "<release version=\"1\"/></releases></component>");
    (void)tree.write(active + "files/own", std::string(8192, 'x'));
    (void)tree.write(active + "files/shared", std::string(65536, 'y'));
    (void)tree.hardLink(active + "files/own", "repo/own");
    (void)tree.hardLink(active + "files/shared", "repo/shared");
    (void)tree.hardLink(active + "files/shared", "other/shared");
    (void)tree.symlink("abc", app + "x86_64/stable/active");
    (void)tree.symlink("x86_64/stable", app + "current");
    (void)tree.folder("flatpak/app/org.half.Done/x86_64/stable");
    machine.entry("org.a.B", "Exec=flatpak run org.a.B");
    machine.places.languages = {"de"};
    EXPECT_THAT(listed(machine), ElementsAre("flatpak org.a.B"));
    const LinuxApplications applications(machine.places);
    const ApplicationRecord bee = applications.list().front();
    EXPECT_EQ(bee.name + ' ' + bee.version + ' ' + bee.icon, "Biene 2.5 bee");
    EXPECT_EQ(bee.ref, "app/org.a.B/x86_64/stable");
    EXPECT_TRUE(bee.isPersons);
    const auto details = applications.kind(ApplicationType::Flatpak)->details(bee);
    EXPECT_TRUE(details.isUpTo);
    EXPECT_GE(*details.bytes, 8192U);
    EXPECT_LT(*details.bytes, 65536U) << "what something else shares does not come back";
}

// An ELF head of 64 bytes with the mark, and an image behind it.
std::string appImage(const std::string& image, char number = 2) {
    std::string head(64, '\0');
    head.replace(0, 6,
                 "\x7F"
                 "ELF\x02\x01");
    head.replace(8, 2, "AI");
    head[10] = number;
    head[0x28] = 64;
    return head + image;
}

TEST(Applications, AppImagesTellTheirNameWithoutBeingRun) {
    TestTree tree;
    if (::access("/usr/bin/mksquashfs", X_OK) != 0) GTEST_SKIP() << "mksquashfs is not here";
    (void)tree.write("image/usr/share/applications/x.desktop",
                     "[Desktop Entry]\nType=Application\nName=Ix\nIcon=ix\nExec=x\n"
                     "X-AppImage-Version=7\n#" +
                         testing::someBytes(20'000, 1));
    (void)tree.symlink("usr/share/./applications/../applications/x.desktop", "image/x.desktop");
    (void)tree.write("image/filler", testing::someBytes(30'000, 7));
    for (const char* const packer : {"gzip", "xz", "zstd", "lz4"}) {
        const std::string made = tree.at("made");
        ASSERT_EQ(std::system(("rm -f " + made + "; mksquashfs " + tree.at("image") + ' ' + made +
                               " -quiet -no-progress -comp " + packer)
                                  .c_str()),
                  0);
        const std::string whole = appImage(contentOf(made));
        (void)tree.write("x.AppImage", whole);
        const auto read = AppImageFile::read(tree.at("x.AppImage"), {});
        ASSERT_TRUE(read.isAppImage && read.entry) << packer;
        EXPECT_EQ(read.entry->name + read.entry->version, "Ix7") << packer;
        // Cut short anywhere and with any byte turned it ends without harm.
        std::mt19937 random(1);
        for (int i = 0; i < 60; ++i) {
            std::string damaged = whole;
            if (i % 3 == 0) damaged.resize(random() % damaged.size());
            else damaged[64 + random() % (i % 3 == 1 ? 96 : damaged.size() - 64)] ^= 0x41;
            (void)tree.write("bad", damaged);
            (void)AppImageFile::read(tree.at("bad"), {});
        }
    }
    (void)tree.sparse("large", std::uint64_t{2} << 30U);
    (void)tree.patch("large", 0, appImage("hsqs"));
    EXPECT_TRUE(AppImageFile::read(tree.at("large"), {}).isAppImage);
    EXPECT_FALSE(AppImageFile::read(tree.at("large"), {}).entry);
    (void)tree.fifo("pipe");
    EXPECT_FALSE(AppImageFile::read(tree.at("pipe"), {}).isAppImage);
}

TEST(Applications, AppImagesBehindLinksStayAndTheLinksGo) {
    MadeUpMachine machine;
    TestTree& tree = machine.tree;
    machine.program("home/Downloads/near", appImage(""));
    machine.program("disk/far", appImage(""));
    machine.program("disk/deep/started", appImage(""));
    machine.program("disk/deep/plain", appImage(""));
    (void)tree.symlink("../Downloads/near", "home/Applications/near");
    (void)tree.symlink("../../disk/far", "home/Applications/far");
    (void)tree.symlink("disk/deep", "shortcut");
    machine.entry("started", "Exec=" + tree.at("shortcut/started"));
    machine.entry("plain", "Exec=" + tree.at("disk/deep/plain"));
    const LinuxApplications applications(machine.places);
    const auto records = applications.list();
    const std::atomic<bool> never{false};
    const RemovalForecast forecast =
        applications.kind(ApplicationType::AppImage)->forecast(records, never);
    std::map<std::string, std::string> found;
    const auto local = [&](const std::string& path) {
        return ' ' + path.substr(tree.path().size() + 1);
    };
    for (std::size_t i = 0; i < records.size(); ++i) {
        std::string& text = found[records[i].id];
        for (const std::string& path : forecast.trash[i]) text += local(path);
        if (forecast.refusals.contains(i)) text += " refused";
    }
    const std::string entries = " usr/share/applications/";
    const std::map<std::string, std::string> expected{
        {"near", " home/Downloads/near home/Applications/near"},
        {"far", " home/Applications/far"},
        {"started", " shortcut/started refused"},
        {"plain", " disk/deep/plain" + entries + "plain.desktop"}};
    EXPECT_EQ(found, expected);
    EXPECT_THAT(forecast.stays, ElementsAre(HasSubstr("disk/far stays: ")));
}

// What a package's own scripts unpack is in no list of files, and what it starts them by is.
TEST(Applications, OfFoldersGoWithoutWhatIsPackages) {
    MadeUpMachine machine;
    TestTree& tree = machine.tree;
    for (const char* const name : {"fetched", "mixed", "half", "free"}) {
        machine.program(std::string("opt/") + name + "/run");
        machine.entry(name, "Exec=" + tree.at(std::string("opt/") + name + "/run"));
    }
    machine.entry("mixed-too", "Exec=" + tree.at("opt/mixed/run"));
    machine.package("fetcher", "", {"usr/share/applications/fetched.desktop"});
    machine.package("mixer", "", {"usr/share/applications/mixed-too.desktop"});
    machine.package("halves", "", {"opt/half/data"}, "install reinstreq half-installed");
    const LinuxApplications applications(machine.places);
    const auto records = applications.list();
    const std::atomic<bool> never{false};
    const auto forecast = applications.kind(ApplicationType::Folder)->forecast(records, never);
    std::map<std::string, std::string> found;
    for (std::size_t i = 0; i < records.size(); ++i)
        found[lastPathComponent(records[i].path).data()] =
            forecast.refusals.contains(i) ? forecast.refusals.at(i).substr(0, 24)
                                          : std::to_string(forecast.trash[i].size());
    const std::map<std::string, std::string> expected{{"fetched", "Files of the package fet"},
                                                      {"mixed", "2"},
                                                      {"half", "Files of the package hal"},
                                                      {"free", "2"}};
    EXPECT_EQ(found, expected);
    EXPECT_THAT(forecast.stays,
                ElementsAre(HasSubstr("mixed-too.desktop stays: Files of the package mixer")));
}

TEST(Applications, OfAnAppImageStayEntriesThatItsPersonMayNotRemove) {
    MadeUpMachine machine;
    TestTree& tree = machine.tree;
    machine.program("home/Applications/two", appImage("", 1));
    machine.entry("two", "Exec=" + tree.at("home/Applications/two"));
    const auto told = [&] {
        const LinuxApplications applications(machine.places);
        const std::atomic<bool> never{false};
        const RemovalForecast found =
            applications.kind(ApplicationType::AppImage)->forecast(applications.list(), never);
        std::string out = std::to_string(found.trash.front().size());
        for (const std::string& each : found.stays) out += each.substr(each.rfind('/'));
        return out;
    };
    (void)tree.setMode("usr/share/applications", 0777);
    EXPECT_EQ(testing::runInChild({.ordinaryUser = true}, told), "2");
    (void)tree.setMode("usr/share/applications", 0555);
    EXPECT_EQ(testing::runInChild({.ordinaryUser = true}, told),
              "1/two.desktop stays: only the administrator may remove it");
}

TEST(Applications, AreFoundWherePeoplePutThem) {
    MadeUpMachine machine;
    TestTree& tree = machine.tree;
    (void)tree.write("home/Downloads/One-1.2.AppImage", appImage("cut"));
    (void)tree.write("home/Downloads/notes.txt", appImage("not marked as a program"));
    machine.program("home/Applications/two", appImage("", 1));
    machine.program("elsewhere/three.AppImage", appImage(""));
    machine.program("opt/game/bin/start");
    machine.program("opt/paid/run");
    machine.program("home/Applications/Bundle.app/run");
    machine.program("opt/lonely");
    machine.program("opt/bin/part");
    machine.program("home/Applications/Games/chess/run");
    machine.entry("part", "Exec=" + tree.at("opt/bin/part"));
    machine.entry("chess", "Exec=" + tree.at("home/Applications/Games/chess/run"));
    (void)tree.symlink("../../opt/game/bin/start", "usr/bin/game");
    machine.entry("three", "Exec=" + tree.at("elsewhere/three.AppImage") + " %U");
    machine.entry("game", "Exec=game");
    machine.entry("game-editor", "Exec=\"" + tree.at("opt/game/bin/start") + "\" --edit");
    machine.entry("paid", "Exec=" + tree.at("opt/paid/run"));
    machine.entry("bundle", "Exec=" + tree.at("home/Applications/Bundle.app/run"));
    machine.entry("lonely", "Exec=" + tree.at("opt/lonely"));
    machine.package("paid", "", {"opt/paid/run", "usr/share/applications/paid.desktop"});
    EXPECT_THAT(listed(machine),
                ::testing::UnorderedElementsAre("deb paid paid", "appimage One-1.2", "appimage two",
                                                "appimage three", "folder game"));
}

TEST(Applications, ThatRunAreKnownByTheirProcesses) {
    MadeUpMachine machine;
    TestTree& tree = machine.tree;
    const auto process = [&](int number, const std::string& exe, const std::string& words,
                             const std::string& environment = {}) {
        const std::string folder = "proc/" + std::to_string(number) + '/';
        if (!exe.empty()) (void)tree.symlink(exe, folder + "exe");
        (void)tree.write(folder + "cmdline", words);
        (void)tree.write(folder + "environ", environment);
        (void)tree.write(folder + "stat", "1 (a) b) S 0 0 0 0 -1 4194560 0");
    };
    process(10, "/usr/bin/python3", std::string("python3\0/usr/bin/script\0", 24));
    process(11, "/opt/game/bin/start (deleted)", "start");
    process(12, "/tmp/.mount_x/run", "run", std::string("A=1\0APPIMAGE=/x/y.AppImage\0", 28));
    process(13, "", std::string("/usr/bin/closed\0-x", 18));
    process(14, "/usr/bin/flatpak", "");
    process(15, "", "");  // ended, and not asked for by its parent
    (void)tree.write("proc/15/stat", "15 (gone) Z 0 0 0 0 -1 4194560 0");
    (void)tree.write("run/.flatpak/7/pid", "14\n");
    (void)tree.write("run/.flatpak/7/info", "[Application]\nname=org.a.B\n");
    (void)tree.write("run/.flatpak/8/pid", "999\n");
    (void)tree.write("run/.flatpak/8/info", "[Application]\nname=org.old.C\n");
    struct Case {
        ApplicationType type;
        std::string id, path, program;
        RunState state;
    };
    const Case cases[] = {
        {ApplicationType::Deb, "script", "", "/usr/bin/script", RunState::Yes},
        {ApplicationType::Deb, "other", "", "/usr/bin/other", RunState::No},
        {ApplicationType::Deb, "closed", "", "/usr/lib/closed", RunState::Unknown},
        {ApplicationType::Folder, "game", "/opt/game", "", RunState::Yes},
        {ApplicationType::Folder, "gam", "/opt/gam", "", RunState::No},
        {ApplicationType::AppImage, "y", "/x/y.AppImage", "", RunState::Yes},
        {ApplicationType::Flatpak, "org.a.B", "/none", "", RunState::Yes},
        {ApplicationType::Flatpak, "org.old.C", "/none", "", RunState::No},
    };
    const auto stateOf = [&](const Case& each) {
        ApplicationRecord record;
        record.type = each.type;
        record.id = each.id;
        record.path = each.path;
        if (!each.program.empty()) record.programs = {each.program};
        return LinuxApplications(machine.places).running({&record}).front();
    };
    for (const Case& each : cases) EXPECT_EQ(stateOf(each), each.state) << each.id;
    std::filesystem::rename(tree.at("proc/1"), tree.at("proc/none"));
    EXPECT_EQ(stateOf(cases[1]), RunState::Unknown) << "where others' processes are hidden";
    EXPECT_EQ(stateOf(cases[0]), RunState::Yes);
}

}  // namespace
}  // namespace orrinvale
