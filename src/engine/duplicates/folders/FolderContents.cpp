// BundleListing.h lists; here folders leave the list that are known by what is in them.
#include "engine/duplicates/folders/FolderContents.h"

#include <utility>

#include "engine/duplicates/BundleListing.h"
#include "platform/paths.h"

namespace orrinvale {

FolderContents contentsOf(const FileSystem& files, const std::string& folder,
                          const std::atomic<bool>& stop) {
    FolderContents contents;
    auto listing = listBundle(files, folder, {}, stop);
    if (!listing) {
        contents.fault = listing.error().reason();
        return contents;
    }
    std::vector<BundleEntry>& all = listing->entries;
    for (std::size_t i = 0; i < all.size(); ++i) {
        BundleEntry& entry = all[i];
        const bool isFolder = entry.attributes.type == FileType::Folder;
        // A folder stands right before what is in it.
        if (isFolder && i + 1 < all.size() && folderOf(all[i + 1].path) == entry.path) continue;
        const bool hasLength = entry.attributes.type == FileType::Regular ||
                               entry.attributes.type == FileType::SymbolicLink;
        contents.entries.push_back({std::move(entry.path), hasLength ? entry.attributes.size : 0,
                                    entry.attributes.modified});
    }
    return contents;
}

}  // namespace orrinvale
