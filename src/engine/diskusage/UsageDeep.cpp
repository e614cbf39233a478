// UsageWalk: what lies deeper than descriptors reach.
#include "engine/diskusage/UsageFolder.h"
#include "engine/files/TreeLister.h"
#include "platform/files.h"

namespace orrinvale {

// What one thread lists depth first, where descriptors are short. The levels are the folders on the
// way to the entry in hand.
struct UsageWalk::DeepLevels {
    DeepLevels(UsageWalk& owner, UsageFolder& start) : walk(owner) {
        levels.push_back({&start, 0});
    }
    ~DeepLevels() {
        while (levels.size() > 1) leave();  // the first is the caller's
    }
    DeepLevels(const DeepLevels&) = delete;
    DeepLevels& operator=(const DeepLevels&) = delete;

    void take(const TreeEntry& entry) {
        leaveBehind(entry.relative.size() - entry.name.size());
        UsageFolder& folder = *levels.back().folder;
        CatalogEntry one{.name = entry.name.data(), .type = entry.type, .attributes = {}};
        walk.m_files.readIdentities(entry.folder, {&one, 1});
        Piece piece;
        UsageFolder* const found = walk.takeEntry(folder, entry.folder, one, piece);
        walk.fold(folder, piece);
        isEntered = found != nullptr;
        if (found == nullptr) return;
        found->above = &folder;
        found->parent = &folder;
        found->name = found->text.c_str();
        found->isListed = true;
        folder.users.fetch_add(1);
        levels.push_back({found, entry.relative.size() + 1});
        if (!walk.isKernels(found->device)) return;
        found->marks |= usagewalk::foreign;
        isEntered = false;
    }
    void failed(std::string_view relative, int error) {
        leaveBehind(relative.size() + 1);
        walk.fail(*levels.back().folder, "open", error);
    }
    // Of folders that are told before their contents.
    void leaveBehind(std::size_t prefixLength) {
        while (levels.back().prefixLength > prefixLength) leave();
    }
    void leave() {
        release(levels.back().folder);
        levels.pop_back();
    }

    struct Level {
        UsageFolder* folder;
        std::size_t prefixLength;  // of what stands before the names of its entries in their paths
    };
    UsageWalk& walk;
    std::vector<Level> levels;
    bool isEntered = false;  // the folder that was told last is to be
};

void UsageWalk::takeDeep(Worker& /*worker*/, WalkedFolder& walked) {
    auto& start = static_cast<UsageFolder&>(walked);
    DeepLevels levels(*this, start);
    TreeListing listing;
    listing.foldersFirst = true;
    listing.entry = [&](const TreeEntry& entry) { levels.take(entry); };
    listing.mayEnter = [&](const TreeEntry&) { return levels.isEntered; };
    listing.failed = [&](std::string_view relative, int error) { levels.failed(relative, error); };
    const auto done = listTree(m_files, start.handle.get(), listing, stopFlag());
    if (!done) fail(start, "list", done.error());
    start.isListed = true;
    if (!stopped()) return;
    for (const auto& level : levels.levels) {
        const std::lock_guard lock(mutexOf(*level.folder));
        level.folder->marks |= FSNode::CutWithin;
    }
}

}  // namespace orrinvale
