// By statm alone: smaps tells shared pages better, and takes 50 ms of the kernel for a process of
// 4 GiB.
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <map>
#include <optional>
#include <string_view>

#include "platform/linux/SystemText.h"
#include "platform/paths.h"
#include "platform/programMemory.h"

namespace orrinvale {
namespace {

constexpr std::size_t kSmall = 256;

// Pages.
struct Pages {
    std::uint64_t resident = 0;
    std::uint64_t shared = 0;  // with whoever has the same file open, or the same segment
};

struct Sum {
    std::string name;
    std::uint64_t resident = 0;
    std::uint64_t own = 0;
    std::uint64_t mostShared = 0;  // its processes share about the same
    bool isUpTo = false;
    std::size_t processes = 0;

    [[nodiscard]] std::uint64_t pages() const { return isUpTo ? resident : own + mostShared; }
};

bool isNumber(std::string_view name) {
    return !name.empty() && std::ranges::all_of(name, [](char c) { return c >= '0' && c <= '9'; });
}

// "size resident shared ...".
std::optional<Pages> pagesOf(const std::string& process) {
    const auto text = readSystemText(process + "/statm", kSmall);
    if (!text) return std::nullopt;  // it has ended
    std::array<std::uint64_t, 3> numbers{};
    const char* at = text->data();
    const char* const end = at + text->size();
    for (std::uint64_t& each : numbers) {
        while (at != end && *at == ' ') ++at;
        const auto [next, fault] = std::from_chars(at, end, each);
        if (fault != std::errc()) return std::nullopt;
        at = next;
    }
    return Pages{numbers[1], std::min(numbers[1], numbers[2])};
}

// Of a program that was replaced while it runs, by an update for one, the kernel says so behind the
// path.
std::string fileOf(const std::string& process) {
    constexpr std::string_view replaced = " (deleted)";
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlink((process + "/exe").c_str(), target.data(), target.size());
    if (length <= 0) return {};
    std::string path(target.data(), static_cast<std::size_t>(length));
    if (path.ends_with(replaced)) path.resize(path.size() - replaced.size());
    return path;
}

void addProcess(std::map<std::string, Sum>& programs, const std::string& process) {
    const auto pages = pagesOf(process);
    if (!pages || pages->resident == 0) return;
    const std::string file = fileOf(process);
    std::string name(lastPathComponent(file));
    if (file.empty()) {
        name = readSystemText(process + "/comm", kSmall).value_or(std::string());
        while (name.ends_with('\n')) name.pop_back();
    }
    if (name.empty()) return;
    Sum& sum = programs[file.empty() ? name : file];  // a path has a slash, that name is none
    sum.name = name;
    sum.resident += pages->resident;
    sum.own += pages->resident - pages->shared;
    sum.mostShared = std::max(sum.mostShared, pages->shared);
    sum.isUpTo = file.empty();
    ++sum.processes;
}

}  // namespace

std::vector<ProgramMemory> largestPrograms(std::size_t most, const std::string& procFolder) {
    std::map<std::string, Sum> programs;
    for (const std::string& name : systemNamesIn(procFolder))
        if (isNumber(name)) addProcess(programs, joinPath(procFolder, name));
    const auto page = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
    std::vector<ProgramMemory> all;
    all.reserve(programs.size());
    for (const auto& [key, each] : programs)
        all.push_back({each.name, each.pages() * page, each.isUpTo, each.processes});
    std::ranges::stable_sort(all, std::ranges::greater(), &ProgramMemory::bytes);
    if (all.size() > most) all.resize(most);
    return all;
}

}  // namespace orrinvale
