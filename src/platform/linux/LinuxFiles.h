// FileSystem over the Linux system calls. Read platform/files.h first.
#pragma once

#include "platform/files.h"

namespace orrinvale {

/// Needs Linux 4.11 (statx). Uses uncached reads (6.14) and cachestat (6.5) where the kernel and
/// the file system have them.
class LinuxFileSystem final : public FileSystem {
public:
    SysResult<Descriptor> openFolder(int parent, const char* name, Links links) const override;
    SysResult<bool> readFolder(int folder, CatalogBatch& batch) const override;
    void readAttributes(int folder, std::span<CatalogEntry> entries) const override;
    SysResult<FileAttributes> attributes(int parent, const char* name, Links links) const override;
    SysResult<FileAttributes> attributes(int descriptor) const override;
    SysResult<Descriptor> openFile(int parent, const char* name, Links links,
                                   ReadState& state) const override;
    void beginReading(int file, std::uint64_t device, std::uint64_t offset, std::uint64_t length,
                      ReadState& state) const override;
    void endReading(int file, ReadState& state) const override;
    SysResult<std::size_t> read(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                ReadState& state) const override;
    SysResult<std::size_t> readResident(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                        ReadState& state) const override;
    SysResult<bool> visitResident(
        int file, std::uint64_t offset, std::uint64_t length,
        const std::function<void(std::span<const std::byte>)>& visit) const override;
    SysResult<DataStretch> nextData(int file, std::uint64_t offset) const override;
    void expectRandomReads(int file) const override;
    std::vector<std::uint64_t> kernelDevices() const override;
    SysResult<std::string> resolved(const std::string& path) const override;
    std::size_t descriptorLimit() const override;
    void useOwnDescriptors() const override;
    SysResult<Descriptor> holdFolder(int parent, const char* path, Links onTheWay) const override;
    SysResult<Descriptor> openInside(int parent, const char* name) const override;
    SysResult<void> removeEntry(int folder, const char* name, FileType type) const override;
    SysResult<void> moveEntry(int folder, const char* name, int newFolder,
                              const char* newName) const override;
    SysResult<bool> clearImmutable(int descriptor) const override;
    SysResult<std::string> placeOf(int descriptor) const override;
    bool sharesExtents(int descriptor) const override;
    SysResult<std::uint64_t> sharedBytes(int file) const override;
    SysResult<std::vector<MountPoint>> mountPoints() const override;
    void readSizes(int folder, std::span<CatalogEntry> entries) const override;
    void readIdentities(int folder, std::span<CatalogEntry> entries) const override;
    SysResult<Descriptor> holdEntry(int parent, const char* name) const override;
    SysResult<FileAttributes> freshAttributes(int parent, const char* name,
                                              Links links) const override;
    SysResult<void> renameInside(int folder, const char* name, const char* newName) const override;
    bool renamesSafely(int folder) const override;
    bool isOpenForWriting(int file) const override;
    std::vector<std::uint64_t> devicesOfPassingInodes() const override;
};

}  // namespace orrinvale
