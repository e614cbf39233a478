// One running program a user: who is first, and what reaches it, between real processes.
#include <poll.h>
#include <sys/file.h>

#include "platform/instance.h"
#include "support/SilentSocket.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Start = ProgramInstance::Start;
using Kind = StartRequest::Kind;

milliseconds since(Clock::time_point start) {
    return std::chrono::duration_cast<milliseconds>(Clock::now() - start);
}

// Where this process and its children look for the session bus while it lives; nowhere unless an
// address is given.
class SessionBusAddress {
public:
    explicit SessionBusAddress(const std::string& busAddress = "unix:path=/nonexistent/bus") {
        if (const char* const before = std::getenv(name)) m_before = before;
        ::setenv(name, busAddress.c_str(), 1);
    }
    ~SessionBusAddress() {
        if (m_before) ::setenv(name, m_before->c_str(), 1);
        else ::unsetenv(name);
    }
    SessionBusAddress(const SessionBusAddress&) = delete;
    SessionBusAddress& operator=(const SessionBusAddress&) = delete;

private:
    static constexpr const char* name = "DBUS_SESSION_BUS_ADDRESS";
    std::optional<std::string> m_before;
};

// A forked process that ends with what `work` answers.
pid_t inBackground(const std::function<int()>& work) {
    const pid_t child = ::fork();
    if (child != 0) return child;
    ::alarm(30);
    ::_exit(work());
}

