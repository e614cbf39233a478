// CleanablePlaces: what of the system's caches and logs may be removed, and what must stay because
// nothing makes it again. Whatever cleans asks here for each entry before it asks
// engine/files/SafeRemoval.h.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/files.h"

namespace orrinvale {

/// Looks at names and types only, never at the disk. Not changed after it is made; any thread.
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

    /// The rule for an entry below one of the two folders, or for these themselves. Everything else
    /// may go as far as this class is concerned. `path` is absolute; one with a "." or ".." in it
    /// stays, wherever it leads.
    [[nodiscard]] Verdict verdict(std::string_view path, FileType type) const;

private:
    const std::string m_caches;
    const std::string m_logs;
};

}  // namespace orrinvale
