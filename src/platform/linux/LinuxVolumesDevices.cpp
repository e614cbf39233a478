// What the kernel's folders look like: Documentation/ABI/stable/sysfs-block and
// testing/sysfs-devices-removable of the kernel's sources; udev's state: one file a device,
// "E:NAME=value" a line.
#include "platform/linux/LinuxVolumesDevices.h"

#include <fmt/format.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cstdlib>
#include <memory>
#include <utility>
#include <vector>

#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t attributeLimit = 4096;    // a page, as sysfs gives at most
constexpr std::size_t udevLimit = 256 * 1024;   // far above what its largest files hold
constexpr int mostLayers = 8;                   // of mapped devices above each other
constexpr std::string_view opticalDrive = "5";  // SCSI peripheral type

constexpr std::uint32_t bit(unsigned number) { return std::uint32_t{1} << number; }
constexpr std::uint32_t removableBits = bit(bIsRemovable) | bit(bIsEjectable);

std::string resolved(const std::string& path) {
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr),
                                                           &std::free);
    return real ? std::string(real.get()) : std::string();
}

bool exists(const std::string& path) { return ::access(path.c_str(), F_OK) == 0; }

std::string attribute(const std::string& path) {
    std::string text = readSystemText(path, attributeLimit).value_or(std::string());
    while (!text.empty() && (text.back() == '\n' || text.back() == ' ')) text.pop_back();
    return text;
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// "usb3", "fw0": a bus of this kind.
bool isNumbered(std::string_view name, std::string_view kind) {
    return name.size() > kind.size() && name.starts_with(kind) &&
           std::all_of(name.begin() + static_cast<std::ptrdiff_t>(kind.size()), name.end(),
                       isDigit);
}

// udev writes bytes that it does not trust as \xHH.
std::string withoutHexEscapes(std::string_view text) {
    std::string out;
    for (std::size_t at = 0; at < text.size(); ++at) {
        unsigned byte = 0;
        const std::string_view digits = text.substr(std::min(at + 2, text.size()), 2);
        const bool escape =
            text.substr(at, 2) == "\\x" && digits.size() == 2 &&
            std::from_chars(digits.data(), digits.data() + 2, byte, 16).ptr == digits.data() + 2;
        out += escape ? static_cast<char>(byte) : text[at];
        if (escape) at += 3;
    }
    return out;
}

std::string_view propertyIn(std::string_view properties, std::string_view name) {
    while (!properties.empty()) {
        const std::size_t end = std::min(properties.find('\n'), properties.size());
        std::string_view line = properties.substr(0, end);
        properties.remove_prefix(std::min(end + 1, properties.size()));
        if (!line.starts_with("E:")) continue;
        line.remove_prefix(2);
        if (line.starts_with(name) && line.substr(name.size()).starts_with('='))
            return line.substr(name.size() + 1);
    }
    return {};
}

std::string wholeOf(const std::string& device) {
    return exists(device + "/partition") ? std::string(splitPath(device).folder) : device;
}

}  // namespace

// Resolved, since all other paths come out resolved and are compared with it.
LinuxVolumesDevices::LinuxVolumesDevices(const std::string& sys, std::string udev)
    : m_sys(resolved(sys)), m_udev(std::move(udev)) {}

std::string LinuxVolumesDevices::deviceOf(const MountEntry& mount) const {
    if (mount.major != 0) return deviceNumbered(mount.major, mount.minor);
    // These name their device in the source. No other source is touched: programs write there what
    // they like, and a path to a dead server would hang the walk.
    const bool namesDevice =
        mount.type == "btrfs" || mount.type == "bcachefs" || mount.type == "fuseblk";
    if (!namesDevice || !mount.source.starts_with("/dev/")) return {};
    const std::string node = resolved(mount.source);  // from /dev/mapper/x, /dev/disk/by-label/x
    return deviceNamed(
        lastPathComponent(isWithin(node, "/dev") ? std::string_view(node) : mount.source));
}

