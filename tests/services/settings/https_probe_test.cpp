// The network probe against a TLS server of the test's own, with a certificate that openssl makes.
#include "services/settings/HttpsProbe.h"
#include "support/OwnTlsServer.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::OwnTlsServer;

/// It answers by the path that is asked for.
struct HttpsProbeTest : testing::TlsTest<HttpsProbeTest> {
    void SetUp() override {
        TlsTest::SetUp();
        sent = 0;
    }

    static void answer(QTcpSocket& socket, const QByteArray& request) {
        const auto say = [&](const std::string& head, const char* body) {
            OwnTlsServer::say(socket, head, body);
        };
        if (request.startsWith("GET /ok ")) say("200 OK", "x");
        else if (request.startsWith("GET /none ")) say("204 No Content", "");
        else if (request.startsWith("GET /missing ")) say("404 Not Found", "no");
        else if (request.startsWith("GET /broken ")) say("500 Internal Server Error", "oh");
        else if (request.startsWith("GET /again ")) say("302 Found\r\nLocation: /ok", "");
        else if (request.startsWith("GET /plain "))
            say("302 Found\r\nLocation: " + server->plainAddress(), "");
        else if (request.startsWith("GET /cut ")) {
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nfew");
            socket.disconnectFromHost();
        } else if (request.startsWith("GET /slow "))
            socket.write("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nfew");
        else if (request.startsWith("GET /endless ")) flood(&socket);
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

    inline static std::atomic<qint64> sent{0};
};

TEST_F(HttpsProbeTest, AnswersOfEveryKind) {
    const HttpsProbe probe({server->certificate});
    for (const char* path : {"/ok", "/none", "/missing", "/broken", "/again"})
        EXPECT_TRUE(probe.isAnswered(server->address(path), 10s)) << path;
    EXPECT_FALSE(probe.isAnswered(server->address("/cut"), 10s));
    EXPECT_FALSE(probe.isAnswered(server->address("/plain"), 10s));
    EXPECT_EQ(server->plainRequests, 0) << "led away to plain HTTP";
}

TEST_F(HttpsProbeTest, OnlyTrustedHttps) {
    EXPECT_FALSE(HttpsProbe().isAnswered(server->address("/ok"), 10s))
        << "nobody vouches for this certificate";
    const HttpsProbe probe({server->certificate});
    EXPECT_FALSE(probe.isAnswered("https://127.0.0.1:" + std::to_string(server->port) + "/ok", 10s))
        << "another host's certificate";
    EXPECT_FALSE(probe.isAnswered(server->plainAddress(), 10s));
    EXPECT_EQ(server->plainRequests, 0);
    for (const char* bad :
         {"", "https://", "file:///etc/passwd", "https://localhost:1/", "not an address"})
        EXPECT_FALSE(probe.isAnswered(bad, 10s)) << bad;
}

TEST_F(HttpsProbeTest, SilentServersCostTheTimeOut) {
    const HttpsProbe probe({server->certificate});
    for (const char* path : {"/silent", "/slow"}) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(probe.isAnswered(server->address(path), 300ms)) << path;
        const auto time = std::chrono::steady_clock::now() - start;
        EXPECT_TRUE(time >= 300ms && time < 5s) << path;
    }
}

TEST_F(HttpsProbeTest, ReadsNoMoreThanAMebibyte) {
    EXPECT_TRUE(HttpsProbe({server->certificate}).isAnswered(server->address("/endless"), 30s));
    EXPECT_GT(sent, 1 << 20);
    EXPECT_LT(sent, 24 << 20) << "the rest lies in the buffers of sockets";
}

}  // namespace
}  // namespace orrinvale
