// HeldEntry tells whether the entry may go; folders are left to TreeRemoval.
#include "engine/files/SafeRemoval.h"

#include <fmt/format.h>

#include <cerrno>

#include "engine/base/Log.h"
#include "engine/files/TreeRemoval.h"
#include "engine/files/TreeSize.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

void fail(RemovalResult& result, const std::string& path, StayReason kind, std::string reason) {
    ++result.failed;
    result.failures.push_back({path, std::move(reason), kind});
}

void fail(RemovalResult& result, const std::string& path, int error) {
    fail(result, path, stayReasonOf(error), systemError("remove", {}, error).reason());
}

std::string lineOf(const std::string& path, const RemovalResult& result) {
    const std::string reason =
        result.failures.empty() ? std::string() : ": " + result.failures.front().reason;
    if (result.gone && result.byOthers)
        return fmt::format("Gone already {} ({} entries went)", path, result.removed);
    if (result.gone) return fmt::format("Removed {} ({} entries)", path, result.removed);
    if (result.stopped)
        return fmt::format("Stopped removing {} ({} entries went)", path, result.removed);
    if (result.removed == 0 && result.failed <= 1)
        return fmt::format("Not removed {}{}", path, reason);
    return fmt::format("Not removed {} ({} entries went, {} did not){}", path, result.removed,
                       result.failed, reason);
}

}  // namespace

RemovalResult SafeRemoval::remove(const std::string& path,
                                  const std::optional<EntryIdentity>& expected,
                                  const std::atomic<bool>* stop, const SeenEntries* seen,
                                  AskWriters ask) const {
    RemovalResult result;
    OwnChanges ofThisOne;
    OwnChanges& own = m_shared.own != nullptr ? *m_shared.own : ofThisOne;
    const auto held = HeldEntry::at(m_files, m_places, path, expected, &own, m_shared.parents);
    if (!held) return notHeld(path, expected, held.error());
    removeHeld(*held, {stop, seen, own, ask}, result);
    Log::line(lineOf(path, result));
    return result;
}

RemovalResult SafeRemoval::notHeld(const std::string& path,
                                   const std::optional<EntryIdentity>& expected,
                                   const HeldEntry::Objection& objection) const {
    RemovalResult result;
    const bool isMissing = objection.error == ENOENT;
    result.refused = objection.kind == HeldEntry::Objection::Kind::Refused;
    result.gone = isMissing && (objection.kind == HeldEntry::Objection::Kind::NoEntry ||
                                isSurelyAbsent(plainPath(path).value_or("/"), expected));
    result.byOthers = result.gone;
    if (!result.gone) fail(result, path, objection.why, objection.reason);
    Log::line(lineOf(path, result));
    return result;
}

void SafeRemoval::removeHeld(const HeldEntry& held, const Asked& asked,
                             RemovalResult& result) const {
    if (asked.stop != nullptr && *asked.stop) {
        result.stopped = true;
        return;
    }
    const bool isFolder = held.attributes.type == FileType::Folder;
    const bool isOurs =
        isFolder ? removeFolder(held, asked, result) : removeFile(held, asked, result);
    lookAgain(held, isOurs, result);
}

// These two: whether the entry went by our own hand.
bool SafeRemoval::removeFolder(const HeldEntry& held, const Asked& asked,
                               RemovalResult& result) const {
    TreeRemoval removal(
        m_files, held.path, asked.stop, result,
        {.seen = asked.seen, .own = &asked.own, .ask = asked.ask, .second = m_shared.second});
    if (asked.seen != nullptr) result.addName(0, true);
    removal.run(held.parent.get(), held.name, held.attributes);
    return removal.isOurs();
}

bool SafeRemoval::removeFile(const HeldEntry& held, const Asked& asked,
                             RemovalResult& result) const {
    const int folder = held.parent.get();
    const char* const name = held.name.c_str();
    if (hasWriter(m_files, folder, name, held.attributes, asked.ask)) {
        result.refused = true;
        fail(result, held.path, StayReason::Kept, openForWriting);
        return false;
    }
    const bool isFirst =
        held.attributes.type == FileType::Regular && !asked.own.touched(held.attributes);
    const auto removal = asked.own.removeName(m_files, folder, name, held.attributes);
    if (removal) {
        ++result.removed;
        result.addName(countedSize(held.attributes), isFirst);
    } else if (removal.error() == ESTALE) {
        fail(result, held.path, StayReason::Changed, "changed since the scan");
    } else if (removal.error() != ENOENT) {
        fail(result, held.path, removal.error());
    }
    return removal.has_value();
}

// Success is absence, whoever brought it about.
void SafeRemoval::lookAgain(const HeldEntry& held, bool isOurs, RemovalResult& result) const {
    const auto after = m_files.attributes(held.parent.get(), held.name.c_str(), Links::Keep);
    result.gone = !after && after.error() == ENOENT;
    result.byOthers = result.gone && !isOurs;
    if (result.gone) {
        result.failed = 0;
        result.failures.clear();
        return;
    }
    if (result.stopped || result.failed > 0) return;
    if (!after) return fail(result, held.path, after.error());
    // Nothing went wrong, and yet something is there: it came after ours went.
    fail(result, held.path, StayReason::CameLater, "another entry is in its place");
}

// A missing folder on the way proves that the entry is gone only where the scan's file system is
// still there: without its mount, the path leads nowhere while the entry sits safely on the disk
// that was pulled out.
bool SafeRemoval::isSurelyAbsent(const std::string& path,
                                 const std::optional<EntryIdentity>& expected) const {
    const auto lookAt = [this](const std::string& folder) -> SysResult<FileAttributes> {
        if (folder == "/") return m_files.attributes(FileSystem::noParent, "/", Links::Keep);
        const auto parent = HeldEntry::holdParentOf(m_files, folder);
        if (!parent) return tl::unexpected(parent.error());
        return m_files.attributes(parent->get(), std::string(lastPathComponent(folder)).c_str(),
                                  Links::Keep);
    };
    for (std::string missing = folderOf(path); missing != "/"; missing = folderOf(missing)) {
        const auto next = lookAt(missing);
        if (next || next.error() != ENOENT) return false;
        const auto above = lookAt(folderOf(missing));
        if (above)
            return above->type == FileType::Folder &&
                   (!expected || above->device == expected->device);
    }
    return false;
}

}  // namespace orrinvale
