// UpdateTransport: the bytes behind an address. services/updates/HttpsTransport implements it.
#pragma once

#include <functional>
#include <string>

#include "platform/error.h"

namespace orrinvale {

class UpdateTransport {
public:
    virtual ~UpdateTransport() = default;

    /// All that lies there. At most 1 MiB (EFBIG above it) within five seconds (ETIMEDOUT); an
    /// answer that is none of success is ErrorKind::NotFound. `isStopped` is asked from time to
    /// time, on the calling thread, and ends it (ECANCELED). Blocks the caller. Any thread.
    [[nodiscard]] virtual Result<std::string> fetch(
        const std::string& address, const std::function<bool()>& isStopped) const = 0;

protected:
    UpdateTransport() = default;
    UpdateTransport(const UpdateTransport&) = default;
    UpdateTransport& operator=(const UpdateTransport&) = default;
};

}  // namespace orrinvale
