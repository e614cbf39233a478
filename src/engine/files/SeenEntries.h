// SeenEntries: what a scan saw below one chosen folder, so that a removal of that folder takes this
// and nothing else. TreeRemoval asks it for each entry.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/fileTypes.h"

namespace orrinvale {

/// The state of an entry. Sizes and times of files count, so that one that was written since is
/// told; of everything else the time of its making.
struct SeenState {
    FileType type = FileType::Unknown;
    std::uint64_t size = 0;   ///< of regular files alone
    std::uint64_t stamp = 0;  ///< of a regular file EntryIdentity::timesOf(), of all others the
                              ///< time of their making, 0 where not known

    [[nodiscard]] static SeenState of(const FileAttributes& seen);
};

/// A set of fingerprints, one for each entry, of 10 to 20 bytes. Half of a fingerprint stands for
/// the folder, the name and the inode number, the other half for the state: an entry that came
/// later is taken for one of a million seen ones once in 10^13 times. Filled by one thread; from
/// then on any thread may ask.
class SeenEntries final {
public:
    /// Stands for a folder, by all names on the way to it from the chosen one.
    using Key = std::uint64_t;
    static constexpr Key chosenFolder = 1;

    enum class Verdict : std::uint8_t {
        AsSeen,
        Changed,  ///< the scan saw it, and not like this
        Unseen
    };

    /// On devices whose inode numbers need not last (FileSystem::devicesOfPassingInodes()) they do
    /// not count.
    explicit SeenEntries(bool inodesPass = false) : m_inodesPass(inodesPass) {}

    /// The key of an entry of a folder, to be handed over with what is below it.
    [[nodiscard]] Key keyOf(Key folder, std::string_view name, std::uint64_t inode) const;

    /// Fetches into the processor's cache what verdictOn() will need.
    void expect(Key key) const;

    void add(Key key, const SeenState& entry);
    [[nodiscard]] Verdict verdictOn(Key key, const SeenState& entry) const;
    [[nodiscard]] std::size_t count() const { return m_count; }

private:
    using Print = std::uint64_t;  // 0 marks a free place
    [[nodiscard]] std::size_t placeOf(Print print) const;
    void put(Print print);
    void grow();

    const bool m_inodesPass;
    std::vector<Print>
        m_prints;  // a hash table; all prints of one key begin their search at the same place
    std::size_t m_count = 0;
};

}  // namespace orrinvale
