// engine/duplicates/plan has the plan and its rules, RemoveReport.h prints what became of it.
#include "cli/RemoveCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <optional>

#include "cli/Output.h"
#include "cli/RemovalRun.h"
#include "cli/RemoveReport.h"
#include "cli/SearchWatch.h"
#include "cli/askYes.h"
#include "cli/countedEntries.h"
#include "engine/duplicates/plan/PlanFile.h"
#include "engine/duplicates/plan/PlanHistory.h"
#include "engine/duplicates/plan/PlanRemoval.h"
#include "engine/duplicates/plan/entriesOutside.h"
#include "engine/removal/PlainDoor.h"
#include "engine/removal/TrashDoor.h"
#include "engine/settings/UserFolders.h"
#include "engine/text/UtilityFunction.h"
#include "platform/linux/ProgramFiles.h"

namespace orrinvale::cli {
namespace {

std::unique_ptr<RemovalDoor> doorOfPlan(const FileSystem& files, bool isToTrash) {
    auto places = ProtectedPlaces::ofThisMachine(files, programFiles());
    if (isToTrash) return std::make_unique<TrashDoor>(files, std::move(places));
    return std::make_unique<PlainDoor>(files, std::move(places));
}

struct PlanRun {
    std::shared_ptr<PlanRemoval> list;
    bool isToTrash = false;
    Ending ending{};
};

void runPlan(const FileSystem& files, PlanRun& run, Telling telling) {
    const auto makeDoor = [&files, isToTrash = run.isToTrash] {
        return doorOfPlan(files, isToTrash);
    };
    run.ending = runRemoval(files, run.list, makeDoor, telling).ending;
}

RemoveAccount accountOf(const PlanRun& run) {
    using As = PlanRemoval::Settled::As;
    RemoveAccount account;
    account.isToTrash = run.isToTrash;
    account.bytes = run.list->gained();
    account.stopped = run.ending != Ending::Whole;
    const auto& settled = run.list->account();
    for (std::size_t i = 0; i < settled.size(); ++i) {
        std::string path = run.list->path(i);
        switch (settled[i].as) {
            case As::Gone:
                account.removed.push_back(std::move(path));
                account.folders += run.list->identity(i)->type == FileType::Folder ? 1U : 0U;
                break;
            case As::GoneByOthers: account.byOthers.push_back(std::move(path)); break;
            case As::Stayed: account.kept.push_back({std::move(path), settled[i].reason}); break;
            case As::Partly:
                account.kept.push_back(
                    {std::move(path),
                     "a part of it went: " +
                         (settled[i].reason.empty() ? std::string("stopped") : settled[i].reason)});
                break;
            case As::NotReached:
                account.kept.push_back({std::move(path), "stopped before its turn"});
        }
    }
    return account;
}

std::string countOfOutside(std::size_t count, std::size_t folders) {
    if (count == 0) return {};
    return fmt::format("{} of them {} outside of the folder{} searched. ", count,
                       count == 1 ? "lies" : "lie", folders == 1 ? " that was" : "s that were");
}

bool isPlanAgreed(const FileSystem& files, const DuplicatePlan& plan, bool isToTrash) {
    const PlanSums sums = sumsOf(plan);
    return askYes(fmt::format(
        "{} {}, {}, {}? {}No group loses all its copies.", isToTrash ? "Move" : "Remove",
        countedEntries(sums.files, sums.bundles), UtilityFunction::convertVolSpace(sums.bytes),
        isToTrash ? "to the trash" : "for good",
        countOfOutside(entriesOutside(files, plan), plan.roots.size())));
}

}  // namespace

std::string_view RemoveCommand::description() const {
    return "A plan is a file that \"duplicates --plan FILE\" writes: which copies go, which stay, "
           "and what the search saw of each. Nothing goes without a copy that stays by the plan, "
           "is still there, and has the same bytes, compared at that moment; what has changed, is "
           "in use for writing or is protected stays, and is told with the reason. A plan that was "
           "changed, is damaged, or is another user's is refused. With --json \"gained\" is what "
           "was freed, \"moved\" what is in the trash, \"undo\" what the command undo takes. It "
           "ends with 1 where something stayed.";
}

std::vector<OptionSpec> RemoveCommand::options() const {
    return {{"--plan", "FILE", "The plan"},
            {"--trash", "", "Move what goes to the trash instead of removing it for good"},
            {"--yes", "", "Remove without the question"}};
}

Status RemoveCommand::run(const Arguments& arguments) {
    if (arguments.text("plan").empty())
        return badUsage("remove wants to be told what, by --plan FILE");
    const bool asks = !arguments.has("yes");
    if (asks && !isTerminal(STDIN_FILENO))
        return badUsage("remove asks first, and there is no terminal to ask on; give --yes");
    const std::string path = absolutePath(arguments.text("plan"));
    const auto plan = loadPlan(path);
    if (!plan) {
        complain(fmt::format("{}: {}", path, plan.error()));
        return Status::NoSuchFolder;
    }
    if (asks && sumsOf(*plan).entries() > 0 &&
        !isPlanAgreed(m_files, *plan, arguments.has("trash"))) {
        complain("nothing was removed");
        return Status::Done;
    }
    return remove(arguments, *plan);
}

Status RemoveCommand::remove(const Arguments& arguments, const DuplicatePlan& plan) const {
    PlanRun run{std::make_shared<PlanRemoval>(m_files, plan), arguments.has("trash"), {}};
    std::string id;
    Descriptor held;  // what it is noted in
    if (run.isToTrash) {
        auto noted = PlanHistory(userStateFolder()).note(m_files, plan);
        if (!noted) {
            complain(fmt::format("what moves could not be noted for undo, so that nothing was: {}",
                                 noted.error()));
            return Status::SomeSkipped;
        }
        id = std::move(*noted);
        held = PlanHistory(userStateFolder()).hold(id);
    }
    runPlan(m_files, run, tellingFor(arguments));
    RemoveAccount account = accountOf(run);
    // The next undo is of a removal that moved something.
    if (run.isToTrash && run.list->isUntouched()) PlanHistory(userStateFolder()).forget(id);
    else account.undoId = std::move(id);
    if (!arguments.has("quiet") && (arguments.has("json") || arguments.has("print0")))
        for (const auto& each : account.kept)
            complain(fmt::format("{}: {}", each.path, each.reason));
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printRemoveJson(out, account);
    else if (arguments.has("print0")) printRemovePaths(out, account);
    else printRemoveListing(out, account);
    const Status status = finish(out, {}, run.ending);
    return status == Status::Done && !account.kept.empty() ? Status::SomeSkipped : status;
}

}  // namespace orrinvale::cli
