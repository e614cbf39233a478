#include "engine/loginitems/removeLoginItem.h"

#include <atomic>
#include <cerrno>

#include "engine/removal/RemovalRun.h"
#include "engine/removal/TrashDoor.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

// What was looked at is what goes.
class OneEntry final : public RemovalList {
public:
    OneEntry(std::string path, std::optional<EntryIdentity> identity)
        : m_path(std::move(path)), m_identity(identity) {}
    [[nodiscard]] std::size_t size() const override { return 1; }
    [[nodiscard]] std::string path(std::size_t /*index*/) const override { return m_path; }
    [[nodiscard]] std::optional<EntryIdentity> identity(std::size_t /*index*/) const override {
        return m_identity;
    }
    [[nodiscard]] std::uint64_t bytes(std::size_t /*index*/) const override { return 0; }

private:
    const std::string m_path;
    const std::optional<EntryIdentity> m_identity;
};

}  // namespace

std::string removeLoginItem(const FileSystem& files, const LoginItemRecord& item,
                            const std::vector<std::string>& ownFiles,
                            const std::string& stateFolder) {
    if (!item.isPersons) return "it belongs to the system";
    if (!item.seen) return systemError("stat", item.file, ENOENT).reason();
    EntryIdentity identity = EntryIdentity::of(*item.seen);
    identity.learnPassing(files.devicesOfPassingInodes());
    OneEntry list(item.file, identity);
    TrashDoor door(files, ProtectedPlaces::ofThisMachine(files, ownFiles));
    const std::atomic<bool> stop{false};
    RemovalRun run(
        files, stateFolder, list, door, stop,
        {.waiting = [](bool /*isWaiting*/) {},
         .begins = [](std::size_t /*index*/, const std::string& /*path*/, bool /*isFolder*/) {},
         .settled = [](std::size_t /*index*/, const RemovalResult& /*result*/) {}});
    const RemovalOutcome outcome = run.run();
    run.settleJournal();
    if (outcome.removed + outcome.byOthers > 0) return {};
    return outcome.stayed.empty() ? "still there" : outcome.stayed.front().reason;
}

}  // namespace orrinvale
