// LooseFileWalk: see LooseFileWalk.h. Read run() first; it names the stages.
#include "engine/duplicates/LooseFileWalk.h"

#include <algorithm>
#include <cerrno>
#include <mutex>
#include <new>
#include <optional>

#include "engine/base/Log.h"
#include "engine/duplicates/searchedPaths.h"
#include "engine/files/WorkCrew.h"
#include "engine/files/asideName.h"
#include "engine/files/bundleName.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

constexpr const char* logName = "-[getFileList getSubpathsOfDirectoryAtPath:InPath:]";
constexpr const char* topLogName = "-[getFileList getDirectoryAtPath:resultArray:]";

struct Run;

// A bundle met on the way. Once an entry in it is larger than the limit there is nothing more to
// learn from it.
struct Bundle {
    std::atomic<bool> wanted{false};
};

struct WalkFolder : FolderNode {
    Run* firstRun = nullptr;  // in the order of the listing
    Run* lastRun = nullptr;
    Bundle* bundle = nullptr;  // the outermost bundle that it lies in, or is
    int descriptor = -1;       // open while `users` is not zero, unless descriptors ran short
    std::atomic<std::uint32_t> users{1};  // tasks that still need the descriptor
    bool isBundleRoot = false;
    bool topLevel = false;  // directly in the root
    bool inodesPass = false;
    bool failed = false;  // could not be listed to its end: its entries do not count
    WalkFolder* parentFolder = nullptr;
};

// A record of a run is a file, or stands for a subfolder: then `folder` points to it and `name` is
// null.
struct Run {
    fileAttrbItem* records = nullptr;
    std::uint32_t count = 0;
    Run* next = nullptr;
};

struct Task {
    WalkFolder* folder = nullptr;
    std::unique_ptr<CatalogBatch>
        batch;  // set: these entries of the folder; else the folder itself
    Run* run = nullptr;
};

struct alignas(64) Worker {
    std::shared_ptr<Arena> records = std::make_shared<Arena>();
    std::shared_ptr<Arena> names = std::make_shared<Arena>();
    std::vector<std::unique_ptr<CatalogBatch>> spare;
    std::vector<Task> found;  // subfolders of the batch in hand
    std::uint64_t files = 0;
};

}  // namespace

struct LooseFileWalk::State {
    State(const FileSystem& fileSystem, const LooseFileQuery& what,
          const std::atomic<bool>& stopFlag, SkipList& skipList)
        : files(fileSystem), query(what), stop(stopFlag), skipped(skipList) {}

    const FileSystem& files;
    const LooseFileQuery& query;
    const std::atomic<bool>& stop;
    SkipList& skipped;

    WorkCrew crew;
    std::vector<Worker> workers = std::vector<Worker>(crew.most());
    std::vector<std::unique_ptr<Bundle>> bundles;  // guarded by mutex
    std::atomic<WalkFolder*> current{nullptr};
    std::atomic<bool> mayRepeat{false};
    std::atomic<bool> inodesPass{false};
    std::atomic<std::uint64_t> listed{0};
    std::atomic<std::size_t> openFolders{0};
    std::size_t mostOpenFolders = 0;
    std::atomic<unsigned> waitingBatches{0};
    std::vector<std::uint64_t> kernelDevices;
    WalkFolder* root = nullptr;
    std::optional<Error> rootError;

    std::mutex mutex;
    std::vector<Task>
        tasks;  // guarded by mutex; the last in goes first, which keeps the walk depth first
    std::atomic<std::size_t> open{0};  // tasks that wait or run

