// The single operations as the interface names them, file by file.
#include "engine/duplicates/algorithm.h"

#include <algorithm>
#include <cstring>
#include <optional>

#include "engine/base/Log.h"
#include "engine/duplicates/crc.h"
#include "engine/files/TreeLister.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

// The relative paths of everything below a folder, by bytes within each folder; nothing when it can
// not be listed.
std::optional<std::vector<std::string>> subpaths(const FileSystem& files, const std::string& path) {
    const auto start = openFolderByPath(files, path, Links::Follow);
    if (!start) return std::nullopt;
    std::vector<std::string> out;
    TreeListing listing;
    listing.order = TreeListing::Order::SortedByBytes;
    listing.foldersFirst = true;
    listing.entry = [&](const TreeEntry& entry) { out.emplace_back(entry.relative); };
    const std::atomic<bool> never{false};
    if (!listTree(files, start->get(), listing, never)) return std::nullopt;
    return out;
}

}  // namespace

algorithm::algorithm(const FileSystem& files, SkipList& skipped)
    : m_files(files),
      m_skipped(skipped),
      m_opener(files),
      m_hasher(files, skipped),
      m_Buf(std::make_unique_for_overwrite<std::byte[]>(bufferBytes)) {
    std::memset(m_Buf.get(), 0, FileHasher::headBytes);
}

std::uint64_t algorithm::getFileSize(const std::string& path) {
    ReadState state;
    const auto file = m_files.openFile(FileSystem::noParent, path.c_str(), Links::Follow, state);
    if (file) {
        const auto attributes = m_files.attributes(file->get());
        if (attributes && attributes->type == FileType::Regular) return attributes->size;
    }
    Log::engine("-[algorithm getFileSize:]", "open file failed:{}", path);
    return 0;
}

bool algorithm::getMD5_1K(fileAttrbItem& item) {
    const auto file = m_opener.open(item);
    const auto before = file ? m_files.attributes(file->get()) : tl::unexpected(file.error());
    if (!before || before->type != FileType::Regular) {
        Log::engine("-[algorithm getMD5_1K:]", "open file:{} failed", item.filePathName());
        const bool isOther = before || before.error() == CandidateOpener::notARegularFile;
        m_skipped.add(isOther ? Error{ErrorKind::NotARegularFile, "open", item.filePathName(), 0}
                              : systemError("open", item.filePathName(), before.error()));
        return false;
    }
    ReadState& state = m_opener.state();
    m_files.expectRandomReads(file->get());
    m_files.beginReading(file->get(), before->device, 0, FileHasher::headBytes, state);
    const auto count = m_files.read(file->get(), {m_Buf.get(), FileHasher::headBytes}, 0, state);
    m_files.endReading(file->get(), state);
    const auto after = m_files.attributes(file->get());
    if (!count) {
        Log::engine("-[algorithm getMD5_1K:]", "open file :{} failed", item.filePathName());
        m_skipped.add(systemError("read", item.filePathName(), count.error()));
        return false;
    }
    if (!after || after->size != before->size || after->modified != before->modified ||
        after->changed != before->changed) {
        m_skipped.add(Error{ErrorKind::Changed, "read", item.filePathName(), 0});
        return false;
    }
    item.md5_1k = crc::crc64(m_Buf.get(), FileHasher::headBytes);
    return true;
}

bool algorithm::getMD5(fileAttrbItem& item) { return m_hasher.hashWhole(item); }

bool algorithm::getSingleMd5WithData(fileAttrbItem& item) { return item.md5 != 0 || getMD5(item); }

bool algorithm::findFileWithSize(const FileList& list, FileList& outArray,
                                 const fileAttrbItem& findItem) {
    for (fileAttrbItem* const candidate : list)
        if (candidate != nullptr && candidate->fileSize == findItem.fileSize)
            outArray.push_back(candidate);
    return true;
}

bool algorithm::findFileWithMd5(FileList& list, FileList& outArray, fileAttrbItem& findItem) {
    if (findItem.md5 == 0 && !getMD5(findItem)) return false;
    if (findItem.md5_1k == 0 && !getMD5_1K(findItem)) return false;
    for (fileAttrbItem* const candidate : list) {
        if (candidate->md5_1k == 0 && !getMD5_1K(*candidate)) continue;
        if (candidate->md5_1k != findItem.md5_1k) continue;
        if (candidate->md5 == 0 && !getMD5(*candidate)) continue;
        if (candidate->md5 == findItem.md5) outArray.push_back(candidate);
    }
    if (outArray.empty()) return true;
    outArray.push_back(&findItem);
    FileList gone = outArray;
    std::sort(gone.begin(), gone.end());
    std::erase_if(list, [&](fileAttrbItem* item) {
        return std::binary_search(gone.begin(), gone.end(), item);
    });
    return true;
}

bool algorithm::getDuplicateFile(fileAttrbItem* item, const FileList* From, FileList* Result) {
    if (item == nullptr || From == nullptr || Result == nullptr) return false;
    FileList sameSize;
    findFileWithSize(*From, sameSize, *item);
    return !sameSize.empty() && findFileWithMd5(sameSize, *Result, *item);
}

bool algorithm::compareWholeFile(fileAttrbItem& item, fileAttrbItem& anotherFile) {
    if (item.md5 != 0 || !getMD5(item)) return false;
    if (anotherFile.md5 != 0) return (anotherFile.md5 & 0xFF) != 0;
    return getMD5(anotherFile);
}

bool algorithm::CompareDirectoryWithoutHash(const std::string& path,
                                            const std::string& otherDirectory) {
    const auto one = subpaths(m_files, path);
    const auto other = subpaths(m_files, otherDirectory);
    return one && other && *one == *other;
}

bool algorithm::CompareDirectory(const std::string&, const std::string&) { return false; }

}  // namespace orrinvale
