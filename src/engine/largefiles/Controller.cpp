// NodeSelection has the rules of the ticks, NodeRemoval the thread that removes.
#include "engine/largefiles/Controller.h"

#include <fmt/format.h>

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "engine/base/Log.h"
#include "engine/largefiles/LargestFiles.h"
#include "engine/largefiles/NodeRemoval.h"
#include "engine/largefiles/RemoveFileAndFolder.h"
#include "engine/largefiles/TrashErrands.h"

namespace orrinvale {
namespace {

// What one turn of the main thread does at most, with room to spare: 4,096 nodes out of their
// lists, 65,536 states.
constexpr std::size_t mostLeaving = 4096;
constexpr std::size_t mostStates = 65536;

}  // namespace

struct Controller::Removal {
    Removal(const ControllerParts& parts, const std::shared_ptr<FileNodeTree>& tree,
            const std::vector<FileNode*>& nodes, std::function<void()> onNews)
        : work(*parts.files, *parts.mainQueue, parts.ownFiles, tree, nodes, std::move(onNews)) {}

    NodeRemoval work;
    TickSpread clearing{FileNode::NotSelected};  // of what stood beside the nodes that went
    std::unordered_set<const FileNode*> cleared;
    std::optional<NodeRemoval::News> last;
    bool isTaking = false;  // the delegate is being told, and may turn an event loop meanwhile
    bool isMissed = false;  // news came in that time
};

struct Controller::Erasure final : RemoveFileAndFolderDelegate {
    Erasure(const ControllerParts& parts, const std::shared_ptr<FileNodeTree>& tree,
            std::vector<FileNode*> nodes)
        : work(*parts.files, *parts.mainQueue, parts.ownFiles, tree, std::move(nodes)) {
        work.setDelegate(this);
    }
    void removeObjEnd(const std::vector<std::string>& deleteErrorArr) override {
        whenEnded(deleteErrorArr);
    }

