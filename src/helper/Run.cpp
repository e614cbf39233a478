// Run: see Run.h. The tool is in Tool.cpp.
#include "helper/Run.h"

#include <cerrno>
#include <optional>
#include <utility>

#include "engine/files/EntryIdentity.h"
#include "engine/files/ProtectedPlaces.h"
#include "helper/Accounts.h"
#include "helper/Checks.h"
#include "helper/Tool.h"
#include "platform/error.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/paths.h"

namespace orrinvale::helper {
namespace {

using Outcome = HelperReply::Outcome;

std::string reasonOf(int error) { return systemError("rm", {}, error).reason(); }

HelperReply outcomeOf(const FileSystem& files, const WorkFolder& work, const std::string& name, const ToolRun& run) {
    if (!run.output.empty()) return {0, Outcome::Printed, run.output};
    const auto left = files.attributes(work.folder.get(), name.c_str(), Links::Keep);
    if (!left && left.error() == ENOENT) return {0, Outcome::Removed, {}};
    if (!run.failure.empty()) return {0, Outcome::Failed, run.failure};
    if (!run.firstError.empty()) return {0, Outcome::StillThere, run.firstError};
    return {0, Outcome::StillThere, left ? "still there" : reasonOf(left.error())};
}

bool isStill(const SeenEntry& then, const FileAttributes& now) {
    if (!then.state) return now.device == then.device && now.inode == then.inode && now.type == then.type;
    return EntryIdentity{.device = then.device,
                         .inode = then.inode,
                         .type = then.type,
                         .size = then.state->size,
                         .modified = then.state->modified,
                         .changed = then.state->changed,
                         .born = then.state->born}
        .isStill(now);
}

/// Whether the copy that stays is where it was seen, and no part of what goes. Asked past what is remembered, since it may be a second
/// view of the entry.
bool stands(const FileSystem& files, const SeenEntry& stays, const SeenEntry& goes) {
    if (isWithin(stays.path, goes.path)) return false;
    const auto parent = files.holdFolder(FileSystem::noParent, folderOf(stays.path).c_str(), Links::Keep);
    if (!parent) return false;
    const std::string name(lastPathComponent(stays.path));
    const auto now = files.freshAttributes(parent->get(), name.c_str(), Links::Keep);
    return now && isStill(stays, *now);
}

HelperReply refused(std::string reason) { return {0, Outcome::Refused, std::move(reason)}; }

}  // namespace

HelperReply removeEntry(const HelperRequest& request, uid_t caller, const std::vector<std::string>& ownFiles) {
    const LinuxFileSystem files;
    auto parent = openVerifiedParent(request.entry.path, caller);
    if (!parent) return refused(std::move(parent.error()));
    const std::string name = parent->name;
    // From the folder as it is seen now: in the copy a mount point looks like the folder below it.
    const auto seen = files.attributes(parent->folder.get(), name.c_str(), Links::Keep);
    if (!seen) return refused(reasonOf(seen.error()));
    auto places = ProtectedPlaces::ofThisMachine(files, ownFiles);
    if (const auto home = homeOf(caller)) places.addHome(files, *home, caller);
    if (auto reason = places.refusal(request.entry.path, *seen)) return refused(std::move(*reason));

    const WorkFolder work = WorkFolder::of(std::move(parent->folder));
    const auto entry = files.attributes(work.folder.get(), name.c_str(), Links::Keep);
    if (!entry || !isStill(request.entry, *entry) || !isStill(request.entry, *seen))
        return refused("changed since it was looked at");
    if (request.stays && !stands(files, *request.stays, request.entry)) return refused("no other copy is left");
    return outcomeOf(files, work, name, runTool(name, work));
}

}  // namespace orrinvale::helper
