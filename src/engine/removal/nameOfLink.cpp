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

bool hasSameBytes(const FileSystem& files, int folder, const std::string& one,
                  const std::string& other) {
    ReadState state;
    const auto first = files.openFile(folder, one.c_str(), Links::Keep, state);
    const auto second = files.openFile(folder, other.c_str(), Links::Keep, state);
    if (!first || !second) return false;
    const auto ofFirst = files.attributes(first->get());
    const auto ofSecond = files.attributes(second->get());
    if (!ofFirst || !ofSecond) return false;
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
    return isFileWithNames(link) && hasSameBytes(files, folder, aside, own) &&
           takeBackFromLink(files, folder, aside, own);
}

}  // namespace orrinvale
