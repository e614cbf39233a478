// KeepList: what a person asked cleaning to keep for good. The page, Fast Clean and the terminal
// obey it alike.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/error.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// The file "always-keep" in the program's settings folder: a path a line, "\n", "\r" and "\\"
/// standing for a line feed, a carriage return and a backslash; lines that begin with "#" and those
/// of blanks mean nothing. The file may be a link; a change goes to where it leads. A list is a
/// snapshot; any thread.
class KeepList final {
public:
    /// Keeps nothing.
    KeepList() = default;

    /// Reads the list. A missing file keeps nothing; one that can not be read is an error, and so
    /// is a line that is no absolute path: then nobody knows what may go. The error's path is that
    /// of the file, followed by ", line N" where a line is at fault.
    [[nodiscard]] static Result<KeepList> load(const FileSystem& files, const std::string& folder);

    /// Puts a path on the stored list, or takes it off; success when it is there already, or not
    /// there. `path` is absolute, and does not climb by "..".
    [[nodiscard]] static Result<void> add(const FileSystem& files, const std::string& folder,
                                          const std::string& path);
    [[nodiscard]] static Result<void> remove(const FileSystem& files, const std::string& folder,
                                             const std::string& path);

    /// Keeps what the other list keeps as well.
    void include(KeepList other);

    [[nodiscard]] static std::string fileIn(const std::string& folder);

    /// Whether the entry at this path is kept, itself or with a folder above it. As the following:
    /// the path has no links on the way to its last component.
    [[nodiscard]] bool keeps(std::string_view path) const;
    /// Whether something below this path is kept.
    [[nodiscard]] bool keepsBelow(std::string_view path) const;

private:
    std::vector<std::string> m_paths;
};

}  // namespace orrinvale
