// SafeRemoval: see SafeRemoval.h. Looks the entry up, asks whether it may go, and leaves folders to TreeRemoval.
#include "engine/files/SafeRemoval.h"

#include <fmt/format.h>

#include <cerrno>
#include <string_view>

#include "engine/base/Log.h"
#include "engine/files/FolderNode.h"
#include "engine/files/TreeRemoval.h"
#include "platform/error.h"

namespace orrinvale {
namespace {

constexpr std::size_t longestPath = 4000;  // below PATH_MAX (4096), which counts the closing NUL

void fail(RemovalResult& result, const std::string& path, std::string reason) {
    ++result.failed;
    result.failures.push_back({path, std::move(reason)});
}

void refuse(RemovalResult& result, const std::string& path, std::string reason) {
    result.refused = true;
    fail(result, path, std::move(reason));
}

void fail(RemovalResult& result, const std::string& path, int error) {
    fail(result, path, systemError("remove", {}, error).reason());
}

// Once, and then held. A path longer than the system's limit is gone through piece by piece, each from the one before.
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
    return files.holdFolder(base.isOpen() ? base.get() : FileSystem::noParent, std::string(rest).c_str(),
                            Links::Follow);
}

std::string lineOf(const std::string& path, const RemovalResult& result) {
    const std::string reason = result.failures.empty() ? std::string() : ": " + result.failures.front().reason;
    if (result.gone) return fmt::format("Removed {} ({} entries)", path, result.removed);
    if (result.stopped) return fmt::format("Stopped removing {} ({} entries went)", path, result.removed);
    if (result.removed == 0 && result.failed <= 1) return fmt::format("Not removed {}{}", path, reason);
    return fmt::format("Not removed {} ({} entries went, {} did not){}", path, result.removed, result.failed, reason);
}

}  // namespace

RemovalResult SafeRemoval::remove(const std::string& path, const std::optional<EntryIdentity>& expected,
                                  const std::atomic<bool>* stop) const {
    RemovalResult result;
    const auto plain = plainPath(path);
    if (!plain) {
        refuse(result, path, "not a plain absolute path");
    } else if (*plain == "/") {
        refuse(result, path, "the root of the file system");
    } else {
        const auto parent = hold(m_files, folderOf(*plain));
        if (parent) removeHeld(parent->get(), *plain, expected, stop, result);
        else if (parent.error() == ENOENT && isSurelyAbsent(*plain, expected)) result.gone = true;
        else fail(result, path, parent.error());
    }
    Log::line(lineOf(path, result));
    return result;
}

void SafeRemoval::removeHeld(int parent, const std::string& path, const std::optional<EntryIdentity>& expected,
                             const std::atomic<bool>* stop, RemovalResult& result) const {
    const std::string name(lastPathComponent(path));
    const auto entry = m_files.attributes(parent, name.c_str(), Links::Keep);
    if (!entry) {
        result.gone = entry.error() == ENOENT;
        if (!result.gone) fail(result, path, entry.error());
        return;
    }
    if (auto reason = refusal(parent, path, name.c_str(), *entry)) return refuse(result, path, std::move(*reason));
    if (expected && !expected->isStill(*entry)) return refuse(result, path, "changed since the scan");
    if (stop != nullptr && *stop) {
        result.stopped = true;
        return;
    }
    if (entry->type == FileType::Folder) {
        TreeRemoval(m_files, path, stop, result).run(parent, name, *entry);
    } else {
        const auto removal = m_files.removeEntry(parent, name.c_str(), entry->type);
        if (removal) ++result.removed;
        else if (removal.error() != ENOENT) fail(result, path, removal.error());
    }
    const auto after = m_files.attributes(parent, name.c_str(), Links::Keep);
    result.gone = !after && after.error() == ENOENT;
    // Nothing went wrong, and yet something is there: it came after ours went.
    if (!result.gone && !result.stopped && result.failed == 0) fail(result, path, "another entry is in its place");
}

// The path as it was given may lead through links, so that the place of the held parent is asked for too.
std::optional<std::string> SafeRemoval::refusal(int parent, const std::string& path, const char* name,
                                                const FileAttributes& entry) const {
    if (auto reason = m_places.refusal(path, entry)) return reason;
    if (const auto place = m_files.placeOf(parent); place && place->starts_with('/'))
        if (auto reason = m_places.refusal(joinPath(*place, name), entry)) return reason;
    const auto folder = m_files.attributes(parent);
    if (!folder) return systemError("remove", {}, folder.error()).reason();
    // Layered file systems give files the device of their layer, so that it tells a mount of folders only.
    const bool otherDevice = entry.type == FileType::Folder && folder->device != entry.device;
    if (otherDevice || folder->mount != entry.mount) return "a mount point";
    return std::nullopt;
}

// A missing folder on the way proves that the entry is gone only where the scan's file system is still there: without its mount,
// the path leads nowhere while the entry sits safely on the disk that was pulled out.
bool SafeRemoval::isSurelyAbsent(const std::string& path, const std::optional<EntryIdentity>& expected) const {
    for (std::string folder = folderOf(path); folder != "/"; folder = folderOf(folder)) {
        const auto above = m_files.attributes(FileSystem::noParent, folderOf(folder).c_str(), Links::Keep);
        if (!above && above.error() == ENOENT) continue;
        if (!above || above->type != FileType::Folder) return false;
        const auto next = m_files.attributes(FileSystem::noParent, folder.c_str(), Links::Keep);
        return !next && next.error() == ENOENT && (!expected || above->device == expected->device);
    }
    return false;
}

}  // namespace orrinvale
