// DuplicatesReport.h prints what is found.
#include "cli/DuplicatesCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <iterator>
#include <utility>

#include "cli/DuplicatesReport.h"
#include "cli/Output.h"
#include "cli/PlanWriting.h"
#include "cli/SearchWatch.h"
#include "cli/kindOption.h"
#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/cache/HashCache.h"
#include "engine/duplicates/plan/PlanFile.h"
#include "engine/duplicates/searchedPaths.h"
#include "engine/settings/PreferenceViewController.h"
#include "engine/text/SizeText.h"
#include "engine/text/UtilityFunction.h"
#include "platform/files.h"
#include "platform/paths.h"

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

// Of an exclusion file where it is wrong, since "Invalid argument" helps nobody.
void complainOfSkipped(const FileSystem& files, const std::vector<Error>& skipped) {
    for (const Error& each : skipped) {
        std::string reason;
        if (each.number == EINVAL && lastPathComponent(each.path) == SearchFilter::fileName)
            reason = exclusionFault(files, each.path);
        complain(fmt::format("{}: {}", each.path, reason.empty() ? each.reason() : reason));
    }
}

}  // namespace

std::vector<OptionSpec> DuplicatesCommand::searchOptions() {
    return {
        {"--hidden", "", "Search entries whose names begin with a dot too"},
        {"--system", "", "Search the system's folders in / too"},
        {"--limit", "SIZE", "Look at files larger than that only (default 0)"},
        {"--min", "SIZE", "Look at files of at least that size only"},
        {"--max", "SIZE", "Look at files of at most that size only"},
        {"--kind", "KIND...",
         "Look at files of this kind only: documents, music, videos, archives, pictures or "
         "others; may be given several times"},
        {"--exclude", "PATTERN...", "Leave out files and folders of this name, or at this path"},
        {"--exclusion-files", "",
         "Leave out what files named .orrinvaleignore in the folders say, too"},
        {"--protect", "FOLDER...", "Search this folder as well as the others, but keep all of it"}};
}

std::vector<OptionSpec> DuplicatesCommand::options() const {
    auto specs = searchOptions();
    const OptionSpec more[] = {
        {"--keep", "RULE...",
         "Tell which copies would stay by this rule: newest, oldest, shortest-path, "
         "shortest-name or path:FOLDER; a further rule orders what those before it leave "
         "equal"},
        {"--no-cache", "", "Read all files, and remember nothing of what is read"},
        {"--plan", "FILE",
         "Write a plan of which copies would go, by the rules of --keep, for the command remove"},
        {"--folders", "",
         "Tell of folders that are equal as wholes, and of those that are for the most part in "
         "another one; files in equal folders are not told again"},
        {"--order", "ORDER",
         "Print the groups as they were found, or the biggest gain first: "
         "found or gain (default found)"},
        {"FOLDER...", "", "The folders to search, as one"}};
    specs.insert(specs.end(), std::begin(more), std::end(more));
    return specs;
}

std::string_view DuplicatesCommand::description() const {
    return "Files are equal when their sizes and a 64-bit checksum over their whole contents "
           "agree; they are not compared byte by byte. Folders whose names end in .app are "
           "applications and compared as wholes. Links directly in a folder are followed, links "
           "further down are not, and empty files are left out. A folder that lies in another one "
           "is searched once.\n\n"
           "What is read is remembered as checksums, without names and contents, and a file that "
           "has not changed since is not read again; the command cache tells how much that is and "
           "forgets it. What was remembered is compared byte by byte before anything goes.\n\n"
           "In a PATTERN \"*\" stands for any characters, \"?\" for one, \"[a-z]\" for one of a "
           "set and \"**\" for any folders; a backslash takes the meaning from what follows it. "
           "Without a slash it is a name, with one in it a path from the folder that is "
           "searched, with one at its beginning a whole path, and with one at its end it is for "
           "folders alone. An exclusion file has a pattern a line, for its own folder and those "
           "below; \"!\" before one takes back what lines above it leave out.\n\n"
           "Folders are equal when all that is in them is: names, types, texts of links and "
           "contents, hidden and left out entries too. Told are those in which the search found "
           "a copy, of equal ones in equal ones the topmost. What can not be read, a mount, a pipe "
           "and the like make a folder equal to none.\n\n"
           "With --keep each copy is told to stay or to go: of each group one copy stays, with it "
           "all that is protected and every other name of what stays, and a symbolic link is never "
           "the copy. With -0 only the copies that would go are printed then. Nothing is removed.";
}

