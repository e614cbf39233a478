// Reading of candidate files for their hashes. One object a thread. algorithm.h and HashAhead.h
// stand on it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "engine/duplicates/fileAttrbItem.h"
#include "engine/files/SkipList.h"
#include "engine/files/StopGrace.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Opens a candidate through its folder, which stays open until a candidate from another folder
/// comes: neighbours cost one look-up of one name each, however deep they lie. One thread.
class CandidateOpener final {
public:
    explicit CandidateOpener(const FileSystem& files) : m_files(files) {}

    /// The error notARegularFile, with nothing opened, when the listing saw something else than a
    /// regular file or a link, and when a link ends at something else: whoever writes into a pipe
    /// notices that it is opened.
    [[nodiscard]] SysResult<Descriptor> open(const fileAttrbItem& item);
    static constexpr int notARegularFile = 0;

    [[nodiscard]] ReadState& state() { return m_state; }

    /// Closes the folder that is held open. Must be called where the thread ends that has a table
    /// of descriptors of its own.
    void closeFolder() {
        m_folder.reset();
        m_folderNode = nullptr;
    }

private:
    const FileSystem& m_files;
    ReadState m_state;
    Descriptor m_folder;
    const FolderNode* m_folderNode = nullptr;
    int m_folderError = 0;
};

/// Hashes candidates. Every operation leaves the page cache as it was, takes regular files only,
/// and fails when the file changed while it was read; a failure is added to the skip list. One
/// thread.
///
/// A small file is taken as the listing saw it when it has as many bytes as it had then: who
/// removes a file compares it with the listing once more. A large one is known unchanged when it
/// has, after the read, the very attributes that the listing saw. Only where it has not (it changed
/// after the listing, or is reached through a link) it is read again between two looks at its
/// attributes. An error of a read is told as what it is, wherever in the file it comes.
class FileHasher final {
public:
    static constexpr std::size_t headBytes = 1024;  ///< what the first hash covers
    static constexpr std::size_t tailBytes =
        4096;  ///< what tells files of one head apart before the whole is read
    static constexpr std::size_t smallFile =
        32 * 1024;  ///< up to that a file is read whole at once

    /// All outlive the object; with `grace` a long read ends when that is over, as a failure that
    /// is not told.
    FileHasher(const FileSystem& files, SkipList& skipped, const StopGrace* grace = nullptr);

    void closeFolder() { m_opener.closeFolder(); }

    /// What hashSmall() read.
    struct Small {
        std::size_t bytes = 0;  ///< 0 on failure
        bool isListed = false;  ///< it had as many bytes as the listing saw
    };

    /// Reads a file of at most smallFile bytes once and sets both hashes.
    [[nodiscard]] Small hashSmall(fileAttrbItem& item);

    /// What hashEnds() found.
    struct Ends {
        bool hashed = false;   ///< md5_1k is set
        bool regular = false;  ///< the file is as listed, so that `tail` may tell it apart
        bool hasTail = false;
        std::uint64_t tail = 0;
    };

    /// Sets md5_1k, and takes the hash of the last bytes too when they are in memory already, or
    /// when `waitForTail` is set.
    [[nodiscard]] Ends hashEnds(fileAttrbItem& item, bool waitForTail);

    /// The hash of what the file has of its first kilobyte, for telling files apart; sets nothing,
    /// and 0 on failure.
    [[nodiscard]] std::uint64_t hashHead(const fileAttrbItem& item);

    /// The running hash over a stretch of the file, from the start value on; its length is in
    /// `length`. False on failure. A file that is not as listed is a failure here.
    [[nodiscard]] bool hashStretch(const fileAttrbItem& item, std::uint64_t offset,
                                   std::uint64_t length, std::uint64_t& value);

    /// Sets the whole-file hash (and no other) by reading from the start to the end. False on
    /// failure, an empty file included.
    [[nodiscard]] bool hashWhole(fileAttrbItem& item);

    /// True when the file was, at the time of the last successful hash, what the listing saw.
    [[nodiscard]] static bool isAsListed(const fileAttrbItem& item, const FileAttributes& now);

private:
    bool fail(const fileAttrbItem& item, const char* operation, int number);
    bool fail(const fileAttrbItem& item, Error error);
    bool failShort(const fileAttrbItem& item, int file, std::uint64_t end);
    SysResult<std::uint64_t> stream(int file, std::uint64_t device, std::uint64_t offset,
                                    std::uint64_t length, std::uint64_t& value);
    SysResult<std::uint64_t> streamData(int file, std::uint64_t offset, std::uint64_t length,
                                        std::uint64_t& value);
    bool hashSettled(fileAttrbItem& item, int file);
    std::span<std::byte> largeBuffer();

    const FileSystem& m_files;
    SkipList& m_skipped;
    const StopGrace* const m_grace;
    CandidateOpener m_opener;
    std::unique_ptr<std::byte[]> m_small;
    std::unique_ptr<std::byte[]> m_large;  // made when the first large file comes
};

}  // namespace orrinvale
