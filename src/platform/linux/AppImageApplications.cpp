// A name says little of what is an AppImage, so that files are told by their first bytes; names
// alone decide which of many downloads are looked at.
#include "platform/linux/AppImageApplications.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <set>
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
    record.programs = {path};
    record.installed = madeAt(path);
    if (const auto facts = factsOf(path)) record.isPersons = facts->isOwn;
    if (image.entry) {
        if (!image.entry->name.empty()) record.name = image.entry->name;
        record.icon = image.entry->icon;
        record.version = image.entry->version;
    }
    return record;
}

std::vector<ApplicationRecord> AppImageApplications::list(
    std::vector<StartingEntry>& entries) const {
    std::vector<std::string> candidates;
    for (const std::string& folder : m_places.appImageFolders)
        for (const std::string& name : systemNamesIn(folder)) {
            std::string path = withoutLinks(joinPath(folder, name));
            const auto facts = factsOf(path);
            if (facts && (facts->isProgram || isCalledAppImage(name)))
                candidates.push_back(std::move(path));
        }
    for (const StartingEntry& each : entries)
        if (!each.isClaimed && !each.file.empty()) candidates.push_back(each.file);
    std::sort(candidates.begin(), candidates.end());

    std::vector<ApplicationRecord> out;
    std::set<std::pair<dev_t, ino_t>> seen;
    for (const std::string& path : candidates) {
        const auto facts = factsOf(path);
        if (!facts || !seen.insert(facts->identity).second) continue;
        if (auto record = recordOf(path)) out.push_back(std::move(*record));
    }
    for (StartingEntry& each : entries)
        for (ApplicationRecord& record : out)
            if (!each.isClaimed && each.file == record.path) {
                each.isClaimed = true;
                if (record.entries.empty()) record.id = each.id;
                record.entries.push_back(each.path);
            }
    return out;
}

ApplicationDetails AppImageApplications::details(const ApplicationRecord& record) const {
    ApplicationDetails out;
    if (const auto facts = factsOf(record.path)) out.bytes = facts->bytes;
    out.lastUse = lastReadAt(record.path);
    return out;
}

RemovalForecast AppImageApplications::forecast(const std::vector<ApplicationRecord>& records,
                                               const std::atomic<bool>& /*stop*/) const {
    return forecastOfTrash(records);
}

}  // namespace orrinvale
