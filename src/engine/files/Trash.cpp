// Finds the trash that an entry belongs to; TrashFolder moves it there.
#include "engine/files/Trash.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

#include "engine/base/Log.h"
#include "engine/files/DurableFile.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

bool isSameFolder(const FileAttributes& a, const FileAttributes& b) {
    return a.device == b.device && a.inode == b.inode;
}

// Two mounts of one volume count as two, as nothing can be moved between them. Kernels before 5.8
// do not number mounts. Parts of a volume that have devices of their own (subvolumes) are on one
// mount, which is where every desktop looks for its trash.
bool isSameMount(const FileAttributes& a, const FileAttributes& b) {
    return a.mount != 0 && b.mount != 0 ? a.mount == b.mount : a.device == b.device;
}

std::string reasonOf(int error) { return systemError("move", {}, error).reason(); }

// Whether this person may put something into the folder; no link is followed.
std::optional<std::string> objectionTo(int parent, const char* folder) {
    if (::faccessat(parent, folder, W_OK | X_OK, AT_EACCESS | AT_SYMLINK_NOFOLLOW) == 0)
        return std::nullopt;
    return reasonOf(errno);
}

}  // namespace

tl::expected<std::string, std::string> Trash::move(
    const std::string& path, const std::optional<EntryIdentity>& expected) const {
    const auto held = HeldEntry::at(m_files, m_places, path, expected);
    if (held) return move(*held);
    Log::line(fmt::format("Not moved to the trash {}: {}", path, held.error().reason));
    return tl::unexpected(held.error().reason);
}

tl::expected<std::string, std::string> Trash::move(const HeldEntry& held,
                                                   const TrashFolder::LastLook& lastLook,
                                                   Series* series) const {
    using Records = TrashFolder::Records;
    Series ofThisOne;
    auto result = series != nullptr ? moveHeld(held, lastLook, *series, Records::Later)
                                    : moveHeld(held, lastLook, ofThisOne, Records::Now);
    if (Log::isEnabled())
        Log::line(result ? fmt::format("Moved to the trash {} ({})", held.path, *result)
                         : fmt::format("Not moved to the trash {}: {}", held.path, result.error()));
    return result;
}

// What is known of the folder that the entry leaves, or why nothing can be.
std::optional<std::string> Trash::enter(const HeldEntry& held, Series& series) const {
    constexpr std::chrono::milliseconds answersLast{100};
    if (const auto now = std::chrono::steady_clock::now(); now - series.m_known >= answersLast) {
        series.m_home.reset();
        series.m_parent.reset();
        series.m_known = now;
    }
    if (series.m_parent && series.m_parent->get() == held.parent.get()) return std::nullopt;
    series.m_parent.reset();
    series.m_ofVolume.reset();
    const auto place = m_files.placeOf(held.parent.get());
    if (!place) return reasonOf(place.error());
    const auto seen = m_files.attributes(held.parent.get());
    if (!seen) return reasonOf(seen.error());
    const std::string home = homeTrash();
    series.m_isOnHome = !home.empty() && isOnVolumeOf(held, home);
    series.m_from = {*place, *seen};
    series.m_parent = held.parent;
    return std::nullopt;
}

tl::expected<std::string, std::string> Trash::moveHeld(const HeldEntry& held,
                                                       const TrashFolder::LastLook& lastLook,
                                                       Series& series,
                                                       TrashFolder::Records records) const {
    series.m_isLeftInTrash = false;
    if (auto why = enter(held, series)) return tl::unexpected(std::move(*why));
    // Moves it, unless this trash is on another volume after all, as between parts of one that
    // count as volumes.
    const TakeTo takeTo =
        [&](const TrashFolder& trash,
            std::string& reason) -> std::optional<tl::expected<std::string, std::string>> {
        auto taken = trash.take(held, series.m_from, lastLook, records);
        if (taken) {
            if (records == TrashFolder::Records::Later &&
                !series.m_unsynced.contains(series.m_from.attributes.device))
                if (auto folder = trash.holdRecords())
                    series.m_unsynced.emplace(series.m_from.attributes.device, std::move(*folder));
            return std::move(*taken);
        }
        series.m_isLeftInTrash = taken.error().isLeftInTrash;
        if (!taken.error().isElsewhere) return tl::unexpected(taken.error().reason);
        if (reason.empty()) reason = taken.error().reason;
        return std::nullopt;
    };
    std::string reason;
    if (series.m_isOnHome)
        if (const TrashFolder* const trash = openHome(series, reason))
            if (auto result = takeTo(*trash, reason)) {
                if (!*result) series.m_home.reset();  // it may be another one by now
                return *result;
            }
    return moveOnVolume(held, series, std::move(reason), takeTo);
}

