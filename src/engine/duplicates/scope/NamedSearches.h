// NamedSearches: searches of duplicates that a person gave a name, kept for another day.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "engine/duplicates/scope/SearchRequest.h"
#include "platform/error.h"

namespace orrinvale {

/// What a person has filled in.
struct SearchScope {
    std::string name = {};
    std::vector<std::string> roots = {};             ///< exact bytes, like all paths here
    std::vector<std::string> protectedFolders = {};  ///< of the roots
    std::vector<std::string> patterns = {};
    std::optional<std::uint64_t> smallest = {};
    std::optional<std::uint64_t> largest = {};
    std::vector<FileKind> kinds = {};  ///< none: all
    bool readsFiles = false;           ///< exclusion files count
    friend bool operator==(const SearchScope&, const SearchScope&) = default;

    /// The first pattern that is none, and where it is wrong.
    struct BadPattern {
        std::string text;
        PatternFault fault;
    };
    [[nodiscard]] tl::expected<SearchRequest, BadPattern> request() const;
};

/// A file for each in one folder, for this user alone, so that a bad file costs its own search and
/// no other. Any thread; each call reads and writes the disk.
class NamedSearches final {
public:
    static constexpr std::size_t most = 200;

    /// The folder need not be there.
    explicit NamedSearches(std::string folder) : m_folder(std::move(folder)) {}

    /// In the order of their names. Files that are no searches are put aside.
    [[nodiscard]] std::vector<SearchScope> all() const;
    /// In the place of the one of the same name. ENOSPC where there are too many already.
    [[nodiscard]] Result<void> save(const SearchScope& scope) const;
    /// Forgets all of them, with what was put aside.
    [[nodiscard]] Result<void> clear() const;

private:
    [[nodiscard]] std::vector<std::string> files(bool withAside) const;

    std::string m_folder;
};

/// The text of a file, and what it says; nothing where it is none, or of a later version.
[[nodiscard]] std::string textOfSearch(const SearchScope& scope);
[[nodiscard]] std::optional<SearchScope> searchOfText(std::string_view text);

}  // namespace orrinvale
