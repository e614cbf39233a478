// Plain removal is engine/removal/PlainDoor, the administrator's tool runs behind
// platform/authorization.h; neither follows a link, and both make sure of the entry again.
#include "engine/cleaning/AuthorizedDoor.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <memory>
#include <optional>
#include <utility>

#include "engine/base/Log.h"
#include "engine/cleaning/wayWithoutLinks.h"
#include "engine/removal/stayReasons.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/permissions.h"

namespace orrinvale {
namespace {

constexpr std::size_t mostOutput = 128;

SysResult<Descriptor> holdAt(const FileSystem& files, const std::string& path) {
    const auto parent = HeldEntry::holdParentOf(files, path);
    if (!parent) return tl::unexpected(parent.error());
    return files.holdEntry(parent->get(), std::string(lastPathComponent(path)).c_str());
}

std::optional<SeenEntry> seenEntryOf(const FileSystem& files, const std::optional<KeptCopy>& kept) {
    if (!kept) return std::nullopt;
    SeenEntry seen{withoutLinksOnTheWay(files, kept->path), kept->identity.device,
                   kept->identity.inode, kept->identity.type, std::nullopt};
    if (!kept->identity.times)
        seen.state = EntryState{kept->identity.size, kept->identity.modified,
                                kept->identity.changed, kept->identity.born};
    return seen;
}

/// Opens a folder that shuts out its own owner, so that he can empty it, and shuts it again: a
/// private folder must not stay open behind a removal that failed, nor while the administrator's
/// tool works. The mode of anything else is nobody's business here: a file goes by the right to
/// change its folder, and its mode would change under all its other names as well.
class OpenedUp final {
public:
    OpenedUp(const FileSystem& files, const Permissions* permissions, const LeavingEntry& entry)
        : m_permissions(permissions) {
        if (m_permissions == nullptr || !entry.identity || entry.identity->type != FileType::Folder)
            return;
        auto folder = holdAt(files, entry.path);
        if (!folder) return;
        const auto now = files.attributes(folder->get());
        if (!now || !entry.identity->isStill(*now)) return;
        m_folder = std::move(*folder);
        m_former = m_permissions->openToOwner(m_folder.get());
    }
    ~OpenedUp() {
        if (m_former) m_permissions->setPermissions(m_folder.get(), *m_former);
    }
    OpenedUp(const OpenedUp&) = delete;
    OpenedUp& operator=(const OpenedUp&) = delete;

private:
    const Permissions* const m_permissions;
    Descriptor m_folder;
    std::optional<std::uint32_t> m_former;
};

void note(const std::string& path, const std::string& reason) {
    Log::line(fmt::format("Clean deletable file failed: {}-{}", path, reason));
}

// As a listing counts it.
std::uint64_t lengthOf(const EntryIdentity& entry) {
    const bool isCounted = entry.type == FileType::Regular || entry.type == FileType::SymbolicLink;
    return isCounted ? entry.size : 0;
}

bool lacksRights(const RemovalResult& result) {
    return std::any_of(result.failures.begin(), result.failures.end(),
                       [](const StayedEntry& each) { return each.kind == StayReason::Rights; });
}

}  // namespace

SysResult<FileAttributes> attributesByPath(const FileSystem& files, const std::string& path) {
    const auto entry = holdAt(files, path);
    if (!entry) return tl::unexpected(entry.error());
    return files.attributes(entry->get());
}

std::optional<std::string> runRemovalTool(const FileSystem& files, const std::string& path,
                                          const SysResult<FileAttributes>& entry,
                                          const std::optional<KeptCopy>& kept) {
    if (!entry && entry.error() != ENOENT) return systemError("stat", path, entry.error()).reason();
    QnAuthorization& right = QnAuthorization::shareQnAuthorization();
    const AuthorizationRef reference = right.getAuthorizationRet();
    std::unique_ptr<ToolOutput> output;
    auto status = reference == AuthorizationRef::null ? AuthorizationStatus::invalidReference
                                                      : AuthorizationStatus::success;
    if (entry) {
        const PrivilegedRun run{"/bin/rm",
                                {"-rf", withoutLinksOnTheWay(files, path)},
                                entry->device,
                                entry->inode,
                                entry->type,
                                EntryState::of(*entry),
                                seenEntryOf(files, kept)};
        status = right.platform().executeWithPrivileges(reference, run, output);
    }
    (void)right.platform().free(reference);
    std::array<char, mostOutput> printed{};
    const std::ptrdiff_t count = output ? output->read(printed) : 0;
    if (status == AuthorizationStatus::success && count <= 0) return std::nullopt;
    return std::string(printed.data(),
                       static_cast<std::size_t>(std::max<std::ptrdiff_t>(count, 0)));
}

AuthorizedDoor::AuthorizedDoor(const AuthorizationParts& parts, ToolTakes takes)
    : AuthorizedDoor(parts, ProtectedPlaces::ofThisMachine(*parts.files, parts.ownFiles), takes) {}

AuthorizedDoor::AuthorizedDoor(const AuthorizationParts& parts, ProtectedPlaces places,
                               ToolTakes takes, std::shared_ptr<OwnChanges> own)
    : m_files(*parts.files),
      m_permissions(parts.permissions),
      m_plain(*parts.files, std::move(places), std::move(own)),
      m_takes(takes) {}

// What the tool took from a folder makes room for another plain attempt: failures are told a
// hundred at a time, and a folder that was not empty may be so now.
RemovalResult AuthorizedDoor::remove(const LeavingEntry& entry, const std::atomic<bool>& stop) {
    RemovalResult result = removePlainly(entry, stop);
    const std::string first =
        result.failures.empty() ? std::string() : result.failures.front().reason;
    bool isTried = false;
    while (!result.gone && !result.stopped && lacksRights(result)) {
        isTried = true;
        if (!QnAuthorization::shareQnAuthorization().isValidAuth || !removeRefused(entry, result))
            break;
        if (result.gone) break;
        const RemovalResult earlier = std::exchange(result, removePlainly(entry, stop));
        result.addEarlier(earlier);
    }
    if (isTried || result.refused) note(entry.path, first);
    return result;
}

RemovalResult AuthorizedDoor::removePlainly(const LeavingEntry& entry,
                                            const std::atomic<bool>& stop) {
    const OpenedUp opened(m_files, m_permissions, entry);
    return m_plain.remove(entry, stop);
}

// True when the tool took anything.
bool AuthorizedDoor::removeRefused(const LeavingEntry& entry, RemovalResult& result) const {
    bool tookAny = false;
    for (StayedEntry& refused : result.failures) {
        if (refused.kind != StayReason::Rights || !isForTheTool(entry, refused.path)) continue;
        if (!runTool(entry, refused)) continue;
        tookAny = true;
        ++result.removed;
        if (entry.seen != nullptr && refused.identity)
            result.addName(lengthOf(*refused.identity), true);
        result.gone = result.gone || refused.path == entry.path;
    }
    if (result.gone) {
        result.failures.clear();
        result.failed = 0;
    }
    return tookAny;
}

// The tool empties folders without asking what is in them. A bundle was listed just before.
bool AuthorizedDoor::isForTheTool(const LeavingEntry& entry, const std::string& refused) const {
    const bool wasListed =
        entry.seen != nullptr || (entry.look != nullptr && refused != entry.path);
    if (!wasListed && m_takes == ToolTakes::FilesAndFolders) return true;
    const auto now = attributesByPath(m_files, refused);
    if (!now || now->type != FileType::Folder) return true;
    if (m_takes == ToolTakes::FilesAlone) return false;
    const auto parent = HeldEntry::holdParentOf(m_files, refused);
    if (!parent) return false;
    const auto folder =
        m_files.openInside(parent->get(), std::string(lastPathComponent(refused)).c_str());
    CatalogBatch batch;
    return folder && m_files.readFolder(folder->get(), batch).value_or(true) == false;
}

// A file that was written to meanwhile is another one to its owner, though its inode is the same;
// and by a path that links lead elsewhere stands what nobody refused.
bool AuthorizedDoor::runTool(const LeavingEntry& entry, StayedEntry& refused) const {
    const auto now = attributesByPath(m_files, refused.path);
    const bool isChosen = refused.path == entry.path;
    const auto& identity = isChosen ? entry.identity : refused.identity;
    if (!isChosen && entry.seen != nullptr && !identity) return false;
    const bool isFolder = now && now->type == FileType::Folder;
    if ((now && identity && !identity->isStill(*now)) ||
        (isFolder && m_takes == ToolTakes::FilesAlone)) {
        refused.reason = stay::changed;
        refused.kind = StayReason::Changed;
        return false;
    }
    if (refused.path.size() >= PATH_MAX) return false;
    const auto kept = isChosen && entry.look != nullptr ? entry.look->kept() : std::nullopt;
    const auto stays = runRemovalTool(m_files, refused.path, now, kept);
    if (stays && !stays->empty()) refused.reason = *stays;
    if (!stays) Log::line(fmt::format("Removed {} as administrator", refused.path));
    return !stays;
}

}  // namespace orrinvale
