// DesktopEntry: what a file in the format of the Desktop Entry Specification says, and what its
// command line starts. DesktopEntries.h finds the files.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orrinvale {

/// The keys that tell an application. Escapes are resolved; texts end at the first NUL.
struct DesktopEntry {
    std::string name;  ///< in the first of the languages that the file has, else the plain one
    std::string exec;
    std::string tryExec;
    std::string icon;
    std::string version;  ///< that an AppImage's entry bears
    bool isApplication = false;
    bool isHidden = false;  ///< Hidden or NoDisplay

    /// Reads the group "[Desktop Entry]" and no other; lines that make no sense count for nothing.
    /// Nothing when there is no such group.
    [[nodiscard]] static std::optional<DesktopEntry> parse(
        std::string_view text, const std::vector<std::string>& languages);
};

/// The largest entry that is read, in bytes.
inline constexpr std::size_t kDesktopEntryLimit = std::size_t{256} * 1024;

/// The words of a command line, quotes resolved, codes for files and the like left out, the home
/// folder in the place of its variable. Empty when a quote is not closed.
[[nodiscard]] std::vector<std::string> execWords(std::string_view exec, const std::string& home);

/// What a command line starts in the end.
struct StartedProgram {
    std::string program;  ///< behind env, wrappers and shells; of an interpreter its script
    std::string flatpak;  ///< the id that `flatpak run` is given
    std::string snap;     ///< the name of the snap whose command it is
    /// With no program in it where nobody can tell.
    [[nodiscard]] static StartedProgram of(const std::vector<std::string>& words,
                                           const std::string& home);
};

}  // namespace orrinvale
