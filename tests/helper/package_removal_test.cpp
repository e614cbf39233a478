// Removal of real packages by the real PackageKit and polkit, in layers over this machine that
// nobody else sees; and of a real flatpak.
#include "helper/PolkitWorld.h"
#include "platform/linux/DpkgDatabase.h"
#include "platform/linux/LinuxApplications.h"
#include "platform/linux/PackageService.h"
#include "support/MadeUpMachine.h"
#include "support/ScopedVariable.h"
#include "support/SilentSocket.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

constexpr const char* policy = "/usr/share/polkit-1/actions/org.freedesktop.packagekit.policy";
constexpr const char* daemon = "/usr/libexec/packagekitd";
const std::atomic<bool> never{false};

std::string layersOver(std::initializer_list<const char*> folders) {
    if (::mount("ram", "/mnt", "tmpfs", 0, "size=300m") != 0) return "skip: no tmpfs";
    for (const char* const folder : folders) {
        const std::string upper = std::string("/mnt/upper") + folder;
        const std::string work = std::string("/mnt/work") + folder;
        std::filesystem::create_directories(upper);
        std::filesystem::create_directories(work);
        const std::string options =
            std::string("lowerdir=") + folder + ",upperdir=" + upper + ",workdir=" + work;
        if (::mount("overlay", folder, "overlay", 0, options.c_str()) != 0)
            return std::string("skip: no layer over ") + folder;
    }
    // Nothing comes from anywhere else than the test's own folder.
    (void)mountRam("/var/lib/apt/lists");
    (void)mountRam("/etc/apt/sources.list.d");
    std::filesystem::create_directory("/mnt/repository");
    std::ofstream("/etc/apt/sources.list") << "deb [trusted=yes] file:/mnt/repository ./\n";
    return {};
}

bool run(const std::string& command) {
    return std::system(("( " + command + " ) >/dev/null 2>&1").c_str()) == 0;
}

// A package with a program and an entry of its name, with further fields of its control file, in
// the repository.
bool offer(const std::string& name, const std::string& fields) {
    const std::string root = "/mnt/" + name;
    const auto write = [&](const std::string& path, const std::string& text) {
        std::filesystem::create_directories(std::filesystem::path(root + path).parent_path());
        std::ofstream(root + path) << text;
    };
    write("/DEBIAN/control", "Package: " + name +
                                 "\nVersion: 1.0\nArchitecture: all\nMaintainer: A <a@b.c>\n"
                                 "Description: a test\n" +
                                 fields);
    write("/DEBIAN/conffiles", "/etc/" + name + ".conf\n");
    write("/etc/" + name + ".conf", "setting\n");
    write("/usr/bin/" + name, "#!/bin/sh\n");
    write("/usr/share/applications/" + name + ".desktop",
          "[Desktop Entry]\nType=Application\nName=" + name + "\nExec=" + name + "\n");
    ::chmod((root + "/usr/bin/" + name).c_str(), 0755);
    return run("dpkg-deb --build " + root + " /mnt/repository");
}

// From the repository by the service itself, so that what it removes came by it.
bool install(const std::string& names) {
    return run("cd /mnt/repository && dpkg-scanpackages . > Packages && printf '"
               "SHA256:\\n %s %s Packages\\n' $(sha256sum < Packages | cut -c -64) "
               "$(stat -c %s Packages) > Release") &&
           run("pkcon -y refresh force") && run("pkcon -y install " + names) &&
           run("dpkg --status " + names);
}

// Those whose files are there, with their architectures.
std::set<std::string> packagesThere() {
    std::set<std::string> out;
    const DpkgDatabase database("/var/lib/dpkg");
    for (const DpkgPackage& each : database.packages())
        if (each.isThere())
            out.insert(std::string(each.name) + ' ' + std::string(each.architecture));
    return out;
}

ApplicationRecord recordOf(const LinuxApplications& applications, const std::string& package) {
    for (ApplicationRecord& each : applications.list())
        if (each.package == package) return std::move(each);
    return {};
}

// As a person who closes every dialog.
std::string removalByDismissing(const ApplicationRecord& record) {
    return runInChild({.ordinaryUser = true}, [&]() -> std::string {
        const PolkitAgent agent(PolkitAgent::Kind::Dismissing, ::getpid());
        const LinuxApplications applications;
        const ApplicationKind& kind = *applications.kind(ApplicationType::Deb);
        const RemovalForecast forecast = kind.forecast({record}, never);
        if (!forecast.refusal.empty()) return "refused: " + forecast.refusal;
        const auto removed = kind.remove({record}, forecast, never).front();
        return removed.state == ApplicationRemoval::State::Dismissed ? removed.reason
                                                                     : "not dismissed";
    });
}

