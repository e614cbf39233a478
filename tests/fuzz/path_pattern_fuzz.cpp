// Any bytes as a pattern of an exclusion file, and what it is held against: no pattern that is
// taken leads out of itself, and a folder's own pattern matches it.
#include <algorithm>

#include "engine/duplicates/scope/PathPattern.h"
#include "fuzz/fuzz.h"

namespace {

using namespace orrinvale;

void checkPattern(std::string_view pattern, std::string_view text) {
    for (const auto& parsed : {PathPattern::parse(pattern), PathPattern::parseLine(pattern)}) {
        if (!parsed) {
            require(!parsed.error().reason.empty() && parsed.error().place >= 1 &&
                    parsed.error().place <= pattern.size() + 2);
            continue;
        }
        require(!parsed->matches(text, false) || parsed->matches(text, true));
    }
}

}  // namespace

void checkAny(std::string_view any) {
    const std::size_t end = std::min(any.find('\n'), any.size());
    checkPattern(any.substr(0, end), any.substr(std::min(end + 1, any.size())));
    checkPattern(any.substr(0, end), any.substr(0, end));
    // Most bytes are no set; as the contents of one they get further.
    checkPattern("[" + std::string(any.substr(0, end)) + "]", "a");
    for (char byte = ' '; byte < '\x7F'; ++byte)
        checkPattern(std::string{'[', byte, '-', any.empty() ? '/' : any.front(), ']'}, "a");
}
