// Names are replaced in what the lines are made of, so that what the report calls things stays.
#include "engine/diagnostics/ComputerReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <string_view>

#include "engine/diagnostics/SysInfo.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

struct HardwareLine {
    const char* name;
    const char* label;
};

constexpr const char* memorySizeName = "hw.memsize";

constexpr std::array<HardwareLine, 8> hardwareLines{{{"hw.machine", "machine"},
                                                     {"hw.model", "model"},
                                                     {memorySizeName, "memsize"},
                                                     {"machdep.cpu.vendor", "cpu vendor"},
                                                     {"machdep.cpu.brand_string", "cpu type"},
                                                     {"kern.ostype", "os type"},
                                                     {"kern.osrelease", "os version"},
                                                     {"kern.hostname", "host name"}}};

// In places of volumes; anything else may be somebody's name.
constexpr std::array commonFolders{"boot", "efi", "home", "media", "mnt", "opt", "root", "run",
                                   "snap", "srv", "tmp",  "usr",   "var", "log", "lib"};

std::uint64_t wholeGigabytes(std::uint64_t bytes) { return bytes >> 30U; }

void addHardware(std::vector<std::string>& lines, const SystemValues& system) {
    lines.emplace_back("hardware info");
    for (const HardwareLine& each : hardwareLines) {
        const auto value = system.sysctlbyname(each.name);
        if (!value) continue;
        lines.push_back(each.name == memorySizeName
                            ? fmt::format("{}: {} GB", each.label, wholeGigabytes(numberIn(*value)))
                            : fmt::format("{}: {}", each.label, *value));
    }
}

using Disguise = std::function<void(IndexedVolume&, GetVolParmsInfoBuffer&)>;

// Here no volume has attributes beside the extended ones.
void addVolume(std::vector<std::string>& lines, const IndexedVolume& volume,
               const GetVolParmsInfoBuffer* parms) {
    lines.push_back(fmt::format("volname={},totalSpace:{} GB, freeSpace:{} GB, root={}",
                                volume.name, wholeGigabytes(volume.info.totalBytes),
                                wholeGigabytes(volume.info.freeBytes), volume.rootPath));
    if (volume.rootPath == "/") lines.emplace_back("default volume");
    if (parms != nullptr)
        lines.push_back(fmt::format("vMDeviceID:{},Attrib:0x{:x},ExtAttrib:0x{:x},Server:0x{:x}",
                                    parms->vMDeviceID, 0, parms->vMExtendedAttributes,
                                    parms->vMServerAdr));
}

void addVolumes(std::vector<std::string>& lines, Volumes& volumes, const Disguise& disguise) {
    lines.emplace_back(" ");
    lines.emplace_back("volume list");
    std::int32_t status = noErr;
    for (std::uint32_t index = 1; status != nsvErr; ++index) {
        IndexedVolume volume;
        status = volumes.FSGetVolumeInfo(index, volume);
        if (status != noErr || volume.info.totalBytes == 0) continue;
        GetVolParmsInfoBuffer parms;
        status = volumes.FSGetVolumeParms(volume.refNumber, parms);
        if (disguise) disguise(volume, parms);
        addVolume(lines, volume, status == noErr ? &parms : nullptr);
    }
    lines.emplace_back(" ");
}

bool isCommon(std::string_view name) {
    return std::ranges::find(commonFolders, name) != commonFolders.end();
}

// "/run/media/anna/Stick" as "/run/media/USER/VOLUME 1"
std::string disguisedPlace(std::string_view path, const std::string& user,
                           const std::string& volume) {
    std::string out;
    while (!path.empty()) {
        path.remove_prefix(1);
        const std::string_view name = path.substr(0, path.find('/'));
        path.remove_prefix(name.size());
        if (name.empty()) continue;
        out += '/';
        if (isCommon(name)) out += name;
        else if (path.empty()) out += volume;
        else out += name == user ? "USER" : "NAME";
    }
    return out.empty() ? "/" : out;
}

bool isWordByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           static_cast<unsigned char>(c) >= 0x80;
}

char smallLetter(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Within a longer word it is another word.
void replaceWord(std::string& line, std::string_view word, std::string_view by) {
    if (word.empty()) return;
    const auto find = [&](std::size_t from) {
        const auto found = std::search(
            line.begin() + static_cast<std::ptrdiff_t>(from), line.end(), word.begin(), word.end(),
            [](char one, char other) { return smallLetter(one) == smallLetter(other); });
        return found == line.end() ? std::string::npos
                                   : static_cast<std::size_t>(found - line.begin());
    };
    for (std::size_t at = find(0); at != std::string::npos; at = find(at)) {
        const std::size_t end = at + word.size();
        const bool isWhole = (at == 0 || !isWordByte(line[at - 1]) || !isWordByte(word.front())) &&
                             (end == line.size() || !isWordByte(line[end]));
        if (isWhole) line.replace(at, word.size(), by);
        at += isWhole ? by.size() : 1;
    }
}

/// The values alone are gone through, and not what the report calls them.
class WithoutNames final : public SystemValues {
public:
    WithoutNames(const SystemValues& system, const ReportNames& names)
        : m_system(system), m_names(names) {}
    [[nodiscard]] SysResult<std::string> sysctlbyname(std::string_view name) const override {
        auto value = m_system.sysctlbyname(name);
        if (!value || name == memorySizeName) return value;
        return name == "kern.hostname" ? "HOST" : withoutNames(*std::move(value), m_names);
    }

private:
    const SystemValues& m_system;
    const ReportNames& m_names;
};

}  // namespace

std::vector<std::string> computerReport(const SystemValues& system, Volumes& volumes) {
    std::vector<std::string> lines;
    addHardware(lines, system);
    addVolumes(lines, volumes, {});
    return lines;
}

std::vector<std::string> computerReportWithoutNames(const SystemValues& system, Volumes& volumes,
                                                    const ReportNames& names,
                                                    std::vector<std::string> further) {
    std::vector<std::string> lines = std::move(further);
    for (std::string& line : lines) line = withoutNames(std::move(line), names);
    addHardware(lines, WithoutNames(system, names));
    int number = 0;
    addVolumes(lines, volumes, [&](IndexedVolume& volume, GetVolParmsInfoBuffer& parms) {
        const std::string called = fmt::format("VOLUME {}", ++number);
        volume.rootPath = disguisedPlace(volume.rootPath, names.user, called);
        volume.name = called;
        parms.vMServerAdr = parms.vMServerAdr == 0 ? 0 : 1;  // made from the server's name
    });
    return lines;
}

std::string withoutNames(std::string line, const ReportNames& names) {
    if (names.home.size() > 1) replaceWord(line, names.home, "HOME");
    replaceWord(line, names.host, "HOST");
    replaceWord(line, std::string_view(names.host).substr(0, names.host.find('.')), "HOST");
    replaceWord(line, names.user, "USER");
    return line;
}

}  // namespace orrinvale
