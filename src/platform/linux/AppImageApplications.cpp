// A name says little of what is an AppImage, so that files are told by their first bytes; names
// alone decide which of many downloads are looked at.
#include "platform/linux/AppImageApplications.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <utility>

#include "platform/linux/AppImageFile.h"
#include "platform/linux/DesktopEntries.h"
#include "platform/linux/SystemText.h"
#include "platform/linux/trashForecast.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

struct FileFacts {
    std::pair<dev_t, ino_t> identity;
    std::uint64_t bytes = 0;
    bool isProgram = false;
    bool isOwn = false;
};

// Of a regular file, or a link to one.
std::optional<FileFacts> factsOf(const std::string& path) {
    struct stat seen {};
    if (::stat(path.c_str(), &seen) != 0 || !S_ISREG(seen.st_mode)) return std::nullopt;
    return FileFacts{{seen.st_dev, seen.st_ino},
                     static_cast<std::uint64_t>(seen.st_blocks) * 512,
                     (seen.st_mode & S_IXUSR) != 0,
                     seen.st_uid == ::getuid()};
}

bool isLink(const std::string& path) {
    struct stat seen {};
    return ::lstat(path.c_str(), &seen) == 0 && S_ISLNK(seen.st_mode);
}

bool isCalledAppImage(const std::string& name) {
    return equalIgnoringCase(pathExtension(name), "appimage");
}

std::string nameOf(const std::string& path) {
    const std::string_view name = lastPathComponent(path);
    const std::string_view extension = pathExtension(name);
    return std::string(equalIgnoringCase(extension, "appimage")
                           ? name.substr(0, name.size() - extension.size() - 1)
                           : name);
}

}  // namespace

std::optional<ApplicationRecord> AppImageApplications::recordOf(const std::string& path) const {
    const AppImageFile image = AppImageFile::read(path, m_places.languages);
    if (!image.isAppImage) return std::nullopt;
    ApplicationRecord record;
    record.type = ApplicationType::AppImage;
    record.path = path;
    record.name = record.id = nameOf(path);
    record.programs = {withoutLinks(path)};
    record.installed = madeAt(path);
    if (const auto facts = factsOf(path)) record.isPersons = facts->isOwn;
    if (image.entry) {
        if (!image.entry->name.empty()) record.name = image.entry->name;
        record.icon = image.entry->icon;
        record.version = image.entry->version;
    }
    return record;
}

// The file itself where it lies in one of the folders. What lies elsewhere is left alone, and the
// link to it goes.
std::string AppImageApplications::pathThatGoes(const std::string& found) const {
    const std::string folder = withoutLinks(folderOf(found));
    const std::string home = withoutLinks(m_places.home);
    const bool isHomes = isWithin(found, m_places.home);
    const std::string spelled = isHomes ? home + found.substr(m_places.home.size())
                                        : found;  // a home may lie behind a link
    if (folder != folderOf(spelled) && !isPlace(folder)) return found;
    std::string real = withoutLinks(found);
    return isPlace(folderOf(real)) ? real : joinPath(folder, lastPathComponent(found));
}

bool AppImageApplications::isPlace(const std::string& folder) const {
    return std::any_of(m_places.appImageFolders.begin(), m_places.appImageFolders.end(),
                       [&](const std::string& each) { return withoutLinks(each) == folder; });
}

// As they are found, what lies in the folders before what entries start.
std::vector<std::string> AppImageApplications::candidatesIn(
    const std::vector<StartingEntry>& entries) const {
    std::vector<std::string> out;
    for (const std::string& folder : m_places.appImageFolders) {
        std::vector<std::string> names = systemNamesIn(folder);
        std::sort(names.begin(), names.end());
        for (const std::string& name : names) {
            std::string path = joinPath(folder, name);
            const auto facts = factsOf(path);
            if (facts && (facts->isProgram || isCalledAppImage(name)))
                out.push_back(std::move(path));
        }
    }
    for (const StartingEntry& each : entries)
        if (!each.isClaimed && !each.program.empty()) out.push_back(each.program);
    return out;
}

void AppImageApplications::list(std::vector<StartingEntry>& entries,
                                ApplicationInventory& out) const {
    std::map<std::pair<dev_t, ino_t>, ApplicationRecord> found;
    std::vector<std::pair<dev_t, ino_t>> order;
    for (const std::string& candidate : candidatesIn(entries)) {
        const auto facts = factsOf(candidate);
        if (!facts) continue;
        const std::string path = pathThatGoes(candidate);
        const std::string link =
            joinPath(withoutLinks(folderOf(candidate)), lastPathComponent(candidate));
        const auto known = found.find(facts->identity);
        ApplicationRecord* record = known == found.end() ? nullptr : &known->second;
        if (record == nullptr) {
            auto made = recordOf(path);
            if (!made) continue;
            order.push_back(facts->identity);
            record = &found.emplace(facts->identity, std::move(*made)).first->second;
        }
        if (link != record->path && isLink(link) && isPlace(folderOf(link)) &&
            std::find(record->links.begin(), record->links.end(), link) == record->links.end())
            record->links.push_back(link);
    }
    for (StartingEntry& each : entries) {
        const auto facts = each.isClaimed || each.file.empty() ? std::nullopt : factsOf(each.file);
        const auto record = facts ? found.find(facts->identity) : found.end();
        if (record == found.end()) continue;
        each.isClaimed = true;
        if (record->second.entries.empty()) record->second.id = each.id;
        record->second.entries.push_back(each.path);
    }
    for (const auto& each : order) out.records.push_back(std::move(found.at(each)));
}

ApplicationDetails AppImageApplications::details(const ApplicationRecord& record) const {
    ApplicationDetails out;
    if (isLink(record.path)) out.bytes = 0;
    else if (const auto facts = factsOf(record.path)) out.bytes = facts->bytes;
    out.lastUse = lastReadAt(record.path);
    return out;
}

RemovalForecast AppImageApplications::forecast(const std::vector<ApplicationRecord>& records,
                                               const Waiting& /*waiting*/) const {
    RemovalForecast out = forecastOfTrash(records, m_places);
    for (const ApplicationRecord& each : records)
        if (isLink(each.path))
            out.stays.push_back(
                fmt::format("{} stays: {} is a link to it", withoutLinks(each.path), each.path));
    return out;
}

}  // namespace orrinvale
