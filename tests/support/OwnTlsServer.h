// OwnTlsServer: a server over TLS of the test's own, with a certificate that openssl makes when the
// test begins, and a plain one beside it to which nobody may be led.
#pragma once

#include <gtest/gtest.h>

#include <QEventLoop>
#include <QFile>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QTcpServer>
#include <atomic>
#include <functional>
#include <future>
#include <optional>
#include <string>
#include <thread>

#include "support/TestTree.h"

namespace orrinvale::testing {

class OwnTlsServer final {
public:
    /// Answers a request, on the server's thread.
    using Answer = std::function<void(QTcpSocket& socket, const QByteArray& request)>;

    /// It runs on a thread of its own, because who asks blocks the test.
    explicit OwnTlsServer(Answer answer) : m_answer(std::move(answer)) {
#if defined(__SANITIZE_THREAD__)
        missing =
            "Qt's network threads are not built for ThreadSanitizer, which reports their own "
            "queues";
#else
        const TestTree tree;
        const std::string request =
            "openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 "
            "-subj /CN=localhost -addext subjectAltName=DNS:localhost 2>/dev/null -keyout ";
        if (std::system((request + tree.at("key") + " -out " + tree.at("certificate")).c_str()) !=
            0)
            missing = "openssl is missing, so there is no certificate";
        else if (!QSslSocket::supportsSsl()) missing = "this Qt has no TLS";
        if (!missing.empty()) return;
        certificate = QSslCertificate(contentOf(tree.at("certificate")));
        const QSslKey key(contentOf(tree.at("key")), QSsl::Ec);
        std::promise<void> ready;
        m_thread = std::thread([&, key] { serve(key, ready); });
        ready.get_future().wait();
#endif
    }
    ~OwnTlsServer() {
        if (!m_thread.joinable()) return;
        QMetaObject::invokeMethod(m_loop, [loop = m_loop] { loop->quit(); });
        m_thread.join();
    }
    OwnTlsServer(const OwnTlsServer&) = delete;
    OwnTlsServer& operator=(const OwnTlsServer&) = delete;

    [[nodiscard]] std::string address(const std::string& path) const {
        return "https://localhost:" + std::to_string(port) + path;
    }
    [[nodiscard]] std::string plainAddress() const {
        return "http://localhost:" + std::to_string(plainPort) + "/";
    }

    static void say(QTcpSocket& socket, const std::string& head, const QByteArray& body) {
        socket.write(QByteArray::fromStdString("HTTP/1.1 " + head + "\r\nContent-Length: " +
                                               std::to_string(body.size()) + "\r\n\r\n") +
                     body);
    }

    std::string missing;  ///< why there is none
    QSslCertificate certificate;
    int port = 0;
    int plainPort = 0;
    std::atomic<int> plainRequests{0};

private:
    static QByteArray contentOf(const std::string& path) {
        QFile file(QString::fromStdString(path));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    void serve(const QSslKey& key, std::promise<void>& ready) {
        QEventLoop own;
        m_loop = &own;
        QSslServer server;
        QTcpServer plain;
        QSslConfiguration ssl = QSslConfiguration::defaultConfiguration();
        ssl.setLocalCertificate(certificate);
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

    void accept(QTcpSocket* socket) {
        if (socket == nullptr) return;  // announced once more than there are
        QObject::connect(socket, &QTcpSocket::readyRead, socket,
                         [this, socket] { m_answer(*socket, socket->readAll()); });
    }

    const Answer m_answer;
    std::thread m_thread;
    QEventLoop* m_loop = nullptr;
};

/// One server for all tests of a suite; the suite's `answer` answers.
template <class Suite> struct TlsTest : ::testing::Test {
    static void SetUpTestSuite() { server.emplace(&Suite::answer); }
    static void TearDownTestSuite() { server.reset(); }
    void SetUp() override {
        if (!server->missing.empty()) GTEST_SKIP() << server->missing;
        server->plainRequests = 0;
    }
    inline static std::optional<OwnTlsServer> server;  // Qt is not up yet where statics are made
};

}  // namespace orrinvale::testing
