// What running programs have open (platform/openFiles.h). proc(5) says what is read.
#include "platform/openFiles.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <optional>
#include <string_view>

#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t smallText = 4096;
constexpr std::size_t mapsLimit = 4 * 1024 * 1024;

bool isProcess(const std::string& name) {
    return !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
}

std::string targetOf(const std::string& link) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(link.c_str(), target.data(), target.size());
    return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length))
                      : std::string();
}

std::string lowered(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return out;
}

class Look final {
public:
    explicit Look(const std::vector<std::string>& folders) : m_folders(folders) {}

    OpenFiles run() {
        const std::string self = std::to_string(::getpid());
        for (const std::string& name : systemNamesIn("/proc"))
            if (isProcess(name) && name != self) lookAt("/proc/" + name);
        return std::move(m_found);
    }

private:
    void lookAt(const std::string& process) {
        const std::string descriptors = process + "/fd";
        if (::access(descriptors.c_str(), R_OK) != 0) {
            if (errno == EACCES && isMine(process)) addHidden(process);
            return;
        }
        add(targetOf(process + "/cwd"));
        for (const std::string& each : systemNamesIn(descriptors))
            add(targetOf(joinPath(descriptors, each)));
        addMappings(process);
    }

    void add(std::string path) {
        constexpr std::string_view gone = " (deleted)";
        if (!path.starts_with('/') || path.ends_with(gone)) return;
        if (std::any_of(m_folders.begin(), m_folders.end(),
                        [&](const std::string& folder) { return isWithin(path, folder); }))
            m_found.paths.insert(std::move(path));
    }

    // "7f12a000-7f13b000 r-xp 00000000 08:11 131 /home/u/.cache/shaders"
    void addMappings(const std::string& process) {
        const std::string text =
            readSystemText(process + "/maps", mapsLimit).value_or(std::string());
        std::string_view rest = text;
        std::string_view last;
        while (!rest.empty()) {
            const std::string_view line = rest.substr(0, rest.find('\n'));
            rest.remove_prefix(std::min(line.size() + 1, rest.size()));
            const std::size_t at = line.find('/');
            if (at == std::string_view::npos || line.substr(at) == last) continue;
            last = line.substr(at);
            add(std::string(last));
        }
    }

    // The process's own folder may belong to root once it hides; its status tells whose it is.
    static bool isMine(const std::string& process) {
        const std::string text =
            readSystemText(process + "/status", smallText).value_or(std::string());
        return text.find(fmt::format("\nUid:\t{}\t", ::getuid())) != std::string::npos;
    }

    void addHidden(const std::string& process) {
        std::string name = readSystemText(process + "/comm", smallText).value_or(std::string());
        if (name.ends_with('\n')) name.pop_back();
        m_found.hiddenPrograms.insert(lowered(name));
        const std::string line =
            readSystemText(process + "/cmdline", smallText).value_or(std::string());
        const std::string program = line.substr(0, line.find('\0'));
        if (!program.empty()) m_found.hiddenPrograms.insert(lowered(lastPathComponent(program)));
    }

    const std::vector<std::string>& m_folders;
    OpenFiles m_found;
};

}  // namespace

bool OpenFiles::isWithin(const std::string& path) const {
    const auto first = paths.lower_bound(path);
    if (first == paths.end()) return false;
    if (*first == path) return true;
    const auto below = paths.lower_bound(path + '/');
    return below != paths.end() && below->starts_with(path + '/');
}

OpenFiles OpenFiles::below(const std::vector<std::string>& folders) { return Look(folders).run(); }

}  // namespace orrinvale