    WorkCrew::Step step(unsigned number);
    void visitFolder(Worker& worker, WalkFolder& folder);
    SysResult<Descriptor> openFolder(const WalkFolder& folder);
    bool identify(WalkFolder& folder);
    void listFolder(Worker& worker, WalkFolder& folder);
    void handOver(Worker& worker, WalkFolder& folder, std::unique_ptr<CatalogBatch> batch,
                  Run& run);
    void closeEarly(WalkFolder& folder);
    void readBatch(Worker& worker, WalkFolder& folder, CatalogBatch& batch, Run& run);
    bool takeEntry(Worker& worker, WalkFolder& folder, CatalogEntry& entry, fileAttrbItem& record);
    bool takeTopLevelEntry(WalkFolder& folder, CatalogEntry& entry, bool& throughLink);
    bool takeFile(Worker& worker, WalkFolder& folder, CatalogEntry& entry, fileAttrbItem& record);
    void addFolder(Worker& worker, WalkFolder& parent, const CatalogEntry& entry, bool throughLink,
                   fileAttrbItem& record);
    void release(WalkFolder& folder);
    void fail(const WalkFolder& folder, const char* operation, int number);
    void pushFound(Worker& worker);
    Run* appendRun(Worker& worker, WalkFolder& folder) const;
    std::unique_ptr<CatalogBatch> newBatch(Worker& worker) const;
    Bundle* newBundle();
    bool numbersPass(std::uint64_t device) const {
        return std::ranges::binary_search(query.passingInodes, device);
    }
    bool isSettled(const WalkFolder& folder) const {
        return folder.bundle != nullptr && folder.bundle->wanted;
    }
    LooseFiles collect();
};

LooseFileWalk::LooseFileWalk(const FileSystem& files, const LooseFileQuery& query,
                             const std::atomic<bool>& stop, SkipList& skipped)
    : m_state(std::make_unique<State>(files, query, stop, skipped)) {
    State& state = *m_state;
    auto& arena = *state.workers[0].names;
    state.root = new (arena.allocate<WalkFolder>()) WalkFolder;
    state.root->name = arena.copy(query.root);
    state.root->throughLink = true;
    if (!outermostBundle(query.root).empty()) state.root->bundle = state.newBundle();
    state.current = state.root;
}

LooseFileWalk::~LooseFileWalk() = default;

std::string LooseFileWalk::currentPath() const { return pathOf(*m_state->current.load()); }

std::uint64_t LooseFileWalk::listedFiles() const {
    return m_state->listed.load(std::memory_order_relaxed);
}

Result<LooseFiles> LooseFileWalk::run() {
    State& state = *m_state;
    const std::size_t limit = state.files.descriptorLimit();
    state.mostOpenFolders = limit > 192 ? (limit - 128) / 2 : 16;
    state.kernelDevices = state.files.kernelDevices();
    state.tasks.push_back(Task{state.root, nullptr, nullptr});
    state.open = 1;
    state.crew.run([&state](unsigned worker) { return state.step(worker); });
    if (state.rootError) return tl::unexpected(*state.rootError);
    if (state.stop) return LooseFiles{};
    return state.collect();
}

WorkCrew::Step LooseFileWalk::State::step(unsigned number) {
    Task task;
    {
        const std::lock_guard lock(mutex);
        if (tasks.empty()) return open == 0 ? WorkCrew::Step::Finished : WorkCrew::Step::Idle;
        task = std::move(tasks.back());
        tasks.pop_back();
    }
    Worker& worker = workers[number];
    if (task.batch) {
        if (!stop) readBatch(worker, *task.folder, *task.batch, *task.run);
        worker.spare.push_back(std::move(task.batch));
        waitingBatches.fetch_sub(1);
        release(*task.folder);
    } else {
        visitFolder(worker, *task.folder);
    }
    pushFound(worker);
    if (open.fetch_sub(1) == 1) return WorkCrew::Step::Finished;
    return WorkCrew::Step::Worked;
}

void LooseFileWalk::State::visitFolder(Worker& worker, WalkFolder& folder) {
    WalkFolder* const parent = folder.parentFolder;
    if (!stop && !isSettled(folder)) {
        current.store(&folder, std::memory_order_release);
        auto opened = openFolder(folder);
        if (opened) {
            folder.descriptor = opened->release();
            openFolders.fetch_add(1);
            if (identify(folder)) listFolder(worker, folder);
        } else {
            fail(folder, "open", opened.error());
            folder.failed = true;
        }
    }
    release(folder);
    if (parent != nullptr) release(*parent);
}

