// The objections in their order: the spelling, the place of the held parent, a mount, a change
// since the scan.
#include "engine/files/HeldEntry.h"

#include <string_view>
#include <utility>

#include "platform/error.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

using Objection = HeldEntry::Objection;

constexpr std::chrono::milliseconds parentsLast{100};
constexpr std::size_t longestPath = 4000;  // below PATH_MAX (4096), which counts the closing NUL

Objection refused(std::string reason, StayReason why) {
    return {Objection::Kind::Refused, 0, std::move(reason), why};
}

Objection failed(Objection::Kind kind, int error) {
    return {kind, error, systemError("hold", {}, error).reason(), stayReasonOf(error)};
}

// Once, and then held. A path longer than the system's limit is gone through piece by piece, each
// from the one before.
SysResult<Descriptor> hold(const FileSystem& files, const std::string& path) {
    Descriptor base;
    std::string_view rest = path;
    while (rest.size() > longestPath) {
        const std::size_t cut = rest.rfind('/', longestPath);
        if (cut == std::string_view::npos || cut == 0) return tl::unexpected(ENAMETOOLONG);
        auto next = files.holdFolder(base.isOpen() ? base.get() : FileSystem::noParent,
                                     std::string(rest.substr(0, cut)).c_str(), Links::Follow);
        if (!next) return next;
        base = std::move(*next);
        rest.remove_prefix(cut + 1);
    }
    return files.holdFolder(base.isOpen() ? base.get() : FileSystem::noParent,
                            std::string(rest).c_str(), Links::Follow);
}

// The path as it was given may lead through links, so that the place of the held parent is asked
// for too.
std::optional<Objection> objection(const ProtectedPlaces& places, const HeldEntry& held,
                                   const HeldParents::Parent& parent) {
    if (auto reason = places.refusal(held.path, held.attributes))
        return refused(std::move(*reason), StayReason::Protected);
    if (!parent.place.empty() && parent.place != folderOf(held.path))
        if (auto reason = places.refusal(joinPath(parent.place, held.name), held.attributes))
            return refused(std::move(*reason), StayReason::Protected);
    const auto& folder = parent.attributes;
    if (!folder) return failed(Objection::Kind::NoParent, folder.error());
    // Layered file systems give files the device of their layer, so that it tells a mount of
    // folders only.
    const bool otherDevice =
        held.attributes.type == FileType::Folder && folder->device != held.attributes.device;
    if (otherDevice || folder->mount != held.attributes.mount)
        return refused("a mount point", StayReason::Protected);
    return std::nullopt;
}

}  // namespace

SysResult<const HeldParents::Parent*> HeldParents::hold(const FileSystem& files,
                                                        const std::string& path) {
    const auto now = std::chrono::steady_clock::now();
    if (path == m_path && now - m_found < parentsLast) return &m_parent;
    m_path.clear();
    auto folder = orrinvale::hold(files, path);
    if (!folder) return tl::unexpected(folder.error());
    m_parent.attributes = files.attributes(folder->get());
    const auto place = files.placeOf(folder->get());
    m_parent.place = place && place->starts_with('/') ? *place : std::string();
    m_parent.folder = std::move(*folder);
    m_path = path;
    m_found = now;
    return &m_parent;
}

SysResult<Descriptor> HeldEntry::holdParentOf(const FileSystem& files, const std::string& path) {
    return hold(files, folderOf(path));
}

tl::expected<HeldEntry, Objection> HeldEntry::at(const FileSystem& files,
                                                 const ProtectedPlaces& places,
                                                 const std::string& path,
                                                 const std::optional<EntryIdentity>& expected,
                                                 const OwnChanges* own, HeldParents* parents) {
    auto plain = plainPath(path);
    if (!plain) return tl::unexpected(refused("not a plain absolute path", StayReason::Protected));
    if (*plain == "/")
        return tl::unexpected(refused("the root of the file system", StayReason::Protected));
    HeldParents ofThisOne;
    const auto parent = (parents != nullptr ? parents : &ofThisOne)->hold(files, folderOf(*plain));
    if (!parent) return tl::unexpected(failed(Objection::Kind::NoParent, parent.error()));
    std::string name(lastPathComponent(*plain));
    const auto seen = files.attributes((*parent)->folder.get(), name.c_str(), Links::Keep);
    if (!seen) return tl::unexpected(failed(Objection::Kind::NoEntry, seen.error()));
    HeldEntry held{(*parent)->folder, std::move(*plain), std::move(name), *seen};
    if (auto against = objection(places, held, **parent))
        return tl::unexpected(std::move(*against));
    if (expected && !expected->isStill(own != nullptr ? own->withoutOurs(*seen) : *seen))
        return tl::unexpected(refused("changed since the scan", StayReason::Changed));
    return held;
}

}  // namespace orrinvale
