// served_files_program MOUNTPOINT SOURCE [FAULT...]: serves a folder by FUSE, with the faults that
// a test wants. It runs until it is unmounted or killed. ServedFiles.h starts it.
//
//   look=MS          every look at an entry takes so many milliseconds
//   hang             a look at a name that begins with "hang" is answered when the server ends
//   hangspace        what is free is told when the server ends, once a file "hung" is there
//   renumber         an entry gets a new inode number with each look
//   eio=NAME:AT      bytes of files with that name can not be read from there on
//   twice=NAME       listings give that name twice
//   cache            this machine remembers names and attributes for a minute, whatever happens
//   behind its back
//   oldrename        a rename that promises to spare what has the name is EINVAL
//   norename         every rename is
//   nolinks          no file gets a second name
#define FUSE_USE_VERSION 35
#include <dirent.h>
#include <fcntl.h>
#include <fuse.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>

namespace {

struct Faults {
    std::string source;
    std::chrono::milliseconds look{0};
    bool hangs = false;
    bool hangsSpace = false;
    bool renumber = false;
    std::string unreadable;
    off_t unreadableFrom = 0;
    std::string twice;
    bool isCached = false;
    bool hasOldRename = false;
    bool hasNoRename = false;
    bool hasNoLinks = false;
};
Faults s_faults;
std::atomic<ino_t> s_number{1000};

std::string real(const char* path) { return s_faults.source + path; }
int answer(long result) { return result < 0 ? -errno : static_cast<int>(result); }
bool isNamed(std::string_view path, const std::string& name) {
    return !name.empty() && path.substr(path.rfind('/') + 1) == name;
}

int look(const char* path, struct stat* out, fuse_file_info*) {
    std::this_thread::sleep_for(s_faults.look);
    if (s_faults.hangs && std::strstr(path, "/hang") != nullptr)
        std::this_thread::sleep_for(std::chrono::minutes(5));
    if (::lstat(real(path).c_str(), out) != 0) return -errno;
    if (s_faults.renumber) out->st_ino = ++s_number;
    return 0;
}

int list(const char* path, void* buffer, fuse_fill_dir_t fill, off_t, fuse_file_info*,
         fuse_readdir_flags) {
    DIR* const folder = ::opendir(real(path).c_str());
    if (folder == nullptr) return -errno;
    while (const dirent* const entry = ::readdir(folder)) {
        struct stat kind {};
        kind.st_ino = entry->d_ino;
        kind.st_mode = DTTOIF(entry->d_type);
        const int times = s_faults.twice == entry->d_name ? 2 : 1;
        for (int i = 0; i < times; ++i)
            fill(buffer, entry->d_name, &kind, 0, fuse_fill_dir_flags{});
    }
    ::closedir(folder);
    return 0;
}

int open(const char* path, fuse_file_info* file) {
    const int opened =
        ::open(real(path).c_str(), file->flags & ~(O_NOFOLLOW | O_NOATIME | O_EXCL | O_CREAT));
    if (opened < 0) return -errno;
    file->fh = static_cast<std::uint64_t>(opened);
    return 0;
}

int create(const char* path, mode_t mode, fuse_file_info* file) {
    const int opened = ::open(real(path).c_str(), file->flags | O_CREAT, mode);
    if (opened < 0) return -errno;
    file->fh = static_cast<std::uint64_t>(opened);
    return 0;
}

int read(const char* path, char* buffer, size_t size, off_t at, fuse_file_info* file) {
    const off_t end = at + static_cast<off_t>(size);
    if (isNamed(path, s_faults.unreadable) && end > s_faults.unreadableFrom) return -EIO;
    return answer(::pread(static_cast<int>(file->fh), buffer, size, at));
}

int write(const char*, const char* buffer, size_t size, off_t at, fuse_file_info* file) {
    return answer(::pwrite(static_cast<int>(file->fh), buffer, size, at));
}

int close(const char*, fuse_file_info* file) { return answer(::close(static_cast<int>(file->fh))); }

int readLink(const char* path, char* buffer, size_t size) {
    const ssize_t length = ::readlink(real(path).c_str(), buffer, size - 1);
    if (length < 0) return -errno;
    buffer[length] = 0;
    return 0;
}

int setTimes(const char* path, const timespec times[2], fuse_file_info*) {
    return answer(::utimensat(AT_FDCWD, real(path).c_str(), times, AT_SYMLINK_NOFOLLOW));
}

void* begin(fuse_conn_info*, fuse_config* config) {
    config->use_ino = s_faults.renumber ? 1 : 0;
    config->entry_timeout = config->attr_timeout = config->negative_timeout =
        s_faults.isCached ? 60 : 0;
    config->nullpath_ok = 0;
    return nullptr;
}

fuse_operations operations() {
    fuse_operations out{};
    out.init = &begin;
    out.getattr = &look;
    out.readdir = &list;
    out.open = &open;
    out.create = &create;
    out.read = &read;
    out.write = &write;
    out.release = &close;
    out.readlink = &readLink;
    out.utimens = &setTimes;
    out.mkdir = [](const char* path, mode_t mode) {
        return answer(::mkdir(real(path).c_str(), mode));
    };
    out.unlink = [](const char* path) { return answer(::unlink(real(path).c_str())); };
    out.rmdir = [](const char* path) { return answer(::rmdir(real(path).c_str())); };
    out.symlink = [](const char* text, const char* path) {
        return answer(::symlink(text, real(path).c_str()));
    };
    out.link = [](const char* from, const char* to) {
        if (s_faults.hasNoLinks) return -EPERM;
        return answer(::link(real(from).c_str(), real(to).c_str()));
    };
    out.chmod = [](const char* path, mode_t mode, fuse_file_info*) {
        return answer(::chmod(real(path).c_str(), mode));
    };
    out.truncate = [](const char* path, off_t size, fuse_file_info*) {
        return answer(::truncate(real(path).c_str(), size));
    };
    out.rename = [](const char* from, const char* to, unsigned flags) {
        if (s_faults.hasNoRename || (s_faults.hasOldRename && flags != 0)) return -EINVAL;
        return answer(::renameat2(AT_FDCWD, real(from).c_str(), AT_FDCWD, real(to).c_str(), flags));
    };
    out.statfs = [](const char* path, struct statvfs* facts) {
        if (s_faults.hangsSpace && ::access(real("/hung").c_str(), F_OK) == 0)
            std::this_thread::sleep_for(std::chrono::minutes(5));
        return answer(::statvfs(real(path).c_str(), facts));
    };
    return out;
}

bool take(std::string_view fault) {
    const std::size_t equals = fault.find('=');
    const std::string value(equals == std::string_view::npos ? "" : fault.substr(equals + 1));
    if (fault == "renumber") s_faults.renumber = true;
    else if (fault == "cache") s_faults.isCached = true;
    else if (fault == "oldrename") s_faults.hasOldRename = true;
    else if (fault == "norename") s_faults.hasNoRename = true;
    else if (fault == "nolinks") s_faults.hasNoLinks = true;
    else if (fault == "hangspace") s_faults.hangsSpace = true;
    else if (fault == "hang") s_faults.hangs = true;
    else if (fault.starts_with("look="))
        s_faults.look = std::chrono::milliseconds(std::stoi(value));
    else if (fault.starts_with("twice=")) s_faults.twice = value;
    else if (fault.starts_with("eio=")) {
        s_faults.unreadable = value.substr(0, value.rfind(':'));
        s_faults.unreadableFrom = std::stoll(value.substr(value.rfind(':') + 1));
    } else return false;
    return true;
}

}  // namespace

int main(int count, char** words) {
    if (count < 3) return 2;
    s_faults.source = words[2];
    for (int i = 3; i < count; ++i)
        if (!take(words[i])) return 2;
    std::array<char*, 3> arguments{words[0], const_cast<char*>("-f"), words[1]};
    const fuse_operations served = operations();
    return fuse_main(static_cast<int>(arguments.size()), arguments.data(), &served, nullptr);
}
