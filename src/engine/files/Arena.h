// Storage for the many small things that a scan keeps: names, records, folders. Nothing in it is
// freed alone.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>
#include <type_traits>
#include <vector>

namespace orrinvale {

/// A growing heap of blocks that goes as a whole. One thread at a time.
class Arena final {
public:
    Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    /// Storage for `count` objects with no destructor to run, not initialised. Stays where it is.
    template <class T> [[nodiscard]] T* allocate(std::size_t count = 1) {
        static_assert(std::is_trivially_destructible_v<T>);
        // NOLINTNEXTLINE(bugprone-sizeof-expression): lists of pointers lie here too
        return reinterpret_cast<T*>(take(sizeof(T) * count, alignof(T)));
    }

    /// Gives back the end of the last allocation, when it turned out larger than needed.
    void giveBack(std::size_t bytes) { m_used -= bytes; }

    /// A copy of the text with a NUL behind it.
    [[nodiscard]] const char* copy(std::string_view text) {
        auto* const out = reinterpret_cast<char*>(take(text.size() + 1, 1));
        std::memcpy(out, text.data(), text.size());
        out[text.size()] = 0;
        return out;
    }

private:
    static constexpr std::size_t blockBytes = 128 * 1024;

    std::byte* take(std::size_t bytes, std::size_t alignment) {
        std::size_t at = (m_used + alignment - 1) / alignment * alignment;
        if (m_blocks.empty() || at + bytes > m_size) {
            m_size = std::max(blockBytes, bytes);
            m_blocks.push_back(std::make_unique_for_overwrite<std::byte[]>(m_size));
            at = 0;
        }
        m_used = at + bytes;
        return m_blocks.back().get() + at;
    }

    std::vector<std::unique_ptr<std::byte[]>> m_blocks;
    std::size_t m_size = 0;
    std::size_t m_used = 0;
};

}  // namespace orrinvale
