// AccessibleOutline: what screen readers hear of a TickOutline. AccessibleRow.h is one cell of it.
#pragma once

namespace orrinvale {

/// From now on every TickOutline answers screen readers as a tree with a header, whose boxes can be
/// ticked and have three states; the toolkit's own interface knows of no box. Called by the
/// outline; further calls do nothing.
void installAccessibleOutline();

}  // namespace orrinvale
