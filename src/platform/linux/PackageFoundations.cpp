// By names that are known, by what a package says that it is, and by what this machine starts at a
// login.
#include "platform/linux/PackageFoundations.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/DesktopEntries.h"
#include "platform/linux/SystemText.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// What the person would sit before without the package. A name that ends in a star stands for all
// that begin with it.
struct Foundation {
    std::string_view name;
    std::string_view why;
};
constexpr std::string_view session = "the desktop runs on it";
constexpr std::string_view login = "people log in by it";
constexpr std::string_view network = "the network is set up by it";
constexpr std::string_view rights = "rights are asked for by it";
constexpr std::array foundations{
    Foundation{"packagekit", "packages are removed by it"},
    Foundation{"polkitd*", rights},
    Foundation{"policykit-1", rights},
    Foundation{"pkexec", rights},
    Foundation{"sudo", rights},
    Foundation{"orrinvale", "it is the program that runs"},
    Foundation{"network-manager", network},
    Foundation{"connman", network},
    Foundation{"wpasupplicant", network},
    Foundation{"iwd", network},
    Foundation{"ifupdown", network},
    Foundation{"netplan.io", network},
    Foundation{"dhcpcd*", network},
    Foundation{"isc-dhcp-client", network},
    Foundation{"gdm3", login},
    Foundation{"sddm", login},
    Foundation{"lightdm", login},
    Foundation{"xdm", login},
    Foundation{"lxdm", login},
    Foundation{"slim", login},
    Foundation{"greetd", login},
    Foundation{"dbus", session},
    Foundation{"dbus-user-session", session},
    Foundation{"systemd", session},
    Foundation{"libpam-systemd", session},
    Foundation{"xserver-xorg*", session},
    Foundation{"xwayland", session},
    Foundation{"gnome-shell", session},
    Foundation{"gnome-session*", session},
    Foundation{"plasma-workspace", session},
    Foundation{"plasma-desktop", session},
    Foundation{"kwin-*", session},
    Foundation{"xfce4-session", session},
    Foundation{"xfwm4", session},
    Foundation{"cinnamon", session},
    Foundation{"cinnamon-session", session},
    Foundation{"mate-session-manager", session},
    Foundation{"lxqt-session", session},
    Foundation{"lxsession", session},
    Foundation{"sway", session},
};

std::string_view reasonByName(std::string_view name) {
    const auto* const found =
        std::find_if(foundations.begin(), foundations.end(), [&](const Foundation& each) {
            return each.name.ends_with('*')
                       ? name.starts_with(each.name.substr(0, each.name.size() - 1))
                       : name == each.name;
        });
    return found == foundations.end() ? std::string_view() : found->why;
}

// The files of an entry of a desktop: itself, and each program that its lines name.
void addDesktop(std::vector<std::string>& files, const std::string& path,
                const ApplicationPlaces& places) {
    files.push_back(path);
    const auto text = readRegularFile(path, kDesktopEntryLimit);
    const auto entry = text ? DesktopEntry::parse(*text, {}) : std::nullopt;
    if (!entry) return;
    std::vector<std::string> words = execWords(entry->exec, places.home);
    words.push_back(entry->tryExec);
    for (const std::string& word : words)
        if (std::string program = programNamed(word, places.programFolders); !program.empty()) {
            files.push_back(withoutLinks(program));
            files.push_back(std::move(program));
        }
}

std::vector<std::string> desktopFiles(const ApplicationPlaces& places) {
    std::vector<std::string> files;
    for (const std::string& folder : places.sessionFolders)
        for (const std::string& name : systemNamesIn(folder))
            addDesktop(files, joinPath(folder, name), places);
    return files;
}

std::vector<std::string> loginFiles(const ApplicationPlaces& places) {
    constexpr std::size_t limit = 4096;
    std::vector<std::string> files{withoutLinks(places.displayManagerUnit)};
    if (auto text = readRegularFile(places.displayManagerFile, limit)) {
        text->resize(std::min(text->find('\n'), text->size()));
        files.push_back(withoutLinks(*text));
        files.push_back(std::move(*text));
    }
    return files;
}

}  // namespace

PackageFoundations::PackageFoundations(const DpkgDatabase& database,
                                       const ApplicationPlaces& places)
    : m_database(database), m_running(RunningPrograms::now(places)) {
    std::vector<std::string> files;
    std::vector<std::string_view> reasons;
    const auto add = [&](const auto& some, std::string_view why) {
        files.insert(files.end(), some.begin(), some.end());
        reasons.resize(files.size(), why);
    };
    add(loginFiles(places), login);
    add(desktopFiles(places), session);
    add(m_running.session, session);
    const auto owners = database.ownersOf(files);
    for (std::size_t i = 0; i < owners.size(); ++i)
        if (owners[i] != nullptr) m_owners.emplace(owners[i], reasons[i]);
}

std::string_view PackageFoundations::reasonFor(std::string_view name) const {
    if (const auto why = reasonByName(name.substr(0, name.find(':'))); !why.empty()) return why;
    const DpkgPackage* const package = m_database.installed(name);
    if (package == nullptr) return {};
    if (const auto found = m_owners.find(package); found != m_owners.end()) return found->second;
    if (const auto why = reasonByWhatItProvides(*package); !why.empty()) return why;
    return package->isNeeded ? std::string_view("the system needs it") : std::string_view();
}

// A display manager of another name is one as well. Of window managers people have several.
std::string_view PackageFoundations::reasonByWhatItProvides(const DpkgPackage& package) const {
    const auto runs = [&] {
        const auto files = m_database.filesOf(package);
        return std::any_of(files.begin(), files.end(), [&](const std::string& file) {
            return m_running.files.contains(file) || m_running.files.contains("/usr" + file);
        });
    };
    for (const auto& provided : relationsIn(package.provides)) {
        if (provided.front() == "x-display-manager") return login;
        if (provided.front() == "x-session-manager") return session;
        if (provided.front() == "polkit-1-auth-agent") return rights;
        if (provided.front() == "x-window-manager" && runs()) return session;
    }
    return {};
}

}  // namespace orrinvale
