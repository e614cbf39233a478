// The rules, and the names that no program owns.
#include "engine/uninstall/LeftoverRules.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <utility>

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

std::string loweredName(std::string_view text) {
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

const std::string& nameLeftBy(const ApplicationRecord& record) {
    return record.package.empty() ? record.id : record.package;
}

LeftoverClaims LeftoverClaims::of(const AppItemsArray& apps, const ApplicationInventory& rest) {
    LeftoverClaims out;
    for (const auto& each : apps) out.installed.push_back(*each->record);
    out.rest = rest;
    return out;
}

LeftoverRules::LeftoverRules(const LeftoverClaims& claims)
    : m_former(claims.rest.formerNames.begin(), claims.rest.formerNames.end()),
      m_unread(claims.rest.unread) {
    for (const ApplicationRecord& each : claims.installed) add(each);
    for (const std::string& each : claims.rest.packages)
        m_packages[loweredName(each)].push_back(each);
}

void LeftoverRules::add(const ApplicationRecord& record) {
    const std::size_t index = m_claimants.size();
    const std::string package = record.package.substr(0, record.package.find(':'));
    m_claimants.push_back({nameLeftBy(record), package, record.type, record.path});
    if (!record.id.empty()) m_ids.emplace(record.id, index);
    // A program may call its folder by any of these, wherever it comes from: a snap that is not
    // confined writes into the homes like everybody, and so may a flatpak.
    const std::string_view id = record.id;
    for (const std::string_view name :
         {std::string_view(record.name), id, id.substr(id.rfind('.') + 1),
          lastPathComponent(record.path)})
        m_rivals[loweredName(name)].insert(index);
    // What flatpak and snap run finds its own folders elsewhere.
    if (record.type == ApplicationType::Flatpak || record.type == ApplicationType::Snap) return;
    m_names[loweredName(package.empty() ? record.id : package)].insert(index);
    for (const std::string& program : record.programs)
        m_names[loweredName(lastPathComponent(program))].insert(index);
}

bool LeftoverRules::isUnread(LeftoverHome home) const {
    if (home == LeftoverHome::Xdg) return !m_unread.empty();
    return m_unread.contains(home == LeftoverHome::Flatpak ? ApplicationType::Flatpak
                                                           : ApplicationType::Snap);
}

// By another application, or by a package that is none. Of a name that packages of two
// architectures share, each has a part.
bool LeftoverRules::isClaimedBesides(const std::string& small, std::size_t owner) const {
    for (const Indexes* const each : {&m_names, &m_rivals})
        if (const auto found = each->find(small); found != each->end())
            for (const std::size_t index : found->second)
                if (index != owner) return true;
    const auto packages = m_packages.find(small);
    return packages != m_packages.end() &&
           (packages->second.size() > 1 || owner >= m_claimants.size() ||
            packages->second.front() != m_claimants[owner].package);
}

LeftoverVerdict LeftoverRules::verdictFor(const Claimant& claimant, LeftoverGrade grade,
                                          std::string reason) const {
    return {claimant.of, grade, true, std::move(reason), claimant.type, claimant.path};
}

std::optional<LeftoverVerdict> LeftoverRules::ofId(LeftoverHome home,
                                                   const std::string& name) const {
    std::vector<const Claimant*> claimants;
    const auto [from, to] = m_ids.equal_range(name);
    for (auto each = from; each != to; ++each) {
        const Claimant& claimant = m_claimants[each->second];
        const bool fits = home == LeftoverHome::Xdg ||
                          claimant.type == (home == LeftoverHome::Flatpak ? ApplicationType::Flatpak
                                                                          : ApplicationType::Snap);
        if (fits) claimants.push_back(&claimant);
    }
    if (claimants.size() == 1)
        return verdictFor(
            *claimants.front(),
            home == LeftoverHome::Xdg ? LeftoverGrade::Certain : LeftoverGrade::Likely,
            "it is named as the identifier of " + claimants.front()->of);
    if (!claimants.empty() || home == LeftoverHome::Xdg) return std::nullopt;
    if (home == LeftoverHome::Flatpak && !isFlatpakId(name)) return std::nullopt;
    return LeftoverVerdict{
        name, LeftoverGrade::Likely, false, name + " is not installed any more", {}, {}};
}

std::optional<LeftoverVerdict> LeftoverRules::ofName(const std::string& name) const {
    const std::string small = loweredName(name);
    if (isShared(small)) return std::nullopt;
    const auto named = m_names.find(small);
    if (named == m_names.end()) {
        if (!m_former.contains(name) || isClaimedBesides(small, m_claimants.size()))
            return std::nullopt;
        return LeftoverVerdict{
            name,
            LeftoverGrade::Likely,
            false,
            fmt::format("it is named as the package {}, which is not installed any more", name),
            {},
            {}};
    }
    const std::size_t owner = *named->second.begin();
    if (isClaimedBesides(small, owner)) return std::nullopt;
    const Claimant& claimant = m_claimants[owner];
    return verdictFor(
        claimant, LeftoverGrade::Likely,
        fmt::format("it is named as the {}{}",
                    small == loweredName(claimant.package) ? "package " : "program of ",
                    claimant.of));
}

std::optional<LeftoverVerdict> LeftoverRules::verdict(LeftoverHome home,
                                                      std::string_view name) const {
    const std::string text(name);
    if (isUnread(home)) return std::nullopt;
    if (home != LeftoverHome::Xdg) return ofId(home, text);
    if (!m_ids.contains(text)) return ofName(text);
    const std::string small = loweredName(text);
    if (isShared(small) || isClaimedBesides(small, m_ids.find(text)->second)) return std::nullopt;
    auto out = ofId(home, text);
    // A name without points, such as a desktop entry's "vim", is a program's rather than an
    // identifier.
    if (out && std::count(text.begin(), text.end(), '.') < 2) out->grade = LeftoverGrade::Likely;
    return out;
}

}  // namespace orrinvale
