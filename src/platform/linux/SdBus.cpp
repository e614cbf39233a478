// The library of sd-bus(3), loaded when it is first wanted. Declared in BusHandles.h.
#include <dlfcn.h>

#include <type_traits>

#include "platform/linux/BusHandles.h"

namespace orrinvale {
namespace {

struct Loaded {
    SdBus functions;
    bool isWhole = false;
};

// Never unloaded.
Loaded load() {
    Loaded out;
    void* const library = ::dlopen("libsystemd.so.0", RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) return out;
    out.isWhole = true;
    const auto find = [&](auto& function, const char* name) {
        function =
            reinterpret_cast<std::remove_reference_t<decltype(function)>>(::dlsym(library, name));
        out.isWhole = out.isWhole && function != nullptr;
    };
#define ORRINVALE_FIND(name) find(out.functions.name, "sd_bus_" #name);
    ORRINVALE_SD_BUS(ORRINVALE_FIND)
#undef ORRINVALE_FIND
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
