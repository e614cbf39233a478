// SimpleNodeData: what a row of the results shows and remembers.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "engine/base/Date.h"
#include "engine/base/IconRequest.h"
#include "engine/duplicates/tree/FolderTies.h"
#include "engine/duplicates/tree/TreeNode.h"
#include "engine/files/EntryIdentity.h"

namespace orrinvale {

/// The data of a group of duplicates or of one file or bundle in it. Main thread only, once a tree
/// is shown.
class SimpleNodeData final : public TreeNodeData {
public:
    /// A leaf; the name is its full path in exact bytes, which is also what is removed and
    /// previewed.
    [[nodiscard]] static std::shared_ptr<SimpleNodeData> leafDataWithName(std::string name);
    /// A group; the name is what the user reads.
    [[nodiscard]] static std::shared_ptr<SimpleNodeData> groupDataWithName(std::string name);

    SimpleNodeData(std::string name, bool isLeaf);

    [[nodiscard]] const std::string& name() const { return m_name; }
    void setName(std::string name) { m_name = std::move(name); }

    /// Nothing means no picture.
    [[nodiscard]] const std::optional<IconRequest>& iconRep() const { return m_iconRep; }
    void setIconRep(std::optional<IconRequest> iconRep) { m_iconRep = std::move(iconRep); }

    [[nodiscard]] bool isLeaf() const { return m_isLeaf; }
    void setIsLeaf(bool isLeaf) { m_isLeaf = isLeaf; }
    [[nodiscard]] bool isGroup() const { return !m_isLeaf; }

    /// Whether the row may be opened; at first the opposite of isLeaf.
    [[nodiscard]] bool isExpandable() const { return m_isExpandable; }
    void setIsExpandable(bool isExpandable) { m_isExpandable = isExpandable; }

    /// Bytes. A group's is the sum over its leaves when it was made, less what was removed since.
    [[nodiscard]] std::uint64_t fileSize() const { return m_fileSize; }
    void setFileSize(std::uint64_t fileSize) { m_fileSize = fileSize; }

    /// A group's file extension, or "APP" for bundles.
    [[nodiscard]] const std::string& extendName() const { return m_extendName; }
    void setExtendName(std::string extendName) { m_extendName = std::move(extendName); }

    /// True when the group already stands in a view of one type.
    [[nodiscard]] bool Mark() const { return m_mark; }
    void setMark(bool mark) { m_mark = mark; }

    /// A leaf: 0 clear, 1 ticked. A group: 0 no leaf ticked, 1 all, 2 some.
    [[nodiscard]] std::int32_t selectNum() const { return m_selectNum; }
    void setSelectNum(std::int32_t selectNum) { m_selectNum = selectNum; }

    /// A group's type, 1 to 6; 0 before it is known.
    [[nodiscard]] std::int32_t fileType() const { return m_fileType; }
    void setFileType(std::int32_t fileType) { m_fileType = fileType; }

    /// When the leaf's file was last modified. A group has none.
    [[nodiscard]] const std::optional<Date>& ModificationDate() const { return m_modificationDate; }
    void setModificationDate(std::optional<Date> date) { m_modificationDate = date; }

    /// What the search saw of the leaf's file or bundle, for the look before it is removed. A group
    /// has none.
    [[nodiscard]] const std::optional<EntryIdentity>& identity() const { return m_identity; }
    void setIdentity(std::optional<EntryIdentity> identity) { m_identity = identity; }

    /// Of a bundle what BundleListing's digest was when the search listed it; nothing for
    /// everything else.
    [[nodiscard]] std::optional<std::uint64_t> bundleDigest() const { return m_bundleDigest; }
    void setBundleDigest(std::optional<std::uint64_t> digest) { m_bundleDigest = digest; }

    /// How many names the leaf's file has, on the whole file system, as the search saw it; 1 for
    /// everything else.
    [[nodiscard]] std::uint32_t hardLinks() const { return m_hardLinks; }
    void setHardLinks(std::uint32_t count) { m_hardLinks = count; }

    /// True when the leaf is in its group by what an earlier search read of it, and not this one.
    [[nodiscard]] bool isRecalled() const { return m_isRecalled; }
    void setRecalled(bool isRecalled) { m_isRecalled = isRecalled; }

