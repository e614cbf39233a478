// The face of the duplicate search: options in, progress and stop through, groups and the result
// tree out.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "engine/duplicates/duplicateFind.h"
#include "engine/duplicates/tree/SimpleTreeNode.h"
#include "engine/files/EntryIdentity.h"

namespace orrinvale {

/// The option record of a search.
struct SearchOption {
    bool searchHidden = true;
    bool searchSystem = true;
};

/// One group of equal files or bundles, as the result shows it. Valid during the visit.
struct DuplicateGroup {
    std::string_view name;       ///< of the file or bundle that gives the group its name
    std::string_view extension;  ///< of that name; "APP" for bundles
    bool bundle = false;
    std::uint64_t size = 0;                    ///< bytes, the sum of all copies
    std::vector<const fileAttrbItem*> files;   ///< in display order; empty for bundles
    std::vector<const AppAttrbItem*> bundles;  ///< likewise
};

/// What the search saw of a copy.
[[nodiscard]] EntryIdentity identityOf(const fileAttrbItem& file);
[[nodiscard]] EntryIdentity identityOf(const AppAttrbItem& bundle);

/// One object serves one search. beginSearchAtPath() runs the search on the calling thread;
/// progress(), what it is made of, counts() and stopSearch() may be called from any thread
/// meanwhile; all else is for before or after.
class DuplicateFilesOpt final {
public:
    /// `files` must outlive the object.
    explicit DuplicateFilesOpt(const FileSystem& files);
    ~DuplicateFilesOpt();
    DuplicateFilesOpt(const DuplicateFilesOpt&) = delete;
    DuplicateFilesOpt& operator=(const DuplicateFilesOpt&) = delete;

    /// Before the search; a null record changes nothing.
    void setSearchOption(const SearchOption* option);

    /// Searches the folder for duplicates among files larger than the limit (bytes). A second call
    /// does nothing but log.
    void beginSearchAtPath(const std::string& path, std::uint64_t withLimitSize);

    /// The same with all that a search can be asked for.
    void beginSearch(const SearchRequest& request);

    /// Percent, 0 when no search began.
    [[nodiscard]] std::uint64_t getProgress() const;

    /// What the search is at, the root at first.
    [[nodiscard]] std::string getCurrentSearchFile();

    /// Percent and path in one.
    [[nodiscard]] Progress progress() { return {getProgress(), 100, getCurrentSearchFile()}; }

    /// Also before the search has begun: it then ends at once.
    void stopSearch();

    /// Builds the result tree: a root named "Root", groups of equal folders where the search was
    /// asked for them, bundle groups, then file groups in order of discovery, each with its leaves;
    /// what equal folders tell of is no group of its own. False, with nothing stored, when nothing
    /// was found. A second call would show everything twice.
    bool getDuplicateFiles(std::shared_ptr<SimpleTreeNode>* root);

    /// Calls the visitor for each group in the order of the tree, with the leaves in the order of
    /// the tree, but builds none: the way for those who print. The pointers stay good as long as
    /// this object.
    void visitGroups(const std::function<void(const DuplicateGroup&)>& visit) const;

    /// The search behind it, for its counts and what it skipped; null before one began. Any thread.
    [[nodiscard]] std::shared_ptr<const duplicateFind> search() const { return current(); }

private:
    std::shared_ptr<duplicateFind> current() const;

    const FileSystem& m_files;
    std::shared_ptr<duplicateFind> m_findDuplicate;  // guarded by m_mutex; set once
    FileList m_findArray;
    std::vector<AppGroup> m_findAppArray;
    std::uint64_t m_Index = 0;
    bool m_bSearchHiddenFile = true;
    bool m_bSearchSystemDirectory = true;
    mutable std::mutex m_mutex;
    std::string m_CurrentSearchPath;  // guarded by m_mutex
    bool m_stopAsked = false;         // guarded by m_mutex
};

}  // namespace orrinvale
