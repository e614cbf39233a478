// Paths, lists and their order. getFistListTree() stands in DiskUsageScan.cpp.
#include "engine/diskusage/FSNode.h"

#include <algorithm>
#include <cstring>
#include <utility>
#include <vector>

#include "engine/diskusage/FSNodeTree.h"
#include "platform/paths.h"

namespace orrinvale {

std::string FSNode::path() const {
    std::vector<const FSNode*> way;
    const FSNode* node = this;
    for (; node->m_father != nullptr; node = node->m_father) way.push_back(node);
    std::string path = node->m_name;
    for (auto each = way.rbegin(); each != way.rend(); ++each) {
        if (!path.ends_with('/')) path += '/';
        path += (*each)->m_name;
    }
    return path;
}

std::string FSNode::displayName() const {
    return std::string(m_father == nullptr ? lastPathComponent(m_name) : m_name);
}

std::uint64_t FSNode::onDiskWithin() const {
    if (m_contents != nullptr) return m_onDisk - std::min(m_onDisk, m_contents->outside);
    return m_isLinked ? 0 : m_onDisk;
}

std::span<FSNode*> FSNode::list() const {
    if (m_contents == nullptr) return {};
    return {m_contents->children, m_contents->childCount};
}

std::span<FSNode* const> FSNode::children() const { return list(); }

LeftOut FSNode::leftOut() const {
    if (m_contents == nullptr) return {};
    return {.entries = m_contents->leftOutCount, .size = m_contents->leftOutSize};
}

EntryIdentity FSNode::identity() const {
    EntryIdentity identity;
    identity.device = FSNodeTree::of(*this).deviceAt(m_device);
    identity.inode = m_inode;
    identity.type = m_type;
    identity.size = m_size;
    if (m_type == FileType::Regular) identity.times = m_times;
    else identity.born = static_cast<std::int64_t>(m_times);
    return identity;
}

void FSNode::sort(std::span<Sized> nodes) {
    std::sort(nodes.begin(), nodes.end(), [](const Sized& a, const Sized& b) {
        if (a.first != b.first) return a.first > b.first;
        return std::strcmp(a.second->m_name, b.second->m_name) < 0;
    });
}

// With the sizes beside the nodes, which lie all over the memory.
void FSNode::sort(std::span<FSNode*> nodes) {
    std::vector<Sized> sorted;
    sorted.reserve(nodes.size());
    for (FSNode* const node : nodes) sorted.emplace_back(node->m_size, node);
    sort(std::span(sorted));
    std::transform(sorted.begin(), sorted.end(), nodes.begin(),
                   [](const auto& each) { return each.second; });
}

void FSNode::decendingSort() {
    std::vector<FSNode*> waiting{this};
    while (!waiting.empty()) {
        FSNode* const node = waiting.back();
        waiting.pop_back();
        sort(node->list());
        for (FSNode* const child : node->list())
            if (child->isDirectory()) waiting.push_back(child);
    }
}

}  // namespace orrinvale
