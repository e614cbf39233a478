// HttpsProbe: the network probe over HTTPS.
#pragma once

#include <QByteArray>
#include <QList>
#include <QSslCertificate>

#include "engine/settings/NetworkProbe.h"

namespace orrinvale {

/// One GET that no cache answers. Only HTTPS with a certificate that holds for the host; a
/// redirection is followed to HTTPS alone. An empty body is an answer too. At most 1 MiB is read.
/// Any thread.
class HttpsProbe final : public NetworkProbe {
public:
    /// The authorities that the system trusts, and with them those of the list, such as a company's
    /// own.
    explicit HttpsProbe(QList<QSslCertificate> trusted = {});

    [[nodiscard]] bool isAnswered(const std::string& address,
                                  std::chrono::milliseconds timeOut) const override;

private:
    [[nodiscard]] static bool ask(const QByteArray& address, std::chrono::milliseconds timeOut,
                                  const QList<QSslCertificate>& trusted);

    const QList<QSslCertificate> m_trusted;
};

}  // namespace orrinvale
