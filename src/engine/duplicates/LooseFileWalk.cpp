// The listing of a duplicate search. Read run() first; it names the stages.
#include "engine/duplicates/LooseFileWalk.h"

#include <algorithm>
#include <cerrno>
#include <deque>
#include <utility>

#include "engine/base/Log.h"
#include "engine/duplicates/searchedPaths.h"
#include "engine/files/asideName.h"
#include "engine/files/bundleName.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

constexpr const char* logName = "-[getFileList getSubpathsOfDirectoryAtPath:InPath:]";
constexpr const char* topLogName = "-[getFileList getDirectoryAtPath:resultArray:]";

// Half of what the process may have, which the search has to itself.
std::size_t mostOpenFolders(const FileSystem& files) {
    const std::size_t limit = files.descriptorLimit();
    return limit > 192 ? (limit - 128) / 2 : 16;
}

}  // namespace

// A bundle met on the way. Once an entry in it is larger than the limit there is nothing more to
// learn from it.
struct LooseFileWalk::Bundle {
    std::atomic<bool> wanted{false};
};

// A record of a run is a file, or stands for a subfolder: then `folder` points to it and `name` is
// null.
struct LooseFileWalk::Run {
    fileAttrbItem* records = nullptr;
    std::uint32_t count = 0;
    std::uint32_t entries = 0;     // listed, records or not
    std::uint32_t emptyFiles = 0;  // among them
    std::uint64_t emptyNames = 0;
    bool hasMount = false;  // a file is mounted on one of them
    Run* next = nullptr;
};

// Lives as long as the result, whose files name it: one of its users never goes.
struct LooseFileWalk::Folder final : WalkedFolder {
    Folder() { users = 2; }

    Run* firstRun = nullptr;  // in the order of the listing
    Run* lastRun = nullptr;
    Bundle* bundle = nullptr;                   // the outermost bundle that it lies in, or is
    const ExclusionList* exclusions = nullptr;  // that hold for what is in it
    bool isBundleRoot = false;
    bool topLevel = false;  // directly in the root
    bool inodesPass = false;
    bool entered = false;
    bool failed = false;  // could not be listed to its end: its entries do not count

    [[nodiscard]] bool isSettled() const { return bundle != nullptr && bundle->wanted; }
};

struct alignas(64) LooseFileWalk::Share {
    std::shared_ptr<Arena> records = std::make_shared<Arena>();
    std::shared_ptr<Arena> names = std::make_shared<Arena>();
    std::shared_ptr<std::deque<Folder>> folders = std::make_shared<std::deque<Folder>>();
    Run* run = nullptr;  // of the entries in hand
};

LooseFileWalk::LooseFileWalk(const FileSystem& files, const LooseFileQuery& query,
                             const std::atomic<bool>& stop, SkipList& skipped)
    : FolderWalk(files, &stop, &skipped, mostOpenFolders(files)),
      m_query(query),
      m_skipped(skipped),
      m_shares(mostThreads),
      m_root(&m_shares[0].folders->emplace_back()) {
    m_root->name = m_shares[0].names->copy(query.root);
    m_root->throughLink = true;
    if (!outermostBundle(query.root).empty()) m_root->bundle = newBundle();
    m_current = m_root;
}

LooseFileWalk::~LooseFileWalk() = default;

std::string LooseFileWalk::currentPath() const { return pathOf(*m_current.load()); }

Result<LooseFiles> LooseFileWalk::run() {
    if (stopped()) return LooseFiles{};
    auto opened = openFolderByPath(m_files, m_query.root, Links::Follow);
    if (opened) {
        if (const auto seen = m_files.attributes(opened->get())) learn(*m_root, *seen);
        learnExclusions(*m_root, opened->get());
        m_root->entered = true;
        walk(*m_root, std::move(*opened));
    } else {
        fail(*m_root, "open", opened.error());
    }
    if (m_rootError) return tl::unexpected(*m_rootError);
    if (stopped()) return LooseFiles{};
    return collect();
}

bool LooseFileWalk::isWanted(const WalkedFolder& folder) {
    return !static_cast<const Folder&>(folder).isSettled();
}

// Where the folder above was closed early it is found by path, and its identity tells whether it is
// the same folder still.
SysResult<Descriptor> LooseFileWalk::open(const WalkedFolder& folder) {
    m_current.store(&folder, std::memory_order_release);
    const Links links = folder.throughLink ? Links::Follow : Links::Keep;
    if (folder.above->handle.isOpen())
        return m_files.openFolder(folder.above->handle.get(), folder.name, links);
    const auto again = reopenFolder(m_files, *folder.above);
    if (!again) return tl::unexpected(again.error());
    return m_files.openFolder(again->get(), folder.name, links);
}

void LooseFileWalk::learn(Folder& folder, const FileAttributes& seen) {
    folder.device = seen.device;
    folder.inode = seen.inode;
    folder.mount = seen.mount;
    folder.inodesPass = numbersPass(seen.device);
    if (!folder.inodesPass) return;
    folder.inode = 0;
    m_inodesPass = true;
}

