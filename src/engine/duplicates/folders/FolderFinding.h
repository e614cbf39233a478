// FolderFinding: which folders of a search are equal as wholes. Read run() first; it names the
// steps.
#pragma once

#include <atomic>
#include <cstdint>
#include <utility>
#include <vector>

#include "engine/duplicates/folders/FolderFindings.h"
#include "engine/duplicates/folders/FolderRest.h"
#include "engine/duplicates/folders/FolderTable.h"
#include "engine/files/SkipList.h"

namespace orrinvale {

/// What a search has found when files are paired.
struct PairedSearch {
    const std::vector<SeenFolder>& folders;
    const FileArray& listed;                  ///< in the order of the listing; copies have `isCopy`
    const FileList& copies;                   ///< the members of a group next to each other
    const ProtectedFolders* guard = nullptr;  ///< null where nothing is protected
};

/// Folders with equal trees. Every entry counts, whatever the search was asked to look at: of what
/// its walk left out the rest is listed and hashed here, where all else is equal. Told are those in
/// which the search found a copy, and of equal folders in equal folders the topmost, unless an
/// inner one has further equals.
class FolderFinding final {
public:
    /// All outlive the object. Of a member is told whether it holds a protected folder by whatever
    /// path; whether it lies in one is for the caller to find out. What can not be read is added to
    /// `skipped`.
    FolderFinding(const FileSystem& files, const PairedSearch& search,
                  const std::atomic<bool>& stop, SkipList& skipped);

    /// Once. Nothing after a stop.
    [[nodiscard]] FolderFindings run();

private:
    using File = std::pair<std::uint32_t, const fileAttrbItem*>;  // the row of its folder

    void readListed();
    void spreadUpwards();
    void digestListed();
    void classify();
    void makeKeys();
    void findClasses();
    [[nodiscard]] bool hasRest() const;
    void lookAtRest();
    void findProtected();
    void tell(FolderFindings& findings);
    [[nodiscard]] bool isCovered(const std::vector<std::uint32_t>& members) const;
    void dropOneEntry(std::vector<std::uint32_t>& members) const;
    [[nodiscard]] FolderGroup groupOf(const std::vector<std::uint32_t>& members);
    [[nodiscard]] std::uint64_t gainOf(const std::vector<std::uint32_t>& members);
    void findHardLinks();

    const FileSystem& m_files;
    const PairedSearch m_search;
    const std::atomic<bool>& m_stop;
    FolderTable m_table;
    FolderRest m_rest;
    std::vector<File> m_hardLinks;  // files with several names, by rows, once somebody asks
    bool m_hardLinksFound = false;
};

}  // namespace orrinvale
