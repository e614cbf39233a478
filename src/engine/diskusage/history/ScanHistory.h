// ScanHistory: finished scans of disk usage that are kept, so that a later one can be compared with
// them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/diskusage/history/ScanFile.h"
#include "platform/error.h"
#include "platform/lastingVolume.h"

namespace orrinvale {

/// A scan that is kept.
struct KeptScan {
    std::int64_t time = 0;     ///< seconds since 1970, of the start of the scan
    std::uint64_t bytes = 0;   ///< of its file
    std::uint64_t volume = 0;  ///< a hash of the volume; 0: of a version that noted none
};

/// A file (0600) for each in a folder of this user alone, so that a bad file costs its own scan and
/// no other. Their names tell the hashes of the
/// folder and of its volume and the time, so that a list reads no file. Any
/// thread; each call reads or writes the disk, and what two processes keep at once are two files.
class ScanHistory final {
public:
    /// Of one folder, and of all folders together.
    static constexpr std::size_t mostOfFolder = 12;
    static constexpr std::uint64_t mostBytes = std::uint64_t{256} << 20U;

    /// Which scans can be compared with each other.
    struct Place {
        std::string root;  ///< the path that was scanned; exact bytes
        bool allFileSystems = false;
        /// What lies there (ScanFacts::volume): scans of another disk at the path are of another
        /// place, those that noted none of each. Nothing: whichever it was.
        std::optional<VolumeName> volume = std::nullopt;
    };

    /// `stateFolder`: that of this user's program (UserFolders.h).
    explicit ScanHistory(const std::string& stateFolder);

    /// Of this place, the oldest first; those that the clock will only come to are the last.
    [[nodiscard]] std::vector<KeptScan> list(const Place& place) const;

    /// Keeps the bytes of a scan. Of more than mostOfFolder those of the future go first, then the
    /// one that is missed least: gaps between those that stay grow with their age, and the oldest
    /// and the newest stay. Then the oldest of all go until the rest is within mostBytes. Never the
    /// one that is being kept.
    [[nodiscard]] Result<void> keep(const StoredScan& scan) const;

    /// ENOENT: there is none of that time. EBADMSG: its file is damaged, or of another place; it
    /// is taken away.
    [[nodiscard]] Result<StoredScan> load(const Place& place, std::int64_t time) const;

    /// Forgets all of this place, whichever file systems they were of, with what a killed writer
    /// left; waits for one that is at work, two seconds at most. False when one stayed.
    [[nodiscard]] bool forget(const std::string& root) const;
    /// Likewise all of all places.
    [[nodiscard]] bool clear() const;
    /// Bytes of all files.
    [[nodiscard]] std::uint64_t size() const;

private:
    struct File;
    [[nodiscard]] std::vector<File> files() const;
    [[nodiscard]] std::vector<File> filesWithUnfinished() const;
    [[nodiscard]] std::vector<File> filesOf(const Place& place) const;
    [[nodiscard]] std::string pathOf(const File& file) const;
    [[nodiscard]] bool forgetFile(const File& file) const;
    void thin(const Place& place, const File& kept) const;

    std::string m_folder;
};

/// The scan that "since" that moment means: the last one before it, else the first one.
[[nodiscard]] std::optional<KeptScan> scanBefore(const std::vector<KeptScan>& scans,
                                                 std::int64_t moment);

/// A word for an earlier scan by how long ago it was.
struct SinceWord {
    std::string_view word;
    int days;  ///< ends with the end of the day so many days before today
};
inline constexpr std::string_view lastScanWord = "last";
inline constexpr std::array<SinceWord, 3> sinceWords{
    {{"yesterday", 1}, {"last-week", 7}, {"last-month", 30}}};

/// What a scan has to lie before to be the one that the word means, in the process's time zone; of
/// "last" what is not of the future. Nothing for other words.
[[nodiscard]] std::optional<std::int64_t> momentOfWord(std::string_view word, std::int64_t now);

/// The word that means this one of them, of several that of the longest time, but "last" of the
/// last one; empty where no word does.
[[nodiscard]] std::string_view wordOfScan(const std::vector<KeptScan>& scans, const KeptScan& scan,
                                          std::int64_t now);

}  // namespace orrinvale
