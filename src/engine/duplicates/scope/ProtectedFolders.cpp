// The way to a file is looked at folder by folder, each once.
#include "engine/duplicates/scope/ProtectedFolders.h"

#include <algorithm>

#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {

ProtectedFolders::ProtectedFolders(const FileSystem& files, const std::vector<std::string>& folders)
    : m_files(files) {
    const auto passing = files.devicesOfPassingInodes();
    for (const std::string& folder : folders) {
        Guarded guarded{std::string(withoutSlashesAtEnd(folder)), {}, 0, 0, {}};
        guarded.real = files.resolved(folder).value_or(guarded.path);
        const auto seen = files.attributes(FileSystem::noParent, folder.c_str(), Links::Follow);
        const bool passes = seen && std::ranges::binary_search(passing, seen->device);
        if (passes)
            if (auto held = openFolderByPath(files, folder, Links::Follow))
                guarded.held = std::move(*held);
        if (seen && (!passes || guarded.held.isOpen())) {
            guarded.device = seen->device;
            guarded.inode = seen->inode;
            m_holdsPassing |= passes;
        }
        m_folders.push_back(std::move(guarded));
    }
}

bool ProtectedFolders::isIn(const std::string& path, const std::string& real) const {
    return std::ranges::any_of(m_folders, [&](const Guarded& each) {
        return isWithin(path, each.path) || isWithin(real, each.path) || isWithin(real, each.real);
    });
}

bool ProtectedFolders::isOne(std::uint64_t device, std::uint64_t inode) const {
    return inode != 0 && std::ranges::any_of(m_folders, [&](const Guarded& each) {
               return each.inode == inode && each.device == device;
           });
}

// The name of a folder without a number that lasts may be written in several ways.
bool ProtectedFolders::isOneAt(const std::string& path) const {
    if (!m_holdsPassing) return false;
    const auto seen = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Follow);
    return seen && isOne(seen->device, seen->inode);
}

// From the nearest folder that is known already, downwards: a way may be ten thousand folders long.
const ProtectedFolders::Place& ProtectedFolders::placeOf(const FolderNode& folder) {
    std::vector<const FolderNode*> way;
    for (const FolderNode* at = &folder; at != nullptr && !m_places.contains(at); at = at->parent)
        way.push_back(at);
    for (; !way.empty(); way.pop_back()) {
        const FolderNode& at = *way.back();
        const std::string path = pathOf(at);
        const Place* const above = at.parent != nullptr ? &m_places.at(at.parent) : nullptr;
        Place place;
        place.real = above != nullptr && !at.throughLink ? joinPath(above->real, at.name)
                                                         : m_files.resolved(path).value_or(path);
        place.isCovered = (above != nullptr && above->isCovered) || isOne(at.device, at.inode) ||
                          isIn(path, place.real) || (at.inode == 0 && isOneAt(path));
        m_places.emplace(&at, std::move(place));
    }
    return m_places.at(&folder);
}

bool ProtectedFolders::covers(const fileAttrbItem& file) { return placeOf(*file.folder).isCovered; }

bool ProtectedFolders::covers(const AppAttrbItem& bundle) {
    return isOne(bundle.device, bundle.inode) || coversBundleAt(bundle.DirectoryPathName) ||
           std::ranges::any_of(bundle.otherPaths,
                               [this](const std::string& path) { return coversBundleAt(path); });
}

bool ProtectedFolders::coversBundleAt(const std::string& path) {
    const std::string real = m_files.resolved(path).value_or(path);
    const auto holds = [&](const Guarded& each) {
        return isWithin(each.path, path) || isWithin(each.real, real);
    };
    return isIn(path, real) || std::ranges::any_of(m_folders, holds) || isBelowOne(folderOf(real));
}

// Through another mount a folder has another path, and only its number tells.
bool ProtectedFolders::isBelowOne(const std::string& folder) {
    std::vector<std::string> way;
    bool isBelow = false;
    for (std::string at = folder;; at = folderOf(at)) {
        const auto known = m_below.find(at);
        if (known != m_below.end()) {
            isBelow = known->second;
            break;
        }
        way.push_back(at);
        if (at == "/" || at.find('/') == std::string::npos) break;
    }
    for (; !way.empty(); way.pop_back()) {
        const auto seen =
            m_files.attributes(FileSystem::noParent, way.back().c_str(), Links::Follow);
        isBelow = isBelow || (seen && isOne(seen->device, seen->inode));
        m_below.emplace(std::move(way.back()), isBelow);
    }
    return isBelow;
}

}  // namespace orrinvale
