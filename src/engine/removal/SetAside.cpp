// The rename, the second look at both copies, and the way back, each by names in a held folder.
#include "engine/removal/SetAside.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <utility>

#include "engine/base/Log.h"
#include "engine/files/asideName.h"
#include "engine/removal/stayReasons.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// The file system has no rename (layers answer EXDEV for folders that lie below), or no room for a
// longer name: on a full disk most renames fail while every removal works.
bool isImpossible(int error) {
    constexpr std::array impossible{EXDEV, EINVAL, ENOSYS, ENOTSUP, ENOSPC, EDQUOT, ENAMETOOLONG};
    return std::find(impossible.begin(), impossible.end(), error) != impossible.end();
}

bool isAnyOf(int error, std::initializer_list<int> errors) {
    return std::find(errors.begin(), errors.end(), error) != errors.end();
}

// Without the promise to spare what has the new name, which many that serve over a network do not
// know: looked at first instead. Nobody guesses the name of what is set aside.
SysResult<void> renamePlainly(const FileSystem& files, int folder, const std::string& name,
                              const std::string& newName) {
    const auto taken = files.freshAttributes(folder, newName.c_str(), Links::Keep);
    if (taken) return tl::unexpected(EEXIST);
    if (taken.error() != ENOENT) return tl::unexpected(taken.error());
    if (::renameat(folder, name.c_str(), folder, newName.c_str()) != 0)
        return tl::unexpected(errno);
    return {};
}

SysResult<void> renameAside(const FileSystem& files, int folder, const std::string& name,
                            const std::string& newName) {
    auto renamed = files.renameInside(folder, name.c_str(), newName.c_str());
    if (renamed || !isAnyOf(renamed.error(), {EINVAL, ENOSYS, ENOTSUP})) return renamed;
    return renamePlainly(files, folder, name, newName);
}

template <class Seen> bool isSameInode(const FileAttributes& a, const Seen& b) {
    return a.device == b.device && a.inode == b.inode;
}

/// A copy as it stands now, with its folder.
struct FoundCopy {
    Descriptor folder;
    FileAttributes attributes;
};

SysResult<FoundCopy> findCopy(const FileSystem& files, const KeptCopy& kept) {
    auto folder = HeldEntry::holdParentOf(files, kept.path);
    if (!folder) return tl::unexpected(folder.error());
    const auto now = files.freshAttributes(
        folder->get(), std::string(lastPathComponent(kept.path)).c_str(), Links::Keep);
    if (!now) return tl::unexpected(now.error());
    return FoundCopy{std::move(*folder), *now};
}

StayedEntry withoutCopy(const std::string& path, const KeptCopy& kept, const std::string& why,
                        std::string_view reason = stay::noCopy) {
    Log::line(fmt::format("{} does not count as a copy of {}: {}", kept.path, path, why));
    return {path, std::string(reason), StayReason::NoCopy};
}

}  // namespace

RenameGround::RenameGround(const FileSystem& files)
    : m_files(files), m_passing(files.devicesOfPassingInodes()) {}

bool RenameGround::isSafe(int folder, std::uint64_t device) {
    const auto [place, isNew] = m_devices.try_emplace(device);
    if (isNew) {
        place->second.isSafe = m_files.renamesSafely(folder);
        if (auto opened = m_files.openFolder(folder, ".", Links::Keep))
            place->second.folder = std::move(*opened);
    }
    return place->second.isSafe;
}

// By the mount in which the folder stands; where that can not be told any such mount counts.
bool RenameGround::isServed(int folder, std::uint64_t device) {
    const auto [known, isNew] = m_served.try_emplace(device, true);
    if (!isNew) return known->second;
    const auto mounts = m_files.mountPoints();
    if (!mounts) return true;
    const auto place = m_files.placeOf(folder);
    std::size_t longest = 0;
    known->second = false;
    for (const MountPoint& mount : *mounts) {
        if (!place) known->second = known->second || mount.mayHang;
        else if (isWithin(*place, mount.path) && mount.path.size() >= longest) {
            longest = mount.path.size();  // of two at one place the later one is seen
            known->second = mount.mayHang;
        }
    }
    return known->second;
}

