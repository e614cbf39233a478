// Files of /proc and /sys do not tell their size, so that all are read on until they end.
#include "platform/linux/SystemText.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

namespace orrinvale {
namespace {

SysResult<std::string> readOn(int file, std::size_t limit) {
    constexpr std::size_t step = 32 * 1024;
    std::string text;
    for (std::size_t size = 0;;) {
        text.resize(std::min(size + step, limit));
        const ssize_t count = ::read(file, text.data() + size, text.size() - size);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return tl::unexpected(errno);
        size += static_cast<std::size_t>(count);
        if (count > 0 && size < limit) continue;
        text.resize(size);
        return text;
    }
}

}  // namespace

SysResult<std::string> readSystemText(const std::string& path, std::size_t limit) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file.isOpen()) return tl::unexpected(errno);
    return readOn(file.get(), limit);
}

SysResult<std::string> readSystemText(int file, std::size_t limit) {
    if (::lseek(file, 0, SEEK_SET) != 0) return tl::unexpected(errno);
    return readOn(file, limit);
}

std::vector<std::string> systemNamesIn(const std::string& folder) {
    std::vector<std::string> names;
    const std::unique_ptr<DIR, int (*)(DIR*)> entries(::opendir(folder.c_str()), &::closedir);
    while (const dirent* entry = entries ? ::readdir(entries.get()) : nullptr)
        if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
    return names;
}

}  // namespace orrinvale
