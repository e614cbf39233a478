// The rule, and how roots of any bytes are kept in a line of text.
#include "engine/volumes/LowSpace.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>
#include <utility>

#include "engine/volumes/SpaceLevel.h"

namespace orrinvale {
namespace {

constexpr float kPointsToRise = 2.0F;
constexpr std::size_t kMostRemembered = 64;  // sticks come and go for years
constexpr char kEscape = '%';

bool isPlainInPath(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("/._-").find(c) != std::string_view::npos;
}

std::string escapedPath(std::string_view root) {
    std::string text;
    for (const char c : root)
        text += isPlainInPath(c) ? std::string(1, c)
                                 : fmt::format("{}{:02X}", kEscape, static_cast<unsigned char>(c));
    return text;
}

std::optional<std::string> unescapedPath(std::string_view text) {
    std::string root;
    while (!text.empty()) {
        if (text.front() != kEscape) {
            root += text.front();
            text.remove_prefix(1);
            continue;
        }
        unsigned char byte = 0;
        if (text.size() < 3) return std::nullopt;
        const auto [end, fault] = std::from_chars(text.data() + 1, text.data() + 3, byte, 16);
        if (fault != std::errc() || end != text.data() + 3) return std::nullopt;
        root += static_cast<char>(byte);
        text.remove_prefix(3);
    }
    return root.starts_with('/') ? std::optional(root) : std::nullopt;
}

}  // namespace

LowSpace::LowSpace(std::string_view remembered) {
    while (!remembered.empty()) {
        const std::size_t end = std::min(remembered.find(' '), remembered.size());
        if (auto root = unescapedPath(remembered.substr(0, end)))
            m_warned.push_back({std::move(*root)});
        remembered.remove_prefix(std::min(end + 1, remembered.size()));
    }
}

std::vector<SeenVolume> LowSpace::take(const std::vector<SeenVolume>& volumes, float level,
                                       Clock::time_point now) {
    forgetOthers(volumes);
    std::vector<SeenVolume> due;
    for (const SeenVolume& each : volumes) {
        if (!each.silence.empty() || !isGroupWarned(each.record->volType)) continue;
        if (isDue(each, level, now)) due.push_back(each);
    }
    forgetAbsent(volumes);
    return due;
}

bool LowSpace::isDue(const SeenVolume& volume, float level, Clock::time_point now) {
    const VolumeSpace space = spaceOf(*volume.record);
    auto known = std::ranges::find(m_warned, volume.record->volRootDir, &Warned::root);
    const bool isKnown = known != m_warned.end();
    if (!isShortOfSpace(space, level)) {
        const auto free = freePercent(space);
        const bool hasRisen = free && static_cast<float>(*free) >= level + kPointsToRise;
        if (isKnown && hasRisen) m_warned.erase(known);
        else if (isKnown) known->seen = volume.record;
        return false;
    }
    if (!isKnown) known = m_warned.insert(m_warned.end(), {volume.record->volRootDir});
    known->seen = volume.record;
    if (isKnown && (known->isTold || now < known->due)) return false;
    known->isTold = true;
    return true;
}

// The same stick that is plugged in again has a new number, too, so that the number alone does not
// say that it is another one. Of two mounts at one root both may stand.
void LowSpace::forgetOthers(const std::vector<SeenVolume>& volumes) {
    std::erase_if(m_warned, [&](const Warned& each) {
        if (!each.seen) return false;
        const ZvVolumeInfo& old = *each.seen;
        bool isAnother = false;
        for (const SeenVolume& volume : volumes) {
            const ZvVolumeInfo& now = *volume.record;
            if (now.volRootDir != each.root || !volume.hasAnswered()) continue;
            if (now.volRefNumber == old.volRefNumber) return false;
            isAnother =
                isAnother || now.volumeName != old.volumeName || now.nTotalSize != old.nTotalSize;
        }
        return isAnother;
    });
}

// One that stands would be warned of anew at the next look.
void LowSpace::forgetAbsent(const std::vector<SeenVolume>& volumes) {
    const auto isAway = [&](const Warned& warned) {
        return std::ranges::none_of(volumes, [&](const SeenVolume& each) {
            return each.record->volRootDir == warned.root;
        });
    };
    for (auto each = m_warned.begin(); m_warned.size() > kMostRemembered && each != m_warned.end();)
        each = isAway(*each) ? m_warned.erase(each) : std::next(each);
}

void LowSpace::wasNotTold(const std::string& volRootDir, Clock::time_point now) {
    for (Warned& each : m_warned) {
        if (each.root != volRootDir) continue;
        each.isTold = false;
        each.due = now + each.pause;
        each.pause *= 2;
    }
}

std::string LowSpace::remembered() const {
    std::string line;
    for (const Warned& each : m_warned)
        if (each.isTold) line.append(line.empty() ? "" : " ").append(escapedPath(each.root));
    return line;
}

}  // namespace orrinvale
