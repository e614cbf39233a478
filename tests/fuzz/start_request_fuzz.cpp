// Any bytes as the packet by which a later start reaches the running program: what is read prints
// to the same packet.

#include "fuzz/fuzz.h"
#include "platform/FileUrl.h"
#include "platform/StartRequest.h"

void checkAny(std::string_view text) {
    if (const auto request = orrinvale::parseStartRequest(text))
        require(orrinvale::printStartRequest(*request) == text);
    // As an address it comes over the bus; a path comes back from the address that is made of it.
    if (const auto path = orrinvale::pathOfFileUrl(text))
        require(orrinvale::pathOfFileUrl(orrinvale::fileUrlOf(*path)) == path);
}