SysResult<Descriptor> LooseFileWalk::State::openFolder(const WalkFolder& folder) {
    const WalkFolder* const parent = folder.parentFolder;
    if (parent == nullptr) return openFolderByPath(files, query.root, Links::Follow);
    const Links links = folder.throughLink ? Links::Follow : Links::Keep;
    if (parent->descriptor >= 0) return files.openFolder(parent->descriptor, folder.name, links);
    const auto again = reopenFolder(files, *parent);
    if (!again) return tl::unexpected(again.error());
    return files.openFolder(again->get(), folder.name, links);
}

// False when the folder is not to be entered: the kernel's own file systems hold no files of
// people, and some of them never end. They are searched only when the search begins there.
bool LooseFileWalk::State::identify(WalkFolder& folder) {
    const auto attributes = files.attributes(folder.descriptor);
    if (!attributes) return true;
    folder.device = attributes->device;
    folder.inode = attributes->inode;
    folder.mount = attributes->mount;
    if (&folder != root) {
        if (folder.mount != root->mount || folder.device != root->device) mayRepeat = true;
        if (folder.device != root->device &&
            std::binary_search(kernelDevices.begin(), kernelDevices.end(), folder.device))
            return false;
    }
    folder.inodesPass = numbersPass(folder.device);
    if (folder.inodesPass) {
        folder.inode = 0;
        inodesPass = true;
    }
    // A folder counts by its own size too, but only below the first level, where a folder is no
    // entry of the list.
    if (folder.bundle != nullptr && !folder.topLevel && &folder != root &&
        attributes->size > query.limit)
        folder.bundle->wanted = true;
    return !isSettled(folder);
}

void LooseFileWalk::State::listFolder(Worker& worker, WalkFolder& folder) {
    const bool shortOfDescriptors = openFolders >= mostOpenFolders;
    auto batch = newBatch(worker);
    Run* run = nullptr;
    for (bool last = false; !last && !stop;) {
        auto next = newBatch(worker);
        const auto more = files.readFolder(folder.descriptor, *next);
        if (!more) {
            fail(folder, "list", more.error());
            folder.failed = true;
        }
        last = !more || !*more;
        if (run != nullptr) {
            if (last || shortOfDescriptors || waitingBatches >= 2 * WorkCrew::cores()) {
                readBatch(worker, folder, *batch, *run);
            } else {
                handOver(worker, folder, std::move(batch), *run);
            }
        }
        if (batch) worker.spare.push_back(std::move(batch));
        batch = std::move(next);
        run = appendRun(worker, folder);
    }
    worker.spare.push_back(std::move(batch));
    if (shortOfDescriptors) closeEarly(folder);
}

// A large folder: others size these entries while the listing goes on.
void LooseFileWalk::State::handOver(Worker& worker, WalkFolder& folder,
                                    std::unique_ptr<CatalogBatch> batch, Run& run) {
    waitingBatches.fetch_add(1);
    folder.users.fetch_add(1);
    worker.found.push_back(Task{&folder, std::move(batch), &run});
    pushFound(worker);
}

// So many folders wait for their subfolders that descriptors run short. The subfolders of this one
// find their way by path then, and its identity tells whether it is the same folder still. Nobody
// else knows the folder yet, so none uses it.
void LooseFileWalk::State::closeEarly(WalkFolder& folder) {
    Descriptor(folder.descriptor).reset();
    folder.descriptor = -1;
    openFolders.fetch_sub(1);
}

