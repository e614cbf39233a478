// SpaceGain: what a clean gave back. Measured and not added up: snapshots, shared copies and files
// that are still open give nothing.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/cleaning/CleanRow.h"
#include "platform/freeSpace.h"

namespace orrinvale {

/// The free space of each file system that rows lie on, before and after. Both questions may wait
/// for a slow disk. Any thread; removals that begin one after another may share one.
class SpaceGain final {
public:
    /// settledFreeSpace(), or a stand-in for it.
    using FreeSpace = std::function<SysResult<std::uint64_t>(const std::string& folder)>;

    explicit SpaceGain(const std::vector<CleanRow>& rows, FreeSpace freeSpace = settledFreeSpace);
    /// Of the file systems of these folders.
    SpaceGain(std::vector<std::string> folders, FreeSpace freeSpace)
        : m_freeSpace(std::move(freeSpace)), m_folders(std::move(folders)) {}

    /// Just before the removal. The first of several calls holds.
    void begin();
    /// Bytes by which the free space grew since; negative where others wrote more than went;
    /// nothing where it can not be told.
    [[nodiscard]] std::optional<std::int64_t> gained() const;

private:
    [[nodiscard]] std::optional<std::int64_t> freeNow() const;

    const FreeSpace m_freeSpace;
    mutable std::mutex m_mutex;  // guards what follows
    bool m_isBegun = false;
    std::vector<std::string> m_folders;  // of the rows; after begin() one on each file system
    std::optional<std::int64_t> m_before;
};

}  // namespace orrinvale
