// StartRequest: what somebody wants who starts the program: its window, a folder searched, or one
// of its actions. instance.h hands it to a program that runs already.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orrinvale {

/// The names of the actions.
namespace startAction {
inline constexpr std::string_view duplicates = "duplicates";
inline constexpr std::string_view largeFiles = "large-files";
inline constexpr std::string_view clean = "clean";  ///< the page that cleans
inline constexpr std::string_view fastClean =
    "fast-clean";                                           ///< its window, which waits for a click
inline constexpr std::string_view uninstall = "uninstall";  ///< shows that page
inline constexpr std::string_view diskUsage =
    "disk-usage";  ///< the page; with a folder by withFolder()
inline constexpr std::string_view freeSpace = "free-space";     ///< the page
inline constexpr std::string_view preferences = "preferences";  ///< likewise
inline constexpr std::string_view ejectAll = "eject-all";
inline constexpr std::string_view memory = "memory";           ///< the page
inline constexpr std::string_view loginItems = "login-items";  ///< likewise
inline constexpr std::string_view quit = "quit";
inline constexpr std::string_view atLogin =
    "at-login";  ///< asked for by an option of its own: a login has started it

/// What a person may ask for from outside of the window. None of them removes anything.
inline constexpr std::array all{duplicates,  largeFiles, clean,    diskUsage,
                                uninstall,   freeSpace,  memory,   loginItems,
                                preferences, fastClean,  ejectAll, quit};

/// An action with the folder that it is for: the name, a blank, and the folder's address, so that
/// exact bytes come through wherever names of actions do.
[[nodiscard]] std::string withFolder(std::string_view action, std::string_view folder);
}  // namespace startAction

struct StartRequest {
    enum class Kind : std::uint8_t { Activate, Open, Action };

    Kind kind = Kind::Activate;
    std::string
        text;  ///< Open: the absolute path of a folder, exact bytes; Action: the action's name
    std::string activationToken;  ///< the desktop's leave to come to the front (XDG activation);
                                  ///< may be empty

    [[nodiscard]] bool isAction(std::string_view name) const {
        return kind == Kind::Action && text == name;
    }

    /// The folder behind the name of that action; nothing for another action, or without one.
    [[nodiscard]] std::optional<std::string> folderOfAction(std::string_view name) const;

    friend bool operator==(const StartRequest&, const StartRequest&) = default;
};

/// Longer ones are not sent and not read: a path of the kernel's has 4096 bytes at most, and deeper
/// ones nobody types.
inline constexpr std::size_t startRequestLimit = 64 * 1024;

/// One packet, and back. Nothing for what is no request: an unknown kind, a relative path, an empty
/// name, bytes behind the end.
[[nodiscard]] std::string printStartRequest(const StartRequest& request);
[[nodiscard]] std::optional<StartRequest> parseStartRequest(std::string_view packet);

}  // namespace orrinvale
