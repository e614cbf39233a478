// Volumes without a disk below them, on real mounts in a name space of their own: unmounted by the
// kernel or by the program that may, and who is in the way where they stay.
#include <sys/mman.h>
#include <sys/prctl.h>

#include "engine/volumes/VolumesManager.h"
#include "platform/linux/LinuxVolumes.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

std::int16_t numberOf(LinuxVolumes& volumes, const std::string& path) {
    std::int16_t number = -1;
    IndexedVolume volume;
    for (std::uint32_t index = 1; volumes.FSGetVolumeInfo(index, volume) != nsvErr; ++index)
        if (volume.rootPath == path) number = volume.refNumber;
    return number;
}

// Status, reason and the paths that are held, as one text.
std::string ejection(const std::string& path) {
    // Not asked for its space: a silent volume would keep the question, and that holds it.
    LinuxVolumes volumes({}, 10s, [](const SpaceQuestion&) {
        return SpaceAnswer{0, false, 1000, 500};
    });
    EjectDissent dissent;
    const std::int32_t status = volumes.FSEjectVolumeSync(numberOf(volumes, path), 0, dissent);
    std::string text = fmt::format("{}:{}", status, dissent.reason);
    for (const VolumeHolder& holder : dissent.holders)
        text += fmt::format(" [{} {}]", holder.name, holder.path);
    return text;
}

std::string difference(const std::string& found, const std::string& expected) {
    return found == expected ? "" : "found \"" + found + "\" instead of \"" + expected + "\"\n";
}

/// A process of that name that does something and then waits for its end.
pid_t holder(const char* name, const std::function<bool()>& hold) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return -1;
    const pid_t child = ::fork();
    if (child == 0) {
        ::prctl(PR_SET_NAME, name);
        (void)!::write(ends[1], hold() ? "y" : "n", 1);
        for (;;) ::pause();
    }
    char answer = 0;
    const bool holds = ::read(ends[0], &answer, 1) == 1 && answer == 'y';
    ::close(ends[0]);
    ::close(ends[1]);
    return holds ? child : -1;
}

void end(pid_t process) {
    ::kill(process, SIGKILL);
    ::waitpid(process, nullptr, 0);
}

bool mapsFile(const char* path) {
    const int file = ::open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (::ftruncate(file, 4096) != 0) return false;
    const bool isMapped = ::mmap(nullptr, 4096, PROT_READ, MAP_SHARED, file, 0) != MAP_FAILED;
    ::close(file);
    return isMapped;
}

TEST(MountedVolumes, EveryKindOfHolderIsNamedAndNobodyElse) {
    withOwnMounts([]() -> std::string {
        if (!mountRam("/mnt/ram") || !mountRam("/mnt/ramp")) return "no mounts";
        const std::vector<pid_t> holders{
            holder("in\na",
                   [] { return ::mkdir("/mnt/ram/f", 0777) == 0 && ::chdir("/mnt/ram/f") == 0; }),
            holder("opens", [] { return ::open("/mnt/ram/a\nb", O_WRONLY | O_CREAT, 0666) >= 0; }),
            holder("maps", [] { return mapsFile("/mnt/ram/mapped"); }),
            holder("neighbour", [] { return ::chdir("/mnt/ramp") == 0; }),
            // Opened before the volume was mounted over the folder: the path is the same, the
            // volume is not.
            holder("below",
                   [] {
                       return ::mkdir("/mnt/ramp/x", 0777) == 0 &&
                              ::open("/mnt/ramp/x", O_RDONLY | O_DIRECTORY) >= 0;
                   }),
        };
        if (std::count(holders.begin(), holders.end(), -1) != 0) return "no holders";
        std::string fault =
            difference(ejection("/mnt/ram"),
                       "-47:The volume is in use [in\na /mnt/ram/f] [opens /mnt/ram/a\nb] [maps "
                       "/mnt/ram/mapped]");
        for (std::size_t i = 0; i < 3; ++i) end(holders[i]);
        fault += difference(ejection("/mnt/ram"), "0:");
        fault += difference(ejection("/mnt/ram"), "-35:The volume is not mounted any more");

        if (::mount("over", "/mnt/ramp/x", "tmpfs", 0, "size=1m") != 0) return "no mount";
        const pid_t inside = holder("inside", [] { return ::chdir("/mnt/ramp/x") == 0; });
        fault +=
            difference(ejection("/mnt/ramp/x"), "-47:The volume is in use [inside /mnt/ramp/x]");
        fault +=
            difference(ejection("/mnt/ramp"), "-47:Another volume is mounted on it at /mnt/ramp/x");
        end(inside);
        return fault + difference(ejection("/mnt/ramp/x"), "0:");
    });
}

// A file system in user space whose program never reads a request. Gives the program's end.
int mountSilent(const char* folder, const char* type) {
    if (::mkdir(folder, 0777) != 0 && errno != EEXIST) return -1;
    const int program = ::open("/dev/fuse", O_RDWR | O_CLOEXEC);
    const std::string options =
        fmt::format("fd={},rootmode=40000,user_id=65534,group_id=65534", program);
    return ::mount("host:", folder, type, 0, options.c_str()) == 0 ? program : -1;
}

std::string asOrdinaryUser(const std::function<std::string()>& check) {
    return runInChild({.ordinaryUser = true}, check);
}

TEST(MountedVolumes, AnOrdinaryUserEjectsTheirOwnAndNothingElse) {
    withOwnMounts([]() -> std::string {
        if (!mountRam("/mnt/ram")) return "no mount";
        std::string fault = difference(asOrdinaryUser([] { return ejection("/mnt/ram"); }),
                                       "-36:Operation not permitted");
        fault += difference(ejection("/mnt/ram"), "0:");

        if (mountSilent("/mnt/own", "fuse.test") < 0)
            return fault.empty() ? "skip: no FUSE here" : fault;
        if (::access("/usr/bin/fusermount3", X_OK) != 0)
            return fault.empty() ? "skip: no fusermount3 here" : fault;
        fault += difference(asOrdinaryUser([] {
                                ::prctl(PR_SET_NAME, "user");
                                const int held = ::open("/mnt/own", O_PATH);
                                std::string text = ejection("/mnt/own");
                                ::close(held);
                                return text;
                            }),
                            "-47:The volume is in use [user /mnt/own]");
        fault += difference(asOrdinaryUser([] { return ejection("/mnt/own"); }), "0:");
        return fault + difference(ejection("/mnt/own"), "-35:The volume is not mounted any more");
    });
}

TEST(MountedVolumes, WhatTheSystemRunsFromIsRefused) {
    withOwnMounts([]() -> std::string {
        // What is made below it stays among the test's own mounts.
        if (!mountRam("/var/lib")) return "skip: no tmpfs";
        if (mountSilent("/srv", "fuse.sshfs") < 0 ||
            mountSilent("/var/lib/silent", "fuse.sshfs") < 0)
            return "skip: no FUSE here";
        std::string fault = difference(
            ejection("/srv"), "-36:The system runs from this drive: it is mounted on /srv");
        fault +=
            difference(ejection("/var/lib/silent"),
                       "-36:The system runs from this drive: it is mounted on /var/lib/silent");
        return fault;
    });
}

}  // namespace
}  // namespace orrinvale::testing
