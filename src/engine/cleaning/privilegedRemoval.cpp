// The removals of QnAuthorization for a path that no scan saw. AuthorizedDoor.h removes what a scan
// did see.
#include <fmt/format.h>

#include <climits>

#include "engine/base/Log.h"
#include "engine/cleaning/AuthorizedDoor.h"
#include "engine/cleaning/QnAuthorization.h"
#include "platform/error.h"
#include "platform/paths.h"

namespace orrinvale {

std::unique_ptr<RemovalDoor> QnAuthorization::makeDoor() {
    const AuthorizationParts& parts = shareQnAuthorization().m_parts;
    return std::make_unique<AuthorizedDoor>(parts);
}

std::unique_ptr<RemovalDoor> QnAuthorization::makeDoorAfter(std::shared_ptr<OwnChanges> own) {
    return std::make_unique<AuthorizedDoor>(shareQnAuthorization().m_parts, protectedPlaces(),
                                            AuthorizedDoor::ToolTakes::FilesAndFolders,
                                            std::move(own));
}

ProtectedPlaces QnAuthorization::protectedPlaces() {
    const AuthorizationParts& parts = shareQnAuthorization().m_parts;
    return ProtectedPlaces::ofThisMachine(*parts.files, parts.ownFiles);
}

std::unique_ptr<RemovalDoor> QnAuthorization::makeDoorForFiles() {
    return std::make_unique<AuthorizedDoor>(shareQnAuthorization().m_parts,
                                            AuthorizedDoor::ToolTakes::FilesAlone);
}

bool QnAuthorization::removeItemAtPath(const std::string& path) {
    const FileSystem* const files = shareQnAuthorization().m_parts.files;
    const auto plain = plainPath(path);
    if (files == nullptr || !plain || path.size() >= PATH_MAX) return false;
    return !runRemovalTool(*files, *plain, attributesByPath(*files, *plain));
}

bool QnAuthorization::synFastRemovePath(const std::string& path) {
    const AuthorizationParts& parts = shareQnAuthorization().m_parts;
    const auto plain = plainPath(path);
    if (parts.files == nullptr || !plain) return false;
    const auto entry = attributesByPath(*parts.files, *plain);
    if (entry) {
        LeavingEntry leaving;
        leaving.path = *plain;
        leaving.identity = EntryIdentity::of(*entry);
        const std::atomic<bool> never{false};
        return AuthorizedDoor(parts).remove(leaving, never).gone;
    }
    // A path at which nothing stands takes the tool's answer. What can not be seen because a folder
    // on the way may not be searched stays, with or without the right: nobody could tell that it is
    // the entry that was meant.
    Log::line(fmt::format("Clean deletable file failed: {}-{}", *plain,
                          systemError("stat", *plain, entry.error()).reason()));
    return !runRemovalTool(*parts.files, *plain, entry);
}

}  // namespace orrinvale
