// Groups are printed as the search visits them and never gathered, since there may be millions.
#include "cli/DuplicatesReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <set>

#include "engine/base/Date.h"
#include "engine/base/saturating.h"
#include "engine/duplicates/FileKind.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

struct Leaf {
    std::string path;
    std::uint64_t size;
    std::optional<Date> modified;
};

template <class Visit> void forEachLeaf(const DuplicateGroup& group, Visit visit) {
    for (const AppAttrbItem* bundle : group.bundles)
        visit(Leaf{bundle->DirectoryPathName, bundle->DirectorySize, std::nullopt});
    for (const fileAttrbItem* file : group.files)
        visit(Leaf{file->filePathName(), file->fileSize, file->ModificationDate()});
}

// Adds up what goes with leaves. Names of one file share its bytes, so they count once, and not at
// all where one of them stays.
class Gain {
public:
    void keep(const fileAttrbItem& file) {
        if (file.links > 1) m_seen.insert({file.device, file.inode});
    }
    void remove(const fileAttrbItem& file) {
        if (file.links < 2 || m_seen.insert({file.device, file.inode}).second)
            addSaturating(m_bytes, file.fileSize);
    }
    [[nodiscard]] std::uint64_t bytes() const { return m_bytes; }

private:
    std::set<std::pair<std::uint64_t, std::uint64_t>> m_seen;
    std::uint64_t m_bytes = 0;
};

// Bytes that go when all but one leaf go.
std::uint64_t reclaimable(const DuplicateGroup& group) {
    Gain gain;
    for (const AppAttrbItem* bundle : group.bundles)
        for (const fileAttrbItem* file : bundle->AllFileInDirectory.items())
            bundle == group.bundles.front() ? gain.keep(*file) : gain.remove(*file);
    for (const fileAttrbItem* file : group.files)
        file == group.files.front() ? gain.keep(*file) : gain.remove(*file);
    return gain.bytes();
}

void appendNumber(std::string& out, std::uint64_t number) {
    std::array<char, 20> digits;
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    out.append(digits.data(), end);
}

std::string plural(std::uint64_t count, std::string_view one, std::string_view many) {
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

void appendGroup(std::string& out, const DuplicateGroup& group) {
    out += "{\"name\": ";
    appendJsonText(out, group.name);
    out += ", \"extension\": ";
    appendJsonText(out, group.extension);
    fmt::format_to(std::back_inserter(out),
                   ", \"type\": \"{}\", \"bundle\": {}, \"size\": {},\n     \"leaves\": [",
                   kindName(kindOfExtension(group.extension)), group.bundle, group.size);
    const char* between = "{";
    forEachLeaf(group, [&](const Leaf& leaf) {
        out += between;
        appendJsonPath(out, leaf.path);
        out += ", \"size\": ";
        appendNumber(out, leaf.size);
        out += leaf.modified ? ", \"modified\": \"" + iso8601(*leaf.modified) + "\"}"
                             : ", \"modified\": null}";
        between = ",\n                {";
    });
    out += "]}";
}

}  // namespace

DuplicatesSummary summarize(const DuplicateFilesOpt& search) {
    DuplicatesSummary summary;
    if (const auto state = search.search()) {
        summary.files = state->counts().listedFiles;
        summary.bundles = state->listedBundles();
    }
    search.visitGroups([&](const DuplicateGroup& group) {
        ++summary.groups;
        summary.leaves += group.files.size() + group.bundles.size();
        addSaturating(summary.bytes, group.size);
        addSaturating(summary.reclaimable, reclaimable(group));
    });
    return summary;
}

void printJson(Output& out, const std::string& root, const DuplicateFilesOpt& search,
               const DuplicatesSummary& summary, const std::vector<Error>& skipped, bool stopped) {
    std::string text = "{\n  ";
    appendJsonPath(text, root, "root");
    text += ",\n  \"groups\": [";
    const char* between = "\n    ";
    search.visitGroups([&](const DuplicateGroup& group) {
        text += between;
        appendGroup(text, group);
        between = ",\n    ";
        out.write(text);
        text.clear();
    });
    text += fmt::format(
        "{}],\n  \"summary\": {{\"files\": {}, \"bundles\": {}, \"groups\": {}, \"leaves\": {}, "
        "\"bytes\": {}, "
        "\"reclaimable\": {}}},\n  \"skipped\": [",
        summary.groups == 0 ? "" : "\n  ", summary.files, summary.bundles, summary.groups,
        summary.leaves, summary.bytes, summary.reclaimable);
    appendJsonSkipped(text, skipped);
    text += fmt::format("],\n  \"stopped\": {}\n}}\n", stopped);
    out.write(text);
}

void printPaths(Output& out, const DuplicateFilesOpt& search) {
    search.visitGroups([&](const DuplicateGroup& group) {
        forEachLeaf(group, [&](const Leaf& leaf) {
            out.write(leaf.path);
            out.write(std::string_view("\0", 1));
        });
    });
}

void printListing(Output& out, const DuplicateFilesOpt& search, const DuplicatesSummary& summary,
                  bool colour) {
    const std::string_view strong = colour ? "\x1b[1m" : "";
    const std::string_view faint = colour ? "\x1b[2m" : "";
    const std::string_view plain = colour ? "\x1b[0m" : "";
    search.visitGroups([&](const DuplicateGroup& group) {
        const std::uint64_t leaves = group.files.size() + group.bundles.size();
        const std::uint64_t each =
            group.bundle ? group.bundles.front()->DirectorySize : group.files.front()->fileSize;
        out.write(fmt::format("{}{}{}  {}{} of {}{}\n", strong, printable(group.name), plain, faint,
                              plural(leaves, "copy", "copies"),
                              UtilityFunction::convertVolSpace(each), plain));
        forEachLeaf(group,
                    [&](const Leaf& leaf) { out.write("  " + printable(leaf.path) + "\n"); });
        out.write("\n");
    });
    std::string listed = plural(summary.files, "file", "files");
    if (summary.bundles > 0)
        listed += " and " + plural(summary.bundles, "application", "applications");
    if (summary.groups == 0) {
        out.write(fmt::format("No duplicates among {}.\n", listed));
        return;
    }
    out.write(fmt::format("{}{} of duplicates{} among {}: {}, {} can be freed.\n", strong,
                          plural(summary.groups, "group", "groups"), plain, listed,
                          plural(summary.leaves, "copy", "copies"),
                          UtilityFunction::convertVolSpace(summary.reclaimable)));
}

}  // namespace orrinvale::cli
