// The operations that may be held or refused; each asks hold() or refuse() first.
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
    return ForwardingFiles::openFolder(parent, name, links);
}

SysResult<Descriptor> StagedFiles::openInside(int parent, const char* name) const {
    if (const int refusal = pass(name)) return tl::unexpected(refusal);
    return ForwardingFiles::openInside(parent, name);
}

SysResult<bool> StagedFiles::readFolder(int folder, CatalogBatch& batch) const {
    auto more = ForwardingFiles::readFolder(folder, batch);
    std::ranges::sort(batch.entries, [](const CatalogEntry& a, const CatalogEntry& b) {
        return std::strcmp(a.name, b.name) < 0;
    });
    return more;
}

SysResult<Descriptor> StagedFiles::openFile(int parent, const char* name, Links links,
                                            ReadState& state) const {
    if (const int error = pass(name); error != 0) return tl::unexpected(error);
    return ForwardingFiles::openFile(parent, name, links, state);
}

SysResult<void> StagedFiles::removeEntry(int folder, const char* name, FileType type) const {
    if (const int error = pass(name); error != 0) return tl::unexpected(error);
    return ForwardingFiles::removeEntry(folder, name, type);
}
SysResult<void> StagedFiles::moveEntry(int folder, const char* name, int newFolder,
                                       const char* newName) const {
    if (const int error = pass(name); error != 0) return tl::unexpected(error);
    return ForwardingFiles::moveEntry(folder, name, newFolder, newName);
}
SysResult<void> StagedFiles::renameInside(int folder, const char* name, const char* newName) const {
    if (const int error = pass(name); error != 0) return tl::unexpected(error);
    return ForwardingFiles::renameInside(folder, name, newName);
}

}  // namespace orrinvale
