// From entries to packages.
#include "platform/linux/DebApplications.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include "platform/linux/DesktopEntries.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// How well an entry speaks for its package: the package's own one, and the one called as the
// program or the package, before what others wrote to start the same program.
int rankOf(const StartingEntry& entry, bool isOfPackage, std::string_view package) {
    const std::string_view last = std::string_view(entry.id).substr(entry.id.rfind('.') + 1);
    const bool isNamed = equalIgnoringCase(last, lastPathComponent(entry.program)) ||
                         equalIgnoringCase(last, package);
    return (isOfPackage ? 2 : 0) + (isNamed ? 1 : 0);
}

// The entry's own package is asked last: it speaks where the program itself is nobody's.
struct Owner {
    const DpkgPackage* package = nullptr;
    bool hasEntry = false;
    bool isBrought = false;  // the entry came with some package
};

// One for each entry, and the owner of our own program behind them: the lists are read once.
std::vector<Owner> ownersOf(const std::vector<StartingEntry>& entries,
                            const std::string& ownProgram, const DpkgDatabase& database) {
    std::vector<std::string> asked;
    for (const StartingEntry& each : entries)
        for (const std::string* const path : {&each.program, &each.file, &each.path})
            asked.push_back(*path);
    asked.push_back(ownProgram);
    const auto owners = database.ownersOf(asked);
    std::vector<Owner> out(entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const DpkgPackage* const program = owners[3 * i];
        const DpkgPackage* const file = owners[3 * i + 1];
        const DpkgPackage* const entry = owners[3 * i + 2];
        const bool isFound = !entries[i].program.empty();
        // A link of a package to a program of another's: the program is what it is.
        out[i].package = file != nullptr      ? file
                         : program != nullptr ? program
                         : isFound            ? nullptr
                                              : entry;
        out[i].hasEntry = out[i].package != nullptr && out[i].package == entry;
        out[i].isBrought = entry != nullptr;
    }
    out.push_back({owners.back(), false, false});
    return out;
}

void addNames(const DpkgDatabase& database, ApplicationInventory& out) {
    std::set<std::string_view> there;
    for (const DpkgPackage& each : database.packages())
        if (each.isThere()) {
            out.packages.emplace_back(each.name);
            there.insert(each.name);
        }
    for (const DpkgPackage& each : database.packages())
        if (each.state == DpkgPackage::State::Removed && !there.contains(each.name))
            out.formerNames.emplace_back(each.name);
}

struct Found {
    ApplicationRecord record;
    std::vector<std::string> names;  // of the entries that the package itself has brought
    int rank = -1;
    bool hasEntry = false;
    bool isBrought = false;
};

void add(Found& found, StartingEntry& entry, const Owner& owner) {
    entry.isClaimed = true;
    found.hasEntry = found.hasEntry || owner.hasEntry;
    found.isBrought = found.isBrought || owner.isBrought;
    ApplicationRecord& record = found.record;
    record.entries.push_back(entry.path);
    if (owner.hasEntry) found.names.push_back(entry.entry.name);
    const std::string& program = entry.file.empty() ? entry.program : entry.file;
    if (!program.empty() &&
        std::find(record.programs.begin(), record.programs.end(), program) == record.programs.end())
        record.programs.push_back(program);
    const int rank = rankOf(entry, owner.hasEntry, owner.package->name);
    if (rank <= found.rank) return;
    found.rank = rank;
    record.id = entry.id;
    record.name = entry.entry.name.empty() ? std::string(owner.package->name) : entry.entry.name;
    record.icon = entry.entry.icon;
    record.path = program.empty() ? entry.path : program;
}

bool isSystem(const DpkgDatabase& database, const DpkgPackage& package) {
    if (package.isNeeded) return true;
    const auto along = database.takenAlongBy(package);
    return std::any_of(along.begin(), along.end(),
                       [](const DpkgPackage* each) { return each->isNeeded; });
}

// "vim", or "wine32:i386" of another architecture than the machine's.
std::string keyOf(const DpkgDatabase& database, const DpkgPackage& package) {
    const std::string_view own = database.ownArchitecture();
    if (own.empty() || package.architecture == own || package.architecture == "all")
        return std::string(package.name);
    return std::string(package.name) + ':' + std::string(package.architecture);
}

}  // namespace

void DebApplications::list(std::vector<StartingEntry>& entries, ApplicationInventory& out) const {
    const DpkgDatabase database(m_places.dpkg);
    if (!database.obstacle().empty()) out.unread[type()] = database.obstacle();
    if (database.packages().empty()) return;
    addNames(database, out);
    const std::vector<Owner> owners = ownersOf(entries, m_places.ownProgram, database);
    std::vector<const DpkgPackage*> order;
    std::map<const DpkgPackage*, Found> found;
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const DpkgPackage* const package = owners[i].package;
        if (package == nullptr || entries[i].isClaimed) continue;
        if (!found.contains(package)) order.push_back(package);
        add(found[package], entries[i], owners[i]);
    }
    for (const DpkgPackage* const package : order) {
        // A person's entry that opens a page of the bank starts the program that opens all pages.
        // Another package's, as that of an editor whose entries lie in a package of their own,
        // makes it an application, but under no name that may be a stranger's.
        if (!found[package].isBrought) continue;
        ApplicationRecord& record = found[package].record;
        if (!found[package].hasEntry) record.id = record.name = package->name;
        takeOthers(record, found[package].names);
        record.type = ApplicationType::Deb;
        record.package = keyOf(database, *package);
        record.version = package->version;
        record.installed = database.installedAt(*package);
        record.isSystem = isSystem(database, *package);
        record.isOurs = package == owners.back().package || package->name == "orrinvale";
        out.records.push_back(std::move(record));
    }
}

std::vector<std::string> DebApplications::configurationOf(const DpkgDatabase& database,
                                                          const ApplicationRecord& record) {
    std::vector<std::string> out;
    if (const DpkgPackage* const package = database.installed(record.package))
        for (std::string& each : database.conffilesOf(*package))
            if (each.starts_with("/etc/")) out.push_back(std::move(each));
    return out;
}

ApplicationDetails DebApplications::details(const ApplicationRecord& record) const {
    std::shared_ptr<const void> reading;
    return detailsOfNext(record, reading);
}

ApplicationDetails DebApplications::detailsOfNext(const ApplicationRecord& record,
                                                  std::shared_ptr<const void>& reading) const {
    ApplicationDetails out;
    if (!reading) reading = std::make_shared<const DpkgDatabase>(m_places.dpkg);
    const auto& database = *static_cast<const DpkgDatabase*>(reading.get());
    if (const DpkgPackage* const package = database.installed(record.package))
        out.bytes = package->installedSize;
    out.configuration = configurationOf(database, record);
    for (const std::string& each : record.programs)
        out.lastUse = std::max(out.lastUse, lastReadAt(each));
    return out;
}

}  // namespace orrinvale
