// LinuxFileSystem: what removing needs of it: holding folders by path, opening, moving and removing
// by name.
#include <fcntl.h>
#include <linux/fs.h>
#include <linux/magic.h>
#include <linux/openat2.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/vfs.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdio>
#include <string_view>

#include "platform/linux/LinuxFiles.h"

#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr int mostLinks = 40;  // as the kernel, path_resolution(7)

SysResult<Descriptor> openResolving(int parent, const char* path, int flags, unsigned resolve) {
    open_how how{};
    how.flags = static_cast<unsigned>(flags);
    how.resolve = resolve;
    for (;;) {
        const long number = ::syscall(SYS_openat2, parent, path, &how, sizeof how);
        if (number >= 0) return Descriptor(static_cast<int>(number));
        if (errno != EINTR && errno != EAGAIN) return tl::unexpected(errno);
    }
}

// No openat2 before Linux 5.6; sandboxes that do not know it answer EPERM.
bool isMissing(int error) { return error == ENOSYS || error == EPERM; }

SysResult<Descriptor> openPlain(int parent, const char* name, int flags) {
    for (;;) {
        const int number = ::openat(parent, name, flags | O_CLOEXEC);
        if (number >= 0) return Descriptor(number);
        if (errno != EINTR) return tl::unexpected(errno);
    }
}

// Resolves a path as the kernel does, but one name at a time, so that it is our choice which links
// are followed.
class Walk {
public:
    Walk(int parent, std::string_view path, Links onTheWay)
        : m_parent(parent), m_rest(path), m_onTheWay(onTheWay) {}

    SysResult<Descriptor> run() {
        int error = startAtRoot();
        while (error == 0 && !m_rest.empty()) error = step(nextName());
        if (error == 0 && !m_here.isOpen()) error = ENOENT;  // an empty path names nothing
        if (error != 0) return tl::unexpected(error);
        return std::move(m_here);
    }

private:
    int startAtRoot() {
        if (m_rest.empty() || m_rest.front() != '/') return 0;
        auto root = openPlain(AT_FDCWD, "/", O_PATH | O_DIRECTORY);
        if (!root) return root.error();
        m_here = std::move(*root);
        return 0;
    }

    std::string nextName() {
        std::string_view rest = m_rest;
        std::string name(nextComponent(rest));
        m_rest.erase(0, m_rest.size() - rest.size());
        return name;
    }

    int step(const std::string& name) {
        if (name.empty()) return 0;
        auto next =
            openPlain(m_here.isOpen() ? m_here.get() : m_parent, name.c_str(), O_PATH | O_NOFOLLOW);
        if (!next) return next.error();
        struct stat seen {};
        if (::fstat(next->get(), &seen) != 0) return errno;
        if (S_ISLNK(seen.st_mode)) return follow(next->get());
        if (!S_ISDIR(seen.st_mode)) return ENOTDIR;
        m_here = std::move(*next);
        return 0;
    }

    int follow(int link) {
        struct statfs system {};
        if (m_onTheWay == Links::Keep || ++m_links > mostLinks) return ELOOP;
        if (::fstatfs(link, &system) != 0 || system.f_type == PROC_SUPER_MAGIC) return ELOOP;
        std::array<char, PATH_MAX> text;
        const ssize_t length = ::readlinkat(link, "", text.data(), text.size());
        if (length <= 0) return length < 0 ? errno : ENOENT;
        m_rest.insert(0, std::string(text.data(), static_cast<std::size_t>(length)) + '/');
        return startAtRoot();
    }

    const int m_parent;
    std::string m_rest;
    const Links m_onTheWay;
    Descriptor m_here;
    int m_links = 0;
};

}  // namespace

SysResult<Descriptor> LinuxFileSystem::holdFolder(int parent, const char* path,
                                                  Links onTheWay) const {
    const unsigned links = onTheWay == Links::Keep ? RESOLVE_NO_SYMLINKS : RESOLVE_NO_MAGICLINKS;
    auto held = openResolving(parent, path, O_PATH | O_DIRECTORY | O_CLOEXEC, links);
    if (held || !isMissing(held.error())) return held;
    return Walk(parent, path, onTheWay).run();
}

SysResult<Descriptor> LinuxFileSystem::openInside(int parent, const char* name) const {
    constexpr int flags = O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
    auto opened = openResolving(parent, name, flags, RESOLVE_NO_SYMLINKS | RESOLVE_NO_XDEV);
    if (opened || !isMissing(opened.error())) return opened;
    return openPlain(parent, name, flags);
}

SysResult<void> LinuxFileSystem::removeEntry(int folder, const char* name, FileType type) const {
    while (::unlinkat(folder, name, type == FileType::Folder ? AT_REMOVEDIR : 0) != 0)
        if (errno != EINTR) return tl::unexpected(errno);
    return {};
}

SysResult<void> LinuxFileSystem::renameInside(int folder, const char* name,
                                              const char* newName) const {
    if (::renameat2(folder, name, folder, newName, RENAME_NOREPLACE) == 0) return {};
    return tl::unexpected(errno);
}

// File systems that can not promise to spare an entry answer EINVAL, as every one does for a folder
// into itself. A second name is never made over anything; folders have none, and take the place of
// an empty folder at the most.
SysResult<void> LinuxFileSystem::moveEntry(int folder, const char* name, int newFolder,
                                           const char* newName) const {
    if (::renameat2(folder, name, newFolder, newName, RENAME_NOREPLACE) == 0) return {};
    if (errno != EINVAL) return tl::unexpected(errno);
    const auto entry = attributes(folder, name, Links::Keep);
    if (!entry) return tl::unexpected(entry.error());
    if (entry->type != FileType::Folder) {
        if (::linkat(folder, name, newFolder, newName, 0) != 0) return tl::unexpected(errno);
        return removeEntry(folder, name, entry->type);
    }
    if (attributes(newFolder, newName, Links::Keep)) return tl::unexpected(EEXIST);
    if (::renameat(folder, name, newFolder, newName) != 0) return tl::unexpected(errno);
    return {};
}

// A read lease is given only where nobody has the file open for writing, a mapping included. It is
// given back at once: who opens the file meanwhile is not kept waiting. The signal that tells of
// such an opening, SIGIO, would end the program.
bool LinuxFileSystem::isOpenForWriting(int file) const {
    static const bool isIgnored = ::signal(SIGIO, SIG_IGN) != SIG_ERR;
    if (!isIgnored) return false;
    if (::fcntl(file, F_SETLEASE, F_RDLCK) != 0) return errno == EAGAIN;
    (void)::fcntl(file, F_SETLEASE, F_UNLCK);
    return false;
}

SysResult<bool> LinuxFileSystem::clearImmutable(int descriptor) const {
    int flags = 0;
    if (::ioctl(descriptor, FS_IOC_GETFLAGS, &flags) != 0) {
        if (errno == ENOTTY || errno == EOPNOTSUPP || errno == ENOSYS) return false;
        return tl::unexpected(errno);
    }
    if ((flags & FS_IMMUTABLE_FL) == 0) return false;
    flags &= ~FS_IMMUTABLE_FL;
    if (::ioctl(descriptor, FS_IOC_SETFLAGS, &flags) != 0) return tl::unexpected(errno);
    return true;
}

}  // namespace orrinvale
