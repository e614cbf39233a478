// Asks the kinds one after another; each claims the entries that start what it has.
#include "platform/linux/LinuxApplications.h"

#include <algorithm>
#include <set>
#include <utility>

#include "platform/linux/AppImageApplications.h"
#include "platform/linux/DebApplications.h"
#include "platform/linux/DesktopEntries.h"
#include "platform/linux/FlatpakApplications.h"
#include "platform/linux/FolderApplications.h"
#include "platform/linux/RunningPrograms.h"
#include "platform/linux/SnapApplications.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

std::function<bool(const std::string&)> filesOf(const ApplicationRecord& record,
                                                const DpkgDatabase* packages) {
    if (record.type != ApplicationType::Deb)
        return [folder = record.path](const std::string& file) { return isWithin(file, folder); };
    const DpkgPackage* const package =
        packages == nullptr ? nullptr : packages->installed(record.package);
    std::set<std::string> files;
    if (package != nullptr)
        for (std::string& each : packages->filesOf(*package)) files.insert(std::move(each));
    return [files = std::move(files)](const std::string& file) {
        return files.contains(file) ||
               (file.starts_with("/usr/") && files.contains(file.substr(4)));
    };
}

}  // namespace

LinuxApplications::LinuxApplications(ApplicationPlaces places) : m_places(std::move(places)) {
    m_kinds.push_back(std::make_unique<FlatpakApplications>(m_places));
    m_kinds.push_back(std::make_unique<SnapApplications>(m_places));
    m_kinds.push_back(std::make_unique<DebApplications>(m_places));
    m_kinds.push_back(std::make_unique<AppImageApplications>(m_places));
    m_kinds.push_back(std::make_unique<FolderApplications>(m_places));
}

ApplicationInventory LinuxApplications::look(const KindNews& news) const {
    std::vector<StartingEntry> entries = startingEntries(m_places);
    ApplicationInventory out;
    for (const auto& kind : m_kinds) {
        kind->list(entries, out);
        if (news) news(out);
    }
    return out;
}

std::vector<std::string> LinuxApplications::watched() const {
    std::vector<std::string> out{joinPath(m_places.dpkg, "status"), "/var/lib/snapd/state.json",
                                 m_places.snapFolder};
    for (const std::string& each : m_places.flatpaks) out.push_back(joinPath(each, ".changed"));
    for (const std::string& each : m_places.dataFolders)
        out.push_back(joinPath(each, "applications"));
    for (const auto* const folders : {&m_places.appImageFolders, &m_places.folderHolders})
        out.insert(out.end(), folders->begin(), folders->end());
    return out;
}

const ApplicationKind* LinuxApplications::kind(ApplicationType type) const {
    const auto found = std::find_if(m_kinds.begin(), m_kinds.end(),
                                    [&](const auto& each) { return each->type() == type; });
    return found == m_kinds.end() ? nullptr : found->get();
}

std::vector<RunState> LinuxApplications::running(
    const std::vector<const ApplicationRecord*>& records) const {
    const RunningPrograms programs = RunningPrograms::now(m_places);
    std::unique_ptr<DpkgDatabase> packages;
    std::vector<RunState> out;
    for (const ApplicationRecord* const each : records) {
        if (each->type == ApplicationType::Deb && !packages)
            packages = std::make_unique<DpkgDatabase>(m_places.dpkg);
        out.push_back(programs.stateOf(*each, filesOf(*each, packages.get())));
    }
    return out;
}

}  // namespace orrinvale
