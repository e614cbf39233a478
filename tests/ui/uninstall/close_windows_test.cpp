// Closing the windows of an application, on a display of the test's own.
#include "ui/uninstall/closeWindows.h"

#include <unistd.h>
#include <xcb/xcb.h>

#include <QProcess>
#include <QStandardPaths>

#include "platform/applications.h"
#include "support/ScopedVariable.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

// Windows of this very process, each as it is told.
struct Client {
    ~Client() { xcb_disconnect(x); }
    xcb_atom_t atom(const std::string& name) const {
        auto* const reply = xcb_intern_atom_reply(
            x, xcb_intern_atom(x, 0, std::uint16_t(name.size()), name.c_str()), nullptr);
        const xcb_atom_t made = reply->atom;
        std::free(reply);
        return made;
    }
    xcb_window_t window(std::uint32_t process, const std::string& machine, bool takesMessage) {
        const xcb_window_t made = xcb_generate_id(x);
        const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
        xcb_create_window(x, XCB_COPY_FROM_PARENT, made, root, 0, 0, 9, 9, 0,
                          XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
        const auto set = [&](xcb_atom_t name, xcb_atom_t type, std::uint8_t format,
                             std::size_t length, const void* data) {
            xcb_change_property(x, XCB_PROP_MODE_REPLACE, made, name, type, format,
                                std::uint32_t(length), data);
        };
        set(atom("_NET_WM_PID"), XCB_ATOM_CARDINAL, 32, 1, &process);
        set(XCB_ATOM_WM_CLIENT_MACHINE, XCB_ATOM_STRING, 8, machine.size(), machine.data());
        const xcb_atom_t message = atom("WM_DELETE_WINDOW");
        if (takesMessage) set(atom("WM_PROTOCOLS"), XCB_ATOM_ATOM, 32, 1, &message);
        xcb_flush(x);
        return made;
    }
    /// The windows that were asked since.
    std::vector<xcb_window_t> asked() const {
        std::free(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
        std::vector<xcb_window_t> out;
        while (auto* const event = xcb_poll_for_event(x)) {
            const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
            if ((event->response_type & 0x7F) == XCB_CLIENT_MESSAGE &&
                message.data.data32[0] == atom("WM_DELETE_WINDOW"))
                out.push_back(message.window);
            std::free(event);
        }
        return out;
    }
    xcb_connection_t* const x = xcb_connect(nullptr, nullptr);
};

TEST(CloseWindows, AsksThoseOfTheApplicationThatCanAnswer) {
    if (QStandardPaths::findExecutable(QStringLiteral("Xvfb")).isEmpty())
        GTEST_SKIP() << "no Xvfb here";
    QProcess server;
    server.start(QStringLiteral("Xvfb"),
                 {QStringLiteral("-displayfd"), QStringLiteral("1"), QStringLiteral("-noreset"),
                  QStringLiteral("-nolisten"), QStringLiteral("tcp")});
    while (!server.canReadLine()) ASSERT_TRUE(server.waitForReadyRead(10'000));
    const ScopedVariable display("DISPLAY", ":" + server.readLine().trimmed().toStdString());
    Client client;
    std::array<char, 256> host{};
    ASSERT_EQ(::gethostname(host.data(), host.size() - 1), 0);
    const auto own = std::uint32_t(::getpid());
    const xcb_window_t ours = client.window(own, host.data(), true);
    (void)client.window(own, host.data(), false);
    (void)client.window(own, "elsewhere", true);
    (void)client.window(1, host.data(), true);
    ApplicationRecord record;
    record.type = ApplicationType::Deb;
    record.programs = {"/usr/bin/other"};
    EXPECT_FALSE(closeWindowsOf(record));
    EXPECT_THAT(client.asked(), ElementsAre());
    record.programs.push_back(std::filesystem::read_symlink("/proc/self/exe"));
    EXPECT_TRUE(closeWindowsOf(record));
    EXPECT_THAT(client.asked(), ElementsAre(ours));
    server.kill();
    server.waitForFinished();
    EXPECT_FALSE(closeWindowsOf(record)) << "no display";
}

}  // namespace
}  // namespace orrinvale::testing
