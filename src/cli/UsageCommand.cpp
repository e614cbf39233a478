// engine/diskusage/DiskUsageScan.h scans, UsageReport.h prints.
#include "cli/UsageCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>

#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "cli/UsageReport.h"
#include "engine/diskusage/DiskUsageScan.h"
#include "engine/text/SizeText.h"

namespace orrinvale::cli {
namespace {

std::string progressLine(const DiskUsageScan& scan) {
    return fmt::format("{:3.0f} %  {} entries", scan.progress().percent(), scan.foundCount());
}

Ending runScan(DiskUsageScan& scan, std::shared_ptr<FSNodeTree> tree, const UsageOptions& options,
               Telling telling) {
    scan.start(std::move(tree), options);
    return watchScan(
        scan, [&scan] { return progressLine(scan); }, telling);
}

}  // namespace

std::vector<OptionSpec> UsageCommand::options() const {
    return {{"--limit", "SIZE", "Leave out what is smaller (default 1MB)"},
            {"--depth", "N", "Print so many levels of folders (default 1)"},
            {"--all-file-systems", "", "Enter other file systems as well"},
            {"FOLDER", "", "The folder to look through"}};
}

Status UsageCommand::run(const Arguments& arguments) {
    UsageExtent extent;
    if (arguments.has("limit")) {
        const auto limit = parseSize(arguments.text("limit"));
        if (!limit)
            return badUsage(
                fmt::format("--limit takes {}, not \"{}\"", sizeForms, arguments.text("limit")));
        extent.limit = *limit;
    }
    if (arguments.has("depth")) {
        const auto depth = parseNumber(arguments.text("depth"));
        if (!depth)
            return badUsage(
                fmt::format("--depth takes a number, not \"{}\"", arguments.text("depth")));
        extent.depth = *depth;
    }
    if (arguments.text("FOLDER").empty()) return badUsage("the folder's name is empty");
    const std::string root = absolutePath(arguments.text("FOLDER"));
    const std::string fault = folderFault(m_files, root);
    if (!fault.empty()) return noSuchFolder(root, fault);

    const auto tree = std::make_shared<FSNodeTree>(root);
    DiskUsageScan scan({.files = &m_files, .mainQueue = nullptr, .news = {}});
    const Ending ending = runScan(
        scan, tree, {.limit = extent.limit, .allFileSystems = arguments.has("all-file-systems")},
        tellingFor(arguments));
    const std::vector<Error> skipped = scan.skipped();
    if (tree->root().has(FSNode::Unread) && !skipped.empty() && skipped.front().path == root)
        return notScanned(skipped.front());
    if (!arguments.has("quiet")) complainOfEach(skipped);

    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printJson(out, *tree, extent, skipped, ending != Ending::Whole);
    else if (arguments.has("print0")) printPaths(out, *tree, extent);
    else printListing(out, *tree, extent, wantsColour(STDOUT_FILENO));
    return finish(out, skipped, ending);
}

}  // namespace orrinvale::cli
