// Kinds are asked of open files, since a name may come to mean another one meanwhile.
#include "engine/duplicates/share/ShareGivers.h"

#include <utility>

#include "platform/files.h"
#include "platform/freeSpace.h"
#include "platform/paths.h"

namespace orrinvale {

// To share extents two need one space and one way of writing, to be one file all but their bytes.
ShareGivers::Key ShareGivers::keyOf(Way way, const Kind& kind) {
    if (way == Way::Extents) return {way, kind.space, kind.isWrittenInPlace, 0, {}};
    return {way, kind.space, kind.isWrittenInPlace, kind.device, kind.belongings};
}

const std::string& ShareGivers::space(std::uint64_t device, const std::string& path) {
    const auto [space, isNew] = m_spaces.try_emplace(device);
    if (isNew) space->second = spaceOf(folderOf(path));
    return space->second;
}

std::optional<ShareGivers::Kind> ShareGivers::kindOf(const std::string& path, std::uint64_t device,
                                                     int file) {
    auto belongings = belongingsOf(file);
    if (!belongings) return std::nullopt;
    return Kind{space(device, path), isWrittenInPlace(file), device, std::move(*belongings)};
}

void ShareGivers::enter(std::size_t number) {
    if (m_group == number) return;
    m_group = number;
    m_knowsStaying = false;
    m_givers.clear();
    m_changed.clear();
}

void ShareGivers::learnStaying(const std::vector<KeptCopy>& staying) {
    if (std::exchange(m_knowsStaying, true)) return;
    for (const KeptCopy& each : staying) {
        if (each.identity.type != FileType::Regular) continue;
        ReadState state;
        const auto file =
            m_files.openFile(FileSystem::noParent, each.path.c_str(), Links::Keep, state);
        if (!file) continue;
        if (auto kind = kindOf(each.path, each.identity.device, file->get())) add(*kind, each);
    }
}

std::optional<KeptCopy> ShareGivers::next(Way way, const Kind& kind) const {
    const auto found = m_givers.find(keyOf(way, kind));
    if (found == m_givers.end() || found->second.empty()) return std::nullopt;
    KeptCopy giver = found->second.back();
    const auto changed = m_changed.find({giver.identity.device, giver.identity.inode});
    if (changed != m_changed.end()) giver.identity.changed = changed->second;
    return giver;
}

void ShareGivers::drop(Way way, const Kind& kind) {
    const auto found = m_givers.find(keyOf(way, kind));
    if (found != m_givers.end() && !found->second.empty()) found->second.pop_back();
}

void ShareGivers::add(const Kind& kind, const KeptCopy& giver) {
    for (const Way way : {Way::Extents, Way::Link}) m_givers[keyOf(way, kind)].push_back(giver);
}

}  // namespace orrinvale
