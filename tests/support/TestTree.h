// A temporary folder that a test fills with whatever a disk can hold, and the means to run a check
// as another user or with few descriptors. Everything is made and removed relative to open folders,
// so that depth and length of paths do not matter.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ForwardingFiles.h"
#include "platform/linux/LinuxFiles.h"

namespace orrinvale::testing {

/// A fresh folder under $TMPDIR or /tmp, removed with all that is in it. Names are relative to it;
/// the folders on the way are made when they are missing. The operations answer whether the entry
/// is there now.
class TestTree final {
public:
    /// In another folder than the usual one when `base` is given. Throws std::runtime_error when no
    /// folder can be made.
    explicit TestTree(std::string base = {});
    ~TestTree();
    TestTree(const TestTree&) = delete;
    TestTree& operator=(const TestTree&) = delete;

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] std::string at(std::string_view name) const {
        return m_path + '/' + std::string(name);
    }

    bool write(std::string_view name, std::string_view bytes);
    /// A file of this size without blocks; bytes can be set with patch().
    bool sparse(std::string_view name, std::uint64_t size);
    bool patch(std::string_view name, std::uint64_t offset, std::string_view bytes);
    bool folder(std::string_view name);
    bool symlink(std::string_view target, std::string_view name);
    bool hardLink(std::string_view existing, std::string_view name);
    bool fifo(std::string_view name);
    bool socket(std::string_view name);
    bool setMode(std::string_view name, mode_t mode);
    /// To an ordinary user; false where this process may not.
    bool giveAway(std::initializer_list<std::string_view> names);

    /// A chain of `levels` folders called "d" below `name`, with `leaf` as a file of these bytes in
    /// the last. With `sideFolders` each level holds a second folder "s" that holds such a file
    /// too.
    bool makeDeep(std::string_view name, int levels, std::string_view leaf,
                  bool sideFolders = false);

private:
    bool makeParents(const std::string& full);
    std::string m_path;
};

/// True when something has this path, a link that leads nowhere included.
[[nodiscard]] bool isThere(const std::string& path);

/// The bytes of a file; empty when there is none.
[[nodiscard]] std::string contentOf(const std::string& path);

/// The names in a folder, in order.
[[nodiscard]] std::vector<std::string> namesIn(const std::string& folder);

/// Of an entry that is there; a link is not followed.
[[nodiscard]] FileAttributes attributesOf(const std::string& path);

/// Does something to an entry and sets its times back, as somebody does who wants it to go
/// unnoticed.
void keepTimes(const std::string& path, const std::function<void()>& change);

/// Pseudo-random bytes, the same for the same seed.
[[nodiscard]] std::string someBytes(std::size_t size, unsigned seed);

/// How runInChild() prepares the process.
struct ChildSetting {
    bool ordinaryUser = false;  ///< as uid 65534 where this process is root
    unsigned descriptors = 0;   ///< RLIMIT_NOFILE, 0 to leave it alone
};

/// Runs the check in a forked process with a minute to live. Its text comes back; so does a line
/// about a crash or a time-out.
[[nodiscard]] std::string runInChild(const ChildSetting& setting,
                                     const std::function<std::string()>& check);

/// From now on this process gets the errno from every system call of that number: for runInChild().
/// False when it can not be had.
[[nodiscard]] bool failSystemCall(long number, int error);

/// The real file system with a view on what is asked of it, and with faults of the test's choice.
/// What WatchedFiles stands on; a base, so that it is there before it is handed over.
struct RealFiles {
    LinuxFileSystem real;
};

class WatchedFiles final : private RealFiles, public ForwardingFiles {
public:
    WatchedFiles() : ForwardingFiles(real) {}
    std::function<void(const char* name)> onOpenFile;
    std::function<void()> onReadFolder;
    std::function<void()> onReadIdentities;
    std::function<void(const char* operation)>
        beforeRemoval;            ///< before each step of a removal, by its operation's name
    bool mountsFail = false;      ///< the table of mounts can not be read
    std::size_t descriptors = 0;  ///< what descriptorLimit() answers; 0 for the real one

    SysResult<Descriptor> openFolder(int parent, const char* name, Links links) const override {
        step("openFolder");
        return ForwardingFiles::openFolder(parent, name, links);
    }
    SysResult<bool> readFolder(int folder, CatalogBatch& batch) const override {
        if (onReadFolder) onReadFolder();
        step("readFolder");
        return ForwardingFiles::readFolder(folder, batch);
    }
    using ForwardingFiles::attributes;
    SysResult<FileAttributes> attributes(int parent, const char* name, Links links) const override {
        step("attributes");
        return ForwardingFiles::attributes(parent, name, links);
    }
    SysResult<FileAttributes> freshAttributes(int parent, const char* name,
                                              Links links) const override {
        step("freshAttributes");
        return ForwardingFiles::freshAttributes(parent, name, links);
    }
    SysResult<Descriptor> openFile(int parent, const char* name, Links links,
                                   ReadState& state) const override {
        if (onOpenFile) onOpenFile(name);
        return ForwardingFiles::openFile(parent, name, links, state);
    }
    std::size_t descriptorLimit() const override {
        return descriptors != 0 ? descriptors : ForwardingFiles::descriptorLimit();
    }
    SysResult<Descriptor> holdFolder(int parent, const char* path, Links onTheWay) const override {
        step("holdFolder");
        return ForwardingFiles::holdFolder(parent, path, onTheWay);
    }
    SysResult<Descriptor> openInside(int parent, const char* name) const override {
        step("openInside");
        return ForwardingFiles::openInside(parent, name);
    }
    SysResult<void> removeEntry(int folder, const char* name, FileType type) const override {
        step("removeEntry");
        return ForwardingFiles::removeEntry(folder, name, type);
    }
    SysResult<void> moveEntry(int folder, const char* name, int newFolder,
                              const char* newName) const override {
        step("moveEntry");
        return ForwardingFiles::moveEntry(folder, name, newFolder, newName);
    }
    SysResult<void> renameInside(int folder, const char* name, const char* newName) const override {
        step("renameInside");
        return ForwardingFiles::renameInside(folder, name, newName);
    }
    void readIdentities(int folder, std::span<CatalogEntry> entries) const override {
        if (onReadIdentities) onReadIdentities();
        ForwardingFiles::readIdentities(folder, entries);
    }
    SysResult<std::vector<MountPoint>> mountPoints() const override {
        if (mountsFail) return tl::unexpected(5);  // EIO
        return ForwardingFiles::mountPoints();
    }

private:
    void step(const char* operation) const {
        if (beforeRemoval) beforeRemoval(operation);
    }
};

}  // namespace orrinvale::testing
