// FolderTable: the folders of a search as a table, in the order of the listing, with what is known
// of each.
#pragma once

#include <cstdint>
#include <unordered_map>
#include <vector>

#include "engine/duplicates/fileAttrbItem.h"
#include "engine/duplicates/folders/SeenFolder.h"

namespace orrinvale {

/// A row. Of what is in a folder "own" is what stands directly in it, "deep" what lies at any
/// depth.
struct FolderRow {
    static constexpr std::uint32_t none = ~std::uint32_t{0};

    SeenFolder seen;
    std::uint32_t parent = none;
    std::uint32_t end = 0;          ///< the row behind the last that lies in it
    std::uint32_t listedFiles = 0;  ///< own, of the search's list
    std::uint32_t subfolders = 0;   ///< own, that have a row
    std::uint64_t own = 0;          ///< sum of the digests of listed files
    std::uint64_t key = 0;          ///< stands for all that is in it
    std::uint64_t listedBytes = 0;  ///< deep, of listed files
    std::int64_t newest = 0;        ///< deep, of listed files

    std::uint64_t restDigest = 0;  ///< sum over what the walk left out, once that was looked at
    std::uint32_t restFiles = 0;
    std::uint32_t restEntries = 0;
    std::uint64_t restBytes = 0;

    std::uint64_t entries = 0, files = 0, bytes = 0;  ///< deep, of a candidate

    bool isBehindLink = false;    ///< reached by a link in the folder that is searched
    bool isOdd = false;           ///< equal to none: unreadable, with a file that has no copy, ...
    bool hasCopy = false;         ///< deep: a listed file that has copies
    bool hasHardLinks = false;    ///< deep: a file with several names
    bool isCandidate = true;      ///< it may have an equal, or lies in one that may
    bool holdsProtected = false;  ///< deep: a protected folder, or it is one
    bool isRestKnown = false;     ///< what the walk left out was looked at
    std::uint32_t equals = 0;     ///< number of the class of its equals; 0 for none

    /// Own entries that the walk left out.
    [[nodiscard]] std::uint32_t unseen() const {
        const std::uint64_t known = std::uint64_t{listedFiles} + subfolders + seen.emptyFiles;
        return seen.entries > known ? static_cast<std::uint32_t>(seen.entries - known) : 0;
    }
};

/// All rows of a search and the way to them. One thread.
class FolderTable final {
public:
    explicit FolderTable(const std::vector<SeenFolder>& folders);

    [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(m_rows.size()); }
    [[nodiscard]] FolderRow& operator[](std::uint32_t row) { return m_rows[row]; }
    [[nodiscard]] const FolderRow& operator[](std::uint32_t row) const { return m_rows[row]; }

    /// FolderRow::none where the folder has none. Cheap for files that follow each other in one
    /// folder.
    [[nodiscard]] std::uint32_t rowOf(const FolderNode* folder) const;

    [[nodiscard]] bool isWithin(std::uint32_t row, std::uint32_t outer) const {
        return row >= outer && row < m_rows[outer].end;
    }
    [[nodiscard]] const char* nameOf(std::uint32_t row) const {
        return m_rows[row].seen.node->name;
    }
    [[nodiscard]] std::string pathOf(std::uint32_t row) const {
        return orrinvale::pathOf(*m_rows[row].seen.node);
    }

private:
    std::vector<FolderRow> m_rows;
    std::unordered_map<const FolderNode*, std::uint32_t> m_places;
    mutable const FolderNode* m_last = nullptr;
    mutable std::uint32_t m_lastRow = FolderRow::none;
};

/// A listed file that its folder has itself: not a link that was followed.
[[nodiscard]] inline bool isOwnFile(const fileAttrbItem& file) {
    return file.type == FileType::Regular;
}

}  // namespace orrinvale
