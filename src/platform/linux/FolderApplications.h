// FolderApplications: programs that were unpacked into a folder of their own.
#pragma once

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"

namespace orrinvale {

/// Folders directly in those that hold such ones, where a desktop entry starts a program in them
/// and no other kind has it. The places outlive it.
class FolderApplications final : public ApplicationKind {
public:
    explicit FolderApplications(const ApplicationPlaces& places) : m_places(places) {}

    [[nodiscard]] ApplicationType type() const override { return ApplicationType::Folder; }
    void list(std::vector<StartingEntry>& entries, ApplicationInventory& inventory) const override;
    /// The size is for the caller to measure.
    [[nodiscard]] ApplicationDetails details(const ApplicationRecord& record) const override;
    /// To the trash, with the entries that start it. What lies in it besides is named, or refuses.
    [[nodiscard]] RemovalForecast forecast(const std::vector<ApplicationRecord>& records,
                                           const Waiting& waiting) const override;

private:
    [[nodiscard]] std::string folderHolding(const std::string& program) const;

    const ApplicationPlaces& m_places;
};

}  // namespace orrinvale
