// BusHandles: see BusHandles.h.
#include "platform/linux/BusHandles.h"

#include <dlfcn.h>

#include <cerrno>
#include <type_traits>

#include "platform/deadline.h"

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
        function = reinterpret_cast<std::remove_reference_t<decltype(function)>>(::dlsym(library, name));
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

bool becomesReady(sd_bus& bus, std::chrono::milliseconds patience) {
    const auto end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        const int ready = sdBus().is_ready(&bus);
        if (ready != 0) return ready > 0;
        const int processed = sdBus().process(&bus, nullptr);
        if (processed < 0) return false;
        if (processed > 0) continue;
        const auto left = timeUntil(end);
        if (left.count() == 0) return false;
        if (const int waited = sdBus().wait(&bus, busMicroseconds(left)); waited < 0 && waited != -EINTR) return false;
    }
}

}  // namespace orrinvale
