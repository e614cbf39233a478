// The program that looks into one file: its standard input, a regular file. It says what it saw on
// standard output (engine/preview/PreviewAnswer.h) and ends. Started by PreviewReader, it is given
// how many pixels a picture may have a side.
#include <sys/stat.h>
#include <unistd.h>

#include <QBuffer>
#include <QCryptographicHash>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <new>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "engine/preview/MediaFacts.h"
#include "engine/preview/MediaSource.h"
#include "engine/preview/PreviewAnswer.h"
#include "engine/preview/plainText.h"
#include "platform/confinement.h"

namespace orrinvale {
namespace {

using Kind = PreviewAnswer::Kind;
using namespace std::string_view_literals;

constexpr ConfinementLimits ownLimits{.memory = std::uint64_t{768} << 20U, .seconds = 3};
constexpr std::size_t mostText = std::size_t{64} * 1024;
constexpr std::uint64_t mostPictureBytes = std::uint64_t{256} << 20U;
constexpr int mostDecodedMegabytes = 256;
constexpr std::uint64_t mostShownPixels =
    (std::uint64_t{mostDecodedMegabytes} << 20U) / bytesPerPixel;
constexpr std::uint64_t mostJpegPixels = 1'000'000'000;  // it is made smaller while it is read

// By the first bytes: names lie, and a reader that guesses is asked by a file for whatever it
// wants. What is written in words, as drawings in SVG are, is shown as words.
struct PictureSign {
    std::size_t at;
    std::string_view bytes;
    const char* format;
};
constexpr PictureSign pictureSigns[] = {
    {0, "\x89PNG\r\n\x1A\n"sv, "png"},
    {0, "\xFF\xD8\xFF"sv, "jpeg"},
    {0, "GIF8"sv, "gif"},
    {8, "WEBP"sv, "webp"},
    {0, "II*\0"sv, "tiff"},
    {0, "MM\0*"sv, "tiff"},
    {0, "\0\0\1\0"sv, "ico"},
    {4, "ftypheic"sv, "heic"},
    {4, "ftypheix"sv, "heic"},
    {4, "ftypmif1"sv, "heic"},
    {4, "ftypavif"sv, "avif"},
    {4, "ftypavis"sv, "avif"},
    {0, "\xFF\x0A"sv, "jxl"},
    {0, "P4\n"sv, "pbm"},
    {0, "P5\n"sv, "pgm"},
    {0, "P6\n"sv, "ppm"},
};

// The disk did not give the bytes, so that nothing is known of what the file holds.
struct UnreadableInput {};

std::size_t readAt(std::uint64_t offset, std::span<char> buffer) {
    std::size_t filled = 0;
    while (filled < buffer.size()) {
        const ssize_t got = ::pread(STDIN_FILENO, buffer.data() + filled, buffer.size() - filled,
                                    static_cast<off_t>(offset + filled));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) throw UnreadableInput();
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
    }
    return filled;
}

void writeAll(std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t put = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) std::_Exit(EXIT_FAILURE);
        bytes.remove_prefix(static_cast<std::size_t>(put));
    }
}

void say(const PreviewAnswer& answer) {
    writeAll(answerHead(answer));
    writeAll(answer.content);
}

PreviewAnswer failed(PreviewFailure failure) {
    PreviewAnswer answer;
    answer.kind = Kind::Failed;
    answer.failure = failure;
    return answer;
}

// A bitmap says how long it is; two letters alone begin many a text.
bool isBitmap(std::string_view head, std::uint64_t size) {
    constexpr std::size_t headSize = 26;
    return head.size() >= headSize && head.starts_with("BM") &&
           littleEndian(head.substr(2, 4)) <= size && littleEndian(head.substr(6, 4)) == 0;
}

// The format, where there is a reader for it on this machine. The reader's library is in then.
QByteArray pictureFormat(std::string_view head, std::uint64_t size) {
    QByteArray format;
    for (const PictureSign& sign : pictureSigns)
        if (head.substr(std::min(sign.at, head.size())).starts_with(sign.bytes)) {
            format = sign.format;
            break;
        }
    if (format.isEmpty() && isBitmap(head, size)) format = "bmp";
    if (format.isEmpty() || !QImageReader::supportedImageFormats().contains(format)) return {};
    return format;
}

std::uint64_t pixelsOf(const QSize& size) {
    return static_cast<std::uint64_t>(size.width()) * static_cast<std::uint64_t>(size.height());
}

// Nothing where it may be tried.
std::optional<PreviewFailure> objectionTo(const QSize& stored, const QByteArray& format) {
    if (!stored.isValid()) return std::nullopt;  // it does not say before it is read
    const std::uint64_t pixels = pixelsOf(stored);
    if (pixels == 0) return PreviewFailure::Damaged;
    if (pixels > (format == "jpeg" ? mostJpegPixels : mostShownPixels))
        return PreviewFailure::TooLarge;
    return std::nullopt;
}

