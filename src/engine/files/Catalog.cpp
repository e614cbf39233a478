// References are held descriptors, so that a path is resolved once and stays what it was.
#include "engine/files/Catalog.h"

#include <cerrno>
#include <utility>

#include "engine/files/FolderNode.h"
#include "engine/files/TreeSize.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t longestOpen = 4000;  // below PATH_MAX, which counts the closing NUL
constexpr std::size_t longestMade = 4095;

OSErr errorOf(int number) {
    switch (number) {
        case ENOENT:
        case ESTALE: return fnfErr;
        case ENOTDIR:
        case ELOOP: return errFSNotAFolder;
        case EACCES:
        case EPERM: return afpAccessDenied;
        default: return ioErr;
    }
}

bool isOther(const FSRef& ref, const FileAttributes& now) {
    return ref.identity() &&
           (ref.identity()->device != now.device || ref.identity()->inode != now.inode);
}

void fill(FSCatalogInfo& info, FileType type, const FileAttributes& seen) {
    info.nodeFlags =
        type == FileType::Folder ? FSCatalogInfo::kFSNodeIsDirectoryMask : std::uint16_t{0};
    info.dataLogicalSize = countedSize(seen);
}

}  // namespace

std::optional<FSRef> Catalog::fsref(const std::string& path) const {
    Descriptor folder;
    int parent = FileSystem::noParent;
    std::string last = path;
    const std::size_t begin = startOfLastComponent(path);
    if (path.size() >= longestOpen && begin > 0) {
        auto opened = openFolderByPath(m_files, path.substr(0, begin), Links::Follow);
        if (!opened) return std::nullopt;
        folder = std::move(*opened);
        parent = folder.get();
        last = path.substr(begin);
    }
    auto held = m_files.holdEntry(parent, last.c_str());
    if (!held) return std::nullopt;
    return FSRef(std::move(*held));
}

OSErr Catalog::FSOpenIterator(const FSRef& container, FSIterator& iterator) const {
    if (!container.isValid()) return paramErr;
    const char* const name = container.name().empty() ? "." : container.name().c_str();
    auto folder = m_files.openFolder(container.base(), name, Links::Keep);
    if (!folder) return errorOf(folder.error());
    if (container.identity()) {
        const auto now = m_files.attributes(folder->get());
        if (!now || isOther(container, *now)) return fnfErr;
    }
    iterator = FSIterator();
    iterator.m_folder = std::make_shared<const Descriptor>(std::move(*folder));
    return noErr;
}

OSErr Catalog::FSGetCatalogInfoBulk(FSIterator& iterator, std::size_t maximumObjects,
                                    std::size_t& actualObjects, std::uint32_t whichInfo,
                                    FSCatalogInfo* infos, FSRef* refs, std::string* names) const {
    actualObjects = 0;
    if (!iterator.m_folder || maximumObjects == 0) return paramErr;
    while (actualObjects < maximumObjects) {
        if (iterator.m_next == iterator.m_batch.entries.size()) {
            iterator.m_next = 0;
            const auto more = m_files.readFolder(iterator.m_folder->get(), iterator.m_batch);
            if (!more) actualObjects = 0;
            if (!more) return errorOf(more.error());
            if (!*more) return errFSNoMoreItems;
        }
        CatalogEntry& entry = iterator.m_batch.entries[iterator.m_next++];
        FSCatalogInfo& info = infos[actualObjects];
        if (!take(iterator, entry, whichInfo, info)) continue;
        if (names != nullptr) names[actualObjects] = entry.name;
        if (refs != nullptr) {
            refs[actualObjects] = FSRef(iterator.m_folder, entry.name);
            if (whichInfo == kFSCatInfoGettableInfo && info.error == 0)
                refs[actualObjects].setIdentity(info.attributes);
        }
        ++actualObjects;
    }
    return noErr;
}

// False when the entry is not there any more.
bool Catalog::take(const FSIterator& iterator, CatalogEntry& entry, std::uint32_t whichInfo,
                   FSCatalogInfo& info) const {
    info = {};
    const int folder = iterator.m_folder->get();
    const bool everything = whichInfo == kFSCatInfoGettableInfo;
    if (everything) m_files.readAttributes(folder, {&entry, 1});
    else if (entry.type == FileType::Unknown ||
             (entry.type != FileType::Folder && (whichInfo & kFSCatInfoDataSizes) != 0))
        m_files.readSizes(folder, {&entry, 1});
    if (entry.error == ENOENT) return false;
    const bool seen = entry.error == 0 && entry.attributes.type != FileType::Unknown;
    fill(info, seen ? entry.attributes.type : entry.type, entry.attributes);
    info.error = entry.error;
    if (everything) info.attributes = entry.attributes;
    return true;
}

OSErr Catalog::FSGetCatalogInfo(const FSRef& ref, FSCatalogInfo& info) const {
    if (!ref.isValid()) return paramErr;
    const auto now = ref.name().empty()
                         ? m_files.attributes(ref.base())
                         : m_files.attributes(ref.base(), ref.name().c_str(), Links::Keep);
    if (!now) return errorOf(now.error());
    if (isOther(ref, *now)) return fnfErr;
    info = {};
    fill(info, now->type, *now);
    info.attributes = *now;
    return noErr;
}

// The system's answer for an entry that is gone, or for a folder out of this process's reach, is no
// path; so the way back must lead to the entry.
std::optional<std::string> Catalog::FSRefMakePath(const FSRef& ref) const {
    FSCatalogInfo entry;
    if (FSGetCatalogInfo(ref, entry) != noErr) return std::nullopt;
    auto path = m_files.placeOf(ref.base());
    if (!path) return std::nullopt;
    if (!ref.name().empty()) *path = joinPath(*path, ref.name());
    if (path->size() > longestMade) return std::nullopt;
    const auto there = m_files.attributes(FileSystem::noParent, path->c_str(), Links::Keep);
    if (!there || there->device != entry.attributes.device ||
        there->inode != entry.attributes.inode)
        return std::nullopt;
    return *path;
}

}  // namespace orrinvale
