// PolkitWorld: see PolkitWorld.h.
#include "helper/PolkitWorld.h"

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>

#include "support/test.h"

namespace orrinvale::testing {
namespace {

constexpr const char* kDaemon = "/usr/bin/dbus-daemon";
constexpr const char* kPolkit = "/usr/lib/polkit-1/polkitd";
constexpr const char* kPython = "/usr/bin/python3";
constexpr const char* kActions = "/usr/share/polkit-1/actions";
constexpr const char* kAction = "com.kelpford.Orrinvale.remove";
// Of PolkitWorld::password, by `openssl passwd -6 -salt orrinvale`.
constexpr const char* kHash =
    "$6$orrinvale$ScJ6QY1jj7fKg15dQM6Ix2pnfQ5SrO3fXC3271eUqZHS325.7r/4TpQC/hEA7yTPgm.dAQP/bmMRo/"
    "AdGJjO30";

std::string replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos;
         at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

pid_t start(const std::vector<const char*>& arguments, int terminal = -1) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int nothing = ::open("/dev/null", O_RDWR | O_CLOEXEC);
    if (terminal >= 0) {
        ::setsid();
        ::ioctl(terminal, TIOCSCTTY, 0);
    }
    for (int number = 0; number <= 2; ++number) ::dup2(terminal >= 0 ? terminal : nothing, number);
    std::vector<char*> own;
    for (const char* const each : arguments) own.push_back(const_cast<char*>(each));
    own.push_back(nullptr);
    ::execv(own[0], own.data());
    ::_exit(125);
}

int run(const std::vector<const char*>& arguments) {
    int status = -1;
    ::waitpid(start(arguments), &status, 0);
    return status;
}

}  // namespace

PolkitWorld::PolkitWorld() : m_obstacle(enter()) {}

PolkitWorld::~PolkitWorld() {
    end();
    ::umount2(kActions, MNT_DETACH);
    for (const char* const path : {"/etc/shadow", "/etc/group", "/run/dbus"})
        ::umount2(path, MNT_DETACH);
}

std::string PolkitWorld::enter() const {
    for (const char* const program :
         {kDaemon, kPolkit, "/usr/bin/pkexec", "/usr/bin/pkttyagent", "/usr/bin/pkaction"})
        if (::access(program, X_OK) != 0) return std::string(program) + " is not here";
    if (::geteuid() != 0) return "only root can make a world of its own";
    if (!unshareMounts()) return std::string("no mount namespace: ") + std::strerror(errno);
    TestTree& tree = const_cast<TestTree&>(m_tree);
    ::mkdir("/run/dbus", 0755);
    tree.folder("bus");
    tree.folder("actions");
    std::string shadow = contentOf("/etc/shadow");
    const std::size_t line = ('\n' + shadow).find("\nnobody:");
    if (line == std::string::npos) return "there is no user nobody";
    const std::size_t hash = line + std::strlen("nobody:");
    shadow.replace(hash, shadow.find(':', hash) - hash, kHash);
    tree.write("shadow", shadow);
    tree.setMode("shadow", 0600);
    tree.write("group", replaced(contentOf("/etc/group"), "sudo:x:27:", "sudo:x:27:nobody"));
    const bool isCovered =
        bindMount(tree.at("bus"), "/run/dbus") && bindMount(tree.at("actions"), kActions) &&
        bindMount(tree.at("shadow"), "/etc/shadow") && bindMount(tree.at("group"), "/etc/group");
    return isCovered ? std::string() : std::string("no mounts: ") + std::strerror(errno);
}

std::string PolkitWorld::addHelper(const std::string& name, const std::string& allowAny) {
    const std::string helper = m_tree.at(name);
    m_tree.write(name, contentOf(ORRINVALE_HELPER));
    m_tree.setMode(name, 0755);
    std::string policy = replaced(contentOf(ORRINVALE_POLICY), "@ORRINVALE_HELPER_PATH@", helper);
    policy = replaced(policy, kAction, kAction + ('.' + name));
    if (!allowAny.empty())
        policy = replaced(policy, "<allow_any>no</allow_any>",
                          "<allow_any>" + allowAny + "</allow_any>");
    m_tree.write("actions/" + name + ".policy", policy);
    return helper;
}

bool PolkitWorld::begin() {
    m_services.emplace_back(Strings{kDaemon, "--system", "--nofork", "--nopidfile"});
    if (!comesTrue([] { return ::access("/run/dbus/system_bus_socket", F_OK) == 0; })) return false;
    m_services.emplace_back(Strings{kPolkit, "--no-debug"});
    return comesTrue([] { return run({"/usr/bin/pkaction"}) == 0; });
}

void PolkitWorld::end() { m_services.clear(); }

PolkitAgent::PolkitAgent(Kind kind, pid_t subject)
    : m_terminal(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
    int ready[2];
    if (::grantpt(m_terminal.get()) != 0 || ::unlockpt(m_terminal.get()) != 0 || ::pipe(ready) != 0)
        return;
    const Descriptor end(ready[0]);
    Descriptor theirs(ready[1]);
    const Descriptor terminal(::open(::ptsname(m_terminal.get()), O_RDWR | O_NOCTTY | O_CLOEXEC));
    const std::string process = std::to_string(subject);
    const std::string notify = std::to_string(ready[1]);
    std::vector<const char*> command{"/usr/bin/pkttyagent", "--process", process.c_str(),
                                     "--notify-fd", notify.c_str()};
    if (kind == Kind::Dismissing) command = {kPython, ORRINVALE_DISMISSING_AGENT, process.c_str()};
    m_process = start(command, terminal.get());
    theirs.reset();
    char byte = 0;
    if (kind == Kind::Dismissing) (void)says("ready");
    else (void)!::read(end.get(), &byte, 1);  // its end is the word that it is registered
}

PolkitAgent::~PolkitAgent() { kill(); }

void PolkitAgent::kill() {
    if (m_process <= 0) return;
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
    m_process = -1;
}

bool PolkitAgent::says(const std::string& words) {
    pollfd source{m_terminal.get(), POLLIN, 0};
    while (m_said.find(words) == std::string::npos) {
        std::array<char, 512> piece;
        if (::poll(&source, 1, 10'000) <= 0) return false;
        const ssize_t count = ::read(m_terminal.get(), piece.data(), piece.size());
        if (count <= 0) return false;
        m_said.append(piece.data(), static_cast<std::size_t>(count));
    }
    return true;
}

void PolkitAgent::type(const std::string& line) const {
    (void)!::write(m_terminal.get(), (line + '\n').c_str(), line.size() + 1);
}

std::string obstacleToDismissing() {
    const int status = run(
        {kPython, "-c", "import dbus.service, dbus.mainloop.glib; from gi.repository import GLib"});
    return status == 0 ? std::string() : "Python's dbus and gi are not here";
}

}  // namespace orrinvale::testing
