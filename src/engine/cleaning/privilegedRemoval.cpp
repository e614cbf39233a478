// The removals of QnAuthorization. Plain removal is engine/files/SafeRemoval, the administrator's tool runs behind
// platform/authorization.h; neither follows a link, and both make sure of the entry again.
#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <memory>
#include <optional>
#include <utility>

#include "engine/base/Log.h"
#include "engine/cleaning/QnAuthorization.h"
#include "engine/files/FolderNode.h"
#include "engine/files/SafeRemoval.h"
#include "platform/error.h"
#include "platform/permissions.h"

namespace orrinvale {
namespace {

constexpr std::size_t kMostOutput = 128;
constexpr std::string_view kChanged = "changed since the scan";

SysResult<Descriptor> holdAt(const FileSystem& files, const std::string& path) {
    if (path.size() < PATH_MAX) return files.holdEntry(FileSystem::noParent, path.c_str());
    const auto parent = openFolderByPath(files, folderOf(path), Links::Follow);
    if (!parent) return tl::unexpected(parent.error());
    return files.holdEntry(parent->get(), std::string(lastPathComponent(path)).c_str());
}

SysResult<FileAttributes> attributesAt(const FileSystem& files, const std::string& path) {
    const auto entry = holdAt(files, path);
    if (!entry) return tl::unexpected(entry.error());
    return files.attributes(entry->get());
}

/// The same entry by a way without links, which the administrator's tool does not take. What is at its end is compared by identity.
std::string withoutLinksOnTheWay(const FileSystem& files, const std::string& path) {
    auto folder = files.resolved(folderOf(path));
    return folder ? joinPath(*folder, lastPathComponent(path)) : path;
}

/// Runs the tool on an entry as it was just seen; why the entry is not gone, or nothing when it is. A path at which nothing stands
/// asks only for the right, as the tool would have nothing to do and nothing to say.
std::optional<std::string> runTool(const FileSystem& files, const std::string& path,
                                   const SysResult<FileAttributes>& entry) {
    if (!entry && entry.error() != ENOENT) return systemError("stat", path, entry.error()).reason();
    QnAuthorization& right = QnAuthorization::shareQnAuthorization();
    const AuthorizationRef reference = right.getAuthorizationRet();
    std::unique_ptr<ToolOutput> output;
    auto status =
        reference == AuthorizationRef::null ? AuthorizationStatus::invalidReference : AuthorizationStatus::success;
    if (entry) {
        const PrivilegedRun run{
            "/bin/rm", {"-rf", withoutLinksOnTheWay(files, path)}, entry->device, entry->inode, entry->type};
        status = right.platform().executeWithPrivileges(reference, run, output);
    }
    (void)right.platform().free(reference);
    std::array<char, kMostOutput> printed{};
    const std::ptrdiff_t count = output ? output->read(printed) : 0;
    if (status == AuthorizationStatus::success && count <= 0) return std::nullopt;
    return std::string(printed.data(), static_cast<std::size_t>(std::max<std::ptrdiff_t>(count, 0)));
}

/// Opens a folder that shuts out its own owner, so that he can empty it, and shuts it again: a private folder must not stay open
/// behind a removal that failed, nor while the administrator's tool works. The mode of anything else is nobody's business here:
/// a file goes by the right to change its folder, and its mode would change under all its other names as well.
class OpenedUp final {
public:
    OpenedUp(const FileSystem& files, const Permissions* permissions, const std::string& path,
             const FileAttributes& entry)
        : m_permissions(permissions) {
        if (m_permissions == nullptr || entry.type != FileType::Folder) return;
        auto folder = holdAt(files, path);
        if (!folder) return;
        const auto now = files.attributes(folder->get());
        if (!now || !EntryIdentity::of(entry).isStill(*now)) return;
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

/// One removal by the door that all pages use.
class Door final {
public:
    Door(const FileSystem& files, const Permissions* permissions, const ProtectedPlaces& places,
         const std::string& path)
        : m_files(files), m_permissions(permissions), m_places(places), m_path(path) {}

    FastRemoval remove(const std::optional<EntryIdentity>& expected, const std::atomic<bool>* stop) {
        const auto entry = attributesAt(m_files, m_path);
        if (!entry && !expected) return withoutEntry(entry);
        // What a scan saw is gone as the caller wants, unless its whole disk is: the plain removal tells the one from the other.
        if (!entry) return told(SafeRemoval(m_files, m_places).remove(m_path, expected, stop));
        if (expected && !expected->isStill(*entry)) return refuse(std::string(kChanged));
        if (auto reason = m_places.refusal(m_path, *entry)) return refuse(std::move(*reason));
        return removePlainly(*entry, stop);
    }

private:
    // A path that nobody saw takes the tool's answer. What can not be seen because a folder on the way may not be searched stays,
    // with or without the right: nobody could tell that it is the entry that was meant.
    FastRemoval withoutEntry(const SysResult<FileAttributes>& entry) const {
        FastRemoval result = refuse(systemError("stat", m_path, entry.error()).reason());
        result.gone = result.privileged = !runTool(m_files, m_path, entry);
        if (result.gone) result.reason.clear();
        return result;
    }

    FastRemoval removePlainly(const FileAttributes& entry, const std::atomic<bool>* stop) {
        const auto identity = EntryIdentity::of(entry);
        const RemovalResult plain = removeOpenedUp(entry, identity, stop);
        FastRemoval result = told(plain);
        if (plain.refused) note(result.reason);
        else if (!plain.gone && !plain.stopped) removePrivileged(identity, result);
        return result;
    }

    RemovalResult removeOpenedUp(const FileAttributes& entry, const EntryIdentity& identity,
                                 const std::atomic<bool>* stop) const {
        const OpenedUp opened(m_files, m_permissions, m_path, entry);
        return SafeRemoval(m_files, m_places).remove(m_path, identity, stop);
    }

    FastRemoval told(const RemovalResult& plain) const {
        FastRemoval result{.gone = plain.gone, .stopped = plain.stopped, .removed = plain.removed, .reason = {}};
        if (!result.gone) result.reason = plain.failures.empty() ? "stopped" : plain.failures.front().reason;
        return result;
    }

    // A file that was written to meanwhile is another one to its owner, though its inode is the same.
    void removePrivileged(const EntryIdentity& identity, FastRemoval& result) {
        const std::string first = result.reason;
        const auto now = attributesAt(m_files, m_path);
        if (!now || identity.isStill(*now)) {
            const auto kept = m_path.size() < PATH_MAX ? runTool(m_files, m_path, now) : std::string();
            result.gone = result.privileged = !kept;
            if (result.gone) result.reason.clear();
            else if (!kept->empty()) result.reason = *kept;
        } else {
            result.reason = kChanged;
        }
        note(first);
    }

    FastRemoval refuse(std::string reason) const {
        note(reason);
        return {.reason = std::move(reason)};
    }

    void note(const std::string& reason) const {
        Log::line(fmt::format("Clean deletable file failed: {}-{}", m_path, reason));
    }

    const FileSystem& m_files;
    const Permissions* const m_permissions;
    const ProtectedPlaces& m_places;
    const std::string& m_path;
};

}  // namespace

ProtectedPlaces QnAuthorization::protectedPlaces() {
    const AuthorizationParts& parts = shareQnAuthorization().m_parts;
    return parts.files != nullptr ? ProtectedPlaces::ofThisMachine(*parts.files, parts.ownFiles) : ProtectedPlaces();
}

bool QnAuthorization::removeItemAtPath(const std::string& path) {
    const FileSystem* const files = shareQnAuthorization().m_parts.files;
    const auto plain = plainPath(path);
    if (files == nullptr || !plain || path.size() >= PATH_MAX) return false;
    return !runTool(*files, *plain, attributesAt(*files, *plain));
}

bool QnAuthorization::synFastRemovePath(const std::string& path) {
    const AuthorizationParts& parts = shareQnAuthorization().m_parts;
    const auto plain = plainPath(path);
    if (parts.files == nullptr || !plain) return false;
    return Door(*parts.files, parts.permissions, protectedPlaces(), *plain).remove(std::nullopt, nullptr).gone;
}

FastRemoval QnAuthorization::synFastRemovePath(const std::string& path, const EntryIdentity& expected,
                                               const ProtectedPlaces& places, const std::atomic<bool>* stop) {
    const AuthorizationParts& parts = shareQnAuthorization().m_parts;
    const auto plain = plainPath(path);
    if (parts.files == nullptr || !plain) return {.reason = "not a plain absolute path"};
    return Door(*parts.files, parts.permissions, places, *plain).remove(expected, stop);
}

}  // namespace orrinvale