std::string packagesGoAsPromised(PolkitWorld& world, const std::string& actions) {
    world.addPolicy("org.freedesktop.packagekit.policy", actions);
    if (!world.begin()) return "no world";
    const ServiceProcess service({daemon});
    if (!comesTrue([] { return PackageService::resolve({"dpkg"}, {never, 20s}).worked(); }))
        return "PackageKit does not come up";
    if (!install("orr-app orr-more orr-lib orr-login orr-needed"))
        return "PackageKit installs nothing from the test's repository";
    const LinuxApplications applications;
    const ApplicationKind& kind = *applications.kind(ApplicationType::Deb);
    const ApplicationRecord app = recordOf(applications, "orr-app");
    if (app.name != "orr-app") return "the package is not listed";
    std::string troubles;
    const auto expect = [&](bool holds, const std::string& what) {
        if (!holds) troubles += what + "; ";
    };

    const auto refusalOf = [&](const char* package) {
        return kind.forecast({recordOf(applications, package)}, never).refusal;
    };
    for (const auto& [package, words] : std::map<const char*, std::string>{
             {"orr-lib", "orr-login would go along: people log in"}, {"orr-needed", "needs it"}})
        expect(refusalOf(package).find(words) != std::string::npos,
               std::string(package) + ": " + refusalOf(package));

    const RemovalForecast forecast = kind.forecast({app}, never);
    expect(forecast.refusal.empty(), forecast.refusal);
    expect(forecast.along.size() == 1 && forecast.along[0].name == "orr-more", "along");
    expect(forecast.kept.contains(0), "what stays");
    expect(isThere("/usr/bin/orr-app"), "a simulation removed it");
    std::string dismissed;
    if (obstacleToDismissing().empty()) dismissed = removalByDismissing(app);
    expect(dismissed.empty() || dismissed == "The password was not given", dismissed);
    expect(isThere("/usr/bin/orr-app"), "it went without a password");

    RemovalForecast other = forecast;
    other.promised.pop_back();
    expect(kind.remove({app}, other, never)[0].state == ApplicationRemoval::State::Refused,
           "more went than was promised");
    {
        // As apt does while it installs.
        const ServiceProcess installing({"/usr/bin/python3", "-c",
                                         "import fcntl, time\n"
                                         "for each in 'lock-frontend', 'lock':\n"
                                         "    file = open('/var/lib/dpkg/' + each, 'w')\n"
                                         "    fcntl.lockf(file, fcntl.LOCK_EX)\n"
                                         "    globals()[each] = file\n"
                                         "open('/mnt/locked', 'w')\ntime.sleep(120)\n"});
        expect(comesTrue([] { return isThere("/mnt/locked"); }), "no lock");
        const auto busy = kind.remove({app}, forecast, never).front();
        expect(busy.reason == "Another program installs or removes packages at the moment",
               "while another installs: " + busy.reason);
        expect(isThere("/usr/bin/orr-app"), "it went beside another");
    }
    std::set<std::string> left = packagesThere();
    const auto removed = kind.remove({app}, forecast, never).front();
    expect(removed.state == ApplicationRemoval::State::Gone, removed.reason);
    expect(forecast.promised.size() == 2, "what was promised");
    for (const std::string& id : forecast.promised) {
        const ServicePackage each{0, id};
        expect(left.erase(std::string(each.name()) + ' ' + std::string(each.architecture())) == 1,
               id + " was not there");
    }
    expect(packagesThere() == left, "other packages went than the simulation said");
    expect(!isThere("/usr/bin/orr-app") && isThere("/etc/orr-app.conf"), "files");
    expect(run("apt-get check"), "broken dependencies");
    // Both say nothing of what is as it should be.
    expect(run("test -z \"$(dpkg --verify orr-lib orr-login orr-needed; dpkg --audit)\""),
           "a broken database");
    return troubles;
}

