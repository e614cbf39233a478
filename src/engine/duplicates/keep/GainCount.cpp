// Names of one file are counted until all of them are there.
#include "engine/duplicates/keep/GainCount.h"

#include <algorithm>

#include "engine/base/saturating.h"

namespace orrinvale {

void GainCount::change(const EntryIdentity* identity, std::uint32_t links, std::uint64_t size,
                       bool adds) {
    if (identity != nullptr && identity->type == FileType::SymbolicLink) return;
    if (links >= 2 && identity != nullptr) {
        std::uint32_t& names = m_names[{identity->device, identity->inode}];
        const bool wereAll = names >= links;
        if (adds) ++names;
        else names -= std::min(names, std::uint32_t{1});
        if (wereAll == (names >= links)) return;
    }
    if (adds) addSaturating(m_bytes, size);
    else m_bytes -= std::min(m_bytes, size);
}

}  // namespace orrinvale
