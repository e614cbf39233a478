// Of folders none of which lies in another, that one alone can hold a path that stands last before
// it in the order of bytes.
#include "engine/duplicates/results/GoneFolders.h"

#include <algorithm>

#include "engine/duplicates/tree/SimpleNodeData.h"

namespace orrinvale {

GoneFolders::GoneFolders(const std::vector<std::string>& folders) {
    for (const std::string& each : folders) m_folders.push_back(each + '/');
    std::ranges::sort(m_folders);
    std::vector<std::string> topmost;
    for (std::string& each : m_folders)
        if (topmost.empty() || !each.starts_with(topmost.back()))
            topmost.push_back(std::move(each));
    m_folders = std::move(topmost);
}

bool GoneFolders::holds(const std::string& path) const {
    const auto after = std::ranges::upper_bound(m_folders, path);
    return after != m_folders.begin() && path.starts_with(*(after - 1));
}

bool GoneFolders::held(const SimpleNodeData& copy) const {
    if (holds(copy.name())) return true;
    const bool isLink = copy.identity() && copy.identity()->type == FileType::SymbolicLink;
    return !isLink && !copy.linkTarget().empty() && holds(copy.linkTarget());
}

}  // namespace orrinvale
