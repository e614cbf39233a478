// StagedFiles: a file system that stops where a picture is to be taken, and refuses what a picture
// shows as refused.
#pragma once

#include <condition_variable>
#include <map>
#include <mutex>
#include <string>

#include "platform/ForwardingFiles.h"

namespace orrinvale {

/// Hands everything on to another file system, which outlives it. Folders list in the order of
/// their names, so that a page looks the same on every disk. Thread-safe.
class StagedFiles final : public ForwardingFiles {
public:
    explicit StagedFiles(const FileSystem& files) : ForwardingFiles(files) {}

    /// Opening or removing the entry of that name fails with the errno; 0 takes it back.
    void refuse(const std::string& name, int error);

    /// Whoever opens or removes the entry of that name waits for release().
    void hold(const std::string& name);
    /// True while somebody waits.
    [[nodiscard]] bool isHolding() const;
    void release();

    SysResult<Descriptor> openFolder(int parent, const char* name, Links links) const override;
    SysResult<Descriptor> openInside(int parent, const char* name) const override;
    SysResult<bool> readFolder(int folder, CatalogBatch& batch) const override;
    SysResult<Descriptor> openFile(int parent, const char* name, Links links,
                                   ReadState& state) const override;
    SysResult<void> removeEntry(int folder, const char* name, FileType type) const override;
    SysResult<void> moveEntry(int folder, const char* name, int newFolder,
                              const char* newName) const override;
    SysResult<void> renameInside(int folder, const char* name, const char* newName) const override;

private:
    /// Waits where the name is held; the errno for it, 0 for none.
    [[nodiscard]] int pass(const char* name) const;

    mutable std::mutex m_mutex;  // guards what follows
    mutable std::condition_variable m_released;
    std::map<std::string, int> m_refused;
    std::string m_held;
    mutable int m_waiting = 0;
};

}  // namespace orrinvale
