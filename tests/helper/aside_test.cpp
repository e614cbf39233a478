// What the helper sets aside before its tool runs: looked at again there, given its name back, and
// found again by the next start.
#include <cstdio>

#include "engine/files/asideName.h"
#include "helper/HelperRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Outcome = HelperReply::Outcome;

constexpr const char* kJournals = "/var/lib/orrinvale";

// How many entries stand aside in this folder and below.
std::size_t asideBelow(const std::string& folder) {
    std::size_t count = 0;
    for (const auto& each : std::filesystem::recursive_directory_iterator(folder))
        if (isAsideName(each.path().filename().string())) ++count;
    return count;
}

// Whoever ends the helper ends its tool, but not in the middle of a call.
bool isLeftAlone(const std::string& folder) {
    for (int tries = 0; tries < 5000; ++tries, ::usleep(1000)) {
        bool isAlone = true;
        for (const auto& process : std::filesystem::directory_iterator("/proc")) {
            std::error_code none;
            const auto place = std::filesystem::read_symlink(process.path() / "cwd", none);
            isAlone = isAlone && !place.string().starts_with(folder);
        }
        if (isAlone) return true;
    }
    return false;
}

HelperRequest requestFor(const std::string& goes, const std::string& stays) {
    HelperRequest request = HelperRun::requestFor(goes);
    if (!stays.empty()) request.stays = HelperRun::requestFor(stays).entry;
    return request;
}

// As root in a table of mounts of its own, where nothing of the machine's is in /var/lib.
void inOwnWorld(const std::function<std::string()>& check) {
    withOwnMounts([&] { return mountRam("/var/lib") ? check() : "skip: no memory for /var/lib"; });
}

// In place of the tool: does this first, where its caller is, then works.
bool letToolDoFirst(TestTree& tree, const std::string& script) {
    std::filesystem::copy_file("/bin/rm", tree.at("real rm"));
    return tree.write("rm",
                      "#!/bin/sh\n" + script + "\nexec '" + tree.at("real rm") + "' \"$@\"\n") &&
           tree.setMode("rm", 0755) && bindMount(tree.at("rm"), "/bin/rm");
}

TEST(HelperSetsAside, AndLooksAtWhatStaysAgain) {
    inOwnWorld([]() -> std::string {
        struct Case {
            const char* what;
            const char* goes;
            const char* stays;
            std::function<void(TestTree&)> meanwhile;
            bool isTaken;
        };
        const auto nothing = [](TestTree&) {};
        const Case cases[]{
            {"a copy that stands", "one/a", "two/a", nothing, true},
            {"a copy in the same folder", "one/a", "one/b", nothing, true},
            {"another name of the file", "one/a", "two/link", nothing, true},
            {"a folder's copy", "one/folder", "two/folder", nothing, true},
            {"no copy named", "one/a", "", nothing, true},
            {"the copy is gone", "one/a", "two/a",
             [](TestTree& t) { ::unlink(t.at("two/a").c_str()); }, false},
            {"the copy was written to", "one/a", "two/a",
             [](TestTree& t) { t.write("two/a", "other"); }, false},
            {"the entry was written to", "one/a", "two/a",
             [](TestTree& t) { t.write("one/a", "other"); }, false},
            {"the entry itself", "one/a", "one/a", nothing, false},
            {"the entry by a second view of its folder", "one/a", "view/a", nothing, false},
            {"a folder by a second view", "one/folder", "view/folder", nothing, false},
            {"a part of what goes", "one/folder", "one/folder/x", nothing, false},
        };
        std::string wrong;
        for (const Case& each : cases) {
            TestTree tree;
            for (const char* name : {"one/a", "one/b", "two/a", "one/folder/x", "two/folder/x"})
                tree.write(name, "1");
            tree.folder("view");
            tree.hardLink("one/a", "two/link");
            if (!bindMount(tree.at("one"), tree.at("view"))) return "skip: no second view";
            const std::string stays = *each.stays == '\0' ? "" : tree.at(each.stays);
            const HelperRequest request = requestFor(tree.at(each.goes), stays);
            each.meanwhile(tree);
            const HelperReply reply = HelperRun().ask(request);
            const bool isThereStill = isThere(tree.at(each.goes));
            if (reply.outcome != (each.isTaken ? Outcome::Removed : Outcome::Refused) ||
                isThereStill == each.isTaken || asideBelow(tree.path()) != 0)
                wrong += std::string(each.what) + ": " + reply.text + '\n';
            ::umount(tree.at("view").c_str());
        }
        return isThere(kJournals) ? wrong + "a journal is left" : wrong;
    });
}

