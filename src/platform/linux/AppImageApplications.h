// AppImageApplications: programs that are one file, where people keep them.
#pragma once

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"

namespace orrinvale {

/// Those in the usual folders, one level deep, and those that desktop entries start. The places
/// outlive it.
class AppImageApplications final : public ApplicationKind {
public:
    explicit AppImageApplications(const ApplicationPlaces& places) : m_places(places) {}

    [[nodiscard]] ApplicationType type() const override { return ApplicationType::AppImage; }
    [[nodiscard]] std::vector<ApplicationRecord> list(
        std::vector<StartingEntry>& entries) const override;
    [[nodiscard]] ApplicationDetails details(const ApplicationRecord& record) const override;
    /// To the trash, with the entries that start it.
    [[nodiscard]] RemovalForecast forecast(const std::vector<ApplicationRecord>& records,
                                           const std::atomic<bool>& stop) const override;

private:
    [[nodiscard]] std::optional<ApplicationRecord> recordOf(const std::string& path) const;

    const ApplicationPlaces& m_places;
};

}  // namespace orrinvale
