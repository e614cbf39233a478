// ClearMemory: see ClearMemory.h.
#include "engine/memory/ClearMemory.h"

#include <fmt/format.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

#include "engine/base/Log.h"

namespace orrinvale {
namespace {

constexpr std::int32_t kNoCommandLineRun = -1;
constexpr std::int32_t kTouched = 0;
constexpr std::int32_t kNoMemory = 1;
constexpr std::uint32_t kWholeKibibytes = 0xfffffc00;

const char* sizeArgument(int count, const char* const* param) {
    for (int i = 1; i + 1 < count; ++i)
        if (std::string_view(param[i]) == "fr") return param[i + 1];
    return nullptr;
}

std::size_t sizeOf(const char* text) {
    // strtoll reads decimal digits alike in every locale, and has a defined answer for numbers that are too long.
    return static_cast<std::uint32_t>(std::strtoll(text, nullptr, 10)) & kWholeKibibytes;
}

}  // namespace

std::int32_t ClearMemory::freeMemory(int count, const char* const* param) {
    const char* const text = sizeArgument(count, param);
    if (text == nullptr) return kNoCommandLineRun;
    Log::line(fmt::format("freeMemoy size={}", text));
    const std::size_t size = sizeOf(text);
    if (size == 0) return kTouched;  // an allocation of nothing may give a null pointer

    struct Free {
        void operator()(void* pointer) const { std::free(pointer); }
    };
    // Not calloc, which takes untouched zero pages.
    const std::unique_ptr<void, Free> memory(std::malloc(size));
    if (!memory) return kNoMemory;
    std::memset(memory.get(), 0, size);
    // Tells the compiler that somebody reads the bytes; else it may drop the writes together with the allocation.
    asm volatile("" : : "r"(memory.get()) : "memory");
    return kTouched;
}

}  // namespace orrinvale
