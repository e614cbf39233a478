// RootJournal: what the helper has set aside, where only root can read and write it. Read
// engine/removal/AsideJournal.h first.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/removal/AsideJournal.h"

namespace orrinvale::helper {

/// The journal of one session. The folder is made at its first use, and taken away with the last
/// journal in it. A folder that others than root could have made or written is not used. One
/// thread.
class RootJournal final {
public:
    static constexpr const char* usualFolder = "/var/lib/orrinvale";

    explicit RootJournal(std::string folder = usualFolder) : m_folder(std::move(folder)) {}

    /// Why there is none, or nothing when there is one by now. Before the processes that write to
    /// it are forked.
    [[nodiscard]] std::optional<std::string> open();

    /// Makes durable that this entry is about to be set aside; the token of its name, or nothing
    /// where it must not be. In whatever process was forked after open().
    [[nodiscard]] std::optional<std::string> add(AsideRecord record);

    /// Remembers the volume of an entry that went through here, for settle().
    void touched(std::uint64_t device, std::string_view path);

    /// Makes durable what was removed, and removes the journal then. What a volume does not allow
    /// stays for the next start.
    void settle();

    /// Brings back what sessions left aside that were killed; lines about it for the log.
    [[nodiscard]] std::vector<std::string> bringBack() const;

    /// Whether there may be anything to settle or to bring back.
    [[nodiscard]] bool isOpen() const { return m_journal.has_value(); }
    [[nodiscard]] bool hasFolder() const;

private:
    [[nodiscard]] std::optional<std::string> objectionToFolder() const;

    const std::string m_folder;
    std::optional<AsideJournal> m_journal;
    std::map<std::uint64_t, std::string> m_volumes;  // by device, to a folder on it
};

}  // namespace orrinvale::helper
