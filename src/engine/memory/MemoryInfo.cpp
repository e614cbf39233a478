// The reading of the figures, and their texts.
#include "engine/memory/MemoryInfo.h"

#include <string_view>

#include "engine/text/UtilityFunction.h"

namespace orrinvale {

std::int32_t getMemoryInfo(_MEMORY_INFO* info, const Memory& memory) {
    if (info == nullptr) return -1;
    std::int32_t status = 0;
    const auto read = [&](std::string_view name, std::uint64_t& value) {
        const auto figure = memory.figure(name);
        if (!figure) status = figure.error();
        else if (*figure) value = **figure;
    };
    std::uint64_t page = 4096;
    std::uint64_t physical = 0;  // without what the firmware keeps for itself; nothing shows it
    read("hw.pagesize", page);
    read("hw.physmem", physical);
    read("hw.memsize", info->totalMem);
    if (const auto counts = memory.counts()) {
        info->freeMem = counts->free * page;
        info->inactiveMem = counts->inactive * page;
        info->activeMem = counts->active * page;
        info->wiredMem = counts->wired * page;
        info->pageIn = counts->bytesIn.value_or(info->pageIn);
        info->pageOut = counts->bytesOut.value_or(info->pageOut);
        if (counts->faults) info->vMem = *counts->faults * page;
    }
    info->usedMem = info->totalMem - info->freeMem;
    return status;
}

cleanMemoryInfo cleanMemoryInfoOf(const _MEMORY_INFO& info) {
    const auto text = &UtilityFunction::covertCleanMemory;
    return {.freeMem = text(info.freeMem),
            .inactiveMem = text(info.inactiveMem),
            .activeMem = text(info.activeMem),
            .wiredMem = text(info.wiredMem),
            .usedMem = text(info.usedMem),
            .totalMem = text(info.totalMem)};
}

}  // namespace orrinvale
