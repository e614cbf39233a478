// The limits are read anew each time: a group may be given another while it runs, and a process may
// be moved to another group.
#include "platform/linux/MemoryGroups.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/linux/MountTable.h"
#include "platform/linux/SystemText.h"

namespace orrinvale {
namespace {

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t smallText = 64 * 1024;

// The files of a group, by the version of the interface.
struct LimitFiles {
    std::vector<std::string_view> limits;
    std::string_view usage;
};

const LimitFiles& filesOf(bool isUnified) {
    static const LimitFiles unified{{"memory.max", "memory.high"}, "memory.current"};
    static const LimitFiles first{{"memory.limit_in_bytes"}, "memory.usage_in_bytes"};
    return isUnified ? unified : first;
}

// "max" and everything else that is no number is none.
std::optional<std::uint64_t> numberIn(const std::string& path) {
    const auto text = readSystemText(path, smallText);
    std::uint64_t number = 0;
    if (!text) return std::nullopt;
    const auto read = std::from_chars(text->data(), text->data() + text->size(), number);
    return read.ec == std::errc{} ? std::optional(number) : std::nullopt;
}

std::uint64_t roomIn(const std::string& group, const LimitFiles& files) {
    const auto usage = numberIn(group + '/' + std::string(files.usage));
    std::uint64_t room = unlimited;
    for (const std::string_view file : files.limits) {
        const auto limit = numberIn(group + '/' + std::string(file));
        if (limit && usage) room = std::min(room, *limit - std::min(*limit, *usage));
    }
    return room;
}

// A line of /proc/self/cgroup: "HIERARCHY:CONTROLLERS:PATH".
struct Membership {
    bool isUnified = false;
    std::string_view path;
};

bool hasWord(std::string_view list, std::string_view word) {
    while (!list.empty()) {
        const std::size_t comma = std::min(list.find(','), list.size());
        if (list.substr(0, comma) == word) return true;
        list.remove_prefix(std::min(comma + 1, list.size()));
    }
    return false;
}

std::optional<Membership> membershipOf(std::string_view line) {
    const std::size_t first = line.find(':');
    const std::size_t second = first == line.npos ? line.npos : line.find(':', first + 1);
    if (second == line.npos) return std::nullopt;
    const std::string_view controllers = line.substr(first + 1, second - first - 1);
    const std::string_view path = line.substr(second + 1);
    if (controllers.empty()) return Membership{true, path};
    if (hasWord(controllers, "memory")) return Membership{false, path};
    return std::nullopt;
}

// The group below the place at which its hierarchy is mounted. A container may see a part of the
// hierarchy only: then the path begins with the mount's root, or leads out of what is to be seen.
std::string groupBelow(const MountEntry& mount, std::string_view path) {
    const std::string_view root = mount.root == "/" ? std::string_view() : mount.root;
    if (!path.starts_with(root) || path.starts_with("/..")) return mount.point;
    path.remove_prefix(root.size());
    while (path.ends_with('/')) path.remove_suffix(1);
    return mount.point + std::string(path);
}

std::uint64_t roomUpFrom(const std::string& root, const MountEntry& mount,
                         const Membership& member) {
    std::uint64_t room = unlimited;
    std::string group = groupBelow(mount, member.path);
    while (group.size() >= mount.point.size()) {
        room = std::min(room, roomIn(root + group, filesOf(member.isUnified)));
        group.resize(std::min(group.rfind('/'), group.size()));
        if (group.empty()) break;
    }
    return room;
}

}  // namespace

std::uint64_t roomInMemoryGroups(const std::string& root) {
    const auto own = readSystemText(root + "/proc/self/cgroup", smallText);
    const auto table = readMountInfo(root + "/proc/self/mountinfo");
    if (!own || !table) return unlimited;
    const std::vector<MountEntry> mounts = parseMountInfo(*table);
    std::uint64_t room = unlimited;
    for (std::string_view rest = *own; !rest.empty();) {
        const std::size_t end = std::min(rest.find('\n'), rest.size());
        const auto member = membershipOf(rest.substr(0, end));
        rest.remove_prefix(std::min(end + 1, rest.size()));
        if (!member) continue;
        for (const MountEntry& mount : mounts)
            if (member->isUnified ? mount.type == "cgroup2"
                                  : mount.type == "cgroup" && hasWord(mount.superOptions, "memory"))
                room = std::min(room, roomUpFrom(root, mount, *member));
    }
    return room;
}

}  // namespace orrinvale
