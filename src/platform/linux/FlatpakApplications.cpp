// An installation keeps each application as "app/ID/ARCH/BRANCH/COMMIT", with "app/ID/current" and
// "BRANCH/active" as links to what is in use (flatpak(1)).
#include "platform/linux/FlatpakApplications.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <iterator>
#include <map>
#include <utility>

#include "platform/linux/DesktopEntries.h"
#include "platform/linux/FlatpakLibrary.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::string linkAt(const std::string& path) {
    std::string text(PATH_MAX, '\0');
    const ssize_t length = ::readlink(path.c_str(), text.data(), text.size());
    text.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    return text;
}

// The first release of the description that the application brings; it names the newest first.
std::string versionIn(const std::string& active, const std::string& id) {
    constexpr std::size_t limit = std::size_t{1} << 20U;
    for (const char* const folder : {"/files/share/metainfo/", "/files/share/appdata/"})
        for (const char* const ending : {".metainfo.xml", ".appdata.xml"}) {
            const auto text =
                readRegularFile(fmt::format("{}{}{}{}", active, folder, id, ending), limit);
            if (!text) continue;
            const std::size_t release = text->find("<release ");
            if (release == std::string::npos) continue;
            const std::string_view tag =
                std::string_view(*text).substr(release, text->find('>', release) - release);
            const std::size_t version = tag.find("version=");
            if (version == std::string_view::npos || version + 9 >= tag.size()) continue;
            const char quote = tag[version + 8];
            const std::string_view rest = tag.substr(version + 9);
            return std::string(rest.substr(0, rest.find(quote)));
        }
    return {};
}

// What is in a folder; nothing where it is not there, and a remark where it can not be read.
std::vector<std::string> namesIn(const std::string& folder, bool& isUnread) {
    struct stat seen {};
    const bool isThere = ::stat(folder.c_str(), &seen) == 0;
    const bool isMissing = !isThere && (errno == ENOENT || errno == ENOTDIR);
    if (isMissing || (isThere && !S_ISDIR(seen.st_mode))) return {};
    isUnread |= !isThere || ::access(folder.c_str(), R_OK | X_OK) != 0;
    std::vector<std::string> names = systemNamesIn(folder);
    std::sort(names.begin(), names.end());
    return names;
}

// Each branch that is deployed; the current one first.
std::vector<std::string> branchesOf(const std::string& folder, bool& isUnread) {
    std::vector<std::string> out;
    const std::string current = linkAt(joinPath(folder, "current"));
    for (const std::string& arch : namesIn(folder, isUnread)) {
        if (arch == "current") continue;
        for (const std::string& name : namesIn(joinPath(folder, arch), isUnread)) {
            std::string branch = joinPath(arch, name);
            if (!linkAt(joinPath(folder, branch) + "/active").empty())
                out.push_back(std::move(branch));
            else isUnread |= errno != ENOENT && errno != EINVAL && errno != ENOTDIR;
        }
    }
    std::sort(out.begin(), out.end());
    if (const auto at = std::find(out.begin(), out.end(), current); at != out.end())
        std::rotate(out.begin(), at, at + 1);
    return out;
}

// A look that fails in another way says nothing.
bool isGone(const ApplicationRecord& record) {
    std::string text(1, '\0');
    const std::string active = joinPath(record.path, "active");
    return ::readlink(active.c_str(), text.data(), text.size()) < 0 && errno == ENOENT;
}

// Where its disk has gone nothing can be told of it, and the library would make a new one.
bool isThere(const std::string& installation) {
    return ::access(joinPath(installation, "repo").c_str(), F_OK) == 0;
}

// What the entries that it exports say; those with its own id before further ones of its.
void describe(ApplicationRecord& record, const std::string& active,
              const ApplicationPlaces& places) {
    const std::string folder = active + "/export/share/applications";
    std::vector<std::string> names = systemNamesIn(folder);
    std::sort(names.begin(), names.end());
    const std::string own = record.id + ".desktop";
    if (const auto at = std::find(names.begin(), names.end(), own); at != names.end())
        std::rotate(names.begin(), at, at + 1);
    for (const std::string& name : names) {
        if (!name.ends_with(".desktop")) continue;
        const auto text = readRegularFile(joinPath(folder, name), kDesktopEntryLimit);
        const auto entry = text ? DesktopEntry::parse(*text, places.languages) : std::nullopt;
        if (!entry || entry->name.empty()) continue;
        record.name = entry->name;
        record.icon = entry->icon;
        return;
    }
}

struct Inode {
    std::uint64_t links = 0;
    std::uint64_t seen = 0;
    std::uint64_t bytes = 0;
};

}  // namespace

