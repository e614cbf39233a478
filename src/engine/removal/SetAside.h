// SetAside: how a copy goes. It gets another name in its own folder first; then both it and the
// copy that stays are looked at again; only then it is removed, or gets its own name back. Between
// a look and a removal by name there is always a moment in which the name may come to mean
// something else; nobody knows the new name, so that what was looked at is what goes.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <vector>

#include "engine/files/EntryIdentity.h"
#include "engine/files/HeldEntry.h"
#include "engine/files/RemovalResult.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// The copy that has to stand while another one goes.
struct KeptCopy {
    std::string path;        ///< absolute, exact bytes
    EntryIdentity identity;  ///< as the scan saw it
};

/// What the file systems of one removal allow; asked of each once. One thread.
class RenameGround final {
public:
    explicit RenameGround(const FileSystem& files);

    /// Whether a power cut in the middle of a rename leaves one of the two names.
    [[nodiscard]] bool isSafe(int folder, std::uint64_t device);
    /// Whether inode numbers of the device tell entries apart.
    [[nodiscard]] bool inodesLast(std::uint64_t device) const;
    /// Whether what a folder of the device shows is served by a program or another machine, so that
    /// nobody can tell from its numbers whether two entries are one.
    [[nodiscard]] bool isServed(int folder, std::uint64_t device);
    /// Makes all renames and removals on them durable.
    void flush() const;

private:
    struct Device {
        bool isSafe = true;
        Descriptor folder;  // open for syncing; not open where it may not be read
    };

    const FileSystem& m_files;
    const std::vector<std::uint64_t> m_passing;
    std::map<std::uint64_t, Device> m_devices;
    std::map<std::uint64_t, bool> m_served;
};

/// One entry. One thread; what is handed over outlives it.
class SetAside final {
public:
    SetAside(const FileSystem& files, RenameGround& ground, const HeldEntry& held)
        : m_files(files), m_ground(ground), m_held(held) {}
    SetAside(const SetAside&) = delete;
    SetAside& operator=(const SetAside&) = delete;

    /// Renames the entry to asideName(token, name) if it still is, in whole, what `held` says.
    /// False when this folder's file system knows no rename at all, or has no room for the longer
    /// name: nothing was touched, and the removal has to do without. A reason, when the entry is to
    /// stay; it then has its own name, or it is told with its place. Once.
    [[nodiscard]] tl::expected<bool, StayedEntry> take(std::string_view token);

    /// The name that it has now.
    [[nodiscard]] const std::string& name() const { return m_name; }

    /// Why the entry must not go, or nothing: what is aside is still what was taken, and the copy
    /// that stays stands at its own path, looked up anew, as it was, as another entry. A second
    /// view of the same folder (layers, bind mounts, what programs serve) shows our new name, the
    /// new time of change, or no copy any more.
    [[nodiscard]] std::optional<StayedEntry> objection(const std::optional<KeptCopy>& kept);

    /// Gives the entry its own name back, never over anything. Nothing when it has it, or when
    /// somebody took the entry away; else the place where it stays, with the reason.
    [[nodiscard]] std::optional<StayedEntry> putBack();

    /// The time of change of the file by now: after it came back, and for its other names after it
    /// went. Nothing where nothing of it is left.
    [[nodiscard]] std::optional<std::int64_t> changedByUs(bool isGone) const;

private:
    [[nodiscard]] bool isSameEntry(const FileAttributes& a, const FileAttributes& b) const;
    [[nodiscard]] std::optional<StayedEntry> objectionToEntry();
    [[nodiscard]] std::optional<StayedEntry> objectionToCopy(const KeptCopy& kept) const;
    [[nodiscard]] StayedEntry stays(StayReason kind, std::string reason) const;
    [[nodiscard]] StayedEntry staysWith(int error) const;

    const FileSystem& m_files;
    RenameGround& m_ground;
    const HeldEntry& m_held;
    Descriptor
        m_entry;  // held from before the rename, so that its inode number is not given to another
    std::string m_name;
    FileAttributes m_now;  // of the held entry, at the last look
};

/// Gives what is aside its own name back, never over anything: EEXIST. Where a file system neither
/// promises that nor knows second names, the look and the rename are two steps.
[[nodiscard]] SysResult<void> giveNameBack(const FileSystem& files, int folder,
                                           const std::string& aside, const std::string& own);

/// What a look without setting aside can tell of the copy that stays: it stands at its own path, as
/// it was, and is another entry than the one that goes. Nothing when it does; else the reason, for
/// the path of the one that goes.
[[nodiscard]] std::optional<StayedEntry> objectionToCopyInPlace(const FileSystem& files,
                                                                const HeldEntry& leaving,
                                                                const KeptCopy& kept);

/// The same where nothing can be set aside and nobody looks again afterwards: two views of one
/// place show one entry under two numbers, so that neither of the two may be served.
[[nodiscard]] std::optional<StayedEntry> objectionWithoutRename(const FileSystem& files,
                                                                RenameGround& ground,
                                                                const HeldEntry& leaving,
                                                                const KeptCopy& kept);

}  // namespace orrinvale
