// What the helper does not do: serve anybody but its caller, take a packet that is none, remove
// what others could exchange.
#include <sys/socket.h>
#include <sysexits.h>

#include "helper/HelperRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Outcome = HelperReply::Outcome;

struct Ended {
    int status = -1;
    std::string errors;
};

Ended runByHand(int input, std::vector<const char*> arguments, const char* caller, uid_t user) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return {};
    const Descriptor ours(ends[0]);
    Descriptor theirs(ends[1]);
    arguments.insert(arguments.begin(), ORRINVALE_HELPER);
    arguments.push_back(nullptr);
    const char* const environment[] = {caller, nullptr};
    const pid_t child = ::fork();
    if (child == 0) {
        const Descriptor program(::open(ORRINVALE_HELPER, O_RDONLY | O_CLOEXEC));
        if (input < 0) ::close(STDIN_FILENO);
        else ::dup2(input, STDIN_FILENO);
        ::dup2(theirs.get(), STDERR_FILENO);
        if (user == 0 || ::setuid(user) == 0)
            ::fexecve(program.get(), const_cast<char* const*>(arguments.data()),
                      const_cast<char* const*>(environment));
        ::_exit(125);
    }
    theirs.reset();
    Ended result;
    char piece[1024];
    for (ssize_t count = 0; (count = ::read(ours.get(), piece, sizeof piece)) > 0;)
        result.errors.append(piece, static_cast<std::size_t>(count));
    int status = 0;
    ::waitpid(child, &status, 0);
    result.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return result;
}

class HelperRefuses : public HelperTest {
protected:
    TestTree tree;
};

