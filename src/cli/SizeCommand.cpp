// engine/files/TreeSize.h does the measuring.
#include "cli/SizeCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>

#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "engine/files/TreeSize.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

struct MeasuredPath {
    std::string path;
    SizeTotals totals;
};

struct Measured {
    std::vector<MeasuredPath> paths;
    std::vector<Error> failed;   // paths that could not be measured at all
    std::vector<Error> skipped;  // these and what was skipped below the others
    std::uint64_t total = 0;
    Ending ending{};
};

// A slash at the end asks for what a link leads to; it does so no longer once the path is made
// absolute.
std::string startOf(const std::string& given) {
    std::string path = absolutePath(given);
    if (given.ends_with('/') && !path.ends_with('/')) path += '/';
    return path;
}

std::string progressLine(const SizeCounts& counts) {
    return fmt::format("{} files, {} folders  {}", counts.files.load(), counts.folders.load(),
                       UtilityFunction::convertVolSpace(counts.bytes));
}

Measured measure(const FileSystem& files, const std::vector<std::string>& paths, Telling telling) {
    Measured out;
    std::atomic<bool> stop{false};
    SizeCounts counts;
    SkipList skipped;
    const SearchWatch watch([&stop] { stop = true; }, [&counts] { return progressLine(counts); },
                            telling);
    const TreeSize trees(files, {.stop = &stop, .counts = &counts, .skipped = &skipped});
    for (const std::string& given : paths) {
        if (stop) break;
        const std::string start = startOf(given);
        const auto totals = trees.ofPath(start);
        if (!totals) {
            out.failed.push_back(totals.error());
            skipped.add(totals.error());
            continue;
        }
        out.paths.push_back({start, *totals});
        out.total += std::min(totals->bytes, ~std::uint64_t{0} - out.total);
    }
    out.skipped = skipped.entries();
    out.ending = watch.ending();
    return out;
}

void printJson(Output& out, const Measured& measured) {
    std::string text = "{\n  \"sizes\": [";
    const char* between = "{";
    for (const MeasuredPath& each : measured.paths) {
        text += between;
        appendJsonPath(text, each.path);
        text += fmt::format(", \"size\": {}, \"files\": {}, \"folders\": {}}}", each.totals.bytes,
                            each.totals.files, each.totals.folders);
        between = ",\n            {";
    }
    text += fmt::format("],\n  \"total\": {},\n  \"skipped\": [", measured.total);
    appendJsonSkipped(text, measured.skipped);
    text += fmt::format("],\n  \"stopped\": {}\n}}\n", measured.ending != Ending::Whole);
    out.write(text);
}

void printPaths(Output& out, const Measured& measured) {
    for (const MeasuredPath& each : measured.paths) {
        out.write(fmt::format("{}\t{}", each.totals.bytes, each.path));
        out.write(std::string_view("\0", 1));
    }
}

void printListing(Output& out, const Measured& measured, bool colour) {
    const std::string_view strong = colour ? "\x1b[1m" : "";
    const std::string_view plain = colour ? "\x1b[0m" : "";
    const auto line = [&](std::uint64_t bytes, const std::string& what) {
        out.write(fmt::format("{}{:>10}{}  {}\n", strong, UtilityFunction::convertVolSpace(bytes),
                              plain, what));
    };
    for (const MeasuredPath& each : measured.paths) line(each.totals.bytes, printable(each.path));
    if (measured.paths.size() > 1) line(measured.total, "total");
}

}  // namespace

std::vector<OptionSpec> SizeCommand::options() const {
    return {
        {"PATH...", "",
         "The files and folders to measure; with -0 whole bytes and a tab stand before each path"}};
}

Status SizeCommand::run(const Arguments& arguments) {
    const std::vector<std::string> paths = arguments.texts("PATH");
    if (std::any_of(paths.begin(), paths.end(),
                    [](const std::string& path) { return path.empty(); }))
        return badUsage("a path is empty");
    const bool quiet = arguments.has("quiet");
    const Measured measured = measure(m_files, paths, tellingFor(arguments));
    if (measured.paths.empty() && !measured.failed.empty()) {
        complainOfEach(measured.failed);
        return Status::NoSuchFolder;
    }
    if (!quiet) complainOfEach(measured.skipped);

    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printJson(out, measured);
    else if (arguments.has("print0")) printPaths(out, measured);
    else printListing(out, measured, wantsColour(STDOUT_FILENO));
    return finish(out, measured.skipped, measured.ending);
}

}  // namespace orrinvale::cli
