// The fields of a record, then the forms in which records are printed.
#include "cli/VolumesReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>

#include "cli/Output.h"

namespace orrinvale::cli {
namespace {

using VolumeRecords = VolumesInfo::VolumeArray;

std::string_view typeName(std::int32_t type) {
    switch (type) {
        case LocalVolume: return "local";
        case ExternalVolume: return "external";
        case OpticalVolume: return "optical";
        case NetworkVolume: return "network";
        case DiskImageVolume: return "disk image";
        default: return "unknown";
    }
}

void appendVolume(std::string& out, const ZvVolumeInfo& volume, std::string_view lineBreak) {
    out += fmt::format("{{\"refNumber\": {}, \"type\": {}, \"typeName\": \"{}\", \"boot\": {}, ",
                       volume.volRefNumber, volume.volType, typeName(volume.volType),
                       volume.bIsDefaultVol);
    appendJsonPath(out, volume.volumeName, "name", "nameHex");
    out += ", ";
    appendJsonPath(out, volume.volRootDir);
    out += fmt::format(
        ",{}\"freeSpace\": \"{}\", \"totalSpace\": \"{}\", \"free\": {}, \"total\": {}, "
        "\"canEject\": {}",
        lineBreak, volume.freeSpace, volume.totalSpace, volume.nFreeSize, volume.nTotalSize,
        volume.bCanEject);
    if (volume.volIcon) {
        out += ", \"icon\": {";
        appendJsonPath(out, volume.volIcon->text);
        out += '}';
    }
    out += '}';
}

using Cells = std::array<std::string, 5>;

Cells cellsOf(const ZvVolumeInfo& volume) {
    return {printable(volume.volumeName), std::string(typeName(volume.volType)),
            fmt::format("{} of {}", volume.freeSpace, volume.totalSpace),
            volume.bCanEject ? "yes" : "no", printable(volume.volRootDir)};
}

// Characters, not bytes; wide ones count as one.
std::size_t widthOf(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char c) {
        return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;
    }));
}

std::string_view nameOf(VolumeEvent::Kind kind) {
    switch (kind) {
        case VolumeEvent::Kind::Mount: return "mount";
        case VolumeEvent::Kind::Unmount: return "unmount";
        case VolumeEvent::Kind::Rename: return "rename";
        case VolumeEvent::Kind::Free: return "free";
    }
    return "";
}

}  // namespace

void printVolumesJson(Output& out, const VolumeRecords& volumes, const std::vector<Error>& skipped,
                      bool stopped) {
    std::string text = "{\n  \"volumes\": [";
    const char* between = "\n    ";
    for (const auto& volume : volumes) {
        text += between;
        appendVolume(text, *volume, "\n     ");
        between = ",\n    ";
    }
    text += volumes.empty() ? "],\n  \"skipped\": [" : "\n  ],\n  \"skipped\": [";
    appendJsonSkipped(text, skipped);
    out.write(text + fmt::format("],\n  \"stopped\": {}\n}}\n", stopped));
}

void printVolumePaths(Output& out, const VolumeRecords& volumes) {
    for (const auto& volume : volumes) {
        out.write(volume->volRootDir);
        out.write(std::string_view("\0", 1));
    }
}

void printVolumeListing(Output& out, const VolumeRecords& volumes, bool colour) {
    if (volumes.empty()) {
        out.write("No volumes.\n");
        return;
    }
    std::vector<Cells> rows{{"NAME", "KIND", "FREE OF TOTAL", "EJECT", "PATH"}};
    for (const auto& volume : volumes) rows.push_back(cellsOf(*volume));
    std::array<std::size_t, 5> widths{};
    for (const Cells& row : rows)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], widthOf(row[i]));
    for (const Cells& row : rows) {
        std::string line;
        for (std::size_t i = 0; i + 1 < row.size(); ++i)
            line += row[i] + std::string(widths[i] - widthOf(row[i]) + 2, ' ');
        line += row.back();
        const bool strong = colour && &row == &rows.front();
        out.write(strong ? "\x1b[1m" + line + "\x1b[0m\n" : line + '\n');
    }
}

void printVolumeEventJson(Output& out, const VolumeEvent& event) {
    std::string text = fmt::format("{{\"event\": \"{}\", \"volume\": ", nameOf(event.kind));
    appendVolume(text, *event.volume, " ");
    out.write(text + "}\n");
}

void printVolumeEvent(Output& out, const VolumeEvent& event) {
    const ZvVolumeInfo& volume = *event.volume;
    out.write(fmt::format("{:<8} {} at {}, {} of {} free\n", nameOf(event.kind),
                          printable(volume.volumeName), printable(volume.volRootDir),
                          volume.freeSpace, volume.totalSpace));
}

}  // namespace orrinvale::cli
