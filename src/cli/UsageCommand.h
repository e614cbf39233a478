// orrinvale-cli usage: where the space of a folder has gone, level by level.
#pragma once

#include <optional>
#include <string>

#include "cli/Command.h"
#include "cli/UsageReport.h"
#include "engine/diskusage/history/ScanHistory.h"
#include "platform/fileTypes.h"
#include "platform/lastingVolume.h"

namespace orrinvale::cli {

/// The scan is always whole; the limit and the depth decide what is kept and printed of it.
class UsageCommand final : public Command {
public:
    /// `files` must outlive the command.
    explicit UsageCommand(const FileSystem& files) : m_files(files) {}

    [[nodiscard]] std::string_view name() const override { return "usage"; }
    [[nodiscard]] std::string_view summary() const override {
        return "Show where the space of a folder has gone";
    }
    [[nodiscard]] std::string_view description() const override {
        return "Prints the entries of the folder that take at least the limit, the biggest first "
               "at every level, and for each folder how many entries are below the limit and what "
               "they take together, so that each level adds up. Sizes are lengths, of a file with "
               "several names once for each; with --json the bytes on the disk stand beside them, "
               "where such a file counts once. Folders on other file systems are told and not "
               "entered, subvolumes are. A scan that --remember has kept, for this user alone, is "
               "what --since compares with: it prints what grew, shrank, came and went, the "
               "biggest "
               "change first, and where one entry far below is the reason of most of it, that one; "
               "with -0 not what is gone. Folders are compared to the byte, files of at least 1 MB "
               "one by one, both from a larger size on where names are very long: what was smaller "
               "in one of the two scans can not be told from what is new or gone. At most 12 scans "
               "of a folder are kept.";
    }
    [[nodiscard]] std::vector<OptionSpec> options() const override;
    Status run(const Arguments& arguments) override;

private:
    Status forget(const Arguments& arguments) const;
    Status runSince(const Arguments& arguments, const UsageExtent& extent, const std::string& root);
    [[nodiscard]] std::optional<VolumeName> volumeOf(const std::string& root) const;
    Status compareNow(const Arguments& arguments, const UsageExtent& extent,
                      const ScanHistory::Place& place, const StoredScan* before);

    const FileSystem& m_files;
};

}  // namespace orrinvale::cli
