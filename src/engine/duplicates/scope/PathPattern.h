// PathPattern: names and paths that a search leaves out, as a person writes them.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <tl/expected.hpp>

namespace orrinvale {

/// Where a pattern is wrong, and what is.
struct PatternFault {
    std::size_t place = 0;  ///< of the character, counted from 1
    std::string_view reason;
};

/// Bytes are compared as they stand. "*" is any number of characters but "/", "?" is one of them,
/// "[a-z]" and "[!a-z]" one of a set, "**" between slashes any number of folders, and a backslash
/// takes the meaning from the next character. A "/" at the end: folders alone.
///
/// Without a further slash it is a pattern for names, wherever they stand; with one in it, for
/// paths from the folder that is searched; with one at its beginning, for whole paths.
class PathPattern final {
public:
    [[nodiscard]] static tl::expected<PathPattern, PatternFault> parse(std::string_view text);

    /// A line of an exclusion file: "!" before it takes back what lines above leave out, and paths
    /// count from the folder of the file, with a "/" at the beginning too.
    [[nodiscard]] static tl::expected<PathPattern, PatternFault> parseLine(std::string_view text);

    /// This folder with all that is in it, whatever its name; an absolute path.
    [[nodiscard]] static PathPattern folder(std::string_view path);

    enum class Scope : unsigned char { Name, Relative, Whole };
    [[nodiscard]] Scope scope() const { return m_scope; }
    [[nodiscard]] bool takesBack() const { return m_takesBack; }

    /// Of a name, of a path from the folder that it counts from, or of a whole path, by scope().
    [[nodiscard]] bool matches(std::string_view text, bool isFolder) const;

private:
    PathPattern() = default;
    static tl::expected<PathPattern, PatternFault> parsed(std::string_view text,
                                                          std::size_t skipped);

    std::string m_glob;
    Scope m_scope = Scope::Name;
    bool m_onlyFolders = false;
    bool m_takesBack = false;
};

}  // namespace orrinvale
