// SafeRemoval: see SafeRemoval.h. HeldEntry tells whether the entry may go; folders are left to TreeRemoval.
#include "engine/files/SafeRemoval.h"

#include <fmt/format.h>

#include <cerrno>

#include "engine/base/Log.h"
#include "engine/files/TreeRemoval.h"
#include "platform/error.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

void fail(RemovalResult& result, const std::string& path, std::string reason) {
    ++result.failed;
    result.failures.push_back({path, std::move(reason)});
}

void fail(RemovalResult& result, const std::string& path, int error) {
    fail(result, path, systemError("remove", {}, error).reason());
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
    const auto held = HeldEntry::at(m_files, m_places, path, expected);
    if (held) {
        removeHeld(*held, stop, result);
    } else {
        const HeldEntry::Objection& objection = held.error();
        const bool isMissing = objection.error == ENOENT;
        result.refused = objection.kind == HeldEntry::Objection::Kind::Refused;
        result.gone = isMissing && (objection.kind == HeldEntry::Objection::Kind::NoEntry ||
                                    isSurelyAbsent(plainPath(path).value_or("/"), expected));
        if (!result.gone) fail(result, path, objection.reason);
    }
    Log::line(lineOf(path, result));
    return result;
}

void SafeRemoval::removeHeld(const HeldEntry& held, const std::atomic<bool>* stop, RemovalResult& result) const {
    if (stop != nullptr && *stop) {
        result.stopped = true;
        return;
    }
    const int parent = held.parent.get();
    const char* const name = held.name.c_str();
    if (held.attributes.type == FileType::Folder) {
        TreeRemoval(m_files, held.path, stop, result).run(parent, held.name, held.attributes);
    } else {
        const auto removal = m_files.removeEntry(parent, name, held.attributes.type);
        if (removal) ++result.removed;
        else if (removal.error() != ENOENT) fail(result, held.path, removal.error());
    }
    const auto after = m_files.attributes(parent, name, Links::Keep);
    result.gone = !after && after.error() == ENOENT;
    // Nothing went wrong, and yet something is there: it came after ours went.
    if (!result.gone && !result.stopped && result.failed == 0) fail(result, held.path, "another entry is in its place");
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
