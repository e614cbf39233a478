// TrashFolder: one trash, held open: its folders "files" and "info", and the record that each entry
// in the first has in the second.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <vector>

#include "engine/files/HeldEntry.h"
#include "platform/descriptor.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Each object belongs to one thread; the file system must outlive it.
class TrashFolder final {
public:
    /// Why an entry stays where it is.
    struct Failure {
        std::string reason;
        bool isElsewhere =
            false;  ///< this trash is on another volume, so that a further one is worth a try
        bool isLeftInTrash = false;  ///< it moved, and its name could not be given back to it
    };

    /// A folder of this name in `parent`, made for the user alone if it is not there. Nothing, with
    /// the reason for people, when it, or what is in it, is a link or another user's: it may have
    /// been put there to have files fall into other hands.
    [[nodiscard]] static tl::expected<TrashFolder, std::string> open(const FileSystem& files,
                                                                     int parent,
                                                                     const std::string& name,
                                                                     uid_t user);

    /// Records of it hold paths relative to this folder, the root of a volume; before that absolute
    /// ones.
    void keepRelativeTo(std::string root) { m_root = std::move(root); }

    /// Asked when the entry is in the trash, with what is known of it then; a reason brings it
    /// back. Empty where nobody asks.
    using LastLook = std::function<std::optional<std::string>(const FileAttributes& moved)>;

    /// The folder that an entry leaves.
    struct Leaving {
        std::string place;          ///< its path without links
        FileAttributes attributes;  ///< its own
    };
    /// When a record becomes durable: before anything moves, or by a sync of holdRecords().
    enum class Records : std::uint8_t { Now, Later };

    /// Moves the entry, and writes its record first. The path that it has then.
    [[nodiscard]] tl::expected<std::string, Failure> take(const HeldEntry& held,
                                                          const Leaving& from,
                                                          const LastLook& lastLook,
                                                          Records records) const;

    /// The folder of the records, to be synced with its file system.
    [[nodiscard]] SysResult<Descriptor> holdRecords() const;

    /// What lies in it.
    struct Trashed {
        std::string name;  ///< in the trash
        FileAttributes attributes;
        bool inodePasses = false;  ///< by the next look it may have another number; list() says no
    };
    [[nodiscard]] SysResult<std::vector<Trashed>> list() const;
    /// Of an entry in it, at this moment.
    [[nodiscard]] SysResult<FileAttributes> attributesOf(const std::string& name) const;
    /// The path of an entry in it.
    [[nodiscard]] std::string placeOf(const std::string& name) const;

    /// Where the entry of this name was, by its record, without links. Nothing where the trash has
    /// no record of it, or one that does not tell; an empty text for an empty one, as it is left
    /// where the power went before it was on the disk.
    [[nodiscard]] std::optional<std::string> origin(const std::string& name) const;

    /// Why an entry is not back.
    struct NotBack {
        std::string reason;
        bool isOtherOut = false;  ///< what came into its place left the trash, and could not return
    };
    /// Gives an entry the name that it had in a held folder, never over anything, and drops its
    /// record, by which the caller knows that it belongs there. Why it stays in the trash: among
    /// others that it is another entry by now.
    [[nodiscard]] std::optional<NotBack> giveBack(const Trashed& entry, int folder,
                                                  const std::string& name) const;

    TrashFolder(TrashFolder&&) noexcept = default;
    TrashFolder& operator=(TrashFolder&&) = delete;
    TrashFolder(const TrashFolder&) = delete;
    TrashFolder& operator=(const TrashFolder&) = delete;
    ~TrashFolder() = default;

private:
    explicit TrashFolder(const FileSystem& files) : m_files(&files) {}

    [[nodiscard]] std::optional<std::string> objection(const HeldEntry& held,
                                                       const FileAttributes& parent) const;
    [[nodiscard]] int writeRecord(const std::string& name, const std::string& text,
                                  Records records) const;
    [[nodiscard]] std::string recordOf(const std::string& place) const;
    [[nodiscard]] std::optional<Failure> check(const HeldEntry& held, int entry,
                                               const std::string& name,
                                               const LastLook& lastLook) const;
    void dropRecord(const std::string& name) const;

    const FileSystem* m_files;
    Descriptor m_entries;  // "files"
    Descriptor m_records;  // "info"
    FileAttributes m_entriesSeen;
    FileAttributes m_recordsSeen;
    std::string m_place;  // of the entries, when it was opened
    std::string m_root;
};

/// A name for an entry in the trash: the entry's own at the first attempt, numbered before the
/// extension at later ones, and cut between two characters where the name of its record would be
/// too long.
[[nodiscard]] std::string nameInTrash(std::string_view name, std::uint64_t attempt);

/// Whether that may be the name in the trash of an entry that had this one.
[[nodiscard]] bool isNameInTrash(std::string_view name, std::string_view trashed);

}  // namespace orrinvale
