// Measuring: see Measuring.h. A task is a folder, to be opened or to be listed further: while one worker sizes a large piece of a
// folder another lists the next one. What is deeper than descriptors reach goes through listTree().
#include "engine/files/Measuring.h"

#include <cerrno>
#include <memory>
#include <utility>

#include "engine/files/TreeLister.h"

namespace orrinvale {
namespace {

// A piece of a folder worth another worker's start: sizing it takes longer than handing over.
constexpr std::size_t largePiece = 128;
// Subfolders that may wait before the listing of their parent pauses, so that a folder of a million folders takes no memory.
constexpr std::size_t mostFound = 1024;

void addSaturating(std::uint64_t& sum, std::uint64_t more) { sum += std::min(more, ~std::uint64_t{0} - sum); }

}  // namespace

Measuring::Measuring(const FileSystem& files, const SizeWatch& watch, const std::string& shown, Descriptor start)
    : m_files(files), m_watch(watch) {
    // An eighth, so that six lists of a cleaning page can be measured at once and leave enough for the rest.
    m_mostOpen = std::max<std::size_t>(8, std::min<std::size_t>(m_files.descriptorLimit(), 65536) / 8);
    auto root = std::make_unique<SizedFolder>();
    root->text = shown;
    root->name = root->text.c_str();
    root->handle = std::move(start);
    if (const auto attributes = m_files.attributes(root->handle.get())) m_startDevice = attributes->device;
    root->device = m_startDevice;
    push(root.release());
}

SizeTotals Measuring::run() {
    m_crew.run([this](unsigned worker) { return step(worker); });
    return {.bytes = m_counts.bytes, .files = m_counts.files, .folders = m_counts.folders};
}

WorkCrew::Step Measuring::step(unsigned number) {
    SizedFolder* folder = nullptr;
    {
        const std::lock_guard lock(m_mutex);
        if (m_tasks.empty()) return m_open == 0 ? WorkCrew::Step::Finished : WorkCrew::Step::Idle;
        folder = m_tasks.back();
        m_tasks.pop_back();
    }
    // Goes on with the first subfolder itself: in a chain of folders there is nothing for others, and nobody is woken.
    Worker& worker = m_workers[number];
    while (folder != nullptr) {
        visit(worker, folder);
        count(worker.totals);
        folder = pushFound(worker);
    }
    return m_open.fetch_sub(1) == 1 ? WorkCrew::Step::Finished : WorkCrew::Step::Worked;
}

void Measuring::visit(Worker& worker, SizedFolder* folder) {
    const bool toOpen = !folder->handle.isOpen();
    if (stopped()) {
        if (toOpen) releaseHandle(*folder->above);
    } else if (!toOpen || enter(worker, *folder)) {
        list(worker, *folder);
    }
    releaseHandle(*folder);
    release(folder);
}

// False when there is nothing to list, or it is listed already.
bool Measuring::enter(Worker& worker, SizedFolder& folder) {
    auto opened = m_files.openFolder(folder.above->handle.get(), folder.name, Links::Keep);
    releaseHandle(*folder.above);
    if (!opened) {
        // No folder any more: exchanged for something else since it was listed.
        if (opened.error() != ENOTDIR && opened.error() != ELOOP) fail(folder, "open", opened.error());
        return false;
    }
    folder.handle = std::move(*opened);
    const bool deep = m_openFolders.fetch_add(1) >= m_mostOpen;
    const auto attributes = m_files.attributes(folder.handle.get());
    if (!attributes) return true;
    folder.device = attributes->device;
    folder.inode = attributes->inode;
    if (isKernels(folder.device)) return false;
    if (deep) takeDeep(worker, folder);
    return !deep;
}

// Hands the rest of a large folder, or of one with many subfolders, to whoever is free, before the piece in hand is sized.
void Measuring::list(Worker& worker, SizedFolder& folder) {
    while (!stopped()) {
        const auto more = m_files.readFolder(folder.handle.get(), worker.batch);
        if (!more) fail(folder, "list", more.error());
        if (!more || !*more) return;
        const bool handOver = worker.batch.entries.size() >= largePiece || worker.found.size() >= mostFound;
        if (handOver) {
            folder.handleUsers.fetch_add(1);
            folder.users.fetch_add(1);
            push(&folder);
        }
        for (CatalogEntry& entry : worker.batch.entries) takeEntry(worker, folder, entry);
        if (handOver) return;
    }
}

void Measuring::takeEntry(Worker& worker, SizedFolder& folder, CatalogEntry& entry) {
    switch (entry.type) {
        case FileType::Folder: add(folder, worker, entry.name); return;
        case FileType::Fifo:
        case FileType::Socket:
        case FileType::CharacterDevice:
        case FileType::BlockDevice: ++worker.totals.files; return;
        default: break;
    }
    m_files.readSizes(folder.handle.get(), {&entry, 1});
    if (entry.error == 0 && entry.attributes.type == FileType::Folder) {
        if (entry.type == FileType::Unknown) add(folder, worker, entry.name);
        return;
    }
    if (entry.error == ENOENT) return;
    ++worker.totals.files;
    if (entry.error != 0) skip("attributes", pathOf(folder, entry.name), entry.error);
    else addSaturating(worker.totals.bytes, countedSize(entry.attributes));
}

// So many folders are open that no more should be. The listing by one thread holds two, whatever the depth.
void Measuring::takeDeep(Worker& worker, const SizedFolder& folder) {
    bool moved = false;  // into or out of a folder since the last look
    bool foreign = false;
    TreeListing listing;
    listing.enter = [&](std::string_view) { moved = true; };
    listing.failed = [&](std::string_view relative, int error) {
        ++worker.totals.folders;  // told as an entry only once it was listed
        if (error == ENOENT || error == ENOTDIR || error == ELOOP) return;
        skip("open", joinPath(pathOf(folder), relative), error);
    };
    listing.entry = [&](const TreeEntry& entry) {
        if (entry.type == FileType::Folder) {
            moved = true;
            ++worker.totals.folders;
            return;
        }
        if (moved) {
            const auto here = m_files.attributes(entry.folder);
            foreign = here && isKernels(here->device);
            moved = false;
            count(worker.totals);
        }
        if (foreign) return;
        CatalogEntry one{.name = entry.name.data(), .type = entry.type, .attributes = {}};
        m_files.readSizes(entry.folder, {&one, 1});
        if (one.error == ENOENT) return;
        ++worker.totals.files;
        if (one.error != 0) skip("attributes", joinPath(pathOf(folder), entry.relative), one.error);
        else addSaturating(worker.totals.bytes, countedSize(one.attributes));
    };
    const std::atomic<bool> never{false};
    const auto listed =
        listTree(m_files, folder.handle.get(), listing, m_watch.stop != nullptr ? *m_watch.stop : never);
    if (!listed) fail(folder, "list", listed.error());
}

void Measuring::add(SizedFolder& parent, Worker& worker, const char* name) {
    auto folder = std::make_unique<SizedFolder>();
    folder->parent = &parent;
    folder->above = &parent;
    folder->text = name;
    folder->name = folder->text.c_str();
    parent.handleUsers.fetch_add(1);
    parent.users.fetch_add(1);
    ++worker.totals.folders;
    worker.found.push_back(folder.release());
}

bool Measuring::isKernels(std::uint64_t device) {
    if (device == m_startDevice) return false;
    std::call_once(m_asked, [this] { m_kernelDevices = m_files.kernelDevices(); });
    return std::binary_search(m_kernelDevices.begin(), m_kernelDevices.end(), device);
}

void Measuring::push(SizedFolder* folder) {
    m_open.fetch_add(1);
    {
        const std::lock_guard lock(m_mutex);
        m_tasks.push_back(folder);
    }
    m_crew.wake();
}

// Leaves the found subfolders to all, but for the first, which is the answer and takes the place of the task in hand.
SizedFolder* Measuring::pushFound(Worker& worker) {
    if (worker.found.empty()) return nullptr;
    SizedFolder* const first = worker.found.front();
    if (worker.found.size() > 1) {
        m_open.fetch_add(worker.found.size() - 1);
        {
            const std::lock_guard lock(m_mutex);
            m_tasks.insert(m_tasks.end(), worker.found.rbegin(), worker.found.rend() - 1);
        }
        m_crew.wake();
    }
    worker.found.clear();
    return first;
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

void Measuring::releaseHandle(SizedFolder& folder) {
    if (folder.handleUsers.fetch_sub(1) != 1 || !folder.handle.isOpen()) return;
    folder.handle.reset();
    m_openFolders.fetch_sub(1);
}

// Up the chain in a loop: its length is the depth of the tree.
void Measuring::release(SizedFolder* folder) {
    while (folder != nullptr && folder->users.fetch_sub(1) == 1) {
        const std::unique_ptr<SizedFolder> done(folder);
        folder = done->above;
    }
}

void Measuring::fail(const FolderNode& folder, std::string_view operation, int number) {
    if (number == ENOENT && folder.parent != nullptr) return;
    skip(operation, pathOf(folder), number);
}

void Measuring::skip(std::string_view operation, std::string path, int number) {
    if (m_watch.skipped != nullptr) m_watch.skipped->add(systemError(operation, std::move(path), number));
}

}  // namespace orrinvale
