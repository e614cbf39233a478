// The order keeps settings from going while their program stays.
#include "engine/uninstall/UninstallRun.h"

#include <algorithm>
#include <set>
#include <utility>

#include "engine/base/Log.h"
#include "engine/cleaning/QnAuthorization.h"
#include "engine/removal/TrashDoor.h"

namespace orrinvale {
namespace {

using State = ApplicationRemoval::State;

class Run final {
public:
    Run(const UninstallParts& parts, const UninstallPlan& plan, const UninstallDoors& doors,
        const std::atomic<bool>& stop, const std::function<void(const std::string&)>& begins)
        : m_parts(parts), m_plan(plan), m_doors(doors), m_stop(stop), m_begins(begins) {
        for (const UninstallPlan::App& each : plan.apps)
            m_outcome.apps.push_back(
                {each.item,
                 {each.refusal.empty() ? State::Failed : State::Refused, each.refusal, {}}});
    }

    UninstallOutcome run(const std::vector<Leftover>& leftovers) {
        removeBundles();
        for (const ApplicationType type :
             {ApplicationType::Flatpak, ApplicationType::Snap, ApplicationType::Deb})
            removeKind(type);
        trashPrograms();
        makeRecordsDurable();
        trashLeftovers(leftovers);
        makeRecordsDurable();
        return std::move(m_outcome);
    }

private:
    [[nodiscard]] bool isOpen(std::size_t index) const {
        return m_plan.apps[index].refusal.empty() && !m_stop;
    }
    [[nodiscard]] ApplicationType typeOf(std::size_t index) const {
        return m_plan.apps[index].item->record->type;
    }
    void tell(std::size_t index) const {
        if (m_begins) m_begins(m_plan.apps[index].item->name);
    }

    // Goes through the entries of an application to the first that stays.
    void removeEntries(std::size_t index, const std::vector<PlannedEntry>& entries,
                       RemovalDoor& door) {
        tell(index);
        ApplicationRemoval& removal = m_outcome.apps[index].removal;
        if (UninstallApp::uninstallApp(*m_plan.apps[index].item, entries, door, m_stop,
                                       &removal.reason))
            removal = {State::Gone, {}, {}};
        else Log::line("uninstall can not work!");
    }

    void removeBundles() {
        std::unique_ptr<RemovalDoor> door;
        for (std::size_t i = 0; i < m_plan.apps.size(); ++i) {
            if (typeOf(i) != ApplicationType::App || !isOpen(i)) continue;
            if (!door) door = m_doors.bundles();
            const std::vector<PlannedEntry>& entries = m_plan.apps[i].entries;
            if (entries.empty() || !hasCopyThatStays(i)) removeEntries(i, entries, *door);
            else removeEntries(i, {entries.back()}, *door);
        }
    }

    // What is left in the libraries then is that copy's.
    [[nodiscard]] bool hasCopyThatStays(std::size_t index) const {
        const auto& identifier = m_plan.apps[index].item->bundleID;
        for (std::size_t i = 0; i < m_plan.apps.size(); ++i)
            if (i != index && typeOf(i) == ApplicationType::App &&
                m_plan.apps[i].item->bundleID == identifier &&
                m_outcome.apps[i].removal.state != State::Gone && (i < index || !isOpen(i)))
                return true;
        return false;
    }

    void removeKind(ApplicationType type) {
        std::vector<std::size_t> indexes;
        std::vector<ApplicationRecord> records;
        for (std::size_t i = 0; i < m_plan.apps.size(); ++i) {
            if (typeOf(i) != type || !isOpen(i)) continue;
            indexes.push_back(i);
            records.push_back(*m_plan.apps[i].item->record);
            tell(i);
        }
        const auto forecast = m_plan.forecasts.find(type);
        if (indexes.empty() || forecast == m_plan.forecasts.end()) return;
        const auto removals =
            m_parts.applications->kind(type)->remove(records, forecast->second, m_stop);
        for (std::size_t i = 0; i < indexes.size() && i < removals.size(); ++i) {
            m_outcome.apps[indexes[i]].removal = removals[i];
            if (removals[i].state != State::Gone)
                Log::line("uninstall can not work! " + removals[i].reason);
        }
    }

