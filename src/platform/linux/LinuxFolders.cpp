#include "platform/linux/LinuxFolders.h"

#include <fmt/format.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <iterator>

#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t mostUserDirs =
    64 * 1024;  // bytes; the file that desktops write has less than one thousand

// A folder that is to be emptied must never be the home folder, nor one above it.
bool holdsHome(const std::string& path, const std::string& home) {
    return path == "/" || isWithin(home, path);
}

bool isFolder(const std::string& path) {
    struct stat entry {};
    return ::stat(path.c_str(), &entry) == 0 && S_ISDIR(entry.st_mode);
}

bool isFile(const std::string& path) {
    struct stat entry {};
    return ::lstat(path.c_str(), &entry) == 0 && S_ISREG(entry.st_mode);
}

std::string_view trimmedLine(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos) return {};
    return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// What stands between the quotes at the start of the text, backslashes resolved; nothing when they
// do not close.
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
    if (path->starts_with(variable) &&
        (path->size() == variable.size() || (*path)[variable.size()] == '/'))
        path->replace(0, variable.size(), home);
    return plainPath(*path);
}

constexpr std::string_view downloadKey = "XDG_DOWNLOAD_DIR";

// Calls found(key, folder) for each line XDG_..._DIR="FOLDER" that can be read, in their order.
template <class Found>
void forEachUserDir(std::string_view text, const std::string& home, const Found& found) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string_view line = trimmedLine(text.substr(at, end - at));
        at = end + 1;
        const std::size_t equals = std::min(line.find('='), line.size());
        const std::string_view key = line.substr(0, equals);
        if (!key.starts_with("XDG_") || !key.ends_with("_DIR") || equals == line.size()) continue;
        if (auto folder = userDirectory(line.substr(equals + 1), home))
            found(key, std::move(*folder));
    }
}

std::vector<std::string> sortedNamesIn(const std::string& folder) {
    std::vector<std::string> names = systemNamesIn(folder);
    std::sort(names.begin(), names.end());
    return names;
}

// Programs made with Electron write "logs" beside their settings. Only these: of an unknown program
// nobody can tell what it keeps there.
constexpr std::array electronPrograms{
    "Code - OSS", "VSCodium",      "Cursor",         "discord", "Slack",           "Signal",
    "Element",    "obsidian",      "GitHub Desktop", "Postman", "teams-for-linux", "Mattermost",
    "draw.io",    "balena-etcher", "Atom",           "Joplin",  "Insomnia"};

enum class Owned { Missing, Mine, Foreign };

Owned whose(const std::string& path, uid_t user) {
    struct stat entry {};
    if (::lstat(path.c_str(), &entry) != 0)
        return errno == ENOENT ? Owned::Missing : Owned::Foreign;
    return S_ISDIR(entry.st_mode) && entry.st_uid == user ? Owned::Mine : Owned::Foreign;
}

bool isSharedTrash(const std::string& path) {
    struct stat entry {};
    return ::lstat(path.c_str(), &entry) == 0 && S_ISDIR(entry.st_mode) &&
           (entry.st_mode & S_ISVTX) != 0;
}

}  // namespace

std::optional<std::string> downloadsIn(std::string_view userDirs, const std::string& home) {
    std::optional<std::string> found;
    forEachUserDir(userDirs, home, [&](std::string_view key, std::string folder) {
        if (key == downloadKey) found = std::move(folder);
    });
    return found;
}

std::vector<std::string> otherFoldersIn(std::string_view userDirs, const std::string& home) {
    std::vector<std::string> found;
    forEachUserDir(userDirs, home, [&](std::string_view key, std::string folder) {
        if (key != downloadKey) found.push_back(std::move(folder));
    });
    return found;
}

LinuxFolders::LinuxFolders(FolderVariables variables) : m_variables(std::move(variables)) {}

std::string LinuxFolders::home() const {
    return plainPath(m_variables.home).value_or(std::string());
}

std::string LinuxFolders::below(const std::string& chosen, const char* usual) const {
    const std::string start = home();
    const auto path = plainPath(chosen);
    if (path && !holdsHome(*path, start)) return *path;
    return start.empty() ? start : start + usual;
}