    /// True when the leaf is a symbolic link directly in the folder that was searched, or stands
    /// behind one: it then lies elsewhere than its path says, at linkTarget().
    [[nodiscard]] bool isLink() const { return m_isLink; }
    /// A path without links, of a link to a file what it leads to; empty where that is the name, or
    /// could not be found out.
    [[nodiscard]] const std::string& linkTarget() const { return m_linkTarget; }
    void setPlace(std::string withoutLinks) { m_linkTarget = std::move(withoutLinks); }

    /// True for a link, and for what stands behind one, whose real place is not below the folder
    /// that was searched.
    [[nodiscard]] bool liesOutside() const { return m_liesOutside; }

    void setLink(std::string target, bool outside) {
        m_isLink = true;
        m_linkTarget = std::move(target);
        m_liesOutside = outside;
    }

    /// True when the leaf lies in a folder that was marked protected, or holds one: it is never
    /// ticked and never removed. Of a group: all its leaves are.
    [[nodiscard]] bool isProtected() const { return m_isProtected; }
    void setProtected(bool isProtected) { m_isProtected = isProtected; }

    /// A group's count of ticked leaves as "1/3".
    [[nodiscard]] const std::string& showSelectNumStr() const { return m_showSelectNumStr; }
    void setShowSelectNumStr(std::string text) { m_showSelectNumStr = std::move(text); }

    /// A group's place in the order in which the search found them.
    [[nodiscard]] std::uint32_t foundAs() const { return m_foundAs; }
    void setFoundAs(std::uint32_t place) { m_foundAs = place; }

    /// Null for what has nothing to do with equal folders.
    [[nodiscard]] const FolderTies* folderTies() const { return m_folderTies.get(); }
    /// Made when first asked for.
    [[nodiscard]] FolderTies& tieToFolders() {
        if (m_folderTies == nullptr) m_folderTies = std::make_unique<FolderTies>();
        return *m_folderTies;
    }
    /// Of a folder that is equal to others as a whole, and of the group of these; null for all
    /// else, bundles too.
    [[nodiscard]] const FolderFacts* wholeFolder() const {
        return m_folderTies != nullptr && m_folderTies->facts ? &*m_folderTies->facts : nullptr;
    }

    /// The name.
    [[nodiscard]] const std::string& description() const { return m_name; }

    /// Names are compared byte by byte, sizes as numbers. Dates compare equivalent when either is
    /// missing.
    [[nodiscard]] std::weak_ordering compareName(const TreeNodeData& other) const override;
    [[nodiscard]] std::weak_ordering compareSize(const TreeNodeData& other) const override;
    [[nodiscard]] std::weak_ordering compareDate(const TreeNodeData& other) const override;
    [[nodiscard]] std::weak_ordering compareNameR(const TreeNodeData& other) const override;
    [[nodiscard]] std::weak_ordering compareSizeR(const TreeNodeData& other) const override;
    [[nodiscard]] std::weak_ordering compareDateR(const TreeNodeData& other) const override;
    [[nodiscard]] std::optional<SortValue> sortValue(SortKey key) const override;

private:
    // What walks over a whole result read stands first, beside the name that sorts read.
    std::int32_t m_selectNum = 0;
    std::int32_t m_fileType = 0;
    std::uint64_t m_fileSize = 0;
    std::string m_name;
    bool m_isLeaf;
    bool m_isExpandable;
    bool m_mark = false;
    bool m_isProtected = false;
    bool m_isRecalled = false;
    bool m_isLink = false;
    bool m_liesOutside = false;
    std::uint32_t m_hardLinks = 1;
    std::uint32_t m_foundAs = 0;
    std::unique_ptr<FolderTies> m_folderTies;
    std::optional<std::uint64_t> m_bundleDigest;
    std::string m_linkTarget;
    std::string m_showSelectNumStr;
    std::optional<Date> m_modificationDate;
    std::optional<EntryIdentity> m_identity;
    std::optional<IconRequest> m_iconRep;
    std::string m_extendName;
};

}  // namespace orrinvale
