// MadeUpTimes: real files with times, inode numbers and devices that a test sets, and a clock that
// it turns.
#pragma once

#include <map>

#include "platform/lastingVolume.h"
#include "support/test.h"

namespace orrinvale::testing {

/// Every change goes through an operation of this class, which gives the times that a disk would.
/// One thread changes, while no search runs.
class MadeUpTimes final : private RealFiles, public ForwardingFiles {
public:
    struct Shown {
        std::uint64_t inode;
        std::int64_t modified, changed, born;
    };

    MadeUpTimes() : ForwardingFiles(real) {}

    TestTree tree;
    std::int64_t now = 1'700'000'000'123'456'789;
    std::uint64_t device = 0x801;
    std::optional<VolumeName> volume = VolumeName{1, 2};
    bool numbersPass = false;
    bool reusesNumbers = true;           ///< a new file gets the number of one that is gone
    mutable std::atomic<int> opened{0};  ///< files that were opened for reading

    static constexpr std::int64_t second = 1'000'000'000;

    void write(const std::string& name, std::string_view bytes) {
        const bool isNew = !isThere(tree.at(name));
        tree.write(name, bytes);
        Shown& file = of(name);
        if (isNew) file = {nextInode(), now, now, now};
        file.modified = file.changed = now;
    }
    /// What `touch -d` does.
    void setModified(const std::string& name, std::int64_t time) {
        of(name).modified = time;
        of(name).changed = now;
    }
    void rename(const std::string& from, const std::string& to) {
        remove(to);
        std::filesystem::rename(tree.at(from), tree.at(to));
        of(to).changed = now;
    }
    void link(const std::string& from, const std::string& to) {
        if (tree.hardLink(from, to)) of(to).changed = now;
    }
    void remove(const std::string& name) {
        if (!isThere(tree.at(name))) return;
        const FileAttributes before = attributesOf(tree.at(name));
        Shown& file = m_shown.at(before.inode);
        file.changed = now;
        if (before.links == 1) {  // its number is the next one's
            m_free.push_back(file.inode);
            m_shown.erase(before.inode);
        }
        std::filesystem::remove(tree.at(name));
    }
    [[nodiscard]] Shown& of(const std::string& name) {
        return m_shown[attributesOf(tree.at(name)).inode];
    }
    /// Of a file system whose numbers do not last.
    void renumber(std::mt19937& chance) {
        std::vector<std::uint64_t*> inodes;
        for (auto& [number, file] : m_shown) inodes.push_back(&file.inode);
        for (std::size_t at = inodes.size(); at > 1; --at)
            std::swap(*inodes[at - 1], *inodes[chance() % at]);
    }

    using ForwardingFiles::attributes;
    void readAttributes(int folder, std::span<CatalogEntry> entries) const override {
        ForwardingFiles::readAttributes(folder, entries);
        for (CatalogEntry& entry : entries) entry.attributes = shown(entry.attributes);
    }
    SysResult<FileAttributes> attributes(int parent, const char* name, Links links) const override {
        return ForwardingFiles::attributes(parent, name, links).map([this](const auto& seen) {
            return shown(seen);
        });
    }
    SysResult<FileAttributes> freshAttributes(int parent, const char* name,
                                              Links links) const override {
        return attributes(parent, name, links);
    }
    SysResult<FileAttributes> attributes(int descriptor) const override {
        return ForwardingFiles::attributes(descriptor).map([this](const auto& seen) {
            return shown(seen);
        });
    }
    SysResult<Descriptor> openFile(int parent, const char* name, Links links,
                                   ReadState& state) const override {
        ++opened;
        return ForwardingFiles::openFile(parent, name, links, state);
    }
    std::vector<std::uint64_t> devicesOfPassingInodes() const override {
        return numbersPass ? std::vector{device} : std::vector<std::uint64_t>{};
    }

private:
    FileAttributes shown(FileAttributes seen) const {
        seen.device = device;
        const auto file = m_shown.find(seen.inode);
        if (seen.type != FileType::Regular || file == m_shown.end()) return seen;
        seen.inode = file->second.inode;
        seen.modified = file->second.modified;
        seen.changed = file->second.changed;
        seen.born = file->second.born;
        return seen;
    }
    std::uint64_t nextInode() {
        if (m_free.empty() || !reusesNumbers) return ++m_lastInode;
        const std::uint64_t inode = m_free.back();
        m_free.pop_back();
        return inode;
    }

    std::map<std::uint64_t, Shown> m_shown;  // by the real inode
    std::vector<std::uint64_t> m_free;
    std::uint64_t m_lastInode = 1'000'000'000'000;
};

}  // namespace orrinvale::testing
