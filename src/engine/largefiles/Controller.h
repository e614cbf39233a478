// Controller: what the large file page asks for. It starts and stops the scan, keeps the ticks
// consistent up and down the tree, and removes what is ticked.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "engine/largefiles/ControllerParts.h"
#include "engine/largefiles/EumeRoot.h"
#include "engine/largefiles/FileNode.h"
#include "engine/largefiles/LargeFileRemoval.h"
#include "engine/largefiles/NodeSelection.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// The page, as the controller sees it. All calls come on the main thread.
class ControllerDelegate {
public:
    virtual ~ControllerDelegate() = default;
    /// 0 nothing of the top level is ticked, 1 all of it, 2 something.
    virtual void changeSelectAllButtonState(std::int32_t state) { static_cast<void>(state); }
    virtual void reloadTreeList() {}
    /// Percent of a removal, and what it is at. 100 is the last.
    virtual void changeProgressWithPoint(std::int32_t percent, const std::string& path) {
        static_cast<void>(percent), static_cast<void>(path);
    }
    /// Behind the last progress.
    virtual void removalEnded(const LargeFileRemoval& removal) { static_cast<void>(removal); }

protected:
    ControllerDelegate() = default;
    ControllerDelegate(const ControllerDelegate&) = default;
    ControllerDelegate& operator=(const ControllerDelegate&) = default;
};

class LargestFiles;
class TrashErrands;

/// Main thread only; the removal runs on a thread of its own and changes the tree on the main
/// thread, in batches.
class Controller final {
public:
    /// Made at the first call, never freed.
    [[nodiscard]] static Controller& getController();
    /// Ends the scans and the removal that are under way, and waits for the removal's entry in hand
    /// and for the scan of what a stop left: call it with nothing before the parts go. Threads that
    /// scan may still be at a file system that does not answer, which therefore outlives them:
    /// eumeRoot()->waitForEnd() waits for those.
    void setParts(ControllerParts parts);
    void setADelegate(ControllerDelegate* delegate) { _aDelegate = delegate; }  ///< not owned
    [[nodiscard]] ControllerDelegate* aDelegate() const { return _aDelegate; }

    void eumeAllRootFileNodeWithRootArr(std::shared_ptr<FileNodeTree> rootArr,
                                        const std::string& rootPath);
    void stopScan();
    /// Stops the scan and lets go of its tree, which nobody looks at any more.
    void closeTree();
    [[nodiscard]] float getProgress() const;
    /// The current scan, or null before the first.
    [[nodiscard]] EumeRoot* eumeRoot() const { return m_eumeRoot.get(); }

    void changeSelectWithNode(FileNode& node, std::uint8_t state);
    void changeChildrenFilNodeState(FileNode& node, std::uint8_t state);
    void changeFatherNodeSelectState(FileNode& node, std::uint8_t state);
    /// Ticks or clears one file of the list of largest files, wherever in the tree it lies. What is
    /// ticked as a whole above it is so no more: a folder becomes mixed at most.
    void changeSelectOfFile(FileNode& node, std::uint8_t state);
    /// The same of all files of the list.
    void changeSelectOfFiles(const LargestFiles& list, std::uint8_t state);
    /// What deleteFilesWithDic() would take.
    [[nodiscard]] TickedTotals ticked() const;
    /// Of that, see orrinvale::mayHoldLinked().
    [[nodiscard]] bool mayHoldLinked(std::size_t looks) const;
    void changeSelectAllButtonState();
    void selectAllFileNode(std::uint8_t state);
    void reloadTree();

    void openFileWithFileNode(const FileNode& node);
    void pereviewFileWithFileNode(const FileNode& node);

    /// Moves one entry to the trash of its volume; with `expected` only what the scan saw. Why it
    /// stays, for people; empty when it went. Either goes to the log as well.
    std::string moveFileToTrash(const std::string& path,
                                const std::optional<EntryIdentity>& expected = std::nullopt);
    /// The same beside the main thread, which a home folder that does not answer would keep;
    /// `whenDone` is called on it, or never when the parts go before.
    void moveFileToTrash(const std::string& path, const std::optional<EntryIdentity>& expected,
                         std::function<void(const std::string& reason)> whenDone);
    /// Gives what is selected to the outside eraser, and returns. Its nodes stay in the tree until
    /// the next scan; the page hears reloadTreeList() at once and at the end. One at a time.
    void moveFileToTarsh();

    /// Starts the removal of what is ticked. False, and no call to the delegate, when nothing is. A
    /// folder that stopRemove() cuts stays in the tree and is scanned anew from the end on, so that
    /// it and the folders above it come to show what is left.
    bool deleteFilesWithDic();
    /// What would go of these siblings, in the order of the tree: a ticked node as a whole, of a
    /// mixed one what is ticked below it.
    [[nodiscard]] static std::vector<FileNode*> deleteFilesWithDic(
        std::span<FileNode* const> nodes);
    void stopRemove();
    [[nodiscard]] bool isRemoving() const;

    Controller(const Controller&) = delete;
    Controller& operator=(const Controller&) = delete;

private:
    struct Removal;
    struct Erasure;

    Controller();
    ~Controller();

    void removalNews();
    void takeOut(Removal& removal, std::span<FileNode* const> nodes);
    void endRemoval();
    void scanAgain(std::shared_ptr<FileNodeTree> tree, FileNode& folder);

    ControllerParts m_parts;
    ControllerDelegate* _aDelegate = nullptr;
    std::shared_ptr<FileNodeTree> m_aRootArr;
    std::unique_ptr<EumeRoot> m_eumeRoot;
    std::unique_ptr<EumeRoot>
        m_rescan;  // of a folder that a stop left a part of, since the last removal
    std::shared_ptr<Removal> m_removal;  // while one is under way
    std::unique_ptr<TrashErrands> m_errands;
    std::shared_ptr<Erasure> m_erasure;  // the same of the outside eraser
};

}  // namespace orrinvale
