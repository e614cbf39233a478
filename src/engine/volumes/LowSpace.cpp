// The rule, and how roots of any bytes are kept in a line of text.
#include "engine/volumes/LowSpace.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>

#include "engine/volumes/SpaceLevel.h"

namespace orrinvale {
namespace {

constexpr float kPointsToRise = 2.0F;
constexpr std::size_t kMostRemembered = 64;  // sticks come and go for years
constexpr char kEscape = '%';

bool isPlain(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
           std::string_view("/._-").find(c) != std::string_view::npos;
}

std::string escaped(std::string_view root) {
    std::string text;
    for (const char c : root)
        text += isPlain(c) ? std::string(1, c)
                           : fmt::format("{}{:02X}", kEscape, static_cast<unsigned char>(c));
    return text;
}

std::optional<std::string> unescaped(std::string_view text) {
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
    while (!remembered.empty() && m_warned.size() < kMostRemembered) {
        const std::size_t end = std::min(remembered.find(' '), remembered.size());
        if (auto root = unescaped(remembered.substr(0, end)))
            m_warned.push_back({std::move(*root), true});
        remembered.remove_prefix(std::min(end + 1, remembered.size()));
    }
}

std::vector<SeenVolume> LowSpace::take(const std::vector<SeenVolume>& volumes, float level) {
    std::vector<SeenVolume> due;
    for (const SeenVolume& each : volumes) {
        const std::string& root = each.record->volRootDir;
        if (!each.silence.empty() || !isGroupWarned(each.record->volType)) continue;
        const VolumeSpace space = spaceOf(*each.record);
        const auto known = std::ranges::find(m_warned, root, &Warned::root);
        if (isShortOfSpace(space, level)) {
            if (known != m_warned.end()) continue;
            m_warned.push_back({root, true});
            due.push_back(each);
        } else if (known != m_warned.end()) {
            const auto free = freePercent(space);
            if (free && static_cast<float>(*free) >= level + kPointsToRise) m_warned.erase(known);
        }
    }
    if (m_warned.size() > kMostRemembered)
        m_warned.erase(m_warned.begin(), m_warned.end() - kMostRemembered);
    return due;
}

void LowSpace::wasNotTold(const std::string& volRootDir) {
    for (Warned& each : m_warned)
        if (each.root == volRootDir) each.isTold = false;
}

std::string LowSpace::remembered() const {
    std::string line;
    for (const Warned& each : m_warned)
        if (each.isTold) line.append(line.empty() ? "" : " ").append(escaped(each.root));
    return line;
}

}  // namespace orrinvale
