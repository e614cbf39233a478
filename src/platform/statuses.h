// statuses: the numbers that operations on files and volumes answer with.
#pragma once

#include <cstdint>

namespace orrinvale {

/// Any other number than 0 is a failure; the numbers are those of the interface.
enum OSErr : std::int16_t {
    noErr = 0,
    nsvErr = -35,    ///< no such volume: the index lies past the last one
    ioErr = -36,     ///< the volume or the entry did not answer, or not with success
    fnfErr = -43,    ///< there is no such entry, or another stands in its place
    fBsyErr = -47,   ///< somebody uses the volume
    paramErr = -50,  ///< a reference that names nothing
    errFSNotAFolder = -1407,
    errFSNoMoreItems = -1417,  ///< the items that came with it are the last
    afpAccessDenied = -5000
};

}  // namespace orrinvale
