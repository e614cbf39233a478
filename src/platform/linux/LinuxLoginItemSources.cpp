// Read from the files that dpkg and systemd keep: both would answer by a program of their own,
// which takes ten times as long and may not be there.
#include "platform/linux/LinuxLoginItemSources.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <unordered_map>

#include "platform/descriptor.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t largestList = std::size_t{64} << 20U;
constexpr std::size_t largestUnit = std::size_t{256} << 10U;

// Of a regular file; empty for anything else.
std::string textOf(const std::string& path, std::size_t limit) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode)) return {};
    std::string text;
    std::array<char, 65536> piece{};
    for (ssize_t count = 1; count > 0 && text.size() <= limit;) {
        count = ::read(file.get(), piece.data(), piece.size());
        if (count > 0) text.append(piece.data(), static_cast<std::size_t>(count));
    }
    return text.size() > limit ? std::string() : text;
}

template <class Visit> void eachEntry(const std::string& folder, Visit visit) {
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error))
        visit(entry->path().string());
}

// The last value of a key, of whichever group.
std::string valueIn(std::string_view text, std::string_view key) {
    std::string value;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with(key) && line.substr(key.size()).starts_with('='))
            value = line.substr(key.size() + 1);
    }
    return value;
}

bool isMasked(const std::string& unit) {
    std::error_code error;
    return std::filesystem::read_symlink(unit, error) == "/dev/null";
}

}  // namespace

std::map<std::string, std::string> packagesOf(const std::vector<std::string>& paths,
                                              const std::string& lists) {
    constexpr std::string_view merged = "/usr";
    constexpr std::string_view ending = ".list";
    std::unordered_map<std::string_view, std::string_view> wanted;  // a spelling, and the path
    for (const std::string& path : paths) {
        wanted.emplace(path, path);
        if (path.starts_with("/usr/bin/") || path.starts_with("/usr/sbin/"))
            wanted.emplace(std::string_view(path).substr(merged.size()), path);
    }
    std::map<std::string, std::string> owners;
    if (wanted.empty()) return owners;
    eachEntry(lists, [&](const std::string& list) {
        if (!list.ends_with(ending)) return;
        const std::string text = textOf(list, largestList);
        for (std::string_view rest = text; !rest.empty();) {
            const std::size_t end = std::min(rest.find('\n'), rest.size());
            const auto found = wanted.find(rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
            if (found == wanted.end()) continue;
            // "libc6:amd64.list" is of libc6.
            std::string name(lastPathComponent(list));
            name.resize(std::min(name.find(':'), name.size() - ending.size()));
            owners.emplace(found->second, std::move(name));
        }
    });
    return owners;
}

std::vector<BackgroundService> backgroundServices(const FolderVariables& variables,
                                                  const std::vector<std::string>& systems) {
    const std::string config =
        variables.configHome.empty() ? joinPath(variables.home, ".config") : variables.configHome;
    std::vector<std::string> folders{joinPath(config, "systemd/user")};
    folders.insert(folders.end(), systems.begin(), systems.end());
    std::map<std::string, BackgroundService> found;
    for (const std::string& folder : folders)
        eachEntry(folder, [&](const std::string& wants) {
            if (!wants.ends_with(".wants")) return;
            eachEntry(wants, [&](const std::string& unit) {
                const std::string name(lastPathComponent(unit));
                if (name.ends_with(".service"))
                    found.try_emplace(name,
                                      BackgroundService{name, {}, unit, folder == folders[0]});
            });
        });
    std::vector<BackgroundService> services;
    for (auto& each : found) {
        BackgroundService& service = each.second;
        const bool isOff = std::ranges::any_of(folders, [&](const std::string& folder) {
            return isMasked(joinPath(folder, service.name));
        });
        if (isOff) continue;
        service.description = valueIn(textOf(service.file, largestUnit), "Description");
        services.push_back(std::move(service));
    }
    return services;
}

}  // namespace orrinvale
