// Any bytes as the files that a look at a machine's applications reads: dpkg's list of packages and
// of a package's files, an administrator's flatpaks, what a flatpak brings, accounts of processes.
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>

#include "fuzz/fuzz.h"
#include "platform/linux/DpkgDatabase.h"
#include "platform/linux/LinuxApplications.h"
#include "platform/paths.h"

namespace {

using namespace orrinvale;

// Files in memory, the same for every input.
class Machine final {
public:
    Machine() {
        std::string base = "/dev/shm/orrinvale-fuzz-XXXXXX";
        require(::mkdtemp(base.data()) != nullptr);
        m_base = base;
        for (const char* const folder :
             {"dpkg/info", "dpkg/updates", "proc/1", "proc/2", "run/.flatpak/2", active, "bin"})
            std::filesystem::create_directories(at(folder));
        std::filesystem::create_symlink("abc", at("flatpak/app/org.a.B/x/stable/active"));
        write("bin/tool", "x");
        places.home = at("home");
        places.dataHome = at("home/.local/share");
        places.dataFolders = {places.dataHome};
        places.programFolders = {at("bin")};
        places.dpkg = at("dpkg");
        places.flatpaks = {at("flatpak")};
        places.flatpakInstances = at("run/.flatpak");
        places.snapSocket = at("no-socket");
        places.snapFolder = at("snap");
        places.processes = at("proc");
    }
    ~Machine() { std::filesystem::remove_all(m_base); }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    void write(const std::string& name, std::string_view text) const {
        std::ofstream(at(name), std::ios::binary) << text;
    }
    [[nodiscard]] std::string at(const std::string& name) const { return m_base + '/' + name; }

    static constexpr const char* active = "flatpak/app/org.a.B/x/stable/abc/files/share/metainfo";
    ApplicationPlaces places;

private:
    std::string m_base;
};

void checkPackages(const Machine& machine) {
    const DpkgDatabase database(machine.places.dpkg);
    const std::vector<std::string> paths{"/usr/bin/tool", "/"};
    require(database.ownersOf(paths).size() == paths.size());
    require(database.ownersWithin(paths).size() == paths.size());
    for (const DpkgPackage& each : database.packages()) {
        require(!each.name.empty() && each.name.find_first_of("/;:\n ") == std::string_view::npos);
        require(database.takenAlongBy(each).size() < database.packages().size());
        for (const std::string& file : database.conffilesOf(each)) require(!file.empty());
        static_cast<void>(database.filesOf(each));
    }
}

}  // namespace

void checkAny(std::string_view text) {
    static const Machine machine;
    const std::string own(text);
    for (const std::string& each : installationsIn("Path=" + own))
        require(each.starts_with('/') && each.find('\n') == std::string::npos);
    for (const std::string& each : languagesOf(own)) require(each.size() <= own.size());
    machine.write("dpkg/status", "Package: tool\nStatus: install ok installed\nDepends: " + own +
                                     "\n\nPackage: " + own + "\nStatus: install ok installed\n" +
                                     own);
    machine.write("dpkg/info/tool.list", own);
    machine.write(Machine::active + std::string("/org.a.B.metainfo.xml"), "<release " + own);
    machine.write("proc/2/stat", "2 (" + own);
    machine.write("proc/2/cmdline", own);
    machine.write("run/.flatpak/2/info", "[Application]\nname=" + own);
    machine.write("run/.flatpak/2/pid", own);
    checkPackages(machine);
    const LinuxApplications applications(machine.places);
    const auto records = applications.list();
    std::vector<const ApplicationRecord*> asked;
    for (const ApplicationRecord& each : records) {
        require(!each.name.empty() && each.version.size() <= own.size() + 1);
        asked.push_back(&each);
    }
    require(applications.running(asked).size() == asked.size());
}
