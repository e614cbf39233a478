// FlatpakApplications: applications of flatpak, listed from the folders of its installations.
#pragma once

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"

namespace orrinvale {

/// The places outlive it. Of an id that several installations have each one is an application.
class FlatpakApplications final : public ApplicationKind {
public:
    explicit FlatpakApplications(const ApplicationPlaces& places) : m_places(places) {}

    [[nodiscard]] ApplicationType type() const override { return ApplicationType::Flatpak; }
    [[nodiscard]] std::vector<ApplicationRecord> list(
        std::vector<StartingEntry>& entries) const override;
    /// Files that the repository shares with something else count nothing; it is "up to", since two
    /// equal files of one application are one there.
    [[nodiscard]] ApplicationDetails details(const ApplicationRecord& record) const override;
    [[nodiscard]] RemovalForecast forecast(const std::vector<ApplicationRecord>& records,
                                           const std::atomic<bool>& stop) const override;
    [[nodiscard]] std::vector<ApplicationRemoval> remove(
        const std::vector<ApplicationRecord>& records, const RemovalForecast& forecast,
        const std::atomic<bool>& stop) const override;

private:
    const ApplicationPlaces& m_places;
};

}  // namespace orrinvale
