// BlockedCalls (platform/blockedCalls.h): proc(5) shows the system call that a thread waits in with
// its arguments, and so the path, which lies in our own memory.
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <climits>
#include <cstdint>
#include <optional>
#include <string_view>

#include "platform/blockedCalls.h"
#include "platform/descriptor.h"
#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::size_t kLineLimit = 4096;

struct Call {
    int number = -1;
    std::array<std::uint64_t, 2> arguments{};
};

constexpr std::array kOnDescriptor{SYS_read,      SYS_pread64,        SYS_getdents64, SYS_fstat,
                                   SYS_fstatfs,   SYS_fadvise64,      SYS_lseek,      SYS_ioctl,
                                   SYS_close,     SYS_readahead,      SYS_flistxattr, SYS_fsync,
                                   SYS_fgetxattr, SYS_copy_file_range};
constexpr std::array kBelowFolder{SYS_openat,     SYS_openat2,  SYS_newfstatat, SYS_statx,
                                  SYS_readlinkat, SYS_unlinkat, SYS_faccessat};
#ifdef SYS_stat
constexpr std::array kByPath{SYS_stat,     SYS_lstat,  SYS_open,    SYS_access,
                             SYS_readlink, SYS_statfs, SYS_getxattr};
#else
constexpr std::array kByPath{SYS_statfs, SYS_getxattr};
#endif

template <std::size_t Size> bool has(const std::array<int, Size>& numbers, int number) {
    return std::ranges::find(numbers, number) != numbers.end();
}

// "NUMBER 0xARGUMENT 0xARGUMENT ..."; "running" and a number of -1 are no call.
std::optional<Call> parseCall(std::string_view line) {
    Call call;
    const auto number = std::from_chars(line.data(), line.data() + line.size(), call.number);
    if (number.ec != std::errc{} || call.number < 0) return std::nullopt;
    line.remove_prefix(static_cast<std::size_t>(number.ptr - line.data()));
    for (std::uint64_t& argument : call.arguments) {
        if (!line.starts_with(" 0x")) return std::nullopt;
        line.remove_prefix(3);
        const auto read = std::from_chars(line.data(), line.data() + line.size(), argument, 16);
        if (read.ec != std::errc{}) return std::nullopt;
        line.remove_prefix(static_cast<std::size_t>(read.ptr - line.data()));
    }
    return call;
}

// By a descriptor: the thread may go on meanwhile and free what the address points at, which is
// then an error and no fault.
std::string textAt(std::uint64_t address) {
    const Descriptor memory(::open("/proc/self/mem", O_RDONLY | O_CLOEXEC));
    std::array<char, PATH_MAX> text;
    const ssize_t count =
        ::pread(memory.get(), text.data(), text.size(), static_cast<off_t>(address));
    if (count <= 0) return {};
    return std::string(text.data(), ::strnlen(text.data(), static_cast<std::size_t>(count)));
}

std::string linkText(const std::string& path) {
    std::array<char, PATH_MAX> target;
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    return length <= 0 ? std::string()
                       : std::string(target.data(), static_cast<std::size_t>(length));
}

// A thread may have a table of descriptors of its own.
std::string pathOfDescriptor(const std::string& task, std::uint64_t descriptor) {
    const auto number = static_cast<int>(descriptor);
    return linkText(number == AT_FDCWD ? task + "/cwd" : fmt::format("{}/fd/{}", task, number));
}

std::string pathOf(const std::string& task, const Call& call) {
    if (has(kOnDescriptor, call.number)) return pathOfDescriptor(task, call.arguments[0]);
    std::string text;
    if (has(kBelowFolder, call.number)) text = textAt(call.arguments[1]);
    else if (has(kByPath, call.number)) text = textAt(call.arguments[0]);
    else return {};
    if (text.starts_with('/')) return text;
    const std::string folder = has(kByPath, call.number)
                                   ? linkText(task + "/cwd")
                                   : pathOfDescriptor(task, call.arguments[0]);
    return text.empty() ? folder : joinPath(folder, text);
}

// The lines that count how often the thread has given the processor up.
std::string turnsOf(const std::string& task) {
    const std::string status = readSystemText(task + "/status", kLineLimit).value_or(std::string());
    const std::size_t at = status.find("voluntary_ctxt_switches:");
    return at == std::string::npos ? std::string() : status.substr(at);
}

}  // namespace

std::vector<BlockedCall> blockedCalls() {
    const std::string tasks = "/proc/self/task";
    std::vector<BlockedCall> blocked;
    for (const std::string& name : systemNamesIn(tasks)) {
        const std::string task = joinPath(tasks, name);
        const std::string line =
            readSystemText(task + "/syscall", kLineLimit).value_or(std::string());
        const auto call = parseCall(line);
        if (!call) continue;
        std::string path = pathOf(task, *call);
        // Pipes, sockets and what the kernel makes itself have names without a slash in front.
        if (path.starts_with('/'))
            blocked.push_back({std::move(path), fmt::format("{} {}{}", name, line, turnsOf(task))});
    }
    return blocked;
}

}  // namespace orrinvale
