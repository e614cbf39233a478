// What running programs have open (platform/openFiles.h). proc(5) says what is read.
#include "platform/openFiles.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <climits>
#include <optional>
#include <string_view>

#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t mostOfProcess = 4096;
constexpr std::size_t mapsLimit = 4 * 1024 * 1024;

bool isProcess(const std::string& name) {
    return !name.empty() && name.find_first_not_of("0123456789") == std::string::npos;
}

std::string lowered(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return out;
}

constexpr std::string_view goneMark = " (deleted)";

// What the machine remembers of an entry; a server that does not answer is not asked.
std::optional<struct statx> rememberedOf(const std::string& path) {
    struct statx entry {};
    if (::statx(AT_FDCWD, path.c_str(), AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT,
                STATX_TYPE | STATX_NLINK | STATX_INO, &entry) != 0)
        return std::nullopt;
    return entry;
}

std::uint64_t deviceOf(const struct statx& entry) {
    return gnu_dev_makedev(entry.stx_dev_major, entry.stx_dev_minor);
}

// The kernel shows the way in which a descriptor is open as the mode of its link.
bool isOpenForWriting(const std::string& link) {
    struct stat entry {};
    return ::lstat(link.c_str(), &entry) == 0 && (entry.st_mode & S_IWUSR) != 0;
}

// The next field of a line, which spaces part.
std::string_view nextField(std::string_view& rest) {
    const std::size_t end = std::min(rest.find(' '), rest.size());
    const std::string_view field = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return field;
}

template <class Number> Number numberOf(std::string_view text, int base) {
    Number number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number, base);
    return number;
}

class HolderLook final {
public:
    explicit HolderLook(const std::vector<std::string>& folders) : m_folders(folders) {
        for (const std::string& folder : folders)
            if (const auto entry = rememberedOf(folder)) m_devices.insert(deviceOf(*entry));
    }

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
        bool isShown = addLink(process + "/cwd");
        for (const std::string& each : systemNamesIn(descriptors))
            isShown = addLink(joinPath(descriptors, each)) && isShown;
        isShown = addMappings(process) && isShown;
        if (!isShown && isMine(process)) addHidden(process);
    }

    // These two: false where the system does not show it all.
    bool addLink(const std::string& link) {
        std::array<char, PATH_MAX> target;
        const ssize_t length = ::readlink(link.c_str(), target.data(), target.size());
        if (length < 0) return errno != EACCES && errno != EPERM;
        const std::string_view path(target.data(), static_cast<std::size_t>(length));
        if (!path.starts_with('/')) return true;  // a socket, a pipe
        add(path);
        const auto entry = rememberedOf(link);
        if (!entry || !m_devices.contains(deviceOf(*entry)) || entry->stx_nlink == 0) return true;
        if (S_ISDIR(entry->stx_mode) || entry->stx_nlink == 1 || isOpenForWriting(link))
            m_found.entries.insert({deviceOf(*entry), entry->stx_ino});
        return true;
    }

    // "7f12a000-7f13b000 rw-s 00000000 08:11 131    /home/u/.cache/shaders". What is mapped without
    // being open is known by its path, and where the program writes to it also by its entry; on
    // btrfs, where the device is another one here, by the path alone.
    bool addMappings(const std::string& process) {
        const auto text = readSystemText(process + "/maps", mapsLimit);
        if (!text) return text.error() != EACCES && text.error() != EPERM;
        std::string_view rest = *text;
        std::string_view last;
        while (!rest.empty()) {
            const std::string_view line = rest.substr(0, rest.find('\n'));
            rest.remove_prefix(std::min(line.size() + 1, rest.size()));
            const std::size_t at = line.find('/');
            if (at == std::string_view::npos || line.substr(at) == last) continue;
            last = line.substr(at);
            add(last);
            addWrittenMapping(line);
        }
        return text->size() < mapsLimit;
    }

    void addWrittenMapping(std::string_view line) {
        static_cast<void>(nextField(line));
        const std::string_view mode = nextField(line);
        if (mode.size() != 4 || mode[1] != 'w' || mode[3] != 's') return;
        static_cast<void>(nextField(line));
        const std::string_view device = nextField(line);
        const std::size_t colon = std::min(device.find(':'), device.size() - 1);
        const auto number = gnu_dev_makedev(numberOf<unsigned>(device.substr(0, colon), 16),
                                            numberOf<unsigned>(device.substr(colon + 1), 16));
        if (m_devices.contains(number))
            m_found.entries.insert({number, numberOf<std::uint64_t>(nextField(line), 10)});
    }

    void add(std::string_view path) {
        if (path.ends_with(goneMark)) return;
        if (std::any_of(m_folders.begin(), m_folders.end(),
                        [&](const std::string& folder) { return isWithin(path, folder); }))
            m_found.paths.emplace(path);
    }

    // The process's own folder may belong to root once it hides; its status tells whose it is.
    static bool isMine(const std::string& process) {
        const std::string text =
            readSystemText(process + "/status", mostOfProcess).value_or(std::string());
        return text.find(fmt::format("\nUid:\t{}\t", ::getuid())) != std::string::npos;
    }

    // One that ended, and whose parent has not asked yet how, shows nothing and has nothing open.
    // Where its first thread alone has ended the others may go on.
    static bool hasEnded(const std::string& process) {
        const std::string text =
            readSystemText(process + "/status", mostOfProcess).value_or(std::string());
        const auto says = [&](std::string_view line) {
            return text.find(line) != std::string::npos;
        };
        return (says("\nState:\tZ") || says("\nState:\tX")) &&
               (says("\nThreads:\t0\n") || says("\nThreads:\t1\n"));
    }

    void addHidden(const std::string& process) {
        if (hasEnded(process)) return;
        std::string name = readSystemText(process + "/comm", mostOfProcess).value_or(std::string());
        if (name.ends_with('\n')) name.pop_back();
        m_found.hiddenPrograms.insert(lowered(name));
        const std::string line =
            readSystemText(process + "/cmdline", mostOfProcess).value_or(std::string());
        const std::string program = line.substr(0, line.find('\0'));
        if (!program.empty()) m_found.hiddenPrograms.insert(lowered(lastPathComponent(program)));
    }

    const std::vector<std::string>& m_folders;
    std::set<std::uint64_t> m_devices;  // of the folders
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

OpenFiles OpenFiles::below(const std::vector<std::string>& folders) {
    return HolderLook(folders).run();
}

}  // namespace orrinvale
