// What /proc tells of a program: proc(5).
#include "platform/linux/VolumeHolders.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t smallHolderText = 4096;             // of fdinfo, comm
constexpr std::size_t holderMapsLimit = 4 * 1024 * 1024;  // thousands of mappings

std::string targetOf(const std::string& link) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(link.c_str(), target.data(), target.size());
    return length > 0 ? std::string(target.data(), static_cast<std::size_t>(length))
                      : std::string();
}

// Names made of digits, smallest number first: processes, descriptors.
std::vector<std::int32_t> numbersIn(const std::string& folder) {
    std::vector<std::int32_t> numbers;
    for (const std::string& name : systemNamesIn(folder)) {
        std::int32_t number = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
        if (error == std::errc{} && end == name.data() + name.size()) numbers.push_back(number);
    }
    std::sort(numbers.begin(), numbers.end());
    return numbers;
}

// Between the searching thread and whoever waits for it.
struct Findings {
    std::mutex mutex;  // guards what follows
    std::condition_variable isDone;
    std::map<std::int32_t, VolumeHolder> holders;
    bool done = false;
};

class HolderSearch final {
public:
    HolderSearch(HeldVolume volume, Clock::time_point end, std::shared_ptr<Findings> findings)
        : m_volume(std::move(volume)), m_end(end), m_findings(std::move(findings)) {
        for (const MountEntry& mount : m_volume.mounts) m_mountIds.insert(mount.id);
    }

    // Mappings come last: only they can keep this thread waiting.
    void run() {
        const std::vector<std::int32_t> processes = numbersIn("/proc");
        for (const std::int32_t process : processes) {
            if (isLate()) break;
            if (const std::string held = heldByLinks(process); !held.empty()) note(process, held);
        }
        for (const std::int32_t process : processes) {
            if (isLate()) break;
            if (isKnown(process)) continue;
            if (const std::string held = heldByMappings(process); !held.empty())
                note(process, held);
        }
        {
            const std::lock_guard lock(m_findings->mutex);
            m_findings->done = true;
        }
        m_findings->isDone.notify_all();
    }

private:
    bool isLate() const { return Clock::now() >= m_end; }

    bool isKnown(std::int32_t process) const {
        const std::lock_guard lock(m_findings->mutex);
        return m_findings->holders.contains(process);
    }

    void note(std::int32_t process, const std::string& path) const {
        std::string name = readSystemText(fmt::format("/proc/{}/comm", process), smallHolderText)
                               .value_or(std::string());
        if (name.ends_with('\n')) name.pop_back();
        const std::lock_guard lock(m_findings->mutex);
        m_findings->holders.emplace(process, VolumeHolder{process, std::move(name), path});
    }

    // The path that the program holds; empty when it holds none here.
    std::string heldByLinks(std::int32_t process) const {
        const std::string folder = fmt::format("/proc/{}/", process);
        for (const char* const link : {"cwd", "root", "exe"}) {
            std::string target = targetOf(folder + link);
            if (isHeldPath(target)) return target;
        }
        for (const std::int32_t descriptor : numbersIn(folder + "fd")) {
            std::string target = targetOf(fmt::format("{}fd/{}", folder, descriptor));
            if (isDevice(target)) return target;
            if (!isOnPoint(target)) continue;
            // Two mounts can be seen at one path, one above the other or in another name space. The
            // number is exact.
            const auto mount = mountOf(fmt::format("{}fdinfo/{}", folder, descriptor));
            if (!mount || m_mountIds.contains(*mount)) return target;
        }
        return {};
    }

    // "7f12a000-7f13b000 r-xp 00000000 08:11 131 /media/stick/library"
    std::string heldByMappings(std::int32_t process) const {
        const std::string text =
            readSystemText(fmt::format("/proc/{}/maps", process), holderMapsLimit)
                .value_or(std::string());
        std::string_view rest = text;
        while (!rest.empty()) {
            const std::string_view line = rest.substr(0, rest.find('\n'));
            rest.remove_prefix(std::min(line.size() + 1, rest.size()));
            const std::size_t path = line.find('/');
            if (path != std::string_view::npos && isHeldPath(line.substr(path)))
                return std::string(line.substr(path));
        }
        return {};
    }

    bool isDevice(std::string_view path) const {
        return std::find(m_volume.devices.begin(), m_volume.devices.end(), path) !=
               m_volume.devices.end();
    }

    bool isOnPoint(std::string_view path) const {
        return std::any_of(m_volume.mounts.begin(), m_volume.mounts.end(),
                           [&](const MountEntry& mount) { return isWithin(path, mount.point); });
    }

    bool isHeldPath(std::string_view path) const { return isDevice(path) || isOnPoint(path); }

    static std::optional<std::uint64_t> mountOf(const std::string& descriptorInfo) {
        constexpr std::string_view label = "mnt_id:";
        const std::string text =
            readSystemText(descriptorInfo, smallHolderText).value_or(std::string());
        std::size_t at = text.find(label);
        if (at == std::string::npos) return std::nullopt;
        at = text.find_first_not_of(" \t", at + label.size());
        if (at == std::string::npos) return std::nullopt;
        std::uint64_t number = 0;
        const auto [end, error] =
            std::from_chars(text.data() + at, text.data() + text.size(), number);
        if (error != std::errc{}) return std::nullopt;
        return number;
    }

    const HeldVolume m_volume;
    const Clock::time_point m_end;
    const std::shared_ptr<Findings> m_findings;
    std::set<std::uint64_t> m_mountIds;
};

}  // namespace

std::vector<VolumeHolder> findVolumeHolders(HeldVolume volume, std::chrono::milliseconds patience) {
    const auto end = Clock::now() + patience;
    const auto findings = std::make_shared<Findings>();
    auto search = std::make_shared<HolderSearch>(std::move(volume), end, findings);
    try {
        std::thread([search = std::move(search)] { search->run(); }).detach();
    } catch (const std::system_error&) {
        return {};  // no thread to be had: the volume is in use, by whom stays unknown
    }
    std::unique_lock lock(findings->mutex);
    findings->isDone.wait_until(lock, end, [&] { return findings->done; });
    std::vector<VolumeHolder> holders;
    for (const auto& [process, holder] : findings->holders) holders.push_back(holder);
    return holders;
}

}  // namespace orrinvale
