// What a removal of packages would do, and the removal. PackageService.h asks; dpkg's files judge.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>
#include <numeric>
#include <set>
#include <utility>

#include "platform/linux/DebApplications.h"
#include "platform/linux/PackageFoundations.h"
#include "platform/linux/PackageService.h"

namespace orrinvale {
namespace {

using End = PackageCourse::End;
using State = ApplicationRemoval::State;

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

std::vector<std::string> sortedIds(const std::vector<ServicePackage>& packages) {
    std::vector<std::string> ids;
    ids.reserve(packages.size());
    for (const ServicePackage& each : packages) ids.push_back(each.id);
    std::sort(ids.begin(), ids.end());
    ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
    return ids;
}

// The installed packages of the records, or why there are not all.
tl::expected<std::vector<std::string>, std::string> idsOf(
    const std::vector<ApplicationRecord>& records, std::string_view own, const Waiting& waiting) {
    std::vector<std::string> names;
    names.reserve(records.size());
    for (const ApplicationRecord& each : records)
        names.push_back(each.package.substr(0, each.package.find(':')));
    const PackageCourse course = PackageService::resolve(names, waiting);
    if (!course.worked()) return tl::unexpected(wordsOf(course));
    std::vector<std::string> ids;
    for (const ApplicationRecord& record : records) {
        auto id = idOf(course.packages, record.package, own);
        if (!id) return tl::unexpected(std::move(id.error()));
        ids.push_back(std::move(*id));
    }
    return ids;
}

// All that would go, the records' own among them. What the service would do to a package besides,
// or what nobody here knows, is no removal that anybody was told of.
tl::expected<std::vector<ServicePackage>, std::string> simulation(
    const std::vector<std::string>& ids, const Waiting& waiting) {
    PackageCourse course = PackageService::simulateRemoval(ids, waiting);
    if (!course.worked()) return tl::unexpected(wordsOf(course));
    for (const ServicePackage& each : course.packages)
        if (!each.isLeaving() || each.name().empty())
            return tl::unexpected(fmt::format("More than a removal would be done to {}",
                                              each.name().empty() ? "a package" : each.name()));
    for (const std::string& id : ids)
        if (std::none_of(course.packages.begin(), course.packages.end(),
                         [&](const ServicePackage& each) { return each.id == id; }))
            course.packages.push_back({ServicePackage::Removing, id});
    return std::move(course.packages);
}

// By dpkg's own files, whatever the service said. What they do not tell is not gone.
void judge(const DpkgDatabase& after, const std::vector<ApplicationRecord>& records,
           const std::vector<std::size_t>& places, std::vector<ApplicationRemoval>& out) {
    for (const std::size_t i : places) {
        const auto presence = after.presenceOf(records[i].package);
        if (presence == DpkgDatabase::Presence::Gone) out[i] = {State::Gone, {}, {}};
        if (presence == DpkgDatabase::Presence::Unknown)
            out[i] = {State::Failed, "Nobody can tell whether it is gone: " + after.obstacle(), {}};
    }
}

std::vector<std::string> wentBesides(const DpkgDatabase& before, const DpkgDatabase& after,
                                     const std::vector<std::string>& promised) {
    std::vector<std::string> out;
    for (const DpkgPackage& each : before.packages()) {
        const std::string name(each.name);
        const std::string key = name + ':' + std::string(each.architecture);
        const bool isPromised = std::ranges::any_of(promised, [&](const std::string& id) {
            const ServicePackage package{0, id};
            return package.name() == each.name && package.architecture() == each.architecture;
        });
        if (each.isThere() && !isPromised && after.presenceOf(key) == DpkgDatabase::Presence::Gone)
            out.push_back(name);
    }
    return out;
}

// By name, the first of the records that takes a package along.
std::map<std::string_view, std::size_t> takersIn(const DpkgDatabase& database,
                                                 const std::vector<ApplicationRecord>& records,
                                                 const std::atomic<bool>& stop) {
    std::map<std::string_view, std::size_t> out;
    for (std::size_t i = 0; i < records.size() && !stop; ++i) {
        const DpkgPackage* const own = database.installed(records[i].package);
        if (own == nullptr) continue;
        for (const DpkgPackage* each : database.takenAlongBy(*own)) out.emplace(each->name, i);
    }
    return out;
}

// Those whose packages are not gone, each with its place; the others are told.
std::vector<std::size_t> stillThere(const DpkgDatabase& database,
                                    const std::vector<ApplicationRecord>& records,
                                    std::vector<ApplicationRemoval>& out) {
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (database.presenceOf(records[i].package) != DpkgDatabase::Presence::Gone)
            places.push_back(i);
        else
            out[i] = {
                State::Failed, fmt::format("{} is not installed any more", records[i].package), {}};
    }
    return places;
}

// What the person saw in the list is what goes: all of it, and less only where something of it went
// by itself meanwhile.
bool keepsTo(const std::vector<std::string>& going, const RemovalForecast& forecast, bool isLess) {
    return isLess ? std::ranges::includes(forecast.promised, going) : going == forecast.promised;
}

}  // namespace

