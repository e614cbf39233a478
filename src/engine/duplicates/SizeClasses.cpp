// One pass over the sizes through a table with open addressing, and a counting sort.
#include "engine/duplicates/SizeClasses.h"

#include <bit>

namespace orrinvale {
namespace {

struct Slot {
    std::uint64_t size = 0;
    std::uint32_t count = 0;  // 0: the slot is free
    std::uint32_t number = SizeClasses::alone;
};

std::size_t placeOf(std::uint64_t size, unsigned bits) {
    return static_cast<std::size_t>((size * 0x9E3779B97F4A7C15ULL) >>
                                    (64 - bits));  // Knuth, multiplicative hashing
}

class SizeTable {
public:
    Slot& find(std::uint64_t size) {
        if (m_used * 2 >= m_slots.size()) grow();
        Slot& slot = look(m_slots, m_bits, size);
        if (slot.count == 0) {
            slot.size = size;
            ++m_used;
        }
        return slot;
    }

private:
    static Slot& look(std::vector<Slot>& slots, unsigned bits, std::uint64_t size) {
        std::size_t at = placeOf(size, bits);
        while (slots[at].count != 0 && slots[at].size != size) at = (at + 1) & (slots.size() - 1);
        return slots[at];
    }

    void grow() {
        const unsigned bits = m_bits + 2;
        std::vector<Slot> larger(std::size_t{1} << bits);
        for (const Slot& slot : m_slots)
            if (slot.count != 0) look(larger, bits, slot.size) = slot;
        m_slots.swap(larger);
        m_bits = bits;
    }

    unsigned m_bits = 10;
    std::vector<Slot> m_slots = std::vector<Slot>(std::size_t{1} << m_bits);
    std::size_t m_used = 0;
};

}  // namespace

SizeClasses::SizeClasses(const FileList& files) : m_classOf(files.size(), alone) {
    SizeTable table;
    for (const fileAttrbItem* file : files) ++table.find(file->fileSize).count;

    m_starts.push_back(0);
    for (std::size_t index = 0; index < files.size(); ++index) {
        Slot& slot = table.find(files[index]->fileSize);
        if (slot.count < 2) continue;
        if (slot.number == alone) {
            slot.number = static_cast<std::uint32_t>(m_starts.size() - 1);
            m_starts.push_back(m_starts.back() + slot.count);
        }
        m_classOf[index] = slot.number;
    }
    m_members.resize(m_starts.back());
    std::vector<std::uint32_t> fill(m_starts.begin(), m_starts.end() - 1);
    for (std::uint32_t index = 0; index < m_classOf.size(); ++index)
        if (m_classOf[index] != alone) m_members[fill[m_classOf[index]]++] = index;
}

}  // namespace orrinvale