TEST(PackageRemoval, TakesWhatWasPromisedAndNothingElse) {
    EXPECT_TOLD(
        runInChild(
            {},
            []() -> std::string {
                for (const char* const path : {daemon, policy, "/usr/bin/dpkg-deb",
                                               "/usr/bin/dpkg-scanpackages", "/usr/bin/pkcon"})
                    if (!isThere(path)) return std::string("skip: no ") + path;
                if (::geteuid() != 0 || !unshareMounts()) return "skip: no own mounts";
                if (auto obstacle = layersOver({"/usr", "/var", "/etc", "/opt"}); !obstacle.empty())
                    return obstacle;
                if (!offer("orr-app", "") || !offer("orr-more", "Depends: orr-app\n") ||
                    !offer("orr-lib", "") ||
                    !offer("orr-login", "Depends: orr-lib\nProvides: x-display-manager\n") ||
                    !offer("orr-needed", "Essential: yes\n"))
                    return "packages can not be made";
                const std::string actions = contentOf(policy);  // the world covers them
                PolkitWorld world;
                return world.obstacle().empty() ? packagesGoAsPromised(world, actions)
                                                : "skip: " + world.obstacle();
            }),
        "");
}

TEST(PackageRemoval, SaysWhenThereIsNobodyToAsk) {
    TestTree tree;
    const Descriptor silent = silentSocket(tree.at("silent"));
    ApplicationRecord record;
    record.package = "dpkg";
    for (const auto& [socket, words] :
         std::map<const char*, const char*>{{"none",
                                             "The service that removes packages, "
                                             "PackageKit, is not there"},
                                            {"silent",
                                             "The service that removes packages does not "
                                             "answer"}}) {
        const ScopedVariable address("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + tree.at(socket));
        std::atomic<bool> stop{false};
        const auto forecast =
            LinuxApplications().kind(ApplicationType::Deb)->forecast({record}, stop);
        EXPECT_EQ(forecast.refusal, words);
        EXPECT_EQ(LinuxApplications()
                      .kind(ApplicationType::Deb)
                      ->remove({record}, forecast, stop)[0]
                      .state,
                  ApplicationRemoval::State::Refused);
    }
}

// Made-up packages and the service that removes them, on a bus of their own.
class MadeUpService {
public:
    /// `further` are packages with a program each and fields of theirs.
    explicit MadeUpService(const std::map<std::string, std::string>& further = {}) {
        machine.program("usr/bin/tool");
        machine.entry("tool", "Exec=tool");
        machine.package("first", "", {});
        machine.package("tool", "", {"usr/bin/tool", "usr/share/applications/tool.desktop"});
        machine.package("other", "Depends: tool\n", {});
        for (const auto& [name, fields] : further) {
            machine.program("usr/bin/" + name);
            const std::string entry = "usr/share/applications/" + name;
            machine.package(name, fields,
                            {"usr/bin/" + name, entry + ".desktop", entry + "er.desktop"});
        }
        (void)machine.tree.write(
            "bus.conf",
            "<busconfig><type>system</type><listen>unix:path=" + machine.tree.at("bus") +
                "</listen><policy context=\"default\">"
                "<allow send_destination=\"*\"/>"
                "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy>"
                "</busconfig>");
        m_services.emplace_back(Strings{"/usr/bin/dbus-daemon", "--nofork",
                                        "--config-file=" + machine.tree.at("bus.conf")});
        (void)comesTrue([&] { return isThere(machine.tree.at("bus")); });
        play("[]", "works");
        m_services.emplace_back(
            Strings{"/usr/bin/python3", ORRINVALE_PACKAGE_SERVICE, machine.tree.at("scene")});
        (void)comesTrue([] {
            return PackageService::resolve({"tool"}, {never, 5s}).packages.size() == 1;
        });
    }
    void play(const std::string& simulated, const std::string& real,
              const std::string& error = "null") {
        (void)machine.tree.write("calls", "");
        (void)machine.tree.write("scene", R"({"error":)" + error + R"(,"simulated":)" + simulated +
                                              R"(,"real":")" + real + R"(","status":")" +
                                              machine.tree.at("dpkg/status") + R"(","calls":")" +
                                              machine.tree.at("calls") + R"("})");
    }
    MadeUpMachine machine;

private:
    const ScopedVariable m_address{"DBUS_SYSTEM_BUS_ADDRESS",
                                   "unix:path=" + machine.tree.at("bus")};
    std::vector<ServiceProcess> m_services;
};

