// HttpsTransport: the description of the newest version over HTTPS.
#pragma once

#include <QList>
#include <QSslCertificate>
#include <chrono>

#include "engine/updates/UpdateTransport.h"

namespace orrinvale {

class HttpsTransport final : public UpdateTransport {
public:
    /// `trusted` are authorities beside those that the system trusts.
    explicit HttpsTransport(QList<QSslCertificate> trusted = {},
                            std::chrono::milliseconds timeOut = std::chrono::seconds(5));

    [[nodiscard]] Result<std::string> fetch(const std::string& address,
                                            const std::function<bool()>& isStopped) const override;

private:
    const QList<QSslCertificate> m_trusted;
    const std::chrono::milliseconds m_timeOut;
};

}  // namespace orrinvale
