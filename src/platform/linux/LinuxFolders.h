// Folders by the desktop's base directories and its trash. Read platform/folders.h first.
#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "platform/FolderVariables.h"
#include "platform/folders.h"

namespace orrinvale {

/// Caches and logs of the system are /var/cache and /var/log.
class LinuxFolders final : public Folders {
public:
    explicit LinuxFolders(FolderVariables variables = FolderVariables::ofThisProcess());

    [[nodiscard]] std::string home() const override;
    [[nodiscard]] std::string systemCaches() const override { return "/var/cache"; }
    [[nodiscard]] std::string userCaches() const override;
    [[nodiscard]] std::string systemLogs() const override { return "/var/log"; }

    /// ~/.var/app/ID/cache of flatpak and ~/snap/NAME/common/.cache, by name.
    [[nodiscard]] std::vector<std::string> programCaches() const override;

    /// Of this list, what is there: "log" and "logs" in $XDG_STATE_HOME; "xorg" (the X server's,
    /// when a user starts it) and "sddm" (a session's output) in $XDG_DATA_HOME; "Code/logs" in
    /// $XDG_CONFIG_HOME; .npm/_logs; "logs" of other programs made with Electron, by their names;
    /// the file .xsession-errors.old.
    [[nodiscard]] std::vector<std::string> userLogs() const override;

    /// XDG_DOWNLOAD_DIR of user-dirs.dirs, else Downloads in the home folder.
    [[nodiscard]] std::string downloads() const override;

    /// The home, the base directories, and all that user-dirs.dirs names but the downloads.
    [[nodiscard]] std::vector<std::string> otherUserFolders() const override;

    [[nodiscard]] std::string homeTrash() const override;

    /// $topdir/.Trash/$uid and $topdir/.Trash-$uid, the first only below a real folder with the
    /// sticky bit; both only as real folders of this user. Anything else may have been put there to
    /// have other folders emptied.
    [[nodiscard]] std::vector<std::string> volumeTrash(const std::string& root) const override;

    [[nodiscard]] std::optional<std::string> trashRecordOf(const std::string& path) const override;

private:
    [[nodiscard]] std::string below(const std::string& chosen, const char* usual) const;
    [[nodiscard]] std::string userDirs() const;

    const FolderVariables m_variables;
};

/// The folders that all XDG_..._DIR but XDG_DOWNLOAD_DIR name in the text of a user-dirs.dirs, read
/// as downloadsIn() reads them.
[[nodiscard]] std::vector<std::string> otherFoldersIn(std::string_view userDirs,
                                                      const std::string& home);

/// The value of XDG_DOWNLOAD_DIR in the text of a user-dirs.dirs: the last one that is an absolute
/// path, or begins with $HOME. Nothing when there is none. No other part of the shell's language is
/// understood. No slash at its end.
[[nodiscard]] std::optional<std::string> downloadsIn(std::string_view userDirs,
                                                     const std::string& home);

}  // namespace orrinvale
