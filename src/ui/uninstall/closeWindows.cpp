// Each window is asked by the message that ICCCM (4.2.8.1) has for it, and only one that takes this
// message: a window manager that is asked to close another one may end its program.
#include "ui/uninstall/closeWindows.h"

#include <unistd.h>
#include <xcb/xcb.h>

#include <QByteArray>
#include <QFile>
#include <QList>
#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/applications.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

struct FreeAnswer {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply> using AnswerPointer = std::unique_ptr<Reply, FreeAnswer>;

QByteArray contentOf(const QString& path) {
    QFile file(path);
    constexpr qint64 most = 64 * 1024;
    return file.open(QIODevice::ReadOnly) ? file.read(most) : QByteArray();
}

std::string hostName() {
    std::array<char, HOST_NAME_MAX + 1> name{};
    return ::gethostname(name.data(), name.size() - 1) == 0 ? name.data() : "";
}

// The program, and a script that it runs. A process of somebody else shows neither.
std::vector<std::string> filesOf(std::uint32_t process) {
    const QString folder = QStringLiteral("/proc/%1/").arg(process);
    std::string program =
        QFile::encodeName(QFile::symLinkTarget(folder + QLatin1String("exe"))).toStdString();
    if (program.empty()) return {};
    std::vector<std::string> out{std::move(program)};
    const QList<QByteArray> words = contentOf(folder + QLatin1String("cmdline")).split('\0');
    if (words.size() > 1 && words[1].startsWith('/')) out.push_back(words[1].toStdString());
    return out;
}

bool isOf(const ApplicationRecord& record, std::uint32_t process) {
    const std::vector<std::string> files = filesOf(process);
    if (files.empty()) return false;
    if (record.type == ApplicationType::AppImage) {
        const QList<QByteArray> told =
            contentOf(QStringLiteral("/proc/%1/environ").arg(process)).split('\0');
        return std::ranges::any_of(record.programs, [&](const std::string& each) {
            return told.contains("APPIMAGE=" + QByteArray::fromStdString(each));
        });
    }
    const bool isFolder =
        record.type == ApplicationType::Folder || record.type == ApplicationType::App;
    return std::ranges::any_of(files, [&](const std::string& file) {
        return (isFolder && isWithin(file, record.path)) ||
               std::ranges::find(record.programs, file) != record.programs.end();
    });
}

class Display final {
public:
    Display() : m_x(xcb_connect(nullptr, nullptr)) {
        if (xcb_connection_has_error(m_x) != 0) return;
        m_root = xcb_setup_roots_iterator(xcb_get_setup(m_x)).data->root;
        m_protocols = atom("WM_PROTOCOLS");
        m_delete = atom("WM_DELETE_WINDOW");
        m_process = atom("_NET_WM_PID");
    }
    ~Display() { xcb_disconnect(m_x); }
    Display(const Display&) = delete;
    Display& operator=(const Display&) = delete;

    // Those that the window manager lists; without one, all.
    [[nodiscard]] std::vector<xcb_window_t> windows() const {
        if (m_root == XCB_WINDOW_NONE) return {};
        auto out = numbersOf(m_root, atom("_NET_CLIENT_LIST"));
        if (!out.empty()) return out;
        const AnswerPointer<xcb_query_tree_reply_t> tree(
            xcb_query_tree_reply(m_x, xcb_query_tree(m_x, m_root), nullptr));
        if (!tree) return {};
        const std::span children(xcb_query_tree_children(tree.get()),
                                 std::size_t(xcb_query_tree_children_length(tree.get())));
        return {children.begin(), children.end()};
    }

    // 0 where a program of another machine shows it, or nobody tells.
    [[nodiscard]] std::uint32_t processOf(xcb_window_t window) const {
        const auto process = numbersOf(window, m_process);
        const bool isHere = textOf(window, XCB_ATOM_WM_CLIENT_MACHINE) == hostName();
        return process.size() == 1 && isHere ? process.front() : 0;
    }

    // False for a window that knows no such message.
    [[nodiscard]] bool close(xcb_window_t window) const {
        const auto known = numbersOf(window, m_protocols);
        if (std::ranges::find(known, m_delete) == known.end()) return false;
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = window;
        message.type = m_protocols;
        message.data.data32[0] = m_delete;
        message.data.data32[1] = XCB_CURRENT_TIME;
        const auto sent = xcb_send_event_checked(m_x, 0, window, XCB_EVENT_MASK_NO_EVENT,
                                                 reinterpret_cast<const char*>(&message));
        return AnswerPointer<xcb_generic_error_t>(xcb_request_check(m_x, sent)) == nullptr;
    }

private:
    [[nodiscard]] xcb_atom_t atom(std::string_view name) const {
        const auto cookie =
            xcb_intern_atom(m_x, 0, static_cast<std::uint16_t>(name.size()), name.data());
        const AnswerPointer<xcb_intern_atom_reply_t> reply(
            xcb_intern_atom_reply(m_x, cookie, nullptr));
        return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
    }

    [[nodiscard]] AnswerPointer<xcb_get_property_reply_t> property(xcb_window_t window,
                                                                   xcb_atom_t name) const {
        constexpr std::uint32_t mostWords = 4096;
        return AnswerPointer<xcb_get_property_reply_t>(xcb_get_property_reply(
            m_x, xcb_get_property(m_x, 0, window, name, XCB_ATOM_ANY, 0, mostWords), nullptr));
    }

    [[nodiscard]] std::vector<std::uint32_t> numbersOf(xcb_window_t window, xcb_atom_t name) const {
        const auto reply = property(window, name);
        if (!reply || reply->format != 32) return {};
        const std::span numbers(
            static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get())),
            std::size_t(xcb_get_property_value_length(reply.get())) / sizeof(std::uint32_t));
        return {numbers.begin(), numbers.end()};
    }

    [[nodiscard]] std::string textOf(xcb_window_t window, xcb_atom_t name) const {
        const auto reply = property(window, name);
        if (!reply || reply->format != 8) return {};
        return {static_cast<const char*>(xcb_get_property_value(reply.get())),
                std::size_t(xcb_get_property_value_length(reply.get()))};
    }

    xcb_connection_t* const m_x;
    xcb_window_t m_root = XCB_WINDOW_NONE;
    xcb_atom_t m_protocols = XCB_ATOM_NONE;
    xcb_atom_t m_delete = XCB_ATOM_NONE;
    xcb_atom_t m_process = XCB_ATOM_NONE;
};

}  // namespace

bool closeWindowsOf(const ApplicationRecord& record) {
    const Display display;
    bool isAsked = false;
    for (const xcb_window_t window : display.windows()) {
        const std::uint32_t process = display.processOf(window);
        if (process != 0 && isOf(record, process)) isAsked |= display.close(window);
    }
    return isAsked;
}

}  // namespace orrinvale
