// slow_fs MOUNTPOINT MILLISECONDS: a file system that takes its time for every look at an entry.
// Folders f0, f1 ... hold files of one content each; a look at a name that begins with "hang" is
// answered when the file system goes.
#define FUSE_USE_VERSION 35
#include <fuse3/fuse.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>

namespace {

constexpr int kFolders = 40;
constexpr int kFiles = 25;
constexpr std::string_view kContent = "the same everywhere";

std::chrono::milliseconds s_pause{0};

std::string_view nameOf(std::string_view path) { return path.substr(path.rfind('/') + 1); }

int depthOf(std::string_view path) {
    return path == "/" ? 0 : static_cast<int>(std::count(path.begin(), path.end(), '/'));
}

int getAttributes(const char* path, struct stat* status, fuse_file_info*) {
    const std::string_view name = nameOf(path);
    if (name.starts_with("hang")) std::this_thread::sleep_for(std::chrono::minutes(5));
    if (depthOf(path) > 0) std::this_thread::sleep_for(s_pause);
    *status = {};
    const bool isFolder = depthOf(path) < 2;
    if (!isFolder && !name.starts_with('x') && !name.starts_with("hang")) return -ENOENT;
    status->st_mode = isFolder ? S_IFDIR | 0755U : S_IFREG | 0644U;
    status->st_nlink = 1;
    status->st_size = isFolder ? 0 : static_cast<off_t>(kContent.size());
    return 0;
}

int listFolder(const char* path, void* into, fuse_fill_dir_t fill, off_t, fuse_file_info*,
               fuse_readdir_flags) {
    const bool isRoot = depthOf(path) == 0;
    struct stat kind {};
    kind.st_mode = isRoot ? S_IFDIR : S_IFREG;
    const auto add = [&](const std::string& name) {
        return fill(into, name.c_str(), &kind, 0, fuse_fill_dir_flags{});
    };
    for (int i = 0; i < (isRoot ? kFolders : kFiles); ++i)
        if (add((isRoot ? "f" : "x") + std::to_string(i)) != 0) return -EIO;
    kind.st_mode = S_IFREG;
    return nameOf(path) == "f0" && s_pause.count() == 0 ? add("hangs \u202Ehere") : 0;
}

int readFile(const char*, char* into, std::size_t size, off_t from, fuse_file_info*) {
    const auto start = std::min(static_cast<std::size_t>(from), kContent.size());
    const std::size_t count = std::min(size, kContent.size() - start);
    std::memcpy(into, kContent.data() + start, count);
    return static_cast<int>(count);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const std::string_view pause(argv[2]);
    int milliseconds = 0;
    std::from_chars(pause.data(), pause.data() + pause.size(), milliseconds);
    s_pause = std::chrono::milliseconds(milliseconds);
    fuse_operations operations{};
    operations.getattr = &getAttributes;
    operations.readdir = &listFolder;
    operations.read = &readFile;
    std::string inForeground = "-f";
    char* words[] = {argv[0], argv[1], inForeground.data(), nullptr};
    return fuse_main(3, words, &operations, nullptr);
}
