// Small files are read whole and give both hashes at once; of large ones head, end and whole are
// read apart.
#include "engine/duplicates/FileHasher.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "engine/base/Log.h"
#include "engine/duplicates/crc.h"
#include "platform/files.h"

namespace orrinvale {
namespace {

// From memory a file is read in pieces that stay in the processor's cache until they are hashed;
// from the disk in pieces so large that the disk never waits for the next request. Both measured.
constexpr std::size_t residentPiece = 256 * 1024;
constexpr std::size_t largePiece = 4 * 1024 * 1024;

// Files of at least this size that are in memory are looked at where they lie, without copying:
// 0.22 s instead of 0.32 s for 4.8 GiB. Smaller pieces lose to the cost of mapping them.
constexpr std::uint64_t mappedPiece = 4 * 1024 * 1024;

// Shorter holes are read like data: computing over zeros takes as long as reading about this many.
constexpr std::uint64_t fewestZeros = 1024 * 1024;

// What is resident is noted for so much at a time, where that has to be done.
constexpr std::uint64_t noteBytes = 64ULL << 20;

// Of one open file, which is itself whatever number it has.
bool sameVersion(const FileAttributes& a, const FileAttributes& b) {
    return a.type == b.type && a.size == b.size && a.modified == b.modified &&
           a.changed == b.changed;
}

std::uint64_t extend(std::uint64_t value, std::span<const std::byte> bytes) {
    return crc::crc64Buffer(bytes.data(), static_cast<std::uint32_t>(bytes.size()), false, value);
}

constexpr std::uint64_t startValue = ~std::uint64_t{0};

// The value after so many zeros more, in time that grows with the number of digits of the count.
std::uint64_t overZeros(std::uint64_t value, std::uint64_t count) {
    const std::byte zero{0};
    std::uint64_t power = crc::crc64(&zero, 1);  // the value of 1, 2, 4, 8 ... zeros
    std::uint64_t length = 1;
    for (std::uint64_t left = count; left != 0; left >>= 1U) {
        if ((left & 1U) != 0) value = crc::combine(value, power, length);
        if (left > 1) power = crc::combine(power, power, length);
        length <<= 1U;
    }
    return value;
}

}  // namespace

SysResult<Descriptor> CandidateOpener::open(const fileAttrbItem& item) {
    if (item.folder != m_folderNode) {
        m_folderNode = item.folder;
        m_state.denyNoAccessTime = false;
        auto folder = reopenFolder(m_files, *item.folder);
        m_folderError = folder ? 0 : folder.error();
        m_folder = folder ? std::move(*folder) : Descriptor();
    }
    if (m_folderError != 0) return tl::unexpected(m_folderError);
    // A link is followed only where the listing saw a link: what is exchanged for one later must
    // not be taken for its target.
    const Links links = item.type == FileType::SymbolicLink ? Links::Follow : Links::Keep;
    if (item.type == FileType::SymbolicLink) {
        const auto target = m_files.attributes(m_folder.get(), item.name, Links::Follow);
        if (!target) return tl::unexpected(target.error());
        if (target->type != FileType::Regular) return tl::unexpected(notARegularFile);
    } else if (item.type != FileType::Regular && item.type != FileType::Unknown) {
        return tl::unexpected(notARegularFile);
    }
    return m_files.openFile(m_folder.get(), item.name, links, m_state);
}

FileHasher::FileHasher(const FileSystem& files, SkipList& skipped, const StopGrace* grace)
    : m_files(files), m_skipped(skipped), m_grace(grace), m_opener(files) {}

bool FileHasher::fail(const fileAttrbItem& item, const char* operation, int number) {
    if (number == ECANCELED) return false;
    if (number == CandidateOpener::notARegularFile)
        return fail(item, Error{ErrorKind::NotARegularFile, operation, item.filePathName(), 0});
    return fail(item, systemError(operation, item.filePathName(), number));
}

bool FileHasher::fail(const fileAttrbItem& item, Error error) {
    Log::engine("-[algorithm getMD5:]", "open file :{} failed",
                item.filePathName() + ": " + error.reason());
    m_skipped.add(std::move(error));
    return false;
}

// A read ended before the file did. Where that was an error the next read at this place tells it;
// otherwise the file was cut.
bool FileHasher::failShort(const fileAttrbItem& item, int file, std::uint64_t end) {
    std::byte one;
    const auto next = m_files.read(file, {&one, 1}, end, m_opener.state());
    if (!next) return fail(item, "read", next.error());
    return fail(item, Error{ErrorKind::Changed, "read", item.filePathName(), 0});
}

bool FileHasher::isAsListed(const fileAttrbItem& item, const FileAttributes& now) {
    return now.type == FileType::Regular && item.type == FileType::Regular &&
           (now.inode == item.inode || item.inodePasses) && now.size == item.fileSize &&
           now.modified == item.modified && now.changed == item.changed;
}

FileHasher::Small FileHasher::hashSmall(fileAttrbItem& item) {
    const auto file = m_opener.open(item);
    if (!file) {
        fail(item, "open", file.error());
        return {};
    }
    const auto settled = [&] {
        return Small{hashSettled(item, file->get()) ? item.fileSize : 0, false};
    };
    if (item.type != FileType::Regular) return settled();
    if (!m_small) m_small = std::make_unique_for_overwrite<std::byte[]>(smallFile + 1);
    ReadState& state = m_opener.state();
    m_files.beginReading(file->get(), item.device, 0, item.fileSize, state);
    const auto count = m_files.read(file->get(), {m_small.get(), smallFile + 1}, 0, state);
    m_files.endReading(file->get(), state);
    if (!count) {
        fail(item, "read", count.error());
        return {};
    }
    if (*count != item.fileSize) return settled();

    item.md5 = crc::crc64(m_small.get(), static_cast<std::uint32_t>(*count));
    if (*count < headBytes) std::memset(m_small.get() + *count, 0, headBytes - *count);
    item.md5_1k = crc::crc64(m_small.get(), headBytes);
    return {*count, true};
}

FileHasher::Ends FileHasher::hashEnds(fileAttrbItem& item, bool waitForTail) {
    Ends ends;
    const auto file = m_opener.open(item);
    if (!file) {
        fail(item, "open", file.error());
        return ends;
    }
    std::byte head[headBytes] = {};
    std::byte tail[tailBytes];
    const int number = file->get();
    if (item.type != FileType::Regular) {
        ends.hashed = hashSettled(item, number);
        return ends;
    }
    ReadState& state = m_opener.state();
    const std::uint64_t tailAt = item.fileSize - std::min<std::uint64_t>(item.fileSize, tailBytes);
    m_files.expectRandomReads(number);
    m_files.beginReading(number, item.device, 0, headBytes, state);
    m_files.beginReading(number, item.device, tailAt, tailBytes, state);
    const auto headCount = m_files.read(number, head, 0, state);
    const auto tailCount = waitForTail ? m_files.read(number, tail, tailAt, state)
                                       : m_files.readResident(number, tail, tailAt, state);
    const auto after = m_files.attributes(number);
    m_files.endReading(number, state);
    if (!headCount || (waitForTail && !tailCount)) {
        fail(item, "read", headCount ? tailCount.error() : headCount.error());
        return ends;
    }
    if (!after || !isAsListed(item, *after)) {
        ends.hashed = hashSettled(item, number);
        return ends;
    }
    ends.hashed = true;
    ends.regular = true;
    item.md5_1k = crc::crc64(head, headBytes);
    ends.hasTail = tailCount.has_value();
    if (ends.hasTail) ends.tail = crc::crc64(tail, static_cast<std::uint32_t>(*tailCount));
    return ends;
}

std::span<std::byte> FileHasher::largeBuffer() {
    if (!m_large) m_large = std::make_unique_for_overwrite<std::byte[]>(largePiece);
    return {m_large.get(), largePiece};
}

std::uint64_t FileHasher::hashHead(const fileAttrbItem& item) {
    const auto file = m_opener.open(item);
    if (!file) fail(item, "open", file.error());
    if (!file) return 0;
    std::byte head[headBytes];
    m_files.expectRandomReads(file->get());
    m_files.beginReading(file->get(), item.device, 0, headBytes, m_opener.state());
    const auto count = m_files.read(file->get(), head, 0, m_opener.state());
    m_files.endReading(file->get(), m_opener.state());
    if (!count) fail(item, "read", count.error());
    return count ? crc::crc64(head, static_cast<std::uint32_t>(*count)) : 0;
}

// Hashes up to `length` bytes from `offset` on, onto `value`; the count of bytes that were there.
// Holes are not read: what a stretch of zeros does to the value can be computed.
SysResult<std::uint64_t> FileHasher::stream(int file, std::uint64_t device, std::uint64_t offset,
                                            std::uint64_t length, std::uint64_t& value) {
    std::uint64_t done = 0;
    while (done < length) {
        const std::uint64_t at = offset + done;
        const auto data = m_files.nextData(file, at);
        const std::uint64_t hole =
            std::min(length - done, data ? std::max(data->begin, at) - at : length - done);
        if (hole >= fewestZeros) {
            value = overZeros(value, hole);
            done += hole;
            continue;
        }
        const std::uint64_t wanted = data ? std::max(data->end, at + largePiece) - at : largePiece;
        const std::uint64_t piece = std::min({length - done, wanted, noteBytes});
        m_files.beginReading(file, device, at, piece, m_opener.state());
        const auto count = streamData(file, at, piece, value);
        m_files.endReading(file, m_opener.state());
        if (!count) return count;
        done += *count;
        if (*count < piece) break;
    }
    return done;
}

SysResult<std::uint64_t> FileHasher::streamData(int file, std::uint64_t offset,
                                                std::uint64_t length, std::uint64_t& value) {
    std::uint64_t done = 0;
    bool fromDisk =
        false;  // then what is read ahead looks resident, but is ours, and must go again
    while (done < length) {
        if (m_grace != nullptr && m_grace->isOver()) return tl::unexpected(ECANCELED);
        if (!fromDisk && length - done >= mappedPiece && (offset + done) % mappedPiece == 0) {
            const auto seen = m_files.visitResident(
                file, offset + done, mappedPiece,
                [&](std::span<const std::byte> bytes) { value = extend(value, bytes); });
            if (!seen) return tl::unexpected(seen.error());
            if (*seen) {
                done += mappedPiece;
                continue;
            }
        }
        const std::span<std::byte> buffer = largeBuffer();
        const auto left =
            static_cast<std::size_t>(std::min<std::uint64_t>(length - done, buffer.size()));
        auto piece = buffer.first(std::min(left, residentPiece));
        SysResult<std::size_t> count = tl::unexpected(EAGAIN);
        if (!fromDisk) count = m_files.readResident(file, piece, offset + done, m_opener.state());
        if (!count) {
            fromDisk = true;
            piece = buffer.first(left);
            count = m_files.read(file, piece, offset + done, m_opener.state());
        }
        if (!count) return tl::unexpected(count.error());
        value = extend(value, piece.first(*count));
        done += *count;
        if (*count < piece.size()) break;
    }
    return done;
}

bool FileHasher::hashStretch(const fileAttrbItem& item, std::uint64_t offset, std::uint64_t length,
                             std::uint64_t& value) {
    const auto file = m_opener.open(item);
    if (!file) return fail(item, "open", file.error());
    const int number = file->get();
    value = startValue;
    const auto count = stream(number, item.device, offset, length, value);
    if (!count) return fail(item, "read", count.error());
    const auto after = m_files.attributes(number);
    if (!after) return fail(item, "attributes", after.error());
    if (!isAsListed(item, *after))
        return fail(item, Error{ErrorKind::Changed, "read", item.filePathName(), 0});
    if (*count != length) return failShort(item, number, offset + *count);
    return true;
}

bool FileHasher::hashWhole(fileAttrbItem& item) {
    const auto file = m_opener.open(item);
    if (!file) return fail(item, "open", file.error());
    const std::uint64_t head = item.md5_1k;
    const bool hashed = hashSettled(item, file->get());
    item.md5_1k = head;
    return hashed;
}

// The careful way: whatever the listing saw, the file must be the same before and after. Sets both
// hashes.
bool FileHasher::hashSettled(fileAttrbItem& item, int file) {
    const auto before = m_files.attributes(file);
    if (!before) return fail(item, "attributes", before.error());
    if (before->type != FileType::Regular)
        return fail(item, "open", CandidateOpener::notARegularFile);
    if (before->size == 0) return false;
    ReadState& state = m_opener.state();
    m_files.beginReading(file, before->device, 0, headBytes, state);
    std::byte head[headBytes] = {};
    const auto headCount = m_files.read(file, head, 0, state);
    m_files.endReading(file, state);
    std::uint64_t value = startValue;
    const auto count = headCount ? stream(file, before->device, 0, before->size, value)
                                 : tl::unexpected(headCount.error());
    if (!count) return fail(item, "read", count.error());
    const auto after = m_files.attributes(file);
    if (!after) return fail(item, "attributes", after.error());
    if (!sameVersion(*before, *after))
        return fail(item, Error{ErrorKind::Changed, "read", item.filePathName(), 0});
    if (*count != before->size) return failShort(item, file, *count);
    item.md5 = value;
    item.md5_1k = crc::crc64(head, headBytes);
    return true;
}

}  // namespace orrinvale
