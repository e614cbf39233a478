// FolderRest: what the walk of a search left out of folders that may be equal: hidden entries,
// small files, links, what a filter takes no interest in.
#pragma once

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "engine/duplicates/folders/FolderTable.h"
#include "engine/files/SkipList.h"
#include "platform/fileTypes.h"

namespace orrinvale {

class ProtectedFolders;

/// Driven by one thread; reads with several. Everything given at construction outlives it.
class FolderRest final {
public:
    /// `guard` may be null: nothing is protected then.
    FolderRest(const FileSystem& files, FolderTable& table, const ProtectedFolders* guard,
               const std::atomic<bool>& stop, SkipList& skipped)
        : m_files(files), m_table(table), m_guard(guard), m_stop(stop), m_skipped(skipped) {}

    /// Of each candidate with entries that the walk left out: lists them, with what is in folders
    /// among them, and adds them to the row, files by their sizes alone. Odd becomes what can not
    /// be read, holds a mount, or something that is no file, link or folder.
    void look(const FileArray& listed);

    /// Puts contents in the place of the sizes, in what are candidates still. Odd becomes what has
    /// a file that no other of these has.
    void hash();

    struct File {
        std::uint32_t row = 0;
        std::string name;  ///< below the folder of the row
        fileAttrbItem* item = nullptr;
    };
    [[nodiscard]] const std::vector<File>& files() const { return m_found; }

private:
    struct Task;
    struct Found {
        std::string name;
        FileAttributes attributes;
    };
    std::vector<Task> tasks(const FileArray& listed) const;
    void lookAt(Task& task);
    bool list(Task& task, int folder);
    bool take(Task& task, int folder, const char* name);
    bool takeTree(Task& task, int folder, const char* name);
    bool add(Task& task, std::string name, const FileAttributes& seen, std::string_view linkText);
    void keep(Task& task);
    bool fail(const Task& task, std::string_view operation, std::string_view name, int number);

    const FileSystem& m_files;
    FolderTable& m_table;
    const ProtectedFolders* const m_guard;
    const std::atomic<bool>& m_stop;
    SkipList& m_skipped;
    std::mutex m_mutex;
    FileArray m_items;          // guarded by m_mutex while threads read
    std::vector<File> m_found;  // likewise
};

}  // namespace orrinvale
