// A picture is tried first, then a text; what is neither shows its facts alone.
#include "ui/page/previewContent.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QBuffer>
#include <QFile>
#include <QImageReader>
#include <QMimeDatabase>
#include <algorithm>
#include <memory>

#include "platform/descriptor.h"
#include "platform/paths.h"

namespace orrinvale {
namespace {

// A damaged picture may claim any size; this is what Qt may allocate for it, in MiB.
constexpr int mostImageMegabytes = 256;

bool readText(int file, PreviewContent& content) {
    QByteArray bytes(static_cast<qsizetype>(mostTextBytes + 1), '\0');
    qsizetype filled = 0;
    while (filled < bytes.size()) {
        const ssize_t got =
            ::read(file, bytes.data() + filled, static_cast<std::size_t>(bytes.size() - filled));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) break;
        filled += got;
    }
    bytes.truncate(filled);
    if (bytes.contains('\0')) return false;
    content.isCut = bytes.size() > static_cast<qsizetype>(mostTextBytes);
    bytes.truncate(static_cast<qsizetype>(mostTextBytes));
    content.text = QString::fromUtf8(bytes);
    // More than a few broken characters: these bytes are no text.
    constexpr qsizetype oneOf = 20;
    return content.text.count(QChar::ReplacementCharacter) <= content.text.size() / oneOf + 1;
}

bool readPicture(int file, PreviewContent& content) {
    QFile source;
    if (content.size > mostPictureBytes ||
        !source.open(file, QIODevice::ReadOnly, QFileDevice::DontCloseHandle))
        return false;
    QImageReader reader(&source);
    reader.setAutoTransform(true);
    if (!reader.canRead()) return false;
    content.pictureSize = reader.size();
    if (content.pictureSize.isValid() &&
        std::max(content.pictureSize.width(), content.pictureSize.height()) > mostPixels)
        reader.setScaledSize(
            content.pictureSize.scaled(mostPixels, mostPixels, Qt::KeepAspectRatio));
    content.picture = reader.read();
    return !content.picture.isNull();
}

std::uint64_t countEntries(int folder) {
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::fdopendir(::dup(folder)), ::closedir);
    std::uint64_t count = 0;
    while (listing && ::readdir(listing.get()) != nullptr) ++count;
    constexpr std::uint64_t dots = 2;  // "." and ".."
    return count - std::min(count, dots);
}

void readFile(int file, PreviewContent& content) {
    const QMimeType type =
        QMimeDatabase().mimeTypeForFile(content.name, QMimeDatabase::MatchExtension);
    content.type = type.isDefault() ? QString() : type.comment();
    content.kind = PreviewContent::Kind::Other;
    if (QImageReader::allocationLimit() != mostImageMegabytes)
        QImageReader::setAllocationLimit(mostImageMegabytes);
    if (readPicture(file, content)) content.kind = PreviewContent::Kind::Picture;
    else if (::lseek(file, 0, SEEK_SET) == 0 && content.size > 0 && readText(file, content))
        content.kind = PreviewContent::Kind::Text;
}

}  // namespace

PreviewContent readPreview(const std::string& path) {
    PreviewContent content;
    content.name = QString::fromStdString(std::string(lastPathComponent(path)));
    struct stat status {};
    if (path.empty() || path.front() != '/' || ::lstat(path.c_str(), &status) != 0) return content;
    content.kind = PreviewContent::Kind::Other;
    content.size = static_cast<std::uint64_t>(status.st_size);
    constexpr std::int64_t second = 1'000'000'000;
    content.modified = status.st_mtim.tv_sec * second + status.st_mtim.tv_nsec;
    if (S_ISLNK(status.st_mode)) {
        content.linkTarget = QFile::symLinkTarget(QString::fromStdString(path));
        return content;
    }
    const Descriptor file(
        ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0) return content;
    if (S_ISDIR(status.st_mode)) {
        content.kind = PreviewContent::Kind::Folder;
        content.entries = countEntries(file.get());
    } else if (S_ISREG(status.st_mode)) {
        readFile(file.get(), content);
    }
    return content;
}

}  // namespace orrinvale
