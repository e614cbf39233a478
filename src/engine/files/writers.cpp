// A file is opened for the question alone, and nothing of it is read.
#include "engine/files/writers.h"

#include "platform/files.h"

namespace orrinvale {
namespace {

constexpr std::uint64_t largeFrom = std::uint64_t{1} << 20U;

}  // namespace

bool hasWriter(const FileSystem& files, int folder, const char* name, const FileAttributes& entry,
               AskWriters ask) {
    const bool isAsked = ask == AskWriters::OfAllFiles ||
                         (ask == AskWriters::OfLargeFiles && entry.size >= largeFrom);
    if (!isAsked || entry.type != FileType::Regular) return false;
    ReadState state;
    const auto file = files.openFile(folder, name, Links::Keep, state);
    return file && files.isOpenForWriting(file->get());
}

}  // namespace orrinvale