// Colours of 16 bits are kept as they are while they are read.
bool isTooDeep(QImageReader& reader, const QSize& stored, const QByteArray& format) {
    if (!stored.isValid() || format == "jpeg") return false;
    const auto bits = QImage::toPixelFormat(reader.imageFormat()).bitsPerPixel();
    return pixelsOf(stored) * bits / 8 > std::uint64_t{mostDecodedMegabytes} << 20U;
}

QSize within(const QSize& size, int side) {
    if (size.width() <= side && size.height() <= side) return size;
    return size.scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1});
}

PreviewAnswer pictureIn(QFile& file, const QByteArray& format, int side) {
    QImageReader reader(&file, format);
    reader.setAutoTransform(true);
    QSize stored = reader.size();
    if (const auto objection = objectionTo(stored, format)) return failed(*objection);
    if (isTooDeep(reader, stored, format)) return failed(PreviewFailure::TooMuchMemory);
    if (stored.isValid()) reader.setScaledSize(within(stored, side));
    QImage image = reader.read();
    // One that is written in several passes is kept whole while it is read.
    if (image.isNull() && stored.isValid() && pixelsOf(stored) > mostShownPixels)
        return failed(PreviewFailure::TooMuchMemory);
    if (image.isNull())
        return failed(file.error() == QFileDevice::ReadError ? PreviewFailure::Unreadable
                                                             : PreviewFailure::Damaged);
    if (!stored.isValid()) stored = image.size();
    else if ((reader.transformation() & QImageIOHandler::TransformationRotate90) != 0)
        stored.transpose();
    if (const QSize fits = within(image.size(), side); fits != image.size())
        image = image.scaled(fits, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    image.convertTo(QImage::Format_ARGB32_Premultiplied);
    if (image.isNull()) return failed(PreviewFailure::TooMuchMemory);
    PreviewAnswer answer;
    answer.kind = Kind::Picture;
    answer.format = format.toStdString();
    answer.storedWidth = static_cast<std::uint32_t>(stored.width());
    answer.storedHeight = static_cast<std::uint32_t>(stored.height());
    answer.width = static_cast<std::uint32_t>(image.width());
    answer.height = static_cast<std::uint32_t>(image.height());
    answer.content.assign(reinterpret_cast<const char*>(image.constBits()),
                          static_cast<std::size_t>(image.sizeInBytes()));
    return answer;
}

PreviewAnswer otherwise(std::string_view head, std::uint64_t size) {
    PreviewAnswer answer;
    MediaSource source(size, readAt);
    if (auto facts = readMediaFacts(source)) {
        answer.kind = Kind::Media;
        answer.media = *std::move(facts);
    } else if (auto text = plainText(head, size <= head.size())) {
        answer.kind = Kind::Text;
        answer.encoding = text->encoding;
        answer.isCut = text->isCut || size > head.size();
        answer.content = std::move(text->text);
        if (!answer.isCut)
            answer.digest =
                QCryptographicHash::hash({head.data(), static_cast<qsizetype>(head.size())},
                                         QCryptographicHash::Sha256)
                    .toHex()
                    .toStdString();
    }
    return answer;
}

PreviewAnswer look(std::uint64_t size, int side) {
    std::string head(mostText, '\0');
    head.resize(readAt(0, head));
    const QByteArray format = pictureFormat(head, size);
    QFile file;
    if (!format.isEmpty() && size > mostPictureBytes) return failed(PreviewFailure::TooLarge);
    if (!format.isEmpty() &&
        !file.open(STDIN_FILENO, QIODevice::ReadOnly, QFileDevice::DontCloseHandle))
        return failed(PreviewFailure::NotLooked);
    QImageReader::setAllocationLimit(mostDecodedMegabytes);
    // Where there is no such filter the limits are what holds.
    static_cast<void>(allowReadingAndWritingOnly());
    return format.isEmpty() ? otherwise(head, size) : pictureIn(file, format, side);
}

int lookAtInput(std::string_view wanted) {
    limitThisProcess(ownLimits);
    // A thread of the toolkit would ask GLib for what is refused by then, which ends the process.
    ::setenv("QT_NO_GLIB", "1", 1);
    struct stat status {};
    int side = 0;
    const auto [end, error] = std::from_chars(wanted.data(), wanted.data() + wanted.size(), side);
    if (::fstat(STDIN_FILENO, &status) != 0 || !S_ISREG(status.st_mode) || error != std::errc())
        return EXIT_FAILURE;
    try {
        say(look(static_cast<std::uint64_t>(status.st_size),
                 std::clamp(side, 1, static_cast<int>(mostPreviewSide))));
    } catch (const std::bad_alloc&) {
        say(failed(PreviewFailure::TooMuchMemory));
    } catch (const UnreadableInput&) {
        say(failed(PreviewFailure::Unreadable));
    }
    return EXIT_SUCCESS;
}

}  // namespace
}  // namespace orrinvale

int main(int argc, char** argv) {
    // At once: what libraries do at their end is of no use, and may need what is refused by now.
    std::_Exit(orrinvale::lookAtInput(argc == 2 ? argv[1] : ""));
}
