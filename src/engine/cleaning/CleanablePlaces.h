// CleanablePlaces: the one judge of what cleaning may take, and of what must stay because nothing
// makes it again. CleanWalk asks it about each entry; docs/cleaning.md tells users the same.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "engine/cleaning/CleanCategory.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Why a row stays, the weightier reason first: of several that hold, the first is told.
enum class KeptBecause : std::uint8_t {
    Asked,          ///< the person asked for it
    Mount,          ///< something is mounted in it
    Precious,       ///< a program known by name keeps here what it can not make again
    Open,           ///< a program has something of it open
    HiddenProgram,  ///< a program of its name runs, and does not show what it has open
    Fresh,          ///< changed a moment ago
    Changed,        ///< changed since the scan that offered it
    Document,
    Repository,
    PasswordSafe,
    Database,
    Socket,
    Partial,  ///< a download that is not complete
    Unread,   ///< a part of it could not be looked at
    TooDeep,  ///< folders in folders beyond what can be looked through
    Rule,     ///< single entries of it stay, by verdict()
    Nothing   ///< nothing keeps it
};

/// The reason in words for people; empty for Rule, which has words of its own, and Nothing.
[[nodiscard]] std::string_view wordsOf(KeptBecause reason);

/// Looks at names, types and sizes only, never at the disk. Not changed after it is made; any
/// thread.
class CleanablePlaces final {
public:
    enum class Rule {
        MayGo,         ///< it may be removed, contents included
        ContentsOnly,  ///< the folder stays; ask about each entry in it
        Stays          ///< neither it nor anything in it is removed
    };

    struct Verdict {
        Rule rule = Rule::MayGo;
        std::string_view reason;  ///< for people, why it is not MayGo; empty otherwise
    };

    /// The two folders, absolute, as FolderUtilities gives them.
    CleanablePlaces(std::string systemCaches, std::string systemLogs);

    /// The rule for an entry below one of the two folders, or for these themselves, whichever
    /// category lists it. Everything else may go as far as this is concerned. `path` is absolute;
    /// one with a "." or ".." in it stays, wherever it leads.
    [[nodiscard]] Verdict verdict(std::string_view path, FileType type) const;

    /// Whether verdict() has anything to say about what is at this path or below it.
    [[nodiscard]] bool isOfTheSystem(std::string_view path) const;

    /// Why an entry of this name keeps the whole row that it is in or that it is; Nothing for most.
    /// The trash may hold anything, since somebody threw it away.
    [[nodiscard]] static KeptBecause keepsRow(CleanCategory category, std::string_view name,
                                              FileType type, std::uint64_t size);

    /// Whether what a program has open keeps a row of this category.
    [[nodiscard]] static bool isMindfulOfPrograms(CleanCategory category) {
        return category == CleanCategory::UserCaches || category == CleanCategory::UserLogs ||
               category == CleanCategory::UserDownloads;
    }

    /// Whether the name is that of a log by its day, not packed: rotated, or written directly.
    [[nodiscard]] static bool isDatedLog(std::string_view name);

    /// Whether a file may be a database, by its ending or since it is made of whole pages.
    [[nodiscard]] static bool mayBeDatabase(std::string_view name, std::uint64_t size);

    /// Whether keepsRow() has to know the size of an entry of this name.
    [[nodiscard]] static bool isJudgedBySize(std::string_view name);

    /// The names by which a program would call a row in a folder of the user's caches: the row's
    /// own, and that of the program that the folder belongs to, without what stands before the last
    /// dot. Small letters.
    struct ProgramNames {
        std::string row;
        std::string owner;
        [[nodiscard]] bool contain(std::string_view program) const {
            return !program.empty() && (row == program || owner == program);
        }
    };
    [[nodiscard]] static ProgramNames programNamesOf(std::string_view folder, std::string_view row);

    /// Whether a program keeps here what it can not make again.
    [[nodiscard]] static bool isPrecious(const ProgramNames& names);

private:
    const std::string m_caches;
    const std::string m_logs;
};

}  // namespace orrinvale
