// The usual places of the desktop's standards, and bounded reading.
#include "platform/linux/ApplicationPlaces.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <memory>

#include "platform/descriptor.h"
#include "platform/linux/ProgramFiles.h"
#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::string variable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

// The absolute folders of a list with colons, each once.
void addFolders(std::vector<std::string>& folders, std::string_view list) {
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(':'), list.size());
        const auto folder = plainPath(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
        if (folder && std::find(folders.begin(), folders.end(), *folder) == folders.end())
            folders.push_back(*folder);
    }
}

std::string locale() {
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"})
        if (std::string value = variable(name); !value.empty()) return value;
    return {};
}

void addInstallations(std::vector<std::string>& installations) {
    constexpr std::size_t limit = std::size_t{64} * 1024;
    const std::string chosen = variable("FLATPAK_CONFIG_DIR");
    const std::string folder =
        joinPath(chosen.empty() ? "/etc/flatpak" : chosen, "installations.d");
    for (const std::string& name : systemNamesIn(folder)) {
        const auto text = readRegularFile(joinPath(folder, name), limit);
        for (const std::string& each : installationsIn(text ? *text : std::string_view()))
            addFolders(installations, each);
    }
}

std::int64_t nanoseconds(const struct statx_timestamp& time) {
    return time.tv_sec * 1'000'000'000 + time.tv_nsec;
}

}  // namespace

std::vector<std::string> languagesOf(const std::string& locale) {
    const std::size_t at = locale.find('@');
    const std::string modifier = at == std::string::npos ? std::string() : locale.substr(at);
    const std::string bare = locale.substr(0, std::min(locale.find('.'), at));
    if (bare.empty() || bare == "C" || bare == "POSIX") return {};
    const std::string language = bare.substr(0, bare.find('_'));
    std::vector<std::string> out;
    for (const std::string& each : {bare + modifier, bare, language + modifier, language})
        if (std::find(out.begin(), out.end(), each) == out.end()) out.push_back(each);
    return out;
}

std::vector<std::string> installationsIn(std::string_view text) {
    constexpr std::string_view key = "Path=";
    std::vector<std::string> out;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(line.size() + 1, text.size()));
        if (line.starts_with(key)) addFolders(out, line.substr(key.size()));
    }
    return out;
}

ApplicationPlaces ApplicationPlaces::ofThisMachine(const FolderVariables& variables) {
    ApplicationPlaces out;
    const std::string& home = variables.home;
    out.home = home;
    out.dataHome = variables.dataHome.empty() ? joinPath(home, ".local/share") : variables.dataHome;
    out.dataFolders = {out.dataHome};
    const std::string listed = variable("XDG_DATA_DIRS");
    addFolders(out.dataFolders, listed.empty() ? "/usr/local/share:/usr/share" : listed);
    addFolders(out.programFolders, variable("PATH"));
    addFolders(out.programFolders, joinPath(home, ".local/bin") +
                                       ":/usr/local/bin:/usr/bin:/bin:/usr/local/games:/usr/games:"
                                       "/usr/local/sbin:/usr/sbin:/sbin");
    out.languages = languagesOf(locale());
    out.dpkg = "/var/lib/dpkg";
    const std::string own = variable("FLATPAK_USER_DIR");
    const std::string shared = variable("FLATPAK_SYSTEM_DIR");
    out.flatpaks = {own.empty() ? joinPath(out.dataHome, "flatpak") : own,
                    shared.empty() ? "/var/lib/flatpak" : shared};
    addInstallations(out.flatpaks);
    const std::string runtime = variable("XDG_RUNTIME_DIR");
    out.flatpakInstances = joinPath(
        runtime.empty() ? "/run/user/" + std::to_string(variables.user) : runtime, ".flatpak");
    out.snapSocket = "/run/snapd.socket";
    out.snapFolder = "/snap";
    for (const char* const name :
         {"Applications", "AppImages", ".local/bin", "Downloads", "Desktop"})
        out.appImageFolders.push_back(joinPath(home, name));
    out.appImageFolders.emplace_back("/opt");
    out.folderHolders = {"/opt", joinPath(home, ".local/opt"), joinPath(home, "Applications")};
    out.processes = "/proc";
    out.ownProgram = ownExecutable();
    for (const std::string& folder : out.dataFolders)
        for (const char* const kind : {"xsessions", "wayland-sessions"})
            out.sessionFolders.push_back(joinPath(folder, kind));
    out.displayManagerUnit = "/etc/systemd/system/display-manager.service";
    out.displayManagerFile = "/etc/X11/default-display-manager";
    if (const std::string display = variable("WAYLAND_DISPLAY"); !display.empty())
        out.displaySocket = display.starts_with('/') ? display : joinPath(runtime, display);
    return out;
}

std::optional<std::string> readRegularFile(const std::string& path, std::size_t limit) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat seen {};
    if (!file.isOpen() || ::fstat(file.get(), &seen) != 0 || !S_ISREG(seen.st_mode) ||
        static_cast<std::uint64_t>(seen.st_size) > limit)
        return std::nullopt;
    auto text = readSystemText(file.get(), limit);
    if (!text) return std::nullopt;
    return std::move(*text);
}

std::optional<std::int64_t> madeAt(const std::string& path) {
    struct statx seen {};
    if (::statx(AT_FDCWD, path.c_str(), AT_STATX_DONT_SYNC, STATX_MTIME | STATX_BTIME, &seen) != 0)
        return std::nullopt;
    return nanoseconds((seen.stx_mask & STATX_BTIME) != 0 ? seen.stx_btime : seen.stx_mtime);
}

std::optional<std::int64_t> lastReadAt(const std::string& path) {
    struct statx seen {};
    struct statvfs volume {};
    if (::statx(AT_FDCWD, path.c_str(), AT_STATX_DONT_SYNC, STATX_ATIME, &seen) != 0 ||
        (seen.stx_mask & STATX_ATIME) == 0 || ::statvfs(path.c_str(), &volume) != 0 ||
        (volume.f_flag & (ST_NOATIME | ST_RDONLY)) != 0)
        return std::nullopt;
    return nanoseconds(seen.stx_atime);
}

std::string withoutLinks(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                           &std::free);
    return real ? std::string(real.get()) : path;
}

}  // namespace orrinvale
