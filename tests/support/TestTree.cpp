// TestTree: see TestTree.h.
#include "support/TestTree.h"

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <random>
#include <sstream>
#include <stdexcept>
#include <vector>

namespace orrinvale::testing {
namespace {

bool isDots(const char* name) {
    return std::strcmp(name, ".") == 0 || std::strcmp(name, "..") == 0;
}

bool writeAll(int file, std::string_view bytes, std::uint64_t offset) {
    while (!bytes.empty()) {
        const ssize_t count =
            ::pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(count));
        offset += static_cast<std::uint64_t>(count);
    }
    return true;
}

bool writeAt(int folder, const char* name, std::string_view bytes) {
    const Descriptor file(::openat(
        folder, name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0644));
    return file.isOpen() && writeAll(file.get(), bytes, 0);
}

// Removes what is no folder; the name of a folder that is left, or nothing.
std::string removeFiles(int folder) {
    const int copy = ::openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::fdopendir(copy), &::closedir);
    if (!entries) return {};
    std::string left;
    while (const dirent* entry = ::readdir(entries.get())) {
        if (isDots(entry->d_name) || ::unlinkat(folder, entry->d_name, 0) == 0) continue;
        if (errno == EISDIR || errno == EPERM) left = entry->d_name;
    }
    return left;
}

