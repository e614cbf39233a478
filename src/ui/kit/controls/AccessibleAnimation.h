// AccessibleAnimation: what a screen reader is told of the progress strip.
#pragma once

namespace orrinvale {

/// Makes strips known to screen readers as progress bars with a value from 0 to 100. Takes effect
/// once a process.
void installAccessibleAnimation();

}  // namespace orrinvale
