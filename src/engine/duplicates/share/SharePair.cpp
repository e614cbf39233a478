// The looks at both files, and the link.
#include "engine/duplicates/share/SharePair.h"

#include <cerrno>
#include <string>
#include <utility>

#include "engine/duplicates/share/shareReasons.h"
#include "engine/removal/nameOfLink.h"
#include "engine/removal/stayReasons.h"
#include "engine/removal/stayedWith.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "platform/sharing.h"

namespace orrinvale {
namespace {

StayedEntry keptAsItIs(const HeldEntry& held, std::string_view reason, StayReason kind) {
    return {held.path, std::string(reason), kind};
}

StayedEntry changedCopy(const HeldEntry& held) {
    return keptAsItIs(held, stay::changed, StayReason::Changed);
}

SysResult<Descriptor> openStaying(const FileSystem& files, const std::string& path) {
    const auto folder = HeldEntry::holdParentOf(files, path);
    if (!folder) return tl::unexpected(folder.error());
    ReadState state;
    return files.openFile(folder->get(), std::string(lastPathComponent(path)).c_str(), Links::Keep,
                          state);
}

StayedEntry failedLink(const HeldEntry& held, int error) {
    switch (error) {
        case EMLINK: return keptAsItIs(held, share::mostNames, StayReason::System);
        case EXDEV: return keptAsItIs(held, share::otherFileSystem, StayReason::System);
        case EEXIST: return keptAsItIs(held, stay::otherInPlace, StayReason::Changed);
        default: return {held.path, systemError("link", {}, error).reason(), stayReasonOf(error)};
    }
}

// What stands under the name now is the copy that stays, as it was.
bool hasTakenName(const FileSystem& files, const SharePair& pair) {
    const auto named =
        files.attributes(pair.held.parent.get(), pair.held.name.c_str(), Links::Keep);
    const auto kept = files.attributes(pair.keptFile.get());
    return named && kept && named->device == kept->device && named->inode == kept->inode &&
           kept->size == pair.keptNow.size && kept->modified == pair.keptNow.modified;
}

// From here on the entry is aside. Nothing where the link has its name.
std::optional<StayedEntry> linkOverAside(const FileSystem& files, SetAside& aside,
                                         const SharePair& pair, CopyLook& look) {
    if (auto reason = aside.objection(pair.kept)) return reason;
    if (auto reason = look.last(pair.held, aside.name())) return reason;
    const int folder = pair.held.parent.get();
    const auto linked = linkOpenFile(pair.keptFile.get(), folder, pair.held.name.c_str());
    if (!linked) return failedLink(pair.held, linked.error());
    if (hasTakenName(files, pair)) {
        const auto removed = files.removeEntry(folder, aside.name().c_str(), FileType::Regular);
        if (removed || removed.error() == ENOENT) return std::nullopt;
        (void)takeBackFromLink(files, folder, aside.name(), pair.held.name);
        return failedLink(pair.held, removed.error());
    }
    (void)takeBackFromLink(files, folder, aside.name(), pair.held.name);
    return changedCopy(pair.held);
}

}  // namespace

RemovalResult sharedBy(RemovalResult::Shared::By by, const SharePair& pair, std::uint64_t bytes) {
    RemovalResult result;
    result.shared =
        RemovalResult::Shared{by, pair.kept.path, bytes, {pair.keptNow.device, pair.keptNow.inode}};
    return result;
}

tl::expected<SharePair, StayedEntry> SharePair::open(const FileSystem& files, HeldEntry held,
                                                     const std::optional<KeptCopy>& kept) {
    if (!kept) return tl::unexpected(keptAsItIs(held, stay::noCopy, StayReason::NoCopy));
    if (held.attributes.type != FileType::Regular || kept->identity.type != FileType::Regular)
        return tl::unexpected(keptAsItIs(held, share::noFile, StayReason::System));
    ReadState state;
    auto file = files.openFile(held.parent.get(), held.name.c_str(), Links::Keep, state);
    auto keptFile = openStaying(files, kept->path);
    if (!file || !keptFile) {
        const int error = !file ? file.error() : keptFile.error();
        return tl::unexpected(
            StayedEntry{held.path, systemError("open", {}, error).reason(), stayReasonOf(error)});
    }
    const auto now = files.attributes(file->get());
    const auto keptNow = files.attributes(keptFile->get());
    if (!now || !EntryIdentity::of(held.attributes).isStill(*now))
        return tl::unexpected(changedCopy(held));
    if (!keptNow || !kept->identity.isStill(*keptNow) || keptNow->size != now->size)
        return tl::unexpected(keptAsItIs(held, stay::noCopy, StayReason::NoCopy));
    held.attributes = *now;
    return SharePair{std::move(held), *kept, std::move(*file), std::move(*keptFile), *keptNow};
}

bool SharePair::isUnchanged(const FileSystem& files) const {
    const auto named = files.attributes(held.parent.get(), held.name.c_str(), Links::Keep);
    const auto now = files.attributes(keptFile.get());
    return named && now && EntryIdentity::of(held.attributes).isStill(*named) &&
           now->size == keptNow.size && now->modified == keptNow.modified;
}

std::optional<StayedEntry> objectionToLink(RenameGround& ground, const SharePair& pair) {
    const HeldEntry& held = pair.held;
    if (held.attributes.device != pair.keptNow.device)
        return keptAsItIs(held, share::otherFileSystem, StayReason::System);
    if (!ground.inodesLast(held.attributes.device))
        return keptAsItIs(held, share::notTheseTwo, StayReason::System);
    if (isOthersCommonFolder(held.parent.get()))
        return keptAsItIs(held, share::common, StayReason::Protected);
    const auto ours = belongingsOf(pair.file.get());
    const auto theirs = belongingsOf(pair.keptFile.get());
    if (!ours || !theirs) return failedLink(held, !ours ? ours.error() : theirs.error());
    if (ours->isFixed || theirs->isFixed)
        return keptAsItIs(held, share::fixed, StayReason::Protected);
    if (*ours != *theirs) return keptAsItIs(held, share::otherBelongings, StayReason::Kept);
    return std::nullopt;
}

RemovalResult linkCopy(const FileSystem& files, RenameGround& ground, const SharePair& pair,
                       const LeavingEntry& entry, const std::atomic<bool>& stop) {
    if (auto reason = objectionToLink(ground, pair)) return stayedWith(std::move(*reason));
    if (auto reason = entry.look->before(pair.held, stop)) return stayedWith(std::move(*reason));
    RemovalResult result;
    result.stopped = stop;
    if (stop) return result;
    SetAside aside(files, ground, pair.held);
    const auto taken =
        entry.token.empty() ? tl::expected<bool, StayedEntry>(false) : aside.take(entry.token);
    if (!taken) return stayedWith(taken.error());
    if (!*taken) return stayedWith(keptAsItIs(pair.held, share::noAside, StayReason::System));
    if (auto reason = linkOverAside(files, aside, pair, *entry.look)) {
        result = stayedWith(std::move(*reason));
        if (auto place = aside.putBack())
            result.failures.insert(result.failures.begin(), std::move(*place));
        result.changed = aside.changedByUs(false);
        return result;
    }
    const std::uint64_t bytes = pair.held.attributes.links < 2 ? pair.held.attributes.onDisk : 0;
    result = sharedBy(RemovalResult::Shared::By::HardLink, pair, bytes);
    result.changed = aside.changedByUs(true);
    const auto kept = files.attributes(pair.keptFile.get());
    if (kept) result.shared->keptChanged = kept->changed;
    return result;
}

}  // namespace orrinvale
