// SnapApplications: applications of snap, as its service tells them.
#pragma once

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"
#include "platform/linux/SnapService.h"

namespace orrinvale {

/// What only serves others (bases, the system's own) is no application. The places outlive it.
class SnapApplications final : public ApplicationKind {
public:
    explicit SnapApplications(const ApplicationPlaces& places)
        : m_places(places), m_service(places.snapSocket) {}

    [[nodiscard]] ApplicationType type() const override { return ApplicationType::Snap; }
    void list(std::vector<StartingEntry>& entries, ApplicationInventory& inventory) const override;
    [[nodiscard]] ApplicationDetails details(const ApplicationRecord& record) const override;
    [[nodiscard]] ApplicationDetails detailsOfNext(
        const ApplicationRecord& record, std::shared_ptr<const void>& reading) const override;
    [[nodiscard]] RemovalForecast forecast(const std::vector<ApplicationRecord>& records,
                                           const Waiting& waiting) const override;
    /// Gone is what the service does not list any more. Stopped is a removal that the service takes
    /// back; of another the note says that it went on.
    [[nodiscard]] std::vector<ApplicationRemoval> remove(
        const std::vector<ApplicationRecord>& records, const RemovalForecast& forecast,
        const std::atomic<bool>& stop) const override;

private:
    [[nodiscard]] ApplicationRecord recordOf(const SnapFacts& facts) const;
    [[nodiscard]] ApplicationRemoval removed(const ApplicationRecord& record,
                                             const std::atomic<bool>& stop) const;
    [[nodiscard]] bool isHere() const;

    const ApplicationPlaces& m_places;
    const SnapService m_service;
};

}  // namespace orrinvale
