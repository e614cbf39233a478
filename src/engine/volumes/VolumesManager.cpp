// One volume after another; what stays is kept with the reason, and the log has a line for each.
#include "engine/volumes/VolumesManager.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "engine/base/Log.h"
#include "engine/text/Localized.h"
#include "engine/volumes/VolumesInfo.h"

namespace orrinvale {
namespace {

constexpr std::int32_t kNothingToEject = -1;
constexpr std::int32_t kSomeStayed = 1;
constexpr std::size_t kMostNamedHolders = 3;

std::string textOf(const VolumeHolder& holder) {
    return getLocalizedString(
        "EJECT_HOLDER",
        {escapeControls(holder.name), std::to_string(holder.pid), escapeControls(holder.path)});
}

std::string textOf(const std::vector<VolumeHolder>& holders) {
    const std::size_t named = std::min(holders.size(), kMostNamedHolders);
    const std::size_t more = holders.size() - named;
    std::string text = textOf(holders.front());
    for (std::size_t i = 1; i < named; ++i) {
        const bool isLast = i + 1 == named && more == 0;
        if (isLast) text = getLocalizedString("EJECT_LAST_HOLDER", {text, textOf(holders[i])});
        else text.append(", ").append(textOf(holders[i]));
    }
    return more == 0 ? text
                     : getLocalizedString("EJECT_MORE_HOLDERS", {text, std::to_string(more)});
}

// By its text alone: whether the folder can be reached is the file manager's to find out, on a dead
// server too.
std::string standardizedPath(const std::string& path) {
    std::string plain = std::filesystem::path(path).lexically_normal().string();
    while (plain.size() > 1 && plain.back() == '/') plain.pop_back();
    return plain;
}

enum class Place : std::uint8_t { Taken, Empty, ByOther };

// A volume that does not answer is asked for by its number and root all the same. Empty says that
// neither of them stands anywhere.
Place placeOf(Volumes& platform, std::int16_t volRefNumber, const std::string& volRootDir) {
    Place place = Place::Empty;
    IndexedVolume volume;
    for (std::uint32_t index = 1; platform.FSGetVolumeInfo(index, volume) != nsvErr; ++index) {
        const bool hasNumber = volume.refNumber == volRefNumber;
        const bool hasRoot = volume.rootPath == volRootDir;
        if (hasNumber && hasRoot) place = Place::Taken;
        else if ((hasNumber || hasRoot) && place == Place::Empty) place = Place::ByOther;
    }
    return place;
}

}  // namespace

std::string ejectFailureText(const EjectFailure& failure) {
    const std::string& name = failure.volumeName.empty() ? failure.volRootDir : failure.volumeName;
    std::string text = name.empty() ? getLocalizedString("EJECT_FAILED_NAMELESS")
                                    : getLocalizedString("EJECT_FAILED", {escapeControls(name)});
    if (!failure.dissent.reason.empty()) text += ": " + escapeControls(failure.dissent.reason);
    if (!failure.dissent.holders.empty())
        text += ", " + getLocalizedString("EJECT_HELD_OPEN", {textOf(failure.dissent.holders)});
    return text + '.';
}

VolumesManager::VolumesManager(Volumes& platform, OpenFolder openFolder)
    : m_platform(platform), m_openFolder(std::move(openFolder)) {}

bool VolumesManager::ejectSingleVolume(std::int16_t volRefNumber) {
    m_failures.clear();
    auto failure = eject(volRefNumber);
    if (!failure) return true;
    m_failures.push_back(std::move(*failure));
    return false;
}

bool VolumesManager::ejectVolumeAt(std::int16_t volRefNumber, const std::string& volRootDir) {
    m_failures.clear();
    switch (placeOf(m_platform, volRefNumber, volRootDir)) {
        case Place::Taken: ejectSingleVolume(volRefNumber); break;
        // An ejection takes all volumes of a drive along, those that were asked for next, too.
        case Place::Empty: break;
        case Place::ByOther:
            m_failures = {
                {volRefNumber, {}, volRootDir, nsvErr, {"The volume is not mounted any more", {}}}};
            break;
    }
    for (EjectFailure& each : m_failures) each.volRootDir = volRootDir;
    return m_failures.empty();
}

std::int32_t VolumesManager::ejectAllVolumes() {
    m_failures.clear();
    // The list is taken once: what comes up while the ejections run is not meant, and the others
    // must not be asked twice.
    const VolumesInfo::VolumeArray volumes = VolumesInfo(m_platform).volsArray();
    bool isAnyEjectable = false;
    for (const auto& volume : volumes) {
        if (!volume->bCanEject) continue;
        isAnyEjectable = true;
        auto failure = eject(volume->volRefNumber);
        if (!failure) continue;
        failure->volumeName = volume->volumeName;
        failure->volRootDir = volume->volRootDir;
        m_failures.push_back(std::move(*failure));
    }
    if (!isAnyEjectable) return kNothingToEject;
    return m_failures.empty() ? noErr : kSomeStayed;
}

std::optional<EjectFailure> VolumesManager::eject(std::int16_t volRefNumber) {
    EjectFailure failure{volRefNumber, {}, {}, noErr, {}};
    failure.status = m_platform.FSEjectVolumeSync(volRefNumber, 0, failure.dissent);
    if (failure.status == noErr) return std::nullopt;
    Log::line(fmt::format("Eject the volume {} failed result: {}", volRefNumber, failure.status));
    return failure;
}

bool VolumesManager::openVolRootDir(const std::optional<std::string>& path) {
    return path && !path->empty() && m_openFolder && m_openFolder(standardizedPath(*path));
}

}  // namespace orrinvale
