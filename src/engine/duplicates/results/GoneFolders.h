// GoneFolders: what of a result lay in folders that are gone from the disk.
#pragma once

#include <string>
#include <vector>

namespace orrinvale {

class SimpleNodeData;

/// Told by paths, also where the result knows of no whole folders.
class GoneFolders final {
public:
    /// Absolute paths of folders, in any order; one may lie in another.
    explicit GoneFolders(const std::vector<std::string>& folders);

    [[nodiscard]] bool empty() const { return m_folders.empty(); }

    /// Whether the copy lay in one of them, by its path or where it lies without links. A link is
    /// where it stands, and not what it leads to.
    [[nodiscard]] bool held(const SimpleNodeData& copy) const;

private:
    [[nodiscard]] bool holds(const std::string& path) const;

    std::vector<std::string> m_folders;  // sorted, each with a slash at its end, none in another
};

}  // namespace orrinvale
