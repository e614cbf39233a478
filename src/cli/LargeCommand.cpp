// engine/largefiles/EumeRoot.h scans, LargeReport.h prints the tree, LargestReport.h the list of
// files.
#include "cli/LargeCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <ctime>
#include <utility>

#include "cli/LargeReport.h"
#include "cli/LargestReport.h"
#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "cli/kindOption.h"
#include "engine/largefiles/EumeRoot.h"
#include "engine/largefiles/FileAge.h"
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

// A disk that hangs answers not at all, all others at once.
constexpr std::chrono::seconds forAnswers{2};

void complainOfLeftOut(const LargestFiles& list) {
    for (const auto& [count, why] :
         {std::pair{list.unknownCount(), "nobody notes there when a file is opened"},
          {list.unansweredCount(), "their disk does not answer whether that is noted"}})
        if (count > 0)
            complain(fmt::format("{} {} left out: {}", count, count == 1 ? "file" : "files", why));
}

std::string readOrder(const std::string& text, FileWish& wish) {
    using enum FileWish::Order;
    for (const auto& [name, order] :
         {std::pair{"size", Size}, {"age", Written}, {"opened", Opened}, {"name", Name}})
        if (text == name) {
            wish.order = order;
            return {};
        }
    return fmt::format("--sort takes size, age, opened or name, not \"{}\"", text);
}

// What is wrong with the options of the list, for people; empty when nothing is.
std::string readWish(const Arguments& arguments, FileWish& wish) {
    if (!arguments.has("flat")) {
        for (const char* const option : {"kind", "older", "unopened", "sort"})
            if (arguments.has(option)) return fmt::format("--{} goes with --flat only", option);
        return {};
    }
    if (arguments.has("depth")) return "--depth does not go with --flat";
    const std::int64_t now = std::time(nullptr);
    for (const auto& [option, last] :
         {std::pair{"older", &wish.writtenBy}, {"unopened", &wish.openedBy}}) {
        if (!arguments.has(option)) continue;
        const auto age = parseAge(arguments.text(option));
        if (!age)
            return fmt::format("--{} takes {}, not \"{}\"", option, ageForms,
                               arguments.text(option));
        *last = lastSecondOf(*age, now);
    }
    if (arguments.has("sort"))
        if (std::string fault = readOrder(arguments.text("sort"), wish); !fault.empty())
            return fault;
    return readKinds(arguments, wish.kinds);
}

}  // namespace

std::vector<OptionSpec> LargeCommand::options() const {
    return {{"--depth", "N", "Print so many levels of folders (default 1)"},
            {"--top", "N", "Print of each folder, or of the list, only the first N entries"},
            {"--flat", "", "Print the files of all folders in one list"},
            {"--kind", "KIND...",
             "List files of this kind only: documents, music, videos, archives, pictures or "
             "others"},
            {"--older", "AGE", "List only what was not written for so long (1y)"},
            {"--unopened", "AGE", "List only what was neither read nor written for so long"},
            {"--sort", "ORDER",
             "Order the list by size (the default), age, opened or name; the oldest first"},
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
    FileWish wish;
    if (const std::string fault = readWish(arguments, wish); !fault.empty()) return badUsage(fault);
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

    if (arguments.has("flat"))
        return printFlat(arguments, *tree, std::move(wish), extent.top, skipped, ending);
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printJson(out, *tree, extent, skipped, ending != Ending::Whole);
    else if (arguments.has("print0")) printPaths(out, *tree, extent);
    else printListing(out, *tree, extent, wantsColour(STDOUT_FILENO));
    return finish(out, skipped, ending);
}

Status LargeCommand::printFlat(const Arguments& arguments, FileNodeTree& tree, FileWish wish,
                               std::uint64_t top, const std::vector<Error>& skipped,
                               Ending ending) {
    wish.openings = OpeningInquiry(tree).wait(forAnswers);
    LargestFiles list(tree, std::move(wish));
    list.finish();
    const std::size_t count = std::min<std::uint64_t>(top, list.count());
    Output out(STDOUT_FILENO);
    if (arguments.has("json")) printJson(out, tree, list, count, skipped, ending != Ending::Whole);
    else if (arguments.has("print0")) printPaths(out, list, count);
    else printListing(out, tree, list, count, wantsColour(STDOUT_FILENO));
    if (!arguments.has("quiet")) complainOfLeftOut(list);
    return finish(out, skipped, ending);
}

}  // namespace orrinvale::cli
