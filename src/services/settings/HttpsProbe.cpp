#include "services/settings/HttpsProbe.h"

#include <utility>

#include "services/network/HttpsGet.h"

namespace orrinvale {

HttpsProbe::HttpsProbe(QList<QSslCertificate> trusted) : m_trusted(std::move(trusted)) {}

bool HttpsProbe::isAnswered(const std::string& address, std::chrono::milliseconds timeOut,
                            const std::function<bool()>& isStopped) const {
    HttpsLimits limits;
    limits.timeOut = timeOut;
    limits.trusted = m_trusted;
    limits.isStopped = isStopped;
    const HttpsAnswer answer = httpsGet(QByteArray::fromStdString(address), limits);
    const bool hasEnded =
        answer.end == HttpsAnswer::End::Whole || answer.end == HttpsAnswer::End::TooLarge;
    return hasEnded && answer.status != 0;
}

}  // namespace orrinvale
