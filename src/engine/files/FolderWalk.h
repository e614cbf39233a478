// FolderWalk: the walk through one folder by as many threads as pay. Measuring adds up what it
// meets, the large file page makes a tree of it, a duplicate search a list. Read FolderWalk::step()
// first.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "engine/files/FolderNode.h"
#include "engine/files/SkipList.h"
#include "engine/files/WorkCrew.h"

namespace orrinvale {

/// Lives until nobody needs its name for a path; open until the last subfolder was opened from it.
struct WalkedFolder : FolderNode {
    WalkedFolder() = default;
    virtual ~WalkedFolder() = default;
    WalkedFolder(const WalkedFolder&) = delete;
    WalkedFolder& operator=(const WalkedFolder&) = delete;

    std::string text;  // `name` points here, unless it lies where it lasts anyway
    WalkedFolder* above = nullptr;
    Descriptor handle;
    std::uint32_t listedCount = 0;  // entries that its listing has given so far
    std::atomic<std::uint32_t> handleUsers{
        1};  // its own listing, batches in hand, subfolders not opened yet
    std::atomic<std::uint32_t> users{
        1};  // the same, subfolders that exist, and whoever else took hold of it
};

/// Links are not followed. Mounted file systems below the start are walked, but the kernel's own
/// (proc, sysfs, ...) only when the start lies in them. A descriptor is held for folders on the way
/// to those being listed, up to an eighth of what the process may have; what is deeper goes to
/// takeDeep(). A folder of any width is listed in pieces.
class FolderWalk {
public:
    static constexpr unsigned mostThreads = 64;

    FolderWalk(const FolderWalk&) = delete;
    FolderWalk& operator=(const FolderWalk&) = delete;

protected:
    struct alignas(64) Worker {
        unsigned number = 0;
        CatalogBatch batch;
        std::vector<WalkedFolder*> found;
    };

    /// The file system, the flag and the list outlive the walk; the flag and the list may be null.
    /// `mostOpen` folders are open at once, if it is not 0.
    FolderWalk(const FileSystem& files, const std::atomic<bool>* stop, SkipList* skipped,
               std::size_t mostOpen = 0);
    virtual ~FolderWalk() = default;

    /// Walks from an open folder; `shown` is the path that errors give for it. Once only.
    void walk(std::unique_ptr<WalkedFolder> start, std::string shown, Descriptor handle);
    /// The same for a start that has its name, and its device if that is known. Whoever owns it
    /// counts as one of its users.
    void walk(WalkedFolder& start, Descriptor handle);

    /// False for a folder of which nothing is to be learnt: it is not even opened.
    virtual bool isWanted(const WalkedFolder& folder) { return static_cast<void>(folder), true; }
    virtual SysResult<Descriptor> open(const WalkedFolder& folder);
    /// Of an open folder: who it is, and whether it is to be listed.
    virtual bool mayList(WalkedFolder& folder);
    /// The next entries of the folder are in worker.batch. Calls for one folder come in the order
    /// of its listing, one after another, while take() may come at any time later: a result that
    /// has to stand in the order of the listing gets its place here.
    virtual void read(Worker& worker, WalkedFolder& folder) {
        static_cast<void>(worker), static_cast<void>(folder);
    }

    /// The entries in worker.batch are of the folder, the first of them at this place of its
    /// listing. Subfolders go to addFound(), which makes them known to other workers when this
    /// returns.
    virtual void take(Worker& worker, WalkedFolder& folder, std::uint32_t first) = 0;
    /// So many folders are open that no more should be: takes all below the open folder, with this
    /// thread alone.
    virtual void takeDeep(Worker& worker, WalkedFolder& folder) = 0;
    /// One folder is done with, but for its subfolders.
    virtual void visited(Worker& worker) { static_cast<void>(worker); }
    /// All batches of the folder have been given out; some may be in the hands of other workers
    /// still.
    virtual void listed(WalkedFolder& folder) { static_cast<void>(folder); }

    /// `name` must last as long as the folder does, unless it is empty and `found->text` holds it.
    static void addFound(Worker& worker, WalkedFolder& parent, WalkedFolder* found,
                         const char* name);
    /// Lets go of a folder; it and those above go with their last user. Any thread.
    static void release(WalkedFolder* folder);

    [[nodiscard]] bool stopped() const { return m_stop != nullptr && *m_stop; }
    [[nodiscard]] const std::atomic<bool>& stopFlag() const;
    bool isKernels(std::uint64_t device);
    void skip(std::string_view operation, std::string path, int number);
    /// The folder could not be opened, or not listed to its end. What is no folder any more is none
    /// of the walk's business.
    virtual void fail(WalkedFolder& folder, std::string_view operation, int number);
    /// Before anybody else knows a subfolder of it: these have to be opened by path then.
    void closeEarly(WalkedFolder& folder);

    const FileSystem& m_files;
    WorkCrew m_crew{mostThreads};

private:
    WorkCrew::Step step(unsigned number);
    void visit(Worker& worker, WalkedFolder* folder);
    bool enter(Worker& worker, WalkedFolder& folder);
    void list(Worker& worker, WalkedFolder& folder);
    void push(WalkedFolder* folder);
    WalkedFolder* pushFound(Worker& worker);
    void releaseHandle(WalkedFolder& folder);

    const std::atomic<bool>* const m_stop;
    SkipList* const m_skipped;
    std::vector<Worker> m_workers = std::vector<Worker>(m_crew.most());
    std::once_flag m_asked;
    std::vector<std::uint64_t> m_kernelDevices;  // since m_asked
    std::uint64_t m_startDevice = 0;
    std::size_t m_mostOpen = 0;
    std::atomic<std::size_t> m_openFolders{1};
    std::atomic<std::size_t> m_open{0};  // tasks that wait or run
    std::mutex m_mutex;
    std::vector<WalkedFolder*>
        m_tasks;  // guarded by m_mutex; the last in goes first, which keeps the walk depth first
};

}  // namespace orrinvale
