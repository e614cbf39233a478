// First the kinds of file systems, then hiding, then one mount a device.
#include "platform/linux/LinuxVolumesChoice.h"

#include <algorithm>
#include <array>
#include <map>
#include <tuple>
#include <unordered_map>
#include <utility>

#include "platform/paths.h"

namespace orrinvale {
namespace {

template <std::size_t size>
bool isAmong(std::string_view text, const std::array<std::string_view, size>& list) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

constexpr std::array<std::string_view, 13> networkTypes{
    "nfs",  "nfs4",      "cifs",   "smb3",  "smbfs", "afs",     "ceph",
    "coda", "glusterfs", "lustre", "ncpfs", "davfs", "orangefs"};
constexpr std::array<std::string_view, 17> networkPrograms{
    "fuse.sshfs",     "fuse.rclone",    "fuse.davfs",     "fuse.davfs2",
    "fuse.glusterfs", "fuse.ceph-fuse", "fuse.s3fs",      "fuse.gcsfuse",
    "fuse.goofys",    "fuse.curlftpfs", "fuse.smbnetfs",  "fuse.juicefs",
    "fuse.mfs",       "fuse.blobfuse2", "fuse.seaweedfs", "fuse.google-drive-ocamlfuse",
    "fuse.beegfs"};
constexpr std::array<std::string_view, 4> serviceFileSystems{"fuse.gvfsd-fuse", "fuse.portal",
                                                             "fuse.lxcfs", "fuse.snapfuse"};
constexpr std::array<std::string_view, 6> ownDeviceTypes{"btrfs",   "zfs",   "bcachefs",
                                                         "fuseblk", "ubifs", "jffs2"};
// Folders of the machine that runs this one.
constexpr std::array<std::string_view, 4> hostShareTypes{"9p", "virtiofs", "vboxsf", "prl_fs"};

// FAT is not among them: it may read its whole table for the first answer.
constexpr std::array<std::string_view, 9> countedTypes{"ext2", "ext3",  "ext4",  "xfs",   "btrfs",
                                                       "f2fs", "tmpfs", "ramfs", "rootfs"};
constexpr std::array<std::string_view, 3> personalPlaces{"/media", "/run/media", "/mnt"};
constexpr std::array<std::string_view, 3> snapPlaces{"/snap", "/var/snap", "/var/lib/snapd"};
constexpr std::array<std::string_view, 7> systemMounts{"/proc", "/sys", "/dev", "/run",
                                                       "/usr",  "/etc", "/init"};
constexpr std::array<std::string_view, 3> packedTypes{"squashfs", "erofs", "cramfs"};
// Single files that containers mount over their own; each lies on the host's disk.
constexpr std::array<std::string_view, 3> containerFiles{"/etc/hosts", "/etc/hostname",
                                                         "/etc/resolv.conf"};

template <std::size_t size>
bool isWithinAny(std::string_view path, const std::array<std::string_view, size>& folders) {
    return std::any_of(folders.begin(), folders.end(),
                       [&](std::string_view each) { return isWithin(path, each); });
}

bool isProgram(std::string_view type) { return type == "fuse" || type.starts_with("fuse."); }

bool hasOption(std::string_view options, std::string_view wanted) {
    while (!options.empty()) {
        const std::size_t end = std::min(options.find(','), options.size());
        if (options.substr(0, end) == wanted) return true;
        options.remove_prefix(std::min(end + 1, options.size()));
    }
    return false;
}

bool isNetworkMount(const MountEntry& mount) {
    if (isAmong(mount.type, networkTypes) || isAmong(mount.type, networkPrograms)) return true;
    if (mount.type == "9p")
        return hasOption(mount.superOptions, "trans=tcp") ||
               hasOption(mount.superOptions, "trans=rdma");
    // Programs that do not tell their kind often tell the address: davfs2 mounts as plain "fuse".
    return isProgram(mount.type) && mount.source.find("://") != std::string::npos;
}

bool isVolume(const MountEntry& mount) {
    const std::string_view point = mount.point;
    const bool personal = isWithinAny(point, personalPlaces);
    if (point == "/") return true;
    if (mount.type == "overlay" || isAmong(mount.type, serviceFileSystems)) return false;
    if (isWithinAny(point, snapPlaces) || isAmong(point, containerFiles)) return false;
    if (isNetworkMount(mount)) return true;
    if (isProgram(mount.type) || mount.type == "tmpfs" || mount.type == "ramfs") return personal;
    const bool system = isWithinAny(point, systemMounts) && !personal;
    // A live system carries itself in packed images.
    if (isAmong(mount.type, packedTypes) || isAmong(mount.type, hostShareTypes)) return !system;
    return mount.major != 0 || isAmong(mount.type, ownDeviceTypes);
}

// Which mounts can not be reached by their path, since another one was mounted later on the same
// folder or above it.
class HiddenMounts final {
public:
    explicit HiddenMounts(const std::vector<MountEntry>& table)
        : m_table(table), m_states(table.size(), State::Unknown) {
        for (std::size_t i = 0; i < table.size(); ++i) {
            m_byId[table[i].id] = i;
            if (isTop(table[i])) continue;
            m_byPlace[{table[i].parent, table[i].point}] = i;  // the later one stands on top
        }
    }

