// One walk for each ticked folder. Hard links are put together over all of them: a file goes when
// its last name does.
#include "engine/diskusage/TickedCount.h"

#include <algorithm>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/diskusage/LinkedFiles.h"
#include "engine/diskusage/UsageWalk.h"
#include "engine/files/HeldEntry.h"
#include "engine/files/TreeSize.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

class Counting {
public:
    Counting(const FileSystem& files, const RemovalRules& rules, UsageCounts& progress)
        : m_files(files),
          m_rules(rules),
          m_progress(progress),
          m_passing(files.devicesOfPassingInodes()) {}

    void take(TickedEntry&& ticked) {
        CountedEntry counted;
        static_cast<TickedEntry&>(counted) = std::move(ticked);
        counted.identity.learnPassing(m_passing);
        const auto held = HeldEntry::at(m_files, m_rules.places, counted.path, counted.identity,
                                        m_rules.own.get(), &m_parents);
        if (!held && held.error().kind == HeldEntry::Objection::Kind::Refused) {
            m_count.staying.push_back(
                {{counted.path, held.error().reason, held.error().why}, counted.node});
            return;
        }
        if (!held && held.error().error != ENOENT)
            m_skipped.add(systemError("attributes", counted.path, held.error().error));
        if (held && counted.isFolder) takeFolder(counted);
        else if (held) takeFile(*held);
        m_count.entries.push_back(std::move(counted));
    }

    TickedCount result() {
        // What all names of a file that go have counted, less what names elsewhere keep.
        const std::uint64_t staying = std::min(m_linked.outside(), m_count.onDisk);
        m_count.onDisk -= staying;
        m_count.skipped = m_skipped.entries();
        m_count.stopped = m_progress.stop;
        m_count.files = m_progress.files;
        m_count.folders = m_progress.found - m_progress.files;
        return std::move(m_count);
    }

private:
    void takeFolder(CountedEntry& counted) {
        const auto seen = std::make_shared<SeenEntries>(counted.identity.inodePasses);
        UsageErrand errand;
        errand.files = &m_files;
        errand.counts = &m_progress;
        errand.skipped = &m_skipped;
        errand.seen = seen.get();
        errand.own = m_rules.own.get();
        UsageWalk walk(errand);
        const UsageResult found = walk.run(nullptr, counted.path, Links::Keep);
        counted.seen = seen;
        if (found.isGone) return;
        counted.size = found.size;
        m_progress.found.fetch_add(1);
        if ((found.marks & FSNode::ForeignWithin) != 0) m_count.hasForeign = true;
        addSaturating(m_count.size, found.size);
        addSaturating(m_count.onDisk, found.onDisk);
        merge(walk.takeLinked());
        m_count.isUpTo = m_count.isUpTo || walk.isUpTo();
        m_count.hasVolumes = m_count.hasVolumes || walk.hasVolumes();
    }

    void takeFile(const HeldEntry& held) {
        const FileAttributes& now = held.attributes;
        const std::uint64_t size = countedSize(now);
        addSaturating(m_count.size, size);
        m_progress.files.fetch_add(1);
        m_progress.found.fetch_add(1);
        addSaturating(m_progress.size, size);
        const std::uint64_t onDisk = now.onDisk - sharedOf(held);
        if (now.links < 2) return addSaturating(m_count.onDisk, onDisk);
        LinkedFiles one;
        addSaturating(m_count.onDisk, one.add(now.device, now.inode, now.links, onDisk));
        merge(std::move(one));
    }

    std::uint64_t sharedOf(const HeldEntry& held) {
        const bool isRegular = held.attributes.type == FileType::Regular;
        if (!isRegular || !m_files.sharesExtents(held.parent.get())) return 0;
        m_count.isUpTo = true;
        ReadState state;
        const auto file =
            m_files.openFile(held.parent.get(), held.name.c_str(), Links::Keep, state);
        if (!file) return 0;
        return std::min(m_files.sharedBytes(file->get()).value_or(0), held.attributes.onDisk);
    }

    void merge(LinkedFiles&& within) {
        m_count.onDisk -= std::min(m_linked.merge(std::move(within)), m_count.onDisk);
    }

    const FileSystem& m_files;
    const RemovalRules& m_rules;
    UsageCounts& m_progress;
    HeldParents m_parents;
    const std::vector<std::uint64_t> m_passing;
    TickedCount m_count;
    LinkedFiles m_linked;
    SkipList m_skipped;
};

}  // namespace

std::vector<TickedEntry> tickedEntries(std::span<FSNode* const> delNodesArr) {
    std::vector<TickedEntry> ticked;
    ticked.reserve(delNodesArr.size());
    for (FSNode* const node : delNodesArr)
        ticked.push_back({.node = node,
                          .path = node->path(),
                          .identity = node->identity(),
                          .isFolder = node->isDirectory(),
                          .size = node->size()});
    return ticked;
}

TickedCount countTicked(const FileSystem& files, const RemovalRules& rules,
                        std::vector<TickedEntry> ticked, UsageCounts& progress) {
    Counting counting(files, rules, progress);
    for (TickedEntry& each : ticked) {
        if (progress.stop) break;
        counting.take(std::move(each));
    }
    return counting.result();
}

}  // namespace orrinvale