    RemoveFileAndFolder work;
    std::function<void(const std::vector<std::string>&)> whenEnded;
};

Controller::Controller() = default;
Controller::~Controller() = default;

Controller& Controller::getController() {
    static auto* const controller = new Controller;
    return *controller;
}

void Controller::setParts(ControllerParts parts) {
    if (m_removal) m_removal->work.abandon();
    m_removal.reset();
    m_erasure.reset();
    m_errands.reset();
    m_eumeRoot.reset();
    if (m_rescan) {
        m_rescan->stopScan();
        m_rescan->waitForEnd();
    }
    m_rescan.reset();
    m_parts = std::move(parts);
}

void Controller::eumeAllRootFileNodeWithRootArr(std::shared_ptr<FileNodeTree> rootArr,
                                                const std::string& rootPath) {
    m_rescan.reset();
    m_eumeRoot = std::make_unique<EumeRoot>(
        ScanParts{.files = m_parts.files, .mainQueue = m_parts.mainQueue, .grown = {}});
    m_eumeRoot->eumeAllRootFileNodeWithRootArr(rootArr, rootPath);
    m_aRootArr = std::move(rootArr);
}

void Controller::closeTree() {
    m_rescan.reset();
    m_eumeRoot.reset();
    m_aRootArr.reset();
}

void Controller::stopScan() {
    if (m_eumeRoot) m_eumeRoot->stopScan();
}

float Controller::getProgress() const { return m_eumeRoot ? m_eumeRoot->getProgress() : 0.0F; }

void Controller::changeSelectWithNode(FileNode& node, std::uint8_t state) {
    TickSpread spread(state);
    spread.tick(node);
    spread.finish();
    changeSelectAllButtonState();
    reloadTree();
}

void Controller::changeChildrenFilNodeState(FileNode& node, std::uint8_t state) {
    TickSpread spread(state);
    spread.tick(node);
    spread.finish();
    if (!spread.wentFurther()) return;
    changeSelectAllButtonState();
    reloadTree();
}

// The page hears of the whole climb once: a row that is drawn again for each level shows nothing
// else in the end.
void Controller::changeFatherNodeSelectState(FileNode& node, std::uint8_t /*state*/) {
    followUpwards(node);
    changeSelectAllButtonState();
    reloadTree();
}

void Controller::changeSelectOfFile(FileNode& node, std::uint8_t state) {
    tickOne(node, state != 0 ? FileNode::Selected : FileNode::NotSelected);
    changeSelectAllButtonState();
    reloadTree();
}

void Controller::changeSelectOfFiles(const LargestFiles& list, std::uint8_t state) {
    if (!m_aRootArr) return;
    std::vector<FileNode*> files;
    files.reserve(list.count());
    for (const LargestFiles::Row& row : list.rows())
        if (!row.node->isSystemFile()) files.push_back(row.node);
    tickMany(m_aRootArr->root(), files, state != 0 ? FileNode::Selected : FileNode::NotSelected);
    changeSelectAllButtonState();
    reloadTree();
}

TickedTotals Controller::ticked() const {
    return m_aRootArr ? totalsOf(m_aRootArr->root().childrenInAnyOrder()) : TickedTotals();
}

bool Controller::mayHoldLinked(std::size_t looks) const {
    return m_aRootArr && orrinvale::mayHoldLinked(m_aRootArr->root().childrenInAnyOrder(), looks);
}

void Controller::changeSelectAllButtonState() {
    const std::int32_t state = m_aRootArr ? summaryOf(m_aRootArr->root().childrenInAnyOrder()) : 0;
    if (_aDelegate != nullptr) _aDelegate->changeSelectAllButtonState(state);
}

void Controller::selectAllFileNode(std::uint8_t state) {
    if (m_aRootArr) {
        TickSpread spread(state);
        for (FileNode* const node : m_aRootArr->root().childrenInAnyOrder()) {
            if (node->isExpand()) spread.tick(*node);
            else node->setState(static_cast<FileNode::State>(state));
        }
        spread.finish();
    }
    changeSelectAllButtonState();
    reloadTree();
}

void Controller::reloadTree() {
    if (_aDelegate != nullptr) _aDelegate->reloadTreeList();
}

void Controller::openFileWithFileNode(const FileNode& node) {
    if (m_parts.reveal) m_parts.reveal(node.path());
}

void Controller::pereviewFileWithFileNode(const FileNode& node) {
    if (m_parts.openFolder) m_parts.openFolder(node.path());
}

std::string Controller::moveFileToTrash(const std::string& path,
                                        const std::optional<EntryIdentity>& expected) {
    if (m_parts.files == nullptr) return "no file system";
    return putIntoTrash(*m_parts.files, m_parts.ownFiles, path, expected);
}

void Controller::moveFileToTrash(const std::string& path,
                                 const std::optional<EntryIdentity>& expected,
                                 std::function<void(const std::string& reason)> whenDone) {
    if (m_parts.files == nullptr || m_parts.mainQueue == nullptr) return;
    if (!m_errands)
        m_errands =
            std::make_unique<TrashErrands>(*m_parts.files, *m_parts.mainQueue, m_parts.ownFiles);
    m_errands->send(path, expected, std::move(whenDone));
}

void Controller::moveFileToTarsh() {
    if (m_aRootArr && !m_erasure && m_parts.files != nullptr && m_parts.mainQueue != nullptr) {
        std::vector<FileNode*> nodes = deleteFilesWithDic(m_aRootArr->root().childrenInAnyOrder());
        if (!nodes.empty()) {
            m_erasure = std::make_shared<Erasure>(m_parts, m_aRootArr, std::move(nodes));
            m_erasure->whenEnded = [this](const std::vector<std::string>& failed) {
                // It is this very object's call that is running, so that the object goes in a later
                // turn.
                m_parts.mainQueue->async([ended = std::exchange(m_erasure, nullptr)] {});
                for (const std::string& path : failed)
                    Log::line(fmt::format("--delete file error ---::{}", path));
                reloadTree();
            };
            m_erasure->work.runTaskWithPath();
        }
    }
    reloadTree();
}

std::vector<FileNode*> Controller::deleteFilesWithDic(std::span<FileNode* const> nodes) {
    return tickedOf(nodes);
}

bool Controller::deleteFilesWithDic() {
    if (m_removal || !m_aRootArr || m_parts.files == nullptr || m_parts.mainQueue == nullptr)
        return false;
    const std::vector<FileNode*> nodes =
        deleteFilesWithDic(m_aRootArr->root().childrenInAnyOrder());
    if (nodes.empty()) return false;
    m_rescan.reset();  // two at once would add to folders that leave
    m_removal = std::make_shared<Removal>(m_parts, m_aRootArr, nodes, [this] { removalNews(); });
    return true;
}

void Controller::stopRemove() {
    if (m_removal) m_removal->work.stop();
}

bool Controller::isRemoving() const { return m_removal != nullptr; }

// Whatever the delegate is told, it may answer by ending the removal, or by turning an event loop
// that brings further news.
void Controller::removalNews() {
    const std::shared_ptr<Removal> removal = m_removal;
    if (!removal) return;
    if (removal->isTaking) {
        removal->isMissed = true;
        return;
    }
    if (!removal->last) {
        removal->isTaking = true;
        NodeRemoval::News news = removal->work.takeNews(mostLeaving);
        takeOut(*removal, news.leaving);
        for (const auto& [percent, path] : news.notices)
            if (_aDelegate != nullptr) _aDelegate->changeProgressWithPoint(percent, path);
        if (m_removal != removal) return;
        removal->isTaking = false;
        const bool isMissed = std::exchange(removal->isMissed, false);
        if (news.isMore || isMissed) removal->work.callAgain();
        if (!news.ending) return;
        removal->last = std::move(news);
    }
    if (removal->clearing.step(mostStates)) endRemoval();
    else removal->work.callAgain();
}

// The siblings of what goes lose their ticks, as their folder does. That a folder is done once for
// all its nodes, and at the end, leaves the same states: nobody ticks anything meanwhile.
void Controller::takeOut(Removal& removal, std::span<FileNode* const> nodes) {
    if (nodes.empty()) return;
    std::unordered_map<FileNode*, std::vector<FileNode*>> byFolder;
    for (FileNode* const node : nodes) {
        FileNode* const father = node->father();
        byFolder[father != nullptr ? father : &removal.work.tree().root()].push_back(node);
        if (father != nullptr && removal.cleared.insert(father).second)
            removal.clearing.tick(*father);
    }
    for (const auto& [folder, leaving] : byFolder) folder->removeChildren(leaving);
    reloadTree();
}

void Controller::endRemoval() {
    const bool isShown = &m_removal->work.tree() == m_aRootArr.get();
    const NodeRemoval::News last = *std::exchange(m_removal, nullptr)->last;
    if (isShown) selectAllFileNode(FileNode::NotSelected);
    if (isShown && last.cut != nullptr) scanAgain(m_aRootArr, *last.cut);
    if (_aDelegate != nullptr) _aDelegate->changeProgressWithPoint(100, last.lastPath);
    if (_aDelegate != nullptr) _aDelegate->removalEnded(*last.ending);
}

void Controller::scanAgain(std::shared_ptr<FileNodeTree> tree, FileNode& folder) {
    m_rescan = std::make_unique<EumeRoot>(ScanParts{
        .files = m_parts.files, .mainQueue = m_parts.mainQueue, .grown = [this] { reloadTree(); }});
    m_rescan->scanAgain(std::move(tree), folder);
}

}  // namespace orrinvale
