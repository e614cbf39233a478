// LinuxApplications: the kinds of applications of a Linux machine. Read platform/applications.h
// first.
#pragma once

#include <memory>
#include <vector>

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"

namespace orrinvale {

/// Reads everything anew with each call.
class LinuxApplications final : public Applications {
public:
    explicit LinuxApplications(ApplicationPlaces places = ApplicationPlaces::ofThisMachine());

    [[nodiscard]] ApplicationInventory look(const KindNews& news) const override;
    [[nodiscard]] std::vector<std::string> watched() const override;
    [[nodiscard]] const ApplicationKind* kind(ApplicationType type) const override;
    [[nodiscard]] std::vector<RunState> running(
        const std::vector<const ApplicationRecord*>& records) const override;

private:
    const ApplicationPlaces m_places;
    std::vector<std::unique_ptr<ApplicationKind>> m_kinds;  // in the order of the types
};

}  // namespace orrinvale
