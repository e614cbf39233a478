// PackageFoundations: packages that nobody removes from under a running desktop.
#pragma once

#include <map>
#include <string_view>

#include "platform/linux/ApplicationPlaces.h"
#include "platform/linux/DpkgDatabase.h"
#include "platform/linux/RunningPrograms.h"

namespace orrinvale {

/// As things were when it was made; any thread may ask. The database outlives it.
class PackageFoundations final {
public:
    PackageFoundations(const DpkgDatabase& database, const ApplicationPlaces& places);

    /// Why a package stays, for people: what the system needs, what removes packages, asks for
    /// rights and sets up the network, what people log in by or to, and what this session runs on.
    /// Empty for all others. The name with or without its architecture.
    [[nodiscard]] std::string_view reasonFor(std::string_view name) const;

private:
    [[nodiscard]] std::string_view reasonByWhatItProvides(const DpkgPackage& package) const;

    const DpkgDatabase& m_database;
    const RunningPrograms m_running;
    std::map<const DpkgPackage*, std::string_view> m_owners;  // of what a session is made of
};

}  // namespace orrinvale
