// The steps of a removal, one decision each.
#include "engine/uninstall/UninstallRights.h"

namespace orrinvale {

using enum UninstallStep;

UninstallStep firstUninstallStep(const UninstallRights& rights) {
    return rights.isSystemRow && rights.hasDoorItems && rights.mayAsk ? AskBefore : FirstAttempt;
}

// After a refused right the second attempt runs all the same: somebody may have made room for it
// meanwhile.
UninstallStep uninstallStepAfterAsking(UninstallStep asked, bool isGranted) {
    if (asked == AskBefore) return isGranted ? FirstAttempt : Failed;
    return SecondAttempt;
}

UninstallStep uninstallStepAfterAttempt(UninstallStep attempt, bool isEverythingGone,
                                        const UninstallRights& rights) {
    if (isEverythingGone) return Succeeded;
    if (attempt == SecondAttempt || !rights.hasDoorItems) return Failed;
    return rights.mayAsk ? AskAfter : SecondAttempt;
}

}  // namespace orrinvale
