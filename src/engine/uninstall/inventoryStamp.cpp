// The times of what package managers write last, of the folders that applications lie in, and of
// the entries and images in these, which may be written anew in their places.
#include "engine/uninstall/inventoryStamp.h"

#include <fmt/format.h>

#include <functional>
#include <iterator>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/applications.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// Of more files in one folder the times of further ones are not asked.
constexpr std::size_t mostStamped = 4096;

bool isStamped(const CatalogEntry& entry) {
    const std::string_view name = entry.name;
    return name.ends_with(".desktop") || name.ends_with(".AppImage") || name.ends_with(".appimage");
}

// Whatever the order in which the folder gives them. What is loaded into the same folder meanwhile
// changes nothing.
std::uint64_t stampOfFiles(const FileSystem& files, const std::string& place) {
    const auto folder = files.openFolder(FileSystem::noParent, place.c_str(), Links::Follow);
    if (!folder) return 0;
    std::uint64_t sum = 0;
    std::size_t seen = 0;
    CatalogBatch batch;
    for (auto more = files.readFolder(folder->get(), batch); more && *more && seen < mostStamped;
         more = files.readFolder(folder->get(), batch)) {
        std::erase_if(batch.entries, [](const CatalogEntry& each) { return !isStamped(each); });
        seen += batch.entries.size();
        files.readAttributes(folder->get(), batch.entries);
        for (const CatalogEntry& each : batch.entries) {
            const FileAttributes& seenFile = each.attributes;
            if (each.error == 0)
                sum += std::hash<std::string>()(
                    fmt::format("{}:{}:{}", seenFile.inode, seenFile.modified, seenFile.size));
        }
    }
    return sum;
}

}  // namespace

std::string inventoryStamp(const FileSystem& files, const std::string& home,
                           const Applications* applications) {
    std::vector<std::string> places{"/Applications", "/Network/Applications",
                                    "/Developer/Applications", joinPath(home, "Applications")};
    if (applications != nullptr)
        for (std::string& each : applications->watched()) places.push_back(std::move(each));
    std::string stamp;
    for (const std::string& place : places) {
        const auto seen = files.attributes(FileSystem::noParent, place.c_str(), Links::Follow);
        if (seen)
            fmt::format_to(std::back_inserter(stamp), "{}:{}:{}", seen->inode, seen->modified,
                           seen->size);
        if (seen && seen->type == FileType::Folder)
            fmt::format_to(std::back_inserter(stamp), ":{}", stampOfFiles(files, place));
        stamp += ';';
    }
    return stamp;
}

}  // namespace orrinvale
