// Snaps: what their service says of them, its silence, and their removal by it.
#include "platform/applications.h"

#include "platform/linux/LinuxApplications.h"
#include "platform/linux/SnapService.h"
#include "platform/paths.h"
#include "support/MadeUpMachine.h"
#include "support/SilentSocket.h"
#include "support/test.h"

namespace orrinvale {
namespace {

using testing::MadeUpMachine;

TEST(Applications, OfSnapAreWhatTheServiceSays) {
    const auto facts = snapsIn(
        R"({"type":"sync","result":[{"name":"code","title":"Code","version":"1","type":"app",
            "installed-size":5,"apps":[{"name":"code","desktop-file":"/x.desktop"},3]},
            {"name":"core22","type":"base"},{"title":"nameless"},7]})");
    ASSERT_TRUE(facts && facts->size() == 2);
    EXPECT_EQ(facts->front().title + facts->front().entries.at(0), "Code/x.desktop");
    EXPECT_EQ(facts->front().size, 5U);
    for (const char* const bad : {"", "[]", "{", R"({"result":{}})"})
        EXPECT_FALSE(snapsIn(bad)) << bad;
    EXPECT_FALSE(snapsIn(std::string(200'000, '[')));
    const auto chunked = httpAnswer(
        "HTTP/1.1 202 Accepted\r\nTransfer-Encoding: "
        "chunked\r\n\r\n3\r\nabc\r\n2\r\nde\r\n0\r\n\r\n");
    ASSERT_TRUE(chunked);
    EXPECT_EQ(chunked->body + std::to_string(chunked->status), "abcde202");
    for (const char* const bad :
         {"HTTP/1.1 200 OK\r\n", "SSH-2.0\r\n\r\n", "HTTP/1.1 2",
          "HTTP/1.1 200 OK\r\ntransfer-encoding: chunked\r\n\r\nffffffffffffffff\r\nab"})
        EXPECT_FALSE(httpAnswer(bad)) << bad;
}

// A service that answers each question by a table of how it begins; a question that is in none gets
// no answer. One that begins a removal may raise a flag, and one to take it back changes an answer.
class MadeUpSnapd final {
public:
    using Answers = std::map<std::string, std::string>;
    MadeUpSnapd(const std::string& path, Answers answers, Answers afterAbort = {},
                std::atomic<bool>* begun = nullptr)
        : m_answers(std::move(answers)),
          m_afterAbort(std::move(afterAbort)),
          m_begun(begun),
          m_socket(testing::silentSocket(path)) {
        m_thread = std::jthread([this] { serve(); });
    }
    ~MadeUpSnapd() { ::shutdown(m_socket.get(), SHUT_RDWR); }

private:
    void serve() {
        for (;;) {
            const Descriptor client(::accept(m_socket.get(), nullptr, nullptr));
            std::array<char, 4096> asked{};
            if (!client.isOpen() || ::read(client.get(), asked.data(), asked.size()) <= 0) return;
            const std::string_view text(asked.data());
            for (const auto& [question, answer] : m_answers)
                if (text.starts_with(question))
                    (void)!::write(client.get(), answer.data(), answer.size());
            if (m_begun != nullptr && text.starts_with("POST /v2/snaps/")) *m_begun = true;
            if (text.starts_with("POST /v2/changes/") && text.ends_with(R"({"action":"abort"})"))
                for (const auto& [question, answer] : m_afterAbort) m_answers[question] = answer;
        }
    }
    Answers m_answers;
    const Answers m_afterAbort;
    std::atomic<bool>* const m_begun;
    const Descriptor m_socket;
    std::jthread m_thread;
};

TEST(Applications, ThatCouldNotBeReadAreNotMissing) {
    using enum ApplicationType;
    struct Case {
        const char* name;
        std::string loop, folder, answer;  // a link to itself, a folder; what snapd says
        std::set<ApplicationType> unread;
        bool isThere = false;  // the service's socket
    };
    const std::string ok = "HTTP/1.1 200 OK\r\n\r\n";
    const Case cases[] = {
        {"nothing is here", "", "", "", {}},
        {"only its folder of programs", "", "snap/bin", "", {}},
        {"snaps without their service", "", "snap/code", "", {Snap}},
        {"a silent service", "", "", "", {Snap}, true},
        {"a service that refuses", "", "", "HTTP/1.1 500 x\r\n\r\n{\"result\":[]}", {Snap}, true},
        {"garbage", "", "", ok + "{\"result\":{}}", {Snap}, true},
        {"no snaps", "", "", ok + "{\"result\":[]}", {}, true},
        {"the shared flatpaks", "flatpak/app", "", "", {Flatpak}},
        {"one flatpak", "flatpak/app/org.a.B", "", "", {Flatpak}},
        {"one branch of it", "flatpak/app/org.a.B/x86_64/stable", "", "", {Flatpak}},
    };
    for (const Case& each : cases) {
        MadeUpMachine machine;
        if (!each.loop.empty())
            (void)machine.tree.symlink(lastPathComponent(each.loop).data(), each.loop);
        if (!each.folder.empty()) (void)machine.tree.folder(each.folder);
        std::optional<MadeUpSnapd> service;
        if (each.isThere)
            service.emplace(machine.places.snapSocket,
                            MadeUpSnapd::Answers{{"GET /v2/snaps ", each.answer}});
        std::set<ApplicationType> unread;
        for (const auto& [type, reason] : LinuxApplications(machine.places).inventory().unread)
            unread.insert(type);
        EXPECT_EQ(unread, each.unread) << each.name;
    }
}

TEST(Applications, OfOneSnapAreAllNamed) {
    MadeUpMachine machine;
    std::string apps;
    for (const char* const name : {"a", "b"}) {
        machine.entry(name, "Exec=/snap/bin/code");
        apps += std::string(apps.empty() ? "" : ",") + R"({"name":"x","desktop-file":")" +
                machine.tree.at(std::string("usr/share/applications/") + name + ".desktop") +
                R"("})";
    }
    const MadeUpSnapd service(
        machine.places.snapSocket,
        {{"GET /v2/snaps ",
          "HTTP/1.1 200 OK\r\n\r\n{\"result\":[{\"name\":\"code\",\"apps\":[" + apps + "]}]}"}});
    const auto records = LinuxApplications(machine.places).list();
    ASSERT_EQ(records.size(), 1U);
    EXPECT_THAT((Strings{records[0].name, records[0].others.at(0)}),
                ::testing::UnorderedElementsAre("a", "b"));
}

