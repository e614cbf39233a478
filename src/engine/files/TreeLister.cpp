// A list of levels stands in for the call stack. Only two descriptors are held: on the way back the
// parent is opened through "..", and must be the folder that was left.
#include "engine/files/TreeLister.h"

#include <algorithm>
#include <cerrno>
#include <optional>
#include <vector>

#include "platform/files.h"

namespace orrinvale {
namespace {

struct ListedEntry {
    std::string name;
    FileType type;
};

struct Level {
    std::vector<ListedEntry> entries;
    std::size_t next = 0;
    std::size_t pathLength = 0;  // of the relative path of this folder
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
};

// A file system that is changed while it is listed may give one name twice.
void sortByBytes(std::vector<ListedEntry>& entries) {
    std::sort(entries.begin(), entries.end(),
              [](const ListedEntry& a, const ListedEntry& b) { return a.name < b.name; });
    const auto sameName = [](const ListedEntry& a, const ListedEntry& b) {
        return a.name == b.name;
    };
    entries.erase(std::unique(entries.begin(), entries.end(), sameName), entries.end());
}

class Lister {
public:
    Lister(const FileSystem& files, int start, const TreeListing& listing,
           const std::atomic<bool>& stop)
        : m_files(files), m_start(start), m_listing(listing), m_stop(stop) {}

    SysResult<void> run() {
        const int error = enter(m_start);
        if (error != 0) return tl::unexpected(error);
        while (!m_levels.empty() && !m_stop) {
            Level& level = m_levels.back();
            if (level.next < level.entries.size()) visit(level.entries[level.next++]);
            else leave();
        }
        return {};
    }

private:
    int folder() const { return m_folder.isOpen() ? m_folder.get() : m_start; }

    // Reads the whole folder; 0 or an errno. The level is there afterwards only on success.
    int enter(int descriptor) {
        if (m_listing.enter) m_listing.enter(m_path);
        Level level;
        level.pathLength = m_path.size();
        const auto identity = m_files.attributes(descriptor);
        if (!identity) return identity.error();
        level.device = identity->device;
        level.inode = identity->inode;
        while (!m_stop) {
            const auto more = m_files.readFolder(descriptor, m_batch);
            if (!more) return more.error();
            if (!*more) break;
            for (const CatalogEntry& entry : m_batch.entries)
                level.entries.push_back({entry.name, entry.type});
        }
        if (m_listing.order == TreeListing::Order::SortedByBytes) sortByBytes(level.entries);
        m_levels.push_back(std::move(level));
        return 0;
    }

    void visit(ListedEntry& entry) {
        const std::size_t length = m_path.size();
        if (length != 0) m_path += '/';
        m_path += entry.name;
        if (entry.type == FileType::Unknown) {
            const auto attributes = m_files.attributes(folder(), entry.name.c_str(), Links::Keep);
            if (attributes) entry.type = attributes->type;
        }
        if (entry.type == FileType::Folder && descend(entry))
            return;  // the path stays until leave()
        if (entry.type != FileType::Folder)
            m_listing.entry({folder(), entry.name, m_path, entry.type});
        m_path.resize(length);
    }

    bool descend(const ListedEntry& entry) {
        if (m_listing.foldersFirst)
            m_listing.entry({folder(), entry.name, m_path, FileType::Folder});
        if (m_listing.mayEnter &&
            !m_listing.mayEnter({folder(), entry.name, m_path, FileType::Folder}))
            return false;
        auto opened = m_files.openFolder(folder(), entry.name.c_str(), Links::Keep);
        const int error = opened ? enter(opened->get()) : opened.error();
        if (error != 0) {
            if (m_listing.failed) m_listing.failed(m_path, error);
            return false;
        }
        m_folder = std::move(*opened);
        return true;
    }

    void leave() {
        const Level done = std::move(m_levels.back());
        m_levels.pop_back();
        if (m_levels.empty()) return;
        Level& parent = m_levels.back();
        const int error = goUp(parent);
        if (error == 0) {
            const ListedEntry& self = parent.entries[parent.next - 1];
            if (!m_listing.foldersFirst)
                m_listing.entry({folder(), self.name, m_path, FileType::Folder});
        }
        m_path.resize(parent.pathLength);
        if (error == 0) return;
        if (m_listing.failed) m_listing.failed(m_path, error);
        parent.next = parent.entries.size();  // what is left of it is out of reach
    }

    int goUp(const Level& parent) {
        if (m_levels.size() == 1) {
            m_folder.reset();
            return 0;
        }
        auto opened = m_files.openFolder(m_folder.get(), "..", Links::Keep);
        // A folder that may be listed but not searched does not let go back through it.
        if (!opened)
            opened =
                openFolderBelow(m_files, m_start, m_path.substr(0, parent.pathLength), Links::Keep);
        if (!opened) return opened.error();
        const auto identity = m_files.attributes(opened->get());
        if (!identity) return identity.error();
        m_folder = std::move(*opened);
        const bool isSame = identity->device == parent.device && identity->inode == parent.inode;
        return isSame || (identity->device == parent.device && inodesPass(parent.device)) ? 0
                                                                                          : ESTALE;
    }

    // Asked only when numbers differ.
    bool inodesPass(std::uint64_t device) {
        if (!m_passing) m_passing = m_files.devicesOfPassingInodes();
        return std::binary_search(m_passing->begin(), m_passing->end(), device);
    }

    const FileSystem& m_files;
    const int m_start;
    const TreeListing& m_listing;
    const std::atomic<bool>& m_stop;
    std::vector<Level> m_levels;
    Descriptor m_folder;  // the folder in hand, when it is not the start
    CatalogBatch m_batch;
    std::string m_path;
    std::optional<std::vector<std::uint64_t>> m_passing;
};

}  // namespace

SysResult<void> listTree(const FileSystem& files, int start, const TreeListing& listing,
                         const std::atomic<bool>& stop) {
    return Lister(files, start, listing, stop).run();
}

}  // namespace orrinvale
