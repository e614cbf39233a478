// SizeClasses: which files of a search have their size in common. HashAhead.h resolves them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "engine/duplicates/fileAttrbItem.h"

namespace orrinvale {

/// The files of a search by size. Index numbers are places in the list given at construction, which
/// must not change.
class SizeClasses final {
public:
    static constexpr std::uint32_t alone = ~std::uint32_t{0};

    explicit SizeClasses(const FileList& files);

    /// Number of the class of a file; `alone` where no other file has its size. Classes count up in
    /// order of their first members.
    [[nodiscard]] std::uint32_t classOf(std::size_t index) const { return m_classOf[index]; }
    [[nodiscard]] std::size_t count() const { return m_starts.size() - 1; }

    /// The members of a class, rising.
    [[nodiscard]] std::span<const std::uint32_t> members(std::size_t number) const {
        return {m_members.data() + m_starts[number], m_starts[number + 1] - m_starts[number]};
    }

private:
    std::vector<std::uint32_t> m_classOf;
    std::vector<std::uint32_t> m_starts;
    std::vector<std::uint32_t> m_members;
};

}  // namespace orrinvale
