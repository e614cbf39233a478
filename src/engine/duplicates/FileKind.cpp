// The extensions of each kind, as lists to read and to add to.
#include "engine/duplicates/FileKind.h"

#include <algorithm>
#include <string>

namespace orrinvale {
namespace {

using namespace std::string_view_literals;

// "acc" beside "aac", and "ogg" among the videos, are meant. An extension is what stands behind the
// last dot, so that the two double ones never match; they name what people look for.
constexpr std::array documents{"doc"sv,  "docx"sv, "xls"sv,   "xlsx"sv, "mpp"sv, "ppt"sv,
                               "pptx"sv, "txt"sv,  "rtf"sv,   "pdf"sv,  "odt"sv, "ott"sv,
                               "ods"sv,  "odg"sv,  "odf"sv,   "odb"sv,  "odp"sv, "htm"sv,
                               "html"sv, "xml"sv,  "pages"sv, "key"sv};
constexpr std::array music{"wav"sv, "aiff"sv, "au"sv,  "mp3"sv, "midi"sv,
                           "wma"sv, "acc"sv,  "ape"sv, "ra"sv,  "aac"sv};
constexpr std::array videos{"avi"sv,  "rmvb"sv, "rm"sv,  "3gp"sv, "3g2"sv, "flv"sv,
                            "mpeg"sv, "mpg"sv,  "qt"sv,  "qtm"sv, "qtx"sv, "mov"sv,
                            "mpe"sv,  "mp4"sv,  "m4v"sv, "mkv"sv, "wmv"sv, "ogg"sv};
constexpr std::array archives{"zip"sv, "rar"sv, "tar"sv, "tar.gz"sv, "tar.bz2"sv};
constexpr std::array pictures{"bmp"sv,  "jpg"sv, "png"sv,  "ico"sv, "gif"sv, "tiff"sv,
                              "jpeg"sv, "tga"sv, "exif"sv, "fpx"sv, "svg"sv, "psd"sv,
                              "cdr"sv,  "pcd"sv, "dxf"sv,  "ufo"sv, "eps"sv};

template <class List> bool holds(const List& list, std::string_view text) {
    return std::find(list.begin(), list.end(), text) != list.end();
}

}  // namespace

FileKind kindOfExtension(std::string_view extension) {
    std::string lower(extension);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    if (holds(documents, lower)) return FileKind::Documents;
    if (holds(music, lower)) return FileKind::Music;
    if (holds(videos, lower)) return FileKind::Videos;
    if (holds(archives, lower)) return FileKind::Archives;
    if (holds(pictures, lower)) return FileKind::Pictures;
    return FileKind::Others;
}

std::string_view kindName(FileKind kind) {
    switch (kind) {
        case FileKind::Documents: return "documents";
        case FileKind::Music: return "music";
        case FileKind::Videos: return "videos";
        case FileKind::Archives: return "archives";
        case FileKind::Pictures: return "pictures";
        case FileKind::Others: break;
    }
    return "others";
}

}  // namespace orrinvale
