// orrinvale-cli cache: what searches for duplicates remember, in the terminal.
#pragma once

#include "cli/Command.h"

namespace orrinvale::cli {

class CacheCommand final : public Command {
public:
    [[nodiscard]] std::string_view name() const override { return "cache"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Show or forget what searches for duplicates remember";
    }
    [[nodiscard]] std::string_view description() const override;
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;
};

}  // namespace orrinvale::cli
