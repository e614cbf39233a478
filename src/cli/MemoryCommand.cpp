// The figures as a listing and as JSON; the purge is engine/memory/ClearMemory.h's.
#include "cli/MemoryCommand.h"

#include <fmt/format.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <chrono>
#include <optional>
#include <thread>

#include "cli/Output.h"
#include "cli/SearchWatch.h"
#include "engine/memory/ClearMemory.h"
#include "engine/text/UtilityFunction.h"

namespace orrinvale::cli {
namespace {

/// A purge from the figures before it to those after it.
struct Freed {
    std::uint64_t before = 0;
    std::uint64_t after = 0;
    PurgeOutlook outlook{};   // before it
    std::string program;      // that freed
    std::int32_t status = 0;  // what it ended with
    Ending ending{};

    [[nodiscard]] std::uint64_t gained() const { return after > before ? after - before : 0; }
    // Whoever stops it knows that it did not end well.
    [[nodiscard]] bool hasFailed() const { return status != 0 && ending == Ending::Whole; }
    [[nodiscard]] std::string reason() const {
        if (status == ClearMemory::kNotStarted) return "it could not be started";
        if (status == Process::endUnknown) return "the system did not tell how it ended";
        return fmt::format("it ended early, with {}", status);
    }
};

struct Shown {
    _MEMORY_INFO info;
    MemoryState state;
    std::optional<Freed> freed;
};

Freed free(ClearMemory& memory) {
    constexpr std::chrono::milliseconds betweenLooks{50};
    Freed out;
    std::atomic<bool> isStopped{false};
    const SearchWatch watch([&isStopped] { isStopped = true; }, {}, Telling::Nothing);
    memory.getMemoryInfo(nullptr);
    out.before = memory.meminfo().freeMem;
    out.outlook = memory.outlook();
    memory.clearMemory();
    while (memory.isRunFree()) {
        if (isStopped) memory.stop();
        std::this_thread::sleep_for(betweenLooks);
        memory.getMemoryInfo(nullptr);
    }
    out.after = memory.meminfo().freeMem;
    out.program = memory.program();
    out.status = memory.terminationStatus();
    out.ending = watch.ending();
    return out;
}

std::string orNull(const std::optional<std::uint64_t>& figure) {
    return figure ? fmt::format("{}", *figure) : "null";
}

std::string pressureText(const MemoryState& state) {
    return state.pressure ? fmt::format("{:.2f}", *state.pressure) : "null";
}

void printJson(Output& out, const Shown& shown, Ending ending) {
    const _MEMORY_INFO& info = shown.info;
    std::string text = fmt::format(
        "{{\n  \"total\": {}, \"free\": {}, \"active\": {}, \"inactive\": {}, \"wired\": {}, "
        "\"used\": {},\n  \"available\": {}, \"swapTotal\": {}, \"swapUsed\": {}, "
        "\"pressure\": {},\n",
        info.totalMem, info.freeMem, info.activeMem, info.inactiveMem, info.wiredMem, info.usedMem,
        orNull(shown.state.available), shown.state.swapTotal, shown.state.swapUsed,
        pressureText(shown.state));
    if (shown.freed)
        text += fmt::format("  \"freeBefore\": {}, \"freeAfter\": {}, \"freed\": {},\n",
                            shown.freed->before, shown.freed->after, shown.freed->gained());
    text += "  \"skipped\": [";
    if (shown.freed && shown.freed->hasFailed()) {
        text += '{';
        appendJsonPath(text, shown.freed->program);
        text += ", \"reason\": ";
        appendJsonText(text, shown.freed->reason());
        text += '}';
    }
    out.write(text + fmt::format("], \"stopped\": {}\n}}\n", ending != Ending::Whole));
}

void printListing(Output& out, const Shown& shown, bool colour) {
    const std::string_view strong = colour ? "\x1b[1m" : "";
    const std::string_view plain = colour ? "\x1b[0m" : "";
    const auto line = [&](std::string_view what, std::uint64_t bytes, std::string_view meaning) {
        out.write(fmt::format("{:<10}{}{:>10}{}{}{}\n", what, strong,
                              UtilityFunction::covertCleanMemory(bytes), plain,
                              meaning.empty() ? "" : "  ", meaning));
    };
    const _MEMORY_INFO& info = shown.info;
    line("Total", info.totalMem, "");
    line("Used", info.usedMem, "all but the free");
    line("Free", info.freeMem, "nothing is in it");
    line("Active", info.activeMem, "what programs work on");
    line("Inactive", info.inactiveMem, "copies of files, given up when memory is wanted");
    line("Wired", info.wiredMem, "the system's own");
    if (shown.state.available)
        line("Available", *shown.state.available, "what programs can have at once");
    const std::string swap = UtilityFunction::covertCleanMemory(shown.state.swapTotal);
    if (shown.state.swapTotal != 0)
        line("Swap", shown.state.swapUsed, fmt::format("of {} is written to disk", swap));
    if (shown.state.pressure)
        out.write(fmt::format("{:<10}{}{:>8.2f} %{}  {}\n", "Pressure", strong,
                              *shown.state.pressure, plain,
                              "of the last minute some program waited for memory"));
}

void printFreed(Output& out, const Freed& freed) {
    if (freed.status != 0 || freed.ending != Ending::Whole) return;  // nothing is known of it
    if (freed.outlook == PurgeOutlook::NoRoom) {
        out.write(
            "\nNothing was taken: there is no room left for it here, or the system does not tell "
            "how much.\n");
        return;
    }
    if (freed.outlook == PurgeOutlook::WithinFree) {
        out.write(
            "\nNothing had to be given up: as much as one run takes was free, and programs could "
            "have used it anyway.\n");
        return;
    }
    out.write(
        fmt::format("\n{} freed: {} were free before, {} are now. Programs could have used "
                    "it anyway.\n",
                    UtilityFunction::covertCleanMemory(freed.gained()),
                    UtilityFunction::covertCleanMemory(freed.before),
                    UtilityFunction::covertCleanMemory(freed.after)));
}

}  // namespace

std::vector<OptionSpec> MemoryCommand::options() const {
    return {{"--free", "", "Free memory first, and tell how much was gained"}};
}

Status MemoryCommand::run(const Arguments& arguments) {
    if (arguments.has("print0")) return badUsage("there are no paths to print with -0");
    ClearMemory memory(m_memory, m_programs);
    Shown shown;
    if (arguments.has("free")) shown.freed = free(memory);
    else memory.getMemoryInfo(nullptr);
    shown.info = memory.meminfo();
    const auto state = m_memory.state();
    if (shown.info.totalMem == 0 || !state) {
        complain("the system does not tell what its memory is used for");
        return Status::NoSuchFolder;
    }
    shown.state = *state;

    Output out(STDOUT_FILENO);
    const Ending ending = shown.freed ? shown.freed->ending : Ending::Whole;
    if (arguments.has("json")) {
        printJson(out, shown, ending);
    } else {
        printListing(out, shown, wantsColour(STDOUT_FILENO));
        if (shown.freed) printFreed(out, *shown.freed);
    }
    const Status status = finish(out, {}, ending);
    if (!shown.freed || !shown.freed->hasFailed()) return status;
    complain(fmt::format("{}: {}", shown.freed->program, shown.freed->reason()));
    return Status::SomeSkipped;
}

}  // namespace orrinvale::cli
