// ScanFile: a finished scan as bytes that are small enough to keep, and a reader of such bytes,
// whoever wrote them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/diskusage/history/RecordedEntry.h"

namespace orrinvale {

/// The largest file of a scan that is written, and read.
inline constexpr std::size_t mostScanBytes = std::size_t{64} << 20U;
/// What one takes: so much for each entry that was counted, and so much for the whole.
inline constexpr std::size_t scanBytesPerEntry = 24, scanBytesBesides = 4096;

/// The bytes of a scan. Entries of each folder are put into the order of their names. Where names
/// are so long that they would take more than the bound, files from a larger size on are kept, and
/// at last only folders from some size on; the facts then say so. A name that was met twice in a
/// folder stays once.
[[nodiscard]] std::string encodeScan(ScanRecord& record);

/// The bytes of a scan whose head is well.
struct StoredScan {
    ScanFacts facts;
    std::string bytes;
    std::size_t treeAt = 0;  ///< where the entries begin
};

/// Nothing where the bytes are none, of a newer version, cut or changed. Those of the first version
/// have no volume.
[[nodiscard]] std::optional<StoredScan> parseScan(std::string bytes);

/// Whether its entries can be read to their end.
[[nodiscard]] bool isWholeScan(const StoredScan& scan);

/// Goes through the entries of a scan, those of a folder by name, right behind it. Whatever the
/// bytes are, it takes time and memory in proportion to them. The scan outlives it. One thread at a
/// time.
class ScanReader final {
public:
    explicit ScanReader(const StoredScan& scan);

    enum class Step : std::uint8_t {
        Entry,  ///< the fields are those of it; what is in a folder comes next
        Up,     ///< the folder in hand has no more
        End,
        Bad  ///< the bytes are no scan; nothing more comes
    };
    [[nodiscard]] Step next();
    /// Passes over what is in the folder that was told last. False: Bad.
    [[nodiscard]] bool skip();

    /// Good until the next call.
    [[nodiscard]] std::string_view name() const;
    [[nodiscard]] std::uint64_t size() const { return m_size; }
    [[nodiscard]] std::uint64_t onDisk() const { return m_onDisk; }
    [[nodiscard]] std::uint8_t marks() const { return m_marks; }
    [[nodiscard]] bool isFolder() const { return m_isFolder; }

private:
    struct Level {
        std::size_t nameAt;  // in m_names, of the entry in hand, which is as long as they reach
        std::size_t nameLength;
    };

    [[nodiscard]] bool takeName(std::uint64_t length, std::uint64_t shared);
    Step bad();

    std::string_view m_left;
    std::string m_names;  // of the folders on the way, and of the entry in hand
    std::vector<Level> m_levels;
    bool m_isFolder = false;
    bool m_opens = false;  // the entry that was told last is a folder, and not entered yet
    bool m_isBad = false;
    std::uint8_t m_marks = 0;
    std::uint64_t m_size = 0;
    std::uint64_t m_onDisk = 0;
};

}  // namespace orrinvale
