// proc(5) says what is read. Of other users' processes the kernel shows the command line alone.
#include "platform/linux/RunningPrograms.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <optional>

#include "platform/descriptor.h"
#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t mostOfProgram = std::size_t{64} * 1024;

bool isNumber(const std::string& name) {
    return !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
}

std::vector<std::string> wordsOf(const std::string& text) {
    std::vector<std::string> out;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\0', at), text.size());
        out.push_back(text.substr(at, end - at));
        at = end + 1;
    }
    return out;
}

std::string textAt(const std::string& path) {
    return readSystemText(path, mostOfProgram).value_or(std::string());
}

// "PID (NAME) STATE PPID PGRP SESSION TTY TPGID FLAGS ...": the number `field` fields behind STATE.
std::uint64_t numberIn(const std::string& stat, int field) {
    const std::size_t end = stat.rfind(')');
    std::string_view rest = end == std::string::npos ? "" : std::string_view(stat).substr(end + 1);
    for (; field >= 0; --field) rest.remove_prefix(std::min(rest.find(' ', 1), rest.size()));
    std::uint64_t number = 0;
    for (const char c : rest.substr(std::min<std::size_t>(1, rest.size()))) {
        if (c < '0' || c > '9') break;
        number = number * 10 + static_cast<std::uint64_t>(c - '0');
    }
    return number;
}

bool isKernelThread(const std::string& stat) {
    constexpr std::uint64_t kernelThread = 0x0020'0000;
    constexpr int flags = 5;
    return (numberIn(stat, flags) & kernelThread) != 0;
}

// Only its parent has not asked yet what it came to.
bool hasEnded(const std::string& stat) {
    const std::size_t end = stat.rfind(')');
    return end != std::string::npos && stat.compare(end, 3, ") Z") == 0;
}

// Who listens at a socket; empty where nobody does.
std::string listenerAt(const std::string& path) {
    sockaddr_un address{};
    if (path.empty() || path.size() >= sizeof(address.sun_path)) return {};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof(address.sun_path) - 1);
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    ucred who{};
    socklen_t size = sizeof(who);
    const auto* const where = reinterpret_cast<const sockaddr*>(&address);
    if (!socket.isOpen() || ::connect(socket.get(), where, sizeof(address)) != 0 ||
        ::getsockopt(socket.get(), SOL_SOCKET, SO_PEERCRED, &who, &size) != 0)
        return {};
    return std::to_string(who.pid);
}

class RunningLook final {
public:
    explicit RunningLook(const ApplicationPlaces& places) : m_places(places) {}

    RunningPrograms run() {
        findSession();
        // Where processes of others are hidden not even the first one is there.
        m_out.isPartial = ::access(joinPath(m_places.processes, "1").c_str(), F_OK) != 0;
        for (const std::string& name : systemNamesIn(m_places.processes))
            if (isNumber(name) && name != std::to_string(::getpid())) take(name);
        for (const std::string& name : systemNamesIn(m_places.flatpakInstances))
            if (isNumber(name)) takeInstance(joinPath(m_places.flatpakInstances, name));
        return std::move(m_out);
    }

private:
    // The first process is everybody's.
    void findSession() {
        constexpr int parent = 0;
        constexpr int most = 100;
        std::string process = std::to_string(::getpid());
        for (int i = 0; i < most; ++i) {
            process = std::to_string(
                numberIn(textAt(joinPath(m_places.processes, process) + "/stat"), parent));
            if (process == "0" || process == "1" || !m_session.insert(process).second) break;
        }
        m_session.insert(listenerAt(m_places.displaySocket));
        m_slice = "/user@" + std::to_string(::getuid()) + ".service/session.slice/";
    }

    [[nodiscard]] bool isOfSession(const std::string& name) const {
        if (m_session.contains(name)) return true;
        const std::string group = textAt(joinPath(m_places.processes, name) + "/cgroup");
        return group.find(m_slice) != std::string::npos;
    }

