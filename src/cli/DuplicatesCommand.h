// orrinvale-cli duplicates: the search as the duplicate page runs it, in the terminal.
#pragma once

#include <optional>
#include <string>
#include <tl/expected.hpp>

#include "cli/Command.h"
#include "engine/duplicates/keep/KeepRule.h"
#include "engine/duplicates/scope/SearchRequest.h"
#include "platform/fileTypes.h"

namespace orrinvale {
class DuplicateFilesOpt;
}

namespace orrinvale::cli {

class DuplicatesCommand final : public Command {
public:
    /// `files` must outlive the command.
    explicit DuplicatesCommand(const FileSystem& files) : m_files(files) {}

    [[nodiscard]] std::string_view name() const override { return "duplicates"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Find files and application bundles with identical content";
    }
    [[nodiscard]] std::string_view description() const override;
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

    /// What a command takes that begins with a search: options, beside --keep and FOLDER...
    [[nodiscard]] static std::vector<OptionSpec> searchOptions();
    /// Reads them. The status of what was complained of; nothing where all is well.
    std::optional<Status> readSearch(const Arguments& arguments, SearchRequest& request,
                                     KeepRules& rules) const;
    /// Searches, and tells what was left out. The status of a folder that could not be searched.
    tl::expected<Ending, Status> runSearch(const Arguments& arguments, const SearchRequest& request,
                                           DuplicateFilesOpt& search) const;

private:
    static std::optional<std::string> readFilter(const Arguments& arguments,
                                                 SearchRequest& request);
    /// The status of what was complained of; nothing where the rules are well.
    std::optional<Status> readRules(const Arguments& arguments, KeepRules& rules) const;
    Status search(const Arguments& arguments, const SearchRequest& request, const KeepRules& rules);

    const FileSystem& m_files;
};

}  // namespace orrinvale::cli
