// GainCount: what the removal of copies gives back, while copies are ticked and cleared.
#pragma once

#include <cstdint>
#include <map>
#include <utility>

#include "engine/files/EntryIdentity.h"

namespace orrinvale {

/// A file with several names counts once, and only when all its names are counted; a symbolic link
/// counts nothing. One thread.
class GainCount final {
public:
    /// A copy of `size` bytes with so many hard links, each once; the identity is null where none
    /// was seen.
    void add(const EntryIdentity* identity, std::uint32_t links, std::uint64_t size) {
        change(identity, links, size, true);
    }
    void take(const EntryIdentity* identity, std::uint32_t links, std::uint64_t size) {
        change(identity, links, size, false);
    }

    [[nodiscard]] std::uint64_t bytes() const { return m_bytes; }

private:
    void change(const EntryIdentity* identity, std::uint32_t links, std::uint64_t size, bool adds);

    std::uint64_t m_bytes = 0;
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::uint32_t> m_names;  // by device, inode
};

}  // namespace orrinvale