// Fills in what is asked for. What is wrong with it otherwise, in words for badUsage().
std::optional<std::string> DuplicatesCommand::readFilter(const Arguments& arguments,
                                                         SearchRequest& request) {
    const struct {
        const char* option;
        std::uint64_t& size;
    } sizes[] = {{"limit", request.limit},
                 {"min", request.filter.smallest},
                 {"max", request.filter.largest}};
    for (const auto& [option, size] : sizes) {
        if (!arguments.has(option)) continue;
        const auto read = parseSize(arguments.text(option));
        if (!read)
            return fmt::format("--{} takes {}, not \"{}\"", option, sizeForms,
                               arguments.text(option));
        size = *read;
    }
    if (request.filter.smallest > request.filter.largest)
        return std::string("--min is larger than --max");
    if (std::string fault = readKinds(arguments, request.filter.kinds); !fault.empty())
        return fault;
    for (std::string text : arguments.texts("exclude")) {
        // What is put before a path in brackets, so that it is not taken for a list, is no pattern.
        if (text.starts_with("./[") && text.ends_with(']')) text.erase(0, 2);
        auto pattern = PathPattern::parse(text);
        if (!pattern)
            return fmt::format("--exclude \"{}\", character {}: {}", text, pattern.error().place,
                               pattern.error().reason);
        request.filter.exclusions.push_back(std::move(*pattern));
    }
    request.filter.readsFiles = arguments.has("exclusion-files");
    request.findsFolders = arguments.has("folders");
    if (const std::string order = arguments.has("order") ? arguments.text("order") : "found";
        order != "found" && order != "gain")
        return fmt::format("--order takes found or gain, not \"{}\"", order);
    return std::nullopt;
}

// A folder of a rule counts by its path without links, as the copies do.
std::optional<Status> DuplicatesCommand::readRules(const Arguments& arguments,
                                                   KeepRules& rules) const {
    for (const std::string& text : arguments.texts("keep")) {
        constexpr std::string_view prefix = "path:";
        const bool isPlace = text.starts_with(prefix) && text.size() > prefix.size();
        auto rule = keepRuleOf(
            isPlace ? std::string(prefix) + absolutePath(text.substr(prefix.size())) : text);
        if (!rule) return badUsage(fmt::format("--keep takes {}, not \"{}\"", keepRuleForms, text));
        for (std::string& folder : rule->folders) {
            const std::string fault = folderFault(m_files, folder);
            if (!fault.empty()) return noSuchFolder(folder, fault);
            folder = m_files.resolved(folder).value_or(folder);
        }
        rules.push_back(std::move(*rule));
    }
    return std::nullopt;
}

std::optional<Status> DuplicatesCommand::readSearch(const Arguments& arguments,
                                                    SearchRequest& request,
                                                    KeepRules& rules) const {
    if (const auto fault = readFilter(arguments, request)) return badUsage(*fault);
    if (const auto status = readRules(arguments, rules)) return *status;
    for (const char* name : {"protect", "FOLDER"})
        for (const std::string& text : arguments.texts(name)) {
            if (text.empty()) return badUsage("the folder's name is empty");
            const std::string folder = absolutePath(text);
            const std::string fault = folderFault(m_files, folder);
            if (!fault.empty()) return noSuchFolder(folder, fault);
            request.roots.push_back(folder);
            if (name == std::string_view("protect")) request.protectedFolders.push_back(folder);
        }
    // What is protected is searched behind the others, so that these have the order of before.
    std::rotate(request.roots.begin(),
                request.roots.begin() + std::ptrdiff_t(request.protectedFolders.size()),
                request.roots.end());
    return std::nullopt;
}