std::string LinuxVolumesDevices::deviceNamed(std::string_view name) const {
    if (name.empty() || name.starts_with('.') || name.find('/') != std::string_view::npos)
        return {};
    return resolved(fmt::format("{}/class/block/{}", m_sys, name));
}

std::string LinuxVolumesDevices::deviceNumbered(std::uint32_t major, std::uint32_t minor) const {
    return resolved(fmt::format("{}/dev/block/{}:{}", m_sys, major, minor));
}

std::optional<std::uint64_t> LinuxVolumesDevices::numberOf(const std::string& device) const {
    const std::string text = device.empty() ? std::string() : attribute(device + "/dev");
    const char* const end = text.data() + text.size();
    unsigned major = 0;
    unsigned minor = 0;
    const char* const colon = std::from_chars(text.data(), end, major).ptr;
    if (colon == end || *colon != ':' || std::from_chars(colon + 1, end, minor).ptr != end)
        return std::nullopt;
    return ::makedev(major, minor);
}

std::vector<std::string> LinuxVolumesDevices::layersOn(const std::string& device) const {
    std::vector<std::string> layers;
    if (!device.empty()) addLayersOn(device, mostLayers, layers);
    return layers;
}

void LinuxVolumesDevices::addLayersOn(const std::string& device, int levelsLeft,
                                      std::vector<std::string>& layers) const {
    if (levelsLeft == 0) return;
    const std::string folder = device + "/holders/";
    for (const std::string& name : systemNamesIn(folder)) {
        const std::string above = resolved(folder + name);
        if (above.empty() || std::find(layers.begin(), layers.end(), above) != layers.end())
            continue;
        layers.push_back(above);
        addLayersOn(above, levelsLeft - 1, layers);
    }
}

bool LinuxVolumesDevices::isEmptyLoop(const std::string& device) const {
    return isNumbered(lastPathComponent(device), "loop") && exists(device) &&
           !exists(device + "/loop/backing_file");
}

std::string LinuxVolumesDevices::sequenceOf(const std::string& device) const {
    return device.empty() ? std::string() : attribute(wholeOf(device) + "/diskseq");
}

std::uint32_t LinuxVolumesDevices::extendedAttributes(const std::string& device) const {
    return device.empty() ? 0 : attributesOfWhole(wholeOf(device), mostLayers);
}

std::uint32_t LinuxVolumesDevices::attributesOfWhole(const std::string& whole,
                                                     int levelsLeft) const {
    std::uint32_t bits = 0;
    const std::string kind = attribute(whole + "/device/type");
    if (attribute(whole + "/removable") == "1" || kind == opticalDrive ||
        isNumbered(lastPathComponent(whole), "loop"))
        bits |= removableBits;
    if (kind == "SD") bits |= removableBits | bit(bIsOnExternalBus);
    if (isOnExternalBus(whole)) bits |= bit(bIsOnExternalBus);
    if (levelsLeft == 0) return bits;
    const std::string layer = whole + "/slaves/";
    for (const std::string& name : systemNamesIn(layer)) {
        const std::string below = resolved(fmt::format("{}{}", layer, name));
        if (!below.empty()) bits |= attributesOfWhole(wholeOf(below), levelsLeft - 1);
    }
    return bits;
}

bool LinuxVolumesDevices::isOnExternalBus(const std::string& whole) const {
    for (std::string folder = whole; !folder.empty(); folder = parentOf(folder)) {
        const std::string_view name = lastPathComponent(folder);
        if (isNumbered(name, "usb") || isNumbered(name, "fw")) return true;
        // Of a bus device this says whether it came through a port on the outside; of a block
        // device it is "0" or "1".
        if (attribute(folder + "/removable") == "removable") return true;
    }
    return false;
}

std::string LinuxVolumesDevices::udevProperties(const std::string& device) const {
    const std::string number = device.empty() ? std::string() : attribute(device + "/dev");
    if (number.empty()) return {};
    return readSystemText(fmt::format("{}/data/b{}", m_udev, number), udevLimit)
        .value_or(std::string());
}

