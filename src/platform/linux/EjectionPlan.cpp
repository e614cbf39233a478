// Works on what the service has told and asks nobody. Planner::plan() names the steps.
#include "platform/linux/EjectionPlan.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace orrinvale {
namespace {

class Planner final {
public:
    explicit Planner(const std::vector<DiskObject>& objects) : m_objects(objects) {
        for (const DiskObject& object : objects) m_byPath.emplace(object.path, &object);
    }

    std::optional<EjectionPlan> plan(std::uint64_t device) const {
        const auto start = std::find_if(
            m_objects.begin(), m_objects.end(),
            [&](const DiskObject& object) { return object.isBlock && object.number == device; });
        if (start == m_objects.end()) return std::nullopt;
        const DiskObject& physical = lowest(*start);
        EjectionPlan plan;
        const auto layers = layersOf(physical);
        for (const auto& layer : layers)
            for (const DiskObject* each : layer) plan.devices.push_back(*each);
        planUnmounts(plan);
        planLocks(plan, layers);
        if (physical.drive.empty()) plan.loop = loopOf(physical);
        else planDrive(plan, physical.drive);
        return plan;
    }

private:
    using Layer = std::vector<const DiskObject*>;

    const DiskObject* find(const std::string& path) const {
        const auto found = m_byPath.find(path);
        return found == m_byPath.end() ? nullptr : found->second;
    }

    // Below all that is unlocked. Bounded, in case the service tells of a circle.
    const DiskObject& lowest(const DiskObject& start) const {
        const DiskObject* object = &start;
        for (std::size_t steps = 0; steps < m_objects.size(); ++steps) {
            const DiskObject* const below = object->locked.empty() ? nullptr : find(object->locked);
            if (below == nullptr) break;
            object = below;
        }
        return *object;
    }

    // The devices of the drive itself, then those unlocked on them, then those unlocked on these,
    // and so on.
    std::vector<Layer> layersOf(const DiskObject& physical) const {
        const std::string& whole = physical.table.empty() ? physical.path : physical.table;
        std::vector<Layer> layers(1);
        std::set<std::string> taken;
        for (const DiskObject& object : m_objects) {
            if (!object.isBlock) continue;
            const bool isSameDrive = !physical.drive.empty() && object.drive == physical.drive;
            if (isSameDrive || object.path == whole || object.table == whole)
                add(object, layers.back(), taken);
        }
        while (!layers.back().empty()) {
            Layer next;
            for (const DiskObject& object : m_objects)
                if (!object.locked.empty() && taken.contains(object.locked) &&
                    !taken.contains(object.path))
                    next.push_back(&object);
            for (const DiskObject* object : next) taken.insert(object->path);
            layers.push_back(std::move(next));
        }
        return layers;
    }

    static void add(const DiskObject& object, Layer& layer, std::set<std::string>& taken) {
        if (taken.insert(object.path).second) layer.push_back(&object);
    }

    // A mount may stand on another one of the same drive, and then has the longer path.
    static void planUnmounts(EjectionPlan& plan) {
        std::vector<std::pair<std::size_t, std::string>> mounts;
        for (const DiskObject& device : plan.devices)
            for (const std::string& point : device.mountPoints)
                mounts.emplace_back(point.size(), device.path);
        std::stable_sort(mounts.begin(), mounts.end(),
                         [](const auto& a, const auto& b) { return a.first > b.first; });
        for (auto& mount : mounts) plan.mounted.push_back(std::move(mount.second));
    }

    void planLocks(EjectionPlan& plan, const std::vector<Layer>& layers) const {
        for (auto layer = layers.rbegin(); layer != layers.rend(); ++layer)
            for (const DiskObject* device : *layer)
                if (!device->unlocked.empty()) plan.unlocked.push_back(device->path);
    }

    std::string loopOf(const DiskObject& physical) const {
        const DiskObject* const whole = physical.table.empty() ? &physical : find(physical.table);
        return whole != nullptr && whole->isLoop ? whole->path : std::string();
    }

    void planDrive(EjectionPlan& plan, const std::string& path) const {
        plan.drive = path;
        const DiskObject* const drive = find(path);
        if (drive == nullptr) return;
        plan.ejects = drive->canEject;
        const bool isAlone =
            drive->siblings.empty() ||
            std::none_of(m_objects.begin(), m_objects.end(), [&](const DiskObject& other) {
                return other.isDrive && other.path != path && other.siblings == drive->siblings;
            });
        plan.powersOff = drive->canPowerOff && isAlone && !drive->isOptical;
    }

    const std::vector<DiskObject>& m_objects;
    std::map<std::string, const DiskObject*> m_byPath;
};

}  // namespace

std::optional<EjectionPlan> planEjection(const std::vector<DiskObject>& objects,
                                         std::uint64_t device) {
    return Planner(objects).plan(device);
}

}  // namespace orrinvale
