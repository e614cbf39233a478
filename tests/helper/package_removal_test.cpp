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
    // Without lists of what could be installed the service's cache is made at once.
    (void)mountRam("/var/lib/apt/lists");
    return {};
}

bool run(const std::string& command) {
    return std::system(("( " + command + " ) >/dev/null 2>&1").c_str()) == 0;
}

// A package with a program and an entry of its name, with further fields of its control file.
bool install(const std::string& name, const std::string& fields) {
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
    return run("dpkg-deb --build " + root + " && dpkg -i " + root + ".deb");
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
    const LinuxApplications applications;
    const ApplicationKind& kind = *applications.kind(ApplicationType::Deb);
    const ApplicationRecord app = recordOf(applications, "orr-app");
    if (app.name != "orr-app") return "the package is not listed";
    std::string troubles;
    const auto expect = [&](bool holds, const std::string& what) {
        if (!holds) troubles += what + "; ";
    };
    const ServiceProcess service({daemon});
    if (!comesTrue([] { return PackageService::resolve({"dpkg"}, {never, 20s}).worked(); }))
        return "PackageKit does not come up";

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
    expect(forecast.stays.size() == 1, "what stays");
    expect(isThere("/usr/bin/orr-app"), "a simulation removed it");
    std::string dismissed;
    if (obstacleToDismissing().empty()) dismissed = removalByDismissing(app);
    expect(dismissed.empty() || dismissed == "The password was not given", dismissed);
    expect(isThere("/usr/bin/orr-app"), "it went without a password");

    RemovalForecast other = forecast;
    other.promised.pop_back();
    expect(kind.remove({app}, other, never)[0].state == ApplicationRemoval::State::Refused,
           "more went than was promised");
    const auto removed = kind.remove({app}, forecast, never).front();
    expect(removed.state == ApplicationRemoval::State::Gone, removed.reason);
    const DpkgDatabase after("/var/lib/dpkg");
    for (const char* const name : {"orr-app", "orr-more"})
        expect(after.installed(name) == nullptr, std::string(name) + " is still there");
    expect(after.installed("orr-lib") != nullptr, "another package went");
    expect(!isThere("/usr/bin/orr-app") && isThere("/etc/orr-app.conf"), "files");
    expect(run("apt-get check") && run("dpkg --verify orr-lib orr-login"), "a broken database");
    return troubles;
}

TEST(PackageRemoval, TakesWhatWasPromisedAndNothingElse) {
    EXPECT_TOLD(
        runInChild(
            {},
            []() -> std::string {
                for (const char* const path : {daemon, policy, "/usr/bin/dpkg-deb"})
                    if (!isThere(path)) return std::string("skip: no ") + path;
                if (::geteuid() != 0 || !unshareMounts()) return "skip: no own mounts";
                if (auto obstacle = layersOver({"/usr", "/var", "/etc", "/opt"}); !obstacle.empty())
                    return obstacle;
                if (!install("orr-app", "") || !install("orr-more", "Depends: orr-app\n") ||
                    !install("orr-lib", "") ||
                    !install("orr-login", "Depends: orr-lib\nProvides: x-display-manager\n") ||
                    !install("orr-needed", "Essential: yes\n"))
                    return "skip: packages can not be installed";
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
    MadeUpService() {
        machine.program("usr/bin/tool");
        machine.entry("tool", "Exec=tool");
        machine.package("first", "", {});
        machine.package("tool", "", {"usr/bin/tool", "usr/share/applications/tool.desktop"});
        machine.package("other", "Depends: tool\n", {});
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
    void play(const std::string& simulated, const std::string& real) {
        (void)machine.tree.write("calls", "");
        (void)machine.tree.write("scene", R"({"simulated":)" + simulated + R"(,"real":")" + real +
                                              R"(","status":")" + machine.tree.at("dpkg/status") +
                                              R"(","calls":")" + machine.tree.at("calls") +
                                              R"("})");
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
        {own, "waits", "", State::Failed, "stopped", "", call + "cancel\n", true},
        {own, "holds", "", State::Gone, "", "The removal of packages could not be stopped any more",
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

TEST(PackageRemoval, AFlatpakGoesByItsLibrary) {
    if (!isThere("/usr/bin/flatpak")) GTEST_SKIP() << "flatpak is not here";
    TestTree tree;
    (void)tree.write("app/metadata",
                     "[Application]\nname=org.orrinvale.Test\nruntime=org.o.P/x86_64/stable\n");
    (void)tree.write("app/files/data", std::string(50'000, 'x'));
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
                       if (kind.details(records[0]).bytes < 50'000U) return "no size";
                       const RemovalForecast forecast = kind.forecast(records, never);
                       if (!forecast.refusal.empty()) return "skip: " + forecast.refusal;
                       if (forecast.asksForRight) return "it is the person's own";
                       const auto removed = kind.remove(records, forecast, never).front();
                       if (removed.state != ApplicationRemoval::State::Gone) return removed.reason;
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