// The kernel's own file systems hold no files of people, and some of them never end. They are
// searched only when the search begins there.
bool LooseFileWalk::mayList(WalkedFolder& walked) {
    auto& folder = static_cast<Folder&>(walked);
    const auto seen = m_files.attributes(folder.handle.get());
    if (!seen) return true;
    if (seen->mount != m_root->mount || seen->device != m_root->device) m_mayRepeat = true;
    if (isKernels(seen->device)) return false;
    learn(folder, *seen);
    // A folder counts by its own size too, but only below the first level, where a folder is no
    // entry of the list.
    if (folder.bundle != nullptr && !folder.topLevel && seen->size > m_query.limit)
        folder.bundle->wanted = true;
    if (folder.isSettled()) return false;
    learnExclusions(folder, folder.handle.get());
    folder.entered = true;
    return true;
}

// A bundle is one thing: nothing in it is left out.
void LooseFileWalk::learnExclusions(Folder& folder, int handle) {
    if (m_query.filter == nullptr || !m_query.filter->readsFiles || folder.bundle != nullptr)
        return;
    auto list = readExclusions(m_files, handle, folder, folder.exclusions, m_skipped);
    if (list == nullptr) return;
    folder.exclusions = list.get();
    const std::lock_guard lock(m_mutex);
    m_exclusions.push_back(std::move(list));
}

bool LooseFileWalk::isLeftOut(const Folder& folder, const CatalogEntry& entry) const {
    const SearchFilter* const filter = m_query.filter;
    return filter != nullptr && filter->leavesOutPaths() && folder.bundle == nullptr &&
           filter->leavesOut(folder, entry.name, entry.type == FileType::Folder,
                             m_query.root.size(), folder.exclusions);
}

void LooseFileWalk::read(Worker& worker, WalkedFolder& walked) {
    auto& folder = static_cast<Folder&>(walked);
    Share& share = m_shares[worker.number];
    share.run = new (share.names->allocate<Run>()) Run;
    if (folder.lastRun == nullptr) folder.firstRun = share.run;
    else folder.lastRun->next = share.run;
    folder.lastRun = share.run;
    share.run->entries = static_cast<std::uint32_t>(worker.batch.entries.size());
}

void LooseFileWalk::take(Worker& worker, WalkedFolder& walked, std::uint32_t /*first*/) {
    auto& folder = static_cast<Folder&>(walked);
    Share& share = m_shares[worker.number];
    Run& run = *share.run;
    const std::size_t most = worker.batch.entries.size();
    run.records = share.records->allocate<fileAttrbItem>(most);
    std::uint32_t count = 0;
    std::uint64_t files = 0;
    for (CatalogEntry& entry : worker.batch.entries) {
        if (stopped()) break;  // one look may take a second on a slow file system
        if ((!m_query.hidden && entry.name[0] == '.') || isAsideName(entry.name)) continue;
        auto* const record = new (&run.records[count]) fileAttrbItem;
        if (!takeEntry(worker, folder, entry, *record)) continue;
        ++count;
        if (record->name != nullptr) ++files;
    }
    run.count = count;
    share.records->giveBack((most - count) * sizeof(fileAttrbItem));
    m_listed.fetch_add(files, std::memory_order_relaxed);
}

// So many folders wait for their subfolders that descriptors run short.
void LooseFileWalk::takeDeep(Worker& worker, WalkedFolder& walked) {
    while (!stopped()) {
        const auto more = m_files.readFolder(walked.handle.get(), worker.batch);
        if (!more) fail(walked, "list", more.error());
        if (!more || !*more) break;
        read(worker, walked);
        take(worker, walked, 0);
    }
    closeEarly(walked);
}

