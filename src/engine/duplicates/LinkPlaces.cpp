// What lies behind a link is resolved one by one; a bundle that lies where its path says is left
// out.
#include "engine/duplicates/LinkPlaces.h"

#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

bool isBehindLink(const fileAttrbItem& file) {
    if (file.type == FileType::SymbolicLink) return true;
    for (const FolderNode* folder = file.folder; folder->parent != nullptr; folder = folder->parent)
        if (folder->throughLink) return true;
    return false;
}

}  // namespace

LinkPlaces::LinkPlaces(const FileSystem& files, const std::string& root)
    : m_files(files), m_root(root), m_realRoot(files.resolved(root).value_or(root)) {}

void LinkPlaces::find(const FileList& list) {
    for (const fileAttrbItem* file : list)
        if (isBehindLink(*file)) add(file, file->filePathName());
}

// A bundle that lies where its path says is the folder that is searched, with the rest of the path
// behind it.
void LinkPlaces::find(const std::vector<AppGroup>& groups) {
    for (const AppGroup& group : groups)
        for (const auto& bundle : group) {
            const std::string& path = bundle->DirectoryPathName;
            const bool isBelow = path.size() > m_root.size();
            const std::string plain =
                isBelow ? joinPath(m_realRoot, path.substr(m_root.size())) : m_realRoot;
            const auto real = m_files.resolved(path);
            if (isBelow && (!real || plainPath(plain) != *real)) add(bundle.get(), path);
        }
}

void LinkPlaces::add(const void* found, const std::string& path) {
    const auto real = m_files.resolved(path);
    const bool outside = !real || !isWithin(*real, m_realRoot);
    m_places.insert_or_assign(found, Place{real.value_or(std::string()), outside});
}

const LinkPlaces::Place* LinkPlaces::placeOf(const void* found) const {
    const auto place = m_places.find(found);
    return place == m_places.end() ? nullptr : &place->second;
}

}  // namespace orrinvale