void RenameGround::flush() const {
    for (const auto& [device, each] : m_devices)
        if (each.isSafe && each.folder.isOpen()) (void)::syncfs(each.folder.get());
}

bool RenameGround::inodesLast(std::uint64_t device) const {
    return !std::binary_search(m_passing.begin(), m_passing.end(), device);
}

StayedEntry SetAside::stays(StayReason kind, std::string reason) const {
    return {m_held.path, std::move(reason), kind};
}

StayedEntry SetAside::staysWith(int error) const {
    return stays(stayReasonOf(error), systemError("rename", {}, error).reason());
}

// Layers give a file another number when they copy it up for the rename; both the held entry and
// the new name show that one.
bool SetAside::isSameEntry(const FileAttributes& a, const FileAttributes& b) const {
    const bool isSame = !m_ground.inodesLast(a.device) || a.inode == b.inode;
    if (!isSame || a.device != b.device || a.type != b.type) return false;
    return a.type == FileType::Folder || (a.size == b.size && a.modified == b.modified);
}

tl::expected<bool, StayedEntry> SetAside::take(std::string_view token) {
    const int folder = m_held.parent.get();
    if (!m_ground.isSafe(folder, m_held.attributes.device)) return false;
    auto entry = m_files.holdEntry(folder, m_held.name.c_str());
    if (!entry) return tl::unexpected(staysWith(entry.error()));
    m_entry = std::move(*entry);
    const auto before = m_files.attributes(m_entry.get());
    if (!before) return tl::unexpected(staysWith(before.error()));
    if (!isSameEntry(*before, m_held.attributes) ||
        (before->type != FileType::Folder && before->changed != m_held.attributes.changed))
        return tl::unexpected(stays(StayReason::Changed, std::string(stay::changed)));

    m_name = asideName(token, m_held.name);
    if (const auto renamed = renameAside(m_files, folder, m_held.name, m_name); !renamed) {
        if (isImpossible(renamed.error())) return false;
        return tl::unexpected(staysWith(renamed.error()));
    }
    return true;
}

// By the held entry: a name tells what stands there, not that it is what was looked at before the
// rename.
std::optional<StayedEntry> SetAside::objectionToEntry() {
    const auto aside = m_files.freshAttributes(m_held.parent.get(), m_name.c_str(), Links::Keep);
    if (!aside) return staysWith(aside.error());
    const auto held = m_files.attributes(m_entry.get());
    if (!held) return staysWith(held.error());
    m_now = *held;
    FileAttributes seen =
        m_held.attributes;  // what was seen, under the number that the entry has by now
    seen.inode = held->inode;
    seen.device = held->device;
    if (isSameEntry(*aside, *held) && isSameEntry(*aside, seen)) return std::nullopt;
    return stays(StayReason::Changed, std::string(stay::changed));
}

std::optional<StayedEntry> SetAside::objectionToCopy(const KeptCopy& kept) const {
    const auto copy = findCopy(m_files, kept);
    if (!copy)
        return withoutCopy(m_held.path, kept, systemError("look", {}, copy.error()).reason());
    EntryIdentity expected = kept.identity;
    // Another name of the file that goes has its new time of change too, and exactly that one.
    if (isSameInode(m_now, copy->attributes)) expected.changed = m_now.changed;
    if (!expected.isStill(copy->attributes))
        return withoutCopy(m_held.path, kept, std::string(stay::changed));

    if (folderOf(kept.path) == folderOf(m_held.path))
        return std::nullopt;  // one folder, and both names are there
    const auto ourName = m_files.freshAttributes(copy->folder.get(), m_name.c_str(), Links::Keep);
    if (!ourName && ourName.error() == ENOENT) return std::nullopt;
    const auto ours = m_files.attributes(m_held.parent.get());
    const auto theirs = m_files.attributes(copy->folder.get());
    if (ours && theirs && isSameInode(*ours, *theirs)) return std::nullopt;
    return withoutCopy(m_held.path, kept, "the same folder by another path", stay::sameEntry);
}

