// engine/uninstall/UninstallAppDelegate.h finds the applications, Leftovers.h what they left.
#include "cli/AppsCommand.h"

#include <fmt/format.h>
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

UninstallAppInfo search(const FileSystem& files, const Applications& applications) {
    return UninstallAppInfo(
        UninstallAppDelegate(files, FolderVariables::ofThisProcess().home, &applications));
}

std::vector<Leftover> leftovers(const FileSystem& files, UninstallAppInfo& found,
                                const std::string& of, const std::atomic<bool>& stop) {
    const LeftoverPlaces places =
        LeftoverPlaces::of(FolderVariables::ofThisProcess(), LinuxFolders());
    const LeftoverRules rules(LeftoverClaims::of(found.allAppsInfo(), found.rest()));
    return findLeftovers(files, places, rules, of, stop);
}

// What could not be read is told, kind by kind.
Status finishWithout(Output& out, const UnreadKinds& unread, Ending ending) {
    for (const auto& [type, reason] : unread) complain(fmt::format("{}: {}", wordOf(type), reason));
    const Status status = finish(out, {}, ending);
    return status == Status::Done && !unread.empty() ? Status::SomeSkipped : status;
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
    UninstallAppInfo found = search(m_files, m_applications);
    AppItemsArray& apps = found.allAppsInfo();
    UnreadKinds unread = found.rest().unread;
    const Ending ending = watch.ending();
    if (!wanted.empty())
        std::erase_if(apps, [&](const auto& each) {
            return std::find(wanted.begin(), wanted.end(), each->record->type) == wanted.end();
        });
    if (!wanted.empty())
        std::erase_if(unread, [&](const auto& each) {
            return std::find(wanted.begin(), wanted.end(), each.first) == wanted.end();
        });
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printAppsJson(out, apps, unread, ending != Ending::Whole);
    else if (!arguments.has("print0")) printAppsListing(out, apps, wantsColour(STDOUT_FILENO));
    else
        for (const auto& each : apps) printPath(out, each->path);
    return finishWithout(out, unread, ending);
}

Status AppsCommand::listLeftovers(const Arguments& arguments) const {
    std::atomic<bool> stop{false};
    const SearchWatch watch([&stop] { stop = true; }, {}, Telling::Nothing);
    UninstallAppInfo apps = search(m_files, m_applications);
    const UnreadKinds& unread = apps.rest().unread;
    const std::vector<Leftover> found = leftovers(m_files, apps, arguments.text("leftovers"), stop);
    const Ending ending = watch.ending();
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printLeftoversJson(out, found, unread, ending != Ending::Whole);
    else if (!arguments.has("print0"))
        printLeftoversListing(out, found, wantsColour(STDOUT_FILENO));
    else
        for (const Leftover& each : found) printPath(out, each.path);
    return finishWithout(out, unread, ending);
}

}  // namespace orrinvale::cli
