// Who holds which right; the talk with the helper is in HelperProcess.cpp.
#include "platform/linux/LinuxAuthorization.h"

#include <sys/random.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace orrinvale {
namespace {

class TextOutput final : public ToolOutput {
public:
    explicit TextOutput(std::string text) : m_text(std::move(text)) {}
    std::ptrdiff_t read(std::span<char> buffer) override {
        const std::size_t count = std::min(buffer.size(), m_text.size() - m_at);
        std::memcpy(buffer.data(), m_text.data() + m_at, count);
        m_at += count;
        return static_cast<std::ptrdiff_t>(count);
    }

private:
    const std::string m_text;
    std::size_t m_at = 0;
};

std::int32_t statusOf(AuthorizationRefusal refusal) {
    switch (refusal) {
        case AuthorizationRefusal::None: return AuthorizationStatus::success;
        case AuthorizationRefusal::Dismissed: return AuthorizationStatus::canceled;
        case AuthorizationRefusal::Refused: return AuthorizationStatus::denied;
        case AuthorizationRefusal::NoAgent: return AuthorizationStatus::interactionNotAllowed;
        default: return AuthorizationStatus::internal;
    }
}

/// The helper has one tool and one way to call it.
bool isTheTool(const PrivilegedRun& run) {
    return run.tool == "/bin/rm" && run.arguments.size() == 2 && run.arguments.front() == "-rf";
}

}  // namespace

LinuxAuthorization::LinuxAuthorization(HelperPaths paths) : m_paths(std::move(paths)) {}

LinuxAuthorization::~LinuxAuthorization() {
    std::vector<SharedRight> all;
    {
        const std::lock_guard guard(m_mutex);
        m_lostHandler = nullptr;
        all = std::exchange(m_ended, {});
        if (m_right) all.push_back(std::exchange(m_right, nullptr));
        m_references.clear();
    }
    for (const auto& right : all) right->helper->end();
}  // the threads are joined as the rights go

std::int32_t LinuxAuthorization::create(AuthorizationRef& reference) {
    const std::lock_guard guard(m_mutex);
    reference = AuthorizationRef{++m_lastReference};
    m_references.emplace(reference, nullptr);
    return AuthorizationStatus::success;
}

std::int32_t LinuxAuthorization::copyRights(AuthorizationRef reference, std::string_view right,
                                            std::uint32_t flags) {
    if (right != adminRight) return AuthorizationStatus::unknownRight;
    constexpr std::uint32_t asks =
        AuthorizationFlags::interactionAllowed | AuthorizationFlags::preAuthorize;
    if ((flags & asks) == asks) return acquire(reference);
    return heldBy(reference) ? AuthorizationStatus::success : AuthorizationStatus::denied;
}

std::int32_t LinuxAuthorization::acquire(AuthorizationRef reference) {
    const std::lock_guard oneDialog(m_acquiring);
    const std::vector<SharedRight> done = takeDone();
    {
        const std::lock_guard guard(m_mutex);
        const auto found = m_references.find(reference);
        if (found == m_references.end()) return AuthorizationStatus::invalidReference;
        if (m_right && m_right->isHeld && m_right->helper->isReady()) {
            found->second = m_right;
            if (!m_right->isKept) m_right->owner = reference;
            return AuthorizationStatus::success;
        }
    }
    const SharedRight right = begin(reference);
    if (!right) return AuthorizationStatus::internal;
    return finish(right, reference, right->helper->start());
}

LinuxAuthorization::SharedRight LinuxAuthorization::begin(AuthorizationRef reference) {
    auto right = std::make_shared<Right>();
    const std::size_t size = right->token.size();
    if (::getrandom(right->token.data(), size, 0) != static_cast<ssize_t>(size)) return nullptr;
    right->owner = reference;
    right->helper = std::make_shared<HelperProcess>(
        m_paths, [this, raw = right.get()](AuthorizationRefusal reason) { lost(raw, reason); });
    const std::lock_guard guard(m_mutex);
    if (m_right) m_ended.push_back(std::exchange(m_right, nullptr));
    m_right = right;
    return right;
}

// The reference may have been freed while the dialog stood; then nobody wants the right any more.
std::int32_t LinuxAuthorization::finish(const SharedRight& right, AuthorizationRef reference,
                                        AuthorizationRefusal refusal) {
    const std::lock_guard guard(m_mutex);
    if (m_right == right || refusal != AuthorizationRefusal::None) m_refusal = refusal;
    const auto found = m_references.find(reference);
    if (refusal == AuthorizationRefusal::None && found != m_references.end() && m_right == right) {
        right->isHeld = true;
        found->second = right;
        return AuthorizationStatus::success;
    }
    if (m_right == right) drop();
    return refusal == AuthorizationRefusal::None ? AuthorizationStatus::canceled
                                                 : statusOf(refusal);
}

