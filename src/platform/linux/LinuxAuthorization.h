// Authorization over polkit: the right is a running helper that pkexec started. Read
// platform/authorization.h and HelperProcess.h first.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/authorization.h"
#include "platform/linux/HelperProcess.h"

namespace orrinvale {

/// One right a process. A second acquisition while it is held joins it without a dialog. The right
/// ends when the reference that made the external form is freed, or, before one was made, the
/// reference that acquired it last; so a reference that was acquired only to ask the person again
/// never keeps the padlock's right alive. The external form is a random token of the right.
class LinuxAuthorization final : public Authorization {
public:
    explicit LinuxAuthorization(HelperPaths paths = HelperPaths::installed());
    ~LinuxAuthorization() override;  ///< ends the helper and waits for it

    std::int32_t create(AuthorizationRef& reference) override;
    std::int32_t copyRights(AuthorizationRef reference, std::string_view right,
                            std::uint32_t flags) override;
    std::int32_t makeExternalForm(AuthorizationRef reference,
                                  AuthorizationExternalForm& form) override;
    std::int32_t createFromExternalForm(const AuthorizationExternalForm& form,
                                        AuthorizationRef& reference) override;
    std::int32_t rightGet(std::string_view right) override;
    std::int32_t executeWithPrivileges(AuthorizationRef reference, const PrivilegedRun& run,
                                       std::unique_ptr<ToolOutput>& output) override;
    std::int32_t free(AuthorizationRef reference) override;
    AuthorizationRefusal lastRefusal() const override;
    void setLostHandler(std::function<void(AuthorizationRefusal)> handler) override;

private:
    struct Right {
        std::shared_ptr<HelperProcess> helper;
        AuthorizationExternalForm token{};
        AuthorizationRef owner = AuthorizationRef::null;
        bool isKept = false;  // an external form was made
        bool isHeld = false;  // the person agreed and the helper stands
    };
    using SharedRight = std::shared_ptr<Right>;

    [[nodiscard]] std::int32_t acquire(AuthorizationRef reference);
    [[nodiscard]] SharedRight begin(AuthorizationRef reference);
    [[nodiscard]] std::int32_t finish(const SharedRight& right, AuthorizationRef reference,
                                      AuthorizationRefusal refusal);
    [[nodiscard]] SharedRight heldBy(AuthorizationRef reference) const;
    void drop();
    void lost(const Right* right, AuthorizationRefusal reason);
    [[nodiscard]] std::vector<SharedRight> takeDone();

    const HelperPaths m_paths;
    std::mutex m_acquiring;      // one dialog at a time
    mutable std::mutex m_mutex;  // guards all below
    std::map<AuthorizationRef, SharedRight> m_references;
    SharedRight m_right;               // the one that stands or is being asked for
    std::vector<SharedRight> m_ended;  // whose threads may still run
    std::uint64_t m_lastReference = 0;
    AuthorizationRefusal m_refusal = AuthorizationRefusal::None;
    std::function<void(AuthorizationRefusal)> m_lostHandler;
};

}  // namespace orrinvale
