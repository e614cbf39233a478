// The JSON is written piece by piece: paths are bytes, which libraries for JSON do not take.
#include "cli/CleanReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "cli/Output.h"
#include "engine/base/Date.h"
#include "engine/base/saturating.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

constexpr std::size_t mostListed = 15;  // rows of a category, and names of what stays for a reason
constexpr std::size_t mostKeptNames = 4;

std::string sizeText(std::uint64_t bytes) { return UtilityFunction::convertVolSpace(bytes); }

std::string counted(std::size_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

void appendRow(std::string& out, const CleanRow& row) {
    out += '{';
    appendJsonPath(out, row.path);
    out += fmt::format(", \"size\": {}, \"onDisk\": {}, \"modified\": \"{}\"}}", row.bytes,
                       row.onDisk, iso8601(Date{row.newest}));
}

void appendKept(std::string& out, std::string_view path, std::string_view reason,
                std::uint64_t bytes) {
    out += '{';
    appendJsonPath(out, path);
    out += ", \"reason\": ";
    appendJsonText(out, reason);
    out += fmt::format(", \"size\": {}}}", bytes);
}

// Calls append(out, each) for each of them, one a line.
template <class All, class Append>
void appendEach(std::string& out, std::string_view indent, const All& all, const Append& append) {
    std::string between = "\n" + std::string(indent);
    for (const auto& each : all) {
        out += between;
        append(out, each);
        between = ",\n" + std::string(indent);
    }
}

void appendCategory(std::string& out, const ScannedCategory& scanned) {
    const CategoryListing& listing = scanned.listing;
    out += fmt::format("{{\"name\": \"{}\", \"size\": {}, \"onDisk\": {}, \"entries\": [",
                       namesOf(scanned.category).word, listing.bytes, listing.onDisk);
    appendEach(out, "      ", listing.rows, appendRow);
    out += "],\n     \"kept\": [";
    appendEach(out, "      ", listing.kept, [](std::string& text, const CleanRow& row) {
        appendKept(text, row.path, row.keptWords, row.keptBytes);
    });
    for (const auto& closed : listing.closed) {
        out += &closed == listing.closed.data() && listing.kept.empty() ? "\n      " : ",\n      ";
        appendKept(out, closed.path, closed.reason, 0);
    }
    out += "]}";
}

void appendOutcome(std::string& out, const CleanOutcome& outcome) {
    out += ",\n  \"removed\": [";
    appendEach(out, "    ", outcome.removed, [](std::string& text, const std::string& path) {
        text += '{';
        appendJsonPath(text, path);
        text += '}';
    });
    out += "],\n  \"failed\": [";
    appendEach(out, "    ", outcome.failed, [](std::string& text, const StayedEntry& each) {
        text += '{';
        appendJsonPath(text, each.path);
        text += ", \"reason\": ";
        appendJsonText(text, each.reason);
        text += fmt::format(", \"byRule\": {}}}", isByRule(each.kind));
    });
    out += fmt::format("],\n  \"failedCount\": {},\n  \"gained\": ",
                       outcome.failed.size() + outcome.more);
    out += outcome.gained ? std::to_string(*outcome.gained) : "null";
}

struct Style {
    std::string_view strong, faint, plain;
};

void printRows(Output& out, const CategoryListing& listing, std::int64_t now, const Style& style) {
    std::vector<const CleanRow*> rows;
    for (const CleanRow& row : listing.rows) rows.push_back(&row);
    std::stable_sort(rows.begin(), rows.end(),
                     [](const CleanRow* a, const CleanRow* b) { return a->bytes > b->bytes; });
    std::uint64_t rest = 0;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i >= mostListed) {
            addSaturating(rest, rows[i]->bytes);
            continue;
        }
        out.write(fmt::format("{:>12}  {}{:<10}{}  {}\n", sizeText(rows[i]->bytes), style.faint,
                              ageText(now - rows[i]->newest), style.plain,
                              printable(rows[i]->path)));
    }
    if (rows.size() > mostListed)
        out.write(fmt::format("{:>12}  {}in {}{}\n", sizeText(rest), style.faint,
                              counted(rows.size() - mostListed, "smaller entry",
                                      "smaller entries; -0 and --json tell them all"),
                              style.plain));
}

// One paragraph for each reason, the largest first.
void printKept(Output& out, const CategoryListing& listing, const Style& style) {
    struct Group {
        std::uint64_t bytes = 0;
        std::vector<const CleanRow*> rows;
    };
    std::map<std::string_view, Group> byReason;
    for (const CleanRow& row : listing.kept) {
        Group& group = byReason[row.keptWords];
        addSaturating(group.bytes, row.keptBytes);
        group.rows.push_back(&row);
    }
    for (auto& [reason, group] : byReason) {
        std::stable_sort(group.rows.begin(), group.rows.end(),
                         [](const auto* a, const auto* b) { return a->keptBytes > b->keptBytes; });
        out.write(fmt::format("{:>12}  {}kept: {}{}\n", sizeText(group.bytes), style.faint, reason,
                              style.plain));
        for (std::size_t i = 0; i < group.rows.size() && i < mostKeptNames; ++i)
            out.write(fmt::format("{:>26}{}{}{}\n", "", style.faint, printable(group.rows[i]->path),
                                  style.plain));
        if (group.rows.size() > mostKeptNames)
            out.write(fmt::format("{:>26}{}and {} more{}\n", "", style.faint,
                                  group.rows.size() - mostKeptNames, style.plain));
    }
}

