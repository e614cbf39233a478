// The interface is described at https://snapcraft.io/docs/snapd-api. The library for JSON builds
// and frees what is nested without recursion.
#include "platform/linux/SnapService.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <nlohmann/json.hpp>
#include <thread>

#include "platform/deadline.h"
#include "platform/descriptor.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

using Json = nlohmann::json;
using Moment = std::chrono::steady_clock::time_point;

// A person looks for a password meanwhile.
constexpr std::chrono::minutes personPatience(10);
// A service that is asked how things stand, or to take something back, answers at once.
constexpr std::chrono::seconds servicePatience(10);
constexpr std::size_t mostAnswer = std::size_t{16} << 20U;

// What has come before the flag was raised is not lost.
bool waitsFor(int socket, short what, Moment end, const std::atomic<bool>* stop = nullptr) {
    constexpr std::chrono::milliseconds turn(100);
    for (;;) {
        const bool isStopped = stop != nullptr && *stop;
        const auto left = timeUntil(end);
        const auto atMost = isStopped ? std::chrono::milliseconds::zero() : turn;
        const auto wait = stop == nullptr ? left : std::min(left, atMost);
        pollfd source{socket, what, 0};
        const int ready = ::poll(&source, 1, static_cast<int>(wait.count()));
        if (ready < 0 && errno == EINTR) continue;
        if (ready != 0 || isStopped || wait == left) return ready > 0;
    }
}

Descriptor connected(const std::string& path, Moment end) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof(address.sun_path)) return {};
    std::memcpy(address.sun_path, path.data(), path.size());
    Descriptor out(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const auto* const where = reinterpret_cast<const sockaddr*>(&address);
    // EAGAIN: its queue is full at this moment.
    while (::connect(out.get(), where, sizeof(address)) != 0) {
        constexpr int pause = 20;
        if (errno != EAGAIN || timeUntil(end).count() == 0) return {};
        ::poll(nullptr, 0, pause);
    }
    return out;
}

