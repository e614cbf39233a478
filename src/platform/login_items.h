// LoginItems: what the desktop starts when this person logs in. engine/loginitems has the functions
// over it; linux/LinuxLoginItems.h names the folders of Linux.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/error.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Statuses besides 0.
inline constexpr std::int32_t errAETimeout = -1712;       ///< who keeps the list is busy; ask again
inline constexpr std::int32_t errLoginItemMissing = -43;  ///< nothing stands at that path
inline constexpr std::int32_t errLoginItemIO = -36;       ///< it could not be read or written
inline constexpr std::int32_t errLoginItemName = -50;     ///< a path that nothing can be started by

/// One program as a login may start it. Paths and names are exact bytes.
struct LoginItemRecord {
    std::string file;                 ///< what decides: the person's own entry, else the system's
    std::string fileName;             ///< its identity
    std::string name;                 ///< for people, in their language
    std::string path;                 ///< what it starts, as far as that can be told
    std::string command;              ///< as it is written there
    std::string icon;                 ///< a name of the icon theme, or the path of a picture
    std::string fault;                ///< why nobody can start it; empty where it can be
    std::vector<std::string> onlyIn;  ///< desktops; empty for all
    bool isPersons = false;           ///< an entry in the person's own folder decides
    bool isSystems = false;           ///< the system has one of that name
    bool isOurs = false;              ///< it was made here
    bool isDeleted = false;           ///< marked so, which is how an entry of the system is put out
    bool starts = false;              ///< at the next login, on this desktop
    bool startsHidden = false;        ///< asked to show no window then
    bool isForThisDesktop = true;     ///< false: this desktop never starts it
    std::optional<FileAttributes> seen = std::nullopt;  ///< `file`, before it was read
};

/// Whether it is an item of the list that people mean: their own, and not deleted.
[[nodiscard]] inline bool isItem(const LoginItemRecord& record) {
    return record.isPersons && !record.isDeleted && !record.command.empty();
}

/// One service that is enabled for the person's own systemd.
struct BackgroundService {
    std::string name;         ///< "pipewire.service"
    std::string description;  ///< for people; empty where its unit says none
    std::string file;         ///< of the unit
    bool isPersons = false;   ///< enabled by the person, not by the system
    friend bool operator==(const BackgroundService&, const BackgroundService&) = default;
};

/// Where entries are kept.
struct LoginItemFolders {
    std::string persons;                 ///< may be missing
    std::vector<std::string> systems;    ///< in the order in which they count
    std::string links;                   ///< for names that no command can hold
    std::vector<std::string> desktops;   ///< that run now, as entries name them
    std::vector<std::string> languages;  ///< "de_AT", "de"; the favourite first
    std::vector<std::string> programs;   ///< where programs are looked for by name
    std::string ownProgram;              ///< the path of the window program
};

/// All operations read or write disks and are for a thread that may wait. Any thread; several
/// programs may change the entries at once.
class LoginItems {
public:
    virtual ~LoginItems() = default;

    /// All of them, by file name: the items first, then what else the person has, then what the
    /// system alone has.
    /// `status` is 0, or errAETimeout, or why there is no list, which is then empty.
    [[nodiscard]] virtual std::vector<LoginItemRecord> list(std::int32_t& status) const = 0;

    /// What add() lists for the path: for an entry of this very program the program.
    [[nodiscard]] virtual std::string pathToAdd(const std::string& path) const { return path; }

    /// Has the path started at each login from now on: a program, an entry, which is copied, or
    /// what another program opens. Where it is listed already it is switched on. 0 or a status.
    [[nodiscard]] virtual std::int32_t add(const std::string& path, bool hidden) = 0;

    /// Switches one without taking it off the list. All else that its entry says stays.
    [[nodiscard]] virtual Result<void> setStarts(const std::string& fileName, bool starts) = 0;

    /// Whether it is asked to start hidden. Only entries that were made here hold this.
    [[nodiscard]] virtual Result<void> setHidden(const std::string& fileName, bool hidden) = 0;

    /// Folders in which a change may change the list.
    [[nodiscard]] virtual const LoginItemFolders& folders() const = 0;

protected:
    LoginItems() = default;
    LoginItems(const LoginItems&) = default;
    LoginItems& operator=(const LoginItems&) = default;
};

}  // namespace orrinvale