int statusOf(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::optional<StartRequest> awaitRequest(const ProgramInstance& instance, milliseconds patience) {
    pollfd ready{instance.descriptor(), POLLIN, 0};
    if (::poll(&ready, 1, static_cast<int>(patience.count())) <= 0) return std::nullopt;
    return instance.receive();
}

TEST(StartRequest, AnActionCarriesItsFolderInExactBytes) {
    for (const std::string folder : {"/", "/a b#c?", "/new\nline", "/\xff\xfe"}) {
        const StartRequest sent{StartRequest::Kind::Action,
                                startAction::withFolder(startAction::diskUsage, folder),
                                {}};
        const auto got = parseStartRequest(printStartRequest(sent));
        ASSERT_TRUE(got);
        EXPECT_EQ(got->folderOfAction(startAction::diskUsage), folder);
        EXPECT_FALSE(got->folderOfAction("disk"));
        EXPECT_FALSE(got->isAction(startAction::diskUsage));
    }
}

TEST(Instance, OfTwoThatStartAtTheSameMomentOneIsTheProgramAndOneHandsOver) {
    const SessionBusAddress noBus;
    const TestTree tree;
    for (int round = 0; round < 200; ++round) {
        std::array<int, 2> gate{};
        ASSERT_EQ(::pipe2(gate.data(), O_CLOEXEC), 0);
        const auto start = [&] {
            ::close(gate[1]);
            char none = 0;
            static_cast<void>(!::read(gate[0], &none, 1));  // both go when the other end is closed
            const auto begun = Clock::now();
            ProgramInstance instance(tree.at("run"));
            const Start result = instance.begin({Kind::Activate, {}, {}});
            if (since(begun) > milliseconds(3000))
                return 9;  // a second, and what a loaded machine takes
            if (result != Start::First) return result == Start::HandedOver ? 1 : 8;
            return awaitRequest(instance, milliseconds(5000)) ? 0 : 7;
        };
        const std::array<pid_t, 2> children{inBackground(start), inBackground(start)};
        ::close(gate[0]);
        ::close(gate[1]);
        const int one = statusOf(children[0]);
        const int other = statusOf(children[1]);
        ASSERT_EQ(std::min(one, other), 0) << "round " << round << ": " << one << ' ' << other;
        ASSERT_EQ(std::max(one, other), 1) << "round " << round << ": " << one << ' ' << other;
    }
}

TEST(Instance, WhatIsAskedForArrivesByteForByte) {
    const SessionBusAddress noBus;
    const TestTree tree;
    ProgramInstance first(tree.at(std::string(150, 'l') + "/ong"));
    ASSERT_EQ(first.begin({}), Start::First);
    EXPECT_EQ(first.holder(), ::getpid());
    const StartRequest requests[] = {{Kind::Activate, "", ""},
                                     {Kind::Activate, "", "token-1"},
                                     {Kind::Open, "/a b\n\xff", ""},
                                     {Kind::Open, "/" + std::string(40'000, 'x'), "t"},
                                     {Kind::Action, "eject-all", "t"}};
    for (const StartRequest& request : requests) {
        const pid_t second = inBackground([&] {
            ProgramInstance instance(tree.at(std::string(150, 'l') + "/ong"));
            return static_cast<int>(instance.begin(request));
        });
        EXPECT_EQ(awaitRequest(first, milliseconds(5000)), request);
        EXPECT_EQ(statusOf(second), static_cast<int>(Start::HandedOver));
    }
    EXPECT_EQ(first.receive(), std::nullopt) << "nothing waits, and nobody is waited for";
    first.stopListening();
    ProgramInstance late(tree.at(std::string(150, 'l') + "/ong"));
    EXPECT_EQ(late.begin({}, milliseconds(100)), Start::NoWay)
        << "nobody is told that it has been taken over";
}

TEST(Instance, AProgramThatDiedOrHangsHoldsNobodyUp) {
    const SessionBusAddress noBus;
    const TestTree tree;
    const std::string folder = tree.at("run");
    std::array<int, 2> ready{};
    ASSERT_EQ(::pipe2(ready.data(), O_CLOEXEC), 0);
    const pid_t holder = inBackground([&] {
        ProgramInstance instance(folder);
        const Start start = instance.begin({});
        static_cast<void>(!::write(ready[1], "r", 1));
        ::pause();
        return static_cast<int>(start);
    });
    char none = 0;
    ASSERT_EQ(::read(ready[0], &none, 1), 1);
    ::kill(holder, SIGSTOP);
    auto begun = Clock::now();
    EXPECT_EQ(ProgramInstance(folder).begin({}, milliseconds(200)), Start::Unanswered);
    EXPECT_LT(since(begun), milliseconds(600));
    ASSERT_EQ(::unlink((folder + "/orrinvale.socket").c_str()), 0);
    begun = Clock::now();
    ProgramInstance alone(folder);
    EXPECT_EQ(alone.begin({}, milliseconds(200)), Start::NoWay);
    EXPECT_LT(since(begun), milliseconds(600));
    EXPECT_EQ(alone.holder(), holder);
    ::kill(holder, SIGKILL);
    EXPECT_EQ(statusOf(holder), -SIGKILL);
    EXPECT_EQ(ProgramInstance(folder).begin({}), Start::First);
}

TEST(Instance, NeitherABrokenPacketNorAMissingFolderIsInTheWay) {
    const SessionBusAddress noBus;
    TestTree tree;
    ProgramInstance first(tree.at("run"));
    ASSERT_EQ(first.begin({}), Start::First);
    const Descriptor sender(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    const sockaddr_un address = socketAddress(tree.at("run/orrinvale.socket"));
    for (const std::string& packet :
         {std::string(), std::string("o\0", 2), std::string("orelative\0", 10),
          std::string("a\0", 2), std::string("v"), std::string("vx\0", 3), std::string("v\0t\0", 4),
          std::string("z\0", 2), std::string(70'000, 'o')})
        ASSERT_GE(::sendto(sender.get(), packet.data(), packet.size(), 0,
                           reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
    EXPECT_EQ(first.receive(), std::nullopt);
    // Where no lock can be had, a person still gets a window.
    ASSERT_TRUE(tree.write("file", ""));
    EXPECT_EQ(ProgramInstance(tree.at("file/run")).begin({}), Start::First);
}

TEST(Instance, ABusThatHangsIsGivenUp) {
    const TestTree tree;
    const Descriptor silent = silentSocket(tree.at("bus"));
    ASSERT_TRUE(silent.isOpen());
    const SessionBusAddress bus("unix:path=" + tree.at("bus"));
    const auto begun = Clock::now();
    const BusHandOver result = handOverBySessionBus({}, milliseconds(5000));
    EXPECT_FALSE(result.isBusThere || result.told);
    EXPECT_LT(since(begun), milliseconds(2000)) << "there is time left for the socket";
}

}  // namespace
}  // namespace orrinvale::testing
