// engine/duplicates/plan has the history and the way back.
#include "cli/UndoCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <atomic>

#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "cli/countedEntries.h"
#include "engine/duplicates/plan/PlanHistory.h"
#include "engine/settings/UserFolders.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

Status listRemovals(const PlanHistory& history, const Arguments& arguments) {
    std::string json = "{\n  \"removals\": [";
    std::string listing;
    std::vector<Error> skipped;
    std::string between = "\n    ";
    for (const std::string& id : history.ids()) {
        const auto sums = history.summaryOf(id);
        if (!sums) {
            complain(fmt::format("{}: {}", id, sums.error()));
            skipped.push_back(systemError("read", id, EBADMSG));
            continue;
        }
        json += fmt::format("{}{{\"id\": \"{}\", \"entries\": {}, \"bytes\": {}}}", between, id,
                            sums->entries, sums->bytes);
        between = ",\n    ";
        listing += fmt::format("{}  {} {}, {}\n", id, sums->entries,
                               sums->entries == 1 ? "entry" : "entries",
                               UtilityFunction::convertVolSpace(sums->bytes));
    }
    json += "],\n  \"skipped\": [";
    appendJsonSkipped(json, skipped);
    json += "],\n  \"stopped\": false\n}\n";
    if (listing.empty() && skipped.empty())
        listing = "Nothing was moved to the trash in the last 30 days.\n";
    Output out(STDOUT_FILENO);
    out.write(arguments.has("json") ? json : listing);
    return finish(out, skipped, Ending::Whole);
}

void printUndoJson(Output& out, const UndoOutcome& outcome) {
    std::string text = "{\n  \"restored\": [";
    for (const std::string& path : outcome.restored) {
        text += &path == outcome.restored.data() ? "\n    {" : ",\n    {";
        appendJsonPath(text, path);
        text += '}';
    }
    text += "],\n  \"left\": [";
    for (const auto& each : outcome.left) {
        text += &each == outcome.left.data() ? "\n    {" : ",\n    {";
        appendJsonPath(text, each.path);
        text += ", ";
        if (each.place.empty()) text += "\"place\": null";
        else appendJsonPath(text, each.place, "place", "placeHex");
        text += ", \"reason\": ";
        appendJsonText(text, each.reason);
        text += '}';
    }
    text += fmt::format("],\n  \"inPlace\": {},\n  \"skipped\": [],\n  \"stopped\": {}\n}}\n",
                        outcome.inPlace, outcome.stopped);
    out.write(text);
}

void printUndoListing(Output& out, const UndoOutcome& outcome) {
    for (const auto& each : outcome.left)
        out.write(fmt::format("not brought back, {}: {}{}{}\n", each.reason, printable(each.path),
                              each.place.empty() ? "" : ", in the trash as ",
                              printable(each.place)));
    out.write(fmt::format("Brought back {}.\n",
                          countedEntries(outcome.restored.size() - outcome.restoredFolders,
                                         outcome.restoredFolders)));
}

}  // namespace

std::string_view UndoCommand::description() const {
    return "Each entry gets its own name back in the folder that it was in, with its times, and "
           "never over anything that came since. What can not come back is told, with its place in "
           "the trash. Without an ID the last removal is undone; the ids of the last 30 days stand "
           "in --list. It ends with 1 where something stayed in the trash or is gone.";
}

std::vector<OptionSpec> UndoCommand::options() const {
    return {{"--list", "", "List what was moved to the trash in the last 30 days"},
            {"--clear", "", "Forget that list; what is in the trash stays there"},
            {"[ID...]", "", "The removal to undo"}};
}

Status UndoCommand::run(const Arguments& arguments) {
    const PlanHistory history(userStateFolder());
    const auto given = arguments.texts("ID");
    if (given.size() > 1 ||
        arguments.has("list") + arguments.has("clear") + (given.empty() ? 0 : 1) > 1)
        return badUsage("undo takes one removal, --list or --clear");
    if (arguments.has("list")) return listRemovals(history, arguments);
    if (arguments.has("clear")) return history.clear() ? Status::Done : Status::SomeSkipped;
    const auto known = history.ids();
    if (given.empty() && known.empty()) {
        complain("nothing was moved to the trash in the last 30 days");
        return Status::NoSuchFolder;
    }
    return undo(arguments, given.empty() ? known.back() : given.front());
}

Status UndoCommand::undo(const Arguments& arguments, const std::string& id) const {
    const auto noted = PlanHistory(userStateFolder()).load(id);
    if (!noted) {
        complain(fmt::format("{}: {}", id, noted.error()));
        return Status::NoSuchFolder;
    }
    std::atomic<bool> stop{false};
    UndoOutcome outcome;
    const Ending ending = [&] {
        const SearchWatch watch([&stop] { stop = true; }, [] { return std::string(); },
                                arguments.has("quiet") ? Telling::Nothing : Telling::Hangs);
        outcome =
            undoPlan(m_files, FolderVariables::ofThisProcess(), noted->plan, noted->folders, stop);
        return watch.ending();
    }();
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printUndoJson(out, outcome);
    else if (arguments.has("print0"))
        for (const std::string& path : outcome.restored) out.write(path + '\0');
    else printUndoListing(out, outcome);
    const Status status = finish(out, {}, ending);
    return status == Status::Done && !outcome.left.empty() ? Status::SomeSkipped : status;
}

}  // namespace orrinvale::cli