void LooseFileWalk::State::readBatch(Worker& worker, WalkFolder& folder, CatalogBatch& batch,
                                     Run& run) {
    const std::size_t most = batch.entries.size();
    run.records = worker.records->allocate<fileAttrbItem>(most);
    std::uint32_t count = 0;
    for (CatalogEntry& entry : batch.entries) {
        if (stop.load(std::memory_order_relaxed))
            break;  // one look may take a second on a slow file system
        if ((!query.hidden && entry.name[0] == '.') || isAsideName(entry.name)) continue;
        auto* const record = new (&run.records[count]) fileAttrbItem;
        if (takeEntry(worker, folder, entry, *record)) ++count;
    }
    run.count = count;
    worker.records->giveBack((most - count) * sizeof(fileAttrbItem));
    listed.fetch_add(worker.files, std::memory_order_relaxed);
    worker.files = 0;
}

bool LooseFileWalk::State::takeEntry(Worker& worker, WalkFolder& folder, CatalogEntry& entry,
                                     fileAttrbItem& record) {
    bool throughLink = false;
    if (entry.type == FileType::Unknown) {
        files.readAttributes(folder.descriptor, {&entry, 1});
        if (entry.error == 0) entry.type = entry.attributes.type;
    }
    if (entry.type == FileType::SymbolicLink) {
        // Links are followed only where they stand directly in the folder that was chosen.
        if (&folder != root || !takeTopLevelEntry(folder, entry, throughLink)) return false;
    }
    switch (entry.type) {
        case FileType::Folder: addFolder(worker, folder, entry, throughLink, record); return true;
        case FileType::Fifo:
        case FileType::Socket:
        case FileType::CharacterDevice:
        case FileType::BlockDevice: return false;  // of size zero, so never larger than the limit
        default: return takeFile(worker, folder, entry, record);
    }
}

// A link directly in the root. False when it leads nowhere; otherwise the entry becomes what it
// leads to, a folder, or stays the link to a file, which is listed with the size of the link.
bool LooseFileWalk::State::takeTopLevelEntry(WalkFolder& folder, CatalogEntry& entry,
                                             bool& throughLink) {
    const auto target = files.attributes(folder.descriptor, entry.name, Links::Follow);
    if (!target) {
        Log::engine(topLogName, "directory not exsts:{}", pathOf(folder, entry.name));
        if (target.error() != ENOENT && target.error() != ENOTDIR && target.error() != ELOOP)
            skipped.add(systemError("attributes", pathOf(folder, entry.name), target.error()));
        return false;
    }
    mayRepeat = true;
    throughLink = target->type == FileType::Folder;
    if (throughLink) entry.type = FileType::Folder;
    return true;
}

bool LooseFileWalk::State::takeFile(Worker& worker, WalkFolder& folder, CatalogEntry& entry,
                                    fileAttrbItem& record) {
    const FileType listedType = entry.type;
    if (entry.attributes.type == FileType::Unknown)
        files.readAttributes(folder.descriptor, {&entry, 1});
    if (entry.error != 0) {
        skipped.add(systemError("attributes", pathOf(folder, entry.name), entry.error));
        return false;
    }
    const FileAttributes& attributes = entry.attributes;
    if (attributes.type == FileType::Folder ||
        (attributes.type == FileType::SymbolicLink && listedType != attributes.type))
        return false;  // exchanged since it was listed
    if (attributes.size <= query.limit) return false;
    if (folder.bundle != nullptr) {
        folder.bundle->wanted = true;
        return false;
    }
    record.setAttributes(attributes);
    record.folder = &folder;
    record.name = worker.names->copy(entry.name);
    record.inodePasses =
        attributes.device == folder.device ? folder.inodesPass : numbersPass(attributes.device);
    if (attributes.mount != folder.mount) mayRepeat = true;
    ++worker.files;
    return true;
}

