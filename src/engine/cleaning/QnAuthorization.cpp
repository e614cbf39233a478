// Here is the right itself; what it is used for is in privilegedRemoval.cpp.
#include "engine/cleaning/QnAuthorization.h"

#include <fmt/format.h>

#include <utility>

#include "engine/base/Log.h"
#include "engine/text/Localized.h"

namespace orrinvale {
namespace {

/// Stands where no platform was handed over.
class NoPlatform final : public Authorization {
public:
    std::int32_t create(AuthorizationRef&) override { return AuthorizationStatus::internal; }
    std::int32_t copyRights(AuthorizationRef, std::string_view, std::uint32_t) override {
        return AuthorizationStatus::internal;
    }
    std::int32_t makeExternalForm(AuthorizationRef, AuthorizationExternalForm&) override {
        return AuthorizationStatus::internal;
    }
    std::int32_t createFromExternalForm(const AuthorizationExternalForm&,
                                        AuthorizationRef&) override {
        return AuthorizationStatus::internal;
    }
    std::int32_t rightGet(std::string_view) override { return AuthorizationStatus::internal; }
    std::int32_t executeWithPrivileges(AuthorizationRef, const PrivilegedRun&,
                                       std::unique_ptr<ToolOutput>&) override {
        return AuthorizationStatus::internal;
    }
    std::int32_t free(AuthorizationRef) override { return AuthorizationStatus::internal; }
    AuthorizationRefusal lastRefusal() const override { return AuthorizationRefusal::NoPolkit; }
    void setLostHandler(std::function<void(AuthorizationRefusal)>) override {}
};

}  // namespace

QnAuthorization& QnAuthorization::shareQnAuthorization() {
    static QnAuthorization* const instance = new QnAuthorization;
    return *instance;
}

void QnAuthorization::setParts(AuthorizationParts parts) {
    m_parts = std::move(parts);
    if (m_parts.authorization != nullptr)
        m_parts.authorization->setLostHandler(
            [this](AuthorizationRefusal reason) { rightLost(reason); });
}

void QnAuthorization::setRightLostHandler(std::function<void(AuthorizationRefusal)> handler) {
    const std::lock_guard guard(m_mutex);
    m_rightLostHandler = std::move(handler);
}

bool QnAuthorization::worked(std::string_view failure, std::int32_t status) {
    if (status == AuthorizationStatus::success) return true;
    Log::line(fmt::format("{}: {}", failure, status));
    return false;
}

Authorization& QnAuthorization::platform() const {
    static NoPlatform nothing;
    return m_parts.authorization != nullptr ? *m_parts.authorization : nothing;
}

bool QnAuthorization::allocAuthorization() {
    std::unique_lock turn(m_acquiring, std::try_to_lock);
    if (!turn) {
        turn.lock();
        return isValidAuth;
    }
    if (isValidAuth) return true;
    do {
        isValidAuth = true;
        if (!acquire()) {
            freeAuthorization();
            return false;
        }
    } while (!isValidAuth);  // another thread gave it up meanwhile
    return true;
}

bool QnAuthorization::acquire() {
    Authorization& system = platform();
    auto reference = AuthorizationRef::null;
    if (!worked("Error Creating Initial Authorization", system.create(reference))) return false;
    // One that another thread gave up before it stood here is nobody else's to free.
    const AuthorizationRef stale = authorizationRef.exchange(reference);
    if (stale != AuthorizationRef::null) (void)system.free(stale);
    if (!worked("Copy Rights Unsuccessful", system.copyRights(reference, Authorization::adminRight,
                                                              AuthorizationFlags::acquire)))
        return false;
    AuthorizationExternalForm made{};
    if (!worked("Make ExternalForm Unsuccessful", system.makeExternalForm(reference, made)))
        return false;
    const std::lock_guard guard(m_mutex);
    authForm = made;
    return true;
}

bool QnAuthorization::freeAuthorization() {
    if (!isValidAuth) return true;
    (void)worked("Free Rights Unsuccessful",
                 platform().free(authorizationRef.exchange(AuthorizationRef::null)));
    isValidAuth = false;
    return true;
}

AuthorizationExternalForm QnAuthorization::form() const {
    const std::lock_guard guard(m_mutex);
    return authForm;
}

AuthorizationRef QnAuthorization::getAuthorizationRet() {
    auto reference = AuthorizationRef::null;
    if (!isValidAuth) return reference;
    Authorization& system = platform();
    if (!worked("Creat Ret Unsuccessful", system.createFromExternalForm(form(), reference)))
        return reference;
    if (worked("Copy Rights Unsuccessful", system.copyRights(reference, Authorization::adminRight,
                                                             AuthorizationFlags::checkAgain)))
        (void)worked("Get Rights Unsuccessful", system.rightGet(Authorization::adminRight));
    return reference;
}

void QnAuthorization::rightLost(AuthorizationRefusal reason) {
    freeAuthorization();
    std::function<void(AuthorizationRefusal)> handler;
    {
        const std::lock_guard guard(m_mutex);
        handler = m_rightLostHandler;
    }
    if (handler) handler(reason);
}

std::string QnAuthorization::refusalText() const {
    switch (platform().lastRefusal()) {
        case AuthorizationRefusal::None: return {};
        case AuthorizationRefusal::NoPolkit: return getLocalizedString("AUTH_NO_POLKIT");
        case AuthorizationRefusal::NoAgent: return getLocalizedString("AUTH_NO_AGENT");
        case AuthorizationRefusal::Dismissed: return getLocalizedString("AUTH_DISMISSED");
        case AuthorizationRefusal::Refused: return getLocalizedString("AUTH_REFUSED");
        case AuthorizationRefusal::HelperMissing: return getLocalizedString("AUTH_NO_HELPER");
        case AuthorizationRefusal::HelperFailed: return getLocalizedString("AUTH_HELPER_FAILED");
        case AuthorizationRefusal::HelperEnded: return getLocalizedString("AUTH_ENDED");
        case AuthorizationRefusal::Idle: break;
    }
    return getLocalizedString("AUTH_IDLE");
}

}  // namespace orrinvale
