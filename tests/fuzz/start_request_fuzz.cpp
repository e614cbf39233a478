// Any bytes as the packet by which a later start reaches the running program: what is read prints
// to the same packet.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/FileUrl.h"
#include "platform/StartRequest.h"

namespace {

void require(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    if (const auto request = orrinvale::parseStartRequest(text))
        require(orrinvale::printStartRequest(*request) == text);
    // As an address it comes over the bus; a path comes back from the address that is made of it.
    if (const auto path = orrinvale::pathOfFileUrl(text))
        require(orrinvale::pathOfFileUrl(orrinvale::fileUrlOf(*path)) == path);
    return 0;
}
