// The way to an entry is looked at folder by folder, each once.
#include "engine/duplicates/scope/ProtectedFolders.h"

#include <algorithm>

#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {

void FoldersAbove::add(const FileSystem& files, const std::string& place) {
    for (std::string folder = folderOf(place); m_known.insert(folder).second;
         folder = folderOf(folder)) {
        const auto seen = files.attributes(FileSystem::noParent, folder.c_str(), Links::Follow);
        if (seen) m_entries.emplace(seen->device, seen->inode);
        if (folder == "/" || folder.empty()) return;
    }
}

ProtectedFolders::ProtectedFolders(const FileSystem& files, const std::vector<std::string>& folders)
    : m_files(files) {
    const auto passing = files.devicesOfPassingInodes();
    for (const std::string& folder : folders) {
        const std::string path(withoutSlashesAtEnd(folder));
        const std::string real = files.resolved(folder).value_or(path);
        const auto seen = files.attributes(FileSystem::noParent, folder.c_str(), Links::Follow);
        if (seen) m_entries.emplace(seen->device, seen->inode);
        if (seen && std::ranges::binary_search(passing, seen->device))
            if (auto held = openFolderByPath(files, folder, Links::Follow))
                m_held.push_back(std::move(*held));
        m_above.add(files, real);
        m_paths.insert({path, real});
    }
}

// Lies in one, or is one, by the spelling.
bool ProtectedFolders::isIn(const std::string& path) const {
    for (std::string folder = path;; folder = folderOf(folder)) {
        if (m_paths.contains(folder)) return true;
        if (folder == "/" || folder.empty()) return false;
    }
}

bool ProtectedFolders::holdsOne(const std::string& path) const {
    const auto within = m_paths.lower_bound(path + '/');
    return within != m_paths.end() && isWithin(*within, path);
}

// The name of a folder without a number that lasts may be written in several ways.
bool ProtectedFolders::isOneAt(const std::string& path) const {
    if (m_held.empty()) return false;
    const auto seen = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Follow);
    return seen && isOne(seen->device, seen->inode);
}

bool ProtectedFolders::isOneOrAbove(const FolderNode& folder) const {
    if (folder.inode == 0) return isOneAt(pathOf(folder));
    FileAttributes seen;
    seen.device = folder.device;
    seen.inode = folder.inode;
    return isOneOrAbove(seen);
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
        const bool isBelow = above != nullptr && !at.throughLink;
        Place place;
        place.real =
            isBelow ? joinPath(above->real, at.name) : m_files.resolved(path).value_or(path);
        place.isCovered = (above != nullptr && above->isCovered) || isOne(at.device, at.inode) ||
                          (at.inode == 0 && isOneAt(path));
        // What lies above a folder below another one was asked of that one.
        if (!place.isCovered)
            place.isCovered = isBelow ? m_paths.contains(path) || m_paths.contains(place.real)
                                      : isIn(path) || isIn(place.real) ||
                                            (!m_entries.empty() && isBelowOne(place.real));
        m_places.emplace(&at, std::move(place));
    }
    return m_places.at(&folder);
}

bool ProtectedFolders::covers(const fileAttrbItem& file) { return placeOf(*file.folder).isCovered; }

// A bundle may be a link, and what it leads to is what goes.
bool ProtectedFolders::covers(const AppAttrbItem& bundle) {
    const auto coversAt = [this](const std::string& path) {
        if (covers(path)) return true;
        const auto real = m_files.resolved(path);
        return real && *real != path && covers(*real);
    };
    return isOne(bundle.device, bundle.inode) || coversAt(bundle.DirectoryPathName) ||
           std::ranges::any_of(bundle.otherPaths, coversAt);
}

// As old as the parents that a removal holds may be (HeldParents).
const ProtectedFolders::Place& ProtectedFolders::placeAt(const std::string& folder) {
    constexpr std::chrono::milliseconds answersLast{100};
    if (const auto now = std::chrono::steady_clock::now(); now - m_asked >= answersLast) {
        m_known.clear();
        m_below.clear();
        m_asked = now;
    }
    const auto [place, isNew] = m_known.try_emplace(folder);
    if (isNew) {
        place->second.real = m_files.resolved(folder).value_or(folder);
        place->second.isCovered = !m_entries.empty() && isBelowOne(place->second.real);
    }
    return place->second;
}

std::string ProtectedFolders::realPlace(const std::string& path) {
    return joinPath(placeAt(folderOf(path)).real, lastPathComponent(path));
}

bool ProtectedFolders::covers(const std::string& path) {
    if (empty()) return false;
    const Place& folder = placeAt(folderOf(path));
    const std::string real = joinPath(folder.real, lastPathComponent(path));
    if (folder.isCovered || isIn(path) || isIn(real) || holdsOne(path) || holdsOne(real))
        return true;
    const auto seen = m_files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    return seen && (isOne(seen->device, seen->inode) || m_above.contains(*seen));
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
