// previewWords: what is told of a file in a preview, and why it can not be shown.
#pragma once

#include <QImage>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <stop_token>
#include <string>

#include "engine/preview/PreviewReader.h"

namespace orrinvale {

/// A look at a file, ready for the screen.
struct PreviewSight {
    Preview preview;  ///< a picture's content has become `image`
    QImage image;
    QString type;  ///< by the name, for people: "PDF document"; empty where nobody knows
};

/// Reads it. Not for the main thread.
[[nodiscard]] PreviewSight readSight(const PreviewReader& reader, const std::string& path,
                                     std::uint32_t side, const std::stop_token& stop);

/// The pixels of an answer that is a picture.
[[nodiscard]] QImage imageIn(const PreviewAnswer& answer);

/// What a film or a song tells, a line each.
[[nodiscard]] QStringList mediaLines(const MediaFacts& facts);

/// The line under it: kind, pixels, size, date.
[[nodiscard]] QString factsOf(const PreviewSight& sight);

/// In the place of a picture or text, a line each: what a film or a song tells, or why there is
/// nothing to see.
[[nodiscard]] QStringList wordsFor(const PreviewSight& sight);

/// "1:02:03", "2:05".
[[nodiscard]] QString durationText(std::uint64_t milliseconds);

}  // namespace orrinvale
