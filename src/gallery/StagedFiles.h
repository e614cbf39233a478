// StagedFiles: a file system that stops where a picture is to be taken, and refuses what a picture shows as refused.
#pragma once

#include <condition_variable>
#include <map>
#include <mutex>
#include <string>

#include "platform/files.h"

namespace orrinvale {

/// Hands everything on to another file system, which outlives it. Folders list in the order of their names, so that a page looks the
/// same on every disk. Thread-safe.
class StagedFiles final : public FileSystem {
public:
    explicit StagedFiles(const FileSystem& files) : m_files(files) {}

    /// Opening or removing the entry of that name fails with the errno; 0 takes it back.
    void refuse(const std::string& name, int error);

    /// Whoever opens or removes the entry of that name waits for release().
    void hold(const std::string& name);
    /// True while somebody waits.
    [[nodiscard]] bool isHolding() const;
    void release();

    SysResult<Descriptor> openFolder(int parent, const char* name, Links links) const override;
    SysResult<bool> readFolder(int folder, CatalogBatch& batch) const override;
    void readAttributes(int folder, std::span<CatalogEntry> entries) const override;
    SysResult<FileAttributes> attributes(int parent, const char* name, Links links) const override;
    SysResult<FileAttributes> attributes(int descriptor) const override;
    SysResult<Descriptor> openFile(int parent, const char* name, Links links, ReadState& state) const override;
    void beginReading(int file, std::uint64_t device, std::uint64_t offset, std::uint64_t length,
                      ReadState& state) const override;
    void endReading(int file, ReadState& state) const override;
    SysResult<std::size_t> read(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                ReadState& state) const override;
    SysResult<std::size_t> readResident(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                        ReadState& state) const override;
    SysResult<bool> visitResident(int file, std::uint64_t offset, std::uint64_t length,
                                  const std::function<void(std::span<const std::byte>)>& visit) const override;
    SysResult<DataStretch> nextData(int file, std::uint64_t offset) const override;
    void expectRandomReads(int file) const override;
    std::vector<std::uint64_t> kernelDevices() const override;
    SysResult<std::string> resolved(const std::string& path) const override;
    std::size_t descriptorLimit() const override;
    SysResult<Descriptor> holdFolder(int parent, const char* path, Links onTheWay) const override;
    SysResult<Descriptor> openInside(int parent, const char* name) const override;
    SysResult<void> removeEntry(int folder, const char* name, FileType type) const override;
    SysResult<void> moveEntry(int folder, const char* name, int newFolder, const char* newName) const override;
    SysResult<bool> clearImmutable(int descriptor) const override;
    SysResult<std::string> placeOf(int folder) const override;
    SysResult<std::vector<MountPoint>> mountPoints() const override;
    void useOwnDescriptors() const override;
    void readSizes(int folder, std::span<CatalogEntry> entries) const override;
    void readIdentities(int folder, std::span<CatalogEntry> entries) const override;
    SysResult<Descriptor> holdEntry(int parent, const char* name) const override;

private:
    /// Waits where the name is held; the errno for it, 0 for none.
    [[nodiscard]] int pass(const char* name) const;

    const FileSystem& m_files;
    mutable std::mutex m_mutex;  // guards what follows
    mutable std::condition_variable m_released;
    std::map<std::string, int> m_refused;
    std::string m_held;
    mutable int m_waiting = 0;
};

}  // namespace orrinvale
