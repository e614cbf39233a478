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
    [[nodiscard]] std::vector<ApplicationRecord> list(
        std::vector<StartingEntry>& entries) const override;
    [[nodiscard]] ApplicationDetails details(const ApplicationRecord& record) const override;
    [[nodiscard]] RemovalForecast forecast(const std::vector<ApplicationRecord>& records,
                                           const std::atomic<bool>& stop) const override;
    [[nodiscard]] std::vector<ApplicationRemoval> remove(
        const std::vector<ApplicationRecord>& records, const RemovalForecast& forecast,
        const std::atomic<bool>& stop) const override;

private:
    const ApplicationPlaces& m_places;
    const SnapService m_service;
};

}  // namespace orrinvale
