// One candidate file of a duplicate search, and the list that owns such files. getFileList.h fills
// it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/base/Date.h"
#include "engine/files/Arena.h"
#include "engine/files/FolderNode.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// A candidate file. Small on purpose, since a search holds one for every listed file: the path is
/// put together from the folder when it is asked for. Lives in a FileArray.
struct fileAttrbItem {
    std::uint64_t fileSize =
        0;  ///< bytes, from the file's attributes; of a link the size of the link itself
    std::uint64_t md5 = 0;      ///< hash of the whole file, zero until computed
    std::uint64_t md5_1k = 0;   ///< hash of the first kilobyte, zero until computed
    std::int64_t modified = 0;  ///< nanoseconds since 1970 UTC, like `changed`
    std::int64_t changed =
        0;  ///< change of the inode: with those below the identity that a removal asks for
    std::int64_t born = 0;     ///< making of the inode, 0 where that is not known
    std::uint64_t device = 0;  ///< the file's own; not its folder's where a file is mounted or
                               ///< layers lie upon each other
    std::uint64_t inode = 0;
    const FolderNode* folder = nullptr;
    const char* name = nullptr;
    std::uint32_t links = 0;  ///< hard links
    FileType type = FileType::Unknown;
    bool inodePasses = false;  ///< `inode` need not last: see EntryIdentity
    bool isRecalled = false;   ///< a hash is of an earlier search, told by times and inode
    bool isCopy = false;       ///< another file has its contents, as far as hashes tell

    [[nodiscard]] std::string filePathName() const { return pathOf(*folder, name); }
    [[nodiscard]] std::string_view fileName() const { return name; }
    [[nodiscard]] Date ModificationDate() const { return Date{modified}; }

    /// True when both are there, both have a whole-file hash, and the hashes are equal.
    [[nodiscard]] static bool isEqual(const fileAttrbItem* object,
                                      const fileAttrbItem* otherObject) {
        return object != nullptr && otherObject != nullptr && object->md5 != 0 &&
               object->md5 == otherObject->md5;
    }

    void setAttributes(const FileAttributes& attributes);
};

/// References to items that a FileArray owns.
using FileList = std::vector<fileAttrbItem*>;

/// A growing list of candidate files that owns them, with their names and folders. The items stay
/// where they are, also when the list grows. One thread at a time.
class FileArray final {
public:
    FileArray() = default;
    FileArray(FileArray&&) = default;
    FileArray& operator=(FileArray&&) = default;

    [[nodiscard]] std::size_t size() const { return m_items.size(); }
    [[nodiscard]] bool empty() const { return m_items.empty(); }
    [[nodiscard]] fileAttrbItem& operator[](std::size_t index) const { return *m_items[index]; }
    [[nodiscard]] const FileList& items() const { return m_items; }

    /// Appends a file by its full path.
    fileAttrbItem& add(std::string_view filePathName, const FileAttributes& attributes);

    /// Appends items that live in storage which the list keeps from now on.
    void adopt(FileList items, std::vector<std::shared_ptr<const void>> storage);

    /// Takes the items for which `drop` holds out of the list; they stay alive.
    template <class Drop> void removeIf(Drop drop) { std::erase_if(m_items, drop); }

private:
    FileList m_items;
    std::vector<std::shared_ptr<const void>> m_storage;
    std::shared_ptr<Arena> m_own;
    const FolderNode* m_lastFolder = nullptr;
};

}  // namespace orrinvale
