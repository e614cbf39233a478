// List is what the job works through; takeNews() makes the page's notices of what became of it.
#include "engine/largefiles/NodeRemoval.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "engine/base/Log.h"
#include "engine/files/EntryIdentity.h"
#include "engine/removal/PlainDoor.h"
#include "platform/files.h"

namespace orrinvale {

/// The nodes, as they were when the person agreed.
class NodeRemoval::List final : public RemovalList {
public:
    List(const FileSystem& files, std::shared_ptr<FileNodeTree> tree,
         const std::vector<FileNode*>& nodes)
        : m_files(files), m_tree(std::move(tree)) {
        m_entries.reserve(nodes.size());
        for (FileNode* const node : nodes)
            m_entries.push_back({node, node->identity(), node->isDirectory()});
    }

    [[nodiscard]] FileNode* node(std::size_t index) const { return m_entries[index].node; }
    /// The entry that a stop cut, once its news were taken.
    [[nodiscard]] std::optional<std::size_t> cut() const { return m_cut; }

    void prepare() override {
        const std::vector<std::uint64_t> passing = m_files.devicesOfPassingInodes();
        for (Entry& entry : m_entries) entry.identity.learnPassing(passing);
    }
    [[nodiscard]] std::size_t size() const override { return m_entries.size(); }
    [[nodiscard]] std::string path(std::size_t index) const override {
        return m_entries[index].node->path();
    }
    [[nodiscard]] std::optional<EntryIdentity> identity(std::size_t index) const override {
        return m_entries[index].identity;
    }
    [[nodiscard]] std::uint64_t bytes(std::size_t index) const override {
        return m_entries[index].identity.size;
    }
    [[nodiscard]] std::shared_ptr<const SeenEntries> seen(std::size_t index) override {
        const Entry& entry = m_entries[index];
        if (!entry.isFolder) return nullptr;
        return std::make_shared<const SeenEntries>(
            m_tree->seenBelow(*entry.node, entry.identity.inodePasses));
    }
    void settled(std::size_t index, const RemovalResult& result) override {
        if (result.gone) return;
        if (result.stopped) m_cut = index;
        else
            Log::line(fmt::format("--delete file error ---::{} ({} entries are still there)",
                                  path(index), result.failed));
    }

private:
    struct Entry {
        FileNode* node;
        EntryIdentity identity;
        bool isFolder;
    };
    const FileSystem& m_files;
    const std::shared_ptr<FileNodeTree> m_tree;
    std::vector<Entry> m_entries;
    std::optional<std::size_t> m_cut;
};

NodeRemoval::NodeRemoval(const FileSystem& files, MainQueue& queue,
                         const std::vector<std::string>& ownFiles,
                         std::shared_ptr<FileNodeTree> tree, const std::vector<FileNode*>& nodes,
                         std::function<void()> onNews)
    : m_tree(std::move(tree)),
      m_list(std::make_shared<List>(files, m_tree, nodes)),
      m_job({.files = &files,
             .mainQueue = &queue,
             .makeDoor =
                 [&files, ownFiles, own = m_tree->ownChanges()] {
                     return std::make_unique<PlainDoor>(
                         files, ProtectedPlaces::ofThisMachine(files, ownFiles), own);
                 },
             .stateFolder = {}},
            m_list, std::move(onNews)) {}

NodeRemoval::~NodeRemoval() = default;

// All leave the tree but what a stop cut: a node whose entry is there in part shows sizes that are
// no longer true, and the next scan brings it back.
NodeRemoval::News NodeRemoval::takeNews(std::size_t mostNodes) {
    News news;
    const RemovalJob::News job = m_job.takeNews(mostNodes);
    const std::optional<std::size_t> cut = m_list->cut();
    for (const RemovalJob::Settled& each : job.settled) {
        notice(news, each.index, false);
        if (each.index != cut) news.leaving.push_back(m_list->node(each.index));
    }
    m_taken += job.settled.size();
    news.isMore = job.isMore;
    const RemovalJob::Progress progress = m_job.progress();
    const bool isBegun = progress.done == m_taken && m_taken < m_list->size() &&
                         progress.current == m_list->path(m_taken);
    if (isBegun && !job.ending) notice(news, m_taken, true);
    if (job.ending) end(news, *job.ending);
    return news;
}

// Of thousands of nodes hundreds share a percentage, and each of them is gone before its name could
// be read.
void NodeRemoval::notice(News& news, std::size_t index, bool isInHand) {
    const auto percent =
        m_list->size() == 1 ? 30 : static_cast<std::int32_t>(index * 100 / m_list->size());
    if (percent == m_last.percent && !isInHand) return;
    std::string path = m_list->path(index);
    if (percent == m_last.percent && path == m_last.path) return;
    m_last = {percent, std::move(path)};
    news.notices.push_back(m_last);
}

void NodeRemoval::end(News& news, const RemovalOutcome& outcome) const {
    LargeFileRemoval& ending = news.ending.emplace();
    ending.chosen = outcome.chosen;
    ending.gone = outcome.removed + outcome.byOthers;
    ending.removed = outcome.removed;
    ending.bytes = outcome.bytes;
    ending.failed = outcome.failed;
    ending.failedEntries = outcome.failedEntries;
    for (const StayedEntry& each : outcome.stayed)
        ending.failures.push_back({each.path, each.reason});
    ending.stopped = outcome.stopped;
    const auto cut = m_list->cut();
    if (cut && m_list->node(*cut)->isDirectory()) news.cut = m_list->node(*cut);
    news.lastPath = m_list->path(cut.value_or(std::min(m_taken, m_list->size() - 1)));
}

}  // namespace orrinvale
