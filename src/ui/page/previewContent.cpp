// What is neither picture nor text shows its facts alone.
#include "ui/page/previewContent.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QFile>
#include <QMimeDatabase>
#include <algorithm>
#include <cerrno>
#include <memory>

#include "engine/preview/PreviewReader.h"
#include "platform/askProgram.h"
#include "platform/descriptor.h"
#include "platform/paths.h"
#include "ui/preview/previewWords.h"

namespace orrinvale {
namespace {

std::uint64_t countEntries(int folder) {
    const int own = ::fcntl(folder, F_DUPFD_CLOEXEC, 0);
    const std::unique_ptr<DIR, int (*)(DIR*)> listing(::fdopendir(own), ::closedir);
    if (!listing && own >= 0) ::close(own);
    std::uint64_t count = 0;
    while (listing && ::readdir(listing.get()) != nullptr) ++count;
    constexpr std::uint64_t dots = 2;  // "." and ".."
    return count - std::min(count, dots);
}

void readFile(int file, const std::stop_token& stop, PreviewContent& content) {
    const QMimeType type =
        QMimeDatabase().mimeTypeForFile(content.name, QMimeDatabase::MatchExtension);
    content.type = type.isDefault() ? QString() : type.comment();
    content.kind = PreviewContent::Kind::Other;
    if (content.size == 0) return;
    const PreviewAnswer answer =
        PreviewReader::look(companionProgram(PreviewReader::programName), file, mostPixels, stop);
    if (answer.kind == PreviewAnswer::Kind::Picture) {
        content.kind = PreviewContent::Kind::Picture;
        content.pictureSize =
            QSize(static_cast<int>(answer.storedWidth), static_cast<int>(answer.storedHeight));
        content.picture = imageIn(answer);
    } else if (answer.kind == PreviewAnswer::Kind::Text) {
        content.kind = PreviewContent::Kind::Text;
        content.text = QString::fromStdString(answer.content);
        content.isCut = answer.isCut;
    } else if (answer.kind == PreviewAnswer::Kind::Media) {
        content.media = mediaLines(answer.media);
    }
}

}  // namespace

PreviewContent readPreview(const std::string& path, const std::stop_token& stop) {
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
    // A look here is no use of the file, where it may be told so.
    constexpr int flags = O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC;
    Descriptor file(::open(path.c_str(), flags | O_NOATIME));
    if (!file.isOpen() && errno == EPERM) file = Descriptor(::open(path.c_str(), flags));
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0) return content;
    if (S_ISDIR(status.st_mode)) {
        content.kind = PreviewContent::Kind::Folder;
        content.entries = countEntries(file.get());
    } else if (S_ISREG(status.st_mode)) {
        readFile(file.get(), stop, content);
    }
    return content;
}

}  // namespace orrinvale
