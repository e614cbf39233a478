// The purge from both ends: the object that starts it, and the run that touches the memory.
#include "engine/memory/ClearMemory.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string_view>
#include <utility>

#include "engine/base/Log.h"

namespace orrinvale {
namespace {

constexpr std::int32_t kNoCommandLineRun = -1;
constexpr std::int32_t kTouched = 0;
constexpr std::int32_t kNoMemory = 1;
constexpr std::int32_t kNotStarted = 127;
constexpr std::uint32_t kWholeKibibytes = 0xfffffc00;
constexpr std::size_t kPage = 4096;
constexpr std::size_t kSteps = 16;
// Between two looks at what is left other programs may want memory too.
constexpr std::size_t kLargestStep = std::size_t{64} * 1024 * 1024;

const char* sizeArgument(int count, const char* const* param) {
    for (int i = 1; i + 1 < count; ++i)
        if (std::string_view(param[i]) == "fr") return param[i + 1];
    return nullptr;
}

std::size_t cutToRun(std::uint64_t bytes) {
    return static_cast<std::uint32_t>(bytes) & kWholeKibibytes;
}

std::size_t sizeOf(const char* text) {
    // strtoll reads decimal digits alike in every locale, and has a defined answer for numbers that
    // are too long.
    return cutToRun(static_cast<std::uint64_t>(std::strtoll(text, nullptr, 10)));
}

std::uint64_t swapUsed(const Memory& memory) {
    const auto state = memory.state();
    return state ? state->swapUsed : 0;
}

void touch(char* memory, std::size_t size, const Memory& machine) {
    const std::uint64_t swapBefore = swapUsed(machine);
    const std::size_t step = std::clamp(size / kSteps, kPage, kLargestStep);
    for (std::size_t done = 0; done < size;) {
        const std::size_t now = std::min(step, size - done);
        if (done != 0 && (machine.room() < now || swapUsed(machine) > swapBefore)) return;
        std::memset(memory + done, 0, now);
        done += now;
    }
}

}  // namespace

ClearMemory::ClearMemory(const Memory& memory, PurgePrograms programs)
    : m_memory(memory), m_programs(std::move(programs)) {}

std::int32_t ClearMemory::getMemoryInfo(_MEMORY_INFO* info) {
    orrinvale::getMemoryInfo(&m_meminfo, m_memory);
    if (info != nullptr) *info = m_meminfo;
    if (!m_isRunFree || isRuning()) return 0;
    m_terminationStatus = m_task ? m_task->endStatus().value_or(0) : kNotStarted;
    Log::line(fmt::format("Task finished. status = {}", m_terminationStatus));
    m_isRunFree = false;
    m_task.reset();
    return 0;
}

std::int32_t ClearMemory::clearMemory() {
    if (m_isRunFree) getMemoryInfo(nullptr);
    if (m_isRunFree) return 1;
    m_task = launch();
    m_isRunFree = true;
    return 0;
}

std::unique_ptr<Process> ClearMemory::launch() const {
    std::string program = m_programs.systemPurge;
    std::vector<std::string> arguments;
    if (program.empty()) {
        Log::line(fmt::format("purge = {}", m_programs.resourcePurge));
        program = m_programs.resourcePurge;
    }
    if (program.empty()) {
        program = m_programs.executable;
        arguments = {"fr", fmt::format("{}", m_meminfo.freeMem + m_meminfo.inactiveMem)};
    }
    auto started = Process::start(program, arguments, {});
    return started ? std::move(*started) : nullptr;
}

bool ClearMemory::isRuning() const { return m_task && !m_task->endStatus(); }

void ClearMemory::stop() {
    if (m_task) m_task->terminate();
}

bool ClearMemory::isWithinFree(const _MEMORY_INFO& info) {
    return cutToRun(info.freeMem + info.inactiveMem) <= info.freeMem;
}

std::int32_t ClearMemory::freeMemory(int count, const char* const* param, const Memory& memory) {
    const char* const text = sizeArgument(count, param);
    if (text == nullptr) return kNoCommandLineRun;
    Log::line(fmt::format("freeMemoy size={}", text));
    if (sizeOf(text) == 0) return kTouched;  // an allocation of nothing may give a null pointer
    memory.endThisProcessFirst();
    const std::size_t size = std::min<std::uint64_t>(sizeOf(text), memory.room());
    if (size == 0) return kTouched;

    void* block = std::malloc(size);
    if (block == nullptr) return kNoMemory;
    // Both barriers are needed (measured with g++ 12: without them 1 GiB "touched" held 3 MiB). The
    // first hides where the pointer comes from; else allocation and zeroing become one calloc,
    // which takes untouched zero pages. The second stands for a reader of the bytes; else the
    // writes may be dropped.
    asm volatile("" : "+r"(block));
    // NOLINTNEXTLINE(clang-analyzer-unix.Malloc): the analyzer takes what the barrier gives back
    // for another pointer
    touch(static_cast<char*>(block), size, memory);
    asm volatile("" : : "r"(block) : "memory");
    std::free(block);
    return kTouched;
}

}  // namespace orrinvale
