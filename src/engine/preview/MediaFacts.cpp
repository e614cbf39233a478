// Each parser knows its file by its first bytes; the one that guesses most is asked last.
#include "engine/preview/MediaFacts.h"

#include <limits>

#include "engine/preview/MediaSource.h"

namespace orrinvale {

std::uint64_t lasting(std::uint64_t units, std::uint64_t perSecond) {
    constexpr std::uint64_t perMillisecond = 1000;
    if (perSecond == 0) return 0;
    const std::uint64_t seconds = units / perSecond;
    if (seconds > std::numeric_limits<std::uint64_t>::max() / perMillisecond - 1) return 0;
    return seconds * perMillisecond +
           static_cast<std::uint64_t>(static_cast<double>(units % perSecond) * perMillisecond /
                                      static_cast<double>(perSecond));
}

std::optional<MediaFacts> readMediaFacts(MediaSource& source) {
    for (const auto parser : {readMovieFacts, readMatroskaFacts, readFlacFacts, readWaveFacts,
                              readOggFacts, readMpegAudioFacts})
        if (auto facts = parser(source)) return facts;
    return std::nullopt;
}

}  // namespace orrinvale
