// A temporary folder that a test fills with whatever a disk can hold, and the means to run a check as another user or with few
// descriptors. Everything is made and removed relative to open folders, so that depth and length of paths do not matter.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "platform/linux/LinuxFiles.h"

namespace orrinvale::testing {

/// A fresh folder under $TMPDIR or /tmp, removed with all that is in it. Names are relative to it; the folders on the way are
/// made when they are missing. The operations answer whether the entry is there now.
class TestTree final {
public:
    /// In another folder than the usual one when `base` is given. Throws std::runtime_error when no folder can be made.
    explicit TestTree(std::string base = {});
    ~TestTree();
    TestTree(const TestTree&) = delete;
    TestTree& operator=(const TestTree&) = delete;

    [[nodiscard]] const std::string& path() const { return m_path; }
    [[nodiscard]] std::string at(std::string_view name) const { return m_path + '/' + std::string(name); }

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

    /// A chain of `levels` folders called "d" below `name`, with `leaf` as a file of these bytes in the last. With `sideFolders`
    /// each level holds a second folder "s" that holds such a file too.
    bool makeDeep(std::string_view name, int levels, std::string_view leaf, bool sideFolders = false);

private:
    bool makeParents(const std::string& full);
    std::string m_path;
};

/// True when something has this path, a link that leads nowhere included.
[[nodiscard]] bool isThere(const std::string& path);

/// The bytes of a file; empty when there is none.
[[nodiscard]] std::string contentOf(const std::string& path);

/// Pseudo-random bytes, the same for the same seed.
[[nodiscard]] std::string someBytes(std::size_t size, unsigned seed);

/// How runInChild() prepares the process.
struct ChildSetting {
    bool ordinaryUser = false;  ///< as uid 65534 where this process is root
    unsigned descriptors = 0;   ///< RLIMIT_NOFILE, 0 to leave it alone
};

/// Runs the check in a forked process with a minute to live. Its text comes back; so does a line about a crash or a time-out.
[[nodiscard]] std::string runInChild(const ChildSetting& setting, const std::function<std::string()>& check);

/// The real file system with a view on what is asked of it, and with faults of the test's choice.
class WatchedFiles final : public FileSystem {
public:
    std::function<void(const char* name)> onOpenFile;
    std::function<void()> onReadFolder;
    std::function<void()> onReadIdentities;
    std::function<void(const char* operation)>
        beforeRemoval;            ///< before each step of a removal, by its operation's name
    bool mountsFail = false;      ///< the table of mounts can not be read
    std::size_t descriptors = 0;  ///< what descriptorLimit() answers; 0 for the real one

    SysResult<Descriptor> openFolder(int parent, const char* name, Links links) const override {
        step("openFolder");
        return m_real.openFolder(parent, name, links);
    }
    SysResult<bool> readFolder(int folder, CatalogBatch& batch) const override {
        if (onReadFolder) onReadFolder();
        step("readFolder");
        return m_real.readFolder(folder, batch);
    }
    void readAttributes(int folder, std::span<CatalogEntry> entries) const override {
        m_real.readAttributes(folder, entries);
    }
    SysResult<FileAttributes> attributes(int parent, const char* name, Links links) const override {
        step("attributes");
        return m_real.attributes(parent, name, links);
    }
    SysResult<FileAttributes> attributes(int descriptor) const override { return m_real.attributes(descriptor); }
    SysResult<Descriptor> openFile(int parent, const char* name, Links links, ReadState& state) const override {
        if (onOpenFile) onOpenFile(name);
        return m_real.openFile(parent, name, links, state);
    }
    void beginReading(int file, std::uint64_t device, std::uint64_t offset, std::uint64_t length,
                      ReadState& state) const override {
        m_real.beginReading(file, device, offset, length, state);
    }
    void endReading(int file, ReadState& state) const override { m_real.endReading(file, state); }
    SysResult<std::size_t> read(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                ReadState& state) const override {
        return m_real.read(file, buffer, offset, state);
    }
    SysResult<std::size_t> readResident(int file, std::span<std::byte> buffer, std::uint64_t offset,
                                        ReadState& state) const override {
        return m_real.readResident(file, buffer, offset, state);
    }
    SysResult<bool> visitResident(int file, std::uint64_t offset, std::uint64_t length,
                                  const std::function<void(std::span<const std::byte>)>& visit) const override {
        return m_real.visitResident(file, offset, length, visit);
    }
    SysResult<DataStretch> nextData(int file, std::uint64_t offset) const override {
        return m_real.nextData(file, offset);
    }
    void expectRandomReads(int file) const override { m_real.expectRandomReads(file); }
    std::vector<std::uint64_t> kernelDevices() const override { return m_real.kernelDevices(); }
    SysResult<std::string> resolved(const std::string& path) const override { return m_real.resolved(path); }
    std::size_t descriptorLimit() const override { return descriptors != 0 ? descriptors : m_real.descriptorLimit(); }
    void useOwnDescriptors() const override { m_real.useOwnDescriptors(); }
    SysResult<Descriptor> holdFolder(int parent, const char* path, Links onTheWay) const override {
        step("holdFolder");
        return m_real.holdFolder(parent, path, onTheWay);
    }
    SysResult<Descriptor> openInside(int parent, const char* name) const override {
        step("openInside");
        return m_real.openInside(parent, name);
    }
    SysResult<void> removeEntry(int folder, const char* name, FileType type) const override {
        step("removeEntry");
        return m_real.removeEntry(folder, name, type);
    }
    SysResult<void> moveEntry(int folder, const char* name, int newFolder, const char* newName) const override {
        step("moveEntry");
        return m_real.moveEntry(folder, name, newFolder, newName);
    }
    SysResult<bool> clearImmutable(int descriptor) const override { return m_real.clearImmutable(descriptor); }
    void readSizes(int folder, std::span<CatalogEntry> entries) const override { m_real.readSizes(folder, entries); }
    void readIdentities(int folder, std::span<CatalogEntry> entries) const override {
        if (onReadIdentities) onReadIdentities();
        m_real.readIdentities(folder, entries);
    }
    SysResult<Descriptor> holdEntry(int parent, const char* name) const override {
        return m_real.holdEntry(parent, name);
    }
    SysResult<std::string> placeOf(int descriptor) const override { return m_real.placeOf(descriptor); }
    SysResult<std::vector<MountPoint>> mountPoints() const override {
        if (mountsFail) return tl::unexpected(5);  // EIO
        return m_real.mountPoints();
    }

private:
    void step(const char* operation) const {
        if (beforeRemoval) beforeRemoval(operation);
    }
    LinuxFileSystem m_real;
};

}  // namespace orrinvale::testing
