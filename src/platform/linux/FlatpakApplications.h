// FlatpakApplications: applications of flatpak, listed from the folders of its installations.
#pragma once

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"

namespace orrinvale {

/// The places outlive it. What lies in an installation that the administrator has added is listed,
/// and stays: the library would look for it in the usual one. Of an id that several installations
/// have each one is an application.
class FlatpakApplications final : public ApplicationKind {
public:
    explicit FlatpakApplications(const ApplicationPlaces& places) : m_places(places) {}

    [[nodiscard]] ApplicationType type() const override { return ApplicationType::Flatpak; }
    void list(std::vector<StartingEntry>& entries, ApplicationInventory& inventory) const override;
    /// Files that the repository shares with something else count nothing; it is "up to", since two
    /// equal files of one application are one there.
    [[nodiscard]] ApplicationDetails details(const ApplicationRecord& record) const override;
    [[nodiscard]] RemovalForecast forecast(const std::vector<ApplicationRecord>& records,
                                           const Waiting& waiting) const override;
    /// Gone is what its installation, which is still there, does not have any more.
    [[nodiscard]] std::vector<ApplicationRemoval> remove(
        const std::vector<ApplicationRecord>& records, const RemovalForecast& forecast,
        const std::atomic<bool>& stop) const override;

private:
    [[nodiscard]] ApplicationRecord recordOf(const std::string& installation, const std::string& id,
                                             const std::string& branch) const;

    const ApplicationPlaces& m_places;
};

}  // namespace orrinvale
