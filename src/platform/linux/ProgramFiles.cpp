// Found by their names around the running executable, so that they are found wherever the program
// was installed.
#include "platform/linux/ProgramFiles.h"

#include <unistd.h>

#include <array>
#include <climits>
#include <string_view>

#include "platform/linux/LinuxFiles.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::vector<std::string> namesIn(const FileSystem& files, const std::string& folder) {
    std::vector<std::string> names;
    const auto opened = files.openFolder(FileSystem::noParent, folder.c_str(), Links::Follow);
    if (!opened) return names;
    CatalogBatch batch;
    for (auto more = files.readFolder(opened->get(), batch); more && *more;
         more = files.readFolder(opened->get(), batch))
        for (const CatalogEntry& entry : batch.entries) names.emplace_back(entry.name);
    return names;
}

// Every entry of the folder that bears the program's name: executables, folders of data, and what
// the desktop knows it by.
void addOwn(const FileSystem& files, const std::string& folder, std::vector<std::string>& found) {
    for (const std::string& name : namesIn(files, folder))
        if (name.starts_with("orrinvale") || name.starts_with("com.kelpford.Orrinvale"))
            found.push_back(joinPath(folder, name));
}

}  // namespace

std::vector<std::string> programFilesAround(const std::string& executable) {
    const LinuxFileSystem files;
    std::vector<std::string> found{executable};
    std::string folder = folderOf(executable);
    addOwn(files, folder, found);
    if (folder.ends_with("/libexec/orrinvale"))
        folder = folderOf(folder);  // the administrator's helper
    if (!folder.ends_with("/bin") && !folder.ends_with("/libexec")) return found;
    const std::string prefix = folderOf(folder);
    for (const char* const name : {"bin", "libexec", "share", "share/applications",
                                   "share/metainfo", "share/polkit-1/actions"})
        if (const std::string place = joinPath(prefix, name); place != folderOf(executable))
            addOwn(files, place, found);
    const std::string icons = joinPath(prefix, "share/icons/hicolor");
    for (const std::string& size : namesIn(files, icons))
        addOwn(files, joinPath(icons, size) + "/apps", found);
    return found;
}

std::string ownExecutable() {
    std::array<char, PATH_MAX> text;
    const ssize_t length = ::readlink("/proc/self/exe", text.data(), text.size());
    if (length <= 0) return {};
    std::string executable(text.data(), static_cast<std::size_t>(length));
    // An update has put another file there while the program runs; that one is ours too.
    constexpr std::string_view replaced = " (deleted)";
    if (executable.ends_with(replaced)) executable.resize(executable.size() - replaced.size());
    return executable;
}

std::vector<std::string> programFiles() {
    const std::string executable = ownExecutable();
    return executable.empty() ? std::vector<std::string>() : programFilesAround(executable);
}

}  // namespace orrinvale
