// The window program: the system gate first, then the run that only touches memory, then the window.
#include <cstdio>

#include "engine/memory/ClearMemory.h"
#include "engine/text/UtilityFunction.h"
#include "platform/linux/LinuxSystem.h"

int main(int argc, char** argv) {
    static const orrinvale::LinuxSystem system;
    orrinvale::UtilityFunction::getMyFunction().setSystem(&system);
    if (orrinvale::UtilityFunction::isBelow1050SystemVer()) return 0;

    const std::int32_t memoryRun = orrinvale::ClearMemory::freeMemory(argc, argv);
    if (memoryRun != -1) return memoryRun;

    std::fputs("orrinvale: the window is not built yet; use orrinvale-cli\n", stderr);
    return 2;
}
