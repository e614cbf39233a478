// PreviewAnswer: what the program that looks into files tells of one, and how it is written from
// there to here. src/preview/main.cpp writes it, PreviewReader.h reads it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "engine/preview/MediaFacts.h"

namespace orrinvale {

/// Why a file can not be shown.
enum class PreviewFailure : std::uint8_t {
    None,
    Damaged,        ///< it begins as a picture, and is none
    TooLarge,       ///< more pixels or bytes than a look is worth
    TooMuchMemory,  ///< of what the looking program may take
    Unreadable,     ///< the disk does not give its bytes
    TooSlow,
    Crashed,    ///< the looking program ended in the middle
    NotLooked,  ///< it could not be started, or what it said made no sense
};

/// Texts come from the file and mean nothing but letters.
struct PreviewAnswer {
    enum class Kind : std::uint8_t {
        Other,  ///< nothing can be shown of it but what a folder tells
        Picture,
        Text,
        Media,
        Failed
    };
    Kind kind = Kind::Other;
    PreviewFailure failure = PreviewFailure::None;
    std::string format{};                             ///< of a picture: "png"
    std::uint32_t storedWidth = 0, storedHeight = 0;  ///< pixels, as they are seen upright
    std::uint32_t width = 0, height = 0;              ///< of `pixels`
    std::string encoding{};                           ///< of a text
    bool isCut = false;                               ///< of a text
    std::string digest{};  ///< of a text that is not cut: of all bytes of the file
    MediaFacts media{};
    /// A picture's rows without gaps, four bytes a pixel: blue, green, red, opacity, the colours
    /// multiplied by it. Or a text in UTF-8.
    std::string content{};
};

inline constexpr std::uint32_t mostPreviewSide = 3072;  ///< of the pixels that are sent
inline constexpr std::size_t bytesPerPixel = 4;
/// No answer is longer.
inline constexpr std::size_t mostAnswerBytes =
    std::size_t{mostPreviewSide} * mostPreviewSide * bytesPerPixel + std::size_t{16} * 1024;

/// All of the answer but its content, which follows it.
[[nodiscard]] std::string answerHead(const PreviewAnswer& answer);

/// Nothing for bytes that are no answer, whoever wrote them: sizes, counts and texts hold what is
/// said of them above.
[[nodiscard]] std::optional<PreviewAnswer> readAnswer(std::string_view bytes);

}  // namespace orrinvale
