// UninstallRights: when the uninstall page asks for the administrator right, and when it tries a
// second time.
#pragma once

#include <cstdint>

namespace orrinvale {

/// What comes next. Each asking and each attempt is followed by the function of its name below.
enum class UninstallStep : std::uint8_t {
    AskBefore,      ///< for the right, before anything is removed
    FirstAttempt,   ///< all that is ticked
    AskAfter,       ///< for the right; a refusal shows the failure and changes nothing else
    SecondAttempt,  ///< what of the first attempt goes through the administrator's door, and stayed
    Succeeded,
    Failed
};

/// What decides. Only bundles go through the administrator's door: every other kind asks for its
/// own leave, and is never tried again after somebody said no.
struct UninstallRights {
    bool isSystemRow = false;   ///< the left row of system programs is chosen
    bool hasDoorItems = false;  ///< bundles are among what is ticked, or what stayed
    bool mayAsk = false;        ///< the padlock is shut, and nobody holds a right
};

[[nodiscard]] UninstallStep firstUninstallStep(const UninstallRights& rights);
[[nodiscard]] UninstallStep uninstallStepAfterAsking(UninstallStep asked, bool isGranted);
/// `isEverythingGone`: what this attempt was to remove, and all that was before it.
[[nodiscard]] UninstallStep uninstallStepAfterAttempt(UninstallStep attempt, bool isEverythingGone,
                                                      const UninstallRights& rights);

}  // namespace orrinvale