ApplicationRecord FlatpakApplications::recordOf(const std::string& installation,
                                                const std::string& id,
                                                const std::string& branch) const {
    ApplicationRecord record;
    record.type = ApplicationType::Flatpak;
    record.id = id;
    record.name = id;
    record.ref = "app/" + id + '/' + branch;
    record.installation = installation;
    record.path = installation + '/' + record.ref;
    record.isPersons = installation == m_places.flatpaks.front();
    const std::string active = joinPath(record.path, "active");
    record.installed = madeAt(active + "/deploy");
    record.version = versionIn(active, id);
    describe(record, active, m_places);
    return record;
}

void FlatpakApplications::list(std::vector<StartingEntry>& entries,
                               ApplicationInventory& inventory) const {
    std::vector<ApplicationRecord> out;
    for (const std::string& installation : m_places.flatpaks) {
        bool isUnread = false;
        const std::string folder = joinPath(installation, "app");
        for (const std::string& id : namesIn(folder, isUnread))
            for (const std::string& branch : branchesOf(joinPath(folder, id), isUnread))
                out.push_back(recordOf(installation, id, branch));
        if (isUnread)
            inventory.unread[type()] =
                fmt::format("The installation of flatpak in {} can not be read", installation);
    }
    for (StartingEntry& each : entries)
        for (ApplicationRecord& record : out)
            if (each.started.flatpak == record.id) {
                each.isClaimed = true;
                record.entries.push_back(each.path);
            }
    std::ranges::move(out, std::back_inserter(inventory.records));
}

ApplicationDetails FlatpakApplications::details(const ApplicationRecord& record) const {
    ApplicationDetails out;
    out.isUpTo = true;
    out.lastUse = lastReadAt(record.path + "/active/metadata");
    const LinuxFileSystem files;
    std::map<std::uint64_t, Inode> inodes;
    // By path, so that one folder is open at a time however many there are.
    std::vector<std::string> folders{record.path};
    CatalogBatch batch;
    while (!folders.empty()) {
        const std::string path = std::move(folders.back());
        folders.pop_back();
        const auto folder = files.openFolder(FileSystem::noParent, path.c_str(), Links::Keep);
        if (!folder) continue;
        for (auto more = files.readFolder(folder->get(), batch); more && *more;
             more = files.readFolder(folder->get(), batch)) {
            files.readIdentities(folder->get(), batch.entries);
            for (const CatalogEntry& each : batch.entries) {
                if (each.error != 0) continue;
                if (each.attributes.type == FileType::Folder) {
                    folders.push_back(joinPath(path, each.name));
                    continue;
                }
                Inode& inode = inodes[each.attributes.inode];
                inode.links = each.attributes.links;
                inode.bytes = each.attributes.onDisk;
                ++inode.seen;
            }
        }
    }
    // One further name is that of the repository.
    std::uint64_t bytes = 0;
    for (const auto& [number, inode] : inodes)
        if (inode.links <= inode.seen + 1) bytes += inode.bytes;
    out.bytes = bytes;
    return out;
}

// What it was built upon stays, since other applications may need it; flatpak itself clears that.
RemovalForecast FlatpakApplications::forecast(const std::vector<ApplicationRecord>& records,
                                              const Waiting& /*waiting*/) const {
    RemovalForecast out;
    if (!hasFlatpakLibrary()) out.refusal = "The library of flatpak, libflatpak, is not there";
    const auto usual = m_places.flatpaks.begin();
    const auto added = usual + std::min<std::ptrdiff_t>(2, std::ssize(m_places.flatpaks));
    for (std::size_t i = 0; i < records.size(); ++i) {
        const ApplicationRecord& each = records[i];
        if (std::find(usual, added, each.installation) == added)
            out.refusals[i] = fmt::format(
                "It is installed in {}, from where flatpak itself removes", each.installation);
        out.asksForRight |= !each.isPersons;
        out.promised.push_back(each.installation + ' ' + each.ref);
        out.stays.push_back(
            fmt::format("What {} keeps in the home stays where it is not ticked", each.name));
    }
    return out;
}

std::vector<ApplicationRemoval> FlatpakApplications::remove(
    const std::vector<ApplicationRecord>& records, const RemovalForecast& forecast,
    const std::atomic<bool>& stop) const {
    using State = ApplicationRemoval::State;
    std::vector<ApplicationRemoval> out;
    for (const ApplicationRecord& each : records) {
        if (!forecast.refusal.empty() || stop) {
            out.push_back(
                {State::Refused, forecast.refusal.empty() ? "stopped" : forecast.refusal, {}});
            continue;
        }
        if (!isThere(each.installation)) {
            out.push_back({State::Failed,
                           fmt::format("The installation of flatpak in {} can not be read",
                                       each.installation),
                           {}});
            continue;
        }
        const auto removed = removeFlatpak(each.installation, each.isPersons, each.ref, stop);
        // The link to what is in use goes with the application; its folders may wait for programs
        // that still run.
        if (isGone(each)) out.push_back({State::Gone, {}, {}});
        else
            out.push_back(
                {State::Failed, removed ? std::string("flatpak left it") : removed.error(), {}});
    }
    return out;
}

}  // namespace orrinvale
