// The library of sd-bus(3), loaded when it is first wanted. Declared in BusHandles.h.
#include "platform/linux/BusHandles.h"
#include "platform/linux/LoadedLibrary.h"

namespace orrinvale {
namespace {

struct Loaded {
    SdBus functions;
    bool isWhole = false;
};

Loaded load() {
    Loaded out;
    LoadedLibrary library("libsystemd.so.0");
#define ORRINVALE_FIND(name) library.find(out.functions.name, "sd_bus_" #name);
    ORRINVALE_SD_BUS(ORRINVALE_FIND)
#undef ORRINVALE_FIND
    out.isWhole = library.isWhole();
    return out;
}

const Loaded& loaded() {
    static const Loaded library = load();
    return library;
}

}  // namespace

bool hasSdBus() { return loaded().isWhole; }

const SdBus& sdBus() { return loaded().functions; }

}  // namespace orrinvale
