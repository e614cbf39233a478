// What lies behind a link is resolved one by one; a bundle that lies where its path says is left
// out.
#include "engine/duplicates/LinkPlaces.h"

#include <algorithm>

#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

bool isLinkOrBehind(const fileAttrbItem& file) {
    return file.type == FileType::SymbolicLink || isBehindLink(*file.folder);
}

}  // namespace

bool isBehindLink(const FolderNode& folder) {
    for (const FolderNode* at = &folder; at->parent != nullptr; at = at->parent)
        if (at->throughLink) return true;
    return false;
}

LinkPlaces::LinkPlaces(const FileSystem& files, const std::vector<std::string>& roots)
    : m_files(files) {
    for (const std::string& root : roots)
        m_roots.push_back({root, files.resolved(root).value_or(root)});
}

void LinkPlaces::find(const FileList& list) {
    const bool hasLinked = hasLinkedRoots();
    for (const fileAttrbItem* file : list)
        if (isLinkOrBehind(*file)) add(file, file->filePathName());
        else if (hasLinked) addPlain(*file);
}

bool LinkPlaces::hasLinkedRoots() const {
    return std::ranges::any_of(m_roots, [](const Root& root) { return root.path != root.real; });
}

// Nothing is asked of the disk: below the folder that is searched no link was followed.
void LinkPlaces::addPlain(const fileAttrbItem& file) {
    const FolderNode* top = file.folder;
    while (top->parent != nullptr) top = top->parent;
    const auto root = std::ranges::find(m_roots, std::string_view(top->name), &Root::path);
    if (root == m_roots.end() || root->path == root->real) return;
    const std::string path = file.filePathName();
    std::string_view below = std::string_view(path).substr(root->path.size());
    if (below.starts_with('/')) below.remove_prefix(1);
    m_places.insert_or_assign(&file, Place{joinPath(root->real, below), false, false});
}

// What lies where its path says is the folder that is searched, with the rest of the path behind
// it.
bool LinkPlaces::liesAsItSays(const std::string& path) const {
    const auto root =
        std::ranges::find_if(m_roots, [&](const Root& each) { return isWithin(path, each.path); });
    if (root == m_roots.end()) return false;
    const auto real = m_files.resolved(path);
    const bool isBelow = path.size() > root->path.size();
    const std::string plain =
        isBelow ? joinPath(root->real, path.substr(root->path.size())) : root->real;
    return !isBelow || (real && plainPath(plain) == *real);
}

void LinkPlaces::find(const std::vector<AppGroup>& groups) {
    for (const AppGroup& group : groups)
        for (const auto& bundle : group)
            if (auto place = placeAt(bundle->DirectoryPathName))
                m_places.insert_or_assign(bundle.get(), std::move(*place));
}

std::optional<LinkPlaces::Place> LinkPlaces::placeAt(const std::string& folder) const {
    if (!liesAsItSays(folder)) return behindLink(folder);
    auto real = m_files.resolved(folder);
    if (!real || *real == folder) return std::nullopt;
    return Place{std::move(*real), false, false};
}

LinkPlaces::Place LinkPlaces::behindLink(const std::string& path) const {
    const auto real = m_files.resolved(path);
    const bool outside = !real || std::ranges::none_of(m_roots, [&](const Root& root) {
        return isWithin(*real, root.real);
    });
    return Place{real.value_or(std::string()), outside, true};
}

void LinkPlaces::add(const void* found, const std::string& path) {
    m_places.insert_or_assign(found, behindLink(path));
}

const LinkPlaces::Place* LinkPlaces::placeOf(const void* found) const {
    const auto place = m_places.find(found);
    return place == m_places.end() ? nullptr : &place->second;
}

}  // namespace orrinvale
