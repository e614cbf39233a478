// RemoveFileAndFolder: has an outside program erase entries, one after the other.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "engine/base/MainQueue.h"
#include "engine/files/HeldEntry.h"
#include "engine/files/ProtectedPlaces.h"
#include "engine/largefiles/FileNodeTree.h"
#include "platform/process.h"

namespace orrinvale {

/// All calls come on the main thread.
class RemoveFileAndFolderDelegate {
public:
    virtual ~RemoveFileAndFolderDelegate() = default;
    /// Percent, and the path of the entry whose turn it is.
    virtual void removeProgress(float percent, const std::string& path) {
        static_cast<void>(percent), static_cast<void>(path);
    }
    /// The last call. The paths of those that were not handed to the eraser; what it made of the
    /// others it does not say.
    virtual void removeObjEnd(const std::vector<std::string>& deleteErrorArr) {
        static_cast<void>(deleteErrorArr);
    }

protected:
    RemoveFileAndFolderDelegate() = default;
    RemoveFileAndFolderDelegate(const RemoveFileAndFolderDelegate&) = default;
    RemoveFileAndFolderDelegate& operator=(const RemoveFileAndFolderDelegate&) = default;
};

/// Main thread only. Destroyed while a program runs, it leaves that one to its work and starts no
/// more.
class RemoveFileAndFolder final {
public:
    /// The tree holds the nodes; file system and queue outlive this object. `ownFiles` are the
    /// program's, which stay.
    RemoveFileAndFolder(const FileSystem& files, MainQueue& queue,
                        const std::vector<std::string>& ownFiles,
                        std::shared_ptr<FileNodeTree> tree, std::vector<FileNode*> allFilesArr,
                        std::string program = "/usr/bin/srm");
    RemoveFileAndFolder(const RemoveFileAndFolder&) = delete;
    RemoveFileAndFolder& operator=(const RemoveFileAndFolder&) = delete;

    void setDelegate(RemoveFileAndFolderDelegate* delegate) {
        m_delegate = delegate;
    }  ///< not owned

    /// Starts the program for the first entry that may go and that it can be started for. False
    /// when there is none; the end is told then too, in a later turn, unless there was no entry at
    /// all.
    bool runTaskWithPath();

    /// A command: the program in hand is asked to end, and no other one follows.
    void isCancel();

private:
    [[nodiscard]] bool launch(const FileNode& node, const std::string& path);
    void clearImmutable(const HeldEntry& held) const;
    void doneErasing();
    void advance();
    [[nodiscard]] std::function<void()> laterCall(void (RemoveFileAndFolder::*step)()) const;
    void end();

    const FileSystem& m_files;
    MainQueue& m_mainQueue;
    const ProtectedPlaces m_places;
    const std::shared_ptr<FileNodeTree> m_tree;
    const std::vector<FileNode*> m_allFilesArr;
    const std::string m_program;
    RemoveFileAndFolderDelegate* m_delegate = nullptr;
    const std::shared_ptr<RemoveFileAndFolder*> m_self;  // calls on their way hold it weakly
    std::unique_ptr<Process> m_eraser;                   // while one runs
    std::string m_filePathStr;                           // the entry in hand
    std::vector<std::string> m_deleteErrorArr;
    std::size_t m_idx = 0;
    bool m_isCancel = false;
};

}  // namespace orrinvale
