// A thread with an event loop of its own, ended by the answer or the patience.
#include "services/settings/HttpsProbe.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QTimer>
#include <QUrl>
#include <future>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace orrinvale {
namespace {

constexpr qint64 kReadLimit = qint64{1} << 20;

// Errors up to 199 are those of the network and of proxies; above, a server has answered with a
// status.
bool isFromServer(QNetworkReply::NetworkError error) {
    return error == QNetworkReply::NoError || error > QNetworkReply::UnknownProxyError;
}

QNetworkRequest requestFor(const QUrl& url, const QList<QSslCertificate>& trusted) {
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute,
                         QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(5);
    QSslConfiguration ssl = request.sslConfiguration();
    if (!trusted.isEmpty()) ssl.addCaCertificates(trusted);
    request.setSslConfiguration(ssl);
    return request;
}

}  // namespace

HttpsProbe::HttpsProbe(QList<QSslCertificate> trusted) : m_trusted(std::move(trusted)) {}

bool HttpsProbe::isAnswered(const std::string& address, std::chrono::milliseconds timeOut) const {
    // The loop that waits turns on a thread of its own: on the caller's it would run the window's
    // events in the middle of the call. That thread is let go when it is late: Qt looks up the
    // system's proxy before any time-out of ours can run, and that may hang.
    constexpr std::chrono::seconds grace{1};
    auto answer = std::make_shared<std::promise<bool>>();
    std::future<bool> answered = answer->get_future();
    try {
        std::thread([answer, address, timeOut, trusted = m_trusted] {
            answer->set_value(ask(QByteArray::fromStdString(address), timeOut, trusted));
        }).detach();
    } catch (const std::system_error&) {
        return false;  // no thread to be had
    }
    return answered.wait_for(timeOut + grace) == std::future_status::ready && answered.get();
}

bool HttpsProbe::ask(const QByteArray& address, std::chrono::milliseconds timeOut,
                     const QList<QSslCertificate>& trusted) {
    const QUrl url = QUrl::fromEncoded(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != QLatin1String("https")) return false;
    QEventLoop loop;
    QNetworkAccessManager network;
    const std::unique_ptr<QNetworkReply> reply(network.get(requestFor(url, trusted)));
    reply->setReadBufferSize(kReadLimit);
    qint64 count = 0;
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, [&] {
        count += reply->read(kReadLimit - count).size();
        if (count >= kReadLimit) loop.quit();
    });
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(timeOut, &loop, &QEventLoop::quit);
    loop.exec();
    const bool hasStatus = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
    return hasStatus &&
           (count >= kReadLimit || (reply->isFinished() && isFromServer(reply->error())));
}

}  // namespace orrinvale