std::string LinuxFolders::userCaches() const { return below(m_variables.cacheHome, "/.cache"); }

std::vector<std::string> LinuxFolders::programCaches() const {
    std::vector<std::string> out;
    const auto collect = [&](const std::string& folder, const char* cache) {
        if (folder.empty()) return;
        for (const std::string& name : sortedNamesIn(folder))
            if (const std::string path = joinPath(folder, name) + cache; isFolder(path))
                out.push_back(path);
    };
    collect(below({}, "/.var/app"), "/cache");
    collect(below({}, "/snap"), "/common/.cache");
    return out;
}

std::vector<std::string> LinuxFolders::userLogs() const {
    const std::string state = below(m_variables.stateHome, "/.local/state");
    const std::string data = below(m_variables.dataHome, "/.local/share");
    const std::string config = below(m_variables.configHome, "/.config");
    std::vector<std::string> wanted{state + "/log",        state + "/logs",
                                    data + "/xorg",        data + "/sddm",
                                    config + "/Code/logs", below({}, "/.npm/_logs")};
    for (const char* const program : electronPrograms)
        wanted.push_back(joinPath(config, program) + "/logs");
    std::vector<std::string> out;
    std::copy_if(wanted.begin(), wanted.end(), std::back_inserter(out), isFolder);
    if (const std::string errors = below({}, "/.xsession-errors.old"); isFile(errors))
        out.push_back(errors);
    return out;
}

std::string LinuxFolders::userDirs() const {
    const auto text =
        readSystemText(below(m_variables.configHome, "/.config") + "/user-dirs.dirs", mostUserDirs);
    return text && text->size() < mostUserDirs ? *text : std::string();
}

std::string LinuxFolders::downloads() const {
    const auto chosen = downloadsIn(userDirs(), home());
    if (!chosen) return below({}, "/Downloads");
    return holdsHome(*chosen, home()) ? std::string()
                                      : *chosen;  // desktops write the home folder for "none"
}

std::vector<std::string> LinuxFolders::otherUserFolders() const {
    if (home().empty()) return {};
    std::vector<std::string> out{home(), below(m_variables.stateHome, "/.local/state"),
                                 below(m_variables.dataHome, "/.local/share"),
                                 below(m_variables.configHome, "/.config")};
    for (const char* const usual : {"/Desktop", "/Documents", "/Music", "/Pictures", "/Videos"})
        out.push_back(below({}, usual));
    for (std::string& each : otherFoldersIn(userDirs(), home())) out.push_back(std::move(each));
    return out;
}

std::string LinuxFolders::homeTrash() const {
    const std::string data = below(m_variables.dataHome, "/.local/share");
    return data.empty() ? data : data + "/Trash/files";
}

std::vector<std::string> LinuxFolders::volumeTrash(const std::string& root) const {
    const std::string_view top = withoutSlashesAtEnd(root);
    const std::string user = std::to_string(m_variables.user);
    const std::string shared = joinPath(top, ".Trash");
    const std::string own = joinPath(top, ".Trash-" + user);
    std::vector<std::string> out;
    if (isSharedTrash(shared) && whose(shared + '/' + user, m_variables.user) == Owned::Mine)
        out.push_back(shared + '/' + user + "/files");
    const Owned owner = whose(own, m_variables.user);
    if (owner == Owned::Mine || (owner == Owned::Missing && out.empty()))
        out.push_back(own + "/files");
    return out;
}

std::optional<std::string> LinuxFolders::trashRecordOf(const std::string& path) const {
    const std::string entry = plainPath(path).value_or(std::string());
    const std::string folder = folderOf(entry);
    const std::string trash = folderOf(folder);
    const std::string_view name = lastPathComponent(trash);
    const bool isTrash = name == "Trash" || name.starts_with(".Trash-") ||
                         lastPathComponent(folderOf(trash)) == ".Trash";
    if (!isTrash || lastPathComponent(folder) != "files") return std::nullopt;
    return fmt::format("{}/info/{}.trashinfo", trash, lastPathComponent(entry));
}

}  // namespace orrinvale
