// engine/diskusage/DiskUsageScan.h scans, UsageReport.h prints; UsageSince.h prints what changed
// since a scan that engine/diskusage/history has kept.
#include "cli/UsageCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <optional>

#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "cli/UsageSince.h"
#include "engine/diskusage/DiskUsageScan.h"
#include "engine/diskusage/history/ScanHistory.h"
#include "engine/files/FolderNode.h"
#include "engine/settings/UserFolders.h"
#include "engine/text/SizeText.h"

namespace orrinvale::cli {
namespace {

std::string progressLine(const DiskUsageScan& scan) {
    return fmt::format("{:3.0f} %  {} entries", scan.progress().percent(), scan.foundCount());
}

/// A scan to its end.
struct UsageErrandRun {
    UsageErrandRun(const FileSystem& files, const std::string& root, UsageOptions options,
                   Telling telling)
        : tree(std::make_shared<FSNodeTree>(root)),
          scan({.files = &files, .mainQueue = nullptr, .news = {}}) {
        scan.start(tree, options);
        ending = watchScan(
            scan, [this] { return progressLine(scan); }, telling);
        skipped = scan.skipped();
    }
    [[nodiscard]] bool isUnread() const {
        return tree->root().has(FSNode::Unread) && !skipped.empty() &&
               skipped.front().path == tree->rootPath();
    }

