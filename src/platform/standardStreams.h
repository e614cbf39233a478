// standardStreams: the descriptors 0, 1 and 2, which a program may be started without.
#pragma once

namespace orrinvale {

/// Puts something in the place of each that is closed. Otherwise the next file that is opened gets
/// its number, and what is meant for standard error is written into it. What stands in for a stream
/// fails as a closed one does: EBADF. Call it first of all in main().
void fillStandardStreams();

}  // namespace orrinvale
