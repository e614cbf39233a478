// The memory is really written to: compilers leave out what nobody reads.
#include "engine/memory/ClearMemory.h"

#include <fmt/format.h>

#include <cstdlib>
#include <cstring>
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
    // strtoll reads decimal digits alike in every locale, and has a defined answer for numbers that
    // are too long.
    return static_cast<std::uint32_t>(std::strtoll(text, nullptr, 10)) & kWholeKibibytes;
}

}  // namespace

std::int32_t ClearMemory::freeMemory(int count, const char* const* param) {
    const char* const text = sizeArgument(count, param);
    if (text == nullptr) return kNoCommandLineRun;
    Log::line(fmt::format("freeMemoy size={}", text));
    const std::size_t size = sizeOf(text);
    if (size == 0) return kTouched;  // an allocation of nothing may give a null pointer

    void* memory = std::malloc(size);
    if (memory == nullptr) return kNoMemory;
    // Both barriers are needed (measured with g++ 12: without them 1 GiB "touched" held 3 MiB). The
    // first hides where the pointer comes from; else allocation and zeroing become one calloc,
    // which takes untouched zero pages. The second stands for a reader of the bytes; else the
    // writes may be dropped.
    asm volatile("" : "+r"(memory));
    // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the analyzer takes what the barrier gives back
    // for another pointer
    std::memset(memory, 0, size);
    asm volatile("" : : "r"(memory) : "memory");
    std::free(memory);
    return kTouched;
}

}  // namespace orrinvale
