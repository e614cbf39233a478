// Authorization: the administrator right as the system grants it, and the one tool that is run with
// it. linux/LinuxAuthorization.h implements it; engine/cleaning/QnAuthorization.h is what the pages
// use.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/fileTypes.h"

namespace orrinvale {

/// A reference to a right. Never reused within a process, so that a stale one fails instead of
/// meaning another.
enum class AuthorizationRef : std::uint64_t { null = 0 };

/// What stands for a reference where the reference itself can not go. Secret while the right is
/// held.
using AuthorizationExternalForm = std::array<std::byte, 32>;

/// What the operations answer; the numbers appear in the log.
struct AuthorizationStatus {
    static constexpr std::int32_t success = 0;
    static constexpr std::int32_t invalidReference = -60002;
    static constexpr std::int32_t unknownRight = -60004;
    static constexpr std::int32_t denied = -60005;
    static constexpr std::int32_t canceled = -60006;  ///< the person closed the dialog
    static constexpr std::int32_t interactionNotAllowed = -60007;
    static constexpr std::int32_t internal = -60008;
    static constexpr std::int32_t toolFailed = -60031;  ///< the tool was not run
};

struct AuthorizationFlags {
    static constexpr std::uint32_t interactionAllowed = 1;
    static constexpr std::uint32_t extendRights = 2;
    static constexpr std::uint32_t preAuthorize = 16;
    static constexpr std::uint32_t acquire =
        interactionAllowed | extendRights | preAuthorize;  ///< a dialog may appear
    static constexpr std::uint32_t checkAgain =
        interactionAllowed | extendRights;  ///< a right that is held
};

/// Why there is no right, so that the padlock can say so.
enum class AuthorizationRefusal : std::uint8_t {
    None,
    NoPolkit,       ///< the system's authority is not installed or does not answer
    NoAgent,        ///< nothing here can show the password dialog
    Dismissed,      ///< the person closed the dialog
    Refused,        ///< wrong password, or a session that may not ask
    HelperMissing,  ///< the helper is not installed, or others than root could have changed it
    HelperFailed,   ///< the helper started and refused, or could not be started
    HelperEnded,    ///< the right was held and the helper ended
    Idle            ///< the right was held and not used for ten minutes
};

/// What tells that an entry was written to, or that another one got its inode number. Times are
/// nanoseconds since 1970-01-01 UTC.
struct EntryState {
    std::uint64_t size = 0;
    std::int64_t modified = 0;
    std::int64_t changed = 0;
    std::int64_t born = 0;  ///< 0 where it is not known

    [[nodiscard]] static EntryState of(const FileAttributes& seen) {
        return {.size = seen.size,
                .modified = seen.modified,
                .changed = seen.changed,
                .born = seen.born};
    }
    bool operator==(const EntryState&) const = default;
};

/// An entry and where it was seen.
struct SeenEntry {
    std::string path;  ///< absolute, exact bytes
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    FileType type = FileType::Unknown;
    std::optional<EntryState> state;  ///< without it device, inode and type have to do

    bool operator==(const SeenEntry&) const = default;
};

/// One run of a tool. The entry is what the caller saw at the path that is the last argument;
/// whoever runs the tool makes sure that it is still there.
struct PrivilegedRun {
    std::string tool;
    std::vector<std::string> arguments;
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    FileType type = FileType::Unknown;
    std::optional<EntryState> state{};  ///< what else was seen of the entry, just before
    /// The copy for whose sake the entry may go: where it is not there any more, unchanged and
    /// another entry than this one, the tool is not run. By a way without links.
    std::optional<SeenEntry> stays{};
};

/// What a tool printed on its standard output. Where it printed nothing although the entry is still
/// there, the reason stands here, so that an empty stream means that the entry is gone.
class ToolOutput {
public:
    virtual ~ToolOutput() = default;
    /// As read(2): the count of bytes, 0 at the end, -1 on failure.
    [[nodiscard]] virtual std::ptrdiff_t read(std::span<char> buffer) = 0;

protected:
    ToolOutput() = default;
    ToolOutput(const ToolOutput&) = default;
    ToolOutput& operator=(const ToolOutput&) = default;
};

/// Any thread. The answers are AuthorizationStatus numbers. The one right is
/// "system.privilege.admin".
class Authorization {
public:
    static constexpr std::string_view adminRight = "system.privilege.admin";

    virtual ~Authorization() = default;

    /// A reference with no right. The caller frees it.
    [[nodiscard]] virtual std::int32_t create(AuthorizationRef& reference) = 0;

    /// Puts the right on the reference. With AuthorizationFlags::acquire it waits for the person's
    /// answer, minutes if need be; with checkAgain the right must be held already.
    [[nodiscard]] virtual std::int32_t copyRights(AuthorizationRef reference,
                                                  std::string_view right, std::uint32_t flags) = 0;

    /// From then on the right lives until this reference is freed.
    [[nodiscard]] virtual std::int32_t makeExternalForm(AuthorizationRef reference,
                                                        AuthorizationExternalForm& form) = 0;

    /// Another reference to the right; null when the form is stale. The caller frees it; the right
    /// outlives it.
    [[nodiscard]] virtual std::int32_t createFromExternalForm(const AuthorizationExternalForm& form,
                                                              AuthorizationRef& reference) = 0;

    [[nodiscard]] virtual std::int32_t rightGet(std::string_view right) = 0;

    /// Runs the tool to its end, one at a time; others wait. Where it was not run, `output` is null
    /// or gives the reason.
    [[nodiscard]] virtual std::int32_t executeWithPrivileges(
        AuthorizationRef reference, const PrivilegedRun& run,
        std::unique_ptr<ToolOutput>& output) = 0;

    [[nodiscard]] virtual std::int32_t free(AuthorizationRef reference) = 0;

    /// Why the last acquisition failed, or why the right went away.
    [[nodiscard]] virtual AuthorizationRefusal lastRefusal() const = 0;

    /// Called, on a thread of the implementation, when a right that is held goes away by itself.
    /// Hand it over before the first right is acquired.
    virtual void setLostHandler(std::function<void(AuthorizationRefusal)> handler) = 0;

protected:
    Authorization() = default;
    Authorization(const Authorization&) = default;
    Authorization& operator=(const Authorization&) = default;
};

}  // namespace orrinvale
