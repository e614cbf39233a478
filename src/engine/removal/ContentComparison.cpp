// Both files are read side by side in pieces; the page cache stays as it was.
#include "engine/removal/ContentComparison.h"

#include <cstddef>
#include <cstring>
#include <memory>
#include <span>

#include "platform/files.h"

namespace orrinvale {
namespace {

// As for hashing: large enough that the calls cost nothing, small enough to stay in the second
// cache.
constexpr std::size_t pieceBytes = 256 * 1024;

/// What one comparison after another uses: room for a piece, and what is known of the device.
struct ComparisonRoom {
    std::unique_ptr<std::byte[]> buffer = std::make_unique_for_overwrite<std::byte[]>(pieceBytes);
    ReadState state;
};

/// One of the two files, read from its beginning.
class Reading final {
public:
    Reading(const FileSystem& files, const ComparedFile& file, ComparisonRoom& room)
        : m_files(files), m_file(file.file), m_room(room) {
        m_files.beginReading(m_file, file.device, 0, file.size, m_room.state);
    }
    ~Reading() { m_files.endReading(m_file, m_room.state); }
    Reading(const Reading&) = delete;
    Reading& operator=(const Reading&) = delete;

    [[nodiscard]] SysResult<std::span<const std::byte>> next() {
        std::byte* const buffer = m_room.buffer.get();
        const auto count = m_files.read(m_file, {buffer, pieceBytes}, m_offset, m_room.state);
        if (!count) return tl::unexpected(count.error());
        m_offset += *count;
        return std::span<const std::byte>(buffer, *count);
    }

private:
    const FileSystem& m_files;
    const int m_file;
    ComparisonRoom& m_room;
    std::uint64_t m_offset = 0;
};

// Of a file without a size: a served file system shows so what it does not know the length of.
SysResult<bool> isEmpty(Reading& reading) {
    const auto piece = reading.next();
    if (!piece) return tl::unexpected(piece.error());
    return piece->empty();
}

}  // namespace

SysResult<Comparison> compareContents(const FileSystem& files, const ComparedFile& a,
                                      const ComparedFile& b, const std::atomic<bool>& stop) {
    if (a.size != b.size) return Comparison::Different;
    // A removal compares thousands of small files one after another, on a thread of its own.
    thread_local ComparisonRoom roomA;
    thread_local ComparisonRoom roomB;
    Reading readingA(files, a, roomA);
    Reading readingB(files, b, roomB);
    if (a.size == 0) {
        const auto isOurs = isEmpty(readingA);
        const auto isTheirs = isEmpty(readingB);
        if (!isOurs || !isTheirs)
            return tl::unexpected(!isOurs ? isOurs.error() : isTheirs.error());
        return *isOurs && *isTheirs ? Comparison::Same : Comparison::Different;
    }
    for (std::uint64_t done = 0; done < a.size;) {
        if (stop) return Comparison::Stopped;
        const auto pieceA = readingA.next();
        const auto pieceB = readingB.next();
        if (!pieceA || !pieceB) return tl::unexpected(!pieceA ? pieceA.error() : pieceB.error());
        // Shorter than its size: cut meanwhile, which is another file from now on.
        if (pieceA->empty() || pieceA->size() != pieceB->size()) return Comparison::Different;
        if (std::memcmp(pieceA->data(), pieceB->data(), pieceA->size()) != 0)
            return Comparison::Different;
        done += pieceA->size();
    }
    return Comparison::Same;
}

}  // namespace orrinvale
