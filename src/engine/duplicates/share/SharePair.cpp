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

PairObjection ofThese(StayedEntry why) { return {std::move(why), true}; }
PairObjection ofCopy(StayedEntry why) { return {std::move(why), false}; }

PairObjection failedLink(const HeldEntry& held, int error) {
    switch (error) {
        case EMLINK: return ofThese(keptAsItIs(held, share::mostNames, StayReason::System));
        case EXDEV: return ofThese(keptAsItIs(held, share::otherFileSystem, StayReason::System));
        case EEXIST: return ofCopy(keptAsItIs(held, stay::otherInPlace, StayReason::Changed));
        default:
            return ofCopy(
                {held.path, systemError("link", {}, error).reason(), stayReasonOf(error)});
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

struct Unlinked {
    PairObjection objection;
    bool wasLinked = false;  // for a moment, which gave what stays another time of change
};

// From here on the entry is aside. Nothing where the link has its name.
std::optional<Unlinked> linkOverAside(const FileSystem& files, SetAside& aside,
                                      const SharePair& pair, CopyLook& look) {
    if (auto reason = aside.objection(pair.kept)) {
        const bool isOfThese = reason->reason == stay::noCopy;
        return Unlinked{{std::move(*reason), isOfThese}};
    }
    if (auto reason = look.last(pair.held, aside.name()))
        return Unlinked{ofCopy(std::move(*reason))};
    const int folder = pair.held.parent.get();
    const auto linked = linkOpenFile(pair.keptFile.get(), folder, pair.held.name.c_str());
    if (!linked) return Unlinked{failedLink(pair.held, linked.error())};
    if (hasTakenName(files, pair)) {
        const auto removed = files.removeEntry(folder, aside.name().c_str(), FileType::Regular);
        if (removed || removed.error() == ENOENT) return std::nullopt;
        (void)takeBackFromLink(files, folder, aside.name(), pair.held.name);
        return Unlinked{failedLink(pair.held, removed.error()), true};
    }
    (void)takeBackFromLink(files, folder, aside.name(), pair.held.name);
    return Unlinked{ofCopy(changedCopy(pair.held)), true};
}

// The entry gets its own name back.
LinkEnd unlinkedEnd(const FileSystem& files, SetAside& aside, const SharePair& pair,
                    Unlinked unlinked) {
    LinkEnd end{stayedWith(std::move(unlinked.objection.why)), unlinked.objection.isOfThese};
    if (auto place = aside.putBack()) {
        end.result.failures.insert(end.result.failures.begin(), std::move(*place));
        end.isOfThese = false;
    }
    end.result.changed = aside.changedByUs(false);
    const auto kept = files.attributes(pair.keptFile.get());
    if (unlinked.wasLinked && kept) end.keptChanged = kept->changed;
    return end;
}

}  // namespace

RemovalResult sharedBy(RemovalResult::Shared::By by, const SharePair& pair, std::uint64_t bytes) {
    RemovalResult result;
    result.shared =
        RemovalResult::Shared{by, pair.kept.path, bytes, {pair.keptNow.device, pair.keptNow.inode}};
    return result;
}

tl::expected<SharePair, PairObjection> SharePair::open(const FileSystem& files, HeldEntry held,
                                                       const std::optional<KeptCopy>& kept) {
    if (!kept) return tl::unexpected(ofCopy(keptAsItIs(held, stay::noCopy, StayReason::NoCopy)));
    if (held.attributes.type != FileType::Regular || kept->identity.type != FileType::Regular)
        return tl::unexpected(ofCopy(keptAsItIs(held, share::noFile, StayReason::System)));
    ReadState state;
    auto file = files.openFile(held.parent.get(), held.name.c_str(), Links::Keep, state);
    auto keptFile = openStaying(files, kept->path);
    if (!file || !keptFile) {
        const int error = !file ? file.error() : keptFile.error();
        return tl::unexpected(
            PairObjection{{held.path, systemError("open", {}, error).reason(), stayReasonOf(error)},
                          file.has_value()});
    }
    const auto now = files.attributes(file->get());
    const auto keptNow = files.attributes(keptFile->get());
    if (!now || !EntryIdentity::of(held.attributes).isStill(*now))
        return tl::unexpected(ofCopy(changedCopy(held)));
    if (!keptNow || !kept->identity.isStill(*keptNow) || keptNow->size != now->size)
        return tl::unexpected(ofThese(keptAsItIs(held, stay::noCopy, StayReason::NoCopy)));
    held.attributes = *now;
    return SharePair{std::move(held), *kept, std::move(*file), std::move(*keptFile), *keptNow};
}

bool SharePair::isUnchanged(const FileSystem& files) const {
    const auto named = files.attributes(held.parent.get(), held.name.c_str(), Links::Keep);
    const auto now = files.attributes(keptFile.get());
    return named && now && EntryIdentity::of(held.attributes).isStill(*named) &&
           now->size == keptNow.size && now->modified == keptNow.modified;
}

std::optional<PairObjection> objectionToLink(RenameGround& ground, const SharePair& pair,
                                             std::uint32_t names) {
    const HeldEntry& held = pair.held;
    if (held.attributes.device != pair.keptNow.device)
        return ofThese(keptAsItIs(held, share::otherFileSystem, StayReason::System));
    if (!ground.inodesLast(held.attributes.device))
        return ofCopy(keptAsItIs(held, share::notTheseTwo, StayReason::System));
    if (isOthersCommonFolder(held.parent.get()))
        return ofCopy(keptAsItIs(held, share::common, StayReason::Protected));
    const auto ours = belongingsOf(pair.file.get());
    if (!ours) return failedLink(held, ours.error());
    const auto theirs = belongingsOf(pair.keptFile.get());
    if (!theirs) return ofThese(failedLink(held, theirs.error()).why);
    if (ours->isFixed) return ofCopy(keptAsItIs(held, share::fixed, StayReason::Protected));
    if (theirs->isFixed) return ofThese(keptAsItIs(held, share::fixed, StayReason::Protected));
    if (*ours != *theirs)
        return ofThese(keptAsItIs(held, share::otherBelongings, StayReason::Kept));
    if (names >= mostNamesOf(pair.keptFile.get()).value_or(~std::uint32_t{0}))
        return failedLink(held, EMLINK);
    return std::nullopt;
}

LinkEnd linkCopy(const FileSystem& files, RenameGround& ground, const SharePair& pair,
                 const LeavingEntry& entry, CopyLook& look, const std::atomic<bool>& stop) {
    if (auto reason = look.before(pair.held, stop)) {
        const bool isOfThese = reason->reason == stay::copyInUse;
        return {stayedWith(std::move(*reason)), isOfThese};
    }
    LinkEnd end;
    end.result.stopped = stop;
    if (stop) return end;
    SetAside aside(files, ground, pair.held);
    const auto taken =
        entry.token.empty() ? tl::expected<bool, StayedEntry>(false) : aside.take(entry.token);
    if (!taken) return {stayedWith(taken.error())};
    if (!*taken) return {stayedWith(keptAsItIs(pair.held, share::noAside, StayReason::System))};
    if (auto unlinked = linkOverAside(files, aside, pair, look))
        return unlinkedEnd(files, aside, pair, std::move(*unlinked));
    const std::uint64_t bytes = pair.held.attributes.links < 2 ? pair.held.attributes.onDisk : 0;
    end.result = sharedBy(RemovalResult::Shared::By::HardLink, pair, bytes);
    end.result.changed = aside.changedByUs(true);
    const auto kept = files.attributes(pair.keptFile.get());
    if (kept) end.result.shared->keptChanged = kept->changed;
    return end;
}

}  // namespace orrinvale
