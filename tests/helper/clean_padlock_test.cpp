// The padlock of the cleaning page through the real polkit: what of the system's caches stays
// without the right, goes with it, and stays once it is lost in the middle.
#include "engine/cleaning/CleanHome.h"
#include "engine/cleaning/QnAuthorization.h"
#include "engine/cleaning/ScanViewController.h"
#include "helper/PolkitWorld.h"
#include "platform/fake/MadeUpFolders.h"
#include "platform/linux/LinuxAuthorization.h"
#include "platform/linux/LinuxPermissions.h"
#include "support/ServedQueue.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

/// The list of System Caches of an ordinary user, over files of root.
struct SystemCaches {
    SystemCaches(CleanHome& home, const std::string& helper)
        : system({"/usr/bin/pkexec", helper}),
          folders(home.folders, home.tree.path()),
          utilities(home.files, folders, [] { return std::vector<std::string>(); }),
          list(partsOver(home)) {
        QnAuthorization::shareQnAuthorization().setParts({&system, &home.files, &permissions, {}});
    }
    ~SystemCaches() { QnAuthorization::shareQnAuthorization().freeAuthorization(); }

    ScanViewParts partsOver(CleanHome& home) {
        ScanViewParts parts;
        parts.clean = home.parts();
        parts.clean.folders = &folders;
        parts.clean.utilities = &utilities;
        parts.notifications = &center;
        parts.mainQueue = &queue;
        parts.makeDoor = [] { return QnAuthorization::makeDoorForFiles(); };
        return parts;
    }
    /// Scans, ticks all and cleans: "gone of rows, why".
    std::string clean() {
        list.beginScanTask(utilities.getFolderPath(0));
        if (!queue.serveUntil([this] { return !list.isScanning(); })) return "no scan";
        const std::size_t rows = list.scanFiles->size();
        list.setAllCheckBoxSelect();
        list.beginCleanTask();
        if (!queue.serveUntil([this] { return !list.isCleaning(); })) return "no clean";
        return fmt::format("{} of {}{}\n", rows - list.scanFiles->size(), rows,
                           list.lastOutcome()->lacksRights ? ", rights" : "");
    }

    LinuxAuthorization system;
    LinuxPermissions permissions;
    MadeUpFolders folders;
    FolderUtilities utilities;
    NotificationCenter center;
    ServedQueue queue;
    ScanViewController list;
};

// As the ordinary user.
std::string cleaned(CleanHome& home, const std::string& guarded, const std::string& free) {
    std::string told;
    QnAuthorization& padlock = QnAuthorization::shareQnAuthorization();
    {
        SystemCaches caches(home, guarded);
        told += caches.clean();
        told += padlock.allocAuthorization() ? "open without a password\n" : "refused\n";
        told += caches.clean();
    }
    SystemCaches caches(home, free);
    if (!padlock.allocAuthorization()) return told + "not opened: " + padlock.refusalText();
    // The right goes with the second of three files.
    int looks = 0;
    home.files.beforeRemoval = [&](std::string_view operation) {
        if (operation == "removeEntry" && ++looks == 2) padlock.freeAuthorization();
    };
    told += caches.clean();
    home.files.beforeRemoval = {};
    if (!padlock.allocAuthorization()) return told + "not opened again: " + padlock.refusalText();
    return told + caches.clean();
}

TEST(CleanPadlock, TheSystemsCachesGoWithTheRightAlone) {
    const std::string outcome = runInChild({}, []() -> std::string {
        PolkitWorld world;
        if (!world.obstacle().empty()) return "skip: " + world.obstacle();
        const std::string free = world.addHelper("free", "yes");
        const std::string guarded = world.addHelper("guarded", "auth_admin");
        CleanHome home;
        for (const char* name : {"sys/cache/a.bin", "sys/cache/b.bin", "sys/cache/fonts/c.bin"})
            home.tree.write(name, std::string(1000, 'x'));
        if (!world.begin()) return "the services did not start";
        std::string told =
            runInChild({.ordinaryUser = true}, [&] { return cleaned(home, guarded, free); });
        if (!isThere(home.tree.at("sys/cache/fonts"))) told += "the folder went\n";
        return told;
    });
    if (outcome.starts_with("skip: ")) GTEST_SKIP() << outcome.substr(6);
    EXPECT_EQ(outcome, "0 of 3, rights\nrefused\n0 of 3, rights\n1 of 3, rights\n2 of 2\n");
}

}  // namespace
}  // namespace orrinvale::testing