// Administrators make the shared trash, and where it does not serve it says nothing about the
// user's own. A shared one that is not safe is a thing for the administrator to know.
tl::expected<std::string, std::string> Trash::moveOnVolume(const HeldEntry& held, Series& series,
                                                           std::string reason,
                                                           const TakeTo& takeTo) const {
    if (auto known = std::exchange(series.m_ofVolume, std::nullopt))
        if (auto result = takeTo(*known, reason)) {
            if (*result) series.m_ofVolume.emplace(std::move(*known));
            return *result;
        }
    const auto take = [&](Found trash) -> std::optional<tl::expected<std::string, std::string>> {
        if (!trash) {
            if (reason.empty()) reason = trash.error();
            return std::nullopt;
        }
        auto result = takeTo(*trash, reason);
        if (result && *result) series.m_ofVolume.emplace(std::move(*trash));
        return result;
    };
    const auto root = rootOfVolume(held);
    if (!root) return tl::unexpected(reasonOf(root.error()));
    if (auto shared = openShared(root->get()); shared) {
        if (auto result = take(std::move(shared))) return *result;
    } else if (m_files.attributes(root->get(), ".Trash", Links::Keep)) {
        Log::line(fmt::format("The shared trash on the volume of {} is not used: {}", held.path,
                              shared.error()));
    }
    if (auto result = take(openOwn(root->get()))) return *result;
    return tl::unexpected("no trash on its volume: " + reason);
}

void Trash::Series::sync() {
    for (const auto& [device, folder] : m_unsynced)
        if (::syncfs(folder.get()) != 0)
            Log::line(fmt::format("Records of the trash may not be on the disk: {}",
                                  systemError("sync", {}, errno).reason()));
    m_unsynced.clear();
}

std::vector<TrashFolder> Trash::trashesOf(const std::string& folder) const {
    std::vector<TrashFolder> found;
    const auto add = [&](Found trash) {
        if (trash) found.push_back(std::move(*trash));
    };
    const auto isThere = [&](int parent, const std::string& path) {
        return m_files.attributes(parent, path.c_str(), Links::Keep).has_value();
    };
    if (const std::string home = homeTrash(); isThere(FileSystem::noParent, home)) add(openHome());
    auto held = m_files.holdFolder(FileSystem::noParent, folder.c_str(), Links::Follow);
    if (!held) return found;
    const HeldEntry entry{SharedFolder(std::move(*held)), {}, {}, {}};
    const auto root = rootOfVolume(entry);
    if (!root) return found;
    const std::string user = std::to_string(m_variables.user);
    if (isThere(root->get(), ".Trash/" + user)) add(openShared(root->get()));
    if (isThere(root->get(), ".Trash-" + user)) add(openOwn(root->get()));
    return found;
}

// A folder that goes elsewhere has another folder above it, which is written into it.
std::optional<std::string> Trash::objection(const std::string& path) const {
    const auto held = HeldEntry::at(m_files, m_places, path, std::nullopt);
    if (!held) return held.error().reason;
    if (auto why = objectionTo(held->parent.get(), ".")) return why;
    if (held->attributes.type == FileType::Folder)
        if (auto why = objectionTo(held->parent.get(), held->name.c_str())) return why;
    const std::string home = homeTrash();
    if (!home.empty() && isOnVolumeOf(*held, home) && !objectionToHome(home)) return std::nullopt;
    const auto root = rootOfVolume(*held);
    if (!root) return reasonOf(root.error());
    auto why = objectionToVolume(root->get());
    if (why) why = "no trash on its volume: " + *why;
    return why;
}

std::optional<std::string> Trash::objectionToHome(std::string folder) const {
    while (folder != "/" && !m_files.attributes(FileSystem::noParent, folder.c_str(), Links::Keep))
        folder = folderOf(folder);
    return objectionTo(AT_FDCWD, folder.c_str());
}

