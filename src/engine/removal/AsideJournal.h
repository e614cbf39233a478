// AsideJournal: which entries a removal has set aside, on the disk before it does so. A removal
// that is killed, or whose machine loses power, leaves each entry gone, under its own name, or
// aside; the next start finds the journal and brings back what is aside.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/files/EntryIdentity.h"
#include "engine/files/RemovalResult.h"
#include "platform/descriptor.h"
#include "platform/error.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// One entry that is aside, or is about to be.
struct AsideRecord {
    std::string token;  ///< asideTokenLength hexadecimal digits; with the name it makes the name
                        ///< that the entry has then
    std::string path;   ///< its own, absolute, exact bytes
    std::uint64_t device = 0;  ///< of its folder; layers give files other ones
    std::uint64_t inode = 0;   ///< of the entry
    FileType type = FileType::Unknown;
    bool isReplaced = false;  ///< another name of a copy takes its name before it goes
    friend bool operator==(const AsideRecord&, const AsideRecord&) = default;
};

/// The journal of one removal: a file of this user alone (0600), locked as long as the object
/// lives. One thread.
class AsideJournal final {
public:
    /// A new one in this folder, which is made (0700) if it is not there.
    [[nodiscard]] static Result<AsideJournal> begin(const std::string& folder);

    /// Adds the records; they are on the disk when it returns with success. After a failure nothing
    /// may be set aside.
    [[nodiscard]] Result<void> add(std::span<const AsideRecord> records);

    /// Everything that was set aside is settled: the file goes. Without this call it stays for the
    /// next start. Call it when the removals themselves are on the disk.
    void settle();

    AsideJournal(AsideJournal&&) noexcept = default;
    AsideJournal& operator=(AsideJournal&&) = delete;
    AsideJournal(const AsideJournal&) = delete;
    AsideJournal& operator=(const AsideJournal&) = delete;
    ~AsideJournal() = default;

private:
    AsideJournal(std::string path, Descriptor file)
        : m_path(std::move(path)), m_file(std::move(file)) {}

    std::string m_path;
    Descriptor m_file;
};

/// What the next start made of the journals of removals that ended in the middle.
struct AsideRecovery {
    std::vector<std::string> broughtBack;  ///< own paths
    std::vector<StayedEntry>
        stayed;  ///< under their places aside; told once, and no more looked for
    std::size_t later =
        0;  ///< on volumes that are absent or can not be read now: kept for a later start
};

/// Brings back what the journals in this folder name, where it still is that entry, never over
/// anything. Journals whose removal still runs are left alone. Cheap where there are none. Any
/// thread; two at once do no harm.
[[nodiscard]] AsideRecovery bringBackAside(const FileSystem& files, const std::string& folder);

/// The folder of the journals of this user, below `stateFolder`.
[[nodiscard]] std::string asideJournalFolder(const std::string& stateFolder);

/// A journal's text. What is no whole record is left out, as the end of one that was written when
/// the power went; so is a record whose path could lead anywhere else than it says.
[[nodiscard]] std::vector<AsideRecord> parseAsideJournal(std::string_view text);
[[nodiscard]] std::string writeAsideJournal(std::span<const AsideRecord> records);

inline constexpr std::size_t mostJournalBytes =
    std::size_t{1} << 30U;  ///< millions of records; what is longer is not ours

/// Tokens of one removal: the same beginning by chance, and a number.
class AsideTokens final {
public:
    AsideTokens();
    [[nodiscard]] std::string next();

private:
    std::uint64_t m_next;
};

}  // namespace orrinvale
