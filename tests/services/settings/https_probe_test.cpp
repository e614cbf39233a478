// The network probe against a TLS server of the test's own, with a certificate that openssl makes.
#include <QEventLoop>
#include <QFile>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTcpServer>
#include <future>

#include "services/settings/HttpsProbe.h"
#include "support/test.h"

namespace orrinvale {
namespace {

QByteArray contentOf(const std::string& path) {
    QFile file(QString::fromStdString(path));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// One server for all tests, on a thread of its own, because the probe blocks the test. It answers
/// by the path that is asked for.
struct HttpsProbeTest : ::testing::Test {
    static void SetUpTestSuite() {
        const testing::TestTree tree;
        const std::string request =
            "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 "
            "-subj /CN=localhost -addext subjectAltName=DNS:localhost 2>/dev/null -keyout ";
        made = std::system(
                   (request + tree.at("key") + " -out " + tree.at("certificate")).c_str()) == 0;
        certificate = QSslCertificate(contentOf(tree.at("certificate")));
        const QSslKey key(contentOf(tree.at("key")), QSsl::Ec);
        if (!made || !QSslSocket::supportsSsl()) return;
        std::promise<void> ready;
        thread = std::thread([&, key] { serve(key, ready); });
        ready.get_future().wait();
    }

    static void TearDownTestSuite() {
        if (!thread.joinable()) return;
        QMetaObject::invokeMethod(loop, [] { loop->quit(); });
        thread.join();
    }

    void SetUp() override {
#if defined(__SANITIZE_THREAD__)
        GTEST_SKIP() << "Qt's network threads are not built for ThreadSanitizer, which reports "
                        "their own queues";
#endif
        if (!made) GTEST_SKIP() << "openssl is missing, so there is no certificate";
        if (!thread.joinable()) GTEST_SKIP() << "this Qt has no TLS";
        sent = 0;
        plainRequests = 0;
    }

    static void serve(const QSslKey& key, std::promise<void>& ready) {
        QEventLoop own;
        loop = &own;
        QSslServer server;
        QTcpServer plain;
        QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
        ssl.setLocalCertificate(*certificate);
        ssl.setPrivateKey(key);
        server.setSslConfiguration(ssl);
        QObject::connect(&server, &QSslServer::pendingConnectionAvailable, &own,
                         [&] { accept(server.nextPendingConnection()); });
        QObject::connect(&plain, &QTcpServer::pendingConnectionAvailable, &own, [&] {
            ++plainRequests;
            plain.nextPendingConnection()->write("HTTP/1.1 200 OK\r\nContent-Length: 1\r\n\r\nx");
        });
        (void)server.listen(QHostAddress::LocalHost);
        (void)plain.listen(QHostAddress::LocalHost);
        port = server.serverPort();
        plainPort = plain.serverPort();
        ready.set_value();
        own.exec();
    }

    static void accept(QTcpSocket* socket) {
        if (socket == nullptr) return;  // announced once more than there are
        QObject::connect(socket, &QTcpSocket::readyRead, socket,
                         [socket] { answer(socket, socket->readAll()); });
    }

    static void answer(QTcpSocket* socket, const QByteArray& request) {
        const auto say = [&](const std::string& head, const std::string& body) {
            socket->write(QByteArray::fromStdString(
                "HTTP/1.1 " + head + "\r\nContent-Length: " + std::to_string(body.size()) +
                "\r\n\r\n" + body));
        };
        if (request.startsWith("GET /ok ")) say("200 OK", "x");
        else if (request.startsWith("GET /none ")) say("204 No Content", "");
        else if (request.startsWith("GET /missing ")) say("404 Not Found", "no");
        else if (request.startsWith("GET /broken ")) say("500 Internal Server Error", "oh");
        else if (request.startsWith("GET /again ")) say("302 Found\r\nLocation: /ok", "");
        else if (request.startsWith("GET /plain "))
            say("302 Found\r\nLocation: http://localhost:" + std::to_string(plainPort) + "/", "");
        else if (request.startsWith("GET /cut ")) {
            socket->write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nfew");
            socket->disconnectFromHost();
        } else if (request.startsWith("GET /slow "))
            socket->write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nfew");
        else if (request.startsWith("GET /endless ")) flood(socket);
    }

    // Writes as long as somebody reads, up to 64 MiB.
    static void flood(QTcpSocket* socket) {
        const auto more = [socket] {
            constexpr qint64 piece = 1 << 16;
            const auto* const secure = qobject_cast<const QSslSocket*>(socket);
            while (socket->bytesToWrite() + secure->encryptedBytesToWrite() < piece &&
                   sent < (64 << 20)) {
                socket->write(QByteArray(piece, 'x'));
                sent += piece;
            }
        };
        socket->write("HTTP/1.1 200 OK\r\nContent-Length: 67108864\r\n\r\n");
        QObject::connect(qobject_cast<QSslSocket*>(socket), &QSslSocket::encryptedBytesWritten,
                         socket, more);
        more();
    }

    static std::string address(const std::string& path, const std::string& scheme = "https") {
        return scheme + "://localhost:" + std::to_string(port) + path;
    }

    inline static bool made = false;
    inline static std::optional<QSslCertificate>
        certificate;  // Qt is not up yet where statics are made
    inline static std::thread thread;
    inline static QEventLoop* loop = nullptr;
    inline static int port = 0;
    inline static int plainPort = 0;
    inline static std::atomic<qint64> sent{0};
    inline static std::atomic<int> plainRequests{0};
};

TEST_F(HttpsProbeTest, AnswersOfEveryKind) {
    const HttpsProbe probe({*certificate});
    for (const char* path : {"/ok", "/none", "/missing", "/broken", "/again"})
        EXPECT_TRUE(probe.isAnswered(address(path), 10s)) << path;
    EXPECT_FALSE(probe.isAnswered(address("/cut"), 10s));
    EXPECT_FALSE(probe.isAnswered(address("/plain"), 10s));
    EXPECT_EQ(plainRequests, 0) << "led away to plain HTTP";
}

TEST_F(HttpsProbeTest, OnlyTrustedHttps) {
    EXPECT_FALSE(HttpsProbe().isAnswered(address("/ok"), 10s))
        << "nobody vouches for this certificate";
    const HttpsProbe probe({*certificate});
    EXPECT_FALSE(probe.isAnswered("https://127.0.0.1:" + std::to_string(port) + "/ok", 10s))
        << "another host's certificate";
    EXPECT_FALSE(probe.isAnswered("http://localhost:" + std::to_string(plainPort) + "/", 10s));
    EXPECT_EQ(plainRequests, 0);
    for (const char* bad :
         {"", "https://", "file:///etc/passwd", "https://localhost:1/", "not an address"})
        EXPECT_FALSE(probe.isAnswered(bad, 10s)) << bad;
}

TEST_F(HttpsProbeTest, SilentServersCostTheTimeOut) {
    const HttpsProbe probe({*certificate});
    for (const char* path : {"/silent", "/slow"}) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(probe.isAnswered(address(path), 300ms)) << path;
        const auto time = std::chrono::steady_clock::now() - start;
        EXPECT_TRUE(time >= 300ms && time < 5s) << path;
    }
}

TEST_F(HttpsProbeTest, ReadsNoMoreThanAMebibyte) {
    EXPECT_TRUE(HttpsProbe({*certificate}).isAnswered(address("/endless"), 30s));
    EXPECT_GT(sent, 1 << 20);
    EXPECT_LT(sent, 24 << 20) << "the rest lies in the buffers of sockets";
}

}  // namespace
}  // namespace orrinvale