TEST_F(HelperRefuses, ToServeWhoeverIsNotItsCaller) {
    const SocketPair packets(ordinaryUser, SOCK_SEQPACKET);
    const SocketPair stream(ordinaryUser, SOCK_STREAM);
    const SocketPair datagrams(ordinaryUser, SOCK_DGRAM);
    const Descriptor alone(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    const Descriptor nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
    const Descriptor terminal(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
    int pipe[2];
    ASSERT_EQ(::pipe2(pipe, O_CLOEXEC), 0);
    const Descriptor pipeEnd(pipe[0]);
    const Descriptor otherEnd(pipe[1]);
    struct Case {
        const char* what;
        int input;
        std::vector<const char*> arguments;
        const char* caller;
        uid_t user;
        int status;
    };
    const int good = packets.theirs.get();
    for (const Case& each :
         {Case{"two arguments", good, {"/tmp/x"}, "PKEXEC_UID=65534", 0, EX_USAGE},
          {"not root", good, {}, "PKEXEC_UID=65534", ordinaryUser, EX_NOPERM},
          {"by hand", good, {}, "A=", 0, EX_NOPERM},
          {"no number", good, {}, "PKEXEC_UID=65534x", 0, EX_NOPERM},
          {"empty", good, {}, "PKEXEC_UID=", 0, EX_NOPERM},
          {"negative", good, {}, "PKEXEC_UID=-1", 0, EX_NOPERM},
          {"wrong user", good, {}, "PKEXEC_UID=1", 0, EX_NOPERM},
          {"no peer", alone.get(), {}, "PKEXEC_UID=4294967295", 0, EX_NOPERM},
          {"stream", stream.theirs.get(), {}, "PKEXEC_UID=65534", 0, EX_NOPERM},
          {"datagrams", datagrams.theirs.get(), {}, "PKEXEC_UID=65534", 0, EX_NOPERM},
          {"pipe", pipeEnd.get(), {}, "PKEXEC_UID=0", 0, EX_NOPERM},
          {"terminal", terminal.get(), {}, "PKEXEC_UID=0", 0, EX_NOPERM},
          {"device", nothing.get(), {}, "PKEXEC_UID=0", 0, EX_NOPERM},
          {"closed", -1, {}, "PKEXEC_UID=0", 0, EX_NOPERM}}) {
        const Ended ended = runByHand(each.input, each.arguments, each.caller, each.user);
        EXPECT_EQ(ended.status, each.status) << each.what << ": " << ended.errors;
        EXPECT_EQ(std::count(ended.errors.begin(), ended.errors.end(), '\n'), 1) << each.what;
    }
}

TEST_F(HelperRefuses, PacketsThatAreNoRequest) {
    ASSERT_TRUE(tree.write("folder/victim", "1"));
    const HelperRun helper;
    ASSERT_TRUE(helper.isReady());
    const std::string victim = tree.at("folder/victim");
    const HelperRequest good = HelperRun::requestFor(victim);
    const auto changed = [&](const std::function<void(HelperRequest&)>& change) {
        HelperRequest request = good;
        change(request);
        return request.packed();
    };
    const auto withPath = [&](const std::string& path) {
        return changed([&](HelperRequest& r) { r.entry.path = path; });
    };
    constexpr std::size_t smallest = HelperRequest::headSize + HelperRequest::entryHeadSize;
    const auto withByte = [&](std::size_t at, char byte) {
        return good.packed().replace(at, 1, 1, byte);
    };
    struct Case {
        const char* what;
        std::string packet;
    };
    for (const Case& each :
         {Case{"1 MB", good.packed() + std::string(1 << 20, 'x')},
          {"one byte too many",
           withPath('/' + std::string(HelperRequest::mostBytes - smallest, 'x'))},
          {"short", good.packed().substr(0, HelperRequest::headSize - 1)},
          {"another mark", "x" + good.packed().substr(1)},
          {"no path", withPath("")},
          {"root", withPath("/")},
          {"relative", withPath(victim.substr(1))},
          {"slash at the end", withPath(victim + '/')},
          {"empty name", withPath(tree.path() + "//folder/victim")},
          {"dot", withPath(tree.path() + "/./folder/victim")},
          {"dots", withPath(tree.at("folder/../folder/victim"))},
          {"dots at the end", withPath(tree.at("folder/.."))},
          {"NUL", withPath(victim + std::string("\0x", 2))},
          {"no type", changed([](HelperRequest& r) { r.entry.type = FileType::Unknown; })},
          {"unheard-of type", changed([](HelperRequest& r) { r.entry.type = FileType{200}; })},
          {"another type", changed([](HelperRequest& r) { r.entry.type = FileType::Folder; })},
          {"another inode", changed([](HelperRequest& r) { ++r.entry.inode; })},
          {"another device", changed([](HelperRequest& r) { ++r.entry.device; })},
          {"another size", changed([](HelperRequest& r) { ++r.entry.state->size; })},
          {"another time", changed([](HelperRequest& r) { ++r.entry.state->modified; })},
          {"another time of the inode",
           changed([](HelperRequest& r) { ++r.entry.state->changed; })},
          {"no entry", withByte(8, 0)},
          {"three entries", withByte(8, 3)},
          {"two entries told of, one there", withByte(8, 2)},
          {"more than the entry", good.packed() + 'x'},
          {"a path longer than the packet", withByte(smallest - 1, 0x7F)},
          {"filled up with something", withByte(9, 1)},
          {"an entry filled up with something", withByte(smallest - 5, 1)},
          {"a state that is not told", withByte(smallest - 7, 0)},
          {"a state neither told nor untold", withByte(smallest - 7, 2)},
          {"what stays without its state",
           changed([](HelperRequest& r) { (r.stays = r.entry)->state.reset(); })},
          {"what stays by no plain path",
           changed([](HelperRequest& r) { (r.stays = r.entry)->path += "/.."; })},
          {"nothing there", withPath(tree.at("folder/missing"))}}) {
        ASSERT_TRUE(helper.send(each.packet)) << each.what;
        const auto reply = helper.receive();
        ASSERT_TRUE(reply) << each.what;
        EXPECT_EQ(reply->outcome, Outcome::Refused) << each.what << ": " << reply->text;
        EXPECT_FALSE(reply->text.empty()) << each.what;
        EXPECT_TRUE(isThere(victim)) << each.what;
    }
    EXPECT_EQ(helper.ask(victim).outcome, Outcome::Removed);
}

TEST_F(HelperRefuses, FoldersThatOthersCouldChange) {
    struct Case {
        const char* what;
        uid_t owner;
        mode_t mode;
        bool isTaken;
    };
    const HelperRun helper;
    ASSERT_TRUE(helper.isReady());
    for (const Case& each : {Case{"root's", 0, 0755, true},
                             {"the caller's", ordinaryUser, 0700, true},
                             {"the caller's, sticky", ordinaryUser, 01777, true},
                             {"like /tmp", 0, 01777, true},
                             {"someone else's", 12345, 0755, false},
                             {"someone else's, sticky", 12345, 01777, false},
                             {"writable by all", ordinaryUser, 0777, false}}) {
        for (const char* below : {"", "/below"}) {  // the last folder on the way, and one before it
            TestTree own;
            ASSERT_TRUE(own.write(std::string("way") + below + "/victim", "1"));
            const std::string victim = own.at(std::string("way") + below + "/victim");
            ASSERT_EQ(::chown(own.at("way").c_str(), each.owner, 0), 0);
            ASSERT_EQ(::chmod(own.at("way").c_str(), each.mode), 0);
            const HelperReply reply = helper.ask(victim);
            EXPECT_EQ(reply.outcome, each.isTaken ? Outcome::Removed : Outcome::Refused)
                << each.what << ": " << reply.text;
            EXPECT_EQ(isThere(victim), !each.isTaken) << each.what;
        }
    }
    ASSERT_TRUE(tree.write("real/victim", "1"));
    ASSERT_TRUE(tree.symlink("real", "link"));
    EXPECT_EQ(helper.ask(tree.at("link/victim")).outcome, Outcome::Refused);
    EXPECT_TRUE(isThere(tree.at("real/victim")));
}

TEST_F(HelperRefuses, ProtectedPlaces) {
    const HelperRun helper;
    ASSERT_TRUE(helper.isReady());
    for (const char* const path : {"/usr", "/root", "/proc/1", "/dev/null", ORRINVALE_HELPER}) {
        EXPECT_EQ(helper.ask(path).outcome, Outcome::Refused) << path;
        EXPECT_TRUE(isThere(path));
    }
    ASSERT_TRUE(tree.folder("outer/mount"));
    const std::string mount = tree.at("outer/mount");
    if (::mount("none", mount.c_str(), "tmpfs", 0, nullptr) != 0)
        GTEST_SKIP() << "this process may not mount";
    EXPECT_TRUE(tree.write("outer/mount/file", "1"));
    EXPECT_EQ(helper.ask(mount).outcome, Outcome::Refused);
    EXPECT_EQ(helper.ask(tree.at("outer")).outcome, Outcome::Refused);
    EXPECT_TRUE(isThere(tree.at("outer/mount/file")));
    EXPECT_EQ(helper.ask(tree.at("outer/mount/file")).outcome, Outcome::Removed);
    EXPECT_EQ(::umount(mount.c_str()), 0);
}

// In a root of its own over the machine's, so that a helper that does wrong does it there.
TEST_F(HelperRefuses, PartsOfTheSystem) {
    TestTree layer("/dev/shm");
    for (const char* folder : {"upper", "work", "root"}) ASSERT_TRUE(layer.folder(folder));
    const auto check = [&]() -> std::string {
        const std::string root = layer.at("root");
        const std::string options =
            "lowerdir=/,upperdir=" + layer.at("upper") + ",workdir=" + layer.at("work");
        const std::string programs =
            std::string(ORRINVALE_HELPER).substr(0, std::string(ORRINVALE_HELPER).rfind('/'));
        if (!unshareMounts() || ::mount("none", root.c_str(), "overlay", 0, options.c_str()) != 0)
            return "skipped: no layers here";
        for (const std::string& each : {std::string("/proc"), std::string("/dev"), programs}) {
            std::filesystem::create_directories(root + each);
            if (::mount(each.c_str(), (root + each).c_str(), nullptr, MS_BIND | MS_REC, nullptr) !=
                0)
                return each;
        }
        if (::chroot(root.c_str()) != 0 || ::chdir("/") != 0) return "no root";
        const HelperRun helper(0);
        std::string wrong;
        for (const char* const place :
             {"/srv", "/opt", "/boot", "/mnt", "/var/log", "/usr/local", "/usr/lib", "/usr"}) {
            std::filesystem::create_directories(place);
            const HelperReply reply = helper.ask(place);
            if (reply.outcome != Outcome::Refused || !isThere(place))
                wrong += std::string(place) + ' ' + reply.text;
            const std::string inside = std::string(place) + "/orrinvale";
            std::filesystem::create_directories(inside);
            if (helper.ask(inside).outcome != Outcome::Removed) wrong += " not " + inside;
        }
        return wrong;
    };
    EXPECT_TOLD(runInChild({}, check), "");
}

}  // namespace
}  // namespace orrinvale::testing
