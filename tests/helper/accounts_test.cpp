// Which groups may write the folders on the way: in a world whose users and groups the test
// chooses.
#include <sys/xattr.h>

#include "helper/HelperRun.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

using Outcome = HelperReply::Outcome;

constexpr uid_t kCaller = 1000;

constexpr const char* kUsers =
    "root:x:0:0::/root:/bin/sh\n"
    "daemon:x:1:1::/:/bin/false\n"
    "syslog:x:104:111::/:/bin/false\n"
    "nobody:x:65534:65534::/:/bin/false\n"
    "anna:x:1000:1000::/srv/anna:/bin/sh\n"
    "bert:x:1001:1005::/srv/bert:/bin/sh\n"
    "ldap:x:70000:1007::/srv/ldap:/bin/sh\n";

constexpr const char* kGroups =
    "root:x:0:\n"
    "adm:x:4:syslog\n"
    "syslog:x:111:\n"
    "anna:x:1000:\n"
    "family:x:1002:anna,bert\n"
    "alone:x:1003:anna,root,nobody\n"
    "left:x:1004:carla\n"
    "bert:x:1005:\n"
    "open:$6$salt$hash:1006:anna\n"
    "far:x:1007:\n"
    "shadowed:x:1008:anna\n";

constexpr const char* kShadow = "shadowed:$6$salt$hash::anna\nanna:!::\n";

class Accounts : public ::testing::Test {
protected:
    // In a table of mounts of its own, where these files stand in the places of the machine's.
    std::string inThisWorld(const std::function<std::string()>& check) {
        tree.write("passwd", kUsers);
        tree.write("group", kGroups);
        tree.write("gshadow", kShadow);
        tree.write("nsswitch.conf",
                   "passwd: files systemd\ngroup: files [SUCCESS=merge] systemd\nshadow: files\n");
        return runInChild({}, [&]() -> std::string {
            if (!unshareMounts()) return "skipped: no mounts of our own";
            for (const std::string name : {"passwd", "group", "gshadow", "nsswitch.conf"})
                if (!bindMount(tree.at(name), "/etc/" + name))
                    return "skipped: nothing to cover for " + name;
            return check();
        });
    }

    // What the helper says of a file in a folder of this group; it must have done as it says.
    std::string answerFor(gid_t group, mode_t mode = 0775) {
        tree.write("way/below/victim", "1");
        const std::string victim = tree.at("way/below/victim");
        if (::chown(tree.at("way").c_str(), kCaller, group) != 0 ||
            ::chmod(tree.at("way").c_str(), mode) != 0)
            return "no folder";
        const HelperReply reply = HelperRun(kCaller).ask(victim);
        if (isThere(victim) == (reply.outcome == Outcome::Removed)) return "it did something else";
        return reply.outcome == Outcome::Removed ? "removed" : reply.text;
    }

    TestTree tree;
};

const std::string kByOthers = "a folder on the way may be written by others";

TEST_F(Accounts, DecideWhichGroupsMayWriteAFolderOnTheWay) {
    struct Case {
        const char* what;
        gid_t group;
        bool isTaken;
    };
    const auto check = [&] {
        std::string wrong;
        for (const Case& each : {Case{"the caller's own", 1000, true},
                                 {"root's", 0, true},
                                 {"a service's", 111, true},
                                 {"with a service in it", 4, true},
                                 {"with the caller, root and nobody in it", 1003, true},
                                 {"with another person in it", 1002, false},
                                 {"another person's first", 1005, false},
                                 {"the first of somebody of a directory", 1007, false},
                                 {"with somebody in it whom nobody knows", 1004, false},
                                 {"joined by a password", 1006, false},
                                 {"joined by a password elsewhere", 1008, false},
                                 {"without a name", 4242, false}}) {
            const std::string answer = answerFor(each.group);
            if (answer != (each.isTaken ? "removed" : kByOthers))
                wrong += std::string(each.what) + ": " + answer + '\n';
        }
        if (const std::string answer = answerFor(1000, 0777); answer != kByOthers)
            wrong += "by all: " + answer;
        if (const std::string answer = answerFor(1002, 01775); answer != "removed")
            wrong += "sticky: " + answer;
        return wrong;
    };
    EXPECT_TOLD(inThisWorld(check), "");
}

TEST_F(Accounts, OfADirectoryNeedNotBeListed) {
    const auto check = [&] {
        std::string wrong;
        for (const char* line : {"passwd: files sss", "group: files ldap", "initgroups: winbind",
                                 "\tgroup:\tnis # x"}) {
            tree.write("nsswitch.conf", std::string("passwd: files\ngroup: files\n") + line + '\n');
            if (const std::string answer = answerFor(1000); answer != kByOthers)
                wrong += std::string(line) + ": " + answer + '\n';
        }
        tree.write("nsswitch.conf", "# passwd: sss\nhosts: dns\n");
        if (const std::string answer = answerFor(1000); answer != "removed")
            wrong += "by default: " + answer;
        return wrong;
    };
    EXPECT_TOLD(inThisWorld(check), "");
}

TEST_F(Accounts, DoNotCountWhereAnAccessListStands) {
    ASSERT_TRUE(tree.folder("way"));
    // acl(5): version 2; owner rwx, user 12345 rwx, group r-x, mask rwx, others r-x.
    constexpr std::array<unsigned char, 44> list{
        2, 0,  0,    0,    1,    0,    7,    0, 0xFF, 0xFF, 0xFF, 0xFF, 2,    0,    7,
        0, 57, 48,   0,    0,    4,    0,    5, 0,    0xFF, 0xFF, 0xFF, 0xFF, 0x10, 0,
        7, 0,  0xFF, 0xFF, 0xFF, 0xFF, 0x20, 0, 5,    0,    0xFF, 0xFF, 0xFF, 0xFF};
    const auto check = [&]() -> std::string {
        if (const std::string answer = answerFor(1000); answer != "removed")
            return "without one: " + answer;
        if (::setxattr(tree.at("way").c_str(), "system.posix_acl_access", list.data(), list.size(),
                       0) != 0)
            return "skipped: no access lists here";
        tree.write("way/below/victim", "1");
        const HelperReply reply = HelperRun(kCaller).ask(tree.at("way/below/victim"));
        return reply.outcome == Outcome::Removed ? "removed through it" : reply.text;
    };
    EXPECT_TOLD(inThisWorld(check), kByOthers);
}

}  // namespace
}  // namespace orrinvale::testing
