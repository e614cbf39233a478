// Any bytes as a table of mounts, whole and as the fields of lines that are otherwise right: what
// comes out are paths that can be used, what is chosen stood in the table, and what the kernel
// escapes comes back as it was.
#include <algorithm>
#include <array>
#include <vector>

#include "fuzz/fuzz.h"
#include "platform/linux/LinuxVolumesChoice.h"
#include "platform/linux/MountTable.h"

namespace orrinvale {
namespace {

// As the kernel writes a field.
std::string escaped(std::string_view bytes) {
    std::string out;
    for (const char c : bytes) {
        if (std::string_view(" \t\n\\#").find(c) == std::string_view::npos) {
            out += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        out += '\\';
        for (const unsigned shift : {6U, 3U, 0U})
            out += static_cast<char>('0' + (byte >> shift & 7U));
    }
    return out;
}

std::vector<MountEntry> checkTable(std::string_view text) {
    const auto entries = parseMountInfo(text);
    require(entries.size() <= static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')));
    for (const MountEntry& each : entries) {
        require(each.point.starts_with('/') && each.point.find('\0') == std::string::npos);
        require(each.source.find(serverOfSource(each.source)) != std::string::npos);
        require(each.source.empty() == serverOfSource(each.source).empty());
    }
    const auto chosen = chooseVolumes(entries);
    require(chosen.size() <= entries.size());
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        require(std::find(entries.begin(), entries.end(), chosen[i]) != entries.end());
        require(chosen[i].point != "/" || i == 0);
        for (std::size_t j = 0; j < i; ++j) require(!(chosen[i] == chosen[j]));
    }
    return entries;
}

void checkFields(std::string_view bytes) {
    constexpr std::array<std::string_view, 8> types{"ext4", "nfs",     "tmpfs",    "fuse.sshfs",
                                                    "fuse", "overlay", "squashfs", "btrfs"};
    constexpr std::array<std::string_view, 4> places{"/", "/mnt/", "/snap/", "/media/u/"};
    // Each piece between blanks is a mount, standing on one of those before it.
    std::string table;
    std::vector<std::string> points;
    for (std::size_t number = 10; !bytes.empty() && number < 40; ++number) {
        const std::string_view piece = bytes.substr(0, bytes.find(' '));
        bytes.remove_prefix(std::min(piece.size() + 1, bytes.size()));
        const std::size_t kind = piece.empty() ? 0 : static_cast<unsigned char>(piece.front());
        if (piece.find('\0') != std::string_view::npos) continue;
        points.push_back(std::string(places[kind / 8 % places.size()]) + std::string(piece));
        table += std::to_string(number) + ' ' + std::to_string(number - kind % 5) +
                 " 8:" + std::to_string(kind % 3) + " / " + escaped(points.back()) + " rw - " +
                 std::string(types[kind % types.size()]) + ' ' + escaped(piece) + " rw\n";
    }
    const auto entries = checkTable(table);
    require(entries.size() == points.size());
    for (std::size_t i = 0; i < points.size(); ++i) require(entries[i].point == points[i]);
}

}  // namespace

static void checkAll(std::string_view text) {
    (void)checkTable(text);
    (void)checkTable("1 0 8:0 / / rw - ext4 x rw\n2 1 8:1 / /" + std::string(text) +
                     " rw - ext4 x rw\n");
    checkFields(text);
}

}  // namespace orrinvale

void checkAny(std::string_view any) { orrinvale::checkAll(any); }
