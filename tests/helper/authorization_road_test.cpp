// The right on Linux from its acquisition to its end, with the real helper and a stand-in for
// pkexec whose answers are chosen here.
#include <sys/prctl.h>

#include <condition_variable>
#include <future>
#include <iterator>

#include "helper/HelperRun.h"
#include "platform/linux/LinuxAuthorization.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Refusal = AuthorizationRefusal;
using Status = AuthorizationStatus;

constexpr auto kRight = Authorization::adminRight;

// What pkexec does when the person agrees.
std::string agreeing() { return "PKEXEC_UID=" + std::to_string(::getuid()) + " exec \"$2\"\n"; }

std::ptrdiff_t openDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"),
                         std::filesystem::directory_iterator());
}

class RightOnLinux : public HelperTest {
protected:
    HelperPaths paths(const std::string& script) {
        tree.write("pkexec",
                   "#!/bin/sh\n[ \"$1\" = --disable-internal-agent ] || exit 3\n" + script);
        tree.setMode("pkexec", 0755);
        return {tree.at("pkexec"), ORRINVALE_HELPER};
    }
    static std::int32_t acquire(LinuxAuthorization& system, AuthorizationRef& reference) {
        if (system.create(reference) != Status::success) return Status::internal;
        return system.copyRights(reference, kRight, AuthorizationFlags::acquire);
    }
    static PrivilegedRun removal(const std::string& path) {
        const SeenEntry seen = HelperRun::requestFor(path).entry;
        return {"/bin/rm", {"-rf", path}, seen.device, seen.inode, seen.type, seen.state};
    }
    bool isThere(const char* name) const { return ::access(tree.at(name).c_str(), F_OK) == 0; }

    TestTree tree;
    AuthorizationRef owner = AuthorizationRef::null;
    AuthorizationExternalForm form{};
};

TEST_F(RightOnLinux, ServesFromTheFirstReferenceToItsFree) {
    for (const char* name : {"a", "b", "c"}) ASSERT_TRUE(tree.write(name, "1"));
    LinuxAuthorization system(paths("echo run >> " + tree.at("runs") + '\n' + agreeing()));
    ASSERT_EQ(acquire(system, owner), Status::success);
    EXPECT_EQ(::prctl(PR_GET_DUMPABLE, 0, 0, 0, 0), 0);
    ASSERT_EQ(system.makeExternalForm(owner, form), Status::success);

    auto other = AuthorizationRef::null;
    ASSERT_EQ(acquire(system, other), Status::success);  // joins it: no second dialog
    EXPECT_EQ(system.free(other), Status::success);

    auto use = AuthorizationRef::null;
    std::unique_ptr<ToolOutput> output;
    ASSERT_EQ(system.createFromExternalForm(form, use), Status::success);
    EXPECT_EQ(system.copyRights(use, kRight, AuthorizationFlags::checkAgain), Status::success);
    EXPECT_EQ(system.executeWithPrivileges(use, removal(tree.at("a")), output), Status::success);
    std::array<char, 128> printed{};
    EXPECT_EQ(output->read(printed), 0);
    EXPECT_FALSE(isThere("a"));

    PrivilegedRun changed = removal(tree.at("b"));
    ++changed.inode;
    EXPECT_EQ(system.executeWithPrivileges(use, changed, output), Status::toolFailed);
    EXPECT_GT(output->read(printed), 0);
    changed = removal(tree.at("b"));
    changed.state->modified++;
    EXPECT_EQ(system.executeWithPrivileges(use, changed, output), Status::toolFailed);
    changed = removal(tree.at("b"));
    changed.stays = HelperRun::requestFor(tree.at("c")).entry;
    ASSERT_TRUE(tree.write("c", "written to"));
    EXPECT_EQ(system.executeWithPrivileges(use, changed, output), Status::toolFailed);
    PrivilegedRun otherTool = removal(tree.at("b"));
    otherTool.tool = "/bin/cat";
    EXPECT_EQ(system.executeWithPrivileges(use, otherTool, output), Status::toolFailed);

    EXPECT_EQ(system.free(owner), Status::success);
    EXPECT_EQ(system.free(owner), Status::invalidReference);
    EXPECT_NE(system.executeWithPrivileges(use, removal(tree.at("b")), output), Status::success);
    EXPECT_TRUE(isThere("b"));
    EXPECT_EQ(system.createFromExternalForm(form, other), Status::invalidReference);
    EXPECT_EQ(other, AuthorizationRef::null);

    ASSERT_EQ(acquire(system, owner), Status::success);  // asks anew, and the old form stays stale
    EXPECT_EQ(system.createFromExternalForm(form, other), Status::invalidReference);
    struct stat runs {};
    ASSERT_EQ(::stat(tree.at("runs").c_str(), &runs), 0);
    EXPECT_EQ(runs.st_size, 8);  // two lines
}

TEST_F(RightOnLinux, ConfirmingOnceMoreKeepsNoRightAlive) {
    LinuxAuthorization system(paths(agreeing()));
    auto confirmed = AuthorizationRef::null;
    ASSERT_EQ(acquire(system, confirmed), Status::success);  // nobody frees this one
    ASSERT_EQ(acquire(system, owner), Status::success);
    ASSERT_EQ(system.makeExternalForm(owner, form), Status::success);
    EXPECT_EQ(system.free(owner), Status::success);
    EXPECT_EQ(system.copyRights(confirmed, kRight, AuthorizationFlags::checkAgain), Status::denied);
}

