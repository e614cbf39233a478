// What the program tells of the machine: the fixed record, the report with names and without, and
// where the facts come from.
#include "engine/diagnostics/ComputerReport.h"
#include "engine/diagnostics/SysInfo.h"
#include "platform/fake/FakeVolumes.h"
#include "platform/linux/LinuxSystemValues.h"
#include "support/MadeUpSystem.h"
#include "support/test.h"

namespace orrinvale::testing {
namespace {

TEST(SysInfo, EachValueStaysInItsField) {
    MadeUpSystem system;
    for (auto& [name, value] : system.values)
        if (name != "hw.memsize") value = std::string(600, name.back());
    _SYS_INFO info;
    EXPECT_EQ(getSysInfo(&info, system), 0);
    EXPECT_EQ(fieldText(info.MachineType), std::string(20, 'e'));
    EXPECT_EQ(fieldText(info.Model), std::string(20, 'l'));
    EXPECT_EQ(fieldText(info.CpuVendor), std::string(512, 'r'));
    EXPECT_EQ(fieldText(info.CpuBrandString), std::string(512, 'g'));
    EXPECT_EQ(fieldText(info.OSType), std::string(20, 'e'));
    EXPECT_EQ(fieldText(info.OSVersion), std::string(10, 'e'));
    EXPECT_EQ(fieldText(info.Hostname), std::string(512, 'e'));
    EXPECT_TRUE(isFull(info.Hostname));
    EXPECT_EQ(info.TotalMem, 8ULL << 30U);
    // What is not told stays as it was, and the rest is read all the same.
    system.values = {{"kern.hostname", "desk"}, {"hw.memsize", "abc"}};
    _SYS_INFO poor;
    EXPECT_EQ(getSysInfo(&poor, system), ENOENT);
    EXPECT_EQ(fieldText(poor.Hostname), "desk");
    EXPECT_EQ(fieldText(poor.Model), "");
    EXPECT_EQ(poor.TotalMem, 0U) << "three bytes are no number";
    EXPECT_EQ(getSysInfo(nullptr, system), -1);
}

FakeVolumes annasVolumes() {
    constexpr std::uint64_t gigabyte = 1ULL << 30U;
    FakeVolumes volumes;
    volumes.volumes = {
        FakeVolumes::volume(1, "System", "/", false, 500 * gigabyte),
        FakeVolumes::volume(2, "Annas Fotos", "/run/media/anna/Annas Fotos", true, gigabyte - 1),
        FakeVolumes::volume(3, "empty", "/mnt/empty", false, 0),
        FakeVolumes::volume(4, "Kanzlei", "/srv/mandanten/Kanzlei", false, 4 * gigabyte),
        FakeVolumes::volume(5, "dead", "/mnt/dead", false, gigabyte)};
    volumes.volumes[1].parms.vMServerAdr = 0x1234abcd;
    volumes.volumes[3].parmsStatus = ioErr;
    volumes.volumes[4].infoStatus = ioErr;
    return volumes;
}

TEST(ComputerReport, HasTheMachineAndItsVolumes) {
    MadeUpSystem system;
    system.values.erase("hw.model");
    FakeVolumes volumes = annasVolumes();
    EXPECT_EQ(
        computerReport(system, volumes),
        (Strings{"hardware info", "machine: x86_64", "memsize: 8 GB", "cpu vendor: MadeUp",
                 "cpu type: MadeUp Core 9", "os type: Linux", "os version: 6.1.0-18-amd64",
                 "host name: annas-desk.example", " ", "volume list",
                 "volname=System,totalSpace:500 GB, freeSpace:250 GB, root=/", "default volume",
                 "vMDeviceID:vda,Attrib:0x0,ExtAttrib:0x0,Server:0x0",
                 ("volname=Annas Fotos,totalSpace:0 GB, freeSpace:0 GB, "
                  "root=/run/media/anna/Annas Fotos"),
                 "vMDeviceID:vda,Attrib:0x0,ExtAttrib:0x2000001,Server:0x1234abcd",
                 "volname=Kanzlei,totalSpace:4 GB, freeSpace:2 GB, root=/srv/mandanten/Kanzlei",
                 " "}));
    EXPECT_EQ(volumes.askedIndexes.size(), 6U) << "to the end";
}

TEST(ComputerReport, ForStrangersHasNoNames) {
    const MadeUpSystem system;
    FakeVolumes volumes = annasVolumes();
    const ReportNames names{"/home/anna", "anna", "annas-desk.example"};
    const Strings lines = computerReportWithoutNames(
        system, volumes, names,
        {"read /home/anna/x by anna on annas-desk", "annabel and joanna stay"});
    std::string all;
    for (const std::string& each : lines) all += each + '\n';
    for (const char* const secret : {"/home/anna", " anna ", "/anna/", "annas-desk", "Annas",
                                     "Fotos", "Kanzlei", "mandanten", "1234abcd", "System"})
        EXPECT_EQ(all.find(secret), std::string::npos) << secret << " in\n" << all;
    for (const char* const kept :
         {"read HOME/x by USER on HOST\n", "annabel and joanna stay\n", "host name: HOST\n",
          "root=/\n", "volname=VOLUME 2,", "root=/run/media/USER/VOLUME 2\n",
          "root=/srv/NAME/VOLUME 3\n", "Server:0x1\n", "model: Desk 7\n"})
        EXPECT_NE(all.find(kept), std::string::npos) << kept << " in\n" << all;
    // Names that are hardly any.
    EXPECT_EQ(withoutNames("a line at /", {"/", "", ""}), "a line at /");
    EXPECT_EQ(withoutNames("a a1 b-a Desk", {"", "A", "desk"}), "USER a1 b-USER HOST");
    const Strings called =
        computerReportWithoutNames(system, volumes, {"", "machine", "Linux"}, {});
    EXPECT_EQ(called[1] + called[6], "machine: x86_64os type: HOST") << "labels are nobody's names";
}

TEST(LinuxSystemValues, ReadsTheFilesOfTheKernel) {
    TestTree tree;
    utsname names{};
    std::strcpy(names.machine, "riscv64");
    std::strcpy(names.nodename, "board");
    const LinuxSystemValues values(tree.path(), names);
    const auto value = [&](const char* name) { return values.sysctlbyname(name).value_or("none"); };
    for (const char* const name : {"hw.model", "hw.memsize", "machdep.cpu.vendor",
                                   "machdep.cpu.brand_string", "kern.ostype", "hw.else"})
        EXPECT_EQ(value(name), "none") << name;
    EXPECT_EQ(value("hw.machine") + value("kern.hostname"), "riscv64board");
    ASSERT_TRUE(tree.write("proc/device-tree/model", std::string("Board 2\0", 8)) &&
                tree.write("proc/meminfo", "MemTotal: 8 kB\n") &&
                tree.write("proc/cpuinfo",
                           "processor\t: 0\nmodel\t\t: 85\nmodel name extra\t: no\n"
                           "vendor_id\t: First\nmodel name\t:  Core: 9 \n"
                           "vendor_id\t: Second\n"));
    EXPECT_EQ(value("hw.model"), "Board 2");
    ASSERT_TRUE(tree.write("sys/class/dmi/id/product_name", "Desk 7 \n"));
    EXPECT_EQ(value("hw.model"), "Desk 7");
    EXPECT_EQ(value("machdep.cpu.vendor"), "First");
    EXPECT_EQ(value("machdep.cpu.brand_string"), "Core: 9");
    EXPECT_EQ(numberIn(value("hw.memsize")), 8192U);
    const LinuxSystemValues own;
    EXPECT_EQ(own.sysctlbyname("kern.ostype").value_or(""), "Linux");
    EXPECT_GT(numberIn(own.sysctlbyname("hw.memsize").value_or("")), 1U << 20U);
}

}  // namespace
}  // namespace orrinvale::testing
