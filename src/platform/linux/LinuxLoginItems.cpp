#include "platform/linux/LinuxLoginItems.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string_view>

#include "platform/linux/ProgramFiles.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::string_view loginVariable(const char* name) {
    const char* const value = std::getenv(name);
    return value != nullptr ? value : "";
}

std::vector<std::string> partsOf(std::string_view list) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        const std::size_t end = std::min(list.find(':'), list.size());
        if (end > 0) parts.emplace_back(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return parts;
}

std::vector<std::string> absolutePartsOf(std::string_view list) {
    auto parts = partsOf(list);
    std::erase_if(parts, [](const std::string& each) { return !each.starts_with('/'); });
    return parts;
}

// "de_AT.UTF-8@euro" asks for "de_AT" and then for "de".
std::vector<std::string> languagesOfLocale() {
    std::vector<std::string> languages = partsOf(loginVariable("LANGUAGE"));
    for (const char* const name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (loginVariable(name).empty()) continue;
        languages.emplace_back(loginVariable(name));
        break;
    }
    std::vector<std::string> all;
    for (std::string each : languages) {
        each.resize(std::min(each.find_first_of(".@"), each.size()));
        if (each.empty() || each == "C" || each == "POSIX") continue;
        all.push_back(each);
        if (const auto country = each.find('_'); country != std::string::npos)
            all.push_back(each.substr(0, country));
    }
    return all;
}

std::string orBelow(const std::string& chosen, const std::string& home, const char* usual) {
    return chosen.empty() ? joinPath(home, usual) : chosen;
}

}  // namespace

LoginItemFolders linuxLoginItemFolders(const FolderVariables& variables) {
    LoginItemFolders folders;
    folders.persons =
        joinPath(orBelow(variables.configHome, variables.home, ".config"), "autostart");
    auto systems = absolutePartsOf(loginVariable("XDG_CONFIG_DIRS"));
    if (systems.empty()) systems.emplace_back("/etc/xdg");
    for (const std::string& each : systems) folders.systems.push_back(joinPath(each, "autostart"));
    folders.links = joinPath(orBelow(variables.dataHome, variables.home, ".local/share"),
                             "com.kelpford.Orrinvale/login");
    folders.desktops = partsOf(loginVariable("XDG_CURRENT_DESKTOP"));
    folders.languages = languagesOfLocale();
    folders.programs = absolutePartsOf(loginVariable("PATH"));
    // The window program also for the command that stands beside it.
    folders.ownProgram = joinPath(folderOf(ownExecutable()), "orrinvale");
    return folders;
}

}  // namespace orrinvale