TEST(PackageRemoval, DoesNothingThatWasNotToldAndBelievesDpkgAlone) {
    if (const auto obstacle = obstacleToDismissing(); !obstacle.empty()) GTEST_SKIP() << obstacle;
    using State = ApplicationRemoval::State;
    const std::string own = R"([13,"tool;1.0;amd64;installed"])";
    const std::string other = R"([28,"other;1.0;amd64;installed"])";
    struct Case {
        std::string simulated, real, refusal;
        State state = State::Refused;
        std::string reason = {}, note = {}, calls = {};
        bool isStopped = false;
    };
    const std::string call = "remove tool;1.0;amd64;installed 00\n";
    const std::string both = "remove other;1.0;amd64;installed tool;1.0;amd64;installed 00\n";
    const std::string more = "More than a removal would be done to ";
    const Case cases[] = {
        {own, "works", "", State::Gone, "", "", call},
        {own + ',' + other, "works", "", State::Gone, "", "", both},
        {own + R"(,[12,"new;2;amd64;"])", "works", more + "new"},
        {own + R"(,[99,"strange;2;amd64;"])", "works", more + "strange"},
        {own + R"(,[13,""])", "works", more + "a package"},
        {own, "more", "", State::Gone, "", "Another package went as well: other", call},
        {own, "lies", "", State::Failed, "The service that removes packages gave no reason", "",
         call},
        {own, "empties", "", State::Failed,
         "Nobody can tell whether it is gone: The list of packages can not be read", "", call},
        {own, "busy", "", State::Failed,
         "Another program installs or removes packages at the moment", "", call},
        {own, "waits", "", State::Failed, "stopped", "", call + "cancel\n", true},
        {own, "holds", "", State::Gone, "", "The removal of packages could not be stopped any more",
         call + "cancel\n", true},
        {own, "late", "", State::Gone, "", "The removal of packages could not be stopped any more",
         call + "cancel\n", true},
    };
    for (const Case& each : cases) {
        MadeUpService service;
        service.play('[' + each.simulated + ']', each.real);
        const LinuxApplications applications(service.machine.places);
        const ApplicationKind& kind = *applications.kind(ApplicationType::Deb);
        const auto records = applications.list();
        const RemovalForecast forecast = kind.forecast(records, never);
        ASSERT_EQ(forecast.refusal, each.refusal);
        std::atomic<bool> stop{false};
        const std::jthread stopper([&] {
            if (!each.isStopped) return;
            (void)comesTrue([&] { return !contentOf(service.machine.tree.at("calls")).empty(); });
            stop = true;
        });
        const auto removed = kind.remove(records, forecast, stop).front();
        EXPECT_EQ(removed.state, each.state) << each.real << removed.reason;
        EXPECT_EQ(removed.reason, each.refusal + each.reason);
        EXPECT_EQ(removed.note, each.note);
        const std::string calls = contentOf(service.machine.tree.at("calls"));
        EXPECT_EQ(calls.substr(0, each.calls.size()), each.calls);
        EXPECT_TRUE(each.isStopped || calls == each.calls) << calls;
    }
    MadeUpService service;
    service.play('[' + own + ']', "works");
    const LinuxApplications applications(service.machine.places);
    const auto records = applications.list();
    const ApplicationKind& kind = *applications.kind(ApplicationType::Deb);
    const RemovalForecast forecast = kind.forecast(records, {never, 20s});
    service.play('[' + own + ',' + other + ']', "works");
    EXPECT_EQ(kind.remove(records, forecast, never).front().reason,
              "Other packages would go by now than those that were listed");
    EXPECT_EQ(contentOf(service.machine.tree.at("calls")), "");
}