    void trashPrograms() {
        for (std::size_t i = 0; i < m_plan.apps.size(); ++i) {
            const bool isTrash =
                typeOf(i) == ApplicationType::AppImage || typeOf(i) == ApplicationType::Folder;
            if (isTrash && isOpen(i) && !m_plan.apps[i].entries.empty()) trashProgram(i);
        }
    }

    // The program itself decides. The links and entries that start it are moved even after a stop,
    // since they lead nowhere by then; the note has what stays of them.
    void trashProgram(std::size_t index) {
        const std::vector<PlannedEntry>& entries = m_plan.apps[index].entries;
        removeEntries(index, {entries.front()}, trash());
        ApplicationRemoval& removal = m_outcome.apps[index].removal;
        if (removal.state != State::Gone) return;
        const std::atomic<bool> never{false};
        for (auto each = entries.begin() + 1; each != entries.end(); ++each) {
            const RemovalResult result = trash().remove(leaving(*each), never);
            if (result.gone || result.failures.empty()) continue;
            removal.note += (removal.note.empty() ? "" : "; ") + each->path +
                            " stays: " + result.failures.front().reason;
        }
    }

    static LeavingEntry leaving(const auto& planned) {
        LeavingEntry entry;
        entry.path = planned.path;
        entry.identity = planned.identity;
        return entry;
    }

    // What is left of a program that stays is in use.
    [[nodiscard]] bool hasOwner(const Leftover& leftover) const {
        return leftover.isInstalled &&
               std::none_of(m_outcome.apps.begin(), m_outcome.apps.end(), [&](const auto& each) {
                   return each.removal.state == State::Gone && leftover.isOf(*each.item->record);
               });
    }

    void trashLeftovers(const std::vector<Leftover>& leftovers) {
        for (const Leftover& each : leftovers) {
            if (hasOwner(each)) continue;
            RemovalResult result;
            if (!m_stop) {
                if (m_begins) m_begins(each.path);
                result = trash().remove(leaving(each), m_stop);
            }
            if (result.gone) continue;
            if (result.failures.empty()) result.failures.push_back({each.path, "stopped"});
            m_outcome.leftovers.push_back(result.failures.front());
        }
    }

    // Nobody notes where these entries were: the trash's records are all that brings them back.
    void makeRecordsDurable() {
        if (m_trash) m_trash->flush();
    }

    RemovalDoor& trash() {
        if (!m_trash) m_trash = m_doors.trash();
        return *m_trash;
    }

    const UninstallParts& m_parts;
    const UninstallPlan& m_plan;
    const UninstallDoors& m_doors;
    const std::atomic<bool>& m_stop;
    const std::function<void(const std::string&)>& m_begins;
    std::unique_ptr<RemovalDoor> m_trash;
    UninstallOutcome m_outcome;
};

}  // namespace

bool UninstallOutcome::worked() const {
    return std::all_of(apps.begin(), apps.end(),
                       [](const App& each) { return each.removal.state == State::Gone; });
}

bool UninstallOutcome::hasDoorFailed() const {
    return std::any_of(apps.begin(), apps.end(), [](const App& each) {
        return each.item->record->type == ApplicationType::App &&
               each.removal.state == State::Failed;
    });
}

UninstallDoors UninstallDoors::usual(const UninstallParts& parts) {
    return {[] { return QnAuthorization::makeDoor(); },
            [files = parts.files, own = parts.ownFiles]() -> std::unique_ptr<RemovalDoor> {
                return std::make_unique<TrashDoor>(*files,
                                                   ProtectedPlaces::ofThisMachine(*files, own));
            }};
}

UninstallOutcome runUninstall(const UninstallParts& parts, const UninstallPlan& plan,
                              const std::vector<Leftover>& leftovers, const UninstallDoors& doors,
                              const std::atomic<bool>& stop,
                              const std::function<void(const std::string&)>& begins) {
    return Run(parts, plan, doors, stop, begins).run(leftovers);
}

}  // namespace orrinvale
