// orrinvale-cli volumes: the mounted volumes, of what kind each is and how much is free; and what
// happens to them.
#pragma once

#include "cli/Command.h"
#include "platform/volumes.h"

namespace orrinvale::cli {

class VolumesCommand final : public Command {
public:
    /// `platform` must outlive the command.
    explicit VolumesCommand(Volumes& platform) : m_platform(platform) {}

    [[nodiscard]] std::string_view name() const override { return "volumes"; }
    [[nodiscard]] std::string_view summary() const override {
        return "List the mounted volumes, their kinds and their free space";
    }
    [[nodiscard]] std::string_view description() const override {
        return "A volume that does not answer within a second is left out, and told as skipped.";
    }
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    Status list(const Arguments& arguments);
    Status watch(const Arguments& arguments);

    Volumes& m_platform;
};

}  // namespace orrinvale::cli