TEST(PackageRemoval, WhatWentMeanwhileFailsAlone) {
    if (const auto obstacle = obstacleToDismissing(); !obstacle.empty()) GTEST_SKIP() << obstacle;
    using State = ApplicationRemoval::State;
    MadeUpService service(std::map<std::string, std::string>{{"paint", ""}});
    service.machine.entry("paint", "Exec=paint");
    const LinuxApplications applications(service.machine.places);
    const ApplicationKind& kind = *applications.kind(ApplicationType::Deb);
    const std::string tool = R"([13,"tool;1.0;amd64;installed"])";
    service.play('[' + tool + R"(,[13,"paint;1.0;amd64;installed"]])", "works");
    auto records = applications.list();
    std::ranges::sort(records, {}, &ApplicationRecord::package);
    ASSERT_EQ(records.size(), 2U);
    const RemovalForecast forecast = kind.forecast(records, {never, 20s});
    ASSERT_EQ(forecast.refusal, "");
    const std::string status = contentOf(service.machine.tree.at("dpkg/status"));
    const auto begin = status.find("Package: paint\n");
    std::string left = status;
    left.erase(begin, status.find("\n\n", begin) + 2 - begin);
    (void)service.machine.tree.write("dpkg/status", left);
    // What would go besides by now was never shown.
    for (const auto& [simulated, state] : std::map<std::string, State>{
             {'[' + tool + R"(,[28,"other;1.0;amd64;installed"]])", State::Refused},
             {'[' + tool + ']', State::Gone}}) {
        service.play(simulated, "works");
        const auto removed = kind.remove(records, forecast, never);
        EXPECT_EQ(removed[0].reason, "paint is not installed any more");
        EXPECT_EQ(removed[0].state, State::Failed);
        EXPECT_EQ(removed[1].state, state) << removed[1].reason;
    }
    EXPECT_EQ(contentOf(service.machine.tree.at("calls")), "remove tool;1.0;amd64;installed 00\n");
}

TEST(PackageRemoval, TellsOfEachWhatGoesAlongWithIt) {
    if (const auto obstacle = obstacleToDismissing(); !obstacle.empty()) GTEST_SKIP() << obstacle;
    MadeUpService service({{"paint", ""},
                           {"brush", "Depends: paint\n"},
                           {"bristle", "Depends: brush (>= 1), other | brush\n"},
                           {"either", "Depends: tool | paint\n"},
                           {"sudo", "Depends: tool\n"},
                           {"needed", "Essential: yes\nDepends: tool\n"}});
    for (const char* const name : {"paint", "painter"}) service.machine.entry(name, "Exec=paint");
    const LinuxApplications applications(service.machine.places);
    const ApplicationKind& kind = *applications.kind(ApplicationType::Deb);
    struct Case {
        const char* name;
        Strings asked, simulated;  // packages
        Strings along;             // "TAKER NAME VERSION"
        std::string refusal = {}, error = "null";
    };
    const Case cases[] = {
        {"nothing", {"tool"}, {"tool"}, {}},
        {"what depends on it, at any depth",
         {"paint"},
         {"paint", "bristle", "brush"},
         {"paint bristle 1.0", "paint brush 1.0", "paint painter"}},
        {"of two each takes its own",
         {"tool", "paint"},
         {"brush", "other", "paint", "tool"},
         {"paint brush 1.0", "tool other 1.0", "paint painter"}},
        {"what only both together take is told of one",
         {"paint", "tool"},
         {"either", "paint", "tool"},
         {"paint either 1.0", "paint painter"}},
        {"one that is asked for goes along with nobody", {"other", "tool"}, {"other", "tool"}, {}},
        {"what the service does not name is asked for",
         {"tool", "paint"},
         {"tool"},
         {"paint painter"}},
        {"a way to rights",
         {"tool"},
         {"sudo", "tool"},
         {},
         "sudo would go along: rights are asked for by it"},
        {"what the system needs",
         {"tool"},
         {"needed", "tool"},
         {},
         "needed would go along: the system needs it"},
        {"the same, asked for", {"needed"}, {"needed"}, {}, "needed stays: the system needs it"},
        {"not there by now", {"gone"}, {}, {}, "gone is not installed any more"},
        {"needed by others", {"tool"}, {}, {}, "Other packages need it", R"([13,"x"])"},
        {"essential to the service", {"tool"}, {}, {}, "The system needs it", R"([20,"x"])"},
        {"an update runs",
         {"tool"},
         {},
         {},
         "Another program installs or removes packages at the moment",
         R"([26,"x"])"},
        {"the service's own words",
         {"tool"},
         {},
         {},
         "The service that removes packages says: no way",
         R"([4,"no way\nat all"])"},
    };
    const auto listed = applications.list();
    for (const Case& each : cases) {
        SCOPED_TRACE(each.name);
        std::string simulated;
        for (const std::string& name : each.simulated)
            simulated +=
                (simulated.empty() ? "" : ",") + ("[13,\"" + name + ";1.0;amd64;installed\"]");
        service.play('[' + simulated + ']', "works", each.error);
        std::vector<ApplicationRecord> records;
        for (const std::string& name : each.asked) {
            const auto found = std::ranges::find(listed, name, &ApplicationRecord::package);
            ApplicationRecord record;
            record.package = record.name = name;
            records.push_back(found == listed.end() ? record : *found);
        }
        const RemovalForecast forecast = kind.forecast(records, {never, 20s});
        EXPECT_EQ(forecast.refusal, each.refusal);
        Strings along;
        for (const RemovalForecast::Along& of : forecast.along)
            along.push_back(records[of.of].package + ' ' + of.name +
                            (of.version.empty() ? "" : ' ' + of.version));
        if (each.refusal.empty()) {
            EXPECT_EQ(along, each.along);
        }
        EXPECT_EQ(contentOf(service.machine.tree.at("calls")), "")
            << "a simulation removes nothing";
    }
}

