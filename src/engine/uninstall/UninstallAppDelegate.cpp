// The search for bundles; the other kinds search by themselves.
#include "engine/uninstall/UninstallAppDelegate.h"

#include <fmt/format.h>

#include <cerrno>
#include <set>
#include <utility>

#include "engine/settings/PropertyList.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::string_view bundleExtension = "app";
constexpr std::string_view systemPrefix = "com.apple.";

// Where nothing is, nothing was missed.
void noteFault(int fault, const std::string& path, std::string* unread) {
    if (unread == nullptr || !unread->empty() || fault == 0) return;
    if (fault == ENOENT || fault == ENOTDIR || fault == ELOOP) return;
    *unread = fmt::format("{} could not be read", path);
}

std::vector<std::string> namesIn(const FileSystem& files, const std::string& folder,
                                 std::string* unread) {
    std::vector<std::string> names;
    const auto opened = files.openFolder(FileSystem::noParent, folder.c_str(), Links::Follow);
    if (!opened) {
        noteFault(opened.error(), folder, unread);
        return names;
    }
    CatalogBatch batch;
    auto more = files.readFolder(opened->get(), batch);
    for (; more && *more; more = files.readFolder(opened->get(), batch))
        for (const CatalogEntry& each : batch.entries) names.emplace_back(each.name);
    if (!more) noteFault(more.error(), folder, unread);
    return names;
}

std::string nameOfBundle(const std::string& path) {
    const std::string_view name = lastPathComponent(path);
    return std::string(pathExtension(name) == bundleExtension
                           ? name.substr(0, name.size() - bundleExtension.size() - 1)
                           : name);
}

// A folder whose listing goes on once what stands before it is done.
struct ListLevel {
    std::string folder;
    std::vector<std::string> names;
    std::size_t next = 0;
};

}  // namespace

void UninstallAppDelegate::applicationsInDirectory(const std::string& directory,
                                                   std::vector<std::string>& withArray,
                                                   std::string* unread) const {
    std::set<std::pair<std::uint64_t, std::uint64_t>> entered;
    std::vector<ListLevel> levels;
    const auto enter = [&](const std::string& folder, const FileAttributes& seen) {
        if (entered.emplace(seen.device, seen.inode).second)
            levels.push_back({folder, namesIn(m_files, folder, unread)});
    };
    if (const auto top = m_files.attributes(FileSystem::noParent, directory.c_str(), Links::Follow);
        top && top->type == FileType::Folder)
        enter(directory, *top);
    else if (!top) noteFault(top.error(), directory, unread);
    while (!levels.empty()) {
        ListLevel& level = levels.back();
        if (level.next == level.names.size()) {
            levels.pop_back();
            continue;
        }
        const std::string path = joinPath(level.folder, level.names[level.next++]);
        const auto seen = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Follow);
        if (!seen) noteFault(seen.error(), path, unread);
        if (!seen || seen->type != FileType::Folder) continue;
        if (pathExtension(path) == bundleExtension) withArray.push_back(path);
        else enter(path, *seen);
    }
}

std::shared_ptr<AppItems> UninstallAppDelegate::constructAppItem(const std::string& path,
                                                                 std::string* unread) const {
    auto item = std::make_shared<AppItems>();
    item->path = path;
    item->image = {IconRequest::Path, path};
    item->name = nameOfBundle(path);
    item->bundleID.reset();
    item->bundleVersion.reset();
    const std::string facts = path + "/Contents/Info.plist";
    if (const auto list = PropertyList::read(facts); !list) {
        noteFault(list.error().number, facts, unread);
    } else {
        item->bundleID = list->stringForKey("CFBundleIdentifier");
        item->bundleVersion = list->stringForKey("CFBundleShortVersionString");
    }
    item->isSystemApp = item->bundleID && item->bundleID->starts_with(systemPrefix);
    item->isSystemAppStr = item->isSystemApp ? "YES" : "NO";
    if (const auto seen = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Follow))
        item->date = Date{seen->born != 0 ? seen->born : seen->modified};
    ApplicationRecord record;
    record.id = item->bundleID.value_or(std::string());
    record.name = item->name;
    record.version = item->bundleVersion.value_or(std::string());
    record.path = path;
    record.isSystem = item->isSystemApp;
    if (item->date) record.installed = item->date->nanoseconds;
    item->record = std::make_shared<const ApplicationRecord>(std::move(record));
    return item;
}

std::shared_ptr<AppItems> UninstallAppDelegate::itemOf(ApplicationRecord record) {
    auto item = std::make_shared<AppItems>();
    item->path = record.path;
    item->image = {record.icon.empty() ? IconRequest::Path : IconRequest::BareName,
                   record.icon.empty() ? record.path : record.icon};
    item->name = record.name;
    item->bundleID = record.id;
    item->bundleVersion.reset();
    if (!record.version.empty()) item->bundleVersion = record.version;
    if (record.installed) item->date = Date{*record.installed};
    item->isSystemApp = record.isSystem;
    item->isSystemAppStr = record.isSystem ? "YES" : "NO";
    item->record = std::make_shared<const ApplicationRecord>(std::move(record));
    return item;
}

void UninstallAppDelegate::getAppInfo(AppItemsArray* array, ApplicationInventory* rest,
                                      const News& news) const {
    if (array == nullptr) return;
    std::vector<std::string> paths;
    std::string unread;
    for (const char* const folder :
         {"/Applications", "/Network/Applications", "/Developer/Applications"})
        applicationsInDirectory(m_root + folder, paths, &unread);
    applicationsInDirectory(joinPath(m_home, "Applications"), paths, &unread);
    for (const std::string& path : paths) array->push_back(constructAppItem(path, &unread));
    ApplicationInventory found;
    std::size_t taken = 0;
    const auto take = [&](const ApplicationInventory& soFar) {
        for (; taken < soFar.records.size(); ++taken)
            array->push_back(itemOf(soFar.records[taken]));
        if (news) news(*array);
    };
    if (news) news(*array);
    if (m_applications != nullptr) found = m_applications->look(take);
    take(found);
    if (!unread.empty()) found.unread[ApplicationType::App] = unread;
    found.records.clear();
    if (rest != nullptr) *rest = std::move(found);
}

}  // namespace orrinvale
