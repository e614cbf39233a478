// StagedFiles: see StagedFiles.h.
#include "gallery/StagedFiles.h"

#include <algorithm>
#include <cstring>

namespace orrinvale {

void StagedFiles::refuse(const std::string& name, int error) {
    const std::lock_guard guard(m_mutex);
    m_refused[name] = error;
}

void StagedFiles::hold(const std::string& name) {
    const std::lock_guard guard(m_mutex);
    m_held = name;
}

bool StagedFiles::isHolding() const {
    const std::lock_guard guard(m_mutex);
    return m_waiting != 0;
}

void StagedFiles::release() {
    const std::lock_guard guard(m_mutex);
    m_held.clear();
    m_released.notify_all();
}

int StagedFiles::pass(const char* name) const {
    std::unique_lock lock(m_mutex);
    if (!m_held.empty() && m_held == name) {
        ++m_waiting;
        m_released.wait(lock, [&] { return m_held != name; });
        --m_waiting;
    }
    const auto refused = m_refused.find(name);
    return refused == m_refused.end() ? 0 : refused->second;
}

SysResult<Descriptor> StagedFiles::openFolder(int parent, const char* name, Links links) const {
    if (const int error = pass(name); error != 0) return tl::unexpected(error);
    return m_files.openFolder(parent, name, links);
}

SysResult<bool> StagedFiles::readFolder(int folder, CatalogBatch& batch) const {
    auto more = m_files.readFolder(folder, batch);
    std::ranges::sort(batch.entries,
                      [](const CatalogEntry& a, const CatalogEntry& b) { return std::strcmp(a.name, b.name) < 0; });
    return more;
}

SysResult<Descriptor> StagedFiles::openFile(int parent, const char* name, Links links, ReadState& state) const {
    if (const int error = pass(name); error != 0) return tl::unexpected(error);
    return m_files.openFile(parent, name, links, state);
}

SysResult<void> StagedFiles::removeEntry(int folder, const char* name, FileType type) const {
    if (const int error = pass(name); error != 0) return tl::unexpected(error);
    return m_files.removeEntry(folder, name, type);
}
SysResult<void> StagedFiles::moveEntry(int folder, const char* name, int newFolder, const char* newName) const {
    if (const int error = pass(name); error != 0) return tl::unexpected(error);
    return m_files.moveEntry(folder, name, newFolder, newName);
}
SysResult<bool> StagedFiles::clearImmutable(int descriptor) const { return m_files.clearImmutable(descriptor); }

void StagedFiles::readAttributes(int folder, std::span<CatalogEntry> entries) const {
    m_files.readAttributes(folder, entries);
}
SysResult<FileAttributes> StagedFiles::attributes(int parent, const char* name, Links links) const {
    return m_files.attributes(parent, name, links);
}
SysResult<FileAttributes> StagedFiles::attributes(int descriptor) const { return m_files.attributes(descriptor); }
void StagedFiles::beginReading(int file, std::uint64_t device, std::uint64_t offset, std::uint64_t length,
                               ReadState& state) const {
    m_files.beginReading(file, device, offset, length, state);
}
void StagedFiles::endReading(int file, ReadState& state) const { m_files.endReading(file, state); }
SysResult<std::size_t> StagedFiles::read(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                         ReadState& state) const {
    return m_files.read(file, buffer, offset, state);
}
SysResult<std::size_t> StagedFiles::readResident(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                                 ReadState& state) const {
    return m_files.readResident(file, buffer, offset, state);
}
SysResult<bool> StagedFiles::visitResident(int file, std::uint64_t offset, std::uint64_t length,
                                           const std::function<void(std::span<const std::byte>)>& visit) const {
    return m_files.visitResident(file, offset, length, visit);
}
SysResult<FileSystem::DataStretch> StagedFiles::nextData(int file, std::uint64_t offset) const {
    return m_files.nextData(file, offset);
}
void StagedFiles::expectRandomReads(int file) const { m_files.expectRandomReads(file); }
std::vector<std::uint64_t> StagedFiles::kernelDevices() const { return m_files.kernelDevices(); }
SysResult<std::string> StagedFiles::resolved(const std::string& path) const { return m_files.resolved(path); }
std::size_t StagedFiles::descriptorLimit() const { return m_files.descriptorLimit(); }
SysResult<Descriptor> StagedFiles::holdFolder(int parent, const char* path, Links onTheWay) const {
    return m_files.holdFolder(parent, path, onTheWay);
}
SysResult<Descriptor> StagedFiles::openInside(int parent, const char* name) const {
    return m_files.openInside(parent, name);
}
SysResult<std::string> StagedFiles::placeOf(int folder) const { return m_files.placeOf(folder); }
SysResult<std::vector<MountPoint>> StagedFiles::mountPoints() const { return m_files.mountPoints(); }
void StagedFiles::useOwnDescriptors() const { m_files.useOwnDescriptors(); }
void StagedFiles::readSizes(int folder, std::span<CatalogEntry> entries) const { m_files.readSizes(folder, entries); }
void StagedFiles::readIdentities(int folder, std::span<CatalogEntry> entries) const {
    m_files.readIdentities(folder, entries);
}
SysResult<Descriptor> StagedFiles::holdEntry(int parent, const char* name) const {
    return m_files.holdEntry(parent, name);
}

}  // namespace orrinvale
