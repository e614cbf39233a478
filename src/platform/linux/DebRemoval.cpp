// What a removal of packages would do, and the removal. PackageService.h asks; dpkg's files judge.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <set>
#include <utility>

#include "platform/linux/DebApplications.h"
#include "platform/linux/PackageService.h"

namespace orrinvale {
namespace {

using End = PackageCourse::End;
using State = ApplicationRemoval::State;

constexpr std::chrono::milliseconds patience(10'000);

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

std::string_view foundationBy(std::string_view name) {
    const auto* const found =
        std::find_if(foundations.begin(), foundations.end(), [&](const Foundation& each) {
            return each.name.ends_with('*')
                       ? name.starts_with(each.name.substr(0, each.name.size() - 1))
                       : name == each.name;
        });
    return found == foundations.end() ? std::string_view() : found->why;
}

// By its own name, or what it says that it is; a display manager of another name is one as well.
std::string_view foundationOf(const DpkgDatabase& database, std::string_view name) {
    if (const auto why = foundationBy(name); !why.empty()) return why;
    const DpkgPackage* const package = database.installed(name);
    if (package == nullptr) return {};
    for (const auto& provided : relationsIn(package->provides)) {
        if (provided.front() == "x-display-manager") return login;
        if (provided.front() == "x-session-manager" || provided.front() == "polkit-1-auth-agent")
            return provided.front() == "x-session-manager" ? session : rights;
    }
    return package->isNeeded ? std::string_view("the system needs it") : std::string_view();
}

std::string wordsOf(const PackageCourse& course) {
    switch (course.end) {
        case End::Absent: return "The service that removes packages, PackageKit, is not there";
        case End::Silent: return "The service that removes packages does not answer";
        case End::Busy: return "Another program installs or removes packages at the moment";
        case End::Dismissed: return "The password was not given";
        case End::Refused: return "The system does not let this person remove packages";
        case End::Stopped: return "stopped";
        case End::Success:
        case End::Failed: break;
    }
    if (course.error == PackageCourse::SystemPackage) return "The system needs it";
    if (course.error == PackageCourse::Dependencies) return "Other packages need it";
    return course.words.empty() ? "The service that removes packages gave no reason"
                                : "The service that removes packages says: " +
                                      course.words.substr(0, course.words.find('\n'));
}

bool isOf(const ServicePackage& package, const ApplicationRecord& record) {
    const std::size_t colon = record.package.find(':');
    return package.name() == std::string_view(record.package).substr(0, colon) &&
           (colon == std::string::npos ||
            package.architecture() == record.package.substr(colon + 1));
}

std::vector<std::string> sortedIds(const std::vector<ServicePackage>& packages) {
    std::vector<std::string> ids;
    for (const ServicePackage& each : packages) ids.push_back(each.id);
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

// The installed packages of the records, or why there are not all.
tl::expected<std::vector<std::string>, std::string> idsOf(
    const std::vector<ApplicationRecord>& records, const std::atomic<bool>& stop) {
    std::vector<std::string> names;
    for (const ApplicationRecord& each : records)
        names.push_back(each.package.substr(0, each.package.find(':')));
    const PackageCourse course = PackageService::resolve(names, patience, stop);
    if (!course.worked()) return tl::unexpected(wordsOf(course));
    std::vector<std::string> ids;
    for (const ApplicationRecord& record : records) {
        const auto found =
            std::find_if(course.packages.begin(), course.packages.end(),
                         [&](const ServicePackage& each) { return isOf(each, record); });
        if (found == course.packages.end())
            return tl::unexpected(fmt::format("{} is not installed any more", record.package));
        ids.push_back(found->id);
    }
    return ids;
}

// All that would go, the records' own among them; nothing but that counts as known.
tl::expected<std::vector<ServicePackage>, std::string> simulation(
    const std::vector<std::string>& ids, const std::atomic<bool>& stop) {
    PackageCourse course = PackageService::simulateRemoval(ids, patience, stop);
    if (!course.worked()) return tl::unexpected(wordsOf(course));
    std::erase_if(course.packages, [](const ServicePackage& each) {
        return each.info != ServicePackage::Removing && each.info != ServicePackage::Obsoleting;
    });
    for (const std::string& id : ids)
        if (std::none_of(course.packages.begin(), course.packages.end(),
                         [&](const ServicePackage& each) { return each.id == id; }))
            course.packages.push_back({ServicePackage::Removing, id});
    return std::move(course.packages);
}

// Which of the records takes the package along.
std::size_t takerOf(const DpkgDatabase& database, const std::vector<ApplicationRecord>& records,
                    std::string_view name) {
    for (std::size_t i = 0; i < records.size(); ++i) {
        const DpkgPackage* const own = database.installed(records[i].package);
        if (own == nullptr) continue;
        const auto along = database.takenAlongBy(*own);
        if (std::any_of(along.begin(), along.end(),
                        [&](const DpkgPackage* each) { return each->name == name; }))
            return i;
    }
    return 0;
}

}  // namespace

RemovalForecast DebApplications::forecast(const std::vector<ApplicationRecord>& records,
                                          const std::atomic<bool>& stop) const {
    RemovalForecast out;
    out.asksForRight = true;
    const DpkgDatabase database(m_places.dpkg);
    for (const ApplicationRecord& each : records)
        if (each.isOurs) {
            out.refusal = fmt::format("{} is the program that runs", each.name);
            return out;
        }
    const auto ids = idsOf(records, stop);
    const auto going =
        ids ? simulation(*ids, stop)
            : tl::expected<std::vector<ServicePackage>, std::string>(tl::unexpected(ids.error()));
    if (!going) {
        out.refusal = going.error();
        return out;
    }
    out.promised = sortedIds(*going);
    for (const ServicePackage& each : *going) {
        const std::string name(each.name());
        const std::string_view why = foundationOf(database, name);
        const bool isAsked = std::find(ids->begin(), ids->end(), each.id) != ids->end();
        if (!why.empty()) {
            out.refusal = isAsked ? fmt::format("{} stays: {}", name, why)
                                  : fmt::format("{} would go along: {}", name, why);
            return out;
        }
        if (!isAsked)
            out.along.push_back(
                {takerOf(database, records, name), name, std::string(each.version())});
    }
    for (const ApplicationRecord& each : records) {
        const std::size_t files = details(each).configuration.size();
        if (files != 0)
            out.stays.push_back(fmt::format("Settings of {} for everybody stay: {} {} in /etc",
                                            each.name, files, files == 1 ? "file" : "files"));
    }
    return out;
}

std::vector<ApplicationRemoval> DebApplications::remove(
    const std::vector<ApplicationRecord>& records, const RemovalForecast& forecast,
    const std::atomic<bool>& stop) const {
    const auto all = [&](State state, const std::string& reason) {
        return std::vector<ApplicationRemoval>(records.size(), {state, reason});
    };
    if (!forecast.refusal.empty()) return all(State::Refused, forecast.refusal);
    const auto ids = idsOf(records, stop);
    if (!ids) return all(State::Failed, ids.error());
    // What the person saw in the list is what goes.
    const auto going = simulation(*ids, stop);
    if (!going) return all(State::Failed, going.error());
    if (sortedIds(*going) != forecast.promised)
        return all(State::Refused, "Other packages would go by now than those that were listed");
    const PackageCourse course = PackageService::remove(*ids);
    const State state = course.end == End::Dismissed ? State::Dismissed
                        : course.end == End::Refused ? State::Refused
                                                     : State::Failed;
    std::vector<ApplicationRemoval> out = all(state, wordsOf(course));
    const DpkgDatabase database(m_places.dpkg);
    for (std::size_t i = 0; i < records.size(); ++i)
        if (database.installed(records[i].package) == nullptr) out[i] = {State::Gone, {}};
    return out;
}

}  // namespace orrinvale