bool sends(int socket, std::string_view bytes, Moment end) {
    while (!bytes.empty()) {
        const ssize_t count = ::send(socket, bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (count > 0) bytes.remove_prefix(static_cast<std::size_t>(count));
        else if (errno != EAGAIN || !waitsFor(socket, POLLOUT, end)) return false;
    }
    return true;
}

std::optional<std::string> received(int socket, Moment end, const std::atomic<bool>* stop) {
    std::string out;
    std::array<char, 16384> piece;
    for (;;) {
        if (!waitsFor(socket, POLLIN, end, out.empty() ? stop : nullptr)) return std::nullopt;
        const ssize_t count = ::recv(socket, piece.data(), piece.size(), 0);
        if (count == 0) return out;
        if (count < 0 && errno != EINTR && errno != EAGAIN) return std::nullopt;
        if (count > 0) out.append(piece.data(), static_cast<std::size_t>(count));
        if (out.size() > mostAnswer) return std::nullopt;
    }
}

std::optional<std::string> joined(std::string_view chunks) {
    std::string out;
    for (;;) {
        std::size_t size = 0;
        const std::size_t end = chunks.find("\r\n");
        if (end == std::string_view::npos) return std::nullopt;
        const auto read = std::from_chars(chunks.data(), chunks.data() + end, size, 16);
        if (read.ec != std::errc()) return std::nullopt;
        chunks.remove_prefix(end + 2);
        if (size == 0) return out;
        if (size > chunks.size() || chunks.size() - size < 2) return std::nullopt;
        out += chunks.substr(0, size);
        chunks.remove_prefix(size + 2);
    }
}

std::string textIn(const Json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

SnapFacts factsIn(const Json& object) {
    SnapFacts out;
    out.name = textIn(object, "name");
    out.title = textIn(object, "title");
    out.version = textIn(object, "version");
    out.type = textIn(object, "type");
    out.icon = textIn(object, "icon");
    out.date = textIn(object, "install-date");
    if (const auto size = object.find("installed-size");
        size != object.end() && size->is_number_unsigned())
        out.size = size->get<std::uint64_t>();
    if (const auto apps = object.find("apps"); apps != object.end() && apps->is_array())
        for (const Json& each : *apps)
            if (each.is_object())
                if (std::string entry = textIn(each, "desktop-file"); !entry.empty())
                    out.entries.push_back(std::move(entry));
    return out;
}

// {"type": "error", "result": {"message": "...", "kind": "auth-cancelled"}}
SnapCourse failureIn(const Json& answer) {
    SnapCourse out{"The snap service gave no reason"};
    if (!answer.is_object()) return out;
    const auto result = answer.find("result");
    if (result == answer.end() || !result->is_object()) return out;
    out.isDismissed = textIn(*result, "kind") == "auth-cancelled";
    if (std::string words = textIn(*result, "message"); !words.empty())
        out.words = "The snap service says: " + words.substr(0, words.find('\n'));
    return out;
}

}  // namespace

std::optional<SnapAnswer> httpAnswer(std::string_view bytes) {
    constexpr std::size_t statusAt = 9;  // behind "HTTP/1.1 "
    const std::size_t end = bytes.find("\r\n\r\n");
    if (!bytes.starts_with("HTTP/1.") || end == std::string_view::npos || end < statusAt + 3)
        return std::nullopt;
    SnapAnswer out;
    const auto read =
        std::from_chars(bytes.data() + statusAt, bytes.data() + statusAt + 3, out.status);
    if (read.ec != std::errc()) return std::nullopt;
    std::string head(bytes.substr(0, end));
    std::transform(head.begin(), head.end(), head.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    const std::string_view body = bytes.substr(end + 4);
    if (head.find("\r\ntransfer-encoding: chunked") == std::string::npos) {
        out.body = body;
        return out;
    }
    auto whole = joined(body);
    if (!whole) return std::nullopt;
    out.body = std::move(*whole);
    return out;
}

tl::expected<SnapAnswer, std::string> SnapService::ask(std::string_view method,
                                                       std::string_view path, std::string_view body,
                                                       std::chrono::milliseconds patience,
                                                       const std::atomic<bool>* stop) const {
    const Moment end = std::chrono::steady_clock::now() + patience;
    const Descriptor socket = connected(m_socket, end);
    if (!socket.isOpen()) return tl::unexpected(std::string("The snap service is not there"));
    const std::string request = fmt::format(
        "{} {} HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\nX-Allow-Interaction: true\r\n"
        "Content-Type: application/json\r\nContent-Length: {}\r\n\r\n{}",
        method, path, body.size(), body);
    const auto bytes = sends(socket.get(), request, end) ? received(socket.get(), end, stop)
                                                         : std::optional<std::string>();
    if (!bytes && stop != nullptr && *stop) return tl::unexpected(std::string("stopped"));
    if (!bytes) return tl::unexpected(std::string("The snap service does not answer"));
    auto answer = httpAnswer(*bytes);
    if (!answer) return tl::unexpected(std::string("The snap service answers what makes no sense"));
    return std::move(*answer);
}

std::optional<std::vector<SnapFacts>> snapsIn(std::string_view json) {
    std::vector<SnapFacts> out;
    const Json document = Json::parse(json, nullptr, false);
    if (!document.is_object()) return std::nullopt;
    const auto result = document.find("result");
    if (result == document.end() || !result->is_array()) return std::nullopt;
    for (const Json& each : *result)
        if (each.is_object())
            if (SnapFacts facts = factsIn(each); !facts.name.empty())
                out.push_back(std::move(facts));
    return out;
}

tl::expected<std::vector<SnapFacts>, std::string> SnapService::snaps() const {
    constexpr std::chrono::milliseconds patience(2000);
    constexpr int success = 200;
    const auto answer = ask("GET", "/v2/snaps", {}, patience);
    if (!answer) return tl::unexpected(answer.error());
    auto found = answer->status == success ? snapsIn(answer->body) : std::nullopt;
    if (!found) return tl::unexpected(std::string("The snap service does not tell what it has"));
    return std::move(*found);
}

// A change that is over, or that nobody lets this person touch, is not taken back.
bool SnapService::aborts(const std::string& change) const {
    constexpr int success = 200;
    const auto answer =
        ask("POST", "/v2/changes/" + change, R"({"action":"abort"})", servicePatience);
    return answer && answer->status == success;
}

SnapCourse SnapService::follow(const std::string& change, const std::atomic<bool>& stop) const {
    constexpr std::chrono::milliseconds pause(200);
    SnapCourse out;
    bool isStopping = false;
    const Moment end = std::chrono::steady_clock::now() + personPatience;
    Moment patience = end;  // with a service that keeps silent; whoever wants to stop has less
    for (; timeUntil(end).count() > 0; std::this_thread::sleep_for(pause)) {
        if (stop && !isStopping && !out.couldNotStop) {
            isStopping = aborts(change);
            out.couldNotStop = !isStopping;
        }
        const auto asked = ask("GET", "/v2/changes/" + change, {}, servicePatience);
        if (stop) patience = std::min(patience, std::chrono::steady_clock::now() + servicePatience);
        // It goes on with a change when it has come back from an update of its own.
        if (!asked && timeUntil(patience).count() > 0) continue;
        if (!asked) return {asked.error(), false, out.couldNotStop};
        patience = end;
        const Json now = Json::parse(asked->body, nullptr, false);
        const auto result = now.is_object() ? now.find("result") : now.end();
        if (result == now.end() || !result->is_object()) return failureIn(now);
        if (result->value("ready", Json(false)) == Json(true)) {
            const std::string status = textIn(*result, "status");
            const bool isDone = status == "Done";
            out.couldNotStop |= isDone && isStopping;
            if (isDone) return out;
            out.words = textIn(*result, "err");
            if (isStopping && status != "Error") out.words = "stopped";
            else if (out.words.empty()) out.words = "The snap service gave no reason";
            return out;
        }
    }
    return {"The snap service does not answer", false, out.couldNotStop};
}

SnapCourse SnapService::remove(const std::string& name, const std::atomic<bool>& stop) const {
    constexpr int accepted = 202;
    const auto begun =
        ask("POST", "/v2/snaps/" + name, R"({"action":"remove"})", personPatience, &stop);
    if (!begun) return {begun.error()};
    const Json answer = Json::parse(begun->body, nullptr, false);
    const std::string change = answer.is_object() ? textIn(answer, "change") : std::string();
    if (begun->status != accepted || change.empty()) return failureIn(answer);
    return follow(change, stop);
}

}  // namespace orrinvale
