// The purge from both ends: the object that starts it, and the run that touches the memory.
#include "engine/memory/ClearMemory.h"

#include <fmt/format.h>
#include <sys/mman.h>

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
        // Somebody else, another run of this for one, may take a step between the look and ours.
        if (machine.room() / 2 < now || swapUsed(machine) > swapBefore) return;
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

bool ClearMemory::isOwnProgramAsked() const {
    const std::string& ours = m_programs.resourcePurge;
    return m_programs.systemPurge.empty() && (ours.empty() || !m_programs.isTrusted(ours));
}

std::unique_ptr<Process> ClearMemory::launch() {
    std::vector<std::string> arguments;
    if (m_programs.systemPurge.empty())
        Log::line(fmt::format("purge = {}", m_programs.resourcePurge));
    if (isOwnProgramAsked()) {
        m_program = m_programs.executable;
        arguments = {"fr", fmt::format("{}", m_meminfo.freeMem + m_meminfo.inactiveMem)};
    } else {
        m_program = m_programs.systemPurge.empty() ? m_programs.resourcePurge  //
                                                   : m_programs.systemPurge;
    }
    auto started = Process::start(m_program, arguments, {});
    return started ? std::move(*started) : nullptr;
}

bool ClearMemory::isRuning() const { return m_task && !m_task->endStatus(); }

void ClearMemory::stop() {
    if (m_task) m_task->terminate();
}

PurgeOutlook ClearMemory::outlook() const {
    if (!isOwnProgramAsked()) return PurgeOutlook::Foreign;
    const std::uint64_t room = m_memory.room();
    if (room == 0) return PurgeOutlook::NoRoom;
    const std::uint64_t most =
        std::min<std::uint64_t>(cutToRun(m_meminfo.freeMem + m_meminfo.inactiveMem), room);
    return most <= m_meminfo.freeMem ? PurgeOutlook::WithinFree : PurgeOutlook::GivesUp;
}

std::int32_t ClearMemory::freeMemory(int count, const char* const* param, const Memory& memory) {
    const char* const text = sizeArgument(count, param);
    if (text == nullptr) return kNoCommandLineRun;
    Log::line(fmt::format("freeMemoy size={}", text));
    if (sizeOf(text) == 0) return kTouched;
    if (!memory.endThisProcessFirst()) return kNoMemory;
    const std::size_t size = std::min<std::uint64_t>(sizeOf(text), memory.room());
    if (size == 0) return kTouched;

    // Straight from the system: an allocator may be told to fill what it hands out (MALLOC_PERTURB_
    // does so in glibc), which touches all of it before the first look at what is left.
    void* const block =
        ::mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (block == MAP_FAILED) return kNoMemory;
    touch(static_cast<char*>(block), size, memory);
    ::munmap(block, size);
    return kTouched;
}

}  // namespace orrinvale