    void take(const std::string& name) {
        const std::string process = joinPath(m_places.processes, name);
        const bool isSession = isOfSession(name);
        std::string program(PATH_MAX, '\0');
        const ssize_t length =
            ::readlink((process + "/exe").c_str(), program.data(), program.size());
        const std::vector<std::string> words = wordsOf(textAt(process + "/cmdline"));
        if (length < 0) return takeClosed(process, words);
        program.resize(static_cast<std::size_t>(length));
        constexpr std::string_view gone = " (deleted)";
        if (program.ends_with(gone)) program.resize(program.size() - gone.size());
        const auto add = [&](const std::string& file) {
            m_out.files.insert(file);
            if (isSession) m_out.session.insert(file);
        };
        add(program);
        // The first words of a script's command line are its interpreter and itself.
        constexpr std::size_t looked = 4;
        for (std::size_t i = 0; i < std::min(words.size(), looked); ++i)
            if (words[i].starts_with('/')) add(words[i]);
        takeEnvironment(process);
    }

    void takeClosed(const std::string& process, const std::vector<std::string>& words) {
        const std::string stat = textAt(process + "/stat");
        if (stat.empty() || isKernelThread(stat)) return;  // gone meanwhile, or nobody's program
        if (words.empty()) m_out.isPartial = m_out.isPartial || !hasEnded(stat);
        else
            for (const std::string& word :
                 {words.front(), words[std::min<std::size_t>(1, words.size() - 1)]})
                m_out.closed.emplace(lastPathComponent(word.substr(0, word.find(' '))));
    }

    void takeEnvironment(const std::string& process) {
        constexpr std::string_view key = "APPIMAGE=";
        const std::string text = '\0' + textAt(process + "/environ");
        const std::size_t at = text.find('\0' + std::string(key));
        if (at == std::string::npos) return;
        const std::size_t begin = at + 1 + key.size();
        m_out.appImages.insert(withoutLinks(text.substr(begin, text.find('\0', begin) - begin)));
    }

    // Folders of instances that ended stay for a while.
    void takeInstance(const std::string& folder) {
        std::string process = textAt(folder + "/pid");
        process.resize(std::min(process.find('\n'), process.size()));
        if (!isNumber(process) ||
            ::access(joinPath(m_places.processes, process).c_str(), F_OK) != 0)
            return;
        const std::string info = textAt(folder + "/info");
        constexpr std::string_view key = "\nname=";
        const std::size_t at = info.find(key);
        if (at == std::string::npos) return;
        const std::size_t begin = at + key.size();
        m_out.flatpaks.insert(info.substr(begin, info.find('\n', begin) - begin));
    }

    const ApplicationPlaces& m_places;
    std::set<std::string, std::less<>> m_session;  // numbers of processes
    std::string m_slice;
    RunningPrograms m_out;
};

}  // namespace

RunningPrograms RunningPrograms::now(const ApplicationPlaces& places) {
    return RunningLook(places).run();
}

RunState RunningPrograms::stateOf(const ApplicationRecord& record,
                                  const std::function<bool(const std::string&)>& brings) const {
    if (record.type == ApplicationType::Flatpak && flatpaks.contains(record.id))
        return RunState::Yes;
    if (record.type == ApplicationType::AppImage && appImages.contains(record.path))
        return RunState::Yes;
    const bool runs = std::any_of(record.programs.begin(), record.programs.end(),
                                  [&](const std::string& each) { return files.contains(each); }) ||
                      std::any_of(files.begin(), files.end(), brings);
    if (runs) return RunState::Yes;
    const bool mayRun = std::any_of(
        record.programs.begin(), record.programs.end(),
        [&](const std::string& each) { return closed.contains(lastPathComponent(each)); });
    // What an interpreter has read by a name of its own is to be seen in no process.
    const bool isUnnamed = record.type == ApplicationType::Deb && record.programs.empty();
    return mayRun || isUnnamed || isPartial ? RunState::Unknown : RunState::No;
}

}  // namespace orrinvale
