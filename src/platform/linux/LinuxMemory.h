// Memory by the files of proc(5) and by control groups. Read platform/memory.h first.
#pragma once

#include <string>

#include "platform/memory.h"

namespace orrinvale {

/// Active are Active and Inactive(anon) of /proc/meminfo, inactive is Inactive(file), wired is what
/// is left: so the four add up. Anonymous pages count as active since they can not be given up,
/// only written to swap. Control groups of both versions limit the room, each with all its
/// ancestors.
class LinuxMemory final : public Memory {
public:
    /// `root` stands before /proc and before the places at which groups are mounted: another
    /// machine's files in tests.
    explicit LinuxMemory(std::string root = {}) : m_root(std::move(root)) {}

    [[nodiscard]] SysResult<std::optional<std::uint64_t>> figure(
        std::string_view name) const override;
    [[nodiscard]] SysResult<MemoryCounts> counts() const override;
    [[nodiscard]] SysResult<MemoryState> state() const override;
    [[nodiscard]] std::uint64_t room() const override;
    [[nodiscard]] bool endThisProcessFirst() const override;

private:
    const std::string m_root;
};

}  // namespace orrinvale