// Two descriptors at any depth: on the way up the parent is opened through "..".
void emptyFolder(int start) {
    std::vector<std::string> names;
    Descriptor here(::dup(start));
    for (;;) {
        ::fchmod(here.get(), 0700);
        const std::string next = removeFiles(here.get());
        if (!next.empty()) {
            (void)!::fchmodat(here.get(), next.c_str(), 0700, 0);
            Descriptor below(::openat(here.get(), next.c_str(),
                                      O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
            if (!below.isOpen()) return;
            names.push_back(next);
            here = std::move(below);
            continue;
        }
        if (names.empty()) return;
        Descriptor above(::openat(here.get(), "..", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!above.isOpen() || ::unlinkat(above.get(), names.back().c_str(), AT_REMOVEDIR) != 0)
            return;
        here = std::move(above);
        names.pop_back();
    }
}

}  // namespace

TestTree::TestTree(std::string base) {
    if (base.empty()) {
        const char* const chosen = std::getenv("TMPDIR");
        base = chosen != nullptr && *chosen != 0 ? chosen : "/tmp";
    }
    m_path = base + "/orrinvale-XXXXXX";
    if (::mkdtemp(m_path.data()) == nullptr)
        throw std::runtime_error("no temporary folder in " + base);
    ::chmod(m_path.c_str(), 0755);  // other users look in too
}

TestTree::~TestTree() {
    const Descriptor start(::open(m_path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!start.isOpen()) return;
    emptyFolder(start.get());
    ::rmdir(m_path.c_str());
}

bool TestTree::makeParents(const std::string& full) {
    for (std::size_t slash = full.find('/', m_path.size() + 1); slash != std::string::npos;
         slash = full.find('/', slash + 1))
        if (::mkdir(full.substr(0, slash).c_str(), 0755) != 0 && errno != EEXIST) return false;
    return true;
}

bool TestTree::write(std::string_view name, std::string_view bytes) {
    const std::string full = at(name);
    return makeParents(full) && writeAt(AT_FDCWD, full.c_str(), bytes);
}

bool TestTree::sparse(std::string_view name, std::uint64_t size) {
    return write(name, {}) && ::truncate(at(name).c_str(), static_cast<off_t>(size)) == 0;
}

bool TestTree::patch(std::string_view name, std::uint64_t offset, std::string_view bytes) {
    const Descriptor file(::open(at(name).c_str(), O_WRONLY | O_CLOEXEC));
    return file.isOpen() && writeAll(file.get(), bytes, offset);
}

bool TestTree::folder(std::string_view name) {
    const std::string full = at(name);
    return makeParents(full) && ::mkdir(full.c_str(), 0755) == 0;
}

bool TestTree::symlink(std::string_view target, std::string_view name) {
    const std::string full = at(name);
    return makeParents(full) && ::symlink(std::string(target).c_str(), full.c_str()) == 0;
}

bool TestTree::hardLink(std::string_view existing, std::string_view name) {
    const std::string full = at(name);
    return makeParents(full) && ::link(at(existing).c_str(), full.c_str()) == 0;
}

bool TestTree::fifo(std::string_view name) {
    const std::string full = at(name);
    return makeParents(full) && ::mkfifo(full.c_str(), 0644) == 0;
}

bool TestTree::socket(std::string_view name) {
    const std::string full = at(name);
    sockaddr_un address{};
    if (!makeParents(full) || full.size() >= sizeof address.sun_path) return false;
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path, full.c_str(), full.size());
    const Descriptor end(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    return ::bind(end.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
}

bool TestTree::setMode(std::string_view name, mode_t mode) {
    return ::chmod(at(name).c_str(), mode) == 0;
}

bool TestTree::giveAway(std::initializer_list<std::string_view> names) {
    return std::all_of(names.begin(), names.end(), [&](std::string_view name) {
        return ::lchown(at(name).c_str(), 65534, 65534) == 0;
    });
}

bool TestTree::makeDeep(std::string_view name, int levels, std::string_view leaf,
                        bool sideFolders) {
    if (!folder(name)) return false;
    Descriptor here(::open(at(name).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (int level = 0; level < levels; ++level) {
        if (sideFolders) {
            if (::mkdirat(here.get(), "s", 0755) != 0) return false;
            const Descriptor side(::openat(here.get(), "s", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
            if (!writeAt(side.get(), "leaf", leaf)) return false;
        }
        if (::mkdirat(here.get(), "d", 0755) != 0) return false;
        Descriptor below(::openat(here.get(), "d", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        if (!below.isOpen()) return false;
        here = std::move(below);
    }
    return writeAt(here.get(), "leaf", leaf);
}

bool isThere(const std::string& path) {
    return ::faccessat(AT_FDCWD, path.c_str(), F_OK, AT_SYMLINK_NOFOLLOW) == 0;
}

std::string contentOf(const std::string& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

FileAttributes attributesOf(const std::string& path) {
    return LinuxFileSystem().attributes(FileSystem::noParent, path.c_str(), Links::Keep).value();
}

void keepTimes(const std::string& path, const std::function<void()>& change) {
    struct stat seen {};
    if (::lstat(path.c_str(), &seen) != 0) throw std::runtime_error("nothing is at " + path);
    change();
    const timespec times[]{seen.st_atim, seen.st_mtim};
    ::utimensat(AT_FDCWD, path.c_str(), times, AT_SYMLINK_NOFOLLOW);
}

std::string someBytes(std::size_t size, unsigned seed) {
    std::minstd_rand random(seed + 1);
    std::string bytes(size, 0);
    for (char& byte : bytes) byte = static_cast<char>(random() >> 8U);
    return bytes;
}

std::string runInChild(const ChildSetting& setting, const std::function<std::string()>& check) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return "no pipe";
    const pid_t child = ::fork();
    if (child < 0) return "no process";
    if (child == 0) {
        ::alarm(60);
        const rlimit limit{setting.descriptors, setting.descriptors};
        bool ready = setting.descriptors == 0 || ::setrlimit(RLIMIT_NOFILE, &limit) == 0;
        if (setting.ordinaryUser && ::geteuid() == 0)
            ready = ready && ::setgroups(0, nullptr) == 0 && ::setgid(65534) == 0 &&
                    ::setuid(65534) == 0;
        const std::string text = ready ? check() : "the process could not be prepared";
        const bool told =
            ::write(ends[1], text.data(), text.size()) == static_cast<ssize_t>(text.size());
        ::_exit(told ? 0 : 1);
    }
    ::close(ends[1]);
    std::string text;
    char piece[4096];
    for (ssize_t count = 0; (count = ::read(ends[0], piece, sizeof piece)) > 0;)
        text.append(piece, static_cast<std::size_t>(count));
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFSIGNALED(status)) text += "\nended by signal " + std::to_string(WTERMSIG(status));
    else if (WEXITSTATUS(status) != 0)
        text += "\nended with status " + std::to_string(WEXITSTATUS(status));
    return text;
}

bool failSystemCall(long number, int error) {
    const std::array<sock_filter, 4> program{
        sock_filter{BPF_LD | BPF_W | BPF_ABS, 0, 0, offsetof(seccomp_data, nr)},
        sock_filter{BPF_JMP | BPF_JEQ | BPF_K, 0, 1, static_cast<unsigned>(number)},
        sock_filter{BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ERRNO | static_cast<unsigned>(error)},
        sock_filter{BPF_RET | BPF_K, 0, 0, SECCOMP_RET_ALLOW},
    };
    const sock_fprog filter{static_cast<unsigned short>(program.size()),
                            const_cast<sock_filter*>(program.data())};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

}  // namespace orrinvale::testing
