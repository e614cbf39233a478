// A machine's memory as a test wants it.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "platform/memory.h"

namespace orrinvale::testing {

/// One thread.
struct FakeMemory final : Memory {
    std::map<std::string, SysResult<std::optional<std::uint64_t>>, std::less<>> figures{
        {"hw.pagesize", 4096}, {"hw.physmem", 1 << 30}, {"hw.memsize", 1 << 30}};
    SysResult<MemoryCounts> counted = MemoryCounts{};
    std::function<std::uint64_t()> roomNow = [] { return ~std::uint64_t{0}; };
    std::function<std::uint64_t()> swapNow = [] { return std::uint64_t{0}; };
    bool canBeFirst = true;
    mutable bool isFirst = false;

    [[nodiscard]] SysResult<std::optional<std::uint64_t>> figure(
        std::string_view name) const override {
        return figures.find(name)->second;
    }
    [[nodiscard]] SysResult<MemoryCounts> counts() const override { return counted; }
    [[nodiscard]] SysResult<MemoryState> state() const override {
        MemoryState now;
        now.swapUsed = swapNow();
        return now;
    }
    [[nodiscard]] std::uint64_t room() const override { return roomNow(); }
    [[nodiscard]] bool endThisProcessFirst() const override { return isFirst = canBeFirst; }
};

}  // namespace orrinvale::testing