    std::shared_ptr<FSNodeTree> tree;
    DiskUsageScan scan;
    Ending ending{};
    std::vector<Error> skipped;
};

void tellKept(const std::string& root, const std::vector<KeptScan>& kept) {
    if (!kept.empty())
        complain(fmt::format("{}: {} {} of it {} kept, the last of {}", printable(root),
                             kept.size(), kept.size() == 1 ? "scan" : "scans",
                             kept.size() == 1 ? "is" : "are", momentWords(kept.back().time)));
}

// The scan as it would be kept; nothing where it did not come to its end.
std::optional<StoredScan> storedScan(const DiskUsageScan& scan) {
    const auto record = scan.record();
    return record == nullptr ? std::nullopt : parseScan(encodeScan(*record));
}

// Before anything is printed: whoever reads it may close the pipe, and that ends the program.
bool isKeptBy(const ScanHistory& history, const std::optional<StoredScan>& scan) {
    if (!scan) {
        complain("the scan is not kept, since it did not come to its end");
        return true;  // the ending has a status of its own
    }
    const auto kept = history.keep(*scan);
    if (!kept) complain(fmt::format("the scan could not be kept: {}", kept.error().reason()));
    return kept.has_value();
}

Status withKeeping(bool isKept, Status otherwise) {
    return !isKept && otherwise == Status::Done ? Status::SomeSkipped : otherwise;
}

void tellOfDoubts(const ScanDifference& difference, const Arguments& arguments) {
    if (difference.isOfTwoVolumes()) complain("another file system lies there than at that time");
    if (!arguments.has("print0") || arguments.has("quiet")) return;
    if (const std::string words = doubtWords(difference.root()); !words.empty())
        complain(printable(difference.after().root) + words);
}

void printDifference(Output& out, const Arguments& arguments, const ScanDifference& difference,
                     const UsageExtent& extent, const std::vector<Error>& skipped) {
    if (arguments.has("json")) printJson(out, difference, extent, skipped);
    else if (arguments.has("print0")) printPaths(out, difference, extent);
    else printListing(out, difference, extent, wantsColour(STDOUT_FILENO));
}

std::optional<UsageExtent> extentOf(const Arguments& arguments) {
    UsageExtent extent;
    if (arguments.has("limit")) {
        const auto limit = parseSize(arguments.text("limit"));
        if (!limit) {
            badUsage(
                fmt::format("--limit takes {}, not \"{}\"", sizeForms, arguments.text("limit")));
            return std::nullopt;
        }
        extent.limit = *limit;
    }
    if (arguments.has("depth")) {
        const auto depth = parseNumber(arguments.text("depth"));
        if (!depth) {
            badUsage(fmt::format("--depth takes a number, not \"{}\"", arguments.text("depth")));
            return std::nullopt;
        }
        extent.depth = *depth;
    }
    return extent;
}

}  // namespace

std::vector<OptionSpec> UsageCommand::options() const {
    return {{"--limit", "SIZE", "Leave out what is smaller (default 1MB)"},
            {"--depth", "N", "Print so many levels of folders (default 1)"},
            {"--all-file-systems", "", "Enter other file systems as well"},
            {"--remember", "", "Keep this scan, for --since another day"},
            {"--since", "DATE",
             "Print what changed since the kept scan of a day (2026-11-15), of a minute "
             "(2026-11-15T10:04), \"last\", \"yesterday\", \"last-week\" or \"last-month\""},
            {"--any-volume", "",
             "Compare also with a scan of another file system that lay at the path"},
            {"--forget", "",
             "Forget the kept scans of the folder, or without one all of all folders, and do "
             "nothing else"},
            {"[FOLDER]", "", "The folder to look through"}};
}

Status UsageCommand::run(const Arguments& arguments) {
    const auto extent = extentOf(arguments);
    if (!extent) return Status::BadUsage;
    if (arguments.has("forget") && !arguments.has("FOLDER")) return forget(arguments);
    if (!arguments.has("FOLDER")) return badUsage("FOLDER is required");
    if (arguments.text("FOLDER").empty()) return badUsage("the folder's name is empty");
    if (arguments.has("forget")) return forget(arguments);
    const std::string root = absolutePath(arguments.text("FOLDER"));
    const ScanHistory history(userStateFolder());
    if (const std::string fault = folderFault(m_files, root); !fault.empty()) {
        tellKept(root, history.list({root, arguments.has("all-file-systems")}));
        return noSuchFolder(root, fault);
    }
    if (arguments.has("since")) return runSince(arguments, *extent, root);

    const UsageErrandRun done(m_files, root,
                              {.limit = extent->limit,
                               .allFileSystems = arguments.has("all-file-systems"),
                               .records = arguments.has("remember")},
                              tellingFor(arguments));
    if (done.isUnread()) return notScanned(done.skipped.front());
    if (!arguments.has("quiet")) complainOfEach(done.skipped);
    const bool isKept = !arguments.has("remember") || isKeptBy(history, storedScan(done.scan));

    Output out(STDOUT_FILENO);
    if (arguments.has("json"))
        printJson(out, *done.tree, *extent, done.skipped, done.ending != Ending::Whole);
    else if (arguments.has("print0")) printPaths(out, *done.tree, *extent);
    else printListing(out, *done.tree, *extent, wantsColour(STDOUT_FILENO));
    return withKeeping(isKept, finish(out, done.skipped, done.ending));
}

Status UsageCommand::forget(const Arguments& arguments) const {
    if (arguments.has("since") || arguments.has("remember"))
        return badUsage("--forget goes with neither --since nor --remember");
    const ScanHistory history(userStateFolder());
    const bool isAll = !arguments.has("FOLDER");
    const std::string root = isAll ? "" : absolutePath(arguments.text("FOLDER"));
    if (isAll ? history.clear() : history.forget(root)) return Status::Done;
    complain(isAll ? "a scan could not be forgotten"
                   : printable(root) + ": a scan of it could not be forgotten");
    return Status::SomeSkipped;
}

std::optional<VolumeName> UsageCommand::volumeOf(const std::string& root) const {
    const auto folder = openFolderByPath(m_files, root, Links::Follow);
    if (!folder) return std::nullopt;
    const auto volume = volumeAtPlace(folder->get());
    return volume ? std::optional(*volume) : std::nullopt;
}

Status UsageCommand::runSince(const Arguments& arguments, const UsageExtent& extent,
                              const std::string& root) {
    const auto moment = momentSince(arguments.text("since"));
    if (!moment)
        return badUsage(
            fmt::format("--since takes a day such as 2026-11-15, a minute such as "
                        "2026-11-15T10:04, \"last\", \"yesterday\", \"last-week\" or "
                        "\"last-month\", not \"{}\"",
                        printable(arguments.text("since"))));
    const ScanHistory history(userStateFolder());
    ScanHistory::Place place{root, arguments.has("all-file-systems")};
    const bool isAnyKept = !history.list(place).empty();
    if (!arguments.has("any-volume")) place.volume = volumeOf(root);
    const auto kept = scanBefore(history.list(place), *moment);
    if (!kept) {
        complain(fmt::format("{}: no scan of {} is kept{}", printable(root),
                             isAnyKept ? "the file system that lies there" : "it",
                             arguments.has("remember") ? ", this will be the first"
                             : isAnyKept ? "; --any-volume compares with one of another"
                                         : "; usage --remember keeps one"));
        if (!arguments.has("remember")) return Status::NoSuchFolder;
        return compareNow(arguments, extent, place, nullptr);
    }
    const auto before = history.load(place, kept->time);
    if (!before) {
        complain(fmt::format("the scan of {} can not be read: {}", momentWords(kept->time),
                             before.error().reason()));
        if (!arguments.has("remember")) return Status::NoSuchFolder;
        return compareNow(arguments, extent, place, nullptr);
    }
    if (kept->time >= *moment)
        complain(
            fmt::format("no scan is as old as that; this is since {}", momentWords(kept->time)));
    return compareNow(arguments, extent, place, &*before);
}

// Nothing of the tree is kept in memory: the limit is beyond every file.
Status UsageCommand::compareNow(const Arguments& arguments, const UsageExtent& extent,
                                const ScanHistory::Place& place, const StoredScan* before) {
    const UsageErrandRun done(
        m_files, place.root,
        {.limit = std::uint64_t{1} << 63U, .allFileSystems = place.allFileSystems, .records = true},
        tellingFor(arguments));
    if (done.isUnread()) return notScanned(done.skipped.front());
    if (!arguments.has("quiet")) complainOfEach(done.skipped);
    Output out(STDOUT_FILENO);
    const auto now = storedScan(done.scan);
    const bool isKept =
        !arguments.has("remember") || !now || isKeptBy(ScanHistory(userStateFolder()), now);
    if (!now) {
        complain("nothing is compared, since the scan did not come to its end");
        return finish(out, done.skipped, done.ending);
    }
    if (before != nullptr) {
        const auto difference = ScanDifference::of(*before, *now);
        if (!difference) {
            complain(fmt::format("too much differs from the scan of {}",
                                 momentWords(before->facts.time)));
            return Status::NoSuchFolder;
        }
        tellOfDoubts(*difference, arguments);
        printDifference(out, arguments, *difference, extent, done.skipped);
    }
    return withKeeping(isKept, finish(out, done.skipped, done.ending));
}

}  // namespace orrinvale::cli
