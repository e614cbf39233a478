// engine/uninstall/UninstallAppDelegate.h finds the applications, Leftovers.h what they left.
#include "cli/AppsCommand.h"

#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <optional>
#include <utility>

#include "cli/AppsReport.h"
#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "engine/uninstall/UninstallAppInfo.h"
#include "platform/FolderVariables.h"
#include "platform/linux/LinuxFolders.h"

namespace orrinvale::cli {
namespace {

// Nothing for a word that is none.
std::optional<std::vector<ApplicationType>> typesOf(const std::vector<std::string>& words) {
    std::vector<ApplicationType> out;
    for (const std::string& word : words) {
        const auto type = applicationTypeOf(word);
        if (!type) return std::nullopt;
        out.push_back(*type);
    }
    return out;
}

AppItemsArray search(const FileSystem& files, const Applications& applications) {
    const UninstallAppDelegate search(files, FolderVariables::ofThisProcess().home, &applications);
    return std::move(UninstallAppInfo(search).allAppsInfo());
}

std::vector<Leftover> leftovers(const FileSystem& files, const Applications& applications,
                                const std::string& of, const std::atomic<bool>& stop) {
    const LeftoverPlaces places =
        LeftoverPlaces::of(FolderVariables::ofThisProcess(), LinuxFolders());
    const LeftoverRules rules(LeftoverClaims::of(search(files, applications), applications));
    return findLeftovers(files, places, rules, of, stop);
}

void printPath(Output& out, const std::string& path) {
    out.write(path);
    out.write(std::string_view("\0", 1));
}

}  // namespace

std::string_view AppsCommand::description() const {
    return "Six kinds are looked for: folders that end in .app, flatpak, snap, Debian packages "
           "with "
           "a desktop entry, AppImages, and programs in folders of their own. With --leftovers "
           "stands what they left in the home, also those that are gone: certain is what nothing "
           "else uses and a program makes anew, likely is what bears its name and may hold "
           "settings "
           "and documents. No program is started, and nothing is removed.";
}

std::vector<OptionSpec> AppsCommand::options() const {
    return {{"--kind", "KIND...",
             "Only this kind; may be repeated. One of app, flatpak, snap, deb, appimage, folder"},
            {"--leftovers", "[ID]",
             "List what applications left in the home, or what this one left: a package, the "
             "identifier of a flatpak, the name of a snap"}};
}

Status AppsCommand::run(const Arguments& arguments) {
    const auto wanted = typesOf(arguments.texts("kind"));
    if (!wanted) return badUsage("a kind is one of app, flatpak, snap, deb, appimage and folder");
    if (arguments.has("leftovers") && !wanted->empty())
        return badUsage("--kind and --leftovers do not go together");
    return arguments.has("leftovers") ? listLeftovers(arguments)
                                      : listApplications(arguments, *wanted);
}

Status AppsCommand::listApplications(const Arguments& arguments,
                                     const std::vector<ApplicationType>& wanted) const {
    const SearchWatch watch([] {}, {}, Telling::Nothing);
    AppItemsArray apps = search(m_files, m_applications);
    const Ending ending = watch.ending();
    if (!wanted.empty())
        std::erase_if(apps, [&](const auto& each) {
            return std::find(wanted.begin(), wanted.end(), each->record->type) == wanted.end();
        });
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printAppsJson(out, apps, ending != Ending::Whole);
    else if (!arguments.has("print0")) printAppsListing(out, apps, wantsColour(STDOUT_FILENO));
    else
        for (const auto& each : apps) printPath(out, each->path);
    return finish(out, {}, ending);
}

Status AppsCommand::listLeftovers(const Arguments& arguments) const {
    std::atomic<bool> stop{false};
    const SearchWatch watch([&stop] { stop = true; }, {}, Telling::Nothing);
    const std::vector<Leftover> found =
        leftovers(m_files, m_applications, arguments.text("leftovers"), stop);
    const Ending ending = watch.ending();
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printLeftoversJson(out, found, ending != Ending::Whole);
    else if (!arguments.has("print0"))
        printLeftoversListing(out, found, wantsColour(STDOUT_FILENO));
    else
        for (const Leftover& each : found) printPath(out, each.path);
    return finish(out, {}, ending);
}

}  // namespace orrinvale::cli
