// ClearMemory: the memory's figures, and the run of a program that takes memory and gives it back,
// so that the system lets go of copies of files. The program that runs may be this one.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "engine/memory/MemoryInfo.h"
#include "platform/process.h"

namespace orrinvale {

/// What a purge that were started now would do, as far as can be told beforehand.
enum class PurgeOutlook : std::uint8_t {
    GivesUp,     ///< take more than is free, so that copies of files are given up
    WithinFree,  ///< take no more than is free anyway, so that nothing has to be given up
    NoRoom,      ///< take nothing: none is left, or nobody tells how much
    Foreign      ///< run another program, which knows by itself
};

/// Idle or purging. The end of a purge is noticed by the next reading of the figures and by nothing
/// else, so whoever waits for it goes on reading. A purge that still runs when the object goes runs
/// on. One thread.
class ClearMemory final {
public:
    /// `memory` outlives the object.
    ClearMemory(const Memory& memory, PurgePrograms programs);

    /// The figures of the latest reading; zeros before the first.
    [[nodiscard]] const _MEMORY_INFO& meminfo() const { return m_meminfo; }

    /// Reads the figures, copies them out unless the pointer is null, and notices the end of a
    /// purge. Always 0.
    std::int32_t getMemoryInfo(_MEMORY_INFO* info);

    /// Starts a purge of as much as the latest reading has as free and inactive: 0. Returns at
    /// once. 1 when one is still running.
    std::int32_t clearMemory();

    /// Whether the program still runs, noticed or not.
    [[nodiscard]] bool isRuning() const;

    /// Asks a running program to end.
    void stop();

    /// A purge was started, and no reading has noticed its end yet.
    [[nodiscard]] bool isRunFree() const { return m_isRunFree; }
    /// What the latest purge ended with, once that was noticed: 0 when all went well, an exit
    /// status or the number of a signal else, Process::endUnknown when the system did not tell.
    [[nodiscard]] std::int32_t terminationStatus() const { return m_terminationStatus; }
    static constexpr std::int32_t kNotStarted = 127;  ///< it could not be, as shells say it
    /// The program that the latest purge asked; empty before the first.
    [[nodiscard]] const std::string& program() const { return m_program; }

    /// By the latest reading of the figures. The size of a purge counts 32 bits.
    [[nodiscard]] PurgeOutlook outlook() const;

    /// Looks in a process's arguments for "fr" followed by a size in bytes, and touches that much
    /// memory. The size is cut to its low 32 bits and rounded down to a multiple of 1024, so it
    /// lies below 4 GiB; a text without digits is 0. Never takes more than Memory::room() at the
    /// start, goes in steps of a sixteenth, and ends where there is no room for two steps any more
    /// or swap began to fill; before it takes any, this process becomes the first that the system
    /// ends. Returns -1 when the arguments hold no such pair (this is no command-line run), 0 when
    /// the memory was touched and freed, 1 when there was none to be had or this process can not
    /// become the first to end. The vector has `count` elements; the first, the
    /// program's name, is not looked at.
    [[nodiscard]] static std::int32_t freeMemory(int count, const char* const* param,
                                                 const Memory& memory);

private:
    /// Where no other program is asked first.
    [[nodiscard]] bool isOwnProgramAsked() const;
    [[nodiscard]] std::unique_ptr<Process> launch();

    const Memory& m_memory;
    const PurgePrograms m_programs;
    _MEMORY_INFO m_meminfo;
    std::string m_program;
    std::unique_ptr<Process> m_task;  // from the launch until its end has been noticed
    bool m_isRunFree = false;
    std::int32_t m_terminationStatus = 0;
};

}  // namespace orrinvale
