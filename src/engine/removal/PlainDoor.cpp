// Which of three ways an entry goes: set aside, in place after a comparison, or as a tree.
#include "engine/removal/PlainDoor.h"

#include <fmt/format.h>

#include <cerrno>
#include <utility>

#include "engine/base/Log.h"
#include "engine/files/SafeRemoval.h"
#include "engine/files/TreeRemoval.h"
#include "engine/removal/stayReasons.h"
#include "engine/removal/stayedWith.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

void fail(RemovalResult& result, StayedEntry reason) {
    ++result.failed;
    result.failures.push_back(std::move(reason));
}

StayedEntry failureOf(const std::string& path, int error) {
    return {path, systemError("remove", {}, error).reason(), stayReasonOf(error)};
}

RemovalResult stoppedBefore() {
    RemovalResult result;
    result.stopped = true;
    return result;
}

void logCopy(const std::string& path, const RemovalResult& result) {
    if (result.gone) Log::line(fmt::format("Removed {} ({} entries)", path, result.removed));
    else if (result.stopped) Log::line(fmt::format("Stopped removing {}", path));
    else
        Log::line(fmt::format("Not removed {}: {}", path,
                              result.failures.empty() ? "" : result.failures.front().reason));
}

}  // namespace

RemovalResult PlainDoor::remove(const LeavingEntry& entry, const std::atomic<bool>& stop) {
    const SafeRemoval plain(m_files, m_places, {m_own.get(), &m_parents, &m_second});
    if (entry.look == nullptr)
        return plain.remove(entry.path, entry.identity, &stop, entry.seen, entry.ask);
    const auto held = HeldEntry::at(m_files, m_places, entry.path, entry.identity);
    // No second look: what it would find would go without a comparison.
    if (!held) return plain.notHeld(entry.path, entry.identity, held.error());
    RemovalResult result = removeCopy(*held, entry, stop);
    logCopy(entry.path, result);
    return result;
}

RemovalResult PlainDoor::removeCopy(const HeldEntry& held, const LeavingEntry& entry,
                                    const std::atomic<bool>& stop) {
    if (auto reason = entry.look->before(held, stop)) return stayedWith(std::move(*reason));
    if (stop) return stoppedBefore();
    SetAside aside(m_files, m_ground, held);
    const auto taken =
        entry.token.empty() ? tl::expected<bool, StayedEntry>(false) : aside.take(entry.token);
    if (!taken) return stayedWith(taken.error());
    return *taken ? removeAside(aside, held, entry, stop) : removeInPlace(held, entry, stop);
}

RemovalResult PlainDoor::removeAside(SetAside& aside, const HeldEntry& held,
                                     const LeavingEntry& entry,
                                     const std::atomic<bool>& stop) const {
    RemovalResult result;
    auto reason = aside.objection(entry.look->kept());
    if (!reason) reason = entry.look->last(held, aside.name());
    result.stopped = stop;  // for which the last look may have been cut short
    if (reason && !result.stopped) fail(result, std::move(*reason));
    else if (!result.stopped) unlink(held, aside.name(), entry, stop, result);
    const auto left = m_files.attributes(held.parent.get(), aside.name().c_str(), Links::Keep);
    result.gone = !left && left.error() == ENOENT;
    result.byOthers = result.gone && result.removed == 0;
    if (!result.gone)
        if (auto place = aside.putBack())
            result.failures.insert(result.failures.begin(), std::move(*place));
    result.changed = aside.changedByUs(result.gone);
    if (result.gone && m_files.attributes(held.parent.get(), held.name.c_str(), Links::Keep)) {
        result.gone = false;
        fail(result, {held.path, std::string(stay::otherInPlace), StayReason::Changed});
    }
    return result;
}

RemovalResult PlainDoor::removeInPlace(const HeldEntry& held, const LeavingEntry& entry,
                                       const std::atomic<bool>& stop) {
    if (!std::exchange(m_isToldPlain, true))
        Log::line(fmt::format("Nothing can be set aside in {}: copies there go straight away",
                              folderOf(held.path)));
    if (const auto& kept = entry.look->kept())
        if (auto reason = objectionWithoutRename(m_files, m_ground, held, *kept))
            return stayedWith(std::move(*reason));
    auto reason = entry.look->last(held, held.name);
    if (stop) return stoppedBefore();
    if (reason) return stayedWith(std::move(*reason));
    RemovalResult result;
    const auto entryHeld = m_files.holdEntry(held.parent.get(), held.name.c_str());
    unlink(held, held.name, entry, stop, result);
    const auto left = m_files.attributes(held.parent.get(), held.name.c_str(), Links::Keep);
    result.gone = !left && left.error() == ENOENT;
    if (!result.gone && result.failed == 0 && !result.stopped)
        fail(result,
             left ? StayedEntry{held.path, std::string(stay::otherInPlace), StayReason::Changed}
                  : failureOf(held.path, left.error()));
    const auto rest = entryHeld ? m_files.attributes(entryHeld->get()) : tl::unexpected(ENOENT);
    if (rest && rest->links > 0) result.changed = rest->changed;
    return result;
}

// Of what came into a bundle since it was listed nothing goes.
void PlainDoor::unlink(const HeldEntry& held, const std::string& name, const LeavingEntry& entry,
                       const std::atomic<bool>& stop, RemovalResult& result) const {
    if (held.attributes.type == FileType::Folder) {
        TreeRemoval(m_files, held.path, &stop, result, {.seen = entry.look->seen()})
            .run(held.parent.get(), name, held.attributes);
        return;
    }
    const auto removal = m_files.removeEntry(held.parent.get(), name.c_str(), held.attributes.type);
    if (removal) ++result.removed;
    else if (removal.error() != ENOENT) fail(result, failureOf(held.path, removal.error()));
}

}  // namespace orrinvale
