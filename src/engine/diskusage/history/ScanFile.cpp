// A file has a line that names its kind and version, a checksum of all behind that, the facts, and
// the entries in the order of a walk. An entry begins with the length of that part of its name
// which differs from the name before it in the same folder, and 0 ends a folder. What lies on the
// disk is written only where it is not the length in whole blocks.
#include "engine/diskusage/history/ScanFile.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

#include "engine/duplicates/crc.h"

namespace orrinvale {
namespace {

constexpr std::string_view scanMagic = "orrinvale scan 2\n";
constexpr std::string_view scanMagicBefore = "orrinvale scan 1\n";  // without the root's volume
static_assert(scanMagic.size() == scanMagicBefore.size());
constexpr std::size_t checksumBytes = 8;
constexpr std::size_t mostNameBytes = 4096;  // of one entry; file systems have up to 1,020
constexpr std::uint64_t scanBlock = 4096;
constexpr std::uint64_t beyondAllFolders = std::uint64_t{1} << 60U;

constexpr std::uint64_t folderFlag = 1, marksFlag = 2, diskFlag = 4;
constexpr unsigned flagBits = 3;

void appendNumber(std::string& out, std::uint64_t number) {
    for (; number >= 0x80; number >>= 7U) out += static_cast<char>(number | 0x80U);
    out += static_cast<char>(number);
}

bool takeNumber(std::string_view& in, std::uint64_t& number) {
    number = 0;
    for (unsigned shift = 0; shift < 64 && !in.empty(); shift += 7) {
        const auto byte = static_cast<std::uint8_t>(in.front());
        in.remove_prefix(1);
        if (shift == 63 && byte > 1) return false;
        number |= static_cast<std::uint64_t>(byte & 0x7FU) << shift;
        if (byte < 0x80) return true;
    }
    return false;
}

// Small numbers of either sign become small ones. The arithmetic is modulo 2^64.
std::uint64_t zigzag(std::uint64_t number) { return (number << 1U) ^ (0 - (number >> 63U)); }
std::uint64_t fromZigzag(std::uint64_t number) { return (number >> 1U) ^ (0 - (number & 1U)); }

std::uint64_t inBlocks(std::uint64_t size) {
    return (size + scanBlock - 1) / scanBlock * scanBlock;
}

std::uint64_t checksumOf(std::string_view bytes) {
    return crc::crc64(bytes.data(), static_cast<std::uint32_t>(bytes.size()));
}

std::size_t sharedBytes(std::string_view a, std::string_view b) {
    return static_cast<std::size_t>(std::ranges::mismatch(a, b).in1 - a.begin());
}

using NamedEntry = std::pair<std::string_view, RecordedEntry*>;

RecordedEntry* sortList(RecordedEntry* first, std::vector<NamedEntry>& room) {
    room.clear();
    for (RecordedEntry* each = first; each != nullptr; each = each->next)
        room.emplace_back(each->name, each);
    if (room.empty()) return nullptr;
    std::ranges::sort(room, {}, &NamedEntry::first);
    const auto isSame = [](const NamedEntry& a, const NamedEntry& b) { return a.first == b.first; };
    room.erase(std::unique(room.begin(), room.end(), isSame), room.end());
    for (std::size_t i = 0; i + 1 < room.size(); ++i) room[i].second->next = room[i + 1].second;
    room.back().second->next = nullptr;
    return room.front().second;
}

// Each folder's list by name.
void sortRecord(ScanRecord& record) {
    std::vector<NamedEntry> room;
    record.first = sortList(record.first, room);
    std::vector<RecordedEntry*> waiting{record.first};
    while (!waiting.empty()) {
        RecordedEntry* each = waiting.back();
        waiting.pop_back();
        for (; each != nullptr; each = each->next) {
            if (each->first == nullptr) continue;
            each->first = sortList(each->first, room);
            waiting.push_back(each->first);
        }
    }
}

void appendFacts(std::string& out, const ScanFacts& facts) {
    appendNumber(out, facts.root.size());
    out += facts.root;
    appendNumber(out, zigzag(static_cast<std::uint64_t>(facts.time)));
    out += static_cast<char>(facts.marks);
    out += static_cast<char>(facts.allFileSystems ? 1 : 0);
    const VolumeName volume = facts.volume.value_or(VolumeName{});
    for (const std::uint64_t each : {facts.entries, facts.size, facts.onDisk, facts.filesFrom,
                                     facts.foldersFrom, volume.first, volume.second})
        appendNumber(out, each);
}

// What nobody could look at tells that its size is not known, as long as there is room for small
// ones.
bool isKept(const RecordedEntry& entry, const ScanFacts& facts) {
    if (entry.size >= (entry.isFolder ? facts.foldersFrom : facts.filesFrom)) return true;
    return !entry.isFolder && entry.marks != 0 && facts.filesFrom == recordedFilesFrom;
}

void appendEntry(std::string& out, const RecordedEntry& entry, std::string_view before) {
    const std::string_view name = entry.name;
    const std::size_t shared = sharedBytes(name, before);
    const bool hasDisk = entry.onDisk != inBlocks(entry.size);
    const std::uint64_t flags = (entry.isFolder ? folderFlag : 0U) |
                                (entry.marks != 0 ? marksFlag : 0U) | (hasDisk ? diskFlag : 0U);
    appendNumber(out, name.size() - shared);
    appendNumber(out, (shared << flagBits) | flags);
    out += name.substr(shared);
    appendNumber(out, entry.size);
    if (hasDisk) appendNumber(out, zigzag(entry.onDisk - inBlocks(entry.size)));
    if (entry.marks != 0) out += static_cast<char>(entry.marks);
}

// False when they are more than `most`.
bool appendEntries(std::string& out, const ScanRecord& record, std::size_t most) {
    struct Open {
        const RecordedEntry* next;
        const char* before;
    };
    std::vector<Open> levels{{record.first, ""}};
    while (!levels.empty()) {
        if (out.size() > most) return false;
        Open& level = levels.back();
        const RecordedEntry* const entry = level.next;
        if (entry == nullptr) {
            out += '\0';
            levels.pop_back();
            continue;
        }
        level.next = entry->next;
        if (!isKept(*entry, record.facts)) continue;
        if (entry->name[0] == 0 || std::strlen(entry->name) > mostNameBytes) continue;
        appendEntry(out, *entry, std::exchange(level.before, entry->name));
        if (entry->isFolder) levels.push_back({entry->first, ""});
    }
    return out.size() <= most;
}

// The next thing to go where names are too long.
void raise(ScanFacts& facts) {
    constexpr std::uint64_t step = 16, onlyFolders = std::uint64_t{1} << 40U, leastFolder = 4096;
    if (facts.filesFrom < onlyFolders) facts.filesFrom *= step;
    else facts.foldersFrom = facts.foldersFrom == 0 ? leastFolder : facts.foldersFrom * step;
}

}  // namespace

std::string encodeScan(ScanRecord& record) {
    sortRecord(record);
    const std::size_t most = std::min<std::uint64_t>(
        record.facts.entries * scanBytesPerEntry + scanBytesBesides, mostScanBytes);
    std::string out;
    for (bool isDone = false; !isDone;) {
        out = scanMagic;
        out.resize(scanMagic.size() + checksumBytes);
        appendFacts(out, record.facts);
        const std::size_t head = out.size();
        isDone = appendEntries(out, record, most);
        if (isDone) break;
        raise(record.facts);
        if (record.facts.foldersFrom < beyondAllFolders) continue;
        out.resize(head);
        out += '\0';  // nothing but the whole
        isDone = true;
    }
    const std::uint64_t sum =
        checksumOf(std::string_view(out).substr(scanMagic.size() + checksumBytes));
    for (unsigned i = 0; i < checksumBytes; ++i)
        out[scanMagic.size() + i] = static_cast<char>(sum >> (8 * i));
    return out;
}

std::optional<StoredScan> parseScan(std::string bytes) {
    StoredScan scan;
    scan.bytes = std::move(bytes);
    std::string_view left = scan.bytes;
    const bool hasVolume = left.starts_with(scanMagic);
    if ((!hasVolume && !left.starts_with(scanMagicBefore)) ||
        left.size() < scanMagic.size() + checksumBytes || left.size() > mostScanBytes)
        return std::nullopt;
    left.remove_prefix(scanMagic.size());
    std::uint64_t sum = 0;
    for (unsigned i = 0; i < checksumBytes; ++i)
        sum |= std::uint64_t{static_cast<std::uint8_t>(left[i])} << (8 * i);
    left.remove_prefix(checksumBytes);
    if (sum != checksumOf(left)) return std::nullopt;
    ScanFacts& facts = scan.facts;
    std::uint64_t number = 0;
    if (!takeNumber(left, number) || number > left.size()) return std::nullopt;
    facts.root = left.substr(0, number);
    left.remove_prefix(number);
    if (facts.root.empty() || facts.root.front() != '/' ||
        facts.root.find('\0') != std::string::npos || !takeNumber(left, number) || left.size() < 2)
        return std::nullopt;
    facts.time = static_cast<std::int64_t>(fromZigzag(number));
    facts.marks = static_cast<std::uint8_t>(left[0]);
    facts.allFileSystems = left[1] != 0;
    left.remove_prefix(2);
    for (std::uint64_t* const each :
         {&facts.entries, &facts.size, &facts.onDisk, &facts.filesFrom, &facts.foldersFrom})
        if (!takeNumber(left, *each)) return std::nullopt;
    VolumeName volume;
    if (hasVolume && (!takeNumber(left, volume.first) || !takeNumber(left, volume.second)))
        return std::nullopt;
    if (volume != VolumeName{}) facts.volume = volume;
    scan.treeAt = scan.bytes.size() - left.size();
    return scan;
}

ScanReader::ScanReader(const StoredScan& scan)
    : m_left(std::string_view(scan.bytes).substr(scan.treeAt)), m_levels{{0, 0}} {}

std::string_view ScanReader::name() const {
    return std::string_view(m_names).substr(m_levels.back().nameAt, m_levels.back().nameLength);
}

ScanReader::Step ScanReader::bad() {
    m_isBad = true;
    return Step::Bad;
}

ScanReader::Step ScanReader::next() {
    if (m_isBad) return Step::Bad;
    if (m_levels.empty()) return Step::End;
    if (std::exchange(m_opens, false)) {
        const std::size_t at = m_levels.back().nameAt + m_levels.back().nameLength;
        m_levels.push_back({at, 0});
    }
    std::uint64_t length = 0;
    if (!takeNumber(m_left, length)) return bad();
    if (length == 0) {
        m_levels.pop_back();
        if (!m_levels.empty()) return Step::Up;
        return m_left.empty() ? Step::End : bad();
    }
    std::uint64_t head = 0;
    if (!takeNumber(m_left, head) || !takeName(length, head >> flagBits)) return bad();
    if (!takeNumber(m_left, m_size)) return bad();
    m_onDisk = inBlocks(m_size);
    std::uint64_t beyond = 0;
    if ((head & diskFlag) != 0 && !takeNumber(m_left, beyond)) return bad();
    m_onDisk += fromZigzag(beyond);
    m_marks = 0;
    if ((head & marksFlag) != 0) {
        if (m_left.empty()) return bad();
        m_marks = static_cast<std::uint8_t>(m_left.front());
        m_left.remove_prefix(1);
    }
    m_isFolder = m_opens = (head & folderFlag) != 0;
    return Step::Entry;
}

// Behind the name before it, and one that a folder can hold.
bool ScanReader::takeName(std::uint64_t length, std::uint64_t shared) {
    Level& level = m_levels.back();
    if (length > m_left.size() || shared > level.nameLength || length > mostNameBytes ||
        shared + length > mostNameBytes)
        return false;
    const std::string_view rest = m_left.substr(0, length);
    const std::string_view before = name().substr(shared);
    const bool isFirst = level.nameLength == 0;
    if (!isFirst && rest <= before) return false;
    if (std::memchr(rest.data(), 0, rest.size()) != nullptr ||
        std::memchr(rest.data(), '/', rest.size()) != nullptr)
        return false;
    m_names.resize(level.nameAt + shared);
    m_names += rest;
    level.nameLength = shared + length;
    m_left.remove_prefix(length);
    return name() != "." && name() != "..";
}

bool ScanReader::skip() {
    if (!m_opens) return !m_isBad;
    for (std::size_t depth = m_levels.size();;) {
        const Step step = next();
        if (step == Step::Bad || step == Step::End) return false;
        if (step == Step::Up && m_levels.size() == depth) return true;
    }
}

bool isWholeScan(const StoredScan& scan) {
    ScanReader reader(scan);
    for (;;) {
        const ScanReader::Step step = reader.next();
        if (step == ScanReader::Step::Bad || step == ScanReader::Step::End)
            return step == ScanReader::Step::End;
    }
}

}  // namespace orrinvale