void printCategory(Output& out, const ScannedCategory& scanned, std::int64_t now,
                   const Style& style) {
    const CategoryListing& listing = scanned.listing;
    const std::string_view name = namesOf(scanned.category).word;
    const std::string found = listing.rows.empty()
                                  ? std::string("nothing to clean")
                                  : fmt::format("{} in {}", sizeText(listing.bytes),
                                                counted(listing.rows.size(), "entry", "entries"));
    out.write(fmt::format("{}{}{}: {}\n", style.strong, name, style.plain, found));
    printRows(out, listing, now, style);
    printKept(out, listing, style);
    for (const auto& closed : listing.closed)
        out.write(fmt::format("{:>12}  {}left alone, {}: {}{}\n", "", style.faint,
                              printable(closed.reason), printable(closed.path), style.plain));
}

}  // namespace

std::vector<Error> skippedOf(const std::vector<ScannedCategory>& scanned) {
    std::vector<Error> skipped;
    for (const ScannedCategory& each : scanned)
        skipped.insert(skipped.end(), each.listing.skipped.begin(), each.listing.skipped.end());
    return skipped;
}

std::string ageText(std::int64_t age) {
    struct Unit {
        std::int64_t seconds;
        std::string_view one, many;
    };
    constexpr std::array<Unit, 5> units{{{365 * 86400, "year", "years"},
                                         {30 * 86400, "month", "months"},
                                         {86400, "day", "days"},
                                         {3600, "hour", "hours"},
                                         {60, "minute", "minutes"}}};
    const std::int64_t seconds = age / 1'000'000'000;
    for (const Unit& unit : units)
        if (seconds >= unit.seconds)
            return counted(static_cast<std::size_t>(seconds / unit.seconds), unit.one, unit.many);
    return "just now";
}

void printCleanJson(Output& out, const std::vector<ScannedCategory>& scanned,
                    const std::optional<CleanOutcome>& outcome, bool stopped) {
    std::string text = "{\n  \"categories\": [";
    appendEach(text, "    ", scanned, appendCategory);
    std::uint64_t promised = 0;
    for (const ScannedCategory& each : scanned) addSaturating(promised, each.listing.onDisk);
    text += fmt::format("],\n  \"promised\": {}", promised);
    if (outcome) appendOutcome(text, *outcome);
    text += ",\n  \"skipped\": [";
    appendJsonSkipped(text, skippedOf(scanned));
    out.write(text + fmt::format("],\n  \"stopped\": {}\n}}\n", stopped));
}

void printCleanPaths(Output& out, const std::vector<ScannedCategory>& scanned) {
    for (const ScannedCategory& each : scanned)
        for (const CleanRow& row : each.listing.rows) {
            out.write(row.path);
            out.write(std::string_view("\0", 1));
        }
}

void printCleanListing(Output& out, const std::vector<ScannedCategory>& scanned, std::int64_t now,
                       bool colour) {
    const Style style = colour ? Style{"\x1b[1m", "\x1b[2m", "\x1b[0m"} : Style{};
    std::uint64_t bytes = 0;
    std::uint64_t onDisk = 0;
    for (const ScannedCategory& each : scanned) {
        printCategory(out, each, now, style);
        addSaturating(bytes, each.listing.bytes);
        addSaturating(onDisk, each.listing.onDisk);
    }
    out.write(fmt::format("{}In all {}{}; the disk gets back {}.\n", style.strong, sizeText(bytes),
                          style.plain, sizeText(onDisk)));
}

void printCleanOutcome(Output& out, const CleanOutcome& outcome) {
    for (const StayedEntry& each : outcome.failed)
        out.write(fmt::format("stayed, {}: {}\n", each.reason, printable(each.path)));
    if (outcome.more > 0) out.write(fmt::format("stayed as well: {} more\n", outcome.more));
    out.write(fmt::format("Removed {}. ", counted(outcome.removed.size(), "entry", "entries")));
    if (!outcome.gained) {
        out.write(fmt::format("Promised {}; the free space can not be told.\n",
                              sizeText(outcome.promised)));
        return;
    }
    const std::uint64_t gained =
        static_cast<std::uint64_t>(std::max<std::int64_t>(*outcome.gained, 0));
    out.write(fmt::format("Promised {}, free space grew by {}.\n", sizeText(outcome.promised),
                          sizeText(gained)));
    constexpr double nearly = 0.9;
    if (static_cast<double>(gained) >= nearly * static_cast<double>(outcome.promised)) return;
    out.write(
        "The rest is still held: by what stayed, by programs that have removed files open, "
        "by snapshots\nand shared copies; or files were compressed, or others have written "
        "meanwhile.\n");
}

}  // namespace orrinvale::cli
