#include "engine/duplicates/plan/entriesOutside.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {

std::size_t entriesOutside(const FileSystem& files, const DuplicatePlan& plan) {
    std::vector<std::string> roots;
    for (const std::string& root : plan.roots) roots.push_back(files.resolved(root).value_or(root));
    std::unordered_map<std::string, std::string> places;  // of folders
    std::size_t outside = 0;
    for (const PlanGroup& group : plan.groups)
        for (const PlanMember& member : group.members) {
            if (!member.goes) continue;
            const auto [place, isNew] = places.try_emplace(folderOf(member.path));
            if (isNew) place->second = files.resolved(place->first).value_or(place->first);
            const std::string path = joinPath(place->second, lastPathComponent(member.path));
            outside += std::ranges::none_of(
                roots, [&](const std::string& root) { return isWithin(path, root); });
        }
    return outside;
}

}  // namespace orrinvale
