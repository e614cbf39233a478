// The smaller side goes into the larger one, so that a name is moved a few times however deep it
// lies.
#include "engine/diskusage/LinkedFiles.h"

#include <utility>

#include "engine/base/saturating.h"

namespace orrinvale {

std::uint64_t LinkedFiles::add(std::uint64_t device, std::uint64_t inode, std::uint32_t links,
                               std::uint64_t onDisk) {
    const auto [place, isFirst] =
        m_files.try_emplace({device, inode}, File{.onDisk = onDisk, .links = links, .met = 0});
    if (++place->second.met >= links) m_files.erase(place);
    return isFirst ? onDisk : 0;
}

std::uint64_t LinkedFiles::merge(LinkedFiles&& within) {
    if (within.m_files.size() > m_files.size()) std::swap(m_files, within.m_files);
    std::uint64_t twice = 0;
    for (const auto& [key, file] : within.m_files) {
        const auto [place, isFirst] = m_files.try_emplace(key, file);
        if (isFirst) continue;
        addSaturating(twice, file.onDisk);
        place->second.met += file.met;
        if (place->second.met >= file.links) m_files.erase(place);
    }
    within.m_files.clear();
    return twice;
}

std::uint64_t LinkedFiles::outside() const {
    std::uint64_t sum = 0;
    for (const auto& [key, file] : m_files) addSaturating(sum, file.onDisk);
    return sum;
}

}  // namespace orrinvale
