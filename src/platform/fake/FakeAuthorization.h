// FakeAuthorization: an Authorization whose answers a test chooses, and which keeps what was asked
// of it.
#pragma once

#include <algorithm>
#include <cstring>
#include <map>
#include <mutex>
#include <set>
#include <utility>

#include "platform/authorization.h"

namespace orrinvale {

/// Thread-safe but for the fields, which a test sets before it starts threads.
class FakeAuthorization final : public Authorization {
public:
    // The operation by its name -> the answer it fails with.
    std::map<std::string, std::int32_t> failures;
    AuthorizationRefusal refusal = AuthorizationRefusal::None;
    std::function<void()> onCopyRights;                     ///< the person at the dialog
    std::function<std::string(const PrivilegedRun&)> tool;  ///< runs it; what it prints
    std::vector<std::string> calls;                         ///< "copyRights 19"
    std::vector<PrivilegedRun> runs;

    std::int32_t create(AuthorizationRef& reference) override {
        return answer("create", "create", [&] { reference = add(); });
    }
    std::int32_t copyRights(AuthorizationRef, std::string_view right,
                            std::uint32_t flags) override {
        const std::int32_t status =
            answer("copyRights", std::string(right) + ' ' + std::to_string(flags), [] {});
        if (flags == AuthorizationFlags::acquire && onCopyRights) onCopyRights();
        return status;
    }
    std::int32_t makeExternalForm(AuthorizationRef, AuthorizationExternalForm& form) override {
        return answer("makeExternalForm", "makeExternalForm",
                      [&] { form.fill(std::byte{++m_form}); });
    }
    std::int32_t createFromExternalForm(const AuthorizationExternalForm& form,
                                        AuthorizationRef& reference) override {
        reference = AuthorizationRef::null;
        return answer("createFromExternalForm",
                      "createFromExternalForm " + std::to_string(static_cast<int>(form[31])),
                      [&] { reference = add(); });
    }
    std::int32_t rightGet(std::string_view right) override {
        return answer("rightGet", "rightGet " + std::string(right), [] {});
    }
    std::int32_t executeWithPrivileges(AuthorizationRef reference, const PrivilegedRun& run,
                                       std::unique_ptr<ToolOutput>& output) override {
        if (!isLive(reference)) return AuthorizationStatus::invalidReference;
        return answer("execute", "execute " + run.arguments.back(), [&] {
            runs.push_back(run);
            output = std::make_unique<Output>(tool ? tool(run) : std::string());
        });
    }
    std::int32_t free(AuthorizationRef reference) override {
        const std::lock_guard guard(m_mutex);
        calls.emplace_back("free");
        if (failures.contains("free")) return failures["free"];
        return m_live.erase(reference) == 1 ? AuthorizationStatus::success
                                            : AuthorizationStatus::invalidReference;
    }
    AuthorizationRefusal lastRefusal() const override { return refusal; }
    void setLostHandler(std::function<void(AuthorizationRefusal)> handler) override {
        m_lost = std::move(handler);
    }

    /// What a platform does when the right goes away by itself.
    void loseRight(AuthorizationRefusal reason) {
        refusal = reason;
        m_lost(reason);
    }
    /// References that nobody freed.
    [[nodiscard]] std::size_t liveReferences() const {
        const std::lock_guard guard(m_mutex);
        return m_live.size();
    }

private:
    struct Output final : ToolOutput {
        explicit Output(std::string printed) : text(std::move(printed)) {}
        std::ptrdiff_t read(std::span<char> buffer) override {
            const std::size_t count = std::min(buffer.size(), text.size());
            std::memcpy(buffer.data(), text.data(), count);
            text.erase(0, count);
            return static_cast<std::ptrdiff_t>(count);
        }
        std::string text;
    };

    template <class Effect>
    std::int32_t answer(const std::string& operation, std::string call, Effect effect) {
        const std::lock_guard guard(m_mutex);
        calls.push_back(std::move(call));
        const auto failure = failures.find(operation);
        if (failure != failures.end()) return failure->second;
        effect();
        return AuthorizationStatus::success;
    }
    AuthorizationRef add() { return *m_live.insert(AuthorizationRef{++m_last}).first; }
    bool isLive(AuthorizationRef reference) const {
        const std::lock_guard guard(m_mutex);
        return m_live.contains(reference);
    }

    mutable std::mutex m_mutex;  // guards calls, m_live and m_last; the rest is of the test alone
    std::set<AuthorizationRef> m_live;
    std::uint64_t m_last = 0;
    unsigned char m_form = 0;
    std::function<void(AuthorizationRefusal)> m_lost;
};

}  // namespace orrinvale
