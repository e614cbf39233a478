// A folder may have 200,000 entries, which are kept as they were listed: the model makes a row of
// one when it is drawn.
#include "ui/duplicates/OpenedFolders.h"

#include <algorithm>
#include <utility>

#include "engine/base/endAside.h"

namespace orrinvale {

std::optional<std::size_t> OpenedFolders::find(const TreeNode* leaf) const {
    const auto found = m_places.find(leaf);
    return found == m_places.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::size_t> OpenedFolders::find(const Stop& opening) const {
    const auto found = std::ranges::find_if(
        m_folders, [&](const auto& each) { return each != nullptr && each->stop == opening; });
    return found == m_folders.end() ? std::nullopt
                                    : std::optional(std::size_t(found - m_folders.begin()));
}

OpenedFolders::Folder* OpenedFolders::at(std::size_t place) const {
    return place < m_folders.size() ? m_folders[place].get() : nullptr;
}

OpenedFolders::Folder& OpenedFolders::open(TreeNode::Pointer leaf, int group, int row) {
    const auto free =
        std::ranges::find_if(m_folders, [](const auto& each) { return each == nullptr; });
    const auto place = std::size_t(free - m_folders.begin());
    if (free == m_folders.end()) m_folders.emplace_back();
    m_places[leaf.get()] = place;
    m_folders[place] = std::make_unique<Folder>();
    Folder& folder = *m_folders[place];
    folder.leaf = std::move(leaf);
    folder.group = group;
    folder.row = row;
    folder.stop = std::make_shared<std::atomic<bool>>(false);
    return folder;
}

void OpenedFolders::close(std::size_t place) {
    std::unique_ptr<Folder> folder = std::move(m_folders[place]);
    m_places.erase(folder->leaf.get());
    *folder->stop = true;
    if (folder->contents && folder->contents->entries.size() > rowsAtOnce)
        endAside(std::exchange(folder->contents, std::nullopt));
}

void OpenedFolders::clear() {
    for (std::size_t place = 0; place < m_folders.size(); ++place)
        if (m_folders[place] != nullptr) close(place);
    m_folders.clear();
}

void OpenedFolders::visit(const std::function<void(Folder&)>& each) const {
    for (const auto& folder : m_folders)
        if (folder != nullptr) each(*folder);
}

}  // namespace orrinvale
