// DurableFile: small files that must survive a full disk, a bad disk and a kill: settings, history,
// property lists.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "platform/descriptor.h"
#include "platform/error.h"

namespace orrinvale {

/// One file while it is being replaced. The bytes go to NAME.new in the same folder, which is
/// flushed, renamed over NAME and made durable by flushing the folder. Whatever happens in between,
/// NAME is the old file or the new one, whole. NAME.new is locked while this object lives, so that
/// writers of one file take turns, in one process or in several; what a killed writer left of it is
/// used again by the next.
///
/// An object belongs to one thread; different objects may be used at the same time, also for one
/// path.
class DurableFile final {
public:
    using Test = std::function<bool(std::string_view bytes)>;
    enum class Owner : std::uint8_t { Any, Me };
    static constexpr int asideLimit = 99;

    /// The bytes of a regular file. No link is followed, and neither a pipe nor a device can hold
    /// the caller up. EFBIG when it has more than `limit` bytes; EPERM when it must be, and is not,
    /// this user's own.
    [[nodiscard]] static Result<std::string> read(const std::string& path, std::size_t limit,
                                                  Owner owner = Owner::Me);

    /// The bytes of this user's file if they pass the test. A file that can not be read, is too
    /// large or fails the test is renamed to NAME.bad and gives EBADMSG, this once; from then on it
    /// is missing. Where a NAME.bad stands, the next is NAME.bad.2, and so on up to asideLimit;
    /// then nothing more is put aside (EEXIST). What is no regular file or another user's is left
    /// alone.
    [[nodiscard]] static Result<std::string> readWell(const std::string& path, std::size_t limit,
                                                      const Test& isWell);

    /// Keeps these bytes of NAME, which stays as it is, under the next free name of those of
    /// readWell(), and gives the path of the copy; an empty one when such a copy was there already.
    /// Success means that one is on the disk.
    [[nodiscard]] static Result<std::string> keepCopy(const std::string& path,
                                                      std::string_view bytes);

    /// Where the path leads by links that this user has made, each of them looked at; the path
    /// itself when it is no link, and also when nothing is there. EPERM at another user's link,
    /// ELOOP when there is no end.
    [[nodiscard]] static Result<std::string> behindOwnLinks(const std::string& path);

    /// What commit() does beside replacing the bytes.
    struct Replacing {
        std::optional<unsigned> mode = std::nullopt;  ///< of the new file; nothing for 0600
        bool givesWayAsLink = false;     ///< a link of this user's goes, what it leads to stays
        bool givesWayOfAnybody = false;  ///< for a folder in which nothing but our own has a place
    };

    /// begin() and commit().
    [[nodiscard]] static Result<void> save(const std::string& path, std::string_view bytes);

    /// Takes this user's file away. No link is followed; what is no regular file or another user's
    /// stays and is told. Success also where nothing is there.
    [[nodiscard]] static Result<void> remove(const std::string& path);

    /// Makes a folder for this user alone (0700), with those above it, and flushes their entries.
    /// True success when it is there.
    [[nodiscard]] static Result<void> makeFolder(const std::string& path);

    /// Waits up to two seconds for another writer (EWOULDBLOCK). The folder must be there.
    [[nodiscard]] static Result<DurableFile> begin(const std::string& path);

    DurableFile(DurableFile&& other) noexcept = default;
    DurableFile& operator=(DurableFile&& other) = delete;
    DurableFile(const DurableFile&) = delete;
    DurableFile& operator=(const DurableFile&) = delete;
    /// Without commit() nothing has changed.
    ~DurableFile();

    /// readWell(), with no writer in between until commit().
    [[nodiscard]] Result<std::string> current(std::size_t limit, const Test& isWell) const;

    /// Success means: the new bytes are on the disk under the file's name. After an error they may
    /// stand there all the same, when only the folder could not be flushed. Once only.
    [[nodiscard]] Result<void> commit(std::string_view bytes) { return commit(bytes, {}); }
    [[nodiscard]] Result<void> commit(std::string_view bytes, const Replacing& how);

    /// commit() for what is not to lie in memory whole: finish() puts in place what append() was
    /// given, piece by piece. After an error of either nothing has changed, but as commit() says.
    [[nodiscard]] Result<void> append(std::string_view bytes);
    [[nodiscard]] Result<void> finish(const Replacing& how) { return commit({}, how); }

private:
    DurableFile(std::string path, Descriptor folder);

    [[nodiscard]] tl::unexpected<Error> failure(std::string_view operation, int number) const;
    [[nodiscard]] Result<bool> takeTemporary();
    [[nodiscard]] Result<void> flush() const;
    [[nodiscard]] Result<void> checkReplaceable(const Replacing& how) const;
    [[nodiscard]] Result<void> putAside() const;

    std::string m_path;
    std::string m_name;
    Descriptor m_folder;
    Descriptor m_file;         // NAME.new, locked; closed once committed
    std::uint64_t m_size = 0;  // what it has been given
};

}  // namespace orrinvale
