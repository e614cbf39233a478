#include "cli/ShareReport.h"

#include <fmt/format.h>

#include <cstdlib>
#include <utility>

#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

// One object a line, whose members `append` writes.
template <class Each, class Append>
void appendObjects(std::string& text, std::string_view name, const std::vector<Each>& list,
                   const Append& append) {
    ((text += "  \"") += name) += "\": [";
    for (const Each& each : list) {
        text += &each == list.data() ? "\n    {" : ",\n    {";
        append(each);
        text += '}';
    }
    text += "],\n";
}

std::string gainLine(const ShareAccount& account) {
    const std::string promised = UtilityFunction::convertVolSpace(account.promised);
    if (account.isDryRun) return fmt::format("{} at the most would come free.", promised);
    if (!account.gained) return fmt::format("{} at the most came free.", promised);
    const std::int64_t gained = *account.gained;
    const std::string grown =
        UtilityFunction::convertVolSpace(static_cast<std::uint64_t>(std::abs(gained)));
    std::string line = fmt::format("Free space {} by {}, of {} at the most.",
                                   gained < 0 ? "shrank" : "grew", grown, promised);
    if (static_cast<double>(gained) < 0.9 * static_cast<double>(account.promised))
        line += " Snapshots, further copies and programs that write meanwhile make it less.";
    return line;
}

}  // namespace

void printShareJson(Output& out, const ShareAccount& account) {
    std::string text = "{\n";
    appendObjects(text, "shared", account.shared, [&](const ShareAccount::Shared& each) {
        appendJsonPath(text, each.path);
        text += ", ";
        appendJsonPath(text, each.with, "with", "withHex");
        text += each.isLink ? ", \"by\": \"link\"" : ", \"by\": \"extents\"";
    });
    const auto appendPath = [&](const std::string& path) { appendJsonPath(text, path); };
    appendObjects(text, "already", account.already, appendPath);
    appendObjects(text, "byOthers", account.byOthers, appendPath);
    appendObjects(text, "kept", account.kept, [&](const ShareAccount::Kept& each) {
        appendJsonPath(text, each.path);
        text += ", \"reason\": ";
        appendJsonText(text, each.reason);
    });
    text +=
        fmt::format("  \"dryRun\": {},\n  \"promised\": {},\n  \"gained\": {},\n  \"skipped\": [",
                    account.isDryRun, account.promised,
                    account.gained ? fmt::format("{}", *account.gained) : std::string("null"));
    appendJsonSkipped(text, account.skipped);
    text += fmt::format("],\n  \"stopped\": {}\n}}\n", account.stopped);
    out.write(text);
}

void printSharePaths(Output& out, const ShareAccount& account) {
    for (const auto& each : account.shared) {
        out.write(each.path);
        out.write(std::string_view("\0", 1));
    }
}

void printShareListing(Output& out, const ShareAccount& account) {
    for (const auto& each : account.shared)
        out.write(fmt::format("{}{}{}: {}\n", account.isDryRun ? "would be " : "",
                              each.isLink ? "another name of " : "one space with ",
                              printable(each.with), printable(each.path)));
    for (const std::string& path : account.already)
        out.write(fmt::format("has nothing to give: {}\n", printable(path)));
    for (const std::string& path : account.byOthers)
        out.write(fmt::format("was gone already: {}\n", printable(path)));
    for (const auto& each : account.kept)
        out.write(fmt::format("{} its own space, {}: {}\n",
                              account.isDryRun ? "would keep" : "keeps", each.reason,
                              printable(each.path)));
    const std::size_t count = account.shared.size();
    if (count == 0) {
        out.write(account.isDryRun ? "Nothing would be shared.\n" : "Nothing was shared.\n");
        return;
    }
    out.write(fmt::format(
        "{} {} {} with the copies that stay. {}\n", count, count == 1 ? "file" : "files",
        account.isDryRun ? "would share the space" : "shared the space", gainLine(account)));
}

}  // namespace orrinvale::cli
