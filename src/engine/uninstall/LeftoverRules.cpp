// The rules, and the names that no program owns.
#include "engine/uninstall/LeftoverRules.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <iterator>

#include "platform/paths.h"

namespace orrinvale {
namespace {

// Folders that desktops, toolkits and tools share, whatever program bears the same name.
constexpr std::array<std::string_view, 72> sharedNames{"applications",
                                                       "apps",
                                                       "autostart",
                                                       "backgrounds",
                                                       "bash",
                                                       "bin",
                                                       "cache",
                                                       "color",
                                                       "common",
                                                       "config",
                                                       "containers",
                                                       "data",
                                                       "dbus-1",
                                                       "dconf",
                                                       "default",
                                                       "desktop-directories",
                                                       "docs",
                                                       "environment.d",
                                                       "flatpak",
                                                       "fontconfig",
                                                       "fonts",
                                                       "games",
                                                       "git",
                                                       "glib-2.0",
                                                       "gnupg",
                                                       "gtk-2.0",
                                                       "gtk-3.0",
                                                       "gtk-4.0",
                                                       "gvfs-metadata",
                                                       "home",
                                                       "ibus",
                                                       "icc",
                                                       "icons",
                                                       "java",
                                                       "kde",
                                                       "keyrings",
                                                       "lib",
                                                       "locale",
                                                       "log",
                                                       "logs",
                                                       "man",
                                                       "menus",
                                                       "mesa_shader_cache",
                                                       "mime",
                                                       "nautilus",
                                                       "node",
                                                       "npm",
                                                       "perl",
                                                       "perl5",
                                                       "php",
                                                       "pip",
                                                       "pipewire",
                                                       "pki",
                                                       "plasma-workspace",
                                                       "profiles",
                                                       "pulse",
                                                       "python",
                                                       "qt",
                                                       "recently-used",
                                                       "ruby",
                                                       "share",
                                                       "sounds",
                                                       "state",
                                                       "systemd",
                                                       "themes",
                                                       "thumbnails",
                                                       "tmp",
                                                       "tracker3",
                                                       "trash",
                                                       "vulkan",
                                                       "wine",
                                                       "xdg"};

std::string lowered(std::string_view text) {
    std::string out(text);
    std::transform(out.begin(), out.end(), out.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    return out;
}

bool isShared(const std::string& small) {
    // "python3.11" and "gtk-3.0" are as shared as "python" and "gtk".
    const std::size_t end = small.find_last_not_of("0123456789.-");
    const std::string bare = small.substr(0, end == std::string::npos ? 0 : end + 1);
    const auto isListed = [](const std::string& name) {
        return std::find(sharedNames.begin(), sharedNames.end(), name) != sharedNames.end();
    };
    return bare.size() < 2 || isListed(small) || isListed(bare);
}

// As flatpak wants them: at least three parts, none empty.
bool isFlatpakId(std::string_view name) {
    return std::count(name.begin(), name.end(), '.') >= 2 && !name.starts_with('.') &&
           !name.ends_with('.') && name.find("..") == std::string_view::npos;
}

}  // namespace

std::string_view wordOf(LeftoverGrade grade) {
    return grade == LeftoverGrade::Certain ? "certain" : "likely";
}

LeftoverClaims LeftoverClaims::of(const AppItemsArray& apps, const Applications& applications) {
    LeftoverClaims out;
    for (const auto& each : apps) out.installed.push_back(*each->record);
    for (const ApplicationType type :
         {ApplicationType::Flatpak, ApplicationType::Snap, ApplicationType::Deb,
          ApplicationType::AppImage, ApplicationType::Folder})
        if (const ApplicationKind* const kind = applications.kind(type)) {
            std::ranges::move(kind->packageNames(), std::back_inserter(out.packages));
            std::ranges::move(kind->formerNames(), std::back_inserter(out.formerNames));
        }
    return out;
}

LeftoverRules::LeftoverRules(const LeftoverClaims& claims)
    : m_former(claims.formerNames.begin(), claims.formerNames.end()) {
    for (const ApplicationRecord& each : claims.installed) {
        const std::size_t index = m_claimants.size();
        m_claimants.push_back(
            {each.package.empty() ? each.id : each.package, each.type, each.path});
        if (!each.id.empty()) m_ids.emplace(each.id, index);
        // What flatpak and snap run finds its folders elsewhere.
        if (each.type == ApplicationType::Flatpak || each.type == ApplicationType::Snap) continue;
        if (each.package.empty()) m_names[lowered(each.id)].insert(index);
        else m_names[lowered(each.package.substr(0, each.package.find(':')))].insert(index);
        for (const std::string& program : each.programs)
            m_names[lowered(lastPathComponent(program))].insert(index);
    }
    for (const std::string& each : claims.packages) m_packages[lowered(each)].insert(each);
}

std::optional<LeftoverVerdict> LeftoverRules::ofId(LeftoverHome home,
                                                   const std::string& name) const {
    std::vector<const Claimant*> claimants;
    const auto [from, to] = m_ids.equal_range(name);
    for (auto each = from; each != to; ++each) {
        const Claimant& claimant = m_claimants[each->second];
        const bool fits =
            home == LeftoverHome::Xdg ||
            (claimant.type == ApplicationType::Flatpak) == (home == LeftoverHome::Flatpak);
        if (fits) claimants.push_back(&claimant);
    }
    if (claimants.size() == 1)
        return LeftoverVerdict{
            claimants.front()->of,
            home == LeftoverHome::Xdg ? LeftoverGrade::Certain : LeftoverGrade::Likely, true,
            "it is named as the identifier of " + claimants.front()->of};
    if (!claimants.empty() || home == LeftoverHome::Xdg) return std::nullopt;
    if (home == LeftoverHome::Flatpak && !isFlatpakId(name)) return std::nullopt;
    return LeftoverVerdict{name, LeftoverGrade::Likely, false, name + " is not installed any more"};
}

std::optional<LeftoverVerdict> LeftoverRules::ofName(const std::string& name) const {
    const std::string small = lowered(name);
    if (isShared(small)) return std::nullopt;
    const auto named = m_names.find(small);
    const auto packages = m_packages.find(small);
    if (named == m_names.end()) {
        if (packages != m_packages.end() || !m_former.contains(name)) return std::nullopt;
        return LeftoverVerdict{
            name, LeftoverGrade::Likely, false,
            fmt::format("it is named as the package {}, which is not installed any more", name)};
    }
    if (named->second.size() != 1) return std::nullopt;
    const Claimant& claimant = m_claimants[*named->second.begin()];
    // Another package of the name may use the folder as well.
    const std::string own = claimant.of.substr(0, claimant.of.find(':'));
    if (packages != m_packages.end() &&
        std::any_of(packages->second.begin(), packages->second.end(),
                    [&](const std::string& each) { return each != own; }))
        return std::nullopt;
    return LeftoverVerdict{
        claimant.of, LeftoverGrade::Likely, true,
        fmt::format("it is named as the {}{}", small == lowered(own) ? "package " : "program of ",
                    claimant.of)};
}

std::optional<LeftoverVerdict> LeftoverRules::verdict(LeftoverHome home,
                                                      std::string_view name) const {
    const std::string text(name);
    if (home != LeftoverHome::Xdg) return ofId(home, text);
    const auto byId = m_ids.count(text);
    if (byId == 0) return ofName(text);
    // What somebody else may say of the same name stands against it.
    const auto named = m_names.find(lowered(text));
    const std::size_t owner = m_ids.find(text)->second;
    if (isShared(lowered(text)) ||
        (named != m_names.end() && std::any_of(named->second.begin(), named->second.end(),
                                               [&](std::size_t each) { return each != owner; })))
        return std::nullopt;
    const auto packages = m_packages.find(lowered(text));
    if (packages != m_packages.end() && !packages->second.contains(m_claimants[owner].of))
        return std::nullopt;
    auto out = ofId(home, text);
    // A name without points, such as a desktop entry's "vim", is a program's rather than an
    // identifier.
    if (out && std::count(text.begin(), text.end(), '.') < 2) out->grade = LeftoverGrade::Likely;
    return out;
}

}  // namespace orrinvale