// With the lock held. The helper ends by itself; its thread is joined later, since a running tool
// has a second to end.
void LinuxAuthorization::drop() {
    m_right->helper->end();
    m_ended.push_back(std::exchange(m_right, nullptr));
}

std::vector<LinuxAuthorization::SharedRight> LinuxAuthorization::takeDone() {
    const std::lock_guard guard(m_mutex);
    std::vector<SharedRight> done;
    const auto isDone = [](const SharedRight& right) { return right->helper->isDone(); };
    std::copy_if(m_ended.begin(), m_ended.end(), std::back_inserter(done), isDone);
    std::erase_if(m_ended, isDone);
    return done;
}

LinuxAuthorization::SharedRight LinuxAuthorization::heldBy(AuthorizationRef reference) const {
    const std::lock_guard guard(m_mutex);
    const auto found = m_references.find(reference);
    if (found == m_references.end() || !found->second || found->second != m_right) return nullptr;
    return m_right->helper->isReady() ? m_right : nullptr;
}

std::int32_t LinuxAuthorization::makeExternalForm(AuthorizationRef reference,
                                                  AuthorizationExternalForm& form) {
    const SharedRight right = heldBy(reference);
    if (!right) return AuthorizationStatus::invalidReference;
    const std::lock_guard guard(m_mutex);
    if (!right->isKept) right->owner = reference;
    right->isKept = true;
    form = right->token;
    return AuthorizationStatus::success;
}

std::int32_t LinuxAuthorization::createFromExternalForm(const AuthorizationExternalForm& form,
                                                        AuthorizationRef& reference) {
    const std::lock_guard guard(m_mutex);
    reference = AuthorizationRef::null;
    if (!m_right || !m_right->isKept || m_right->token != form)
        return AuthorizationStatus::invalidReference;
    reference = AuthorizationRef{++m_lastReference};
    m_references.emplace(reference, m_right);
    return AuthorizationStatus::success;
}

std::int32_t LinuxAuthorization::rightGet(std::string_view right) {
    return right == adminRight ? AuthorizationStatus::success : AuthorizationStatus::unknownRight;
}

std::int32_t LinuxAuthorization::executeWithPrivileges(AuthorizationRef reference,
                                                       const PrivilegedRun& run,
                                                       std::unique_ptr<ToolOutput>& output) {
    output.reset();
    if (reference == AuthorizationRef::null) return AuthorizationStatus::invalidReference;
    const SharedRight right = heldBy(reference);
    if (!right) return AuthorizationStatus::denied;
    if (!isTheTool(run)) return AuthorizationStatus::toolFailed;
    const SeenEntry entry{run.arguments.back(), run.device, run.inode, run.type, run.state};
    const auto reply = right->helper->ask({.sequence = 0, .entry = entry, .stays = run.stays});
    if (!reply) return AuthorizationStatus::toolFailed;
    const bool needsText = reply->outcome != HelperReply::Outcome::Removed && reply->text.empty();
    output = std::make_unique<TextOutput>(needsText ? "still there" : reply->text);
    switch (reply->outcome) {
        case HelperReply::Outcome::Removed:
        case HelperReply::Outcome::Printed:
        case HelperReply::Outcome::StillThere: return AuthorizationStatus::success;
        default: return AuthorizationStatus::toolFailed;
    }
}

std::int32_t LinuxAuthorization::free(AuthorizationRef reference) {
    SharedRight last;  // goes when the lock is open
    const std::lock_guard guard(m_mutex);
    const auto found = m_references.find(reference);
    if (found == m_references.end()) return AuthorizationStatus::invalidReference;
    last = std::move(found->second);
    m_references.erase(found);
    if (m_right && m_right->owner == reference) drop();
    return AuthorizationStatus::success;
}

void LinuxAuthorization::lost(const Right* right, AuthorizationRefusal reason) {
    std::function<void(AuthorizationRefusal)> handler;
    {
        const std::lock_guard guard(m_mutex);
        if (m_right.get() != right) return;
        m_ended.push_back(std::exchange(m_right, nullptr));
        m_refusal = reason;
        if (right->isHeld) handler = m_lostHandler;
    }
    if (handler) handler(reason);
}

AuthorizationRefusal LinuxAuthorization::lastRefusal() const {
    const std::lock_guard guard(m_mutex);
    return m_refusal;
}

void LinuxAuthorization::setLostHandler(std::function<void(AuthorizationRefusal)> handler) {
    const std::lock_guard guard(m_mutex);
    m_lostHandler = std::move(handler);
}

}  // namespace orrinvale
