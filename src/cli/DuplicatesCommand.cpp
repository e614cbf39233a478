// DuplicatesReport.h prints what is found.
#include "cli/DuplicatesCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include "cli/DuplicatesReport.h"
#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "cli/SizeText.h"
#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

std::string progressLine(DuplicateFilesOpt& search) {
    const auto state = search.search();
    const SearchCounts counts = state ? state->counts() : SearchCounts{};
    const Progress progress = search.progress();
    return fmt::format("{:3} %  {} files, {} read  {}", progress.done, counts.listedFiles,
                       UtilityFunction::convertVolSpace(counts.hashedBytes),
                       printable(progress.current));
}

}  // namespace

std::vector<OptionSpec> DuplicatesCommand::options() const {
    return {{"--hidden", "", "Search entries whose names begin with a dot too"},
            {"--system", "", "Search the system's folders in / too"},
            {"--limit", "SIZE", "Look at files larger than that only (default 0)"},
            {"FOLDER", "", "The folder to search"}};
}

Status DuplicatesCommand::run(const Arguments& arguments) {
    const auto limit = arguments.has("limit") ? parseSize(arguments.text("limit")) : 0;
    if (!limit)
        return badUsage(
            fmt::format("--limit takes {}, not \"{}\"", sizeForms, arguments.text("limit")));
    if (arguments.text("FOLDER").empty()) return badUsage("the folder's name is empty");
    const std::string root = absolutePath(arguments.text("FOLDER"));
    const std::string fault = folderFault(m_files, root);
    if (!fault.empty()) return noSuchFolder(root, fault);

    DuplicateFilesOpt search(m_files);
    const SearchOption option{arguments.has("hidden"), arguments.has("system")};
    search.setSearchOption(&option);
    const Ending ending = [&] {
        const SearchWatch watch([&search] { search.stopSearch(); },
                                [&search] { return progressLine(search); }, tellingFor(arguments));
        search.beginSearchAtPath(root, *limit);
        return watch.ending();
    }();
    const auto state = search.search();
    if (state->rootError()) return noSuchFolder(root, state->rootError()->reason());

    const std::vector<Error> skipped = state->skipped().entries();
    if (!arguments.has("quiet")) complainOfEach(skipped);
    if (!arguments.has("quiet") && state->inodesPass())
        Output(STDERR_FILENO)
            .write(fmt::format("orrinvale-cli: inode numbers do not last everywhere in {}: files "
                               "there are known by path, size "
                               "and times\n",
                               printable(root)));

    Output out(STDOUT_FILENO);
    const DuplicatesSummary summary = summarize(search);
    if (arguments.has("json"))
        printJson(out, root, search, summary, skipped, ending != Ending::Whole);
    else if (arguments.has("print0")) printPaths(out, search);
    else printListing(out, search, summary, wantsColour(STDOUT_FILENO));
    return finish(out, skipped, ending);
}

}  // namespace orrinvale::cli
