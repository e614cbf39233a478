// The order of the system calls in commit() is the point of this file; the tests break each one.
#include "engine/files/DurableFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <thread>
#include <utility>

#include "engine/base/Log.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds kLockPause{5};
constexpr int kLockTries = 400;  // two seconds

Error notRegular(std::string_view operation, const std::string& path) {
    return Error{ErrorKind::NotARegularFile, operation, path, 0};
}

// What lies in the file itself, and not in this process or in the folder: such a file would fail in
// every run to come.
bool isDamage(const Error& error) {
    return error.number == EFBIG || error.number == EIO || error.number == EACCES;
}

Result<void> lock(int file, const std::string& path) {
    for (int tries = 1; ::flock(file, LOCK_EX | LOCK_NB) != 0; ++tries) {
        if (errno == EINTR) continue;
        // A file system without locks is no reason to save nothing: writers then take no turns, and
        // each still writes whole files.
        if (errno == ENOLCK || errno == EOPNOTSUPP || errno == ENOSYS) return {};
        if (errno != EWOULDBLOCK || tries >= kLockTries)
            return tl::unexpected(systemError("lock", path, errno));
        std::this_thread::sleep_for(kLockPause);
    }
    return {};
}

// Some file systems can not flush a folder and say EINVAL; with those nothing more can be done.
int flushFolder(int folder) { return ::fsync(folder) == 0 || errno == EINVAL ? 0 : errno; }

Result<std::string> readBytes(int file, std::size_t limit, const std::string& path,
                              off_t expected) {
    std::string bytes;
    bytes.reserve(std::min(limit, static_cast<std::size_t>(expected)));
    for (;;) {
        char piece[16384];
        const ssize_t count = ::read(file, piece, sizeof piece);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return tl::unexpected(systemError("read", path, errno));
        if (count == 0) return bytes;
        bytes.append(piece, static_cast<std::size_t>(count));
        if (bytes.size() > limit) return tl::unexpected(systemError("read", path, EFBIG));
    }
}

// "NAME.bad", "NAME.bad.2", "NAME.bad.3" ...
std::string asideName(const std::string& name, int number) {
    return number == 1 ? name + ".bad" : fmt::format("{}.bad.{}", name, number);
}

bool isThere(int folder, const std::string& name) {
    struct stat status {};
    return ::fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 || errno != ENOENT;
}

// Never over another entry; 0 or the error. Where the file system has no such rename, the one who
// asks holds the writers' lock.
int renameToFree(int folder, const std::string& from, const std::string& to) {
    if (::renameat2(folder, from.c_str(), folder, to.c_str(), RENAME_NOREPLACE) == 0) return 0;
    if (errno != EINVAL && errno != ENOSYS) return errno;
    if (isThere(folder, to)) return EEXIST;
    return ::renameat(folder, from.c_str(), folder, to.c_str()) == 0 ? 0 : errno;
}

}  // namespace

Result<std::string> DurableFile::read(const std::string& path, std::size_t limit, Owner owner) {
    const Descriptor file(
        ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) return tl::unexpected(systemError("open", path, errno));
    struct stat status {};
    if (::fstat(file.get(), &status) != 0) return tl::unexpected(systemError("stat", path, errno));
    if (!S_ISREG(status.st_mode)) return tl::unexpected(notRegular("open", path));
    if (owner == Owner::Me && status.st_uid != ::geteuid())
        return tl::unexpected(systemError("open", path, EPERM));
    return readBytes(file.get(), limit, path, status.st_size);
}

Result<std::string> DurableFile::readWell(const std::string& path, std::size_t limit,
                                          const Test& isWell) {
    auto bytes = read(path, limit);
    if (bytes ? isWell(*bytes) : !isDamage(bytes.error())) return bytes;
    // Looked at again as a writer: another process may be about to mend the file.
    auto file = begin(path);
    if (!file) return tl::unexpected(file.error());
    return file->current(limit, isWell);
}

Result<std::string> DurableFile::current(std::size_t limit, const Test& isWell) const {
    auto bytes = read(m_path, limit);
    if (bytes ? isWell(*bytes) : !isDamage(bytes.error())) return bytes;
    if (auto aside = putAside(); !aside) return tl::unexpected(aside.error());
    return failure("read", EBADMSG);
}

