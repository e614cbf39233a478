// Any bytes as a size or date text: nothing but std::out_of_range may escape, and the answers stay
// within their ranges.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <string_view>

#include "engine/text/UtilityFunction.h"

namespace {

template <class Call> void expectOnlyOutOfRange(Call call) {
    try {
        call();
    } catch (const std::out_of_range&) {}
}

void require(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    using orrinvale::UtilityFunction;
    const std::string_view text(reinterpret_cast<const char*>(bytes), size);
    expectOnlyOutOfRange([&] {
        require(UtilityFunction::getVolSpaceFromString(text) == 0 || text.ends_with("KB") ||
                text.ends_with("MB") || text.ends_with("GB") || text.ends_with("TB"));
    });
    expectOnlyOutOfRange(
        [&] { require(!std::isnan(UtilityFunction::returnParserFromVolSpace(text))); });
    expectOnlyOutOfRange(
        [&] { require(UtilityFunction::parseDateTime(text).size() <= text.size()); });
    return 0;
}
