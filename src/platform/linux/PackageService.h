// PackageService: the system's service for packages (PackageKit) on the system bus. DebApplications
// decides what it is asked.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <vector>

#include "platform/applications.h"

namespace orrinvale {

/// One package as the service names it: "NAME;VERSION;ARCHITECTURE;ORIGIN".
struct ServicePackage {
    /// Of what the service numbers; the last two are what newer ones call the first two of a
    /// simulation.
    enum Info : std::uint32_t { Removing = 13, Obsoleting = 15, Remove = 28, Obsolete = 29 };
    std::uint32_t info = 0;
    std::string id;

    [[nodiscard]] bool isLeaving() const {
        return info == Removing || info == Obsoleting || info == Remove || info == Obsolete;
    }
    /// Empty where there are not so many.
    [[nodiscard]] std::string_view field(std::size_t index) const;
    [[nodiscard]] std::string_view name() const { return field(0); }
    [[nodiscard]] std::string_view version() const { return field(1); }
    [[nodiscard]] std::string_view architecture() const { return field(2); }
};

/// How one transaction went.
struct PackageCourse {
    enum class End : std::uint8_t {
        Success,
        Failed,     ///< `error` and `words` say why
        Dismissed,  ///< nobody gave a password
        Refused,    ///< whoever asked may not, or there is nobody to ask for a password
        Busy,       ///< something else works on the packages
        Silent,     ///< no answer within the time
        Absent,     ///< there is no such service, or it ended
        Stopped
    };
    /// Of the errors that the service numbers.
    enum Error : std::uint32_t {
        NotInstalled = 7,
        Dependencies = 13,
        SystemPackage = 20,
        CannotGetLock = 26,
        NotAuthorized = 48
    };
    End end = End::Silent;
    std::uint32_t error = 0;
    std::string words;  ///< the service's own, in its language
    std::vector<ServicePackage> packages;
    bool couldNotStop = false;  ///< it was asked to stop and went on

    [[nodiscard]] bool worked() const { return end == End::Success; }
};

/// What a person wants to know whether or not all is gone; `besides` are packages that went without
/// having been promised.
[[nodiscard]] std::string noteOn(const PackageCourse& course,
                                 const std::vector<std::string>& besides);

/// The id of the package that dpkg calls "NAME:ARCHITECTURE", or "NAME" where it is of the
/// machine's `own` architecture or of all; why there is not exactly one, for people.
[[nodiscard]] tl::expected<std::string, std::string> idOf(
    const std::vector<ServicePackage>& packages, std::string_view key, std::string_view own);

/// Each call is a connection and a transaction of its own and waits for its end; any thread.
class PackageService final {
public:
    /// The installed packages of these names.
    [[nodiscard]] static PackageCourse resolve(const std::vector<std::string>& names,
                                               const Waiting& waiting);

    /// What would go with these packages; what depends on them goes too, what they needed stays.
    /// Needs no right.
    [[nodiscard]] static PackageCourse simulateRemoval(const std::vector<std::string>& ids,
                                                       const Waiting& waiting);

    /// Removes them, and nothing that depends on them. The person may be asked for a password, for
    /// which it waits as long as that takes. A set flag asks the service to stop; one that can not
    /// any more is waited for to its end.
    [[nodiscard]] static PackageCourse remove(const std::vector<std::string>& ids,
                                              const std::atomic<bool>& stop);
};

}  // namespace orrinvale
