// The figures of /proc/meminfo, which all come from one reading, so that they add up.
#include "platform/linux/LinuxMemory.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <fstream>
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

    [[nodiscard]] std::uint64_t operator[](std::string_view name) const {
        const auto found = m_values.find(name);
        return found == m_values.end() ? 0 : found->second;
    }
    [[nodiscard]] bool has(std::string_view name) const { return m_values.contains(name); }

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
        if (number == line.npos) return;
        std::uint64_t value = 0;
        const auto read = std::from_chars(line.data() + number, line.data() + line.size(), value);
        if (read.ec == std::errc{}) m_values.emplace(line.substr(0, nameEnd), value);
    }

    std::map<std::string, std::uint64_t, std::less<>> m_values;
};

SysResult<Figures> memoryFigures(const std::string& root) {
    auto figures = Figures::of(root + "/proc/meminfo");
    if (figures && !figures->has("MemTotal")) return tl::unexpected(ENOENT);
    return figures;
}

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
    return memoryFigures(m_root).map(
        [](const Figures& figures) { return std::optional(figures["MemTotal"] * kibibyte); });
}

SysResult<MemoryCounts> LinuxMemory::counts() const {
    const auto memory = memoryFigures(m_root);
    if (!memory) return tl::unexpected(memory.error());
    const std::uint64_t page = pageSize();
    const auto pages = [&](std::string_view name) { return (*memory)[name] * kibibyte / page; };
    MemoryCounts out;
    out.free = pages("MemFree");
    out.active = pages("Active") + pages("Inactive(anon)");
    out.inactive = pages("Inactive(file)");
    const std::uint64_t known = out.free + out.active + out.inactive;
    out.wired = pages("MemTotal") - std::min(pages("MemTotal"), known);
    // pgpgin and pgpgout count kibibytes, whatever their names say; pgfault counts pages.
    if (const auto events = Figures::of(m_root + "/proc/vmstat")) {
        out.pageIns = (*events)["pgpgin"] * kibibyte / page;
        out.pageOuts = (*events)["pgpgout"] * kibibyte / page;
        out.faults = (*events)["pgfault"];
    }
    return out;
}

SysResult<MemoryState> LinuxMemory::state() const {
    const auto memory = memoryFigures(m_root);
    if (!memory) return tl::unexpected(memory.error());
    MemoryState out;
    out.available = (*memory)["MemAvailable"] * kibibyte;
    out.swapTotal = (*memory)["SwapTotal"] * kibibyte;
    out.swapUsed = out.swapTotal - std::min(out.swapTotal, (*memory)["SwapFree"] * kibibyte);
    out.pressure = pressureOf(m_root);
    return out;
}

std::uint64_t LinuxMemory::room() const {
    const auto now = state();
    return now ? std::min(now->available, roomInMemoryGroups(m_root)) : 0;
}

void LinuxMemory::endThisProcessFirst() const {
    std::ofstream(m_root + "/proc/self/oom_score_adj") << "1000";
}

}  // namespace orrinvale
