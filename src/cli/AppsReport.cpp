// The JSON is written piece by piece: paths are bytes, which libraries for JSON do not take.
#include "cli/AppsReport.h"

#include <fmt/format.h>

#include "cli/Output.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

void appendText(std::string& out, std::string_view field, std::string_view text) {
    out += fmt::format(", \"{}\": ", field);
    if (text.empty()) out += "null";
    else appendJsonText(out, text);
}

void appendLeftover(std::string& out, const Leftover& leftover) {
    out += '{';
    appendJsonPath(out, leftover.path);
    out += fmt::format(", \"size\": {}", leftover.bytes);
    appendText(out, "of", leftover.of);
    out += fmt::format(", \"grade\": \"{}\"", wordOf(leftover.grade));
    appendText(out, "reason", leftover.reason);
    out += fmt::format(", \"isInstalled\": {}, \"precious\": {}, \"whole\": {}}}",
                       leftover.isInstalled, leftover.preciousCount, leftover.isWhole);
}

void appendEnd(std::string& out, const UnreadKinds& unread, bool isStopped) {
    out += "],\n  \"skipped\": [";
    const char* between = "{\"path\": null, \"kind\": ";
    for (const auto& [type, reason] : unread) {
        out += fmt::format("{}\"{}\"", between, wordOf(type));
        appendText(out, "reason", reason);
        out += '}';
        between = ", {\"path\": null, \"kind\": ";
    }
    out += fmt::format("],\n  \"stopped\": {}\n}}\n", isStopped);
}

}  // namespace

void printAppsJson(Output& out, const AppItemsArray& apps, const UnreadKinds& unread,
                   bool isStopped) {
    std::string text = "{\n  \"applications\": [";
    const char* between = "\n    {\"name\": ";
    for (const auto& each : apps) {
        text += between;
        appendJsonText(text, each->name);
        appendText(text, "id", each->record->id);
        text += fmt::format(", \"kind\": \"{}\"", wordOf(each->record->type));
        if (each->record->type == ApplicationType::Deb)
            appendText(text, "package", each->record->package);
        appendText(text, "version", each->record->version);
        text += ", ";
        appendJsonPath(text, each->path);
        text += fmt::format(", \"system\": {}, \"installed\": ", each->isSystemApp);
        text += each->date ? '"' + iso8601(*each->date) + '"' : std::string("null");
        text += '}';
        between = ",\n    {\"name\": ";
    }
    appendEnd(text, unread, isStopped);
    out.write(text);
}

void printAppsListing(Output& out, const AppItemsArray& apps, bool colour) {
    const std::string_view strong = colour ? "\x1b[1m" : "";
    const std::string_view plain = colour ? "\x1b[0m" : "";
    for (const auto& each : apps) {
        const ApplicationRecord& record = *each->record;
        const std::string& what = record.package.empty() ? record.id : record.package;
        out.write(fmt::format("{:<8}  {}{}{}{}  {}{}\n", wordOf(record.type), strong,
                              printable(each->name), plain,
                              record.version.empty() ? "" : ' ' + printable(record.version),
                              printable(what.empty() ? each->path : what),
                              each->isSystemApp ? "  (the system needs it)" : ""));
    }
    out.write(
        fmt::format("{} {}\n", apps.size(), apps.size() == 1 ? "application" : "applications"));
}

void printLeftoversJson(Output& out, const std::vector<Leftover>& leftovers,
                        const UnreadKinds& unread, bool isStopped) {
    std::string text = "{\n  \"leftovers\": [";
    const char* between = "\n    ";
    for (const Leftover& each : leftovers) {
        text += between;
        appendLeftover(text, each);
        between = ",\n    ";
    }
    appendEnd(text, unread, isStopped);
    out.write(text);
}

void printLeftoversListing(Output& out, const std::vector<Leftover>& leftovers, bool colour) {
    const std::string_view faint = colour ? "\x1b[2m" : "";
    const std::string_view plain = colour ? "\x1b[0m" : "";
    for (const Leftover& each : leftovers) {
        out.write(fmt::format("{:>10}  {:<7}  {}\n{:21}{}{}",
                              UtilityFunction::convertVolSpace(each.bytes), wordOf(each.grade),
                              printable(each.path), "", faint, printable(each.reason)));
        for (const std::string& name : each.precious)
            out.write(fmt::format("\n{:21}has {}", "", printable(name)));
        if (each.preciousCount > each.precious.size())
            out.write(fmt::format("\n{:21}and {} more documents and databases", "",
                                  each.preciousCount - each.precious.size()));
        if (!each.isWhole) out.write(fmt::format("\n{:21}could not be looked through whole", ""));
        out.write(fmt::format("{}\n", plain));
    }
    if (leftovers.empty()) out.write("Nothing that a program left was found.\n");
}

}  // namespace orrinvale::cli
