// What is deeper than descriptors reach goes through listTree().
#include "engine/files/Measuring.h"

#include <cerrno>
#include <memory>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/files/TreeLister.h"
#include "platform/files.h"

namespace orrinvale {
Measuring::Measuring(const FileSystem& files, const SizeWatch& watch)
    : FolderWalk(files, watch.stop, watch.skipped), m_watch(watch), m_tallies(mostThreads) {}

SizeTotals Measuring::run(const std::string& shown, Descriptor start) {
    walk(std::make_unique<WalkedFolder>(), shown, std::move(start));
    return {.bytes = m_counts.bytes, .files = m_counts.files, .folders = m_counts.folders};
}

void Measuring::take(Worker& worker, WalkedFolder& folder, std::uint32_t) {
    for (CatalogEntry& entry : worker.batch.entries) {
        if (stopped())
            return;  // one look may take a second on a slow file system, and a batch has a thousand
        takeEntry(worker, folder, entry);
    }
}

void Measuring::takeEntry(Worker& worker, WalkedFolder& folder, CatalogEntry& entry) {
    SizeTotals& totals = totalsOf(worker);
    switch (entry.type) {
        case FileType::Folder: addFolder(worker, folder, entry.name); return;
        case FileType::Fifo:
        case FileType::Socket:
        case FileType::CharacterDevice:
        case FileType::BlockDevice: ++totals.files; return;
        default: break;
    }
    m_files.readSizes(folder.handle.get(), {&entry, 1});
    if (entry.error == 0 && entry.attributes.type == FileType::Folder) {
        if (entry.type == FileType::Unknown) addFolder(worker, folder, entry.name);
        return;
    }
    if (entry.error == ENOENT) return;
    ++totals.files;
    if (entry.error != 0) skip("attributes", pathOf(folder, entry.name), entry.error);
    else addSaturating(totals.bytes, countedSize(entry.attributes));
}

// The listing by one thread holds two, whatever the depth.
void Measuring::takeDeep(Worker& worker, WalkedFolder& folder) {
    SizeTotals& totals = totalsOf(worker);
    bool moved = false;  // into or out of a folder since the last look
    bool foreign = false;
    TreeListing listing;
    listing.enter = [&](std::string_view) { moved = true; };
    listing.failed = [&](std::string_view relative, int error) {
        ++totals.folders;  // told as an entry only once it was listed
        if (error == ENOENT || error == ENOTDIR || error == ELOOP) return;
        skip("open", joinPath(pathOf(folder), relative), error);
    };
    listing.entry = [&](const TreeEntry& entry) {
        if (entry.type == FileType::Folder) {
            moved = true;
            ++totals.folders;
            return;
        }
        if (moved) {
            const auto here = m_files.attributes(entry.folder);
            foreign = here && isKernels(here->device);
            moved = false;
            count(totals);
        }
        if (foreign) return;
        CatalogEntry one{.name = entry.name.data(), .type = entry.type, .attributes = {}};
        m_files.readSizes(entry.folder, {&one, 1});
        if (one.error == ENOENT) return;
        ++totals.files;
        if (one.error != 0) skip("attributes", joinPath(pathOf(folder), entry.relative), one.error);
        else addSaturating(totals.bytes, countedSize(one.attributes));
    };
    const auto listed = listTree(m_files, folder.handle.get(), listing, stopFlag());
    if (!listed) fail(folder, "list", listed.error());
}

void Measuring::addFolder(Worker& worker, WalkedFolder& parent, const char* name) {
    auto folder = std::make_unique<WalkedFolder>();
    folder->text = name;
    ++totalsOf(worker).folders;
    addFound(worker, parent, folder.release(), nullptr);
}

void Measuring::count(SizeTotals& totals) {
    for (SizeCounts* const counts : {&m_counts, m_watch.counts}) {
        if (counts == nullptr) continue;
        addSaturating(counts->bytes, totals.bytes);
        counts->files.fetch_add(totals.files, std::memory_order_relaxed);
        counts->folders.fetch_add(totals.folders, std::memory_order_relaxed);
    }
    totals = {};
}

}  // namespace orrinvale
