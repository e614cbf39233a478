// How sizes go up to the folders above, and how nodes leave.
#include "engine/diskusage/FSNodeTree.h"

#include <algorithm>
#include <functional>
#include <map>

#include "engine/base/saturating.h"

namespace orrinvale {
namespace {

// A sum that was held at its limit is not known any more; it then shrinks by what it would have.
void subtract(std::uint64_t& from, std::uint64_t bytes) { from -= std::min(bytes, from); }

}  // namespace

struct FSNodeTree::Root : FSNode {
    FSNodeTree* tree = nullptr;
    FSContents contents;
};

FSNodeTree::FSNodeTree(std::string rootPath)
    : m_rootPath(std::move(rootPath)), m_rootHolder(std::make_unique<Root>()) {
    m_rootHolder->tree = this;
    FSNode& root = *m_rootHolder;
    root.m_name = m_rootPath.c_str();
    root.m_contents = &m_rootHolder->contents;
    root.m_type = FileType::Folder;
}

FSNodeTree::~FSNodeTree() = default;

FSNode& FSNodeTree::root() { return *m_rootHolder; }

const FSNode& FSNodeTree::root() const { return *m_rootHolder; }

FSNodeTree& FSNodeTree::of(const FSNode& node) {
    const FSNode* top = &node;
    while (top->m_father != nullptr) top = top->m_father;
    return *static_cast<const Root*>(top)->tree;
}

// One pass over the list: in a folder of a hundred thousand entries a look for each would take
// seconds.
void FSNodeTree::removeFromList(FSNode& father, std::span<FSNode* const> leaving) {
    std::vector<FSNode*> sorted(leaving.begin(), leaving.end());
    std::sort(sorted.begin(), sorted.end(), std::less<>());
    const auto leaves = [&](FSNode* child) {
        return std::binary_search(sorted.begin(), sorted.end(), child, std::less<>());
    };
    const std::span<FSNode*> list = father.list();
    const auto end = std::remove_if(list.begin(), list.end(), leaves);
    father.m_contents->childCount = static_cast<std::uint32_t>(end - list.begin());
}

void FSNodeTree::takeOut(std::span<FSNode* const> nodes) {
    std::map<FSNode*, std::vector<FSNode*>> byFather;
    for (FSNode* const node : nodes)
        if (node->m_father != nullptr && !node->m_isTakenOut)
            byFather[node->m_father].push_back(node);
    for (const auto& [father, leaving] : byFather) {
        std::uint64_t size = 0;
        std::uint64_t onDisk = 0;
        for (FSNode* const node : leaving) {
            if (std::exchange(node->m_isTakenOut, true)) continue;
            addSaturating(size, node->m_size);
            addSaturating(onDisk, node->onDiskWithin());
        }
        removeFromList(*father, leaving);
        for (FSNode* above = father; above != nullptr; above = above->m_father) {
            subtract(above->m_size, size);
            subtract(above->m_onDisk, onDisk);
        }
        settleMarks(*father);
    }
}

void FSNodeTree::put(FSNode& folder, const UsageResult& found) {
    const std::uint64_t size = folder.m_size;
    const std::uint64_t within = folder.onDiskWithin();
    folder.m_size = found.size;
    folder.m_onDisk = found.onDisk;
    *folder.m_contents = found.contents;
    folder.m_marks = found.marks;
    for (FSNode* above = folder.m_father; above != nullptr; above = above->m_father) {
        subtract(above->m_size, size);
        addSaturating(above->m_size, found.size);
        subtract(above->m_onDisk, within);
        addSaturating(above->m_onDisk, folder.onDiskWithin());
        above->m_marks |= found.marks & FSNode::within;
    }
}

// The folder above one that stays as it was has nothing to take back.
void FSNodeTree::settleMarks(FSNode& folder) {
    for (FSNode* each = &folder; each != nullptr; each = each->m_father) {
        std::uint8_t marks = each->m_contents->marks | (each->m_marks & FSNode::Undecided);
        for (const FSNode* const child : each->list()) marks |= child->m_marks & FSNode::within;
        if (std::exchange(each->m_marks, marks) == marks) return;
    }
}

void FSNodeTree::putLevel(std::span<FSNode*> level) {
    FSContents& contents = *root().m_contents;
    contents.children = level.data();
    contents.childCount = static_cast<std::uint32_t>(level.size());
    for (FSNode* const node : level) addSaturating(root().m_size, node->m_size);
}

void FSNodeTree::countUp(FSNode& node, std::uint64_t size) {
    subtract(root().m_size, node.m_size);
    node.m_size = size;
    addSaturating(root().m_size, size);
}

void FSNodeTree::putWhole(const UsageResult& found) {
    *root().m_contents = found.contents;
    root().m_size = found.size;
    root().m_onDisk = found.onDisk;
    root().m_marks = found.marks;
}

void FSNodeTree::closeLevel() {
    for (FSNode* const node : root().list()) {
        if (!node->has(FSNode::Undecided)) continue;
        node->m_marks = FSNode::CutWithin;
        if (node->m_contents != nullptr) node->m_contents->marks = FSNode::CutWithin;
    }
    root().m_contents->marks = FSNode::CutWithin;
    root().m_marks |= FSNode::CutWithin;
    if (root().list().empty()) root().m_marks |= FSNode::Undecided;
    FSNode::sort(root().list());
}

std::uint16_t FSNodeTree::deviceIndex(std::uint64_t device) {
    const std::lock_guard lock(m_devicesMutex);
    const auto found = std::find(m_devices.begin(), m_devices.end(), device);
    const auto index = static_cast<std::uint16_t>(found - m_devices.begin());
    if (found == m_devices.end()) m_devices.push_back(device);
    return index;
}

std::uint64_t FSNodeTree::deviceAt(std::uint16_t index) const {
    const std::lock_guard lock(m_devicesMutex);
    return m_devices[index];
}

}  // namespace orrinvale