void LooseFileWalk::State::addFolder(Worker& worker, WalkFolder& parent, const CatalogEntry& entry,
                                     bool throughLink, fileAttrbItem& record) {
    auto* const folder = new (worker.names->allocate<WalkFolder>()) WalkFolder;
    folder->parent = &parent;
    folder->parentFolder = &parent;
    folder->name = worker.names->copy(entry.name);
    folder->throughLink = throughLink;
    folder->topLevel = &parent == root;
    folder->bundle = parent.bundle;
    record.folder = folder;
    if (folder->topLevel && query.root == "/" && !query.systemFolders &&
        isSystemFolder(pathOf(*folder)))
        return;
    if (folder->bundle == nullptr && isBundleName(entry.name)) {
        folder->bundle = newBundle();
        folder->isBundleRoot = true;
    }
    parent.users.fetch_add(1);
    worker.found.push_back(Task{folder, nullptr, nullptr});
}

void LooseFileWalk::State::pushFound(Worker& worker) {
    if (worker.found.empty()) return;
    const std::size_t count = worker.found.size();
    open.fetch_add(count);
    {
        const std::lock_guard lock(mutex);
        for (auto task = worker.found.rbegin(); task != worker.found.rend(); ++task)
            tasks.push_back(std::move(*task));
    }
    worker.found.clear();
    crew.wake();
}

// The descriptor goes with its last user.
void LooseFileWalk::State::release(WalkFolder& folder) {
    if (folder.users.fetch_sub(1) != 1) return;
    if (folder.descriptor < 0) return;
    Descriptor(folder.descriptor).reset();
    folder.descriptor = -1;
    openFolders.fetch_sub(1);
}

void LooseFileWalk::State::fail(const WalkFolder& folder, const char* operation, int number) {
    Error error = systemError(operation, pathOf(folder), number);
    Log::engine(folder.parent == nullptr ? topLogName : logName,
                "get contents Of Directory At Path failed{}", error.path + ": " + error.reason());
    if (folder.parent == nullptr) rootError = error;
    else skipped.add(std::move(error));
}

Run* LooseFileWalk::State::appendRun(Worker& worker, WalkFolder& folder) const {
    auto* const run = new (worker.names->allocate<Run>()) Run;
    if (folder.lastRun == nullptr) folder.firstRun = run;
    else folder.lastRun->next = run;
    folder.lastRun = run;
    return run;
}

std::unique_ptr<CatalogBatch> LooseFileWalk::State::newBatch(Worker& worker) const {
    if (worker.spare.empty()) return std::make_unique<CatalogBatch>();
    auto batch = std::move(worker.spare.back());
    worker.spare.pop_back();
    return batch;
}

Bundle* LooseFileWalk::State::newBundle() {
    const std::lock_guard lock(mutex);
    return bundles.emplace_back(std::make_unique<Bundle>()).get();
}

// Reads the runs off depth first, with a list of places in hand instead of the call stack.
LooseFiles LooseFileWalk::State::collect() {
    struct Place {
        const Run* run;
        std::uint32_t index;
    };
    LooseFiles out;
    out.mayRepeat = mayRepeat;
    out.inodesPass = inodesPass;
    out.files.reserve(listed);
    if (root->bundle != nullptr && root->bundle->wanted)
        out.bundles.push_back(outermostBundle(query.root));

    std::vector<Place> places{{root->firstRun, 0}};
    while (!places.empty()) {
        Place& place = places.back();
        if (place.run == nullptr) {
            places.pop_back();
            continue;
        }
        if (place.index == place.run->count) {
            place = {place.run->next, 0};
            continue;
        }
        fileAttrbItem& record = place.run->records[place.index++];
        if (record.name != nullptr) {
            if (isBundleName(record.name)) out.bundles.push_back(record.filePathName());
            else out.files.push_back(&record);
            continue;
        }
        const auto& folder = static_cast<const WalkFolder&>(*record.folder);
        if (folder.isBundleRoot && folder.bundle->wanted) out.bundles.push_back(pathOf(folder));
        if (!folder.failed) places.push_back({folder.firstRun, 0});
    }
    for (const Worker& worker : workers) {
        out.storage.push_back(worker.records);
        out.storage.push_back(worker.names);
    }
    return out;
}

}  // namespace orrinvale
