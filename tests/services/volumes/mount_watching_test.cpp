// Real mounts in a name space of the test's own, heard through the program's notices.
#include <QCoreApplication>

#include "platform/linux/LinuxMountChanges.h"
#include "services/volumes/WatchMountUnmount.h"
#include "services/volumes/WorkspaceMounts.h"
#include "support/EventLoop.h"
#include "support/test.h"

namespace orrinvale {
namespace {

std::string textAt(const UserInfo& info, const char* key) {
    const auto found = info.find(key);
    const auto* const text =
        found == info.end() ? nullptr : std::any_cast<std::string>(&found->second);
    return text == nullptr ? "nothing" : *text;
}

// Counts the looks: one at a table that has not changed is a loop that never rests.
class CountedChanges final : public MountChanges {
public:
    [[nodiscard]] int descriptor() const override { return m_real.descriptor(); }
    [[nodiscard]] std::vector<MountChange> look() override {
        ++looks;
        return m_real.look();
    }
    int looks = 0;

private:
    LinuxMountChanges m_real;
};

// Everything from the table to the program's notices; what was heard is a line of text.
class Watched {
public:
    Watched() {
        const auto hear = [this](const char* sign) {
            return [this, sign](const Notification& notice) {
                const auto* const sender = std::any_cast<WatchMountUnmount*>(&notice.object);
                if (sender == nullptr || *sender != &watcher) heard += "from somebody else;";
                heard += sign + textAt(notice.userInfo, NSWorkspaceVolumeLocalizedNameKey) + ' ' +
                         textAt(notice.userInfo, NSDevicePath) + ';';
            };
        };
        m_mounted = m_standard.addObserver("ZvVolumeMount", hear("+"));
        m_unmounted = m_standard.addObserver("ZvVolumeUnmount", hear("-"));
    }

    // Waits until as much has been heard, for a second at most; says what differs, and when it came
    // late.
    std::string expect(const std::string& expected) {
        const auto start = Clock::now();
        testing::serveUntil([&] { return heard.size() >= expected.size(); }, 1);
        const auto took = Clock::now() - start;
        QCoreApplication::processEvents();
        std::string fault;
        if (heard != expected)
            fault = fmt::format("heard \"{}\" instead of \"{}\"\n", heard, expected);
        if (took > 100ms) fault += fmt::format("after {} ms\n", took / 1ms);
        heard.clear();
        return fault;
    }

    // How often the table is looked at while nothing happens.
    int looksAtRest() {
        const int before = m_changes.looks;
        for (int i = 0; i < 100; ++i) QCoreApplication::processEvents();
        return m_changes.looks - before;
    }

    std::string heard;

private:
    CountedChanges m_changes;
    WorkspaceMounts m_workspace{m_changes};
    NotificationCenter m_standard;
    WatchMountUnmount watcher{m_workspace.notificationCenter(), m_standard};
    NotificationCenter::Observation m_mounted;
    NotificationCenter::Observation m_unmounted;
};

TEST(MountWatching, EachVolumeThatComesOrGoesIsToldAtOnce) {
    testing::withOwnMounts([]() -> std::string {
        Watched watched;
        std::string fault = watched.expect("");
        if (!testing::mountRam("/mnt/one")) return "no mount";
        fault += watched.expect("+one /mnt/one;");
        if (!testing::mountRam("/mnt/two") || !testing::mountRam("/mnt/line\nbreak"))
            return "no mounts";
        fault += watched.expect("+two /mnt/two;+line\nbreak /mnt/line\nbreak;");
        ::umount("/mnt/two");
        fault += watched.expect("-two /mnt/two;");

        // Nothing that people call a volume: a process's own place, a bind, another option.
        ::mkdir("/mnt/bind", 0755);
        if (::mount("none", "/dev/shm", "tmpfs", 0, nullptr) != 0 &&
            ::mount("none", "/tmp", "tmpfs", 0, nullptr) != 0)
            return "no mount that is no volume";
        ::mount("/mnt/one", "/mnt/bind", nullptr, MS_BIND, nullptr);
        ::mount(nullptr, "/mnt/one", nullptr, MS_REMOUNT | MS_RDONLY, nullptr);
        if (!testing::mountRam("/mnt/last")) return "no mount";
        fault += watched.expect("+last /mnt/last;");
        ::umount("/mnt/bind");
        ::umount("/mnt/one");
        ::umount("/mnt/line\nbreak");
        fault += watched.expect("-one /mnt/one;-line\nbreak /mnt/line\nbreak;");
        if (const int looks = watched.looksAtRest(); looks != 0)
            fault += fmt::format("{} looks at nothing\n", looks);
        return fault;
    });
}

TEST(MountWatching, ATableThatCanNotBeWatchedIsLogged) {
    const testing::LogLines log;
    LinuxMountChanges changes({"/nothing/here", "/sys", "/run/udev"});
    const WorkspaceMounts workspace(changes);
    ASSERT_EQ(log.lines.size(), 1U);
    EXPECT_NE(log.lines[0].find("can not be watched"), std::string::npos);
}

}  // namespace
}  // namespace orrinvale
