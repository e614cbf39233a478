// orrinvale-cli clean: what cleaning would take from this machine, what it leaves and why, and the
// cleaning itself.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/CleanReport.h"
#include "cli/Command.h"
#include "platform/linux/LinuxFolders.h"

namespace orrinvale {
class FolderUtilities;
class Volumes;
}  // namespace orrinvale

namespace orrinvale::cli {

enum class Telling : std::uint8_t;
enum class Ending : std::uint8_t;

/// Lists all categories, or those that were named. Nothing is removed without being asked for.
class CleanCommand final : public Command {
public:
    /// Both must outlive the command.
    CleanCommand(const FileSystem& files, Volumes& volumes);
    ~CleanCommand() override;

    [[nodiscard]] std::string_view name() const override { return "clean"; }
    [[nodiscard]] std::string_view summary() const override {
        return "List what cleaning would remove, and what stays and why; or remove it";
    }
    [[nodiscard]] std::string_view description() const override;
    [[nodiscard]] std::vector<OptionSpec> options() const override;

    Status run(const Arguments& arguments) override;

private:
    struct Scanned {
        std::vector<ScannedCategory> categories;
        Ending ending{};
        bool isSilent = false;  // a thread waits for a disk that does not answer
    };
    [[nodiscard]] CleanParts parts() const;
    [[nodiscard]] Scanned scan(const std::vector<CleanCategory>& wanted, Telling telling);
    [[nodiscard]] static Status print(const Arguments& arguments, const Scanned& scanned);
    [[nodiscard]] Status remove(const Arguments& arguments, const Scanned& scanned);
    [[nodiscard]] std::optional<std::string> changeKeepList(const Arguments& arguments) const;

    const FileSystem& m_files;
    const LinuxFolders m_folders;
    const std::shared_ptr<const FolderUtilities> m_utilities;
};

}  // namespace orrinvale::cli
