// The decision whether two files are duplicates: the same size, the same hash of the first
// kilobyte, the same hash of all bytes. The search itself reaches the same verdicts faster through
// HashAhead.h; these are the single operations.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "engine/duplicates/FileHasher.h"
#include "engine/duplicates/fileAttrbItem.h"
#include "engine/files/SkipList.h"

namespace orrinvale {

/// One thread at a time. Items handed in must stay alive as long as the object.
class algorithm final {
public:
    /// Both must outlive the object. Failed reads are added to `skipped`.
    algorithm(const FileSystem& files, SkipList& skipped);
    algorithm(const algorithm&) = delete;
    algorithm& operator=(const algorithm&) = delete;

    /// Size in bytes; 0 when the file can not be opened or is not a regular file.
    [[nodiscard]] std::uint64_t getFileSize(const std::string& path);

    /// Sets md5_1k from 1024 bytes. Of a shorter file, the bytes behind its end are what earlier
    /// reads of this object left in its buffer (zeros at first): all files of one size must be
    /// hashed in one go to be comparable. False when it can not be read.
    bool getMD5_1K(fileAttrbItem& item);

    /// Sets md5 from the whole file. False for an empty file, one that can not be read, and one
    /// that changed meanwhile.
    bool getMD5(fileAttrbItem& item);

    /// True when md5 is there, or getMD5() could set it.
    bool getSingleMd5WithData(fileAttrbItem& item);

    /// Appends each item of the list with the size of findItem, in the order of the list. Always
    /// true.
    bool findFileWithSize(const FileList& list, FileList& outArray, const fileAttrbItem& findItem);

    /// Appends the duplicates of findItem among a list of files of its size, then findItem itself,
    /// and takes them out of the list. False when findItem itself can not be hashed.
    bool findFileWithMd5(FileList& list, FileList& outArray, fileAttrbItem& findItem);

    /// The same among files of any size; the list itself is left alone. Also false when no file has
    /// the size.
    bool getDuplicateFile(fileAttrbItem* item, const FileList* From, FileList* Result);

    /// Hashes both; does not compare the hashes. True when the first had no hash and got one, and
    /// the second got one or has one whose low byte is not zero.
    bool compareWholeFile(fileAttrbItem& item, fileAttrbItem& anotherFile);

    /// True when both folders can be listed and hold the same relative paths. Contents are not
    /// looked at.
    [[nodiscard]] bool CompareDirectoryWithoutHash(const std::string& path,
                                                   const std::string& otherDirectory);

    /// Always false: folders that are not bundles are never duplicates.
    [[nodiscard]] bool CompareDirectory(const std::string& path, const std::string& otherDirectory);

private:
    static constexpr std::size_t bufferBytes = 4 * 1024 * 1024;

    const FileSystem& m_files;
    SkipList& m_skipped;
    CandidateOpener m_opener;
    FileHasher m_hasher;
    std::unique_ptr<std::byte[]> m_Buf;  // bufferBytes, for getMD5_1K() alone
};

}  // namespace orrinvale
