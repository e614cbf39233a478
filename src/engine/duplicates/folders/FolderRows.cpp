// A search asks for equal folders or not; results/RemovalPlan.h removes them as it does bundles.
#include "engine/duplicates/folders/FolderRows.h"

#include <algorithm>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/duplicates/BundleListing.h"
#include "engine/duplicates/LinkPlaces.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {

FolderRows::FolderRows(const duplicateFind& search)
    : m_search(search), m_findings(search.folders()) {}

void FolderRows::addTo(SimpleTreeNode& top) {
    for (const FolderGroup& group : m_findings.groups) addGroup(top, group);
    for (const auto& [path, folder] : m_folders)
        folder->tieToFolders().within = folderAround(folderOf(path));
}

void FolderRows::addGroup(SimpleTreeNode& top, const FolderGroup& group) {
    FolderFacts facts{group.entries, group.files, group.bytes, group.gain, m_findings.searched};
    if (group.members.size() > 1) facts.gain /= group.members.size() - 1;
    auto data = SimpleNodeData::groupDataWithName({});
    data->setIconRep(IconRequest{IconRequest::Path, group.members.front().path});
    data->setFoundAs(static_cast<std::uint32_t>(top.numberOfChildren()));
    data->tieToFolders().facts = facts;
    const auto node = SimpleTreeNode::treeNodeWithData(data);
    std::uint64_t bytes = 0;
    bool isProtected = true;
    for (const FolderMember& folder : group.members) {
        auto leaf = SimpleNodeData::leafDataWithName(folder.path);
        leaf->setIconRep(IconRequest{IconRequest::Path, folder.path});
        leaf->setFileSize(group.bytes);
        leaf->setModificationDate(Date{folder.modified});
        leaf->setIdentity(folder.identity);
        leaf->setProtected(folder.isProtected);
        leaf->tieToFolders().facts = facts;
        leaf->tieToFolders().group = data;
        const LinkPlaces* const places = m_search.linkPlaces();
        if (const auto place = places != nullptr ? places->placeAt(folder.path) : std::nullopt)
            place->isBehindLink ? leaf->setLink(place->target, place->outside)
                                : leaf->setPlace(place->target);
        m_folders.emplace(folder.path, leaf);
        node->insertChild(SimpleTreeNode::treeNodeWithData(std::move(leaf)),
                          node->numberOfChildren());
        isProtected &= folder.isProtected;
        addSaturating(bytes, group.bytes);
    }
    data->setFileSize(bytes);
    data->setProtected(isProtected);
    data->setName(folderGroupName(*node));
    top.insertChild(node, top.numberOfChildren());
}

// What lies in an equal folder lies in one of a class, whichever of the folders above is told.
void FolderRows::tie(SimpleNodeData& leaf, const fileAttrbItem* file) const {
    if (m_folders.empty() || (file != nullptr && !m_findings.classes.contains(file->folder)))
        return;
    if (auto folder = folderAround(folderOf(leaf.name())))
        leaf.tieToFolders().within = std::move(folder);
}

std::shared_ptr<SimpleNodeData> FolderRows::folderAround(std::string_view path) const {
    for (;;) {
        if (const auto found = m_folders.find(path); found != m_folders.end()) return found->second;
        const std::size_t slash = path.rfind('/');
        if (slash == std::string_view::npos) return nullptr;
        path = path.substr(0, slash);
    }
}

std::string folderGroupName(const TreeNode& group) {
    constexpr std::size_t mostNames = 4;
    std::string name;
    const std::size_t count = group.numberOfChildren();
    for (std::size_t i = 0; i < count && i < mostNames; ++i)
        (name += i == 0 ? "" : " = ")
            .append(lastPathComponent(simpleData(*group.childAtIndex(i))->name()));
    return count > mostNames ? name + " = \xE2\x80\xA6" : name;
}

// The clock of the disk's own machine may be behind ours where it is another; what counts is then
// the number of entries and their bytes, and for all but the last copy the comparison.
std::optional<std::uint64_t> digestOfUnchanged(const FileSystem& files, const std::string& folder,
                                               const FolderFacts& seen,
                                               const std::atomic<bool>& stop) {
    const auto passing = files.devicesOfPassingInodes();
    const auto now = listBundle(files, folder, {passing}, stop);
    if (!now || now->entries.size() != seen.entries) return std::nullopt;
    std::uint64_t bytes = 0;
    for (const BundleEntry& entry : now->entries) {
        if (entry.attributes.changed > seen.searched) return std::nullopt;
        if (entry.attributes.type == FileType::Regular) addSaturating(bytes, entry.attributes.size);
    }
    return bytes == seen.bytes ? std::optional(now->digest) : std::nullopt;
}

}  // namespace orrinvale