Status DuplicatesCommand::run(const Arguments& arguments) {
    SearchRequest request;
    KeepRules rules;
    if (const auto status = readSearch(arguments, request, rules)) return *status;
    PreferenceViewController::initialize();
    if (!arguments.has("no-cache") && PreferenceViewController::rememberContents())
        request.cache = std::make_shared<HashCache>(hashCachePath());
    return search(arguments, request, rules);
}

tl::expected<Ending, Status> DuplicatesCommand::runSearch(const Arguments& arguments,
                                                          const SearchRequest& request,
                                                          DuplicateFilesOpt& search) const {
    const SearchOption option{arguments.has("hidden"), arguments.has("system")};
    search.setSearchOption(&option);
    const Ending ending = [&] {
        const SearchWatch watch([&search] { search.stopSearch(); },
                                [&search] { return progressLine(search); }, tellingFor(arguments));
        search.beginSearch(request);
        return watch.ending();
    }();
    const auto state = search.search();
    if (state->rootError())
        return tl::unexpected(noSuchFolder(state->rootError()->path, state->rootError()->reason()));

    if (!arguments.has("quiet")) {
        complainOfSkipped(m_files, state->skipped().entries());
        for (const std::string& folder : request.protectedFolders)
            if (!option.searchHidden && hasHiddenComponent(folder))
                complain(
                    fmt::format("{}: hidden, so that it is searched with --hidden alone", folder));
        for (const CoveredRoot& root : state->coveredRoots())
            if (std::ranges::find(request.protectedFolders, root.path) ==
                request.protectedFolders.end())
                complain(fmt::format("{} {} {}: it is searched once", root.path,
                                     root.isSame ? "is" : "lies in", root.by));
        for (const std::string& root : state->rootsOfPassingInodes())
            complain(
                fmt::format("inode numbers do not last everywhere in {}: files there are "
                            "known by path, size and times",
                            root));
    }
    return ending;
}

Status DuplicatesCommand::search(const Arguments& arguments, const SearchRequest& request,
                                 const KeepRules& rules) {
    const std::string plan = arguments.has("plan") ? absolutePath(arguments.text("plan")) : "";
    if (const auto objection = plan.empty() ? std::nullopt : objectionToPlanAt(plan)) {
        complain(fmt::format("{}: {}", plan, *objection));
        return Status::NoSuchFolder;
    }
    DuplicateFilesOpt search(m_files);
    const auto ended = runSearch(arguments, request, search);
    if (!ended) return ended.error();
    const Ending ending = *ended;
    const std::vector<Error> skipped = search.search()->skipped().entries();
    Output out(STDOUT_FILENO);
    DuplicatesReport report{search, request, arguments.has("keep") ? &rules : nullptr};
    if (request.findsFolders) report.folders = &search.search()->folders();
    if (arguments.has("order") && arguments.text("order") == "gain")
        report.order = DuplicatesReport::Order::Gain;
    const DuplicatesSummary summary = summarize(report);
    if (!arguments.has("quiet"))
        for (const std::string& folder : summary.emptyFolders)
            complain(
                fmt::format("no copy lies in {}: --keep path:{} decides nothing", folder, folder));
    if (arguments.has("json")) printJson(out, report, summary, skipped, ending != Ending::Whole);
    else if (arguments.has("print0")) printPaths(out, report);
    else printListing(out, report, summary, wantsColour(STDOUT_FILENO));
    const Status status = finish(out, skipped, ending);
    // Of a search that was stopped nobody knows what else a group would have had.
    const PlanOrigin origin{request.roots, request.protectedFolders, rules,
                            request.findsFolders ? &m_files : nullptr};
    const bool isWritten = plan.empty() || ending != Ending::Whole ||
                           writePlanFile(plan, search, origin, arguments.has("quiet"));
    return status == Status::Done && !isWritten ? Status::SomeSkipped : status;
}

}  // namespace orrinvale::cli
