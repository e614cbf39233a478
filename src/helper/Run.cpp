// The tool is in Tool.cpp, setting aside in engine/removal/SetAside.cpp.
#include "helper/Run.h"

#include <cerrno>
#include <optional>
#include <utility>

#include "engine/files/ProtectedPlaces.h"
#include "engine/removal/SetAside.h"
#include "helper/Accounts.h"
#include "helper/Checks.h"
#include "helper/Tool.h"
#include "platform/error.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/paths.h"

namespace orrinvale::helper {
namespace {

using RunOutcome = HelperReply::Outcome;

std::string runReason(int error) { return systemError("rm", {}, error).reason(); }

HelperReply refused(std::string reason) { return {0, RunOutcome::Refused, std::move(reason)}; }

/// What is told of an entry that setting aside, or a look after it, made stay.
HelperReply stayed(const StayedEntry& entry) {
    if (entry.kind == StayReason::Aside)
        return {0, RunOutcome::StillThere, entry.reason + ": " + entry.path};
    const bool isOurs = entry.kind == StayReason::Changed || entry.kind == StayReason::NoCopy;
    return {0, isOurs ? RunOutcome::Refused : RunOutcome::StillThere, entry.reason};
}

EntryIdentity identityOf(const SeenEntry& entry) {
    const EntryState state = entry.state.value_or(EntryState{});
    return {.device = entry.device,
            .inode = entry.inode,
            .type = entry.type,
            .size = state.size,
            .modified = state.modified,
            .changed = state.changed,
            .born = state.born};
}

bool isStill(const SeenEntry& then, const FileAttributes& now) {
    if (then.state) return identityOf(then).isStill(now);
    return now.device == then.device && now.inode == then.inode && now.type == then.type;
}

/// An entry that is held and was found to be what was asked for.
class Removal final {
public:
    Removal(const FileSystem& files, const HeldEntry& held, bool hidesMounts, const EndSignal& end)
        : m_files(files), m_held(held), m_hidesMounts(hidesMounts), m_end(end), m_ground(files) {}

    HelperReply run(const std::optional<KeptCopy>& kept, RootJournal& journal) {
        // A folder that is no copy of anything keeps its name: programs may write there while it
        // goes, and a kill must not hide it.
        if (m_held.attributes.type != FileType::Folder || kept)
            if (auto reply = setAside(journal)) return std::move(*reply);
        if (auto reason = objection(kept)) return givenBack(stayed(*reason));
        if (m_end.hasCome()) return givenBack(refused("its caller is gone"));
        const std::string name = nameNow();
        return looked(name, runTool(m_held.parent.get(), m_hidesMounts, name, m_end));
    }

private:
    std::string nameNow() const { return m_aside ? m_aside->name() : m_held.name; }

    /// Nothing when it is aside, and also where that can not be; a reply when it stays.
    std::optional<HelperReply> setAside(RootJournal& journal) {
        const auto folder = m_files.attributes(m_held.parent.get());
        if (!folder) return refused(runReason(folder.error()));
        const FileAttributes& entry = m_held.attributes;
        const auto token = journal.add({{}, m_held.path, folder->device, entry.inode, entry.type});
        if (!token) return std::nullopt;
        const auto taken = m_aside.emplace(m_files, m_ground, m_held).take(*token);
        if (!taken) return stayed(taken.error());
        if (!*taken) m_aside.reset();
        return std::nullopt;
    }

    std::optional<StayedEntry> objection(const std::optional<KeptCopy>& kept) {
        if (m_aside) return m_aside->objection(kept);
        return kept ? objectionWithoutRename(m_files, m_ground, m_held, *kept) : std::nullopt;
    }

    HelperReply givenBack(HelperReply reply) {
        if (!m_aside) return reply;
        const auto elsewhere = m_aside->putBack();
        return elsewhere ? stayed(*elsewhere) : reply;
    }

    HelperReply looked(const std::string& name, const ToolRun& run) {
        const int parent = m_held.parent.get();
        const auto left = m_files.attributes(parent, name.c_str(), Links::Keep);
        if (left || left.error() != ENOENT) {
            if (!run.output.empty()) return givenBack({0, RunOutcome::Printed, run.output});
            if (!run.failure.empty()) return givenBack({0, RunOutcome::Failed, run.failure});
            if (!run.firstError.empty())
                return givenBack({0, RunOutcome::StillThere, inOwnName(run.firstError)});
            return givenBack(
                {0, RunOutcome::StillThere, left ? "still there" : runReason(left.error())});
        }
        if (!run.output.empty()) return {0, RunOutcome::Printed, run.output};
        if (m_aside && m_files.attributes(parent, m_held.name.c_str(), Links::Keep))
            return {0, RunOutcome::StillThere, "another entry is in its place"};
        return {0, RunOutcome::Removed, {}};
    }

    /// The tool knows the entry by the name that it had meanwhile.
    std::string inOwnName(std::string text) const {
        const std::string name = nameNow();
        if (const std::size_t at = text.find(name); at != std::string::npos)
            text.replace(at, name.size(), m_held.name);
        return text;
    }

    const FileSystem& m_files;
    const HeldEntry& m_held;
    const bool m_hidesMounts;
    const EndSignal& m_end;
    RenameGround m_ground;
    std::optional<SetAside> m_aside;
};

}  // namespace

HelperReply removeEntry(const HelperRequest& request, const Grounds& grounds) {
    const LinuxFileSystem files;
    const SeenEntry& wanted = request.entry;
    auto parent = openVerifiedParent(wanted.path, grounds.caller);
    if (!parent) return refused(std::move(parent.error()));
    const std::string name = parent->name;
    // From the folder as it is seen now: in the copy a mount point looks like the folder below it.
    const auto seen = files.attributes(parent->folder.get(), name.c_str(), Links::Keep);
    if (!seen) return refused(runReason(seen.error()));
    auto places = ProtectedPlaces::ofThisMachine(files, grounds.ownFiles);
    if (const auto home = homeOf(grounds.caller)) places.addHome(files, *home, grounds.caller);
    if (auto reason = places.refusal(wanted.path, *seen)) return refused(std::move(*reason));

    WorkFolder work = WorkFolder::of(std::move(parent->folder));
    const auto entry = files.attributes(work.folder.get(), name.c_str(), Links::Keep);
    if (!entry || !isStill(wanted, *entry) || !isStill(wanted, *seen))
        return refused("changed since it was looked at");
    std::optional<KeptCopy> kept;
    if (request.stays) kept = KeptCopy{request.stays->path, identityOf(*request.stays)};
    if (kept && isWithin(kept->path, wanted.path)) return refused("no other verified copy is left");
    const HeldEntry held{std::move(work.folder), wanted.path, name, *entry};
    return Removal(files, held, work.hidesMounts, grounds.end).run(kept, grounds.journal);
}

}  // namespace orrinvale::helper