std::string LinuxVolumesDevices::labelOf(const std::string& device) const {
    const std::string properties = udevProperties(device);
    const std::string_view encoded = propertyIn(properties, "ID_FS_LABEL_ENC");
    if (!encoded.empty()) return withoutHexEscapes(encoded);
    return std::string(propertyIn(properties, "ID_FS_LABEL"));
}

bool LinuxVolumesDevices::isBlockDevice(const std::string& folder) const {
    std::array<char, PATH_MAX> target;
    const ssize_t length =
        ::readlink((folder + "/subsystem").c_str(), target.data(), target.size());
    return length > 0 &&
           lastPathComponent({target.data(), static_cast<std::size_t>(length)}) == "block";
}

std::optional<bool> LinuxVolumesDevices::isWhole(const std::string& device) const {
    if (!exists(device)) return std::nullopt;
    return !exists(device + "/partition");
}

LinuxVolumesDevices::Disc LinuxVolumesDevices::discIn(const std::string& device) const {
    if (attribute(device + "/device/type") != opticalDrive) return Disc::None;
    const std::string properties = udevProperties(device);
    return properties.find("\nE:ID_CDROM_MEDIA_DVD") != std::string::npos ? Disc::Dvd : Disc::Cd;
}

std::string LinuxVolumesDevices::parentOf(const std::string& folder) const {
    const std::string parent(splitPath(folder).folder);
    return parent.size() > m_sys.size() + std::string_view("/devices").size() &&
                   isWithin(parent, m_sys)
               ? parent
               : std::string();
}

namespace {

class SystemEntry final : public RegistryEntry {
public:
    SystemEntry(const LinuxVolumesDevices& devices, std::string folder)
        : m_devices(devices), m_folder(std::move(folder)) {}

    [[nodiscard]] bool IOObjectConformsTo(std::string_view className) const override {
        using Disc = LinuxVolumesDevices::Disc;
        if (!m_devices.isBlockDevice(m_folder)) return false;
        if (className == "IOCDMedia") return m_devices.discIn(m_folder) == Disc::Cd;
        if (className == "IODVDMedia") return m_devices.discIn(m_folder) == Disc::Dvd;
        return className == "IOMedia";
    }
    [[nodiscard]] std::optional<bool> IORegistryEntryCreateCFProperty(
        std::string_view key) const override {
        return key == "Whole" ? m_devices.isWhole(m_folder) : std::nullopt;
    }

    [[nodiscard]] const LinuxVolumesDevices& devices() const { return m_devices; }
    [[nodiscard]] const std::string& folder() const { return m_folder; }

private:
    const LinuxVolumesDevices m_devices;  // a copy, since an entry may outlive whoever made it
    const std::string m_folder;
};

class SystemParents final : public RegistryIterator {
public:
    explicit SystemParents(const SystemEntry& start)
        : m_devices(start.devices()), m_folder(start.folder()) {}

    [[nodiscard]] RegistryEntryRef IOIteratorNext() override {
        if (!m_folder.empty()) m_folder = m_devices.parentOf(m_folder);
        return registryEntryOf(m_devices, m_folder);
    }

private:
    const LinuxVolumesDevices m_devices;
    std::string m_folder;
};

}  // namespace

std::string volumeNameOf(const MountEntry& mount, const LinuxVolumesDevices& devices) {
    std::string label = devices.labelOf(devices.deviceOf(mount));
    if (!label.empty()) return label;
    return mount.point == "/" ? "System" : std::string(lastPathComponent(mount.point));
}

RegistryEntryRef registryEntryOf(const LinuxVolumesDevices& devices, std::string folder) {
    return folder.empty() ? nullptr : std::make_shared<SystemEntry>(devices, std::move(folder));
}

std::unique_ptr<RegistryIterator> registryParentsOf(const RegistryEntry& entry) {
    const auto* const start = dynamic_cast<const SystemEntry*>(&entry);
    if (start == nullptr || !exists(start->folder())) return nullptr;
    return std::make_unique<SystemParents>(*start);
}

}  // namespace orrinvale
