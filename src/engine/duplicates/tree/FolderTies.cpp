// The chain from a leaf to the folders around it is as long as equal folders lie in each other.
#include "engine/duplicates/tree/FolderTies.h"

#include "engine/duplicates/tree/SimpleNodeData.h"

namespace orrinvale {
namespace {

const SimpleNodeData* folderAround(const SimpleNodeData& leaf) {
    return leaf.folderTies() != nullptr ? leaf.folderTies()->within.get() : nullptr;
}

// A group that left the views holds nothing any more.
bool isCounterpart(const SimpleNodeData& folder) {
    const SimpleNodeData* const group = folder.folderTies()->group.get();
    return group != nullptr && group->Mark() && group->selectNum() == 2;
}

}  // namespace

const SimpleNodeData* goingFolderOf(const SimpleNodeData& leaf) {
    const SimpleNodeData* folder = folderAround(leaf);
    while (folder != nullptr && folder->selectNum() != 1) folder = folderAround(*folder);
    return folder;
}

FolderHold holdOf(const SimpleNodeData& leaf) {
    if (folderAround(leaf) == nullptr) return FolderHold::Free;
    if (goingFolderOf(leaf) != nullptr) return FolderHold::Goes;
    for (const auto* folder = folderAround(leaf); folder != nullptr; folder = folderAround(*folder))
        if (isCounterpart(*folder)) return FolderHold::Stays;
    return FolderHold::Free;
}

}  // namespace orrinvale
