#include "cli/RemoveReport.h"

#include <fmt/format.h>

#include "cli/countedEntries.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

std::string countedRemoved(const RemoveAccount& account) {
    return countedEntries(account.removed.size() - account.folders, account.folders);
}

void appendRemovedPaths(std::string& text, std::string_view name,
                        const std::vector<std::string>& paths) {
    ((text += "  \"") += name) += "\": [";
    for (const std::string& path : paths) {
        text += &path == paths.data() ? "\n    {" : ",\n    {";
        appendJsonPath(text, path);
        text += '}';
    }
    text += "],\n";
}

}  // namespace

void printRemoveJson(Output& out, const RemoveAccount& account) {
    std::string text = "{\n";
    appendRemovedPaths(text, "removed", account.removed);
    appendRemovedPaths(text, "byOthers", account.byOthers);
    text += "  \"kept\": [";
    for (const auto& each : account.kept) {
        text += &each == account.kept.data() ? "\n    {" : ",\n    {";
        appendJsonPath(text, each.path);
        text += ", \"reason\": ";
        appendJsonText(text, each.reason);
        text += '}';
    }
    if (!account.undoId.empty()) text += fmt::format("],\n  \"undo\": \"{}\"", account.undoId);
    else text += "],\n  \"undo\": null";
    text += fmt::format(
        ",\n  \"gained\": {},\n  \"moved\": {},\n  \"skipped\": [],\n  \"stopped\": {}\n}}\n",
        account.isToTrash ? 0 : account.bytes, account.isToTrash ? account.bytes : 0,
        account.stopped);
    out.write(text);
}

void printRemovePaths(Output& out, const RemoveAccount& account) {
    for (const std::string& path : account.removed) {
        out.write(path);
        out.write(std::string_view("\0", 1));
    }
}

void printRemoveListing(Output& out, const RemoveAccount& account) {
    for (const auto& each : account.kept)
        out.write(fmt::format("stayed, {}: {}\n", each.reason, printable(each.path)));
    for (const std::string& path : account.byOthers)
        out.write(fmt::format("was gone already: {}\n", printable(path)));
    const std::string size = UtilityFunction::convertVolSpace(account.bytes);
    if (account.isToTrash)
        out.write(fmt::format("Moved {} to the trash, {}.{}{}\n", countedRemoved(account), size,
                              account.undoId.empty() ? "" : " Undo: orrinvale-cli undo ",
                              account.undoId));
    else out.write(fmt::format("Removed {}, {} freed.\n", countedRemoved(account), size));
}

}  // namespace orrinvale::cli
