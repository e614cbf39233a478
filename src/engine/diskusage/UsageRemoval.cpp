// What goes was fixed when it was counted for the question; here it only stands in order.
#include "engine/diskusage/UsageRemoval.h"

#include <algorithm>
#include <utility>

#include "platform/files.h"

namespace orrinvale {

UsageRemoval::UsageRemoval(const FileSystem& files, std::vector<CountedEntry> counted)
    : m_files(files), m_entries(std::move(counted)) {
    std::ranges::reverse(m_entries);
}

void UsageRemoval::prepare() {
    const std::vector<std::uint64_t> passing = m_files.devicesOfPassingInodes();
    for (CountedEntry& entry : m_entries) entry.identity.learnPassing(passing);
}

}  // namespace orrinvale
