// A table of fingerprints, filled to four fifths at most before it doubles.
#include "engine/files/SeenEntries.h"

#include <functional>
#include <utility>

#include "engine/files/EntryIdentity.h"

namespace orrinvale {
namespace {

constexpr std::size_t firstRoom = 64;
constexpr std::uint64_t upperHalf = 0xFFFF'FFFF'0000'0000;

// The finalizer of MurmurHash3: each bit of the input reaches each bit of the answer.
std::uint64_t mixed(std::uint64_t value) {
    value = (value ^ (value >> 33U)) * 0xFF51'AFD7'ED55'8CCD;
    value = (value ^ (value >> 33U)) * 0xC4CE'B9FE'1A85'EC53;
    return value ^ (value >> 33U);
}

std::uint64_t printOf(SeenEntries::Key key, const SeenState& entry) {
    const std::uint64_t state =
        mixed(mixed(entry.stamp ^ (static_cast<std::uint64_t>(entry.type) << 56U)) + entry.size);
    const std::uint64_t print = (key & upperHalf) | (state >> 32U);
    return print != 0 ? print : 1;
}

}  // namespace

SeenState SeenState::of(const FileAttributes& seen) {
    const bool isFile = seen.type == FileType::Regular;
    return {.type = seen.type,
            .size = isFile ? seen.size : 0,
            .stamp = isFile ? EntryIdentity::timesOf(seen.modified, seen.changed)
                            : static_cast<std::uint64_t>(seen.born)};
}

SeenEntries::Key SeenEntries::keyOf(Key folder, std::string_view name, std::uint64_t inode) const {
    return mixed(mixed(folder + std::hash<std::string_view>{}(name)) + (m_inodesPass ? 0 : inode));
}

void SeenEntries::expect(Key key) const {
    if (!m_prints.empty()) __builtin_prefetch(&m_prints[placeOf(key)]);
}

void SeenEntries::add(Key key, const SeenState& entry) {
    if ((m_count + 1) * 5 > m_prints.size() * 4) grow();
    put(printOf(key, entry));
    ++m_count;
}

SeenEntries::Verdict SeenEntries::verdictOn(Key key, const SeenState& entry) const {
    if (m_prints.empty()) return Verdict::Unseen;
    const Print wanted = printOf(key, entry);
    Verdict verdict = Verdict::Unseen;
    for (std::size_t place = placeOf(wanted); m_prints[place] != 0;
         place = (place + 1) % m_prints.size()) {
        if (m_prints[place] == wanted) return Verdict::AsSeen;
        if (((m_prints[place] ^ wanted) & upperHalf) == 0) verdict = Verdict::Changed;
    }
    return verdict;
}

// By the half that stands for the key, scaled to the table.
std::size_t SeenEntries::placeOf(Print print) const {
    return ((print >> 32U) * m_prints.size()) >> 32U;
}

void SeenEntries::put(Print print) {
    std::size_t place = placeOf(print);
    while (m_prints[place] != 0) place = (place + 1) % m_prints.size();
    m_prints[place] = print;
}

void SeenEntries::grow() {
    const std::vector<Print> former = std::exchange(
        m_prints, std::vector<Print>(m_prints.empty() ? firstRoom : m_prints.size() * 2));
    for (const Print print : former)
        if (print != 0) put(print);
}

}  // namespace orrinvale
