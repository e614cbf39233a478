// orrinvale-cli memory: what the machine's memory is used for, and freeing what holds copies of
// files.
#pragma once

#include <utility>

#include "cli/Command.h"
#include "platform/memory.h"

namespace orrinvale::cli {

class MemoryCommand final : public Command {
public:
    /// `memory` outlives the command.
    MemoryCommand(const Memory& memory, PurgePrograms programs)
        : m_memory(memory), m_programs(std::move(programs)) {}

    [[nodiscard]] std::string_view name() const override { return "memory"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Show what the memory is used for, or free what is kept of files";
    }
    [[nodiscard]] std::string_view description() const override {
        return "Free, active, inactive and wired add up to the total. Inactive are copies of files "
               "that the system gives up as soon as a program wants the memory. Freeing makes it "
               "do so now, by a process that takes memory and gives it back: what programs work on "
               "stays, and files are read from the disk again the next time.";
    }
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    const Memory& m_memory;
    const PurgePrograms m_programs;
};

}  // namespace orrinvale::cli
