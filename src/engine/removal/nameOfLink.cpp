// One exchange of names; what has more names loses one of them.
#include "engine/removal/nameOfLink.h"

#include <atomic>

#include "engine/removal/ContentComparison.h"
#include "platform/files.h"
#include "platform/sharing.h"

namespace orrinvale {
namespace {

bool isFileWithNames(const SysResult<FileAttributes>& seen) {
    return seen && seen->type == FileType::Regular && seen->links > 1;
}

// Whatever else than the bytes a name would lose must be the same.
bool isSameButForTimes(const FileSystem& files, int folder, const std::string& one,
                       const std::string& other) {
    ReadState state;
    const auto first = files.openFile(folder, one.c_str(), Links::Keep, state);
    const auto second = files.openFile(folder, other.c_str(), Links::Keep, state);
    if (!first || !second) return false;
    const auto ofFirst = files.attributes(first->get());
    const auto ofSecond = files.attributes(second->get());
    if (!ofFirst || !ofSecond) return false;
    const auto belongings = belongingsOf(first->get());
    const auto others = belongingsOf(second->get());
    if (!belongings || !others || *belongings != *others) return false;
    const std::atomic<bool> never{false};
    const auto answer = compareContents(files, {first->get(), ofFirst->device, ofFirst->size},
                                        {second->get(), ofSecond->device, ofSecond->size}, never);
    return answer && *answer == Comparison::Same;
}

}  // namespace

bool takeBackFromLink(const FileSystem& files, int folder, const std::string& aside,
                      const std::string& own) {
    const auto link = files.attributes(folder, own.c_str(), Links::Keep);
    const auto file = files.attributes(folder, aside.c_str(), Links::Keep);
    if (!isFileWithNames(link) || !file || file->inode == link->inode ||
        file->device != link->device || !exchangeNames(folder, aside.c_str(), own.c_str()))
        return false;
    const auto left = files.attributes(folder, aside.c_str(), Links::Keep);
    if (isFileWithNames(left) && left->inode == link->inode)
        return files.removeEntry(folder, aside.c_str(), FileType::Regular).has_value();
    (void)exchangeNames(folder, aside.c_str(), own.c_str());  // something else came into its place
    return false;
}

bool takeBackName(const FileSystem& files, int folder, const std::string& aside,
                  const std::string& own) {
    const auto link = files.attributes(folder, own.c_str(), Links::Keep);
    return isFileWithNames(link) && isSameButForTimes(files, folder, aside, own) &&
           takeBackFromLink(files, folder, aside, own);
}

bool removeLinkLeftAside(const FileSystem& files, int folder, const std::string& aside,
                         const std::string& own, std::uint64_t inode) {
    const auto file = files.attributes(folder, own.c_str(), Links::Keep);
    const auto link = files.attributes(folder, aside.c_str(), Links::Keep);
    return file && file->type == FileType::Regular && file->inode == inode &&
           isFileWithNames(link) && link->inode != inode && link->device == file->device &&
           files.removeEntry(folder, aside.c_str(), FileType::Regular).has_value();
}

}  // namespace orrinvale
