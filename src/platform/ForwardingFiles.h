// ForwardingFiles: a file system that hands everything on to another one. What stages or watches
// files overrides the operations that it is about.
#pragma once

#include "platform/files.h"

namespace orrinvale {

/// As thread-safe as what it forwards to, which outlives it.
class ForwardingFiles : public FileSystem {
public:
    explicit ForwardingFiles(const FileSystem& base) : m_base(base) {}

    SysResult<Descriptor> openFolder(int parent, const char* name, Links links) const override {
        return m_base.openFolder(parent, name, links);
    }
    SysResult<bool> readFolder(int folder, CatalogBatch& batch) const override {
        return m_base.readFolder(folder, batch);
    }
    void readAttributes(int folder, std::span<CatalogEntry> entries) const override {
        m_base.readAttributes(folder, entries);
    }
    SysResult<FileAttributes> attributes(int parent, const char* name, Links links) const override {
        return m_base.attributes(parent, name, links);
    }
    SysResult<FileAttributes> attributes(int descriptor) const override {
        return m_base.attributes(descriptor);
    }
    SysResult<Descriptor> openFile(int parent, const char* name, Links links,
                                   ReadState& state) const override {
        return m_base.openFile(parent, name, links, state);
    }
    void beginReading(int file, std::uint64_t device, std::uint64_t offset, std::uint64_t length,
                      ReadState& state) const override {
        m_base.beginReading(file, device, offset, length, state);
    }
    void endReading(int file, ReadState& state) const override { m_base.endReading(file, state); }
    SysResult<std::size_t> read(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                ReadState& state) const override {
        return m_base.read(file, buffer, offset, state);
    }
    SysResult<std::size_t> readResident(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                        ReadState& state) const override {
        return m_base.readResident(file, buffer, offset, state);
    }
    SysResult<bool> visitResident(
        int file, std::uint64_t offset, std::uint64_t length,
        const std::function<void(std::span<const std::byte>)>& visit) const override {
        return m_base.visitResident(file, offset, length, visit);
    }
    SysResult<DataStretch> nextData(int file, std::uint64_t offset) const override {
        return m_base.nextData(file, offset);
    }
    void expectRandomReads(int file) const override { m_base.expectRandomReads(file); }
    std::vector<std::uint64_t> kernelDevices() const override { return m_base.kernelDevices(); }
    SysResult<std::string> resolved(const std::string& path) const override {
        return m_base.resolved(path);
    }
    std::size_t descriptorLimit() const override { return m_base.descriptorLimit(); }
    void useOwnDescriptors() const override { m_base.useOwnDescriptors(); }
    bool sharesExtents(int descriptor) const override { return m_base.sharesExtents(descriptor); }
    SysResult<std::uint64_t> sharedBytes(int file) const override {
        return m_base.sharedBytes(file);
    }
    SysResult<Descriptor> holdFolder(int parent, const char* path, Links onTheWay) const override {
        return m_base.holdFolder(parent, path, onTheWay);
    }
    SysResult<Descriptor> openInside(int parent, const char* name) const override {
        return m_base.openInside(parent, name);
    }
    SysResult<void> removeEntry(int folder, const char* name, FileType type) const override {
        return m_base.removeEntry(folder, name, type);
    }
    SysResult<void> moveEntry(int folder, const char* name, int newFolder,
                              const char* newName) const override {
        return m_base.moveEntry(folder, name, newFolder, newName);
    }
    SysResult<bool> clearImmutable(int descriptor) const override {
        return m_base.clearImmutable(descriptor);
    }
    SysResult<std::string> placeOf(int descriptor) const override {
        return m_base.placeOf(descriptor);
    }
    SysResult<std::vector<MountPoint>> mountPoints() const override { return m_base.mountPoints(); }
    void readSizes(int folder, std::span<CatalogEntry> entries) const override {
        m_base.readSizes(folder, entries);
    }
    void readIdentities(int folder, std::span<CatalogEntry> entries) const override {
        m_base.readIdentities(folder, entries);
    }
    SysResult<Descriptor> holdEntry(int parent, const char* name) const override {
        return m_base.holdEntry(parent, name);
    }
    SysResult<FileAttributes> freshAttributes(int parent, const char* name,
                                              Links links) const override {
        return m_base.freshAttributes(parent, name, links);
    }
    SysResult<void> renameInside(int folder, const char* name, const char* newName) const override {
        return m_base.renameInside(folder, name, newName);
    }
    bool renamesSafely(int folder) const override { return m_base.renamesSafely(folder); }
    bool isOpenForWriting(int file) const override { return m_base.isOpenForWriting(file); }
    std::vector<std::uint64_t> devicesOfPassingInodes() const override {
        return m_base.devicesOfPassingInodes();
    }

private:
    const FileSystem& m_base;
};

}  // namespace orrinvale
