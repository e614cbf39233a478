// A task is a folder, to be opened or to be listed further: while one worker looks at the entries
// of a large piece of a folder another lists the next one.
#include "engine/files/FolderWalk.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <utility>

#include "platform/files.h"

namespace orrinvale {
namespace {

// A piece of a folder worth another worker's start: looking at it takes longer than handing over.
constexpr std::size_t listingPiece = 128;
// Subfolders that may wait before the listing of their parent pauses, so that a folder of a million
// folders takes no memory.
constexpr std::size_t mostFound = 1024;

}  // namespace

FolderWalk::FolderWalk(const FileSystem& files, const std::atomic<bool>* stop, SkipList* skipped,
                       std::size_t mostOpen)
    : m_files(files), m_stop(stop), m_skipped(skipped), m_mostOpen(mostOpen) {
    // An eighth, so that six lists of a cleaning page can be measured at once and leave enough for
    // the rest.
    if (m_mostOpen == 0)
        m_mostOpen =
            std::max<std::size_t>(8, std::min<std::size_t>(m_files.descriptorLimit(), 65536) / 8);
    for (unsigned i = 0; i < m_workers.size(); ++i) m_workers[i].number = i;
}

void FolderWalk::walk(std::unique_ptr<WalkedFolder> start, std::string shown, Descriptor handle) {
    start->text = std::move(shown);
    start->name = start->text.c_str();
    walk(*start.release(), std::move(handle));
}

void FolderWalk::walk(WalkedFolder& start, Descriptor handle) {
    start.handle = std::move(handle);
    if (start.device == 0)
        if (const auto attributes = m_files.attributes(start.handle.get()))
            start.device = attributes->device;
    m_startDevice = start.device;
    push(&start);
    m_crew.run([this](unsigned worker) { return step(worker); });
}

WorkCrew::Step FolderWalk::step(unsigned number) {
    WalkedFolder* folder = nullptr;
    {
        const std::lock_guard lock(m_mutex);
        if (m_tasks.empty()) return m_open == 0 ? WorkCrew::Step::Finished : WorkCrew::Step::Idle;
        folder = m_tasks.back();
        m_tasks.pop_back();
    }
    // Goes on with the first subfolder itself: in a chain of folders there is nothing for others,
    // and nobody is woken.
    Worker& worker = m_workers[number];
    while (folder != nullptr) {
        visit(worker, folder);
        visited(worker);
        folder = pushFound(worker);
    }
    return m_open.fetch_sub(1) == 1 ? WorkCrew::Step::Finished : WorkCrew::Step::Worked;
}

void FolderWalk::visit(Worker& worker, WalkedFolder* folder) {
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
bool FolderWalk::enter(Worker& worker, WalkedFolder& folder) {
    if (!isWanted(folder)) {
        releaseHandle(*folder.above);
        return false;
    }
    auto opened = open(folder);
    releaseHandle(*folder.above);
    if (!opened) {
        fail(folder, "open", opened.error());
        return false;
    }
    folder.handle = std::move(*opened);
    const bool deep = m_openFolders.fetch_add(1) >= m_mostOpen;
    if (!mayList(folder)) return false;
    if (deep) takeDeep(worker, folder);
    return !deep;
}

SysResult<Descriptor> FolderWalk::open(const WalkedFolder& folder) {
    return m_files.openFolder(folder.above->handle.get(), folder.name, Links::Keep);
}

// Whoever looked at it in its parent knows its device already. What stands on another one is looked
// at again, since an automatic mount shows only now what it leads to.
bool FolderWalk::mayList(WalkedFolder& folder) {
    if (folder.device == 0 || folder.device != folder.above->device) {
        const auto attributes = m_files.attributes(folder.handle.get());
        if (!attributes) return true;
        folder.device = attributes->device;
        folder.inode = attributes->inode;
    }
    return !isKernels(folder.device);
}

// Hands the rest of a large folder, or of one with many subfolders, to whoever is free, before the
// piece in hand is looked at.
void FolderWalk::list(Worker& worker, WalkedFolder& folder) {
    while (!stopped()) {
        const auto more = m_files.readFolder(folder.handle.get(), worker.batch);
        if (!more) fail(folder, "list", more.error());
        if (!more || !*more) {
            listed(folder);
            return;
        }
        read(worker, folder);
        const std::uint32_t first = folder.listedCount;
        folder.listedCount += static_cast<std::uint32_t>(worker.batch.entries.size());
        const bool handOver =
            worker.batch.entries.size() >= listingPiece || worker.found.size() >= mostFound;
        if (handOver) {
            folder.handleUsers.fetch_add(1);
            folder.users.fetch_add(1);
            push(&folder);
        }
        take(worker, folder, first);
        if (handOver) return;
    }
}

void FolderWalk::addFound(Worker& worker, WalkedFolder& parent, WalkedFolder* found,
                          const char* name) {
    found->parent = &parent;
    found->above = &parent;
    found->name = name != nullptr ? name : found->text.c_str();
    parent.handleUsers.fetch_add(1);
    parent.users.fetch_add(1);
    worker.found.push_back(found);
}

const std::atomic<bool>& FolderWalk::stopFlag() const {
    static const std::atomic<bool> never{false};
    return m_stop != nullptr ? *m_stop : never;
}

bool FolderWalk::isKernels(std::uint64_t device) {
    if (device == m_startDevice) return false;
    std::call_once(m_asked, [this] { m_kernelDevices = m_files.kernelDevices(); });
    return std::binary_search(m_kernelDevices.begin(), m_kernelDevices.end(), device);
}

void FolderWalk::push(WalkedFolder* folder) {
    m_open.fetch_add(1);
    {
        const std::lock_guard lock(m_mutex);
        m_tasks.push_back(folder);
    }
    m_crew.wake();
}

// Leaves the found subfolders to all, but for the first, which is the answer and takes the place of
// the task in hand.
WalkedFolder* FolderWalk::pushFound(Worker& worker) {
    if (worker.found.empty()) return nullptr;
    WalkedFolder* const first = worker.found.front();
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

void FolderWalk::releaseHandle(WalkedFolder& folder) {
    if (folder.handleUsers.fetch_sub(1) != 1 || !folder.handle.isOpen()) return;
    folder.handle.reset();
    m_openFolders.fetch_sub(1);
}

void FolderWalk::closeEarly(WalkedFolder& folder) {
    folder.handle.reset();
    m_openFolders.fetch_sub(1);
}

// Up the chain in a loop: its length is the depth of the tree.
void FolderWalk::release(WalkedFolder* folder) {
    while (folder != nullptr && folder->users.fetch_sub(1) == 1) {
        const std::unique_ptr<WalkedFolder> done(folder);
        folder = done->above;
    }
}

void FolderWalk::fail(WalkedFolder& folder, std::string_view operation, int number) {
    const bool isGone = number == ENOENT || number == ENOTDIR || number == ELOOP;
    if (isGone && folder.parent != nullptr) return;
    skip(operation, pathOf(folder), number);
}

void FolderWalk::skip(std::string_view operation, std::string path, int number) {
    if (m_skipped != nullptr) m_skipped->add(systemError(operation, std::move(path), number));
}

}  // namespace orrinvale
