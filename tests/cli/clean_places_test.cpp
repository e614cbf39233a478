// orrinvale-cli clean as a process among mounts of its own: the system's folders, and what of a
// person's shows among things to clean.

#include <nlohmann/json.hpp>

#include "cli/ProgramRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using PlainJson = nlohmann::json;
using Names = std::vector<std::string>;

bool write(const std::string& path) {
    std::filesystem::create_directories(path.substr(0, path.rfind('/')));
    std::ofstream(path) << "12345678";
    return contentOf(path) == "12345678";
}

struct Removed {
    int status;
    PlainJson document;
};

// What it removes of these categories, by the paths of single entries.
Removed removeFrom(const Names& categories, const std::string& home) {
    Names arguments{"--remove", "--yes", "--json"};
    for (const std::string& each : categories) arguments.push_back("--category=" + each);
    ProgramRun run = commandRun("clean", arguments);
    run.environment.push_back("HOME=" + home);
    const auto result = run.run();
    return {result.status, PlainJson::parse(result.output, nullptr, false)};
}

std::string modeOf(const std::string& path) {
    struct stat entry {};
    if (::stat(path.c_str(), &entry) != 0) return path + " is gone";
    return std::to_string(entry.st_mode) + ' ' + std::to_string(entry.st_uid) + ' ' +
           std::to_string(entry.st_gid) + ' ' + (S_ISREG(entry.st_mode) ? contentOf(path) : "");
}

std::vector<std::string> modesOf(const Names& paths) {
    std::vector<std::string> out;
    for (const std::string& path : paths) out.push_back(modeOf(path));
    return out;
}

// As services left them: folders with owners and modes of their own, of which none may change.
TEST(CleanPlaces, filesOfTheSystemGoAndWhatServicesNeedStays) {
    withOwnMounts([]() -> std::string {
        if (!mountRam("/var/cache") || !mountRam("/var/log")) return "skip: ram";
        const Names going{"/var/cache/apt/archives/x.deb",
                          "/var/cache/apt/pkgcache.bin",
                          "/var/cache/fontconfig/0a.cache-7",
                          "/var/cache/cups/job.cache",
                          "/var/log/syslog.1",
                          "/var/log/syslog.2.gz",
                          "/var/log/apt/history.log.1.xz",
                          "/var/log/Xorg.0.log.old",
                          "/var/log/samba/log.192.168.1.20.1",
                          "/var/log/journal/0a/system@0b-0c.journal",
                          "/var/log/journal/0a/user-1000@0b.journal~"};
        const Names staying{"/var/cache/apt/archives/lock",
                            "/var/cache/debconf/config.dat",
                            "/var/cache/man/index.db",
                            "/var/cache/rclone/vfs/x",
                            "/var/cache/shown/in/letter",
                            "/var/cache/rsnapshot/hourly.0/etc/x",
                            "/var/cache/zoneminder/events/1/x.jpg",
                            "/var/cache/netdata/dbengine/x",
                            "/var/log/samba/log.192.168.1.20",
                            "/var/log/remote/10.0.0.5",
                            "/var/log/syslog",
                            "/var/log/dpkg.log",
                            "/var/log/wtmp",
                            "/var/log/audit/audit.log.1",
                            "/var/log/journal/0a/system.journal",
                            "/var/log/mysql/binlog.000001",
                            "/mnt/person/letter",
                            "/mnt/person"};
        for (const Names& all : {going, staying})
            for (const std::string& path : all)
                if (path != "/mnt/person" && !write(path)) return "no " + path;
        const Names folders{"/var/cache/apt", "/var/cache/apt/archives", "/var/cache/fontconfig",
                            "/var/cache/cups", "/var/log/journal/0a"};
        if (::chown("/var/cache/cups", 7, 7) != 0 || ::chmod("/var/cache/cups", 02770) != 0 ||
            ::chmod("/var/log/journal/0a", 02755) != 0 || ::chmod("/mnt/person/letter", 0400) != 0)
            return "no rights set";
        if (::symlink("/mnt/person", "/var/cache/by-link") != 0 ||
            ::symlink("/mnt/person/letter", "/var/log/letter.1") != 0 ||
            !bindMount("/mnt/person", "/var/cache/shown/in"))
            return "skip: bind";
        Names all = staying;
        all.insert(all.end(), folders.begin(), folders.end());
        const auto before = modesOf(all);
        const auto removed = removeFrom({"system-caches", "system-logs"}, "/root");
        if (removed.status != 0 || !removed.document["failed"].empty())
            return removed.document.dump();
        for (const std::string& path : going)
            if (isThere(path)) return "there: " + path;
        const auto after = modesOf(all);
        for (std::size_t i = 0; i < all.size(); ++i)
            if (before[i] != after[i]) return all[i] + ": " + before[i] + " became " + after[i];
        return isThere("/var/cache/by-link") && isThere("/var/log/letter.1") ? "" : "a link went";
    });
}

// Links to a person's file and folder, a second name of a file, and both shown in place by mounts.
TEST(CleanPlaces, whatShowsAmongThingsToCleanStaysWithContentAndMode) {
    for (const auto& [category, folder] :
         {std::pair{"user-downloads", "Downloads"}, {"user-logs", ".local/state/log"}})
        withOwnMounts([category = category, folder = folder]() -> std::string {
            const std::string place = std::string("/mnt/home/") + folder;
            const Names persons{"/mnt/person/letter", "/mnt/person/deep", "/mnt/person/deep/in",
                                "/mnt/person/photo"};
            if (!write(persons[0]) || !write(persons[2]) || !write(persons[3]) ||
                !write(place + "/r/x") || !write(place + "/shown/file") ||
                !write(place + "/shown/folder/none") || !write(place + "/file-row"))
                return "no files";
            if (::chmod(persons[0].c_str(), 0400) != 0 || ::chmod(persons[1].c_str(), 0500) != 0 ||
                ::chmod(persons[2].c_str(), 0440) != 0 || ::chmod(persons[3].c_str(), 0604) != 0)
                return "no modes";
            if (::symlink("/mnt/person/letter", (place + "/r/letter").c_str()) != 0 ||
                ::symlink("../../../mnt/person/deep", (place + "/row").c_str()) != 0 ||
                ::symlink("/mnt/person/deep", (place + "/r/deep").c_str()) != 0 ||
                ::link("/mnt/person/photo", (place + "/r/photo").c_str()) != 0)
                return "no links";
            if (!bindMount("/mnt/person/deep", place + "/shown/folder") ||
                !bindMount("/mnt/person/letter", place + "/shown/file") ||
                !bindMount("/mnt/person/letter", place + "/file-row"))
                return "skip: bind";
            const auto before = modesOf(persons);
            const auto removed = removeFrom({category}, "/mnt/home");
            if (removed.status != 0) return removed.document.dump();
            if (modesOf(persons) != before) return "it is not what it was";
            if (isThere(place + "/r") || isThere(place + "/row")) return "the links are there";
            return isThere(place + "/shown/folder/in") && isThere(place + "/file-row")
                       ? ""
                       : "a mount is gone";
        });
}

}  // namespace
}  // namespace orrinvale::testing
