// Which of the two ways, extents or a hard link, and the words where neither is open.
#include "engine/duplicates/share/ShareDoor.h"

#include <fmt/format.h>

#include <cerrno>
#include <string>

#include "engine/base/Log.h"
#include "engine/duplicates/share/shareContents.h"
#include "engine/duplicates/share/shareReasons.h"
#include "engine/removal/stayReasons.h"
#include "engine/removal/stayedWith.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/freeSpace.h"
#include "platform/paths.h"
#include "platform/sharing.h"

namespace orrinvale {
namespace {

using SharedBy = RemovalResult::Shared::By;

// The file system knows nothing of it.
bool isUnknownToSystem(int error) {
    return error == EOPNOTSUPP || error == ENOTTY || error == ENOSYS;
}

// Not these two, or none at all: a hard link may be had all the same.
bool isNoWay(int error) { return isUnknownToSystem(error) || error == EXDEV || error == EINVAL; }

StayedEntry withoutExtents(const std::string& path, int error) {
    if (isUnknownToSystem(error)) return {path, std::string(share::noExtents)};
    if (error == EXDEV) return {path, std::string(share::otherFileSystem)};
    if (error == EINVAL) return {path, std::string(share::notTheseTwo)};
    return {path, systemError("share", {}, error).reason(), stayReasonOf(error)};
}

RemovalResult notHeld(const std::string& path, const HeldEntry::Objection& why) {
    RemovalResult result = stayedWith({path, why.reason, why.why});
    if (why.kind != HeldEntry::Objection::Kind::NoEntry || why.error != ENOENT) return result;
    result = {};
    result.gone = result.byOthers = true;
    return result;
}

bool isOneSpace(const SharePair& pair) {
    return pair.held.attributes.device == pair.keptNow.device ||
           spaceOf(folderOf(pair.held.path)) == spaceOf(folderOf(pair.kept.path));
}

void logShare(const std::string& path, const RemovalResult& result) {
    if (result.shared)
        Log::line(fmt::format("{} has its bytes in common with {}{}", path, result.shared->with,
                              result.shared->by == SharedBy::HardLink ? ", as one file" : ""));
    else if (!result.failures.empty())
        Log::line(fmt::format("{} keeps its own bytes: {}", path, result.failures.front().reason));
}

}  // namespace

RemovalResult ShareDoor::remove(const LeavingEntry& entry, const std::atomic<bool>& stop) {
    RemovalResult result = share(entry, stop);
    if (!m_order.onlyLooks) logShare(entry.path, result);
    return result;
}

RemovalResult ShareDoor::share(const LeavingEntry& entry, const std::atomic<bool>& stop) {
    auto held = HeldEntry::at(m_files, m_places, entry.path, entry.identity, nullptr, &m_parents);
    if (!held) return notHeld(entry.path, held.error());
    if (entry.look == nullptr)
        return stayedWith({entry.path, std::string(stay::noCopy), StayReason::NoCopy});
    const auto pair = SharePair::open(m_files, std::move(*held), entry.look->kept());
    if (!pair) return stayedWith(pair.error());
    const bool mayHaveExtents = !m_withoutExtents.contains(pair->held.attributes.device);
    // The places of two disks are equal where one was copied whole from the other.
    if (pair->isOneFile() ||
        (mayHaveExtents && isOneSpace(*pair) &&
         hasSameExtents(pair->keptFile.get(), pair->file.get()).value_or(false)))
        return sharedBy(SharedBy::Already, *pair, 0);
    StayedEntry why;
    if (auto result = shareExtents(*pair, stop, why)) return std::move(*result);
    if (!m_order.objectionToLink) return stayedWith(std::move(why));
    return link(*pair, entry, stop);
}

// Before anything is changed, and without reading.
SysResult<void> ShareDoor::wouldShareExtents(const SharePair& pair) const {
    if (!isOneSpace(pair)) return tl::unexpected(EXDEV);
    return trySharing(pair.file.get(), pair.held.attributes.size);
}

// How many names of the file were only looked at, this one included; a real run sees what is left.
std::uint32_t ShareDoor::nameLooked(const SharePair& pair) {
    if (!m_order.onlyLooks) return 1;
    return ++m_looked[{pair.held.attributes.device, pair.held.attributes.inode}];
}

// Nothing where there is no such way for the two; `why` tells then.
std::optional<RemovalResult> ShareDoor::shareExtents(const SharePair& pair,
                                                     const std::atomic<bool>& stop,
                                                     StayedEntry& why) {
    const HeldEntry& held = pair.held;
    const std::uint64_t bytes = held.attributes.onDisk;
    SysResult<ShareEnd> end = ShareEnd::Shared;
    if (m_withoutExtents.contains(held.attributes.device)) end = tl::unexpected(EOPNOTSUPP);
    else if (!m_order.onlyLooks)
        end = shareContents(m_files, pair.keptFile.get(), pair.file.get(), held.attributes.size,
                            stop);
    else if (const auto would = wouldShareExtents(pair); !would)
        end = tl::unexpected(would.error());

    const bool isOneSystem = held.attributes.device == pair.keptNow.device;
    if (!end && isOneSystem && isUnknownToSystem(end.error()))
        m_withoutExtents.insert(held.attributes.device);
    if (end && *end == ShareEnd::Stopped) {
        RemovalResult result;
        result.stopped = true;
        return result;
    }
    // Cut or longer meanwhile: a stretch behind the end is refused like one that is none.
    if (!m_order.onlyLooks && !pair.isUnchanged(m_files))
        return stayedWith({held.path, std::string(stay::changed), StayReason::Changed});
    if (end && *end == ShareEnd::Different)
        return stayedWith({held.path, std::string(stay::otherContents), StayReason::NoCopy});
    if (end) return sharedBy(SharedBy::Extents, pair, nameLooked(pair) == 1 ? bytes : 0);
    why = withoutExtents(held.path, end.error());
    return isNoWay(end.error()) ? std::nullopt : std::optional(stayedWith(why));
}

// What stays may have been written just before the plan was made: it is on the disk before what was
// there for longer goes. Since then it has not changed, so that once for each disk is enough.
int ShareDoor::writeOut(const SharePair& pair) {
    if (m_writtenOut.contains(pair.keptNow.device)) return 0;
    const auto written = writeOutFileSystem(pair.keptFile.get());
    if (!written) return written.error();
    m_writtenOut.insert(pair.keptNow.device);
    return 0;
}

RemovalResult ShareDoor::link(const SharePair& pair, const LeavingEntry& entry,
                              const std::atomic<bool>& stop) {
    if (const auto why = m_order.objectionToLink(pair.kept, pair.keptNow.links); !why.empty())
        return stayedWith({pair.held.path, std::string(why), StayReason::Protected});
    if (!m_order.onlyLooks)
        if (const int error = writeOut(pair); error != 0)
            return stayedWith(
                {pair.held.path, systemError("sync", {}, error).reason(), stayReasonOf(error)});
    if (!m_order.onlyLooks) return linkCopy(m_files, m_ground, pair, entry, stop);
    if (auto reason = objectionToLink(m_ground, pair)) return stayedWith(std::move(*reason));
    const FileAttributes& copy = pair.held.attributes;
    return sharedBy(SharedBy::HardLink, pair, nameLooked(pair) < copy.links ? 0 : copy.onDisk);
}

}  // namespace orrinvale