TEST_F(RightOnLinux, EveryRefusalIsTold) {
    const std::string error = "echo 'Error executing command as another user: ";
    struct Case {
        std::string script;
        Refusal refusal;
        std::int32_t status;
    };
    for (const Case& each :
         {Case{error + "No authentication agent found.' >&2; exit 127\n", Refusal::NoAgent,
               Status::interactionNotAllowed},
          {error + "Not authorized' >&2; exit 127\n", Refusal::Refused, Status::denied},
          {error + "Request dismissed' >&2; exit 126\n", Refusal::Dismissed, Status::canceled},
          {"echo 'Error getting authority: no bus' >&2; exit 127\n", Refusal::NoPolkit,
           Status::internal},
          {"exit 127\n", Refusal::HelperFailed, Status::internal},
          {"kill -9 $$\n", Refusal::HelperFailed, Status::internal},
          {"PKEXEC_UID=4242 exec \"$2\"\n", Refusal::HelperFailed, Status::internal}}) {
        LinuxAuthorization system(paths(each.script));
        EXPECT_EQ(acquire(system, owner), each.status) << each.script;
        EXPECT_EQ(system.lastRefusal(), each.refusal) << each.script;
        EXPECT_NE(system.makeExternalForm(owner, form), Status::success);
    }
    EXPECT_EQ(::prctl(PR_GET_DUMPABLE, 0, 0, 0, 0), 1);

    LinuxAuthorization without({tree.at("missing"), ORRINVALE_HELPER});
    EXPECT_NE(acquire(without, owner), Status::success);
    EXPECT_EQ(without.lastRefusal(), Refusal::NoPolkit);
    ASSERT_TRUE(tree.write("loose", ""));
    ASSERT_TRUE(tree.setMode("loose", 0777));
    for (const char* helper : {"missing", "loose"}) {
        HelperPaths own = paths(agreeing());
        own.helper = tree.at(helper);
        LinuxAuthorization system(own);
        EXPECT_NE(acquire(system, owner), Status::success);
        EXPECT_EQ(system.lastRefusal(), Refusal::HelperMissing) << helper;
        // A click that is refused leaves nothing behind.
        EXPECT_EQ(system.free(owner), Status::success);
        const auto before = openDescriptors();
        for (int click = 0; click < 5; ++click) {
            EXPECT_NE(acquire(system, owner), Status::success);
            EXPECT_EQ(system.free(owner), Status::success);
        }
        EXPECT_EQ(openDescriptors(), before);
    }
}

TEST_F(RightOnLinux, ADialogThatStandsIsEndedByGivingUp) {
    ASSERT_TRUE(tree.fifo("asked"));
    LinuxAuthorization system(paths("echo > " + tree.at("asked") + "; exec sleep 60\n"));
    ASSERT_EQ(system.create(owner), Status::success);
    auto answer = std::async(std::launch::async, [&] {
        return system.copyRights(owner, kRight, AuthorizationFlags::acquire);
    });
    const Descriptor asked(
        ::open(tree.at("asked").c_str(), O_RDONLY | O_CLOEXEC));  // waits for the dialog
    EXPECT_EQ(system.free(owner), Status::success);
    ASSERT_EQ(answer.wait_for(milliseconds(5000)), std::future_status::ready);
    EXPECT_NE(answer.get(), Status::success);
}

TEST_F(RightOnLinux, AHelperThatDiesTakesTheRightWithIt) {
    LinuxAuthorization system(paths("echo $$ > " + tree.at("number") + '\n' + agreeing()));
    std::promise<Refusal> lost;
    system.setLostHandler([&](Refusal reason) { lost.set_value(reason); });
    // On a thread that ends before the helper does; the helper does not end with it.
    std::thread([&] { EXPECT_EQ(acquire(system, owner), Status::success); }).join();
    EXPECT_EQ(system.makeExternalForm(owner, form), Status::success);
    FILE* const file = ::fopen(tree.at("number").c_str(), "re");
    ASSERT_NE(file, nullptr);
    std::array<char, 16> number{};
    EXPECT_NE(::fgets(number.data(), number.size(), file), nullptr);
    ::fclose(file);
    ::kill(std::stoi(number.data()), SIGKILL);
    auto reason = lost.get_future();
    ASSERT_EQ(reason.wait_for(milliseconds(5000)), std::future_status::ready);
    EXPECT_EQ(reason.get(), Refusal::HelperEnded);
    EXPECT_EQ(system.lastRefusal(), Refusal::HelperEnded);
    auto use = AuthorizationRef::null;
    EXPECT_EQ(system.createFromExternalForm(form, use), Status::invalidReference);
}

TEST_F(RightOnLinux, ManyWorkersTakeTurns) {
    for (int i = 0; i < 80; ++i) ASSERT_TRUE(tree.write("many/" + std::to_string(i), "1"));
    LinuxAuthorization system(paths(agreeing()));
    ASSERT_EQ(acquire(system, owner), Status::success);
    std::vector<std::future<int>> workers;
    for (int worker = 0; worker < 4; ++worker)
        workers.push_back(std::async(std::launch::async, [&, worker] {
            int done = 0;
            std::unique_ptr<ToolOutput> output;
            for (int i = worker; i < 80; i += 4)
                done += system.executeWithPrivileges(
                            owner, removal(tree.at("many/" + std::to_string(i))), output) == 0
                            ? 1
                            : 0;
            return done;
        }));
    for (auto& worker : workers) EXPECT_EQ(worker.get(), 20);
    EXPECT_EQ(::rmdir(tree.at("many").c_str()), 0);
}

}  // namespace
}  // namespace orrinvale::testing
