// FolderRows: folders that are equal as wholes as groups of a result tree, above the files that are
// in none.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "engine/duplicates/DuplicateFilesOpt.h"
#include "engine/duplicates/folders/FolderFindings.h"
#include "engine/duplicates/tree/SimpleTreeNode.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// For one result, made where the search has run. The search outlives the object.
class FolderRows final {
public:
    explicit FolderRows(const duplicateFind& search);

    /// A group for each of equal folders, named by them: "Backup = Backup (copy)".
    void addTo(SimpleTreeNode& top);

    /// Its copies are told by folders that they lie in.
    [[nodiscard]] bool areTold(const DuplicateGroup& group) const {
        return !group.bundle && m_findings.cover(group.files);
    }

    /// Ties the leaf to the folder that it lies in, if it lies in one. The file is null for a
    /// bundle.
    void tie(SimpleNodeData& leaf, const fileAttrbItem* file) const;

private:
    void addGroup(SimpleTreeNode& top, const FolderGroup& group);
    [[nodiscard]] std::shared_ptr<SimpleNodeData> folderAround(std::string_view path) const;

    struct Hash : std::hash<std::string_view> {
        using is_transparent = void;
    };
    const duplicateFind& m_search;
    const FolderFindings& m_findings;
    std::unordered_map<std::string, std::shared_ptr<SimpleNodeData>, Hash, std::equal_to<>>
        m_folders;  // by path
};

/// The name of a group of folders in a tree, by the folders that are in it.
[[nodiscard]] std::string folderGroupName(const TreeNode& group);

/// BundleListing::digest of a folder as it is now; nothing where it can not be listed whole, or
/// where an entry of it came, went or changed since the search saw it, and after a stop. The
/// contents of files are not read.
[[nodiscard]] std::optional<std::uint64_t> digestOfUnchanged(const FileSystem& files,
                                                             const std::string& folder,
                                                             const FolderFacts& seen,
                                                             const std::atomic<bool>& stop);

}  // namespace orrinvale
