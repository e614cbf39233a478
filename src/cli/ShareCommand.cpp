// engine/duplicates/share does it, ShareReport.h prints what became of it.
#include "cli/ShareCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "cli/Output.h"
#include "cli/RemovalRun.h"
#include "cli/SearchWatch.h"
#include "cli/ShareQuestion.h"
#include "cli/ShareReport.h"
#include "cli/askYes.h"
#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/plan/PlanFile.h"
#include "engine/duplicates/plan/makePlan.h"
#include "engine/duplicates/share/ShareDoor.h"
#include "engine/duplicates/share/ShareList.h"
#include "engine/duplicates/share/ShareOutlook.h"
#include "platform/linux/ProgramFiles.h"

namespace orrinvale::cli {
namespace {

// To what was left out before.
void addTo(ShareAccount& account, const ShareList& list) {
    using As = ShareList::Settled::As;
    using By = RemovalResult::Shared::By;
    account.promised = list.promised();
    for (std::size_t i = 0; i < list.account().size(); ++i) {
        const auto& each = list.account()[i];
        switch (each.as) {
            case As::Shared:
                if (each.shared.by == By::Already) account.already.push_back(list.path(i));
                else
                    account.shared.push_back(
                        {list.path(i), each.shared.with, each.shared.by == By::HardLink});
                break;
            case As::GoneByOthers: account.byOthers.push_back(list.path(i)); break;
            case As::Stayed: account.kept.push_back({list.path(i), each.reason}); break;
            case As::NotReached:
                account.kept.push_back({list.path(i), "stopped before it was done"});
        }
    }
}

// What was done is told all the same where somebody does not want to wait for a slow disk.
std::optional<std::int64_t> gainOf(ShareList& list, Telling telling) {
    const SearchWatch watch([&list] { list.stopMeasuring(); },
                            [] { return std::string("measuring the free space"); }, telling);
    return list.gained();
}

// What a search is told is no matter for a plan.
bool hasSearchOption(const Arguments& arguments) {
    bool isAny = arguments.has("keep") || !arguments.texts("FOLDER").empty();
    for (const OptionSpec& each : DuplicatesCommand::searchOptions())
        isAny = isAny || arguments.has(std::string(each.names.substr(2)));
    return isAny;
}

}  // namespace

std::string_view ShareCommand::description() const {
    return "Of each group of copies one stays as it is, and the others get its extents in place of "
           "their own, on file systems that can do that (btrfs, and XFS as it is made today): "
           "each remains a file of its own with its own name, rights and times, and a later "
           "change to one changes no other. The system compares the bytes as it does so.\n\n"
           "With --link a copy that can not share in that way becomes another name of the copy "
           "that stays, a hard link, after both were compared byte by byte: a change to one is "
           "then a change to all, and they have one date. That is done on one file system only, "
           "where owner, group, rights and extended attributes are equal, and never with "
           "anything that is protected.\n\n"
           "What is shared is found by a search, as the command duplicates makes it, or by a plan "
           "that it wrote: what would go by the plan shares here. What has changed or has other "
           "bytes keeps its own space, and is told with the reason. \"gained\" is by how much the "
           "free space grew, \"promised\" the most that could come of it. It ends with 1 where "
           "something keeps its own space.";
}

std::vector<OptionSpec> ShareCommand::options() const {
    std::vector<OptionSpec> specs{
        {"--plan", "FILE", "Share what this plan would remove, instead of a search"},
        {"--link", "", "Make hard links where the file system can not share otherwise"},
        {"--dry-run", "", "Tell what would share its space and how, and change nothing"},
        {"--yes", "", "Share without the question"},
        {"--keep", "RULE...",
         "Let the copy stay as it is that this rule tells: newest, oldest, shortest-path, "
         "shortest-name or path:FOLDER; a further rule orders what those before it leave equal"}};
    for (const OptionSpec& each : DuplicatesCommand::searchOptions()) specs.push_back(each);
    specs.push_back({"[FOLDER...]", "", "The folders to search, as one"});
    return specs;
}

Status ShareCommand::run(const Arguments& arguments) {
    const bool hasPlan = arguments.has("plan");
    if (!hasPlan && arguments.texts("FOLDER").empty())
        return badUsage("share wants to be told what, by folders or by --plan FILE");
    if (hasPlan && hasSearchOption(arguments))
        return badUsage("share takes folders with the options of a search, or --plan FILE");
    const bool asks = !arguments.has("yes") && !arguments.has("dry-run");
    if (asks && !isTerminal(STDIN_FILENO))
        return badUsage("share asks first, and there is no terminal to ask on; give --yes");
    std::vector<Error> skipped;
    const auto plan = planFor(arguments, skipped);
    if (!plan) return plan.error();
    ShareAccount account;
    account.skipped = std::move(skipped);
    account.isDryRun = arguments.has("dry-run");
    const ShareablePlan shareable = shareableOf(*plan);
    for (const StayedEntry& each : shareable.folders)
        account.kept.push_back({each.path, each.reason});
    if (!asks)
        return share(arguments, std::make_shared<ShareList>(m_files, shareable.plan), account);
    const auto outlook = look(arguments, *plan);
    if (!outlook) return outlook.error();
    // Nobody agreed to anything: what is told in the end is looked at once more.
    account.isDryRun = outlook->extents.files + outlook->links.files == 0;
    if (account.isDryRun) complain("Nothing here can share its space");
    else if (!askYes(shareQuestion(*outlook))) {
        complain("nothing was changed");
        return Status::Done;
    }
    return share(arguments, outlook->list, std::move(account));
}

tl::expected<ShareOutlook, Status> ShareCommand::look(const Arguments& arguments,
                                                      const DuplicatePlan& plan) const {
    ProgressBox progress;
    std::atomic<bool> stop{false};
    const SearchWatch watch([&stop] { stop = true; },
                            [&progress] {
                                const Progress now = progress.copy();
                                return fmt::format("{} looked at  {}", now.done,
                                                   printable(now.current));
                            },
                            tellingFor(arguments));
    auto outlook = lookAtSharing(m_files, ProtectedPlaces::ofThisMachine(m_files, programFiles()),
                                 plan, arguments.has("link"), progress, stop);
    const Ending ending = watch.ending();
    if (ending == Ending::Whole) return outlook;
    complain("the look was not ended, so that nothing was changed");
    return tl::unexpected(ending == Ending::Signalled ? Status::Stopped : Status::SomeSkipped);
}

tl::expected<DuplicatePlan, Status> ShareCommand::planFor(const Arguments& arguments,
                                                          std::vector<Error>& skipped) const {
    if (!arguments.has("plan")) return searched(arguments, skipped);
    const std::string path = absolutePath(arguments.text("plan"));
    auto plan = loadPlan(path);
    if (plan) return std::move(*plan);
    complain(fmt::format("{}: {}", path, plan.error()));
    return tl::unexpected(Status::NoSuchFolder);
}

tl::expected<DuplicatePlan, Status> ShareCommand::searched(const Arguments& arguments,
                                                           std::vector<Error>& skipped) const {
    SearchRequest request;
    KeepRules rules;
    if (const auto status = m_duplicates.readSearch(arguments, request, rules))
        return tl::unexpected(*status);
    DuplicateFilesOpt search(m_files);
    const auto ended = m_duplicates.runSearch(arguments, request, search);
    if (!ended) return tl::unexpected(ended.error());
    if (*ended != Ending::Whole) {
        complain("the search was not ended, so that nothing was changed");
        return tl::unexpected(*ended == Ending::Signalled ? Status::Stopped : Status::SomeSkipped);
    }
    skipped = search.search()->skipped().entries();
    return makePlan(search, {request.roots, request.protectedFolders, rules});
}

Status ShareCommand::share(const Arguments& arguments, const std::shared_ptr<ShareList>& list,
                           ShareAccount account) const {
    const bool onlyLooks = account.isDryRun;
    const ShareDoor::Order order = shareOrder(list, arguments.has("link"), onlyLooks);
    if (!onlyLooks) list->measureGain();
    const auto makeDoor = [&] {
        return std::make_unique<ShareDoor>(
            m_files, ProtectedPlaces::ofThisMachine(m_files, programFiles()), order);
    };
    const Ending ending = runRemoval(m_files, list, makeDoor, tellingFor(arguments)).ending;
    addTo(account, *list);
    account.stopped = ending != Ending::Whole;
    if (!account.stopped && !onlyLooks) account.gained = gainOf(*list, tellingFor(arguments));

    if (!arguments.has("quiet") && (arguments.has("json") || arguments.has("print0")))
        for (const auto& each : account.kept)
            complain(fmt::format("{}: {}", each.path, each.reason));
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printShareJson(out, account);
    else if (arguments.has("print0")) printSharePaths(out, account);
    else printShareListing(out, account);
    const Status status = finish(out, account.skipped, ending);
    return status == Status::Done && !account.kept.empty() ? Status::SomeSkipped : status;
}

}  // namespace orrinvale::cli
