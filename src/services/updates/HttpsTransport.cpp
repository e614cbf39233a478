#include "services/updates/HttpsTransport.h"

#include <cerrno>
#include <utility>

#include "services/network/HttpsGet.h"

namespace orrinvale {

HttpsTransport::HttpsTransport(QList<QSslCertificate> trusted, std::chrono::milliseconds timeOut)
    : m_trusted(std::move(trusted)), m_timeOut(timeOut) {}

Result<std::string> HttpsTransport::fetch(const std::string& address,
                                          const std::function<bool()>& isStopped) const {
    using End = HttpsAnswer::End;
    const auto failure = [&](int number) {
        return tl::unexpected(systemError("fetch", address, number));
    };
    HttpsLimits limits;
    limits.timeOut = m_timeOut;
    limits.trusted = m_trusted;
    limits.isStopped = isStopped;
    const HttpsAnswer answer = httpsGet(QByteArray::fromStdString(address), limits);
    switch (answer.end) {
        case End::Whole: break;
        case End::TooLarge: return failure(EFBIG);
        case End::TimedOut: return failure(ETIMEDOUT);
        case End::Stopped: return failure(ECANCELED);
        case End::Failed: return failure(ECONNABORTED);
    }
    if (answer.status < 200 || answer.status > 299) return failure(ENOENT);
    return answer.body.toStdString();
}

}  // namespace orrinvale
