// DebApplications: Debian packages that a desktop entry belongs to. DpkgDatabase.h reads dpkg's
// files.
#pragma once

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"
#include "platform/linux/DpkgDatabase.h"

namespace orrinvale {

/// The package of an application is the one that brought the program which the entry starts, since
/// entries often stand in a package beside it. One application a package, however many entries it
/// has. The places outlive it.
class DebApplications final : public ApplicationKind {
public:
    explicit DebApplications(const ApplicationPlaces& places) : m_places(places) {}

    [[nodiscard]] ApplicationType type() const override { return ApplicationType::Deb; }
    void list(std::vector<StartingEntry>& entries, ApplicationInventory& out) const override;
    /// The size is the one that the package says; within 5 % of what it takes, measured.
    [[nodiscard]] ApplicationDetails details(const ApplicationRecord& record) const override;
    [[nodiscard]] ApplicationDetails detailsOfNext(
        const ApplicationRecord& record, std::shared_ptr<const void>& reading) const override;
    /// One transaction for all. Refused is what people log in by, work on or ask for rights by,
    /// what the system needs, and a transaction that would do more than remove.
    [[nodiscard]] RemovalForecast forecast(const std::vector<ApplicationRecord>& records,
                                           const Waiting& waiting) const override;
    /// Gone is what dpkg's own files do not have any more. Stopped is a transaction that the
    /// service still lets go of; of another the note says that it went on.
    [[nodiscard]] std::vector<ApplicationRemoval> remove(
        const std::vector<ApplicationRecord>& records, const RemovalForecast& forecast,
        const std::atomic<bool>& stop) const override;

private:
    [[nodiscard]] static std::vector<std::string> configurationOf(const DpkgDatabase& database,
                                                                  const ApplicationRecord& record);

    const ApplicationPlaces& m_places;
};

}  // namespace orrinvale
