// Trash.h does the moving.
#include "engine/removal/TrashDoor.h"

#include <cerrno>
#include <chrono>

#include "engine/files/HeldEntry.h"
#include "engine/removal/stayReasons.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// Written to since it was compared. Its number may be another, as layers give one for a move, and
// so is its time of change.
bool isOtherNow(const FileAttributes& seen, const FileAttributes& now) {
    return seen.type != now.type || (seen.type == FileType::Regular &&
                                     (seen.size != now.size || seen.modified != now.modified));
}

}  // namespace

// Somebody else has removed it. Where its folder is not there either, its disk may be what is gone.
bool TrashDoor::isAbsent(const std::string& path) const {
    const auto parent = HeldEntry::holdParentOf(m_files, path);
    if (!parent) return false;
    const std::string name(lastPathComponent(path));
    const auto seen = m_files.attributes(parent->get(), name.c_str(), Links::Keep);
    return !seen && seen.error() == ENOENT;
}

RemovalResult TrashDoor::remove(const LeavingEntry& entry, const std::atomic<bool>& stop) {
    RemovalResult result;
    const auto stays = [&](StayedEntry why) {
        result.refused = why.kind != StayReason::Rights && why.kind != StayReason::System;
        result.failed = 1;
        result.failures.push_back(std::move(why));
        return result;
    };
    const auto held =
        HeldEntry::at(m_files, m_places, entry.path, entry.identity, nullptr, &m_parents);
    if (!held) {
        result.gone = isAbsent(entry.path);
        result.byOthers = result.gone;
        return result.gone ? result : stays({entry.path, held.error().reason, held.error().why});
    }
    if (entry.look != nullptr) {
        const auto begun = std::chrono::steady_clock::now();
        if (auto why = entry.look->before(*held, stop)) return stays(std::move(*why));
        result.stopped = stop;
        if (stop) return result;
        auto why = lookAgain(*held, *entry.look, begun);
        result.stopped = stop;
        if (stop) return result;
        if (why) return stays(std::move(*why));
    }
    move(*held, entry.look, result);
    return result;
}

// Behind a comparison that took its time, and of what may be one entry. Of all others both were
// seen just now, and are looked at again as soon as the one has moved, from where it can come back.
std::optional<StayedEntry> TrashDoor::lookAgain(const HeldEntry& held, CopyLook& look,
                                                std::chrono::steady_clock::time_point begun) const {
    constexpr std::chrono::milliseconds justNow{10};
    const auto& kept = look.kept();
    const bool mayBeOne = kept && kept->identity.device == held.attributes.device &&
                          kept->identity.inode == held.attributes.inode;
    if (held.attributes.type == FileType::Regular && !mayBeOne &&
        std::chrono::steady_clock::now() - begun < justNow)
        return std::nullopt;
    if (kept)
        if (auto why = objectionToCopyInPlace(m_files, held, *kept)) return why;
    return look.last(held, held.name);
}

// What was moved has a new time of change, and so have the file's other names.
void TrashDoor::move(const HeldEntry& held, CopyLook* look, RemovalResult& result) {
    std::optional<std::int64_t> changed;
    const auto moved = m_trash.move(
        held,
        [&](const FileAttributes& now) {
            if (now.links > 1) changed = now.changed;
            if (look != nullptr && isOtherNow(held.attributes, now))
                return std::optional(std::string(stay::changed));
            auto kept = look != nullptr ? look->kept() : std::nullopt;
            if (!kept) return std::optional<std::string>();
            const EntryIdentity& other = kept->identity;
            if (other.device == now.device && other.inode == now.inode)
                kept->identity.changed = now.changed;
            const auto why = objectionToCopyInPlace(m_files, held, *kept);
            return why ? std::optional(why->reason) : std::nullopt;
        },
        &m_series);
    if (moved) {
        const FileAttributes& folder = m_series.folder();
        result.gone = true;
        result.removed = 1;
        result.changed = changed;
        result.moved = RemovalResult::Moved{*moved, folder.device, folder.inode};
        return;
    }
    // What was objected to has its own name again, unless that could not be given back to it.
    const bool isAside = m_series.isLeftInTrash();
    result.gone = !isAside && isAbsent(held.path);
    result.byOthers = result.gone;
    if (result.gone) return;
    result.failed = 1;
    result.failures.push_back(
        {held.path, moved.error(), isAside ? StayReason::Aside : StayReason::System});
}

}  // namespace orrinvale
