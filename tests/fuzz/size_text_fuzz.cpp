// Any bytes as a size or date text: nothing but std::out_of_range may escape, and the answers stay
// within their ranges.
#include <cmath>
#include <stdexcept>

#include "engine/text/UtilityFunction.h"
#include "fuzz/fuzz.h"

namespace {

template <class Call> void expectOnlyOutOfRange(Call call) {
    try {
        call();
    } catch (const std::out_of_range&) {}
}

}  // namespace

void checkAny(std::string_view text) {
    using orrinvale::UtilityFunction;
    expectOnlyOutOfRange([&] {
        require(UtilityFunction::getVolSpaceFromString(text) == 0 || text.ends_with("KB") ||
                text.ends_with("MB") || text.ends_with("GB") || text.ends_with("TB"));
    });
    expectOnlyOutOfRange(
        [&] { require(!std::isnan(UtilityFunction::returnParserFromVolSpace(text))); });
    expectOnlyOutOfRange(
        [&] { require(UtilityFunction::parseDateTime(text).size() <= text.size()); });
}
