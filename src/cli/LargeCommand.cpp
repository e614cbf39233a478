// engine/largefiles/EumeRoot.h scans, LargeReport.h prints.
#include "cli/LargeCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>

#include "cli/LargeReport.h"
#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "engine/largefiles/EumeRoot.h"
#include "engine/text/SizeText.h"

namespace orrinvale::cli {
namespace {

std::string progressLine(const EumeRoot& scan) {
    return fmt::format("{:3.0f} %  {} entries", scan.getProgress(), scan.foundCount());
}

Ending runScan(EumeRoot& scan, std::shared_ptr<FileNodeTree> tree, Telling telling) {
    const std::string root = tree->rootPath();
    scan.eumeAllRootFileNodeWithRootArr(std::move(tree), root);
    return watchScan(
        scan, [&scan] { return progressLine(scan); }, telling);
}

}  // namespace

std::vector<OptionSpec> LargeCommand::options() const {
    return {{"--depth", "N", "Print so many levels of folders (default 1)"},
            {"--top", "N", "Print of each folder only the N biggest entries"},
            {"FOLDER", "", "The folder to look through"}};
}

Status LargeCommand::run(const Arguments& arguments) {
    LargeExtent extent;
    for (const auto& [option, value] :
         {std::pair{"depth", &extent.depth}, std::pair{"top", &extent.top}}) {
        if (!arguments.has(option)) continue;
        const auto number = parseNumber(arguments.text(option));
        if (!number)
            return badUsage(
                fmt::format("--{} takes a number, not \"{}\"", option, arguments.text(option)));
        *value = *number;
    }
    if (arguments.text("FOLDER").empty()) return badUsage("the folder's name is empty");
    const std::string root = absolutePath(arguments.text("FOLDER"));
    const std::string fault = folderFault(m_files, root);
    if (!fault.empty()) return noSuchFolder(root, fault);

    const bool quiet = arguments.has("quiet");
    const auto tree = std::make_shared<FileNodeTree>(root);
    EumeRoot scan({.files = &m_files, .mainQueue = nullptr, .grown = {}});
    const Ending ending = runScan(scan, tree, tellingFor(arguments));
    const std::vector<Error> skipped = scan.skipped();
    if (tree->nodeCount() == 0 && !skipped.empty() && skipped.front().path == root)
        return notScanned(skipped.front());
    if (!quiet) complainOfEach(skipped);

    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printJson(out, *tree, extent, skipped, ending != Ending::Whole);
    else if (arguments.has("print0")) printPaths(out, *tree, extent);
    else printListing(out, *tree, extent, wantsColour(STDOUT_FILENO));
    return finish(out, skipped, ending);
}

}  // namespace orrinvale::cli
