// ui/duplicates/shareWords.cpp says the same in the window.
#include "cli/ShareQuestion.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <map>
#include <string_view>
#include <utility>
#include <vector>

#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

void addCounted(std::string& text, std::size_t count, std::string_view one, std::string_view more) {
    if (count == 1) text += fmt::format("1 {}\n", one);
    else if (count > 1) text += fmt::format("{} {}\n", count, more);
}

std::string counted(const ShareOutlook::Way& way) {
    return fmt::format("{} file{}, up to {}", way.files, way.files == 1 ? "" : "s",
                       UtilityFunction::convertVolSpace(way.bytes));
}

void addWays(std::string& text, const ShareOutlook& outlook) {
    if (outlook.extents.files > 0)
        text += fmt::format("{}: {} a file of its own.\n", counted(outlook.extents),
                            outlook.extents.files == 1 ? "it stays" : "each stays");
    if (outlook.links.files == 1)
        text += counted(outlook.links) +
                ", by a hard link alone: it becomes another name of the copy that stays. They are "
                "one file then, and a change to one is a change to both.\n";
    else if (outlook.links.files > 1)
        text += counted(outlook.links) +
                ", by hard links alone: they become other names of the copies that stay. That is "
                "one file then, and a change to one is a change to all.\n";
}

// The most frequent first.
void addReasons(std::string& text, const std::vector<StayedEntry>& kept) {
    std::map<std::string_view, std::size_t> counts;
    for (const StayedEntry& each : kept) ++counts[each.reason];
    std::vector<std::pair<std::string_view, std::size_t>> reasons(counts.begin(), counts.end());
    std::ranges::stable_sort(reasons, std::ranges::greater(),
                             [](const auto& each) { return each.second; });
    for (const auto& [reason, count] : reasons) text += fmt::format("  {}: {}\n", count, reason);
}

}  // namespace

std::string shareQuestion(const ShareOutlook& outlook) {
    std::string text;
    addWays(text, outlook);
    addCounted(text, outlook.already, "has nothing to give.", "have nothing to give.");
    addCounted(text, outlook.noFiles,
               "folder or link is left out: only files can have their space in common.",
               "folders or links are left out: only files can have their space in common.");
    addCounted(text, outlook.wholeGroups,
               "group is left out: all its copies are ticked, and one stays.",
               "groups are left out: all their copies are ticked, and one stays.");
    addCounted(text, outlook.kept.size(), "keeps its own space.", "keep their own space.");
    addReasons(text, outlook.kept);
    const bool canAny = outlook.extents.files + outlook.links.files > 0;
    return text + (canAny ? "Share the space of the copies that stay?"
                          : "Nothing here can share its space");
}

}  // namespace orrinvale::cli
