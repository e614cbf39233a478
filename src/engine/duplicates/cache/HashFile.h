// HashFile: the file of remembered hashes as it is found, looked at where it lies.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "engine/duplicates/cache/HashRecord.h"
#include "platform/fileView.h"

namespace orrinvale {

/// Holds nothing where there is no such file, or one that is not to be trusted: another's, one
/// that others may write, of another version, cut short, or from the future. A record that fails
/// its sum is none. All operations may be called from any thread.
class HashFile final {
public:
    HashFile() = default;

    /// `now` is the time by fileClock(). Never fails.
    [[nodiscard]] static HashFile open(const std::string& path, std::int64_t now);

    [[nodiscard]] bool isEmpty() const { return m_header.count == 0; }
    [[nodiscard]] const HashHeader& header() const { return m_header; }
    /// Of the file, in bytes; 0 where there is none.
    [[nodiscard]] std::size_t size() const { return m_view.bytes().size(); }

    /// The number of a file system in the records; nothing where none is of it.
    [[nodiscard]] std::optional<std::uint8_t> numberOf(const VolumeName& volume) const;

    /// The record of a file. Under a look of the thread's own.
    [[nodiscard]] std::optional<HashRecord> find(std::uint8_t volume, std::uint64_t inode) const;
    /// Has the processor fetch what find() is going to look at. Likewise.
    void expect(std::uint8_t volume, std::uint64_t inode) const;

    /// Under a look, as they lie: some may fail their sum.
    [[nodiscard]] std::span<const HashRecord> records() const;

    [[nodiscard]] FileView::Look look() const { return FileView::Look(m_view); }

private:
    [[nodiscard]] std::span<const HashRecord> stretchOf(std::uint8_t volume,
                                                        std::uint64_t inode) const;

    FileView m_view;
    HashHeader m_header;
};

/// Whether a header can be trusted that lies in front of so many bytes, itself among them.
[[nodiscard]] bool isSound(const HashHeader& header, std::uint64_t fileSize, std::int64_t now);

[[nodiscard]] std::uint64_t sumOf(const HashHeader& header);

}  // namespace orrinvale
