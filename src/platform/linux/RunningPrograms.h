// RunningPrograms: which programs run at this moment, as the kernel's accounts of processes tell.
#pragma once

#include <functional>
#include <set>
#include <string>

#include "platform/applications.h"
#include "platform/linux/ApplicationPlaces.h"

namespace orrinvale {

/// A snapshot of one moment. This process itself does not count.
struct RunningPrograms {
    std::set<std::string, std::less<>> files;      ///< programs, and scripts of interpreters
    std::set<std::string, std::less<>> appImages;  ///< that mounted themselves
    std::set<std::string, std::less<>> flatpaks;   ///< ids
    std::set<std::string, std::less<>>
        closed;  ///< names of processes that do not show their program
    std::set<std::string, std::less<>> session;  ///< what this person's session runs on: what has
                                                 ///< started this process, the desktop's own
                                                 ///< services, and what shows its windows
    bool isPartial = false;                      ///< there are processes that nothing is told of

    [[nodiscard]] static RunningPrograms now(const ApplicationPlaces& places);

    /// `brings` tells whether a file belongs to the application.
    [[nodiscard]] RunState stateOf(const ApplicationRecord& record,
                                   const std::function<bool(const std::string&)>& brings) const;
};

}  // namespace orrinvale
