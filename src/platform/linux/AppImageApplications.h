// AppImageApplications: programs that are one file, where people keep them.
#pragma once

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"

namespace orrinvale {

/// Those in the usual folders, one level deep, and those that desktop entries start. The path of
/// one is what goes: the file where it lies in one of the folders or is started as it is; of a file
/// elsewhere that only a link leads to, the link. The places outlive it.
class AppImageApplications final : public ApplicationKind {
public:
    explicit AppImageApplications(const ApplicationPlaces& places) : m_places(places) {}

    [[nodiscard]] ApplicationType type() const override { return ApplicationType::AppImage; }
    void list(std::vector<StartingEntry>& entries, ApplicationInventory& out) const override;
    [[nodiscard]] ApplicationDetails details(const ApplicationRecord& record) const override;
    /// To the trash, with the entries that start it and the links to it in the folders.
    [[nodiscard]] RemovalForecast forecast(const std::vector<ApplicationRecord>& records,
                                           const Waiting& waiting) const override;

private:
    [[nodiscard]] std::optional<ApplicationRecord> recordOf(const std::string& path) const;
    [[nodiscard]] std::vector<std::string> candidatesIn(
        const std::vector<StartingEntry>& entries) const;
    [[nodiscard]] std::string pathThatGoes(const std::string& found) const;
    [[nodiscard]] bool isPlace(const std::string& folder) const;

    const ApplicationPlaces& m_places;
};

}  // namespace orrinvale
