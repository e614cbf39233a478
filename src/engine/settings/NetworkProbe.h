// NetworkProbe: one request to an address. services/settings/HttpsProbe implements it.
#pragma once

#include <chrono>
#include <functional>
#include <string>

namespace orrinvale {

class NetworkProbe {
public:
    virtual ~NetworkProbe() = default;

    /// True when an answer came from the address, whatever its status; false a second after the
    /// time-out at the latest, and soon after `isStopped`, if there is one, says so. Blocks the
    /// caller. Any thread.
    [[nodiscard]] virtual bool isAnswered(const std::string& address,
                                          std::chrono::milliseconds timeOut,
                                          const std::function<bool()>& isStopped) const = 0;

protected:
    NetworkProbe() = default;
    NetworkProbe(const NetworkProbe&) = default;
    NetworkProbe& operator=(const NetworkProbe&) = default;
};

}  // namespace orrinvale
