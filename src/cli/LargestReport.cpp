#include "cli/LargestReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <span>
#include <string>

#include "engine/base/Date.h"
#include "engine/text/UtilityFunction.h"
#include "platform/paths.h"

namespace orrinvale::cli {
namespace {

std::span<const LargestFiles::Row> printed(LargestFiles& list, std::size_t count) {
    count = std::min(count, list.count());
    return list.first(count).first(count);
}

// Of what lies before 1970 no more than that is known, and nothing more of what lies after 2106.
std::string timeText(std::optional<std::int64_t> second) {
    const bool isKnown = second && *second != FileNode::before1970 && *second != FileNode::from2106;
    return isKnown ? "\"" + iso8601(Date::fromSeconds(*second)) + "\"" : "null";
}

// The day, in the process's time zone.
std::string dayText(std::optional<std::int64_t> second) {
    constexpr std::size_t dayLength = 10;
    if (second == FileNode::before1970) return "pre-1970";
    if (second == FileNode::from2106) return "from 2106";
    return second ? iso8601(Date::fromSeconds(*second)).substr(0, dayLength) : "-";
}

// Removing one of several names frees nothing.
std::string namesText(const FileNode& file) {
    if (file.isDirectory()) return "/";
    return file.links() > 1 ? fmt::format("  (one of {} names)", file.links()) : "";
}

std::string plainPathOf(const FileNode& file) {
    const std::string path = file.path();
    return plainPath(path).value_or(path);  // directly below "/" it begins with two slashes
}

}  // namespace

void printJson(Output& out, const FileNodeTree& tree, LargestFiles& list, std::size_t count,
               const std::vector<Error>& skipped, bool stopped) {
    std::string text = "{\n  ";
    appendJsonPath(text, tree.rootPath(), "root");
    text += fmt::format(
        ",\n  \"files\": {},\n  \"size\": {},\n  \"openedUnknown\": {},\n  "
        "\"openedUnanswered\": {},\n  \"stopped\": {},\n  \"skipped\": [",
        list.count(), list.bytes(), list.unknownCount(), list.unansweredCount(), stopped);
    appendJsonSkipped(text, skipped);
    text += "],\n  \"entries\": [";
    const char* between = "\n    {\"name\": ";
    for (const LargestFiles::Row& row : printed(list, count)) {
        const FileNode& file = *row.node;
        text += between;
        between = ",\n    {\"name\": ";
        appendJsonText(text, file.name());
        text += ", ";
        appendJsonPath(text, plainPathOf(file));
        text += fmt::format(
            ", \"directory\": {}, \"size\": {}, \"kind\": \"{}\", \"modified\": {}, "
            "\"opened\": {}, \"names\": {}}}",
            file.isDirectory(), file.size(), kindName(kindOfExtension(pathExtension(file.name()))),
            timeText(file.lastWritten()), timeText(list.wish().lastOpened(file)),
            file.isDirectory() ? 1U : std::max(file.links(), 1U));
        out.write(text);
        text.clear();
    }
    out.write(text + "]\n}\n");
}

void printPaths(Output& out, LargestFiles& list, std::size_t count) {
    for (const LargestFiles::Row& row : printed(list, count))
        out.write(plainPathOf(*row.node) + '\0');
}

void printListing(Output& out, const FileNodeTree& tree, LargestFiles& list, std::size_t count,
                  bool colour) {
    const std::string_view strong = colour ? "\x1b[1m" : "";
    const std::string_view plain = colour ? "\x1b[0m" : "";
    const FileWish& wish = list.wish();
    const bool showsOpening = wish.openedBy || wish.order == FileWish::Order::Opened;
    for (const LargestFiles::Row& row : printed(list, count)) {
        const FileNode& file = *row.node;
        out.write(fmt::format("{}{:>10}{}  {:<10}  {}{}\n", strong,
                              UtilityFunction::convertVolSpace(file.size()), plain,
                              dayText(showsOpening ? wish.lastOpened(file) : file.lastWritten()),
                              printable(plainPathOf(file)), namesText(file)));
    }
    out.write(fmt::format("{}{:>10}{}  {} {} in {}\n", strong,
                          UtilityFunction::convertVolSpace(list.bytes()), plain, list.count(),
                          list.count() == 1 ? "file" : "files", printable(tree.rootPath())));
}

}  // namespace orrinvale::cli
