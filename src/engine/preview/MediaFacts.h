// MediaFacts: what the headers of a film or a piece of music tell, without a decoder.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace orrinvale {

class MediaSource;

/// What is not told is 0 or empty. Numbers are as the file claims them.
struct MediaFacts {
    std::string container{};  ///< a name that people know: "MP4", "Matroska"
    std::string video{};      ///< codec of the first picture track; empty: there is none
    std::string audio{};      ///< codec of the first sound track
    std::uint64_t milliseconds = 0;
    std::uint32_t width = 0, height = 0;  ///< pixels
    std::uint32_t channels = 0;
    std::uint32_t rate = 0;  ///< samples a second

    friend bool operator==(const MediaFacts&, const MediaFacts&) = default;
};

/// By the bytes alone, whatever the file is called: MP4 and QuickTime, Matroska and WebM, MP3,
/// FLAC, WAV, Ogg. Nothing for everything else. Reads a few kilobytes, wherever they stand.
[[nodiscard]] std::optional<MediaFacts> readMediaFacts(MediaSource& source);

// The parsers behind it; each is nothing for another's bytes.
[[nodiscard]] std::optional<MediaFacts> readMovieFacts(MediaSource& source);
[[nodiscard]] std::optional<MediaFacts> readMatroskaFacts(MediaSource& source);
[[nodiscard]] std::optional<MediaFacts> readFlacFacts(MediaSource& source);
[[nodiscard]] std::optional<MediaFacts> readWaveFacts(MediaSource& source);
[[nodiscard]] std::optional<MediaFacts> readOggFacts(MediaSource& source);
[[nodiscard]] std::optional<MediaFacts> readMpegAudioFacts(MediaSource& source);

/// How long `units` last of which a second has `perSecond`; 0 where that says nothing.
[[nodiscard]] std::uint64_t lasting(std::uint64_t units, std::uint64_t perSecond);

}  // namespace orrinvale
