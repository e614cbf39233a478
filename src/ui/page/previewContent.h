// previewContent: what a preview shows of a file or folder, read within bounds.
#pragma once

#include <QImage>
#include <QString>
#include <QStringList>
#include <cstdint>
#include <stop_token>
#include <string>

namespace orrinvale {

struct PreviewContent {
    enum class Kind { Missing, Folder, Picture, Text, Other };
    Kind kind = Kind::Missing;
    QString name;
    QString type;  ///< for people: "PNG image"
    std::uint64_t size = 0;
    std::int64_t modified = 0;  ///< nanoseconds since 1970 UTC
    QString linkTarget;         ///< of a symbolic link
    QSize pictureSize;          ///< in pixels, of the picture as it is stored
    QImage picture;             ///< at most mostPixels a side
    QString text;               ///< the beginning of it
    QStringList media;          ///< what a film or a song tells, a line each
    bool isCut = false;
    std::uint64_t entries = 0;  ///< of a folder, the direct ones
};

inline constexpr int mostPixels = 1600;

/// Opens regular files only, without waiting for a FIFO or a device. Nothing of them is decoded in
/// this process: engine/preview/PreviewReader.h has who does it, and within which bounds; once it
/// is told to stop nobody does. Any thread.
[[nodiscard]] PreviewContent readPreview(const std::string& path, const std::stop_token& stop = {});

}  // namespace orrinvale
