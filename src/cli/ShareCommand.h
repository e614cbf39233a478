// orrinvale-cli share: copies give their bytes up for those of the copy that stays; nothing goes.
#pragma once

#include <memory>
#include <tl/expected.hpp>
#include <vector>

#include "cli/Command.h"
#include "cli/DuplicatesCommand.h"
#include "cli/ShareReport.h"

namespace orrinvale {
struct DuplicatePlan;
struct ShareOutlook;
class ShareList;
}  // namespace orrinvale

namespace orrinvale::cli {

class ShareCommand final : public Command {
public:
    /// `files` must outlive the command.
    explicit ShareCommand(const FileSystem& files) : m_files(files), m_duplicates(files) {}

    [[nodiscard]] std::string_view name() const override { return "share"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Let copies have their space on the disk in common instead of removing them";
    }
    [[nodiscard]] std::string_view description() const override;
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    [[nodiscard]] tl::expected<DuplicatePlan, Status> planFor(const Arguments& arguments,
                                                              std::vector<Error>& skipped) const;
    [[nodiscard]] tl::expected<DuplicatePlan, Status> searched(const Arguments& arguments,
                                                               std::vector<Error>& skipped) const;
    [[nodiscard]] tl::expected<ShareOutlook, Status> look(const Arguments& arguments,
                                                          const DuplicatePlan& plan) const;
    [[nodiscard]] Status share(const Arguments& arguments, const std::shared_ptr<ShareList>& list,
                               ShareAccount account) const;

    const FileSystem& m_files;
    const DuplicatesCommand m_duplicates;
};

}  // namespace orrinvale::cli