// The name that it had is anybody's while it is aside.
TEST(HelperSetsAside, SoThatWhatComesInItsPlaceStays) {
    inOwnWorld([]() -> std::string {
        TestTree tree;
        tree.write("folder/a", "1");
        if (!letToolDoFirst(tree, "echo new > '" + tree.at("folder/a") + "'"))
            return "skip: no tool of our own";
        const HelperReply reply = HelperRun().ask(tree.at("folder/a"));
        if (contentOf(tree.at("folder/a")) != "new\n")
            return "what came in its place went: " + reply.text;
        if (asideBelow(tree.path()) != 0) return "it is aside";
        return reply.outcome == Outcome::StillThere ? "" : "told as another outcome: " + reply.text;
    });
}

// By the end of its caller and by SIGTERM, with a tool that would take minutes and one that takes
// no notice.
TEST(HelperSetsAside, AndPutsBackBeforeItEnds) {
    for (const bool isBySignal : {false, true}) {
        for (const char* tool : {"sleep 60", "trap '' TERM; sleep 60"}) {
            inOwnWorld([&]() -> std::string {
                TestTree tree;
                tree.write("one/folder/x", "1");
                tree.write("two/folder/x", "1");
                if (!letToolDoFirst(tree, "touch '" + tree.at("begun") + "'; " + tool))
                    return "skip: no tool";
                HelperRun helper;
                helper.send(requestFor(tree.at("one/folder"), tree.at("two/folder")).packed());
                for (int i = 0; i < 5000 && !isThere(tree.at("begun")); ++i) ::usleep(1000);
                if (asideBelow(tree.path()) != 1) return "it is not aside";
                if (isBySignal) ::kill(helper.process(), SIGTERM);
                else helper.letGo();
                if (!helper.endsWithin(milliseconds(4000))) return "the helper does not end";
                if (!isThere(tree.at("one/folder/x")) || asideBelow(tree.path()) != 0)
                    return "it is not back";
                return isThere(kJournals) ? "a journal is left" : "";
            });
        }
    }
}

