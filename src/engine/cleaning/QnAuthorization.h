// QnAuthorization: the one administrator right of the process, and the one door through which every
// page removes.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "engine/removal/RemovalDoor.h"
#include "platform/authorization.h"

namespace orrinvale {

class OwnChanges;
class Permissions;
class ProtectedPlaces;

/// What QnAuthorization works with; nothing of it is owned, and all must outlive the last use.
struct AuthorizationParts {
    Authorization* authorization = nullptr;
    const FileSystem* files = nullptr;
    const Permissions* permissions = nullptr;
    std::vector<std::string>
        ownFiles;  ///< absolute paths of the program's files, which are never removed
};

/// allocAuthorization() and freeAuthorization() belong to the main thread, where the padlocks are;
/// all operations may be called from any thread. Closed and open are its two states; it closes by
/// itself when the platform loses the right.
class QnAuthorization final {
public:
    /// Made at the first call, never freed.
    [[nodiscard]] static QnAuthorization& shareQnAuthorization();

    /// Hand this over before other threads start. Without it the right is refused and nothing is
    /// removed.
    void setParts(AuthorizationParts parts);

    /// Called, on any thread, after the right was lost from outside: the helper ended, or nobody
    /// used it for ten minutes. The padlocks have to follow. Hand it over before the first right is
    /// acquired.
    void setRightLostHandler(std::function<void(AuthorizationRefusal)> handler);

    /// Acquires the right and waits for the person's answer. True at once when it is held. While
    /// another thread waits for the answer, this one waits with it and takes it over;
    /// freeAuthorization() ends the dialog for both.
    bool allocAuthorization();

    /// Gives the right up. Always true.
    bool freeAuthorization();

    /// A new reference to the right, or null. Worth a try, no grant: the run of the tool decides.
    /// The caller frees it.
    [[nodiscard]] AuthorizationRef getAuthorizationRet();

    /// Why the padlock is closed, as the text of its tool tip; empty while nothing was refused or
    /// lost.
    [[nodiscard]] std::string refusalText() const;

    /// Removes an entry, contents included, with "/bin/rm" as administrator. False for a path of
    /// 4,096 bytes or more, which is longer than a path may be (PATH_MAX, limits.h), and whenever
    /// the tool is not run or prints anything.
    [[nodiscard]] static bool removeItemAtPath(const std::string& path);

    /// Removes an entry, contents included: plainly first, as administrator second. A protected
    /// place is refused at once. An entry in a folder that this user may not search stays even
    /// while the right is held: it can not be looked at, and only what was looked at is handed to
    /// the tool.
    [[nodiscard]] static bool synFastRemovePath(const std::string& path);

    /// The way out for what a scan saw: one for all that a person confirmed, with the protected
    /// places of this moment, the program's own files among them. The parts must have been handed
    /// over.
    [[nodiscard]] static std::unique_ptr<RemovalDoor> makeDoor();
    /// The same for entries of a scan of which earlier removals took some: `own` knows what these
    /// did to its files.
    [[nodiscard]] static std::unique_ptr<RemovalDoor> makeDoorAfter(
        std::shared_ptr<OwnChanges> own);
    /// What such doors never remove, as of this moment. Asks the system; any thread.
    [[nodiscard]] static ProtectedPlaces protectedPlaces();
    /// The same; the administrator's tool gets single files, and never a folder.
    [[nodiscard]] static std::unique_ptr<RemovalDoor> makeDoorForFiles();

    /// The platform that the right comes from; one that refuses everything when none was handed
    /// over.
    [[nodiscard]] Authorization& platform() const;

    /// Whether a step of the platform worked; if not, the log gets "FAILURE: STATUS".
    [[nodiscard]] static bool worked(std::string_view failure, std::int32_t status);

    std::atomic<AuthorizationRef> authorizationRef{
        AuthorizationRef::null};           ///< valid while isValidAuth is set; owned
    std::atomic<bool> isValidAuth{false};  ///< the right is held or being acquired

    QnAuthorization(const QnAuthorization&) = delete;
    QnAuthorization& operator=(const QnAuthorization&) = delete;

private:
    QnAuthorization() = default;
    ~QnAuthorization() = default;

    [[nodiscard]] bool acquire();
    [[nodiscard]] AuthorizationExternalForm form() const;
    void rightLost(AuthorizationRefusal reason);

    AuthorizationParts m_parts;
    std::mutex m_acquiring;  // held from the first step to the answer; never taken by what gives
                             // the right up
    mutable std::mutex m_mutex;
    AuthorizationExternalForm authForm{};  // guarded by m_mutex; stays when the right goes
    std::function<void(AuthorizationRefusal)> m_rightLostHandler;  // guarded by m_mutex
};

}  // namespace orrinvale
