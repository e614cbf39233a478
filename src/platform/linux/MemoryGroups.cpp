// The limits are read anew each time: a group may be given another while it runs, and a process may
// be moved to another group.
#include "platform/linux/MemoryGroups.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <limits>
#include <optional>
#include <span>
#include <string_view>

#include "platform/linux/MountTable.h"
#include "platform/linux/SystemText.h"

namespace orrinvale {
namespace {

constexpr std::uint64_t unlimited = std::numeric_limits<std::uint64_t>::max();
constexpr std::size_t smallText = 64 * 1024;

// A file with a limit, and the one that tells what is taken of it.
struct Limit {
    std::string_view limit;
    std::string_view usage;
};

// By the version of the interface. That of memory and swap together is there where the kernel
// counts swap.
std::span<const Limit> limitsOf(bool isUnified) {
    static constexpr Limit unified[] = {{"memory.max", "memory.current"},
                                        {"memory.high", "memory.current"}};
    static constexpr Limit first[] = {
        {"memory.limit_in_bytes", "memory.usage_in_bytes"},
        {"memory.memsw.limit_in_bytes", "memory.memsw.usage_in_bytes"}};
    return isUnified ? std::span(unified) : std::span(first);
}

// "max" is the largest number; another text is none.
SysResult<std::uint64_t> groupNumberIn(const std::string& path) {
    const auto text = readSystemText(path, smallText);
    if (!text) return tl::unexpected(text.error());
    if (text->starts_with("max")) return unlimited;
    std::uint64_t number = 0;
    const auto read = std::from_chars(text->data(), text->data() + text->size(), number);
    if (read.ec != std::errc{}) return tl::unexpected(EINVAL);
    return number;
}

std::uint64_t roomIn(const std::string& group, const Limit& files) {
    const auto limit = groupNumberIn(group + '/' + std::string(files.limit));
    // The topmost group has no limits, nor has one for which they are switched off.
    if (!limit) return limit.error() == ENOENT || limit.error() == EOPNOTSUPP ? unlimited : 0;
    if (*limit == unlimited) return unlimited;
    const auto usage = groupNumberIn(group + '/' + std::string(files.usage));
    return usage ? *limit - std::min(*limit, *usage) : 0;
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
    constexpr std::size_t none = std::string_view::npos;
    const std::size_t second = first == none ? none : line.find(':', first + 1);
    if (second == none) return std::nullopt;
    const std::string_view controllers = line.substr(first + 1, second - first - 1);
    const std::string_view path = line.substr(second + 1);
    if (controllers.empty()) return Membership{true, path};
    if (hasWord(controllers, "memory")) return Membership{false, path};
    return std::nullopt;
}

// Memory is counted in one hierarchy only: in the first version's where it is named there.
std::optional<Membership> memoryGroup(std::string_view text) {
    std::optional<Membership> found;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        const auto member = membershipOf(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (member && (!found || found->isUnified)) found = member;
    }
    return found;
}

bool showsGroupsOf(const MountEntry& mount, const Membership& member) {
    if (member.isUnified) return mount.type == "cgroup2";
    return mount.type == "cgroup" && hasWord(mount.superOptions, "memory");
}

// The group below the place at which its hierarchy is mounted. A container may see a part of the
// hierarchy only; a group namespace writes what is outside of it with "..", for the group and for
// the mount's root alike. Nothing where the mount does not show the group.
std::optional<std::string> groupBelow(const MountEntry& mount, std::string_view path) {
    const std::string_view root = mount.root == "/" ? std::string_view() : mount.root;
    if (!path.starts_with(root)) return std::nullopt;
    path.remove_prefix(root.size());
    while (path.ends_with('/')) path.remove_suffix(1);
    if (path.empty()) return mount.point;
    if (path.front() != '/' || path == "/.." || path.starts_with("/../")) return std::nullopt;
    return mount.point + std::string(path);
}

std::uint64_t roomUpFrom(const std::string& root, std::string group, const MountEntry& mount,
                         bool isUnified) {
    std::uint64_t room = unlimited;
    while (group.size() >= mount.point.size()) {
        for (const Limit& each : limitsOf(isUnified))
            room = std::min(room, roomIn(root + group, each));
        group.resize(std::min(group.rfind('/'), group.size()));
        if (group.empty()) break;
    }
    return room;
}

}  // namespace

std::uint64_t roomInMemoryGroups(const std::string& root) {
    const auto own = readSystemText(root + "/proc/self/cgroup", smallText);
    if (!own) return own.error() == ENOENT ? unlimited : 0;  // a kernel without groups
    const auto member = memoryGroup(*own);
    if (!member) return unlimited;
    const auto table = readMountInfo(root + "/proc/self/mountinfo");
    if (!table) return 0;
    std::optional<std::uint64_t> room;
    for (const MountEntry& mount : parseMountInfo(*table)) {
        if (!showsGroupsOf(mount, *member)) continue;
        const auto group = groupBelow(mount, member->path);
        // Another mount may lie over this one, and the group may be gone.
        if (!group || ::access((root + *group + "/cgroup.procs").c_str(), F_OK) != 0) continue;
        room =
            std::min(room.value_or(unlimited), roomUpFrom(root, *group, mount, member->isUnified));
    }
    return room.value_or(0);
}

}  // namespace orrinvale