bool LooseFileWalk::takeEntry(Worker& worker, Folder& folder, CatalogEntry& entry,
                              fileAttrbItem& record) {
    bool throughLink = false;
    if (entry.type == FileType::Unknown) {
        m_files.readAttributes(folder.handle.get(), {&entry, 1});
        if (entry.error == 0) entry.type = entry.attributes.type;
    }
    if (entry.type == FileType::SymbolicLink) {
        // Links are followed only where they stand directly in the folder that was chosen.
        if (&folder != m_root || !takeTopLevelEntry(folder, entry, throughLink)) return false;
    }
    if (isLeftOut(folder, entry)) return false;
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
bool LooseFileWalk::takeTopLevelEntry(const Folder& folder, CatalogEntry& entry,
                                      bool& throughLink) {
    const auto target = m_files.attributes(folder.handle.get(), entry.name, Links::Follow);
    if (!target) {
        Log::engine(topLogName, "directory not exsts:{}", pathOf(folder, entry.name));
        if (target.error() != ENOENT && target.error() != ENOTDIR && target.error() != ELOOP)
            skip("attributes", pathOf(folder, entry.name), target.error());
        return false;
    }
    m_mayRepeat = true;
    throughLink = target->type == FileType::Folder;
    if (throughLink) entry.type = FileType::Folder;
    return true;
}

bool LooseFileWalk::takeFile(Worker& worker, Folder& folder, CatalogEntry& entry,
                             fileAttrbItem& record) {
    const FileType listedType = entry.type;
    if (entry.attributes.type == FileType::Unknown)
        m_files.readAttributes(folder.handle.get(), {&entry, 1});
    if (entry.error != 0) {
        skip("attributes", pathOf(folder, entry.name), entry.error);
        return false;
    }
    const FileAttributes& attributes = entry.attributes;
    if (attributes.type == FileType::Folder ||
        (attributes.type == FileType::SymbolicLink && listedType != attributes.type))
        return false;  // exchanged since it was listed
    if (attributes.mount != folder.mount)
        m_shares[worker.number].run->hasMount = m_mayRepeat = true;
    if (attributes.size == 0 && m_query.notesFolders && attributes.type == FileType::Regular) {
        Run& run = *m_shares[worker.number].run;
        ++run.emptyFiles;
        run.emptyNames += entryDigest(entry.name, FileType::Regular);
    }
    if (attributes.size <= m_query.limit) return false;
    const bool isLoose = folder.bundle == nullptr && !isBundleName(entry.name);
    if (isLoose && m_query.filter != nullptr &&
        !(m_query.filter->takesSize(attributes.size) && m_query.filter->takesKindOf(entry.name)))
        return false;
    if (folder.bundle != nullptr) {
        folder.bundle->wanted = true;
        return false;
    }
    record.setAttributes(attributes);
    record.folder = &folder;
    record.name = m_shares[worker.number].names->copy(entry.name);
    record.inodePasses =
        attributes.device == folder.device ? folder.inodesPass : numbersPass(attributes.device);
    return true;
}

void LooseFileWalk::addFolder(Worker& worker, Folder& above, const CatalogEntry& entry,
                              bool throughLink, fileAttrbItem& record) {
    Share& share = m_shares[worker.number];
    Folder* const folder = &share.folders->emplace_back();
    folder->parent = &above;
    folder->name = share.names->copy(entry.name);
    folder->throughLink = throughLink;
    folder->topLevel = &above == m_root;
    folder->bundle = above.bundle;
    folder->exclusions = above.exclusions;
    record.folder = folder;
    if (folder->topLevel && m_query.root == "/" && !m_query.systemFolders &&
        isSystemFolder(pathOf(*folder)))
        return;
    if (folder->bundle == nullptr && isBundleName(entry.name)) {
        folder->bundle = newBundle();
        folder->isBundleRoot = true;
    }
    addFound(worker, above, folder, folder->name);
}

// What has gone meanwhile is told as well: a search says of each folder why nothing came of it.
void LooseFileWalk::fail(WalkedFolder& walked, std::string_view operation, int number) {
    static_cast<Folder&>(walked).failed = true;
    const Error error = systemError(operation, pathOf(walked), number);
    Log::engine(walked.parent == nullptr ? topLogName : logName,
                "get contents Of Directory At Path failed{}", error.path + ": " + error.reason());
    if (walked.parent == nullptr) m_rootError = error;
    else skip(operation, error.path, number);
}

bool LooseFileWalk::numbersPass(std::uint64_t device) const {
    return std::ranges::binary_search(m_query.passingInodes, device);
}

LooseFileWalk::Bundle* LooseFileWalk::newBundle() {
    const std::lock_guard lock(m_mutex);
    return m_bundles.emplace_back(std::make_unique<Bundle>()).get();
}

// Bundles are compared by themselves; in a folder they are entries that were left out.
void LooseFileWalk::note(std::vector<SeenFolder>& folders, const Folder& folder) const {
    if (!m_query.notesFolders || folder.bundle != nullptr) return;
    SeenFolder seen;
    seen.node = &folder;
    seen.isWhole = folder.entered && !folder.failed;
    for (const Run* run = folder.firstRun; run != nullptr; run = run->next) {
        seen.entries += run->entries;
        seen.emptyFiles += run->emptyFiles;
        seen.emptyNames += run->emptyNames;
        seen.isWhole &= !run->hasMount;
    }
    folders.push_back(seen);
}

// Reads the runs off depth first, with a list of places in hand instead of the call stack.
LooseFiles LooseFileWalk::collect() const {
    struct Place {
        const Run* run;
        std::uint32_t index;
    };
    LooseFiles out;
    out.mayRepeat = m_mayRepeat;
    out.inodesPass = m_inodesPass;
    out.files.reserve(m_listed);
    if (m_root->bundle != nullptr && m_root->bundle->wanted)
        out.bundles.push_back(outermostBundle(m_query.root));

    note(out.folders, *m_root);
    std::vector<Place> places{{m_root->firstRun, 0}};
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
        const auto& folder = static_cast<const Folder&>(*record.folder);
        if (folder.isBundleRoot && folder.bundle->wanted) out.bundles.push_back(pathOf(folder));
        note(out.folders, folder);
        if (!folder.failed) places.push_back({folder.firstRun, 0});
    }
    for (const Share& share : m_shares) {
        out.storage.push_back(share.records);
        out.storage.push_back(share.names);
        out.storage.push_back(share.folders);
    }
    return out;
}

}  // namespace orrinvale
