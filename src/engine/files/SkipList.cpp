#include "engine/files/SkipList.h"

#include <algorithm>

namespace orrinvale {

std::vector<Error> SkipList::entries() const {
    std::vector<Error> out;
    {
        const std::lock_guard lock(m_mutex);
        out = m_entries;
    }
    std::stable_sort(out.begin(), out.end(),
                     [](const Error& a, const Error& b) { return a.path < b.path; });
    out.erase(std::unique(out.begin(), out.end(),
                          [](const Error& a, const Error& b) { return a.path == b.path; }),
              out.end());
    return out;
}

}  // namespace orrinvale
