// ScanDifference: what changed in a folder between two scans of it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "engine/diskusage/history/ScanFile.h"

namespace orrinvale {

/// From one size to the other, held at the limits of the type.
[[nodiscard]] std::int64_t changeOf(std::uint64_t before, std::uint64_t after);

/// What is left of a change when a part of it is told, likewise.
[[nodiscard]] std::int64_t restOfChange(std::int64_t whole, std::int64_t part);

/// An entry that differs. One that came or went is told whole, and nothing in it; so is one that
/// one of the scans could not look into.
struct ScanChange {
    enum class Kind : std::uint8_t { Changed, Came, Went };
    std::uint64_t sizeBefore = 0, sizeAfter = 0;
    std::uint64_t onDiskBefore = 0, onDiskAfter = 0;
    std::uint64_t weight = 0;  ///< bytes: the largest change in it or of it, without its sign
    std::uint32_t parent = 0;  ///< its number; of the root its own
    std::uint32_t nameAt = 0;
    std::uint32_t firstChild = 0, childCount = 0;  ///< in ScanDifference::children()
    std::uint16_t nameLength = 0;
    Kind kind = Kind::Changed;
    bool isFolder = false;
    bool isPartial = false;   ///< something in it could not be counted, in one of the scans
    bool isCovered = false;   ///< another file system lay there or in it, in one of the scans alone
    bool isUnseen = false;    ///< it itself could not be read or was covered, in one of the scans
    bool isReplaced = false;  ///< came or went as a file in the place of a folder, or a folder of a
                              ///< file

    [[nodiscard]] std::int64_t change() const { return changeOf(sizeBefore, sizeAfter); }
    [[nodiscard]] std::int64_t onDiskChange() const { return changeOf(onDiskBefore, onDiskAfter); }
};

/// Of all that two scans counted, without its weight; told of two that are not compared too.
[[nodiscard]] ScanChange wholeChange(const ScanFacts& before, const ScanFacts& after);

/// A tree of what differs: folders in which something does, and in them what. Sizes of folders are
/// right to the byte from foldersFrom() on; of files under filesFrom() what they changed together
/// is what the children of their folder do not explain. To be read by any thread once it is made.
class ScanDifference final {
public:
    /// Nothing where one of them turns out to be no scan, or more than mostNames of names
    /// differ. A million entries take some tenths of a second.
    [[nodiscard]] static std::optional<ScanDifference> of(const StoredScan& before,
                                                          const StoredScan& after);

    static constexpr std::size_t mostNames = std::size_t{256} << 20U;  ///< bytes

    [[nodiscard]] const ScanFacts& before() const { return m_before; }
    [[nodiscard]] const ScanFacts& after() const { return m_after; }
    [[nodiscard]] std::uint64_t filesFrom() const { return m_filesFrom; }
    [[nodiscard]] std::uint64_t foldersFrom() const { return m_foldersFrom; }
    /// The scans are of two file systems that lay at one path.
    [[nodiscard]] bool isOfTwoVolumes() const {
        return m_before.volume && m_after.volume && *m_before.volume != *m_after.volume;
    }
    /// Of one that came or went: the other scan may have left it out, being smaller than so many
    /// bytes. 0 where it certainly was not there, and for what changed.
    [[nodiscard]] std::uint64_t hiddenUnder(const ScanChange& change) const {
        if (change.kind == ScanChange::Kind::Changed || change.isReplaced) return 0;
        return change.isFolder ? m_foldersFrom : m_filesFrom;
    }

    /// The root has number 0; a folder comes before what is in it.
    [[nodiscard]] const std::vector<ScanChange>& all() const { return m_all; }
    [[nodiscard]] const ScanChange& root() const { return m_all.front(); }
    /// Their numbers, the biggest weight first, then by name.
    [[nodiscard]] std::span<const std::uint32_t> children(const ScanChange& folder) const {
        return std::span(m_order).subspan(folder.firstChild, folder.childCount);
    }
    [[nodiscard]] std::string_view name(const ScanChange& change) const {
        return std::string_view(m_names).substr(change.nameAt, change.nameLength);
    }
    /// Directly in the folder; nothing where it did not change.
    [[nodiscard]] std::optional<std::uint32_t> find(const ScanChange& folder,
                                                    std::string_view entry) const;
    /// With the root's path; exact bytes.
    [[nodiscard]] std::string path(std::uint32_t number) const;
    /// The deepest entry below that alone makes up three quarters of the change or more, and in the
    /// same direction; the entry itself where there is none.
    [[nodiscard]] std::uint32_t mostly(std::uint32_t number) const;

private:
    struct Merge;
    ScanDifference() = default;
    void order();

    ScanFacts m_before, m_after;
    std::uint64_t m_filesFrom = 0, m_foldersFrom = 0;
    std::vector<ScanChange> m_all;
    std::vector<std::uint32_t> m_order;   // of each folder the children, by weight
    std::vector<std::uint32_t> m_byName;  // likewise by name
    std::string m_names;
};

}  // namespace orrinvale
