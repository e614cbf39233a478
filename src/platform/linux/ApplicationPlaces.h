// ApplicationPlaces: where a Linux machine keeps what tells of its applications, and the few ways
// in which their files are read.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FolderVariables.h"

namespace orrinvale {

/// Absolute paths; none of them need exist.
struct ApplicationPlaces {
    std::string home;
    std::string dataHome;
    std::vector<std::string> dataFolders;     ///< the person's own first; entries of an earlier one
                                              ///< stand before those of a later one
    std::vector<std::string> programFolders;  ///< where programs are looked for
    std::vector<std::string> languages;       ///< "de_AT@euro", "de_AT", "de@euro", "de"
    std::string dpkg;
    std::vector<std::string> flatpaks;  ///< installations: this person's own, the usual shared one,
                                        ///< and what the administrator has added
    std::string flatpakInstances;
    std::string snapSocket;
    std::string snapFolder;  ///< /snap
    std::vector<std::string> appImageFolders;
    std::vector<std::string> folderHolders;   ///< whose folders are plain applications
    std::string processes;                    ///< /proc
    std::string ownProgram;                   ///< the path of this program
    std::vector<std::string> sessionFolders;  ///< entries of the desktops that can be logged in to
    std::string displayManagerUnit;           ///< a link to the unit of what people log in by
    std::string displayManagerFile;           ///< says the path of its program
    std::string displaySocket;                ///< of this session's compositor; empty without one

    [[nodiscard]] static ApplicationPlaces ofThisMachine(
        const FolderVariables& variables = FolderVariables::ofThisProcess());
};

/// The languages of a locale as desktop entries are asked for them, the closest first: "de_AT",
/// "de".
[[nodiscard]] std::vector<std::string> languagesOf(const std::string& locale);

/// The installations of flatpak that one file of an administrator names, absolute, as
/// flatpak-installation(5) writes them.
[[nodiscard]] std::vector<std::string> installationsIn(std::string_view text);

/// The bytes of a regular file, links followed; nothing for what is longer than `limit`, is no
/// file, or can not be read. Nothing holds the caller up.
[[nodiscard]] std::optional<std::string> readRegularFile(const std::string& path,
                                                         std::size_t limit);

/// When the entry at a path was made or, where nobody knows that, last changed; nothing when it is
/// not there.
[[nodiscard]] std::optional<std::int64_t> madeAt(const std::string& path);

/// When the file at a path was last read; nothing where the file system keeps no such time.
[[nodiscard]] std::optional<std::int64_t> lastReadAt(const std::string& path);

/// The path without links, or the path itself where it leads nowhere.
[[nodiscard]] std::string withoutLinks(const std::string& path);

}  // namespace orrinvale
