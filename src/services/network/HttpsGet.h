// HttpsGet: one GET over HTTPS, bounded in time and size, which tells the server nothing of who
// asks.
#pragma once

#include <QByteArray>
#include <QList>
#include <QSslCertificate>
#include <chrono>
#include <functional>

namespace orrinvale {

struct HttpsLimits {
    std::chrono::milliseconds timeOut{5000};
    qint64 bytes = qint64{1} << 20;     ///< of the body
    QList<QSslCertificate> trusted;     ///< authorities beside those that the system trusts
    std::function<bool()> isStopped{};  ///< asked on the calling thread, twenty times a second
};

struct HttpsAnswer {
    enum class End {
        Whole,
        TooLarge,  ///< cut after the bytes that may be read
        TimedOut,
        Stopped,
        Failed  ///< no answer, one that was cut, a certificate that does not hold
    };
    End end = End::Failed;
    int status = 0;  ///< of HTTP; 0 where no answer came
    QByteArray body{};
};

/// No cache answers, no cookie goes out or is kept, and neither system, version nor language are
/// told. Only HTTPS with a certificate that holds for the host; a redirection is followed to HTTPS
/// alone. Blocks the caller, up to a second longer than the time-out. Any thread.
[[nodiscard]] HttpsAnswer httpsGet(const QByteArray& address, const HttpsLimits& limits);

}  // namespace orrinvale
