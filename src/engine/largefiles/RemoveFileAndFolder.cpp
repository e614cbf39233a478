// One program after another: launch() starts it, its end calls advance().
#include "engine/largefiles/RemoveFileAndFolder.h"

#include <fmt/format.h>

#include <cerrno>
#include <utility>

#include "engine/base/Log.h"
#include "platform/error.h"
#include "platform/files.h"
#include "platform/paths.h"

namespace orrinvale {

RemoveFileAndFolder::RemoveFileAndFolder(const FileSystem& files, MainQueue& queue,
                                         const std::vector<std::string>& ownFiles,
                                         std::shared_ptr<FileNodeTree> tree,
                                         std::vector<FileNode*> allFilesArr, std::string program)
    : m_files(files),
      m_mainQueue(queue),
      m_places(ProtectedPlaces::ofThisMachine(files, ownFiles)),
      m_tree(std::move(tree)),
      m_allFilesArr(std::move(allFilesArr)),
      m_program(std::move(program)),
      m_self(std::make_shared<RemoveFileAndFolder*>(this)) {}

bool RemoveFileAndFolder::runTaskWithPath() {
    if (m_allFilesArr.empty()) return false;
    if (m_idx == 0 && m_delegate != nullptr)
        m_delegate->removeProgress(m_allFilesArr.size() == 1 ? 30.0F : 0.0F,
                                   m_allFilesArr.front()->path());
    while (m_idx < m_allFilesArr.size() && !m_isCancel) {
        const FileNode& node = *m_allFilesArr[m_idx];
        m_filePathStr = node.path();
        if (launch(node, m_filePathStr)) return true;
        advance();
    }
    laterCall (&RemoveFileAndFolder::end)();
    return false;
}

// The program gets a path and resolves it again by itself, so that more than the look just before
// it starts can not be had. The first and the last argument are words of its own command line;
// neither names a file, see Process.
bool RemoveFileAndFolder::launch(const FileNode& node, const std::string& path) {
    EntryIdentity seen = node.identity();
    seen.learnPassing(m_files.devicesOfPassingInodes());
    const auto held = HeldEntry::at(m_files, m_places, path, seen);
    std::string reason = held ? std::string() : held.error().reason;
    if (held) {
        clearImmutable(*held);
        auto eraser = Process::start(m_program, {"mv", path, "~/.Trash"},
                                     laterCall(&RemoveFileAndFolder::doneErasing));
        if (eraser) {
            m_eraser = std::move(*eraser);
            return true;
        }
        reason = systemError("start", m_program, eraser.error()).reason();
    }
    Log::line(fmt::format("Not erased {}: {}", path, reason));
    m_deleteErrorArr.push_back(path);
    return false;
}

// What the caller may look at but not change keeps its mark, and then the eraser fails as it would
// by itself.
void RemoveFileAndFolder::clearImmutable(const HeldEntry& held) const {
    const char* const name = held.name.c_str();
    ReadState state;
    SysResult<Descriptor> opened = tl::unexpected(EINVAL);
    if (held.attributes.type == FileType::Folder)
        opened = m_files.openInside(held.parent.get(), name);
    if (held.attributes.type == FileType::Regular)
        opened = m_files.openFile(held.parent.get(), name, Links::Keep, state);
    if (!opened) return;
    const auto seen = m_files.attributes(opened->get());
    if (!seen || !EntryIdentity::of(held.attributes).isStill(*seen)) return;
    (void)m_files.clearImmutable(opened->get());
}

// What the program ends with is not asked for: it proves nothing. The log tells when the entry is
// there still.
void RemoveFileAndFolder::doneErasing() {
    m_eraser.reset();
    const auto parent = HeldEntry::holdParentOf(m_files, m_filePathStr);  // paths have any length
    const std::string name(lastPathComponent(m_filePathStr));
    if (parent && m_files.attributes(parent->get(), name.c_str(), Links::Keep))
        Log::line(fmt::format("Not erased {}: it is there still", m_filePathStr));
    advance();
    if (m_idx < m_allFilesArr.size() && !m_isCancel) runTaskWithPath();
    else end();
}

void RemoveFileAndFolder::advance() {
    ++m_idx;
    if (m_idx >= m_allFilesArr.size() || m_isCancel || m_delegate == nullptr) return;
    const std::size_t percent = m_idx * 100 / m_allFilesArr.size();
    m_delegate->removeProgress(static_cast<float>(percent), m_allFilesArr[m_idx]->path());
}

void RemoveFileAndFolder::isCancel() {
    m_isCancel = true;
    if (m_eraser) m_eraser->terminate();
}

void RemoveFileAndFolder::end() {
    if (m_delegate != nullptr) m_delegate->removeObjEnd(m_deleteErrorArr);
}

// To be called on any thread, where this object may be gone by then; only the queue, which outlives
// it, is touched there.
std::function<void()> RemoveFileAndFolder::laterCall(void (RemoveFileAndFolder::*step)()) const {
    return [queue = &m_mainQueue, self = std::weak_ptr(m_self), step] {
        queue->async([self, step] {
            if (const auto eraser = self.lock()) ((*eraser)->*step)();
        });
    };
}

}  // namespace orrinvale