std::optional<std::string> Trash::objectionToVolume(int root) const {
    struct stat seen {};
    const bool isShared = ::fstatat(root, ".Trash", &seen, AT_SYMLINK_NOFOLLOW) == 0 &&
                          S_ISDIR(seen.st_mode) && (seen.st_mode & S_ISVTX) != 0;
    if (isShared && !objectionTo(root, ".Trash")) return std::nullopt;
    const std::string own = ".Trash-" + std::to_string(m_variables.user);
    const std::array folders{own, own + "/files", own + "/info"};
    for (const std::string& each : folders) {
        if (::fstatat(root, each.c_str(), &seen, AT_SYMLINK_NOFOLLOW) != 0) {
            if (&each == folders.data()) return objectionTo(root, ".");
            continue;  // it is made in the one above
        }
        if (!S_ISDIR(seen.st_mode)) return reasonOf(ENOTDIR);
        if (seen.st_uid != m_variables.user) return "the trash there is another user's";
        if (auto why = objectionTo(root, each.c_str())) return why;
    }
    return std::nullopt;
}

std::string Trash::homeTrash() const {
    const auto data = plainPath(m_variables.dataHome);
    if (data) return joinPath(*data, "Trash");
    const auto home = plainPath(m_variables.home);
    return home ? joinPath(*home, ".local/share/Trash") : std::string();
}

// The folder itself need not be there yet.
bool Trash::isOnVolumeOf(const HeldEntry& held, std::string folder) const {
    auto seen = m_files.attributes(FileSystem::noParent, folder.c_str(), Links::Follow);
    while (!seen && seen.error() == ENOENT && folder != "/") {
        folder = folderOf(folder);
        seen = m_files.attributes(FileSystem::noParent, folder.c_str(), Links::Follow);
    }
    const auto parent = m_files.attributes(held.parent.get());
    return seen && parent && seen->device == parent->device && isSameMount(*seen, *parent);
}

SysResult<Descriptor> Trash::rootOfVolume(const HeldEntry& held) const {
    auto here = m_files.holdFolder(held.parent.get(), ".", Links::Keep);
    while (here) {
        auto above = m_files.holdFolder(here->get(), "..", Links::Keep);
        if (!above) return above;
        const auto seen = m_files.attributes(here->get());
        const auto next = m_files.attributes(above->get());
        if (!seen || !next) return tl::unexpected(!seen ? seen.error() : next.error());
        if (!isSameMount(*seen, *next) || isSameFolder(*seen, *next)) break;
        here = std::move(above);
    }
    return here;
}

Trash::Found Trash::openHome() const {
    const std::string path = homeTrash();
    if (const auto made = DurableFile::makeFolder(folderOf(path)); !made)
        return tl::unexpected(made.error().reason());
    const auto folder =
        m_files.holdFolder(FileSystem::noParent, folderOf(path).c_str(), Links::Follow);
    if (!folder) return tl::unexpected(reasonOf(folder.error()));
    return TrashFolder::open(m_files, folder->get(), std::string(lastPathComponent(path)),
                             m_variables.user);
}

// Null, with the reason, where there is none.
const TrashFolder* Trash::openHome(Series& series, std::string& reason) const {
    if (series.m_home) return &*series.m_home;
    auto home = openHome();
    if (!home) {
        reason = home.error();
        return nullptr;
    }
    return &series.m_home.emplace(std::move(*home));
}

// "$topdir/.Trash" is for all users only with the sticky bit; a link there may lead anywhere.
Trash::Found Trash::openShared(int root) const {
    const auto shared = m_files.openInside(root, ".Trash");
    if (!shared) return tl::unexpected(reasonOf(shared.error()));
    struct stat seen {};
    if (::fstat(shared->get(), &seen) != 0) return tl::unexpected(reasonOf(errno));
    if ((seen.st_mode & S_ISVTX) == 0)
        return tl::unexpected(std::string("anybody may remove what others put there"));
    auto trash = TrashFolder::open(m_files, shared->get(), std::to_string(m_variables.user),
                                   m_variables.user);
    if (trash) trash->keepRelativeTo(m_files.placeOf(root).value_or(std::string()));
    return trash;
}

Trash::Found Trash::openOwn(int root) const {
    auto trash = TrashFolder::open(m_files, root, ".Trash-" + std::to_string(m_variables.user),
                                   m_variables.user);
    if (trash) trash->keepRelativeTo(m_files.placeOf(root).value_or(std::string()));
    return trash;
}

}  // namespace orrinvale