RemovalForecast DebApplications::forecast(const std::vector<ApplicationRecord>& records,
                                          const Waiting& waiting) const {
    RemovalForecast out;
    out.asksForRight = true;
    const DpkgDatabase database(m_places.dpkg);
    out.refusal = database.obstacle();
    if (!out.refusal.empty()) return out;
    for (const ApplicationRecord& each : records)
        if (each.isOurs) {
            out.refusal = fmt::format("{} is the program that runs", each.name);
            return out;
        }
    const auto ids = idsOf(records, database.ownArchitecture(), waiting);
    const auto going =
        ids ? simulation(*ids, waiting)
            : tl::expected<std::vector<ServicePackage>, std::string>(tl::unexpected(ids.error()));
    if (!going) {
        out.refusal = going.error();
        return out;
    }
    out.promised = sortedIds(*going);
    const PackageFoundations foundations(database, m_places);
    // For what no record of dpkg's explains the first one answers.
    auto takers = takersIn(database, records, waiting.stop);
    if (waiting.stop) {
        out.refusal = "stopped";
        return out;
    }
    for (const ServicePackage& each : *going) {
        const std::string name(each.name());
        const std::string_view why =
            foundations.reasonFor(name + ':' + std::string(each.architecture()));
        const bool isAsked = std::find(ids->begin(), ids->end(), each.id) != ids->end();
        if (!why.empty()) {
            out.refusal = isAsked ? fmt::format("{} stays: {}", name, why)
                                  : fmt::format("{} would go along: {}", name, why);
            return out;
        }
        if (!isAsked) out.along.push_back({takers[each.name()], name, std::string(each.version())});
    }
    for (std::size_t i = 0; i < records.size(); ++i) {
        const ApplicationRecord& each = records[i];
        for (const std::string& name : each.others) out.along.push_back({i, name, {}});
        if (auto files = configurationOf(database, each); !files.empty())
            out.kept[i] = std::move(files);
    }
    return out;
}

std::vector<ApplicationRemoval> DebApplications::remove(
    const std::vector<ApplicationRecord>& records, const RemovalForecast& forecast,
    const std::atomic<bool>& stop) const {
    std::vector<ApplicationRemoval> out(records.size());
    std::vector<std::size_t> places(records.size());
    std::iota(places.begin(), places.end(), std::size_t{0});
    const auto all = [&](State state, const std::string& reason) {
        for (const std::size_t place : places) out[place] = {state, reason, {}};
        return out;
    };
    if (records.empty() || !forecast.refusal.empty()) return all(State::Refused, forecast.refusal);
    const Waiting waiting(stop);
    const DpkgDatabase before(m_places.dpkg);
    places = stillThere(before, records, out);
    if (places.empty()) return out;
    std::vector<ApplicationRecord> there;
    there.reserve(places.size());
    for (const std::size_t place : places) there.push_back(records[place]);
    const auto ids = idsOf(there, before.ownArchitecture(), waiting);
    if (!ids) return all(State::Failed, ids.error());
    const auto simulated = simulation(*ids, waiting);
    if (!simulated) return all(State::Failed, simulated.error());
    const std::vector<std::string> going = sortedIds(*simulated);
    if (!keepsTo(going, forecast, there.size() < records.size()))
        return all(State::Refused, "Other packages would go by now than those that were listed");
    // Every one of them by its name and without leave to take more along. A service that does not
    // heed that (that of Debian 12 takes what depends on them) is found out afterwards.
    const PackageCourse course = PackageService::remove(going, stop);
    const State state = course.end == End::Dismissed ? State::Dismissed
                        : course.end == End::Refused ? State::Refused
                                                     : State::Failed;
    all(state, wordsOf(course));
    const DpkgDatabase after(m_places.dpkg);
    judge(after, records, places, out);
    out[places.front()].note = noteOn(course, wentBesides(before, after, forecast.promised));
    return out;
}

}  // namespace orrinvale
