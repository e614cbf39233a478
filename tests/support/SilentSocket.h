// A socket where a bus should be that accepts and never says a word.
#pragma once

#include <sys/socket.h>
#include <sys/un.h>

#include <string>

#include "platform/descriptor.h"

namespace orrinvale::testing {

/// The address of a path of less than 108 bytes.
[[nodiscard]] inline sockaddr_un socketAddress(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(address.sun_path, sizeof address.sun_path - 1);
    return address;
}

/// Listens at the path while it is open; not open where that can not be had.
[[nodiscard]] inline Descriptor silentSocket(const std::string& path) {
    Descriptor made(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    const sockaddr_un address = socketAddress(path);
    const bool isBound =
        ::bind(made.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    if (!isBound || ::listen(made.get(), 8) != 0) made.reset();
    return made;
}

}  // namespace orrinvale::testing
