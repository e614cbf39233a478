// SnapService: snapd's interface, HTTP with JSON over its socket. SnapApplications.h asks it.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <vector>

namespace orrinvale {

/// One answer of the service.
struct SnapAnswer {
    int status = 0;  ///< of HTTP
    std::string body;
};

/// One snap as the service tells it.
struct SnapFacts {
    std::string name;
    std::string title;
    std::string version;
    std::string type;  ///< "app", "base", "os", "snapd", "kernel", "gadget"
    std::string icon;
    std::string date;  ///< of the installation, RFC 3339
    std::uint64_t size = 0;
    std::vector<std::string> entries;  ///< desktop entries of its applications
};

struct SnapFailure {
    std::string words;         ///< for people
    bool isDismissed = false;  ///< nobody gave a password
};

/// Holds no connection; any thread. At most 16 MiB of an answer are read.
class SnapService final {
public:
    explicit SnapService(std::string socket) : m_socket(std::move(socket)) {}

    /// The answer, or why there is none.
    [[nodiscard]] tl::expected<SnapAnswer, std::string> ask(
        std::string_view method, std::string_view path, std::string_view body,
        std::chrono::milliseconds patience) const;

    /// All that is installed, or why nobody can tell.
    [[nodiscard]] tl::expected<std::vector<SnapFacts>, std::string> snaps() const;

    /// Removes a snap with all its revisions, and waits until it is gone. The person may be asked
    /// for a password.
    [[nodiscard]] tl::expected<void, SnapFailure> remove(const std::string& name) const;

private:
    const std::string m_socket;
};

/// What an answer of the service to the question for its snaps says; nothing for what is no such
/// answer.
[[nodiscard]] std::optional<std::vector<SnapFacts>> snapsIn(std::string_view json);

/// The status and body of an answer as it came over the socket, chunks put together; nothing for
/// what is no HTTP.
[[nodiscard]] std::optional<SnapAnswer> httpAnswer(std::string_view bytes);

}  // namespace orrinvale
