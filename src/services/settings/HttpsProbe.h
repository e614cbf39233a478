// HttpsProbe: the network probe over HTTPS.
#pragma once

#include <QList>
#include <QSslCertificate>

#include "engine/settings/NetworkProbe.h"

namespace orrinvale {

/// One httpsGet(). An empty body is an answer too, and so is one that is larger than what is read
/// of it, 1 MiB. Any thread.
class HttpsProbe final : public NetworkProbe {
public:
    /// The authorities that the system trusts, and with them those of the list, such as a company's
    /// own.
    explicit HttpsProbe(QList<QSslCertificate> trusted = {});

    [[nodiscard]] bool isAnswered(const std::string& address, std::chrono::milliseconds timeOut,
                                  const std::function<bool()>& isStopped = {}) const override;

private:
    const QList<QSslCertificate> m_trusted;
};

}  // namespace orrinvale
