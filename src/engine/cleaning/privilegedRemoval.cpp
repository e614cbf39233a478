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
constexpr std::uint32_t kOpenToAll = 0777;
constexpr std::string_view kChanged = "changed since the scan";

SysResult<FileAttributes> attributesAt(const FileSystem& files, const std::string& path) {
    if (path.size() < PATH_MAX) return files.attributes(FileSystem::noParent, path.c_str(), Links::Keep);
    const auto parent = openFolderByPath(files, folderOf(path), Links::Follow);
    if (!parent) return tl::unexpected(parent.error());
    return files.attributes(parent->get(), std::string(lastPathComponent(path)).c_str(), Links::Keep);
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

/// Opens an entry up for its own removal, and closes it again if it is still there: a folder of somebody must not stay open to all.
class OpenedUp final {
public:
    OpenedUp(const Permissions* permissions, const std::string& path, const FileAttributes& entry)
        : m_permissions(permissions), m_path(path), m_entry(entry) {
        if (m_permissions == nullptr || m_permissions->isDeletable(path)) return;
        m_former = m_permissions->exchangeMode(path, entry.device, entry.inode, kOpenToAll);
    }
    ~OpenedUp() {
        if (m_former) (void)m_permissions->exchangeMode(m_path, m_entry.device, m_entry.inode, *m_former);
    }
    OpenedUp(const OpenedUp&) = delete;
    OpenedUp& operator=(const OpenedUp&) = delete;

    [[nodiscard]] bool isOpenedUp() const { return m_former.has_value(); }

private:
    const Permissions* const m_permissions;
    const std::string& m_path;
    const FileAttributes m_entry;
    SysResult<std::uint32_t> m_former = tl::unexpected(0);
};

/// One removal by the door that all pages use.
class Door final {
public:
    Door(const FileSystem& files, const Permissions* permissions, const ProtectedPlaces& places,
         const std::string& path)
        : m_files(files), m_permissions(permissions), m_places(places), m_path(path) {}

    FastRemoval remove(const std::optional<EntryIdentity>& expected, const std::atomic<bool>* stop) {
        const auto entry = attributesAt(m_files, m_path);
        if (!entry) return withoutEntry(entry, expected.has_value());
        if (expected && !expected->isStill(*entry)) return refuse(std::string(kChanged));
        if (auto reason = m_places.refusal(m_path, *entry)) return refuse(std::move(*reason));
        const OpenedUp opened(m_permissions, m_path, *entry);
        return removePlainly(opened.isOpenedUp() ? afterOpening(*entry) : *entry, stop);
    }

private:
    // What a scan saw and is gone is what the caller wants; a path that nobody saw takes the tool's answer.
    FastRemoval withoutEntry(const SysResult<FileAttributes>& entry, bool wasSeen) const {
        if (wasSeen && entry.error() == ENOENT) return {.gone = true, .reason = {}};
        FastRemoval result = refuse(systemError("stat", m_path, entry.error()).reason());
        result.gone = result.privileged = !wasSeen && !runTool(m_files, m_path, entry);
        if (result.gone) result.reason.clear();
        return result;
    }

    // Opening up a file changed its inode's time, by us; nothing else may have changed.
    FileAttributes afterOpening(const FileAttributes& before) const {
        const auto now = attributesAt(m_files, m_path);
        FileAttributes same = before;
        if (now) same.changed = now->changed;
        return same;
    }

    FastRemoval removePlainly(const FileAttributes& entry, const std::atomic<bool>* stop) {
        const auto identity = EntryIdentity::of(entry);
        const RemovalResult plain = SafeRemoval(m_files, m_places).remove(m_path, identity, stop);
        FastRemoval result{.gone = plain.gone, .stopped = plain.stopped, .removed = plain.removed, .reason = {}};
        if (result.gone) return result;
        result.reason = plain.failures.empty() ? "stopped" : plain.failures.front().reason;
        if (plain.stopped) return result;
        removePrivileged(identity, result);
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