TEST(Applications, OfSnapGoByTheService) {
    using State = ApplicationRemoval::State;
    const std::string info = "HTTP/1.1 200 OK\r\n\r\n{}";
    const auto json = [](int status, const std::string& body) {
        return "HTTP/1.1 " + std::to_string(status) + " x\r\n\r\n" + body;
    };
    const std::string begun = json(202, R"({"type":"async","change":"7"})");
    struct Case {
        std::string removal, change;
        State state;
        std::string reason;
        std::string left = R"([{"name":"code"}])";  // that the service lists afterwards
    };
    const std::string done = json(200, R"({"result":{"ready":true,"status":"Done"}})");
    const Case cases[] = {
        {begun, done, State::Gone, "", "[]"},
        {begun, done, State::Failed, "The snap service left it"},
        {begun, done, State::Failed,
         "Nobody can tell whether it is gone: The snap service does not tell what it has", "{}"},
        {json(404, R"({"result":{"message":"not found","kind":"snap-not-found"}})"), "",
         State::Gone, "", "[]"},
        {begun, json(200, R"({"result":{"ready":true,"status":"Error","err":"it is a base"}})"),
         State::Failed, "it is a base"},
        {json(401, R"({"result":{"message":"cancelled","kind":"auth-cancelled"}})"), "",
         State::Dismissed, "The snap service says: cancelled"},
        {json(404, R"({"result":{"message":"not found\nat all","kind":"snap-not-found"}})"), "",
         State::Failed, "The snap service says: not found"},
        {json(202, "[]"), "", State::Failed, "The snap service gave no reason"},
        {"", "", State::Failed, "The snap service answers what makes no sense"},
        {begun, json(200, "[]"), State::Failed, "The snap service gave no reason"},
    };
    for (const Case& each : cases) {
        MadeUpMachine machine;
        const MadeUpSnapd service(
            machine.places.snapSocket,
            {{"GET /v2/system-info ", info},
             {"POST /v2/snaps/code ", each.removal},
             {"GET /v2/changes/7 ", each.change},
             {"GET /v2/snaps ", json(200, R"({"result":)" + each.left + '}')}});
        ApplicationRecord code;
        code.id = code.name = "code";
        code.others = {"Tunnel"};
        const LinuxApplications applications(machine.places);
        const ApplicationKind& kind = *applications.kind(ApplicationType::Snap);
        const std::atomic<bool> never{false};
        const RemovalForecast forecast = kind.forecast({code}, never);
        EXPECT_EQ(forecast.refusal, "");
        EXPECT_THAT(forecast.stays, ElementsAre(HasSubstr("31 days, unless snapshots")));
        Strings along;
        for (const auto& data : forecast.along) along.push_back(data.name);
        EXPECT_THAT(along, ElementsAre("Tunnel", "~/snap/code", "/var/snap/code"));
        const ApplicationRemoval removal = kind.remove({code}, forecast, never).front();
        EXPECT_EQ(removal.state, each.state) << each.removal;
        EXPECT_EQ(removal.reason, each.reason);
    }
}

