// What the engine asks of the desktop, from the question to the wire and to the screen.
#include "app/Desktop.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <QGuiApplication>
#include <QNetworkProxy>
#include <QScreen>

#include "engine/settings/TCPublicUtilities.h"
#include "engine/text/UtilityFunction.h"
#include "platform/descriptor.h"
#include "support/test.h"

namespace orrinvale {
namespace {

// A proxy that refuses the first request, and gives it back.
class RefusingProxy final {
public:
    RefusingProxy() : m_socket(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        const timeval patience{10, 0};
        ::setsockopt(m_socket.get(), SOL_SOCKET, SO_RCVTIMEO, &patience, sizeof patience);
        socklen_t size = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        if (::bind(m_socket.get(), any, size) != 0 || ::listen(m_socket.get(), 1) != 0 ||
            ::getsockname(m_socket.get(), any, &size) != 0)
            return;
        QNetworkProxy::setApplicationProxy(
            {QNetworkProxy::HttpProxy, QStringLiteral("127.0.0.1"), ntohs(address.sin_port)});
    }
    ~RefusingProxy() { QNetworkProxy::setApplicationProxy(QNetworkProxy::NoProxy); }
    RefusingProxy(const RefusingProxy&) = delete;
    RefusingProxy& operator=(const RefusingProxy&) = delete;

    [[nodiscard]] std::string refuse() const {
        const Descriptor caller(::accept(m_socket.get(), nullptr, nullptr));
        std::array<char, 4096> request{};
        const ssize_t count = ::read(caller.get(), request.data(), request.size());
        constexpr std::string_view answer = "HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\n\r\n";
        static_cast<void>(!::write(caller.get(), answer.data(), answer.size()));
        return std::string(request.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    }

private:
    Descriptor m_socket;
};

TEST(Desktop, TheVendorsSiteIsReallyAsked) {
    const RefusingProxy proxy;
    const Desktop desktop;
    bool isUsable = true;
    std::thread asking([&] { isUsable = TCPublicUtilities::isCanBeUseNetWork(); });
    const std::string request = proxy.refuse();
    asking.join();
    EXPECT_TRUE(request.starts_with("CONNECT www.kelpford.com:443 ")) << request;
    EXPECT_FALSE(isUsable);
}

TEST(Desktop, WindowsAreCentredOnTheMainScreen) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    ASSERT_GT(screen.width(), 300);
    const Rect without = UtilityFunction::returnRectOfWindcenterWithWidht(300, 200);
    EXPECT_EQ(without, (Rect{-150, -100, 300, 200}));
    const Desktop desktop;
    const Rect centred = UtilityFunction::returnRectOfWindcenterWithWidht(300, 200);
    EXPECT_EQ(centred, (Rect{screen.width() / 2.0 - 150, screen.height() / 2.0 - 100, 300, 200}));
}

}  // namespace
}  // namespace orrinvale