Result<std::string> DurableFile::keepCopy(const std::string& path, std::string_view bytes) {
    for (int number = 1; number <= asideLimit; ++number) {
        const std::string aside = asideName(path, number);
        if (const auto there = read(aside, bytes.size()); there && *there == bytes)
            return std::string();
        auto copy = begin(aside);
        if (!copy) return tl::unexpected(copy.error());
        if (isThere(copy->m_folder.get(), copy->m_name)) continue;
        if (auto saved = copy->commit(bytes); !saved) return tl::unexpected(saved.error());
        return aside;
    }
    return tl::unexpected(systemError("copy", path, EEXIST));
}

Result<void> DurableFile::remove(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        return errno == ENOENT ? Result<void>() : tl::unexpected(systemError("stat", path, errno));
    if (!S_ISREG(status.st_mode)) return tl::unexpected(notRegular("remove", path));
    if (status.st_uid != ::geteuid()) return tl::unexpected(systemError("remove", path, EPERM));
    if (::unlink(path.c_str()) != 0 && errno != ENOENT)
        return tl::unexpected(systemError("remove", path, errno));
    return {};
}

Result<std::string> DurableFile::behindOwnLinks(const std::string& path) {
    constexpr int kMostLinks = 40;  // as many as the kernel follows
    std::string at = path;
    for (int links = 0; links < kMostLinks; ++links) {
        struct stat status {};
        if (::lstat(at.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) return at;
        if (status.st_uid != ::geteuid()) return tl::unexpected(systemError("readlink", at, EPERM));
        std::array<char, PATH_MAX> target;
        const ssize_t length = ::readlink(at.c_str(), target.data(), target.size());
        if (length < 0) return tl::unexpected(systemError("readlink", at, errno));
        const std::string next(target.data(), static_cast<std::size_t>(length));
        at = next.starts_with('/') ? next : joinPath(folderOf(at), next);
    }
    return tl::unexpected(systemError("readlink", path, ELOOP));
}

Result<void> DurableFile::save(const std::string& path, std::string_view bytes) {
    auto file = begin(path);
    if (!file) return tl::unexpected(file.error());
    return file->commit(bytes);
}

Result<void> DurableFile::makeFolder(const std::string& path) {
    int number = ::mkdir(path.c_str(), 0700) == 0 ? 0 : errno;
    if (number == ENOENT && folderOf(path) != path) {
        if (auto above = makeFolder(folderOf(path)); !above) return above;
        number = ::mkdir(path.c_str(), 0700) == 0 ? 0 : errno;
    }
    if (number == EEXIST) {
        struct stat status {};
        if (::stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) return {};
        number = ENOTDIR;
    }
    if (number != 0) return tl::unexpected(systemError("mkdir", path, number));
    const Descriptor above(::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    number = above.isOpen() ? flushFolder(above.get()) : errno;
    // A folder that may be entered but not listed can not be flushed; the new one in it is none the
    // worse.
    if (number != 0 && number != EACCES) return tl::unexpected(systemError("fsync", path, number));
    return {};
}

DurableFile::DurableFile(std::string path, Descriptor folder)
    : m_path(std::move(path)), m_name(splitPath(m_path).name), m_folder(std::move(folder)) {}

DurableFile::~DurableFile() {
    if (m_file.isOpen()) ::unlinkat(m_folder.get(), (m_name + ".new").c_str(), 0);
}

tl::unexpected<Error> DurableFile::failure(std::string_view operation, int number) const {
    return tl::unexpected(systemError(operation, m_path, number));
}

Result<DurableFile> DurableFile::begin(const std::string& path) {
    Descriptor folder(::open(folderOf(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder.isOpen()) return tl::unexpected(systemError("open", path, errno));
    DurableFile file(path, std::move(folder));
    const auto until = std::chrono::steady_clock::now() + kLockTries * kLockPause;
    while (std::chrono::steady_clock::now() < until) {
        const auto taken = file.takeTemporary();
        if (!taken) return tl::unexpected(taken.error());
        if (*taken) return file;
    }
    return tl::unexpected(systemError("lock", path, EWOULDBLOCK));
}

// False when the file that was locked is no longer the one of that name: its writer has renamed or
// removed it meanwhile.
Result<bool> DurableFile::takeTemporary() {
    const std::string name = m_name + ".new";
    Descriptor file(::openat(m_folder.get(), name.c_str(),
                             O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
    if (!file.isOpen()) return failure("create", errno);
    if (auto locked = lock(file.get(), m_path); !locked) return tl::unexpected(locked.error());
    struct stat own {};
    struct stat named {};
    if (::fstat(file.get(), &own) != 0) return failure("stat", errno);
    if (::fstatat(m_folder.get(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT) return false;
        return failure("stat", errno);
    }
    if (own.st_dev != named.st_dev || own.st_ino != named.st_ino) return false;
    if (!S_ISREG(own.st_mode)) return tl::unexpected(notRegular("create", m_path));
    if (own.st_uid != ::geteuid()) return failure("create", EPERM);
    if (own.st_nlink != 1) {  // a second name of some other file, which must keep its bytes
        if (::unlinkat(m_folder.get(), name.c_str(), 0) != 0) return failure("unlink", errno);
        return false;
    }
    if (own.st_size != 0 && ::ftruncate(file.get(), 0) != 0) return failure("truncate", errno);
    m_file = std::move(file);
    return true;
}

Result<void> DurableFile::commit(std::string_view bytes, const Replacing& how) {
    constexpr mode_t permissions = 0777;
    if (how.mode && ::fchmod(m_file.get(), *how.mode & permissions) != 0)
        return failure("chmod", errno);
    if (auto written = append(bytes); !written) return written;
    if (auto flushed = flush(); !flushed) return flushed;
    if (auto free = checkReplaceable(how); !free) return free;
    if (::renameat(m_folder.get(), (m_name + ".new").c_str(), m_folder.get(), m_name.c_str()) != 0)
        return failure("rename", errno);
    m_file.reset();
    if (const int number = flushFolder(m_folder.get()); number != 0)
        return failure("fsync", number);
    return {};
}

Result<void> DurableFile::append(std::string_view bytes) {
    m_size += bytes.size();
    for (std::string_view rest = bytes; !rest.empty();) {
        const ssize_t count = ::write(m_file.get(), rest.data(), rest.size());
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return failure("write", errno);
        rest.remove_prefix(static_cast<std::size_t>(count));
    }
    return {};
}

Result<void> DurableFile::flush() const {
    if (::fsync(m_file.get()) != 0) return failure("fsync", errno);
    struct stat status {};
    if (::fstat(m_file.get(), &status) != 0) return failure("stat", errno);
    if (status.st_size != static_cast<off_t>(m_size)) return failure("write", EIO);
    // Network file systems tell of a lost write when a descriptor is closed. It is a copy that is
    // closed here, because the lock must hold until the rename.
    const int copy = ::fcntl(m_file.get(), F_DUPFD_CLOEXEC, 3);
    if (copy < 0) return failure("close", errno);
    if (::close(copy) != 0 && errno != EINTR) return failure("close", errno);
    return {};
}

Result<void> DurableFile::checkReplaceable(const Replacing& how) const {
    struct stat status {};
    if (::fstatat(m_folder.get(), m_name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0) {
        if (errno == ENOENT) return {};
        return failure("stat", errno);
    }
    const bool isWell = S_ISREG(status.st_mode) || (how.givesWayAsLink && S_ISLNK(status.st_mode));
    if (!isWell) return tl::unexpected(notRegular("rename", m_path));
    if (status.st_uid != ::geteuid() && !how.givesWayOfAnybody) return failure("rename", EPERM);
    return {};
}

Result<void> DurableFile::putAside() const {
    if (auto mine = checkReplaceable({}); !mine) return mine;
    for (int number = 1; number <= asideLimit; ++number) {
        const int error = renameToFree(m_folder.get(), m_name, asideName(m_name, number));
        if (error == EEXIST) continue;
        if (error != 0) return failure("rename", error);
        Log::line(fmt::format("{} can not be read and is kept as {}.", m_path,
                              asideName(m_path, number)));
        return {};
    }
    return failure("rename", EEXIST);
}

}  // namespace orrinvale
