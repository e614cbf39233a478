// What a file showed right before and right after its other name went.
#include "engine/files/OwnChanges.h"

#include <cerrno>

#include "platform/files.h"

namespace orrinvale {
namespace {

bool isUnchanged(const FileAttributes& before, const FileAttributes& now) {
    return before.device == now.device && before.inode == now.inode && before.size == now.size &&
           before.modified == now.modified;
}

}  // namespace

// A descriptor that only holds the file needs no right to read it.
SysResult<void> OwnChanges::removeName(const FileSystem& files, int folder, const char* name,
                                       const FileAttributes& seen) {
    if (seen.type != FileType::Regular || seen.links < 2)
        return files.removeEntry(folder, name, FileType::Unknown);
    const auto held = files.holdEntry(folder, name);
    if (!held) return tl::unexpected(held.error());
    const auto before = files.attributes(held->get());
    if (!before) return tl::unexpected(before.error());
    if (!isUnchanged(seen, *before) || seen.changed != before->changed)
        return tl::unexpected(ESTALE);
    auto removal = files.removeEntry(folder, name, FileType::Unknown);
    if (!removal) return removal;
    const auto after = files.attributes(held->get());
    if (after) learn(*before, *after);
    return removal;
}

void OwnChanges::learn(const FileAttributes& before, const FileAttributes& after) {
    const std::pair file{before.device, before.inode};
    if (after.links == 0 || !isUnchanged(before, after)) m_files.erase(file);
    else m_files[file] = {.seen = withoutOurs(before).changed, .ours = after.changed};
}

FileAttributes OwnChanges::withoutOurs(FileAttributes now) const {
    if (now.links < 1 || m_files.empty()) return now;
    const auto known = m_files.find({now.device, now.inode});
    if (known != m_files.end() && known->second.ours == now.changed)
        now.changed = known->second.seen;
    return now;
}

}  // namespace orrinvale
