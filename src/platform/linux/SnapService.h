// SnapService: snapd's interface, HTTP with JSON over its socket. SnapApplications.h asks it.
#pragma once

#include <atomic>
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

/// How a removal went.
struct SnapCourse {
    std::string words;          ///< why it did not come to its end, for people; empty where it did
    bool isDismissed = false;   ///< nobody gave a password
    bool couldNotStop = false;  ///< it was asked to stop and went on
};

/// Holds no connection; any thread. At most 16 MiB of an answer are read.
class SnapService final {
public:
    explicit SnapService(std::string socket) : m_socket(std::move(socket)) {}

    /// The answer, or why there is none: "stopped" where the flag, which may be null, was raised
    /// before the first of it came.
    [[nodiscard]] tl::expected<SnapAnswer, std::string> ask(
        std::string_view method, std::string_view path, std::string_view body,
        std::chrono::milliseconds patience, const std::atomic<bool>* stop = nullptr) const;

    /// All that is installed, or why nobody can tell.
    [[nodiscard]] tl::expected<std::vector<SnapFacts>, std::string> snaps() const;

    /// Removes a snap with all its revisions, and waits until it is gone. The person may be asked
    /// for a password; a set flag ends the wait for it. Later it asks the service to take back what
    /// it has begun; one that does not any more is waited for to its end.
    [[nodiscard]] SnapCourse remove(const std::string& name, const std::atomic<bool>& stop) const;

private:
    [[nodiscard]] bool aborts(const std::string& change) const;
    [[nodiscard]] SnapCourse follow(const std::string& change, const std::atomic<bool>& stop) const;

    const std::string m_socket;
};

/// What an answer of the service to the question for its snaps says; nothing for what is no such
/// answer.
[[nodiscard]] std::optional<std::vector<SnapFacts>> snapsIn(std::string_view json);

/// The status and body of an answer as it came over the socket, chunks put together; nothing for
/// what is no HTTP.
[[nodiscard]] std::optional<SnapAnswer> httpAnswer(std::string_view bytes);

}  // namespace orrinvale