// Bytes in blocks, each file once, whatever names it has.
std::uint64_t onDisk(const std::string& folder) {
    std::set<ino_t> seen;
    std::uint64_t out = 0;
    for (const auto& each : std::filesystem::recursive_directory_iterator(folder)) {
        struct stat entry {};
        if (::lstat(each.path().c_str(), &entry) == 0 && seen.insert(entry.st_ino).second)
            out += std::uint64_t(entry.st_blocks) * 512;
    }
    return out;
}

TEST(PackageRemoval, AFlatpakGoesByItsLibrary) {
    if (!isThere("/usr/bin/flatpak")) GTEST_SKIP() << "flatpak is not here";
    constexpr std::uint64_t large = std::uint64_t{8} << 20U;
    TestTree tree;
    (void)tree.write("app/metadata",
                     "[Application]\nname=org.orrinvale.Test\nruntime=org.o.P/x86_64/stable\n");
    (void)tree.write("app/files/data", someBytes(large, 1));
    (void)tree.write("app/export/share/applications/org.orrinvale.Test.desktop",
                     "[Desktop Entry]\nType=Application\nName=Tester\nExec=x\n");
    const std::string home = tree.at("home");
    const std::string flatpak = "HOME=" + home + " XDG_DATA_HOME=" + home + " flatpak ";
    if (!run(flatpak + "build-export --disable-sandbox " + tree.at("repo") + ' ' + tree.at("app") +
             " stable") ||
        !run(flatpak + "--user remote-add --no-gpg-verify local " + tree.at("repo")) ||
        !run(flatpak + "--user install -y --no-deps --noninteractive local org.orrinvale.Test"))
        GTEST_SKIP() << "no flatpak can be installed here";
    EXPECT_TOLD(
        runInChild({},
                   [&]() -> std::string {
                       ApplicationPlaces places;
                       places.flatpaks = {home + "/flatpak"};
                       const LinuxApplications applications(places);
                       const auto records = applications.list();
                       if (records.size() != 1 || records[0].name != "Tester") return "not listed";
                       const ApplicationKind& kind = *applications.kind(ApplicationType::Flatpak);
                       const std::uint64_t promised = kind.details(records[0]).bytes.value_or(0);
                       const std::uint64_t before = onDisk(home + "/flatpak");
                       const RemovalForecast forecast = kind.forecast(records, never);
                       if (!forecast.refusal.empty()) return "skip: " + forecast.refusal;
                       if (forecast.asksForRight) return "it is the person's own";
                       const auto removed = kind.remove(records, forecast, never).front();
                       if (removed.state != ApplicationRemoval::State::Gone) return removed.reason;
                       const std::uint64_t gained = before - onDisk(home + "/flatpak");
                       if (promised < large || gained < promised || gained - promised > large / 20)
                           return fmt::format("promised {}, gained {}", promised, gained);
                       const bool isTwice = kind.remove(records, forecast, never)[0].state ==
                                            ApplicationRemoval::State::Gone;
                       if (!applications.list().empty() || !isTwice) return "still listed";
                       // What can not be looked at is not gone, nor is what is out of reach.
                       const std::string app = home + "/flatpak/app/org.orrinvale.Test";
                       std::filesystem::create_symlink("org.orrinvale.Test", app);
                       const auto looped = kind.remove(records, forecast, never).front().state;
                       std::filesystem::remove(app);
                       std::filesystem::rename(home + "/flatpak", home + "/away");
                       const auto away = kind.remove(records, forecast, never).front().state;
                       using enum ApplicationRemoval::State;
                       return looped == Failed && away == Failed && !isThere(home + "/flatpak")
                                  ? ""
                                  : "it counts as gone";
                   }),
        "");
}

}  // namespace
}  // namespace orrinvale::testing
