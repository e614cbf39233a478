// The order of the looks, and the words for each way in which they can fail.
#include "engine/removal/CopyLook.h"

#include "engine/removal/ContentComparison.h"
#include "engine/removal/stayReasons.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

StayedEntry noCopy(const HeldEntry& leaving, std::string_view reason = stay::noCopy) {
    return {leaving.path, std::string(reason), StayReason::NoCopy};
}

std::string wordsOf(int error) { return systemError("read", {}, error).reason(); }

SysResult<Descriptor> openKept(const FileSystem& files, const KeptCopy& kept) {
    const auto folder = HeldEntry::holdParentOf(files, kept.path);
    if (!folder) return tl::unexpected(folder.error());
    ReadState state;
    return files.openFile(folder->get(), std::string(lastPathComponent(kept.path)).c_str(),
                          Links::Keep, state);
}

}  // namespace

// Only files have contents; of anything else the look at the entry itself is enough.
std::optional<StayedEntry> FileLook::before(const HeldEntry& leaving,
                                            const std::atomic<bool>& stop) {
    if (leaving.attributes.type != FileType::Regular) return std::nullopt;
    if (auto reason = openBoth(leaving)) return reason;
    if (auto reason = inUse(leaving)) return reason;
    if (!m_compares || !m_keptFile.isOpen()) return std::nullopt;
    const FileAttributes& ours = leaving.attributes;  // as openBoth() found both
    const EntryIdentity& theirs = m_kept->identity;
    const auto answer = compareContents(m_files, {m_leavingFile.get(), ours.device, ours.size},
                                        {m_keptFile.get(), theirs.device, theirs.size}, stop);
    if (!answer) return StayedEntry{leaving.path, wordsOf(answer.error())};
    if (*answer == Comparison::Different) return noCopy(leaving, stay::otherContents);
    return std::nullopt;
}

// A file that may not be read can not be compared, and goes all the same where nothing has to stay.
std::optional<StayedEntry> FileLook::openBoth(const HeldEntry& leaving) {
    ReadState state;
    auto file = m_files.openFile(leaving.parent.get(), leaving.name.c_str(), Links::Keep, state);
    if (file) {
        const auto opened = m_files.attributes(file->get());
        if (!opened || opened->size != leaving.attributes.size ||
            opened->changed != leaving.attributes.changed)
            return StayedEntry{leaving.path, std::string(stay::changed), StayReason::Changed};
        m_leavingFile = std::move(*file);
    }
    if (!m_kept || m_kept->identity.type != FileType::Regular) return std::nullopt;
    if (!m_leavingFile.isOpen() && m_compares)
        return StayedEntry{leaving.path, wordsOf(file.error())};
    auto kept = openKept(m_files, *m_kept);
    if (!kept) return noCopy(leaving);
    const auto now = m_files.attributes(kept->get());
    if (!now || !m_kept->identity.isStill(*now)) return noCopy(leaving);
    m_keptFile = std::move(*kept);
    return std::nullopt;
}

std::optional<StayedEntry> FileLook::inUse(const HeldEntry& leaving) const {
    if (m_leavingFile.isOpen() && m_files.isOpenForWriting(m_leavingFile.get()))
        return StayedEntry{leaving.path, std::string(stay::inUse), StayReason::InUse};
    if (m_keptFile.isOpen() && m_files.isOpenForWriting(m_keptFile.get()))
        return noCopy(leaving, stay::copyInUse);
    return std::nullopt;
}

// What was compared is what is held open; that this is what stands under the name, the look at the
// set-aside entry tells.
std::optional<StayedEntry> FileLook::last(const HeldEntry& leaving, const std::string& /*name*/) {
    if (!m_leavingFile.isOpen()) return std::nullopt;
    const auto held = m_files.attributes(m_leavingFile.get());
    if (!held) return StayedEntry{leaving.path, wordsOf(held.error())};
    const FileAttributes& seen = leaving.attributes;
    if (held->size != seen.size || held->modified != seen.modified)
        return StayedEntry{leaving.path, std::string(stay::changed), StayReason::Changed};
    return inUse(leaving);
}

}  // namespace orrinvale
