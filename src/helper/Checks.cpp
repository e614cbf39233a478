// Session.cpp asks the first half of the checks once, Run.cpp the second for each request.
#include "helper/Checks.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/auxv.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sysexits.h>
#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <cstdlib>

#include "helper/Accounts.h"
#include "platform/error.h"

namespace orrinvale::helper {
namespace {

int socketOption(int socket, int option) {
    int value = -1;
    socklen_t size = sizeof value;
    return ::getsockopt(socket, SOL_SOCKET, option, &value, &size) == 0 ? value : -1;
}

std::optional<uid_t> peerOf(int socket) {
    ucred peer{};
    socklen_t size = sizeof peer;
    // -1 is the answer of a socket that has no other end.
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) != 0 ||
        peer.uid == static_cast<uid_t>(-1))
        return std::nullopt;
    return peer.uid;
}

std::optional<uid_t> userOf(const char* text) {
    if (text == nullptr) return std::nullopt;
    const std::string_view digits(text);
    uid_t user = 0;
    const auto read = std::from_chars(digits.data(), digits.data() + digits.size(), user);
    if (read.ec != std::errc{} || read.ptr != digits.data() + digits.size()) return std::nullopt;
    return user;
}

std::string fault(std::string_view what, std::string_view name) {
    return fmt::format("{}: {}", what, systemError("open", std::string(name), errno).reason());
}

std::string_view faultOfFolder(int held, const struct stat& folder, uid_t caller,
                               TrustedGroups& groups) {
    if (folder.st_uid != 0 && folder.st_uid != caller)
        return "a folder on the way belongs to someone else";
    const bool isSticky = (folder.st_mode & S_ISVTX) != 0;
    if (isSticky) return {};
    // With an access list the group's bits are the mask of all that it grants, so that it is seen
    // here too.
    const bool groupWrites = (folder.st_mode & S_IWGRP) != 0;
    const bool isGroupTrusted =
        !groupWrites || (!mayHaveAccessList(held) && groups.contains(folder.st_gid));
    if ((folder.st_mode & S_IWOTH) != 0 || !isGroupTrusted)
        return "a folder on the way may be written by others";
    return {};
}

}  // namespace

Start howStarted(int argc) {
    const bool isPlain = ::getauxval(AT_SECURE) == 0;
    return {argc, isPlain && ::getuid() == 0 && ::geteuid() == 0, STDIN_FILENO,
            std::getenv("PKEXEC_UID")};
}

tl::expected<uid_t, Refusal> callerOf(const Start& start) {
    const auto refused = [](int status, std::string line) {
        return tl::unexpected(Refusal{status, std::move(line)});
    };
    if (start.arguments != 1) return refused(EX_USAGE, "takes no arguments");
    if (!start.isRoot) return refused(EX_NOPERM, "is started by pkexec only");
    const auto caller = userOf(start.caller);
    if (!caller) return refused(EX_NOPERM, "is started by pkexec only");
    if (socketOption(start.input, SO_DOMAIN) != AF_UNIX ||
        socketOption(start.input, SO_TYPE) != SOCK_SEQPACKET)
        return refused(EX_NOPERM, "standard input is not the window program's socket");
    if (peerOf(start.input) != caller)
        return refused(EX_NOPERM, "the socket belongs to another user");
    return *caller;
}

tl::expected<VerifiedParent, std::string> openVerifiedParent(std::string_view path, uid_t caller) {
    constexpr int flags = O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC;
    TrustedGroups groups(caller);
    Descriptor folder(::open("/", flags));
    for (;;) {
        struct stat seen {};
        if (!folder.isOpen() || ::fstat(folder.get(), &seen) != 0)
            return tl::unexpected(fault("a folder on the way can not be entered", path));
        if (const auto reason = faultOfFolder(folder.get(), seen, caller, groups); !reason.empty())
            return tl::unexpected(std::string(reason));
        path.remove_prefix(1);
        const std::size_t slash = path.find('/');
        if (slash == std::string_view::npos)
            return VerifiedParent{std::move(folder), std::string(path)};
        folder =
            Descriptor(::openat(folder.get(), std::string(path.substr(0, slash)).c_str(), flags));
        path.remove_prefix(slash);
    }
}

}  // namespace orrinvale::helper
