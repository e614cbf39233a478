// The whole road through the real polkit: what each answer of the system makes of the right, and a
// removal at its end.
#include <future>

#include "helper/HelperRun.h"
#include "helper/PolkitWorld.h"
#include "platform/linux/LinuxAuthorization.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Refusal = AuthorizationRefusal;

/// As the ordinary user: asks for the right, with an agent at hand or none, and removes with it.
/// The text says what went another way than expected.
struct Attempt {
    std::string helper;
    std::string victim;
    Refusal expected = Refusal::None;
    std::string typed = {};  // what the agent is given; empty for no agent
    enum class Person { Types, Leaves, Dismisses } person = Person::Types;

    std::string run() const {
        LinuxAuthorization system({"/usr/bin/pkexec", helper});
        auto reference = AuthorizationRef::null;
        if (system.create(reference) != 0) return "no reference";
        const bool isDismissed = person == Person::Dismisses;
        std::optional<PolkitAgent> agent;
        if (!typed.empty() || person != Person::Types)
            agent.emplace(isDismissed ? PolkitAgent::Kind::Dismissing : PolkitAgent::Kind::Password,
                          ::getpid());
        auto asked = std::async(std::launch::async, [&] {
            return system.copyRights(reference, Authorization::adminRight,
                                     AuthorizationFlags::acquire);
        });
        std::string trouble;
        if (agent && !isDismissed && !agent->says("Password:"))
            trouble = "nobody asked for a password; ";
        if (agent && person == Person::Leaves) agent->kill();
        // The agent throws away what was typed before it has switched the echo off, which it does
        // after it has asked.
        constexpr std::chrono::seconds longEnough{2};
        for (int i = 0; agent && person == Person::Types && i < 10; ++i) {
            agent->type(typed);
            if (asked.wait_for(longEnough) == std::future_status::ready) break;
        }
        const std::int32_t status = asked.get();
        if (system.lastRefusal() != expected)
            trouble += fmt::format("refusal {}, status {}", static_cast<int>(system.lastRefusal()),
                                   status);
        return status == 0 ? trouble + remove(system, reference) : trouble;
    }

private:
    std::string remove(LinuxAuthorization& system, AuthorizationRef reference) const {
        const SeenEntry seen = HelperRun::requestFor(victim).entry;
        std::unique_ptr<ToolOutput> output;
        std::array<char, 128> printed{};
        const auto status = system.executeWithPrivileges(
            reference, {"/bin/rm", {"-rf", victim}, seen.device, seen.inode, seen.type}, output);
        if (status == 0 && output->read(printed) == 0) return {};
        return "the tool failed: " + std::to_string(status) + ' ' + printed.data();
    }
};

TEST(Polkit, EveryAnswerOfTheSystem) {
    const std::string outcome = runInChild({}, []() -> std::string {
        PolkitWorld world;
        if (!world.obstacle().empty()) return "skip: " + world.obstacle();
        const std::string asInstalled = world.addHelper("installed", "");
        const std::string free = world.addHelper("free", "yes");
        const std::string guarded = world.addHelper("guarded", "auth_admin");
        TestTree tree;
        const std::string victim = tree.at("theirs/victim");
        const auto isThere = [&] { return ::access(victim.c_str(), F_OK) == 0; };

        std::string troubles;
        const auto attempt = [&](const char* what, const Attempt& each) {
            tree.write("theirs/victim", "1");
            const std::string trouble =
                runInChild({.ordinaryUser = true}, [&] { return each.run(); });
            if (!trouble.empty()) troubles += std::string(what) + ": " + trouble + '\n';
            if (isThere() == (each.expected == Refusal::None))
                troubles += std::string(what) + ": the wrong end\n";
        };
        using Person = Attempt::Person;
        attempt("no polkit", {free, victim, Refusal::NoPolkit});
        if (!world.begin()) return troubles + "the services did not start";
        attempt("a session without a seat", {asInstalled, victim, Refusal::Refused});
        attempt("no questions", {free, victim, Refusal::None});
        attempt("no agent", {guarded, victim, Refusal::NoAgent});
        attempt("the password", {guarded, victim, Refusal::None, PolkitWorld::password});
        attempt("a wrong password", {guarded, victim, Refusal::Refused, "guess"});
        attempt("an agent that goes away", {guarded, victim, Refusal::Refused, {}, Person::Leaves});
        const std::string obstacle = obstacleToDismissing();
        if (obstacle.empty())
            attempt("a closed dialog",
                    {guarded, victim, Refusal::Dismissed, {}, Person::Dismisses});
        else if (troubles.empty()) return "skip: all but a closed dialog was tried: " + obstacle;
        return troubles;
    });
    if (outcome.starts_with("skip: ")) GTEST_SKIP() << outcome.substr(6);
    EXPECT_EQ(outcome, "");
}

}  // namespace
}  // namespace orrinvale::testing
