// LinuxFolders: see LinuxFolders.h.
#include "platform/linux/LinuxFolders.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

#include "platform/descriptor.h"

namespace orrinvale {
namespace {

constexpr std::size_t mostUserDirs = 64 * 1024;  // bytes; the file that desktops write has less than one thousand

std::string absoluteVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr && *value == '/' ? value : "";
}

std::string homeInDatabase(uid_t user) {
    std::vector<char> buffer(16384);
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(user, &entry, buffer.data(), buffer.size(), &found) != 0 || found == nullptr) return {};
    return found->pw_dir != nullptr && *found->pw_dir == '/' ? found->pw_dir : "";
}

// The same path with no slash at its end, no doubled one and no "."; nothing for one that climbs by "..", as nobody can tell
// from the text alone where it leads.
std::optional<std::string> plain(std::string_view path) {
    std::string out;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        const std::string_view component = path.substr(at, end - at);
        at = end + 1;
        if (component == "..") return std::nullopt;
        if (!component.empty() && component != ".") (out += '/') += component;
    }
    return out.empty() ? "/" : out;
}

// A folder that is to be emptied must never be the home folder, nor one above it.
bool holdsHome(const std::string& path, const std::string& home) {
    return path == "/" || home == path || home.starts_with(path + '/');
}

bool isFolder(const std::string& path) {
    struct stat entry {};
    return ::stat(path.c_str(), &entry) == 0 && S_ISDIR(entry.st_mode);
}

// The text of a small regular file; nothing when it is missing, something else, or too large.
std::optional<std::string> smallFile(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat entry {};
    if (!file.isOpen() || ::fstat(file.get(), &entry) != 0 || !S_ISREG(entry.st_mode)) return std::nullopt;
    std::string text;
    std::array<char, 4096> piece;
    for (;;) {
        const ssize_t count = ::read(file.get(), piece.data(), piece.size());
        if (count == 0) return text;
        if (count < 0 && errno == EINTR) continue;
        if (count < 0 || text.size() + static_cast<std::size_t>(count) > mostUserDirs) return std::nullopt;
        text.append(piece.data(), static_cast<std::size_t>(count));
    }
}

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// What stands between the quotes at the start of the text, backslashes resolved; nothing when they do not close.
std::optional<std::string> quoted(std::string_view text) {
    if (!text.starts_with('"')) return std::nullopt;
    std::string out;
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '"') return out;
        if (text[at] == '\\' && ++at == text.size()) break;
        if (text[at] == 0) break;
        out += text[at];
    }
    return std::nullopt;
}

std::optional<std::string> userDirectory(std::string_view value, const std::string& home) {
    constexpr std::string_view variable = "$HOME";
    auto path = quoted(value);
    if (!path) return std::nullopt;
    if (path->starts_with(variable) && (path->size() == variable.size() || (*path)[variable.size()] == '/'))
        path->replace(0, variable.size(), home);
    return path->starts_with('/') ? plain(*path) : std::nullopt;
}

enum class Owned { Missing, Mine, Foreign };

Owned whose(const std::string& path, uid_t user) {
    struct stat entry {};
    if (::lstat(path.c_str(), &entry) != 0) return errno == ENOENT ? Owned::Missing : Owned::Foreign;
    return S_ISDIR(entry.st_mode) && entry.st_uid == user ? Owned::Mine : Owned::Foreign;
}

bool isSharedTrash(const std::string& path) {
    struct stat entry {};
    return ::lstat(path.c_str(), &entry) == 0 && S_ISDIR(entry.st_mode) && (entry.st_mode & S_ISVTX) != 0;
}

}  // namespace

FolderVariables FolderVariables::ofThisProcess() {
    FolderVariables out{.home = absoluteVariable("HOME"),
                        .cacheHome = absoluteVariable("XDG_CACHE_HOME"),
                        .configHome = absoluteVariable("XDG_CONFIG_HOME"),
                        .dataHome = absoluteVariable("XDG_DATA_HOME"),
                        .stateHome = absoluteVariable("XDG_STATE_HOME"),
                        .user = ::getuid()};
    if (out.home.empty()) out.home = homeInDatabase(out.user);
    return out;
}

std::optional<std::string> downloadsIn(std::string_view userDirs, const std::string& home) {
    std::optional<std::string> found;
    for (std::size_t at = 0; at < userDirs.size();) {
        const std::size_t end = std::min(userDirs.find('\n', at), userDirs.size());
        const std::string_view line = trimmed(userDirs.substr(at, end - at));
        at = end + 1;
        constexpr std::string_view key = "XDG_DOWNLOAD_DIR=";
        if (!line.starts_with(key)) continue;
        if (auto value = userDirectory(line.substr(key.size()), home)) found = std::move(value);
    }
    return found;
}

LinuxFolders::LinuxFolders(FolderVariables variables) : m_variables(std::move(variables)) {}

std::string LinuxFolders::home() const { return m_variables.home.empty() ? "" : plain(m_variables.home).value_or(""); }

std::string LinuxFolders::below(const std::string& chosen, const char* usual) const {
    const std::string start = home();
    const auto path = chosen.starts_with('/') ? plain(chosen) : std::nullopt;
    if (path && !holdsHome(*path, start)) return *path;
    return start.empty() ? start : start + usual;
}

std::string LinuxFolders::userCaches() const { return below(m_variables.cacheHome, "/.cache"); }

std::vector<std::string> LinuxFolders::userLogs() const {
    const std::string state = below(m_variables.stateHome, "/.local/state");
    const std::string data = below(m_variables.dataHome, "/.local/share");
    const std::string config = below(m_variables.configHome, "/.config");
    std::vector<std::string> out;
    for (const std::string& path : {state + "/log", state + "/logs", data + "/xorg", data + "/sddm",
                                    config + "/Code/logs", below({}, "/.npm/_logs")})
        if (isFolder(path)) out.push_back(path);
    return out;
}

std::string LinuxFolders::downloads() const {
    const auto text = smallFile(below(m_variables.configHome, "/.config") + "/user-dirs.dirs");
    const auto chosen = text ? downloadsIn(*text, home()) : std::nullopt;
    if (!chosen) return below({}, "/Downloads");
    return holdsHome(*chosen, home()) ? std::string() : *chosen;  // desktops write the home folder for "none"
}

std::string LinuxFolders::homeTrash() const {
    const std::string data = below(m_variables.dataHome, "/.local/share");
    return data.empty() ? data : data + "/Trash/files";
}

std::vector<std::string> LinuxFolders::volumeTrash(const std::string& root) const {
    const std::string top = root.substr(0, root.find_last_not_of('/') + 1);
    const std::string user = std::to_string(m_variables.user);
    const std::string shared = top + "/.Trash";
    const std::string own = top + "/.Trash-" + user;
    std::vector<std::string> out;
    if (isSharedTrash(shared) && whose(shared + '/' + user, m_variables.user) == Owned::Mine)
        out.push_back(shared + '/' + user + "/files");
    const Owned owner = whose(own, m_variables.user);
    if (owner == Owned::Mine || (owner == Owned::Missing && out.empty())) out.push_back(own + "/files");
    return out;
}

}  // namespace orrinvale