TEST(HelperSetsAside, AndTheNextStartBringsBackWhatAKilledOneLeft) {
    inOwnWorld([]() -> std::string {
        constexpr int rounds = 60;
        int foundAside = 0;
        int lateStarts = 0;
        for (int round = 0; round < rounds; ++round) {
            TestTree tree("/mnt");
            const bool isFolder = round % 2 == 0;
            for (int i = 0; i < (isFolder ? 1500 : 1); ++i)
                for (const char* copy : {"one", "two"})
                    tree.write(
                        copy + (isFolder ? "/copy/" + std::to_string(i) : std::string("/copy")),
                        "1");
            {
                HelperRun helper;
                helper.send(requestFor(tree.at("one/copy"), tree.at("two/copy")).packed());
                const pid_t worker = childOf(helper.process());
                ::usleep(static_cast<unsigned>(round) * 150);
                ::kill(helper.process(), SIGKILL);
                if (!helper.endsWithin(milliseconds(2000)) ||
                    !isGoneWithin(worker, milliseconds(5000)) || !isLeftAlone(tree.path()))
                    return "alive";
            }
            const bool wasAside = asideBelow(tree.path()) > 0;
            foundAside += wasAside ? 1 : 0;
            // Under load the killed one's tool is still ending, and holds the journal: a start that
            // comes so early leaves it to the next one.
            int starts = 0;
            do {
                if (starts++ == 20)
                    return (isThere(kJournals) ? "a journal" : "aside") +
                           (" after the next starts, round " + std::to_string(round));
                if (starts > 1) ::usleep(50'000);
                if (!HelperRun().isReady()) return "no next start";
            } while (asideBelow(tree.path()) != 0 || isThere(kJournals));
            lateStarts += starts > 1 ? 1 : 0;
            if (wasAside && !isThere(tree.at("one/copy")))
                return "lost in round " + std::to_string(round);
        }
        std::printf("[          ] %d of %d kills found it aside, %d a second start\n", foundAside,
                    rounds, lateStarts);
        std::fflush(stdout);
        return foundAside >= 10 ? "" : "killed aside only " + std::to_string(foundAside) + " times";
    });
}

// Root does what stands in a journal, so that nobody else may have written it; and without one
// removals go on.
TEST(HelperSetsAside, NothingWhereItsJournalCanNotBeTrusted) {
    inOwnWorld([]() -> std::string {
        struct Case {
            const char* what;
            std::function<void(TestTree&)> prepare;
        };
        const auto planted = [](TestTree& tree) {
            const std::string aside = "planted/orrinvale kept aside 0123456789abcdef name";
            tree.write(aside, "1");
            struct stat seen {};
            ::stat(tree.at(aside).c_str(), &seen);
            tree.write("elsewhere/x.aside",
                       fmt::format("orrinvale aside 1\n0123456789abcdef {} {} 1 {}\n", seen.st_dev,
                                   seen.st_ino, tree.at("planted/name")));
            return tree.at("elsewhere");
        };
        const Case cases[]{
            {"a link", [&](TestTree& tree) { (void)!::symlink(planted(tree).c_str(), kJournals); }},
            {"another user's",
             [&](TestTree& tree) {
                 std::filesystem::copy(planted(tree), kJournals);
                 (void)!::chown(kJournals, ordinaryUser, ordinaryUser);
             }},
            {"writable by others",
             [&](TestTree& tree) {
                 std::filesystem::copy(planted(tree), kJournals);
                 ::chmod(kJournals, 0777);
             }},
            {"a file", [&](TestTree&) { std::filesystem::copy_file("/etc/hostname", kJournals); }},
            {"a full disk",
             [&](TestTree&) {
                 ::mkdir(kJournals, 0700);
                 ::mount("none", kJournals, "tmpfs", 0, "size=4096,nr_inodes=1");
             }},
            {"no room in the journal",
             [&](TestTree&) {
                 ::mkdir(kJournals, 0700);
                 ::mount("none", kJournals, "tmpfs", 0, "size=4096");
                 std::ofstream(std::string(kJournals) + "/filler") << std::string(4096, 'x');
             }},
            {"read only",
             [&](TestTree&) {
                 ::mount("none", "/var/lib", nullptr, MS_REMOUNT | MS_RDONLY, nullptr);
             }},
        };
        std::string wrong;
        for (const Case& each : cases) {
            TestTree tree;
            tree.write("a", "1");
            each.prepare(tree);
            const HelperReply reply = HelperRun().ask(tree.at("a"));
            if (reply.outcome != Outcome::Removed || isThere(tree.at("a")))
                wrong += std::string(each.what) + ": " + reply.text + '\n';
            if (isThere(tree.at("planted/name")))
                wrong += std::string(each.what) + ": did what was planted\n";
            ::umount(kJournals);
            ::mount("none", "/var/lib", nullptr, MS_REMOUNT, nullptr);
            std::filesystem::remove_all(kJournals);
        }
        return wrong;
    });
}

// Of journals in their right place: what is no record in them is left out, and two helpers at once
// leave each other's alone.
TEST(HelperSetsAside, AndReadsItsJournalsWithCare) {
    inOwnWorld([]() -> std::string {
        TestTree tree;
        ::mkdir(kJournals, 0700);
        std::filesystem::copy_file("/bin/rm", std::string(kJournals) + "/garbage.aside");
        ::chmod((std::string(kJournals) + "/garbage.aside").c_str(), 0600);
        ::mkfifo((std::string(kJournals) + "/pipe.aside").c_str(), 0600);
        for (const char* name : {"a", "b", "c"}) tree.write(name, "1");
        const HelperRun first;
        const HelperRun second;
        if (!first.isReady() || !second.isReady()) return "a pipe holds it up";
        for (int i = 0; i < 2; ++i)
            for (const auto& [helper, name] : {std::pair{&first, "a"}, {&second, "b"}}) {
                tree.write(name, "1");
                if (const auto reply = helper->ask(tree.at(name));
                    reply.outcome != Outcome::Removed)
                    return reply.text;
            }
        return {};
    });
}

}  // namespace
}  // namespace orrinvale::testing
