// A thread with an event loop of its own, ended by the answer, the patience or whoever asked.
#include "services/network/HttpsGet.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSslConfiguration>
#include <QTimer>
#include <QUrl>
#include <algorithm>
#include <atomic>
#include <future>
#include <memory>
#include <system_error>
#include <thread>
#include <utility>

namespace orrinvale {
namespace {

using End = HttpsAnswer::End;

constexpr std::chrono::milliseconds lookInterval{50};

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
    for (const auto attribute :
         {QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::CookieSaveControlAttribute,
          QNetworkRequest::AuthenticationReuseAttribute})
        request.setAttribute(attribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(5);
    // What the toolkit would write here of its own is a browser's name and the person's language;
    // packed bytes would unfold behind the limit.
    request.setRawHeader("User-Agent", "Orrinvale");
    request.setRawHeader("Accept-Language", "*");
    request.setRawHeader("Accept-Encoding", "identity");
    QSslConfiguration ssl = request.sslConfiguration();
    if (!trusted.isEmpty()) ssl.addCaCertificates(trusted);
    request.setSslConfiguration(ssl);
    return request;
}

// Reads what has come; false when there is more than may be read.
bool readInto(QByteArray& body, QNetworkReply& reply, qint64 limit) {
    body += reply.read(limit - body.size());
    return body.size() < limit || reply.bytesAvailable() == 0;
}

HttpsAnswer ask(const QByteArray& address, const HttpsLimits& limits,
                const std::atomic<bool>& isStopped) {
    const QUrl url = QUrl::fromEncoded(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != QLatin1String("https")) return {};
    QEventLoop loop;
    QNetworkAccessManager network;
    HttpsAnswer answer;
    bool hasEnded = false;
    const auto endWith = [&](End end) {
        if (!std::exchange(hasEnded, true)) answer.end = end;
        loop.quit();
    };
    const std::unique_ptr<QNetworkReply> reply(network.get(requestFor(url, limits.trusted)));
    reply->setReadBufferSize(limits.bytes);
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, [&] {
        if (!readInto(answer.body, *reply, limits.bytes)) endWith(End::TooLarge);
    });
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, [&] {
        const bool isWhole = readInto(answer.body, *reply, limits.bytes);
        if (!isFromServer(reply->error())) endWith(End::Failed);
        else endWith(isWhole ? End::Whole : End::TooLarge);
    });
    QTimer::singleShot(limits.timeOut, &loop, [&] { endWith(End::TimedOut); });
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (isStopped) endWith(End::Stopped);
    });
    look.start(lookInterval);
    loop.exec();
    answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    return answer;
}

}  // namespace

HttpsAnswer httpsGet(const QByteArray& address, const HttpsLimits& limits) {
    // The loop that waits turns on a thread of its own: on the caller's it would run the window's
    // events in the middle of the call. That thread is let go when it is late: Qt looks up the
    // system's proxy before any time-out of ours can run, and that may hang.
    constexpr std::chrono::seconds grace{1};
    struct Errand {
        std::promise<HttpsAnswer> answer;
        std::atomic<bool> isStopped{false};
    };
    const auto errand = std::make_shared<Errand>();
    std::future<HttpsAnswer> answered = errand->answer.get_future();
    try {
        std::thread([errand, address,
                     own = HttpsLimits{limits.timeOut, limits.bytes, limits.trusted, {}}] {
            errand->answer.set_value(ask(address, own, errand->isStopped));
        }).detach();
    } catch (const std::system_error&) {
        return {};  // no thread to be had
    }
    const auto patience = std::chrono::steady_clock::now() + limits.timeOut + grace;
    while (answered.wait_for(lookInterval) != std::future_status::ready) {
        const bool isStopped = limits.isStopped && limits.isStopped();
        if (!isStopped && std::chrono::steady_clock::now() < patience) continue;
        errand->isStopped = true;
        return {.end = isStopped ? End::Stopped : End::TimedOut};
    }
    return answered.get();
}

}  // namespace orrinvale