std::optional<StayedEntry> SetAside::objection(const std::optional<KeptCopy>& kept) {
    if (auto reason = objectionToEntry()) return reason;
    return kept ? objectionToCopy(*kept) : std::nullopt;
}

std::optional<StayedEntry> SetAside::putBack() {
    const auto moved = giveNameBack(m_files, m_held.parent.get(), m_name, m_held.name);
    if (moved || moved.error() == ENOENT) return std::nullopt;
    const std::string place = joinPath(folderOf(m_held.path), m_name);
    return StayedEntry{place,
                       moved.error() == EEXIST ? std::string(stay::nameTaken)
                                               : systemError("rename", {}, moved.error()).reason(),
                       StayReason::Aside};
}

std::optional<std::int64_t> SetAside::changedByUs(bool isGone) const {
    if (isGone && m_held.attributes.links < 2) return std::nullopt;
    const auto now = m_files.attributes(m_entry.get());
    if (!now || now->links == 0) return std::nullopt;
    return now->changed;
}

SysResult<void> giveNameBack(const FileSystem& files, int folder, const std::string& aside,
                             const std::string& own) {
    auto moved = files.moveEntry(folder, aside.c_str(), folder, own.c_str());
    if (moved || !isAnyOf(moved.error(), {EINVAL, ENOSYS, ENOTSUP, EPERM, EMLINK})) return moved;
    return renamePlainly(files, folder, aside, own);
}

std::optional<StayedEntry> objectionToCopyInPlace(const FileSystem& files, const HeldEntry& leaving,
                                                  const KeptCopy& kept) {
    // Its path anew, which says all but of what may be one entry; a longer one has to be walked.
    const bool isShort = kept.path.size() < 4000;
    if (isShort && !isSameInode(leaving.attributes, kept.identity)) {
        const auto now =
            files.freshAttributes(FileSystem::noParent, kept.path.c_str(), Links::Keep);
        if (now && kept.identity.isStill(*now) && !isSameInode(leaving.attributes, *now))
            return std::nullopt;
    }
    const auto copy = findCopy(files, kept);
    if (!copy)
        return withoutCopy(leaving.path, kept, systemError("look", {}, copy.error()).reason());
    if (!kept.identity.isStill(copy->attributes))
        return withoutCopy(leaving.path, kept, std::string(stay::changed));
    if (!isSameInode(leaving.attributes, copy->attributes)) return std::nullopt;
    const auto ours = files.attributes(leaving.parent.get());
    const auto theirs = files.attributes(copy->folder.get());
    // Where names have aliases a file with one name has two spellings; folders have one name.
    const bool hasNames = copy->attributes.type != FileType::Folder && copy->attributes.links >= 2;
    if (hasNames && ours && theirs &&
        (!isSameInode(*ours, *theirs) || leaving.name != lastPathComponent(kept.path)))
        return std::nullopt;
    return withoutCopy(leaving.path, kept, "the same entry", stay::sameEntry);
}

std::optional<StayedEntry> objectionWithoutRename(const FileSystem& files, RenameGround& ground,
                                                  const HeldEntry& leaving, const KeptCopy& kept) {
    if (auto reason = objectionToCopyInPlace(files, leaving, kept)) return reason;
    const auto copy = HeldEntry::holdParentOf(files, kept.path);
    if (copy && !ground.isServed(leaving.parent.get(), leaving.attributes.device) &&
        !ground.isServed(copy->get(), kept.identity.device))
        return std::nullopt;
    return withoutCopy(leaving.path, kept, "they may be one entry: one of them is served");
}

}  // namespace orrinvale
