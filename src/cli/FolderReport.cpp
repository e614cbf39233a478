// Groups of equal folders first, then the pairs of which one is for the most part in the other.
#include "cli/FolderReport.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <vector>

#include "engine/text/UtilityFunction.h"
#include "platform/paths.h"

namespace orrinvale::cli {
namespace {

constexpr std::size_t mostNames = 4;  // in the first line of a group

std::vector<const FolderGroup*> orderedFolders(const DuplicatesReport& report) {
    std::vector<const FolderGroup*> groups;
    for (const FolderGroup& group : report.folders->groups) groups.push_back(&group);
    if (report.order == DuplicatesReport::Order::Gain)
        std::ranges::stable_sort(groups, std::ranges::greater(), &FolderGroup::gain);
    return groups;
}

// "Backup = Backup (copy)".
std::string titleOf(const FolderGroup& group) {
    std::string title;
    for (std::size_t i = 0; i < group.members.size() && i < mostNames; ++i)
        title += (i == 0 ? "" : " = ") + printable(lastPathComponent(group.members[i].path));
    return group.members.size() > mostNames ? title + " = ..." : title;
}

std::string countOf(std::uint64_t count, std::string_view one) {
    return fmt::format("{} {}{}", count, one, count == 1 ? "" : "s");
}

// Calls visit(folder, stays) for each of a group.
template <class Visit>
void visitFolders(const FolderGroup& group, const std::optional<FolderFates>& fates, Visit visit) {
    for (const FolderMember& folder : group.members) {
        std::optional<bool> stays;
        if (fates) stays = fates->of(folder.path) != FolderFate::Goes;
        visit(folder, stays);
    }
}

}  // namespace

void appendFolders(std::string& json, const DuplicatesReport& report) {
    const auto fates = report.fates();
    json += ",\n  \"folders\": [";
    const char* between = "\n    {";
    for (const FolderGroup* group : orderedFolders(report)) {
        json += fmt::format(
            "{}\"entries\": {}, \"files\": {}, \"bytes\": {}, \"gain\": {},\n"
            "     \"members\": [",
            between, group->entries, group->files, group->bytes, group->gain);
        const char* comma = "{";
        visitFolders(*group, fates, [&](const FolderMember& folder, std::optional<bool> stays) {
            json += comma;
            appendJsonPath(json, folder.path);
            if (folder.isProtected) json += ", \"protected\": true";
            if (stays) json += *stays ? ", \"keep\": true" : ", \"keep\": false";
            json += '}';
            comma = ",\n                 {";
        });
        json += "]}";
        between = ",\n    {";
    }
    json += report.folders->groups.empty() ? "],\n" : "\n  ],\n";
    json += "  \"partly\": [";
    between = "\n    {";
    for (const PartlyEqual& part : report.folders->partly) {
        json += between;
        appendJsonPath(json, part.folder);
        json += ", ";
        appendJsonPath(json, part.other, "in", "inHex");
        json += fmt::format(", \"percent\": {}, \"shared\": {}, \"bytes\": {}, \"files\": {}}}",
                            part.percent(), part.shared, part.bytes, part.files);
        between = ",\n    {";
    }
    json += report.folders->partly.empty() ? "]" : "\n  ]";
}

void printFolderPaths(Output& out, const DuplicatesReport& report) {
    const auto fates = report.fates();
    for (const FolderGroup* group : orderedFolders(report))
        visitFolders(*group, fates, [&](const FolderMember& folder, std::optional<bool> stays) {
            if (stays.value_or(false)) return;
            // One in a folder that goes goes with it.
            if (fates && fates->of(folderOf(folder.path)) == FolderFate::Goes) return;
            out.write(folder.path);
            out.write(std::string_view("\0", 1));
        });
}

void printFolders(Output& out, const DuplicatesReport& report, const ReportColours& colours) {
    const auto& [strong, faint, plain] = colours;
    const auto fates = report.fates();
    for (const FolderGroup* group : orderedFolders(report)) {
        out.write(fmt::format("{}{}{}  {}{} of {} in each, {} can be freed{}\n", strong,
                              titleOf(*group), plain, faint, countOf(group->files, "file"),
                              UtilityFunction::convertVolSpace(group->bytes),
                              UtilityFunction::convertVolSpace(group->gain), plain));
        visitFolders(*group, fates, [&](const FolderMember& folder, std::optional<bool> stays) {
            const std::string_view word = !stays ? "" : *stays ? "stays  " : "goes   ";
            out.write(fmt::format("  {}{}{}\n", word, printable(folder.path),
                                  folder.isProtected ? "  (protected)" : ""));
        });
        out.write("\n");
    }
    if (!report.folders->partly.empty()) out.write("Partly equal folders\n");
    for (const PartlyEqual& part : report.folders->partly)
        out.write(fmt::format("  {} % of {} is also in {}  {}{}, {}{}\n", part.percent(),
                              printable(part.folder), printable(part.other), faint,
                              countOf(part.files, "file"),
                              UtilityFunction::convertVolSpace(part.shared), plain));
    if (!report.folders->partly.empty()) out.write("\n");
    const std::size_t groups = report.folders->groups.size();
    if (groups == 0) {
        out.write("No equal folders.\n\n");
        return;
    }
    static const KeepRules noRules;
    const std::uint64_t gain = fates ? fates->gain() : FolderFates(*report.folders, noRules).gain();
    out.write(fmt::format("{}{} of equal folders{}: {} can be freed.\n\n", strong,
                          countOf(groups, "group"), plain, UtilityFunction::convertVolSpace(gain)));
}

}  // namespace orrinvale::cli