    bool isHidden(std::size_t index) {
        const MountEntry& mount = m_table[index];
        const auto above = m_byPlace.find({mount.id, mount.point});
        return above != m_byPlace.end() || isCutOff(index);
    }

private:
    enum class State : std::uint8_t { Unknown, UnderWay, Reachable, CutOff };

    // The first file system of a machine stands on itself.
    static bool isTop(const MountEntry& mount) { return mount.id == mount.parent; }

    // Hidden together with all that is mounted on it. Goes up in a loop: a table may be as deep as
    // it is long.
    bool isCutOff(std::size_t index) {
        std::vector<std::size_t> way;
        State state = State::Reachable;
        for (std::size_t at = index;;) {
            if (m_states[at] != State::Unknown) {
                if (m_states[at] == State::CutOff) state = State::CutOff;
                break;
            }
            m_states[at] = State::UnderWay;
            way.push_back(at);
            if (isBelowAnother(at)) {
                state = State::CutOff;
                break;
            }
            const auto parent = m_byId.find(m_table[at].parent);
            if (parent == m_byId.end()) break;
            at = parent->second;
        }
        for (const std::size_t each : way) m_states[each] = state;
        return state == State::CutOff;
    }

    // Whether a sibling stands in the same place or on a folder above.
    bool isBelowAnother(std::size_t index) const {
        const MountEntry& mount = m_table[index];
        if (isTop(mount)) return false;
        if (m_byPlace.at({mount.parent, mount.point}) != index) return true;
        std::string_view folder = mount.point;
        while (folder.size() > 1) {
            folder = splitPath(folder).folder;
            if (m_byPlace.contains({mount.parent, std::string(folder)})) return true;
        }
        return false;
    }

    const std::vector<MountEntry>& m_table;
    std::vector<State> m_states;
    std::unordered_map<std::uint64_t, std::size_t> m_byId;
    std::map<std::pair<std::uint64_t, std::string>, std::size_t> m_byPlace;
};

// Less is better.
auto rankOf(const MountEntry& mount) {
    return std::tuple(mount.point != "/", mount.root != "/", mount.point.size());
}

}  // namespace

VolumeKey volumeKeyOf(const MountEntry& mount) {
    if (isNetworkMount(mount)) return {mount.major, mount.minor, mount.root, mount.source};
    return {mount.major, mount.minor, {}, {}};
}

std::vector<MountEntry> chooseVolumes(const std::vector<MountEntry>& table) {
    HiddenMounts hidden(table);
    std::map<VolumeKey, std::size_t> best;
    for (std::size_t i = 0; i < table.size(); ++i) {
        if (!isVolume(table[i]) || hidden.isHidden(i)) continue;
        const auto [known, isNew] = best.try_emplace(volumeKeyOf(table[i]), i);
        if (!isNew && rankOf(table[i]) < rankOf(table[known->second])) known->second = i;
    }
    std::vector<std::size_t> chosen;
    chosen.reserve(best.size());
    for (const auto& [key, index] : best) chosen.push_back(index);
    std::sort(chosen.begin(), chosen.end(), [&](std::size_t a, std::size_t b) {
        return std::pair(table[a].point != "/", a) < std::pair(table[b].point != "/", b);
    });
    std::vector<MountEntry> volumes;
    volumes.reserve(chosen.size());
    for (const std::size_t index : chosen) volumes.push_back(table[index]);
    return volumes;
}

bool isHiddenMount(const std::vector<MountEntry>& table, std::size_t index) {
    return HiddenMounts(table).isHidden(index);
}

std::string_view serverOfSource(std::string_view source) {
    std::string_view rest = source;
    const std::size_t scheme = rest.find("://");
    if (scheme != std::string_view::npos) rest.remove_prefix(scheme + 3);
    else if (rest.starts_with("//")) rest.remove_prefix(2);
    const std::string_view authority = rest.substr(0, rest.find('/'));
    const std::size_t user = authority.rfind('@');
    if (user != std::string_view::npos) rest.remove_prefix(user + 1);
    const bool bracket = rest.starts_with('[') && rest.find(']') != std::string_view::npos;
    const std::string_view host =
        bracket ? rest.substr(1, rest.find(']') - 1) : rest.substr(0, rest.find_first_of(":/"));
    return host.empty() ? source : host;
}

bool answersAtOnce(const std::vector<MountEntry>& table, const MountEntry& mount) {
    return isAmong(mount.type, countedTypes) &&
           std::all_of(table.begin(), table.end(), [&](const MountEntry& each) {
               return isAmong(each.type, countedTypes) || !isWithin(mount.point, each.point);
           });
}

std::uint32_t serverAddressOf(const MountEntry& mount) {
    if (!isNetworkMount(mount)) return 0;
    std::uint32_t number = 2166136261U;  // FNV-1a, 32 bits
    for (const char c : serverOfSource(mount.source))
        number = (number ^ static_cast<unsigned char>(c)) * 16777619U;
    return number == 0 ? 1 : number;
}

}  // namespace orrinvale