TEST(Applications, OfSnapAreNotWaitedForByWhoeverStopsAtThePassword) {
    MadeUpMachine machine;
    const Descriptor silent = testing::silentSocket(machine.places.snapSocket);
    std::atomic<bool> stop{false};
    const std::jthread stopper([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        stop = true;
    });
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(SnapService(machine.places.snapSocket).remove("code", stop).words, "stopped");
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(5));
}

TEST(Applications, OfSnapAreFollowedThroughARestartOfTheService) {
    MadeUpMachine machine;
    std::optional<MadeUpSnapd> service;
    service.emplace(
        machine.places.snapSocket,
        MadeUpSnapd::Answers{{"POST /v2/snaps/code ", "HTTP/1.1 202 x\r\n\r\n{\"change\":\"7\"}"}});
    const std::jthread restarter([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        service.reset();
        std::filesystem::remove(machine.places.snapSocket);
        service.emplace(
            machine.places.snapSocket,
            MadeUpSnapd::Answers{
                {"GET /v2/changes/7 ",
                 "HTTP/1.1 200 x\r\n\r\n{\"result\":{\"ready\":true,\"status\":\"Done\"}}"}});
    });
    const std::atomic<bool> never{false};
    EXPECT_EQ(SnapService(machine.places.snapSocket).remove("code", never).words, "");
}

TEST(Applications, OfSnapAreTakenBackWhereTheServiceStillCan) {
    using State = ApplicationRemoval::State;
    const auto change = [](const std::string& fields) {
        return "HTTP/1.1 200 x\r\n\r\n{\"result\":{" + fields + "}}";
    };
    const std::string listed = "HTTP/1.1 200 x\r\n\r\n{\"result\":[{\"name\":\"code\"}]}";
    const std::string none = "HTTP/1.1 200 x\r\n\r\n{\"result\":[]}";
    const std::string done = change(R"("ready":true,"status":"Done")");
    const std::string tooLate = "The removal of code could not be stopped any more";
    struct Case {
        std::string abort, change, list;  // the answer, and how things stand behind it
        State state;
        std::string reason, note;
    };
    const Case cases[] = {
        {change(""), change(R"("ready":true,"status":"Undone")"), listed, State::Failed, "stopped",
         ""},
        {change(""), change(R"("ready":true,"status":"Error","err":"no way back")"), listed,
         State::Failed, "no way back", ""},
        {change(""), done, none, State::Gone, "", tooLate},
        {"HTTP/1.1 400 x\r\n\r\n{}", done, none, State::Gone, "", tooLate},
        {"HTTP/1.1 403 x\r\n\r\n{}", change(R"("ready":true,"status":"Error","err":"in use")"),
         listed, State::Failed, "in use", tooLate},
    };
    for (const Case& each : cases) {
        MadeUpMachine machine;
        std::atomic<bool> stop{false};
        const MadeUpSnapd service(
            machine.places.snapSocket,
            {{"POST /v2/snaps/code ", "HTTP/1.1 202 x\r\n\r\n{\"change\":\"7\"}"},
             {"POST /v2/changes/7 ", each.abort},
             {"GET /v2/changes/7 ", change(R"("ready":false,"status":"Doing")")},
             {"GET /v2/snaps ", listed}},
            {{"GET /v2/changes/7 ", each.change}, {"GET /v2/snaps ", each.list}}, &stop);
        ApplicationRecord code;
        code.id = code.name = "code";
        const LinuxApplications applications(machine.places);
        const ApplicationKind& kind = *applications.kind(ApplicationType::Snap);
        const ApplicationRemoval removal = kind.remove({code}, {}, stop).front();
        EXPECT_EQ(removal.state, each.state) << each.change;
        EXPECT_EQ(removal.reason, each.reason);
        EXPECT_EQ(removal.note, each.note);
    }
}

}  // namespace
}  // namespace orrinvale
