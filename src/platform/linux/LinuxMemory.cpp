// The figures of /proc/meminfo, which all come from one reading, so that they add up.
#include "platform/linux/LinuxMemory.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <map>

#include "platform/linux/MemoryGroups.h"
#include "platform/linux/SystemText.h"

namespace orrinvale {
namespace {

constexpr std::size_t textLimit = 256 * 1024;
constexpr std::uint64_t kibibyte = 1024;

// The lines "NAME: NUMBER kB" of meminfo and "NAME NUMBER" of vmstat. Lines of another form are
// left out.
class Figures final {
public:
    static SysResult<Figures> of(const std::string& path) {
        return readSystemText(path, textLimit).map([](const std::string& text) {
            return Figures(text);
        });
    }

    // ENOENT where there is no such line.
    static SysResult<Figures> of(const std::string& path,
                                 std::initializer_list<std::string_view> needed) {
        auto figures = of(path);
        for (const std::string_view name : needed)
            if (figures && !figures->get(name)) return tl::unexpected(ENOENT);
        return figures;
    }

    [[nodiscard]] std::optional<std::uint64_t> get(std::string_view name) const {
        const auto found = m_values.find(name);
        return found == m_values.end() ? std::nullopt : std::optional(found->second);
    }
    [[nodiscard]] std::uint64_t operator[](std::string_view name) const {
        return get(name).value_or(0);
    }
    // The same of a line in KiB.
    [[nodiscard]] std::optional<std::uint64_t> bytes(std::string_view name) const {
        const auto value = get(name);
        return value ? std::optional(*value * kibibyte) : std::nullopt;
    }

private:
    explicit Figures(std::string_view text) {
        while (!text.empty()) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            add(text.substr(0, end));
            text.remove_prefix(std::min(end + 1, text.size()));
        }
    }

    void add(std::string_view line) {
        const std::size_t nameEnd = line.find_first_of(": ");
        const std::size_t number = line.find_first_of("0123456789", std::min(nameEnd, line.size()));
        if (number == std::string_view::npos) return;
        std::uint64_t value = 0;
        const auto read = std::from_chars(line.data() + number, line.data() + line.size(), value);
        if (read.ec == std::errc{}) m_values.emplace(line.substr(0, nameEnd), value);
    }

    std::map<std::string, std::uint64_t, std::less<>> m_values;
};

constexpr const char* memoryFile = "/proc/meminfo";

std::uint64_t pageSize() { return static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)); }

// "some avg10=0.00 avg60=1.25 avg300=..."
std::optional<double> pressureOf(const std::string& root) {
    const auto text = readSystemText(root + "/proc/pressure/memory", textLimit);
    if (!text) return std::nullopt;
    constexpr std::string_view key = "avg60=";
    const std::size_t found = text->find(key);  // the first line is that of some program
    if (found == text->npos) return std::nullopt;
    double percent = 0;
    const auto read =
        std::from_chars(text->data() + found + key.size(), text->data() + text->size(), percent);
    return read.ec == std::errc{} ? std::optional(percent) : std::nullopt;
}

}  // namespace

SysResult<std::optional<std::uint64_t>> LinuxMemory::figure(std::string_view name) const {
    if (name == "hw.pagesize") return pageSize();
    if (name != "hw.physmem" && name != "hw.memsize") return tl::unexpected(ENOENT);
    return Figures::of(m_root + memoryFile, {"MemTotal"}).map([](const Figures& figures) {
        return figures.bytes("MemTotal");
    });
}

SysResult<MemoryCounts> LinuxMemory::counts() const {
    const auto memory = Figures::of(
        m_root + memoryFile, {"MemTotal", "MemFree", "Active", "Inactive(anon)", "Inactive(file)"});
    if (!memory) return tl::unexpected(memory.error());
    const auto pages = [&](std::string_view name) {
        return (*memory)[name] * kibibyte / pageSize();
    };
    // The kernel counts while it goes on, and what stands in for it in a container counts in its
    // own way: what is more than all is left out, so that the four still add up.
    std::uint64_t rest = pages("MemTotal");
    const auto take = [&rest](std::uint64_t count) {
        const std::uint64_t taken = std::min(count, rest);
        rest -= taken;
        return taken;
    };
    MemoryCounts out;
    out.free = take(pages("MemFree"));
    out.active = take(pages("Active") + pages("Inactive(anon)"));
    out.inactive = take(pages("Inactive(file)"));
    out.wired = rest;
    // pgpgin and pgpgout count kibibytes, whatever their names say; pgfault counts pages.
    if (const auto events = Figures::of(m_root + "/proc/vmstat")) {
        out.bytesIn = events->bytes("pgpgin");
        out.bytesOut = events->bytes("pgpgout");
        out.faults = events->get("pgfault");
    }
    return out;
}

SysResult<MemoryState> LinuxMemory::state() const {
    const auto memory = Figures::of(m_root + memoryFile, {"MemTotal", "SwapTotal", "SwapFree"});
    if (!memory) return tl::unexpected(memory.error());
    MemoryState out;
    out.available = memory->bytes("MemAvailable");
    out.swapTotal = (*memory)["SwapTotal"] * kibibyte;
    out.swapUsed = out.swapTotal - std::min(out.swapTotal, (*memory)["SwapFree"] * kibibyte);
    out.pressure = pressureOf(m_root);
    return out;
}

std::uint64_t LinuxMemory::room() const {
    const auto now = state();
    return now && now->available ? std::min(*now->available, roomInMemoryGroups(m_root)) : 0;
}

bool LinuxMemory::endThisProcessFirst() const {
    constexpr std::string_view highest = "1000";
    const Descriptor file(
        ::open((m_root + "/proc/self/oom_score_adj").c_str(), O_WRONLY | O_CLOEXEC));
    return file.isOpen() && ::write(file.get(), highest.data(), highest.size()) ==
                                static_cast<ssize_t>(highest.size());
}

}  // namespace orrinvale
