// One directory entry is not its own copy: finding entries that were listed more than once.
#pragma once

#include <functional>
#include <map>
#include <span>
#include <string>
#include <tuple>
#include <utility>

#include "engine/duplicates/fileAttrbItem.h"

namespace orrinvale {

/// An entry is listed again by a second path, through a link or a mount, and by a folder that
/// changes while it is listed: some file systems then give a name twice, or a file under its old
/// and its new name. One thread.
///
/// Two items are one entry when they have one name in one folder, or are one file that had no other
/// name when either was listed. Where inode numbers do not last the path without links counts
/// instead. Two names of one file are two entries.
class RepeatedEntries final {
public:
    /// `passingInodes` is FileSystem::devicesOfPassingInodes(). Both must outlive the object.
    RepeatedEntries(const FileSystem& files, std::span<const std::uint64_t> passingInodes)
        : m_files(files), m_passingInodes(passingInodes) {}

    using Dropped = std::function<void(const fileAttrbItem& kept, const fileAttrbItem& dropped)>;

    /// Takes the later one of two items that are one entry out of the list, and tells of it; one
    /// that stands behind a link in the folder that is searched gives way to one that does not.
    /// Files listed with different sizes never meet and all stay.
    void dropFrom(FileArray& array, const Dropped& tell);

    /// The same for files of one size, at little cost where no two of them can be one entry.
    void dropFrom(FileList& group, const Dropped& tell);

private:
    // device and inode of the folder, and the name in it; or nothing, nothing and the path
    using Name = std::tuple<std::uint64_t, std::uint64_t, std::string>;
    using File = std::pair<std::uint64_t, std::uint64_t>;  // device and inode

    struct Entry {
        Name name;
        File file;
        bool isOnly = false;  // the file had this name alone; false where `file` means nothing
    };
    struct SeenFile {
        const fileAttrbItem* item;  // the first
        bool isOnly;                // one of them had one name alone
    };
    struct Seen {
        std::map<Name, const fileAttrbItem*> names;
        std::map<File, SeenFile> files;
        const fileAttrbItem* add(const fileAttrbItem& item, Entry entry);
    };
    bool isRepeated(Seen& seen, const fileAttrbItem& item, const Dropped& tell);

    static bool mayRepeat(const FileList& group);
    Entry entryOf(const fileAttrbItem& item);
    Entry targetOf(const fileAttrbItem& link);
    const std::string& placeOf(const FolderNode& folder);

    const FileSystem& m_files;
    const std::span<const std::uint64_t> m_passingInodes;
    std::map<const FolderNode*, std::string> m_places;  // paths without links
};

}  // namespace orrinvale
